// SPDX-License-Identifier: Apache-2.0
#include "describe/tables.h"

#include "support/expect_status.h"

#include <iterator>
#include <sstream>
#include <string>
#include <vector>

#include <gtest/gtest.h>

namespace NVORNQDX20::NDescribe {
namespace {

using TProvider = boost::shared_ptr<INamespaceProvider>;

struct TPort {
  std::string fName;
  TNumber fSpeed;
  std::vector<std::string> fAddresses;
};

struct TFastPort : TPort {
  std::string fPeer;
};

std::string HostName(const TRequest& request) { return request.fRoot + "/etc"; }

TTable<TPort> Ports() {
  return {"T_Port",
          "A port.",
          {{"Host", "Whose.", HostName, kKey, ESecret::kHostName},
           {"Class", "What.", kClassName, kKey},
           {"Name", "Which.", &TPort::fName, kKey},
           {"Speed", "How fast.", &TPort::fSpeed, TUnit{"bit / second"}, kGauge, kVolatile},
           {"Addresses", "Where.", &TPort::fAddresses, ESecret::kAddress}}};
}

std::vector<TFastPort> ListPorts(const TRequest&) {
  return {{{"a", 7U, {"x", "y"}}, "b"}, {{"b", Missing("no link"), {}}, "c"}};
}

TTable<TFastPort> FastPorts() {
  return TTable<TFastPort>{
      "T_FastPort",
      "A fast port.",
      ListPorts,
      {{"Duplex", "How.", [](const TFastPort&) { return 2L; },
        TEnumeration{{1, "Half"}, {2, "Full"}}},
       {"Count", "How many.", [](const TFastPort& port) { return port.fPeer.size(); }, kCounter}}}
      .DerivedFrom(Ports());
}

struct TLink {
  TInstanceName fFrom, fTo;
};

/// The links of both ports, and two whose first end is missing.
std::vector<TLink> ListLinks(const TRequest&, const ICIMNamespace& ns) {
  std::vector<TLink> links = {{{"T_Port", "x"}, {}}, {{"T_Port", "y"}, {}}};
  const auto ports = ns.GetClass("T_FastPort", {});
  NModel::ForEachInstance(*ports, [&](const ICIMInstance& port) {
    const std::string name = port.GetProperty("Name", {})->GetValue();
    links.push_back({{"T_FastPort", name}, {"t_fastport", name == "a" ? "b" : "c"}});
  });
  return links;
}

TTable<TLink> Links() {
  return TTable<TLink>{"T_Link",
                       "A cable.",
                       ListLinks,
                       {{"From", "One end.", &TLink::fFrom, kKey, TRefersTo{"T_Port"}},
                        {"To", "The other.", &TLink::fTo, TRefersTo{"T_Port"}}}}
      .AsAssociation();
}

TTable<TOnly> Nothing(const TMissing& why) {
  return {"T_Nothing",
          "What is not there.",
          [why](const TRequest&) -> TReading<TOnly> { return why; },
          {{"Id", "Which.", Constant("1"), kKey}}};
}

TProvider Provider() {
  return MakeProvider("test", "root/test",
                      {Ports(), Links(), FastPorts(), Nothing(Missing("it was taken"))});
}

/// "name (key, PUnit=byte) = value; " for each property, in the order of the names.
std::string DeclarationOf(const ICIMClass& cimClass) {
  std::ostringstream text;
  for (const auto& [decl, isKey] : NModel::PropertiesOf(cimClass)) {
    text << decl->GetName() << ' ' << decl->GetType().ToString() << '(';
    decl->EnumerateQualifiers([&text](const boost::shared_ptr<ICIMQualifier>& qualifier) {
      const std::string& name = qualifier->GetDecl()->GetName();
      if (name != "Description") text << name << '=' << qualifier->GetValue().ToString(10) << ' ';
      return true;
    });
    text << ") ";
  }
  return text.str();
}

TEST(Tables, DeclareTheirClasses) {
  const auto ns = Provider()->GetNamespace("ROOT/Test", {});
  const auto ports = ns->GetClass("T_Port", {});
  EXPECT_EQ(DeclarationOf(*ports),
            "Host string(Key=true VORNSG_Secret=host name ) Class string(Key=true ) "
            "Name string(Key=true ) "
            "Speed uint32(PUnit=bit / second Gauge=true VORNSG_Volatile=true ) "
            "Addresses string(VORNSG_Secret=address ) ");
}

TEST(Tables, GiveInstancesWithReasonsForNulls) {
  const auto ns = Provider()->GetNamespace("root/test", {{"root", "/image"}});
  const std::vector<std::string> ports = {
      "Host=/image/etc Class=T_FastPort Name=a Speed=7 Addresses={ x, y } Duplex=2 Count=1 ",
      "Host=/image/etc Class=T_FastPort Name=b Speed=null Addresses={  } Duplex=2 Count=1 "};
  EXPECT_EQ(InstancesOf(*ns, "T_FastPort"), ports);
  const TMissingReasons reasons = {
      {{"T_FastPort", "b", "Speed"}, "no link"},
      {{"T_Link", "b", "To"}, "there is no t_fastport c"},
      {{"T_Link", "", ""}, "From: there is no T_Port x; From: there is no T_Port y"},
      {{"T_Nothing", "", ""}, "it was taken"}};
  EXPECT_EQ(ReadMissingReasons(*ns), reasons);
}

TEST(Tables, ResolveReferencesByKeys) {
  const auto ns = Provider()->GetNamespace("root/test", {});
  const auto links = NModel::InstancesOf(*ns->GetClass("T_Link", {}));
  ASSERT_EQ(links.size(), 2U);
  const TCIMReference to = links[0]->GetProperty("To", {})->GetValue();
  EXPECT_EQ(TextOf(*boost::dynamic_pointer_cast<ICIMInstance>(to.GetCIMElement())),
            InstancesOf(*ns, "T_FastPort")[1]);
}

TEST(Tables, GiveOnlyTheWantedClassesAndThoseTheyNeed) {
  const std::pair<const char*, std::string> rows[] = {
      {"t_fastport", "T_FastPort T_Port VORNSG_UnavailableValue "},
      {"T_Port", "T_FastPort T_Port VORNSG_UnavailableValue "},
      {"T_Link", "T_FastPort T_Link T_Port VORNSG_UnavailableValue "},
      {"T_None", "VORNSG_UnavailableValue "}};
  for (const auto& [wanted, expected] : rows) {
    const TCIMValue classes(TCIMValue::TCIMType::kCIMTypeString, 0, {TCIMValue(wanted)});
    const auto ns = Provider()->GetNamespace("root/test", {{"classes", classes}});
    std::string names;
    for (const char* name :
         {"T_FastPort", "T_Link", "T_Nothing", "T_Port", "VORNSG_UnavailableValue"}) {
      try {
        if (ns->GetClass(name, {})) names += std::string(name) + " ";
      } catch (const TQDXException&) {
      }
    }
    EXPECT_EQ(names, expected);
    EXPECT_EQ(ReadMissingReasons(*ns).count({"T_Nothing", "", ""}), 0U);
  }
  for (const TOptionsMap& options : {TOptionsMap{{"classes", "T_Port"}}, {{"root", 7}}}) {
    EXPECT_QDX_STATUS(Provider()->GetNamespace("root/test", options), kQDXStatusTypeMismatch);
  }
  EXPECT_QDX_STATUS(Provider()->GetNamespace("root/other", {}), kQDXStatusNotFound);
}

TEST(Tables, HaveNoMoreInstancesThanTheirLimit) {
  const TRequest request{"/", {}};
  const auto ns = Describe<TRequest>(TDescriber("test", "n", 1), {Ports(), FastPorts()}, request);
  EXPECT_EQ(InstancesOf(*ns, "T_FastPort").size(), 1U);
  const TMissingReasons reasons = {
      {{"T_FastPort", "", ""}, "more than 1: the others are left out"}};
  EXPECT_EQ(ReadMissingReasons(*ns), reasons);
}

TRow<TOnly> To(const char* className, const char* key) {
  const auto target = [className, key](const TOnly&) { return TInstanceName{className, key}; };
  return {"To", "", target, TRefersTo{className}};
}

std::string NamesOf(const ICIMNamespace& ns) {
  std::vector<boost::shared_ptr<ICIMClass>> roots;
  ns.EnumerateClasses(TAddToVectorCallback(roots), {});
  std::string names;
  for (const auto& root : roots) {
    for (const auto& each : NModel::WithSubclasses(root))
      names += each->GetName({}).substr(2) + " ";
  }
  return names;
}

TEST(Tables, AreWantedTogetherWithAllThatTheyReferTo) {
  const auto base = Table("T_Base", {Key("0")});
  const auto sub = Table("T_Sub", {To("T_B", "b")}).DerivedFrom(base);
  const std::vector<TClassOf<TRequest>> classes = {
      Table("T_A", {Key("a")}), Table("T_B", {Key("b"), To("T_A", "a")}), base, sub,
      Table("T_Leaf", {{"N", "", Constant(1)}}).DerivedFrom(sub)};
  const std::pair<const char*, std::string> rows[] = {{"T_A", "A "},
                                                      {"T_Sub", "A B Base Sub Leaf "},
                                                      {"T_Base", "A B Base Sub Leaf "},
                                                      {"T_Leaf", "A B Base Sub Leaf "}};
  for (const auto& [wanted, expected] : rows) {
    const TCIMValue names(TCIMValue::TCIMType::kCIMTypeString, 0, {TCIMValue(wanted)});
    const auto ns =
        Describe<TRequest>(TDescriber("test", "n"), classes, {"/", {}}, {{"classes", names}});
    EXPECT_EQ(NamesOf(*ns), expected) << wanted;
  }
}

/// Names of parts, with blanks between them.
TCIMValue Parts(const std::string& names) {
  std::istringstream words(names);
  const std::vector<TCIMValue> parts{std::istream_iterator<std::string>(words), {}};
  return TCIMValue(TCIMValue::TCIMType::kCIMTypeString, 0, parts);
}

TEST(Tables, AreLeftOutWithTheirPart) {
  const auto base = TTable<TOnly>("T_Base", "", {Key("0")});
  const std::vector<TClassOf<TRequest>> classes = {
      base, Table("T_A", {}).DerivedFrom(base).InPart({"a"}),
      Table("T_B", {Key("b"), To("T_A", "0")}).InPart({"b"}),
      TClassOf<TRequest>(Table("T_U", {Key("u")})).InPart({"u", true}),
      Table("T_Tie", {{"By", "", Constant(TInstanceName{"T_Base", "0"}), kKey, TRefersTo{"T_Base"}},
                      To("T_B", "b")})
          .AsAssociation()};
  struct TRowOfParts {
    TOptionsMap fOptions;
    const char* fCounts;  // instances by class
    TMissingReasons fReasons;
  };
  const std::string remedy = "not asked for: --with u";
  const TRowOfParts rows[] = {{{}, "Base:0 A:1 B:1 U:0 Tie:1 ", {{{"T_U", "", ""}, remedy}}},
                              {{{"with", Parts("u")}}, "Base:0 A:1 B:1 U:1 Tie:1 ", {}},
                              {{{"only", Parts("u x")}}, "Base:0 A:0 B:0 U:1 Tie:0 ", {}},
                              {{{"only", Parts("b")}},
                               "Base:0 A:0 B:1 Tie:0 ",
                               {{{"T_B", "", "To"}, "part a is left out"}}},
                              {{{"without", Parts("b u")}},
                               "Base:0 A:1 B:0 Tie:1 ",
                               {{{"T_Tie", "", "To"}, "part b is left out"}}}};
  const auto provider = MakeProvider("test", "root/test", classes);
  for (const auto& [options, counts, reasons] : rows) {
    const auto ns = provider->GetNamespace("root/test", options);
    std::string counted;
    std::istringstream names(NamesOf(*ns));
    for (std::string name; names >> name;) {
      if (name == "RNSG_UnavailableValue") continue;
      counted += name + ":" + std::to_string(InstancesOf(*ns, ("T_" + name).c_str()).size()) + " ";
    }
    EXPECT_EQ(counted, counts);
    EXPECT_EQ(ReadMissingReasons(*ns), reasons) << counts;
  }
  std::string parts;
  dynamic_cast<const IPartsOfProvider&>(*provider).EnumerateParts(
      [&parts](const std::string& name, bool isOnRequest) {
        parts += name + (isOnRequest ? "? " : " ");
        return true;
      });
  EXPECT_EQ(parts, "a b u? ");
}

TEST(Tables, AreCopiedWhereTheyAreUsedAgain) {
  const TTable<TPort> ports = Ports();
  const auto derived = [&ports](const char* name) {
    return TTable<TFastPort>{name, "A port.", ListPorts, {{"Peer", "Who.", &TFastPort::fPeer}}}
        .DerivedFrom(ports);
  };
  const TTable<TFastPort> first = derived("T_First");
  const std::vector<TClassOf<TRequest>> classes = {ports, first, derived("T_Second")};
  const TClassOf<TRequest> again = first;
  EXPECT_EQ(again.fColumns, classes[2].fColumns);
  EXPECT_EQ(again.fColumns.size(), 6U);
  EXPECT_EQ(again.fDeclaration.fName, "T_First");
  const auto ns = Describe(TDescriber("p", "root"), {classes[0], again, classes[2]}, TRequest{});
  for (const char* name : {"T_First", "T_Second"}) {
    EXPECT_EQ(NModel::InstancesOf(*ns->GetClass(name, {})).size(), 2U) << name;
  }
}

TEST(Tables, FindInstancesThatWereAddedSinceTheFirstReference) {
  const TTable<TOnly> base("T_Base", "", {Key("0")});
  const auto from = [](const char* key) {
    return TRow<TOnly>{"From", "",
                       [key](const TOnly&) {
                         return TInstanceName{"T_Base", key};
                       },
                       kKey, TRefersTo{"T_Base"}};
  };
  const auto ns = Describe<TRequest>(
      TDescriber("test", "n"),
      {base, Table("T_A", {Key("a")}).DerivedFrom(base), Table("T_ToA", {from("a")}),
       Table("T_B", {Key("b")}).DerivedFrom(base), Table("T_ToB", {from("b")})},
      {"/", {}});
  EXPECT_EQ(InstancesOf(*ns, "T_ToB").size(), 1U);
}

TEST(Tables, PassOnThatMemoryRanOut) {
  const auto fail = [](const TOnly&) -> bool { throw TQDXException(kQDXStatusOutOfMemory); };
  const auto provider = MakeProvider("test", "root/test", {Table("T_A", {{"Id", "", fail, kKey}})});
  EXPECT_QDX_STATUS(provider->GetNamespace("root/test", {}), kQDXStatusOutOfMemory);
}

}  // namespace
}  // namespace NVORNQDX20::NDescribe
