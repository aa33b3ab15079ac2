// SPDX-License-Identifier: Apache-2.0
#include <qdxplugin_host/image.h>

#include "cimxml/documents.h"

#include <cmath>
#include <limits>

namespace NVORNQDX20 {
namespace {

using NPluginHost::ReadImage;
using NPluginHost::TImage;
using TCIMType = TCIMValue::TCIMType;

constexpr std::size_t kMemory = std::size_t{1} << 24U;

struct TWritten {
  std::string fBytes = {};
  TNames fWarnings = {};
};

TWritten WriteImage(const ICIMNamespace& ns) {
  TWritten written;
  written.fWarnings =
      NPluginHost::WriteImage(ns, [&written](std::string_view bytes) { written.fBytes += bytes; });
  return written;
}

/// In pieces of this size.
TImage ReadImage(const std::string& bytes, const std::string& name = "test", std::size_t piece = 3,
                 std::size_t memory = kMemory) {
  std::string_view rest = bytes;
  const auto read = [&](char* buffer, std::size_t size) {
    const std::size_t count = std::min({size, piece, rest.size()});
    std::copy_n(rest.begin(), count, buffer);
    rest.remove_prefix(count);
    return count;
  };
  return ReadImage(name, read, memory);
}

TCIMValue Number(double number) { return TCIMValue(number); }

/// All types, nulls and arrays; references to the own class, into each other and out of the
/// namespace; overriding, static values, methods and qualifiers.
TNamespace MakeFilled(std::size_t longest = 20) {
  const TNamespace other = MakeRepositoryNamespace("root/other");
  for (const char* name : {"Key", "Strange"}) {
    other->CreateQualifierDecl(name, false, kScopeAny, kFlavorToSubclass, {})->Commit();
  }
  AddClass(other, "Far", {{"Id", 0U}}, {{"Text", ""}});
  AddInstance(other, "Far", {{"Id", 7U}});
  const TNamespace ns = MakeNamespace();
  const auto all =
      AddClass(ns, "All", {{"Id", ""}, {"When", TCIMDateTime("20200101112000.000000+060")}},
               {{"Bool", true},
                {"Small", static_cast<signed char>(-7)},
                {"Large", 18446744073709551615UL},
                {"Low", std::numeric_limits<long>::min()},
                {"Real32", 0.1F},
                {"Real64", Number(-0.0)},
                {"Text", kNoText},
                {"Time", TCIMDateTime(123456, 1, 2, 3, 4)},
                {"Texts", TCIMValue(TCIMType::kCIMTypeString, 5)},
                {"Numbers", TCIMValue(TCIMType::kCIMTypeUint16, 3)}});
  AddDerived(ns, "More", all, {{"Bool", false}, {"Extra", std::string(100, 'x')}});
  ns->GetClass("More", {})->SetStaticPropertyValue("Small", static_cast<signed char>(3), {});
  const std::vector<TCIMValue> texts = {TCIMValue("a"), kNoText,
                                        TCIMValue(std::string(longest, 'b'))};
  AddInstance(ns, "All",
              {{"Id", "short"}, {"Texts", TCIMValue(TCIMType::kCIMTypeString, 5, texts)}});
  AddInstance(ns, "All",
              {{"Id", "a text that is longer"}, {"Text", "\xC3\xA9"}, {"Real64", Number(NAN)}});
  AddInstance(
      ns, "More",
      {{"Id", ""}, {"Numbers", TCIMValue(TCIMType::kCIMTypeUint16 | TCIMType::kCIMTypeArray, 0U)}});
  const auto from = NullReference(ns, "All");
  AddClass(ns, "Link", {{"From", from}, {"Far", NullReference(other, "Far")}}, {{"To", from}});
  const auto first = ReferenceTo(ns, R"(All.Id="short",When="20200101112000.000000+060")");
  AddInstance(ns, "Link",
              {{"From", first}, {"Far", ReferenceTo(other, "Far.Id=\"7\"")}, {"To", first}});
  AddClass(ns, "Chain", {{"Link", NullReference(ns, "Link")}});
  const auto link =
      AddInstance(ns, "Chain", {{"Link", [&] {
                                   TCIMReference path(ns, {});
                                   path.SetClassName("Link");
                                   path.AddKeyValue("From", first);
                                   path.AddKeyValue("Far", ReferenceTo(other, "Far.Id=\"7\""));
                                   return TCIMValue(path);
                                 }()}});
  // Classes that refer to each other, and to a subclass.
  const auto one = AddClass(ns, "One", {{"Id", ""}}, {{"Two", from}, {"Sub", from}});
  AddClass(ns, "Two", {{"Id", ""}}, {{"One", NullReference(ns, "One")}});
  AddDerived(ns, "OneSub", one, {});
  AddInstance(ns, "Two", {{"Id", "2"}, {"One", ReferenceTo(ns, "OneSub.Id=\"3\"")}});
  SetReferenceDefault(*one, "Two", NullReference(ns, "Two"));
  SetReferenceDefault(*one, "Sub", NullReference(ns, "OneSub"));
  // The class has the name of one in the other namespace, and values that refer to itself.
  AddClass(other, "Self", {{"Far", 0U}});
  AddClass(ns, "Before", {{"Id", ""}}, {{"Other", NullReference(other, "Self")}});
  const auto self = ns->CreateClass("Self", nullptr, {});
  TCIMReference toSelf(ns, {});
  toSelf.SetClass(self);
  Qualify(ns, self->CreatePropertyDecl("Id", "", {}), "Key", true)->Commit();
  self->CreatePropertyDecl("Class", TCIMValue(toSelf), {})->Commit();
  self->Commit({});
  AddInstance(ns, "Self", {{"Id", "own"}});
  SetReferenceDefault(*one, "Two", ReferenceTo(ns, "Two.Id=\"2\""));
  SetReferenceDefault(*one, "Sub", ReferenceTo(ns, "OneSub.Id=\"3\""));
  self->SetStaticPropertyValue("Class", ReferenceTo(ns, "Self.Id=\"own\""), {});
  return ns;
}

void ReadByName(const ICIMNamespace& ns) {
  const auto readInstance = [](const auto& instance) {
    instance->EnumerateProperties(
        [](const auto& property) { return property->GetValue().IsNull() || true; }, {});
    return true;
  };
  ns.EnumerateClasses(
      [&](const auto& root) {
        root->EnumerateInstances(readInstance, true, {});
        return true;
      },
      {});
}

TEST(Image, GivesTheSameNamespace) {
  std::vector<TNamespace> namespaces = {MakeFilled(120000)};
  for (const std::string& name : NamesIn(QDX_EVERYTHING)) {
    namespaces.push_back(Read(QDX_EVERYTHING, name));
  }
  for (const TNamespace& ns : namespaces) {
    const TWritten written = WriteImage(*ns);
    EXPECT_EQ(written.fWarnings, TNames{});
    const TImage image = ReadImage(written.fBytes, ns->GetName({}), 100000);
    EXPECT_EQ(image.fWarnings, TNames{});
    EXPECT_EQ(Written({image.fNamespace}), Written({ns}));
    // Which class of a circle is the first depends on where the other begins.
    EXPECT_EQ(WriteImage(*image.fNamespace).fBytes.size(), written.fBytes.size());
    ReadByName(*ns);  // then numbers are read as values
    EXPECT_EQ(WriteImage(*ns).fBytes, written.fBytes);
  }
}

/// A class with a key, a reference to itself.
boost::shared_ptr<ICIMClass> AddLink(const TNamespace& ns, const std::string& name) {
  const auto link = ns->CreateClass(name, nullptr, {});
  TCIMValue self(TCIMType::kCIMTypeReference, 0);
  self.SetReferencedClass(link);
  Qualify(ns, link->CreatePropertyDecl("Next", self, {}), "Key", true)->Commit();
  link->Commit({});
  return link;
}

/// Each class needs the next one; the last one needs the first, which closes a circle.
void AddCircle(const TNamespace& ns, int length) {
  std::vector<boost::shared_ptr<ICIMClass>> links;
  for (int i = 0; i < length; ++i) links.push_back(AddLink(ns, "C" + std::to_string(i)));
  for (int i = 0; i < length; ++i) {
    TCIMValue next(TCIMType::kCIMTypeReference, 0);
    next.SetReferencedClass(links[static_cast<std::size_t>((i + 1) % length)]);
    SetReferenceDefault(*links[static_cast<std::size_t>(i)], "Next", next);
  }
}

TEST(Image, NeedsNoStackForClassesThatNeedOneAnother) {
  const TNamespace other = MakeRepositoryNamespace("root/other");
  other->CreateQualifierDecl("Key", false, kScopeAny, kFlavorToSubclass, {})->Commit();
  AddCircle(other, 12000);
  const TNamespace far = MakeNamespace();
  AddClass(far, "Before", {{"Id", ""}}, {{"Other", NullReference(other, "C0")}});
  const TNamespace near = MakeNamespace();
  AddCircle(near, 12000);
  for (const TNamespace& ns : {near, far}) {
    const TWritten written = WriteImage(*ns);
    EXPECT_EQ(written.fWarnings, TNames{});
    const TImage image = ReadImage(written.fBytes, "test", 100000, 8 * kMemory);
    EXPECT_TRUE(Written({image.fNamespace}) == Written({ns}));
  }
}

TEST(Image, TellsWhatItLeavesOutAndWhatItReplaces) {
  const TNamespace ns = MakeNamespace();
  AddClass(ns, "A", {{"Id", ""}});
  AddInstance(ns, "A", {{"Id", std::string("a\0\x1b\xff", 4)}});
  AddInstance(ns, "A", {{"Id", std::string("a\x1b\x1b\x1b", 4)}});
  const TImage image = ReadImage(WriteImage(*ns).fBytes);
  EXPECT_EQ(image.fWarnings, (TNames{"1 instance with the keys of another one was left out",
                                     "6 characters that a document cannot hold were replaced"}));
}

TEST(Image, LeavesOutInstancesWhoseKeysItCannotHold) {
  const TNamespace ns = MakeNamespace();
  const auto cimClass = ns->CreateClass("A", nullptr, {});
  TCIMValue null(TCIMType::kCIMTypeReference, 0);
  null.SetReferencedClass(cimClass);
  Qualify(ns, cimClass->CreatePropertyDecl("Id", null, {}), "Key", true)->Commit();
  cimClass->Commit({});
  TCIMReference deep(ns, {});
  deep.SetClassName("A");
  for (int i = 0; i < 150; ++i) {
    TCIMReference inner(deep);
    deep.Clear();
    deep.SetNamespace(ns);
    deep.SetClassName("A");
    deep.AddKeyValue("Id", TCIMValue(inner));
    if (i % 50 == 0) AddInstance(ns, "A", {{"Id", TCIMValue(deep)}});
  }
  const TWritten written = WriteImage(*ns);
  EXPECT_EQ(written.fWarnings,
            (TNames{"1 instance that lacks a key was left out, the first: A",
                    "1 reference that cannot be followed was left out, the first: Id"}));
  EXPECT_EQ(ReadImage(written.fBytes).fWarnings, TNames{});
}

/// Returns the status, or kQDXStatusOK for a namespace, which must be whole.
EQDXStatusCode TryToRead(const std::string& bytes, std::size_t memory = kMemory) {
  TImage image;
  try {
    image = ReadImage(bytes, "test", bytes.size(), memory);
  } catch (const TQDXException& failure) {
    return failure.GetStatusCode();
  }
  EXPECT_FALSE(WriteImage(*image.fNamespace).fBytes.empty());
  return kQDXStatusOK;
}

TEST(Image, IsRefusedIfItIsCutOrTooLarge) {
  const std::string bytes = WriteImage(*MakeFilled()).fBytes;
  for (std::size_t size = 0; size<bytes.size(); size += size> 2000 ? 97 : 1) {
    EXPECT_EQ(TryToRead(bytes.substr(0, size)), kQDXStatusInvalidPlugin) << size;
  }
  EXPECT_EQ(TryToRead(bytes + "\1"), kQDXStatusInvalidPlugin);
  EXPECT_EQ(TryToRead(bytes, 10000), kQDXStatusInvalidPlugin);
  // A length of 100 MB without the bytes needs no memory.
  EXPECT_EQ(TryToRead(std::string("qdx image 1\n\1\x80\x80\x80\x30")), kQDXStatusInvalidPlugin);
}

TEST(Image, IsReadWithAnyByteChanged) {
  const std::string bytes = WriteImage(*MakeFilled()).fBytes;
  std::size_t refused = 0;
  for (std::size_t i = 0; i < bytes.size(); ++i) {
    std::string changed = bytes;
    changed[i] = static_cast<char>(changed[i] ^ (i % 3 == 0 ? 0x80 : 1));
    refused += TryToRead(changed) != kQDXStatusOK ? 1 : 0;
  }
  EXPECT_GT(refused, bytes.size() / 3);
}

}  // namespace
}  // namespace NVORNQDX20
