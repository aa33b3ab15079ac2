// SPDX-License-Identifier: Apache-2.0
#include <qdxplugin_host/image.h>

#include <qdxcore/reference.h>
#include <qdxcore/reference_parameter.h>
#include <qdxcore/status.h>
#include <qdxmodel/counted.h>
#include <qdxmodel/type.h>
#include <qdxmodel/visit.h>
#include <qdxrepository/instance_adder.h>
#include <qdxrepository/repository.h>

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <memory>
#include <type_traits>
#include <utility>

#include "image_format.h"
#include "image_input.h"

namespace NVORNQDX20::NPluginHost {
namespace {

using TType = TCIMValue::TCIMType;

// What objects need in memory, about.
constexpr std::size_t kNamespaceBytes = 4096;
constexpr std::size_t kClassBytes = 1024;
constexpr std::size_t kMemberBytes = 64;
constexpr std::size_t kElementBytes = 512;  // a declaration of a property, method or qualifier
constexpr std::size_t kInstanceBytes = 128;
constexpr std::size_t kStoredBytes = 16;
constexpr std::size_t kBoxedBytes = 128;  // of a value that does not fit in these
constexpr std::size_t kReferenceBytes = 128;

class TImageReader {
 public:
  TImageReader(const std::string& name, TImageInput& input)
      : fInput(input), fNamespaces{MakeRepositoryNamespace(name)} {}

  TImage Read() {
    if (fInput.Take(kImageStart.size()) != kImageStart) fInput.Fail("it is no image");
    while (ReadRecord()) {
    }
    if (!fInput.IsAtEnd()) fInput.Fail("bytes after its end");
    TImage image{fNamespaces.front()};
    if (fDuplicates != 0) {
      image.fWarnings.push_back(
          NModel::Counted(fDuplicates, "instance with the keys of another one was left out",
                          "instances with the keys of another one were left out"));
    }
    if (fInput.GetReplaced() != 0) {
      image.fWarnings.push_back(NModel::Counted(
          fInput.GetReplaced(), "character that a document cannot hold was replaced",
          "characters that a document cannot hold were replaced"));
    }
    return image;
  }

 private:
  struct TReadClass {
    boost::shared_ptr<ICIMNamespace> fNamespace;
    boost::shared_ptr<ICIMClass> fClass;
    std::vector<boost::shared_ptr<const ICIMPropertyDecl>> fMembers;
    std::size_t fDepth = 1;
    std::unique_ptr<TInstanceAdder> fInstances;
  };

  bool ReadRecord() {
    switch (fInput.Byte()) {
      case kEnd:
        return false;
      case kOtherNamespace:
        fInput.Hold(kNamespaceBytes);
        fNamespaces.push_back(MakeRepositoryNamespace(fInput.Text()));
        return true;
      case kQualifierDecl:
        ReadQualifierDecl();
        return true;
      case kClass:
        ReadClass();
        return true;
      case kLateDefault:
        ReadLateDefault();
        return true;
      case kStaticValue:
        ReadStaticValue();
        return true;
      case kInstancesOf:
        ReadInstancesOf();
        return true;
      case kInstance:
        ReadInstance();
        return true;
      default:
        fInput.Fail("an unknown record");
    }
  }

  void ReadQualifierDecl() {
    ICIMNamespace& ns = *Element(fNamespaces);
    fInput.Hold(kElementBytes);
    const std::string name = fInput.Text();
    const TCIMValue value = ReadValue();
    const auto scope = fInput.Number<std::uint32_t>();
    const auto flavor = fInput.Number<std::uint32_t>();
    fDecls.push_back(ns.CreateQualifierDecl(name, value, scope, flavor, {}));
    fDecls.back()->Commit();
  }

  void ReadClass() {
    TReadClass read;
    read.fNamespace = Element(fNamespaces);
    const std::string name = fInput.Text();
    const auto superclass = fInput.Number<std::size_t>();
    if (superclass != 0) {
      const TReadClass& above = ElementAt(fClasses, superclass - 1);
      if (above.fNamespace != read.fNamespace) fInput.Fail("a superclass of another namespace");
      read.fDepth = above.fDepth + 1;
      if (read.fDepth > kMaxImageDepth) fInput.Fail("too many superclasses");
      read.fClass = read.fNamespace->CreateClass(name, above.fClass, {});
    } else {
      read.fClass = read.fNamespace->CreateClass(name, nullptr, {});
    }
    fInput.Hold(kClassBytes);
    ICIMClass& cimClass = *read.fClass;
    fClasses.push_back(std::move(read));  // its own properties can refer to it
    ReadQualifiers(cimClass);
    ForEach([&] {
      fInput.Hold(kElementBytes);
      const std::string property = fInput.Text();
      const auto decl = cimClass.CreatePropertyDecl(property, ReadValue(), {});
      ReadQualifiers(*decl);
      decl->Commit();
    });
    ForEach([&] {
      fInput.Hold(kElementBytes);
      const std::string method = fInput.Text();
      ReadMethod(*cimClass.CreateMethodDecl(method, ReadType(), {}));
    });
    cimClass.Commit({});
    ReadMembers(fClasses.back());
  }

