// SPDX-License-Identifier: Apache-2.0
#include <qdxcore/interfaces.h>
#include <qdxcore/os_specific.h>
#include <qdxcore/registry.h>
#include <qdxcore/status.h>

#include <chrono>
#include <filesystem>
#include <limits>
#include <memory>
#include <thread>

#include <sys/stat.h>

#include "cimxml/documents.h"
#include "support/faulty_provider.h"

namespace NVORNQDX20 {
namespace {

namespace fs = std::filesystem;

std::unique_ptr<INamespaceConsumer> MakeConsumer() {
  return std::unique_ptr<INamespaceConsumer>(TOSSpecific::LoadNSCLibrary("cimxml"));
}

boost::shared_ptr<INamespaceProvider> Provider() {
  TOSSpecific::LoadNSPLibrary("cimxml");
  return TRootObject::GetNamespaceProviderManager()->GetNamespaceProvider("cimxml");
}

TNamespace MakeOne(const std::string& className) {
  const TNamespace ns = MakeRepositoryNamespace("root/" + className);
  AddClass(ns, className, {}, {{"s", ""}});
  for (int i = 0; i < 1000; ++i) AddInstance(ns, className, {{"s", std::string(100, 'a')}});
  return ns;
}

TEST(CIMXMLDocumentWriter, CompressesByTheNameAndAlwaysAlike) {
  const TTempDir folder;
  const std::string first = (folder.Path() / "a.xml.gz").string();
  const std::string second = (folder.Path() / "b.gz").string();
  const TNamespace ns = MakeOne("C");
  for (const std::string& file : {first, second}) Write(file, {ns});
  const std::string bytes = ReadWholeFile(first);
  // No flags, no time, unknown system.
  EXPECT_EQ(bytes.substr(0, 10), std::string("\x1F\x8B\x08\0\0\0\0\0\0\xFF", 10));
  EXPECT_EQ(ReadWholeFile(second), bytes);
  EXPECT_EQ(ReadAndWritten(first), Written({ns}));
  EXPECT_LT(bytes.size(), Written({ns}).size() / 20);
}

TEST(CIMXMLDocumentWriter, WritesTextsOfAnyLength) {
  constexpr std::size_t kBuffer = 1 << 16;
  const TNamespace ns = MakeNamespace();
  AddClass(ns, "C", {{"k", 0U}}, {{"s", ""}});
  unsigned int key = 0;
  for (const std::size_t length : {kBuffer - 200, kBuffer - 1, kBuffer, kBuffer + 1, 5 * kBuffer}) {
    for (const std::string end : {"", "&", "x"}) {
      AddInstance(ns, "C", {{"k", ++key}, {"s", std::string(length, 'a') + end}});
    }
  }
  const TTempDir folder;
  const std::string plain = (folder.Path() / "a.xml").string();
  const std::string compressed = plain + ".gz";
  Write(plain, {ns});
  Write(compressed, {ns});
  const std::string written = ReadWholeFile(plain);
  EXPECT_GT(written.size(), 3 * 8 * kBuffer);
  EXPECT_TRUE(ReadAndWritten(plain) == written);
  EXPECT_TRUE(ReadAndWritten(compressed) == written);
}

TEST(CIMXMLDocumentWriter, KeepsAFilesModeAndMakesNewOnesPrivate) {
  const TTempDir folder;
  const std::string old = folder.Write("old.xml", std::string(1 << 20, 'x')).string();
  const std::string fresh = (folder.Path() / "fresh.xml").string();
  ::chmod(old.c_str(), 0644);
  const mode_t mask = ::umask(0);
  for (const std::string& file : {old, fresh}) Write(file, {MakeOne("C")});
  ::umask(mask);
  EXPECT_EQ(fs::status(old).permissions(), fs::perms(0644));
  EXPECT_EQ(fs::status(fresh).permissions(), fs::perms(0600));
  EXPECT_EQ(ReadWholeFile(old), ReadWholeFile(fresh));
}

TEST(CIMXMLDocumentWriter, LeavesOutOnlyWhatTheFormatHasNoElementFor) {
  using TType = TCIMValue::TCIMType;
  const TCIMValue tooLong(TCIMDateTime(4000000000U, 1, 1, 1, 1));
  const TCIMValue noDate(TType::kCIMTypeDateTime, 0);
  const TNamespace ns = MakeNamespace();
  AddClass(ns, "C", {{"k", noDate}},
           {{"a", TCIMValue(TType::kCIMTypeDateTime, 0, {tooLong, TCIMDateTime(1, 2, 3, 4, 5)})},
            {"d", tooLong},
            {"r", TCIMValue(TType::kCIMTypeReference, 2)}});
  AddInstance(ns, "C", {{"k", tooLong}});
  AddInstance(ns, "C", {{"k", TCIMDateTime(1, 2, 3, 4, 5)}});
  const TLogCapture log;
  const TDocumentFile file("");
  Write(file.Path(), {ns});
  // Of the declarations three, an instance, and two values of the other.
  EXPECT_EQ(log.Messages(),
            TNames{"1 cimxml: 6 values that CIM-XML cannot hold were left out of " + file.Path() +
                   ", the first: test:C.a: a date-time longer than 25 characters"});
  const std::string written = ReadWholeFile(file.Path());
  EXPECT_NE(written.find("<VALUE.ARRAY><VALUE.NULL/><VALUE>00000001020304.000005:000</VALUE>"),
            std::string::npos);
  EXPECT_EQ(written.find("\"r\""), std::string::npos);
  EXPECT_EQ(Written({Read(file.Path(), "test")}), written);
}

TEST(CIMXMLDocumentWriter, WritesRealsWithAPointAndOnlyFiniteOnes) {
  using L = std::numeric_limits<double>;
  const std::pair<TCIMValue, std::string> kCases[] = {
      {2.0, "2.0"},
      {2.0F, "2.0"},
      {-0.0, "-0.0"},
      {0.1F, "0.1"},
      {1e21, "1.0e+21"},
      {-2.5e-300, "-2.5e-300"},
      {1.0 / 3, "0.3333333333333333"},
      {L::quiet_NaN(), ""},
      {L::infinity(), ""},
      {-std::numeric_limits<float>::infinity(), ""}};
  const TLogCapture log;
  for (const auto& [value, text] : kCases) {
    const TNamespace ns = MakeNamespace();
    AddClass(ns, "C", {}, {{"p", value}});
    const std::string tag = text.empty() ? "<VALUE.NULL/>" : "<VALUE>" + text + "</VALUE>";
    AddClass(ns, "D", {}, {{"q", TCIMValue(value.GetType(), 0, {value})}});
    const std::string written = Written({ns});
    EXPECT_EQ(written.find("<VALUE>" + text + "</VALUE></PROPERTY>") == std::string::npos,
              text.empty());
    EXPECT_NE(written.find("<VALUE.ARRAY>" + tag), std::string::npos) << text;
  }
  ASSERT_EQ(log.Messages().size(), 3U);
  EXPECT_NE(log.Messages()[0].find(": 2 values that CIM-XML cannot hold"), std::string::npos);
}

TEST(CIMXMLDocumentWriter, TellsTheSizeOfAnArrayOnlyWhereItIsFixed) {
  using TType = TCIMValue::TCIMType;
  const auto array = [](unsigned int size, const std::vector<TCIMValue>& elements) {
    return TCIMValue(TType::kCIMTypeSint32, size, elements);
  };
  const TCIMValue null(TType::kCIMTypeSint32, 2), one = array(2, {1}), two = array(2, {1, 2});
  struct {
    TCIMValue fDeclared, fValue;
    std::size_t fTold;
  } const kCases[] = {{null, two, 2},
                      {two, null, 2},
                      {two, two, 2},
                      // A maximum, or a size that only one value has.
                      {null, one, 0},
                      {two, one, 0},
                      {one, two, 0},
                      {array(0, {}), two, 0}};
  for (const auto& [declared, value, told] : kCases) {
    const TNamespace ns = MakeNamespace();
    AddClass(ns, "C", {}, {{"p", declared}});
    AddInstance(ns, "C", {{"p", value}});
    const std::string written = Written({ns});
    std::size_t count = 0;
    for (std::size_t at = 0; (at = written.find("ARRAYSIZE=\"2\"", at)) != std::string::npos;
         ++at) {
      ++count;
    }
    EXPECT_EQ(count, told) << written;
  }
}

TEST(CIMXMLDocumentWriter, ServesReadersOfTheFirstVersions) {
  const TDocumentFile file("");
  const TLogCapture log;
  NCIMXML::TDocumentWriter writer(file.Path(), NCIMXML::kOldReaders);
  for (const std::string& name : NamesIn(QDX_EVERYTHING)) {
    writer.AddNamespace(*Read(QDX_EVERYTHING, name));
  }
  writer.Close();
  EXPECT_EQ(log.Messages(),
            TNames{"1 cimxml: 4 values that CIM-XML cannot hold were left out of " + file.Path() +
                   ", the first: root/near:List: an array with null elements"});
  const std::string written = ReadWholeFile(file.Path());
  EXPECT_EQ(written.find("VALUE.NULL"), std::string::npos);
  EXPECT_EQ(written.find("EmbeddedObject="), std::string::npos);
  EXPECT_NE(written.find(R"(DTDVERSION="2.0")"), std::string::npos);
  EXPECT_NE(written.find(R"(<METHOD NAME="Stop" TYPE="uint32">)"), std::string::npos);
  EXPECT_NE(written.find(R"(<KEYVALUE VALUETYPE="numeric">-3<)"), std::string::npos);
  // The type of the key is that of the property.
  const TCIMReference to = Read(file.Path(), "root/near")
                               ->GetClass("Link", {})
                               ->GetPropertyDecl("To", {})
                               ->GetDefaultValue();
  EXPECT_EQ(to.GetPath(), "Target.Id=\"-3\"");
}

TEST(CIMXMLDocumentWriter, WritesWhatClassesInheritAndDoNotEnumerate) {
  const TNamespace ns = MakeNamespace();
  const auto top = AddClass(ns, "T_Top", {{"Id", 0}}, {{"Name", ""}});
  AddDerived(ns, "T_Derived", top, {{"Id", 0}, {"Size", 0}});
  AddInstance(ns, "T_Derived", {{"Id", 1}, {"Name", "n"}, {"Size", 2}});
  const auto faults = boost::make_shared<TFaults>();
  faults->fHidesInherited = true;
  const TDocumentFile file(Written({MakeFaultyNamespace(ns, faults)}));
  EXPECT_EQ(ReadAndWritten(file.Path()), Written({ns}));
}

TEST(CIMXMLDocumentCache, ReadsAgainOnlyWhatHasChanged) {
  const TDocumentFile file(Document({}));
  const TNamespace first = Read(file.Path());
  EXPECT_EQ(Read(file.Path()), first);
  std::ofstream(file.Path()) << Document({Class("")});
  EXPECT_NE(Read(file.Path())->GetClass("C", {}), nullptr);
  const auto time = fs::last_write_time(file.Path());
  std::this_thread::sleep_for(std::chrono::milliseconds(20));       // a tick of the file system
  std::ofstream(file.Path()) << Document({Class("", "NAME='D'")});  // as long as before
  fs::last_write_time(file.Path(), time);
  EXPECT_NE(Read(file.Path())->GetClass("D", {}), nullptr);
  EXPECT_QDX_STATUS(Read(file.Path(), "root/other"), kQDXStatusNotFound);
}

TEST(CIMXMLPlugins, TakeTheFileFromTheirOptions) {
  const TNamespace first = MakeOne("A"), second = MakeOne("B");
  const TDocumentFile file("");
  const auto consumer = MakeConsumer();
  consumer->Consume(first, {{"file", file.Path()}, {"more", true}});
  consumer->Consume(second, {{"file", file.Path()}});
  EXPECT_EQ(ReadWholeFile(file.Path()), Written({first, second}));
  EXPECT_EQ(Written({Provider()->GetNamespace("root/B", {{"file", file.Path()}})}),
            Written({second}));
}

TEST(CIMXMLPlugins, DoNothingWithoutAFile) {
  const auto called = [](const std::string&) -> bool { throw TQDXException(kQDXStatusFail); };
  EXPECT_NO_THROW(Provider()->EnumerateNamespaceNames(called, {}));
  EXPECT_QDX_STATUS(Provider()->GetNamespace("root/cimv2", {}), kQDXStatusNotFound);
  EXPECT_QDX_STATUS(NamesIn("/nonexistent"), kQDXStatusFileNotFound);
  EXPECT_QDX_STATUS(MakeConsumer()->Consume(MakeOne("C"), {}), kQDXStatusRequiredContextMissing);
  const TLogCapture log;
  EXPECT_QDX_STATUS(NamesIn("/"), kQDXStatusFileSystemError);
  EXPECT_EQ(log.Messages(), TNames{"0 cimxml: /: Is a directory"});
}

/// Returns the classes of all instances.
TNames ClassesOfInstancesIn(const ICIMNamespace& ns) {
  std::vector<boost::shared_ptr<ICIMClass>> roots;
  ns.EnumerateClasses(TAddToVectorCallback(roots), {});
  TNames names;
  for (const auto& root : roots) {
    const auto add = [&names](const boost::shared_ptr<ICIMInstance>& each) {
      return names.push_back(each->GetClass({})->GetName({})), true;
    };
    root->EnumerateInstances(add, true, {});
  }
  std::sort(names.begin(), names.end());
  return names;
}

TEST(CIMXMLDocument, KeepsTheInstancesOfChosenClasses) {
  const auto named = [](const std::string& cimClass, const std::string& others = "") {
    return Tag("INSTANCENAME", "CLASSNAME='" + cimClass + "'", Binding("Id", "", "7")) +
           Tag("INSTANCE", "CLASSNAME='" + cimClass + "'", others);
  };
  const std::string id =
      Tag("PROPERTY", "NAME='Id' TYPE='string'",
          "<QUALIFIER NAME='Key' TYPE='boolean'><VALUE>true</VALUE></QUALIFIER>");
  const std::string wild =
      "<PROPERTY NAME='w' TYPE='datetime'><VALUE>2004031514****.******+060</VALUE></PROPERTY>";
  const std::string toOther =
      "<PROPERTY.REFERENCE NAME='r'><VALUE.REFERENCE>"
      "<INSTANCENAME CLASSNAME='Other'><KEYBINDING NAME='Id'><KEYVALUE>7</KEYVALUE></KEYBINDING>"
      "</INSTANCENAME></VALUE.REFERENCE></PROPERTY.REFERENCE>";
  TNames objects{named("Sub"),
                 named("Other"),
                 named("Undeclared"),
                 Class(id + "<PROPERTY NAME='w' TYPE='datetime'/>"
                            "<PROPERTY.REFERENCE NAME='r' REFERENCECLASS='Other'/>"),
                 Class("", "NAME='Sub' SUPERCLASS='C'"),
                 Class(id + "<PROPERTY NAME='t' TYPE='string'/>", "NAME='Other'"),
                 named("C", wild + toOther)};
  const std::string text(1000, 'x');
  for (int i = 0; i < 3000; ++i) {
    const std::string number = "<VALUE>" + std::to_string(i) + "</VALUE></PROPERTY>";
    objects.push_back(Tag("INSTANCE", "CLASSNAME='Other'",
                          "<PROPERTY NAME='Id' TYPE='string'>" + number +
                              "<PROPERTY NAME='t' TYPE='string'><VALUE>" + text +
                              "</VALUE></PROPERTY>"));
  }
  const TDocumentFile file(Document(objects));
  NCIMXML::TReadingLimits limits;
  limits.fMemory = 1 << 20;
  const TLogCapture log;
  EXPECT_QDX_STATUS(NCIMXML::ReadDocumentFile(file.Path(), limits),
                    kQDXStatusInvalidDataCollectionDocument);
  limits.fInstancesOf = TNames{"vornsg_unavailablevalue"};  // each instance may add a reason
  EXPECT_QDX_STATUS(NCIMXML::ReadDocumentFile(file.Path(), limits),
                    kQDXStatusInvalidDataCollectionDocument);
  const struct {
    TNames fChosen;
    TNames fClasses;
  } kCases[] = {
      {{"c"}, {"C", "Sub", "VORNSG_UnavailableValue"}},
      {{"Sub", "Undeclared"}, {"Sub", "Undeclared"}},
      {{}, {}},
  };
  for (const auto& each : kCases) {
    limits.fInstancesOf = each.fChosen;
    const auto ns = NCIMXML::ReadDocumentFile(file.Path(), limits)->GetNamespace("root/cimv2", {});
    EXPECT_EQ(ClassesOfInstancesIn(*ns), each.fClasses);
    if (each.fChosen == TNames{"c"}) {
      const auto kept = ns->GetClass("C", {})->GetInstance(ReferenceTo(ns, "C.Id=\"7\""), {});
      EXPECT_EQ(kept->GetProperty("r", {})->GetValue().ToString(10), "Other.Id=\"7\"");
    }
    EXPECT_NO_THROW(ns->GetClass("Undeclared", {}));
  }
  EXPECT_EQ(log.Messages().size(), 2U);  // of the first two
}

}  // namespace
}  // namespace NVORNQDX20
