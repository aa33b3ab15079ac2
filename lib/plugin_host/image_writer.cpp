// SPDX-License-Identifier: Apache-2.0
#include "image_writer.h"

#include <qdxmodel/classes.h>
#include <qdxmodel/counted.h>
#include <qdxmodel/property_reader.h>
#include <qdxmodel/type.h>
#include <qdxplugin_host/image.h>

#include <optional>
#include <utility>

#include "image_format.h"

namespace NVORNQDX20::NPluginHost {

using TType = TCIMValue::TCIMType;

std::vector<std::string> TImageWriter::Write() {
  fOut = kImageStart;
  fNamespace.EnumerateQualifierDecls(
      [this](const auto& decl) {
        (void)NumberOf(*decl);
        return true;
      },
      {});
  std::vector<TClass> roots;
  fNamespace.EnumerateClasses(TAddToVectorCallback(roots), {});
  for (const TClass& root : roots) {
    for (const TClass& each : NModel::WithSubclasses(root)) (void)NumberOf(each);
  }
  // A reference to a class that is not enumerated adds it.
  for (std::size_t i = 0; i < fOwnClasses.size(); ++i) {
    const TClass cimClass = fOwnClasses[i];
    WriteStaticValues(*cimClass);
    WriteInstances(cimClass);
  }
  fOut += static_cast<char>(kEnd);
  Flush();
  std::vector<std::string> warnings;
  for (const TLosses* losses : {&fUnnamed, &fMistyped, &fUnreachable}) {
    if (losses->fCount == 0) continue;
    warnings.push_back(NModel::Counted(losses->fCount, losses->fOne, losses->fMany) +
                       " left out, the first: " + losses->fFirst);
  }
  return warnings;
}

void TImageWriter::Flush() {
  fWrite(fOut);
  fOut.clear();
}

void TImageWriter::Append(const std::string& record) {
  constexpr std::size_t kAtOnce = std::size_t{1} << 18U;
  fOut += record;
  if (fOut.size() >= kAtOnce) Flush();
}

void TImageWriter::WriteStaticValues(const ICIMClass& cimClass) {
  const TWrittenClass& written = *fClasses[0].at(cimClass.GetName({}));
  std::vector<boost::shared_ptr<ICIMProperty>> values;
  cimClass.EnumerateStaticProperties(TAddToVectorCallback(values), {});
  for (const auto& value : values) {
    const std::string& name = value->GetDecl()->GetName();
    const std::size_t position = written.fPositions.at(name);
    std::string record(1, static_cast<char>(kStaticValue));
    PutNumber(record, *written.fNumber);
    PutNumber(record, position);
    PutContent(record, value->GetValue(), written.fMembers[position].fType, name);
    Append(record);
  }
}

void TImageWriter::PutValue(std::string& out, const TCIMValue& value, const std::string& where) {
  PutNumber(out, value.GetType());
  PutContent(out, value, value.GetType(), where);
}

void TImageWriter::PutContent(std::string& out, const TCIMValue& value, TType type,
                              const std::string& where) {
  if (value.GetType() != type) {
    Lose(fMistyped, where);
    out += static_cast<char>(kNull);
  } else if (IsNull(value)) {
    PutNull(out, value);
  } else if (value.IsArray()) {
    const std::vector<TCIMValue>& elements = value;
    out += static_cast<char>(kPresent);
    PutNumber(out, value.GetMaxArraySize());
    PutNumber(out, elements.size());
    for (const TCIMValue& each : elements) PutContent(out, each, NModel::ElementType(type), where);
  } else if (const TCIMReference* const reference = value.FindReference()) {
    PutReference(out, *reference->GetBody(), where);
  } else if (const std::string* const text = value.FindString()) {
    out += static_cast<char>(kPresent);
    PutText(out, *text);
  } else {
    out += static_cast<char>(kPresent);
    PutScalar(out, value);
  }
}

void TImageWriter::PutNull(std::string& out, const TCIMValue& value) {
  const TClass target = value.IsReference() ? value.GetReferencedClass() : nullptr;
  if (value.IsArray() && value.GetMaxArraySize() != 0) {
    out += static_cast<char>(kNullArray);
    PutNumber(out, value.GetMaxArraySize());
  } else if (target) {
    out += static_cast<char>(kNullReference);
    PutNumber(out, NumberOfReferenced(target) + 1);
  } else {
    out += static_cast<char>(kNull);
  }
}

std::uint64_t TImageWriter::NumberOfReferenced(const TClass& target) {
  if (IsBeingDeclared(*target)) return OwnNumber();
  const std::string& name = target->GetName({});
  if (fClasses[0].count(name) != 0 || FindClass(name)) return NumberOf(target);
  const TWrittenClass* const other =
      Written(NumberOf(std::string()), TCIMReferenceImpl(fNoReference, nullptr, {}), *target);
  return other != nullptr ? *other->fNumber : NumberOf(target);
}

std::uint64_t TImageWriter::OwnNumber() {
  fIsFinal = false;
  return fOwnNumber;
}

void TImageWriter::Lose(TLosses& losses, const std::string& where) {
  fIsFinal = false;
  if (!fRehearses) losses.Add(where);
}

void TImageWriter::PutReference(std::string& out, const TCIMReferenceImpl& reference,
                                const std::string& where) {
  const auto ns = reference.GetNamespace();
  const TClass cimClass = reference.GetClass();
  const bool isOwn =
      !ns || ns.get() == &fNamespace || NModel::EqualIgnoringCase(ns->GetName({}), fName);
  if (isOwn && IsBeingDeclared(*cimClass) && reference.GetKeyBindings().empty()) {
    out += static_cast<char>(kPresent);
    PutNumber(out, OwnNumber());
    return PutNumber(out, 0);
  }
  if (isOwn && !fDeclaring.empty() && (IsBeingDeclared(*cimClass) || IsWaitedFor(*cimClass))) {
    out += static_cast<char>(kNull);
    return Lose(fUnreachable, where);
  }
  const TWrittenClass* const target =
      isOwn ? &Written(cimClass) : Written(NumberOf(ns->GetName({})), reference, *cimClass);
  std::string keys;
  bool isReachable = target != nullptr && fReferenceDepth < kMaxImageDepth;
  ++fReferenceDepth;
  for (const auto& [name, key] : reference.GetKeyBindings()) {
    const auto found = isReachable ? target->fPositions.find(name) : target->fPositions.end();
    isReachable = isReachable && found != target->fPositions.end();
    if (!isReachable) break;
    PutNumber(keys, found->second);
    const std::size_t content = keys.size();
    PutContent(keys, key, target->fMembers[found->second].fType, where);
    isReachable = IsNull(key) || IsPresent(keys, content);
  }
  --fReferenceDepth;
  out += static_cast<char>(isReachable ? kPresent : kNull);
  if (!isReachable && fReferenceDepth == 0) Lose(fUnreachable, where);
  if (!isReachable) return;
  PutNumber(out, *target->fNumber);
  PutNumber(out, reference.GetKeyBindings().size());
  out += keys;
}

bool TImageWriter::PutPlainReference(std::string& out, const TPlainReference& reference) {
  if (reference.fNamespace != &fNamespace) return false;
  const TWrittenClass& target = Written(reference.fClass);
  const std::size_t before = out.size();
  out += static_cast<char>(kPresent);
  PutNumber(out, *target.fNumber);
  PutNumber(out, reference.fKeys.size());
  for (const TPlainKey& key : reference.fKeys) {
    const auto found = target.fPositions.find(*key.fName);
    if (found == target.fPositions.end() || target.fMembers[found->second].fType != key.fType) {
      out.resize(before);
      return false;
    }
    PutNumber(out, found->second);
    PutPlain(out, key.fValue, key.fType);
  }
  return true;
}

void TImageWriter::WriteInstances(const TClass& cimClass) {
  const TWrittenClass& written = Written(cimClass);
  std::optional<NModel::TPropertyReader> reader;  // many classes have no instances
  std::string record;
  TPlainReference reference;
  NModel::ForEachInstance(*cimClass, [&](const ICIMInstance& instance) {
    if (!reader) {
      reader.emplace(*cimClass);
      AppendColumns(written, *reader);
    }
    const auto& properties = reader->GetProperties();
    record.assign(1, static_cast<char>(kInstance));
    reader->Begin(instance);
    bool isNamed = true;
    for (std::size_t i = 0; i < properties.size(); ++i) {
      const auto& property = properties[i];
      const std::size_t content = record.size();
      TPlainValue plain;
      if (reader->FindPlain(i, plain)) {
        PutPlain(record, plain, property.fType);
      } else if (!reader->FindPlainReference(i, reference) ||
                 !PutPlainReference(record, reference)) {
        reader->Read(i, [&](const TCIMValue& value) {
          PutContent(record, value, property.fType, property.fName);
        });
      }
      isNamed = isNamed && (!property.fIsKey || IsPresent(record, content));
    }
    if (isNamed) {
      Append(record);
    } else {
      Lose(fUnnamed, cimClass->GetName({}));
    }
  });
}

void TImageWriter::AppendColumns(const TWrittenClass& written,
                                 const NModel::TPropertyReader& reader) {
  const auto& properties = reader.GetProperties();
  std::string record(1, static_cast<char>(kInstancesOf));
  PutNumber(record, *written.fNumber);
  PutNumber(record, properties.size());
  for (const auto& property : properties) {
    PutNumber(record, written.fPositions.at(property.fName));
  }
  Append(record);
}

std::vector<std::string> WriteImage(const ICIMNamespace& ns,
                                    const std::function<void(std::string_view)>& write) {
  return TImageWriter(ns, write).Write();
}

}  // namespace NVORNQDX20::NPluginHost