  void ReadLateDefault() {
    TReadClass& read = Element(fClasses);
    fInput.Hold(kElementBytes);
    const auto& decl = Element(read.fMembers);
    const TCIMValue value = ReadContent(TType::kCIMTypeReference);
    SetReferenceDefault(*read.fClass, decl->GetName(), value);
  }

  void ReadStaticValue() {
    TReadClass& read = Element(fClasses);
    fInput.Hold(kElementBytes);
    const auto& decl = Element(read.fMembers);
    read.fClass->SetStaticPropertyValue(decl->GetName(), ReadContent(decl->GetType()), {});
  }

  void ReadMembers(TReadClass& read) {
    const auto add = [&](const boost::shared_ptr<const ICIMPropertyDecl>& decl) {
      fInput.Hold(kMemberBytes);
      read.fMembers.push_back(decl);
      return true;
    };
    read.fClass->EnumeratePropertyDecls(add, {});
  }

  void ReadMethod(ICIMMethodDecl& method) {
    ReadQualifiers(method);
    ForEach([&] {
      fInput.Hold(kElementBytes);
      const std::string name = fInput.Text();
      const auto parameter = method.CreateParameterDecl(name, ReadType());
      const std::string referenced = fInput.Text();
      if (!referenced.empty()) SetReferencedClassName(*parameter, referenced);
      ReadQualifiers(*parameter);
      parameter->Commit();
    });
  }

  template <typename TQualified>
  void ReadQualifiers(TQualified& element) {
    ForEach([&] {
      fInput.Hold(kElementBytes);
      const auto& decl = Element(fDecls);
      element.AddQualifier(decl, ReadContent(decl->GetDefaultValue().GetType()))->Commit();
    });
  }

  void ReadInstancesOf() {
    const auto number = fInput.Number<std::size_t>();
    TReadClass& read = ElementAt(fClasses, number);
    if (!read.fInstances) read.fInstances = std::make_unique<TInstanceAdder>(read.fClass);
    fInstancesOf = number;
    fPositions.clear();
    std::vector<bool> isListed(read.fMembers.size());
    ForEach([&] {
      const auto position = fInput.Number<std::size_t>();
      if (position >= isListed.size() || isListed[position]) fInput.Fail("an unknown property");
      isListed[position] = true;
      fPositions.push_back(position);
    });
  }

  void ReadInstance() {
    TReadClass& read = ElementAt(fClasses, fInstancesOf);
    if (!read.fInstances) fInput.Fail("an instance without class");
    fInput.Hold(kInstanceBytes + kStoredBytes * read.fMembers.size());
    TInstanceAdder& instances = *read.fInstances;
    instances.Begin();
    for (const std::size_t position : fPositions) {
      ReadProperty(instances, position, read.fMembers[position]->GetType());
    }
    if (!instances.Commit()) ++fDuplicates;
  }

  void ReadProperty(TInstanceAdder& instances, std::size_t position, TType type) {
    if (fInput.Peek() == kNull) {
      (void)fInput.Byte();
      return instances.SetNull(position);
    }
    if (fInput.Peek() == kPresent && type == TType::kCIMTypeString) {
      (void)fInput.Byte();
      (void)instances.SetText(position, fInput.TextView());
    } else if (fInput.Peek() == kPresent && NModel::SizeOfNumber(type) != 0) {
      (void)fInput.Byte();
      (void)instances.SetNumber(position, ReadNative(type));
    } else {
      fInput.Hold(kBoxedBytes);
      (void)instances.Set(position, ReadContent(type));
    }
  }

  /// Returns the bytes of a number.
  std::string_view ReadNative(TType type) {
    const std::string_view bytes = fInput.Take(NModel::SizeOfNumber(type));
    const bool isBoolean = type == TType::kCIMTypeBoolean;
    if (isBoolean && static_cast<unsigned char>(bytes.front()) > 1) fInput.Fail("no boolean");
    return bytes;
  }

  TType ReadType() {
    const TType type = fInput.Number<std::uint32_t>();
    if (type != TType::kCIMTypeNone && !NModel::HasKeyword(type)) fInput.Fail("an unknown type");
    return type;
  }

  TCIMValue ReadValue() {
    const TType type = ReadType();
    return ReadContent(type);
  }

