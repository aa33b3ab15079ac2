// SPDX-License-Identifier: Apache-2.0
// A provider that does something wrong in one of its operations: init, name, list, open, read (an
// enumeration) or end (its destructor). "forge" sends answers as if it were the worker, and "odd"
// has what is hard to deliver.
#include <qdxcore/registry.h>
#include <qdxplugin_host/message.h>
#include <qdxsystem/unnamed_file.h>
#include <qdxsystem/write.h>

#include "qdx/misbehaving.h"
#include "support/class_builder.h"
#include "support/faulty_provider.h"

using namespace NVORNQDX20;

namespace {

/// Never deleted, since the provider's destructor is called after those of later objects.
const std::string& Service() {
  static const std::string* const service =
      new std::string(ServiceOf(reinterpret_cast<void*>(&Service)));
  return *service;
}

void Do(const std::string& where) {
  const std::size_t end = where.size();
  if (Service().compare(0, end, where) == 0) Misbehave(Service().substr(end + 1));
}

/// References to the own class, to a later one and to another namespace; characters that XML cannot
/// hold; unknown bits of a qualifier's scope.
::TNamespace MakeOdd() {
  ::TNamespace ns = MakeNamespace();
  const ::TNamespace other = MakeRepositoryNamespace("root/other");
  AddClass(other, "Foreign", {{"Key", ""}});
  AddInstance(other, "Foreign", {{"Key", "2"}});
  const auto own = ns->CreateClass("Odd", nullptr, {});
  TCIMValue toOwn(TCIMValue::TCIMType::kCIMTypeReference, 0);
  toOwn.SetReferencedClass(own);
  Qualify(ns, own->CreatePropertyDecl("Key", "", {}), "Key", true)->Commit();
  own->CreatePropertyDecl("Text", "", {})->Commit();
  for (const char* name : {"ToItself", "ToLater"})
    own->CreatePropertyDecl(name, toOwn, {})->Commit();
  own->CreatePropertyDecl("ToOther", NullReference(other, "Foreign"), {})->Commit();
  own->Commit({});
  AddClass(ns, "Later", {}, {}, own);
  AddInstance(ns, "Later", {{"Key", "2"}});
  ns->CreateQualifierDecl("Strange", false, 1U << 30U, 1U << 30U, {})->Commit();
  const auto odd = AddInstance(ns, "Odd",
                               {{"Key", "1"},
                                {"Text", std::string("a\0\1b", 4)},
                                {"ToLater", ReferenceTo(ns, "Later.Key=\"2\"")},
                                {"ToOther", ReferenceTo(other, "Foreign.Key=\"2\"")}});
  odd->SetPropertyValue("ToItself", ReferenceTo(ns, "Odd.Key=\"1\""), {});
  return ns;
}

void Forge(const std::string& what, const std::string& own) {
  constexpr std::uint8_t provider = 3, image = 7;  // kinds in provider_worker.h
  const NPluginHost::TSender worker(WorkerSocket());
  const auto deliver = [&worker](const std::string& of, const std::string& ns,
                                 const std::string& contents) {
    TDescriptor file = OpenUnnamedFile();
    if (WriteAll(file.Get(), contents)) worker.Send(image, {of, ns}, 0, std::move(file));
  };
  if (what == "cut") deliver(own, "root/" + own, "qdx image 1\n\2");
  if (what == "text") deliver(own, "root/" + own, "no image");
  if (what == "empty") deliver(own, "root/" + own, "");
  if (what == "other") deliver("linux", "root/cimv2", "");
  if (what == "pipe") worker.Send(image, {own, "root/" + own}, 0, OpenPipe().fReadEnd);
  if (what == "linux") worker.Send(provider, {"linux"});
}

class TMisbehavingProvider : public INamespaceProvider {
 public:
  // NOLINTNEXTLINE(bugprone-exception-escape): one of the mistakes
  ~TMisbehavingProvider() override { Do("end"); }

  const std::string& GetName(TOptionsMap) const override {
    Do("name");
    return fName;
  }

  void EnumerateNamespaceNames(const TNamespaceNameCallback& callback, TOptionsMap) override {
    Do("list");
    do callback("root/" + fName);
    while (Service() == "list_endless");
  }

  boost::shared_ptr<ICIMNamespace> GetNamespace(const std::string&, TOptionsMap) override {
    Do("open");
    if (Service() == "odd") return MakeOdd();
    if (Service().compare(0, 6, "forge_") == 0) Forge(Service().substr(6), fName);
    const ::TNamespace ns = MakeNamespace();
    AddClass(ns, "A", {{"Key", ""}}, {{"Text", "x"}});
    AddInstance(ns, "A", {{"Key", "1"}});
    const auto faults = boost::make_shared<TFaults>();
    faults->fIsEndless = Service() == "read_endless";
    faults->fWatch = [](const std::string& call) {
      if (call.find("EnumerateInstances") != call.npos) Do("read");
    };
    return MakeFaultyNamespace(ns, faults);
  }

 private:
  const std::string fName = Service() == "a_linux" ? "linux" : Service();
};

[[maybe_unused]] const bool kRegistered = [] {
  Do("init");
  return RegisterProvider<TMisbehavingProvider>();
}();

}  // namespace