  TCIMValue ReadContent(TType type) {
    const bool isArray = NModel::IsArray(type);
    switch (fInput.Byte()) {
      case kNull:
        return TCIMValue(type, 0U);
      case kNullArray:
        if (!isArray) fInput.Fail("no array");
        return TCIMValue(NModel::ElementType(type), fInput.Number<unsigned int>());
      case kNullReference:
        return ReadNullReference(type);
      case kPresent:
        return isArray ? ReadArray(type) : ReadScalar(type);
      default:
        fInput.Fail("an unknown content");
    }
  }

  TCIMValue ReadNullReference(TType type) {
    if (type != TType::kCIMTypeReference) fInput.Fail("no reference");
    TCIMValue value(type, 0U);
    const auto number = fInput.Number<std::size_t>();
    if (number != 0) value.SetReferencedClass(ElementAt(fClasses, number - 1).fClass);
    return value;
  }

  TCIMValue ReadArray(TType type) {
    const auto size = fInput.Number<unsigned int>();
    std::vector<TCIMValue> elements;
    ForEach([&] {
      fInput.Hold(4 * sizeof(TCIMValue));  // the vector grows, and is copied
      elements.push_back(ReadContent(NModel::ElementType(type)));
    });
    return TCIMValue(NModel::ElementType(type), size, elements);
  }

  TCIMValue ReadScalar(TType type) {
    if (type == TType::kCIMTypeString) {
      const std::string_view text = fInput.TextView();
      fInput.Hold(text.size());  // what holds it is copied
      return TCIMValue(std::string(text));
    }
    if (type == TType::kCIMTypeDateTime) return ReadTime();
    if (type == TType::kCIMTypeReference) return ReadReference();
    return NModel::VisitType(type, [&](auto native) -> TCIMValue {
      using T = typename decltype(native)::TType;
      if constexpr (std::is_arithmetic_v<T>) {
        T number;
        std::memcpy(&number, ReadNative(type).data(), sizeof number);
        return TCIMValue(number);
      } else {
        fInput.Fail("a content of no type");
      }
    });
  }

  TCIMValue ReadTime() {
    const bool isInterval = fInput.Byte() != 0;
    const auto year = fInput.Number<std::uint16_t>();
    const auto month = fInput.Number<std::uint16_t>();
    const auto day = fInput.Number<std::uint32_t>();
    const auto hour = fInput.Number<std::uint16_t>();
    const auto minute = fInput.Number<std::uint16_t>();
    const auto second = fInput.Number<std::uint16_t>();
    const auto microsecond = fInput.Number<std::uint32_t>();
    std::int16_t offset = 0;
    std::memcpy(&offset, fInput.Take(sizeof offset).data(), sizeof offset);
    fInput.Hold(sizeof(TCIMDateTime) + kStoredBytes * 8);
    if (isInterval) return TCIMValue(TCIMDateTime(day, hour, minute, second, microsecond));
    return TCIMValue(TCIMDateTime(year, month, day, hour, minute, second, microsecond, offset));
  }

  TCIMValue ReadReference() {
    TReadClass& read = Element(fClasses);
    if (++fReferenceDepth > kMaxImageDepth) fInput.Fail("references nested too deep");
    fInput.Hold(kReferenceBytes);
    TCIMReference withoutKeys(read.fNamespace, {});
    withoutKeys.SetClass(read.fClass);
    TCIMValue value(withoutKeys);
    TCIMReferenceImpl& reference = *value.FindReference()->GetBody();
    ForEach([&] {
      fInput.Hold(kMemberBytes);
      const auto& decl = Element(read.fMembers);
      reference.BindKey(decl->GetName(), ReadContent(decl->GetType()));
    });
    --fReferenceDepth;
    return value;
  }

  /// Reads the length of a list, and calls `read` as often.
  template <typename TRead>
  void ForEach(const TRead& read) {
    for (auto count = fInput.Number<std::uint64_t>(); count != 0; --count) read();
  }

  /// Reads the number of an element, and returns it.
  template <typename T>
  T& Element(std::vector<T>& all) {
    return ElementAt(all, fInput.Number<std::size_t>());
  }
  template <typename T>
  T& ElementAt(std::vector<T>& all, std::size_t number) {
    if (number >= all.size()) fInput.Fail("an unknown number");
    return all[number];
  }

  TImageInput& fInput;
  std::vector<boost::shared_ptr<ICIMNamespace>> fNamespaces;
  std::vector<boost::shared_ptr<ICIMQualifierDecl>> fDecls;
  std::vector<TReadClass> fClasses;
  std::size_t fInstancesOf = 0;
  std::vector<std::size_t> fPositions;  // of the properties of the next instances
  std::size_t fReferenceDepth = 0;
  std::size_t fDuplicates = 0;
};

}  // namespace

TImage ReadImage(const std::string& name,
                 const std::function<std::size_t(char*, std::size_t)>& read,
                 std::size_t maxMemory) {
  TImageInput input(read, maxMemory);
  return TImageReader(name, input).Read();
}

}  // namespace NVORNQDX20::NPluginHost
