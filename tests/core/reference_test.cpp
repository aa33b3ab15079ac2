// SPDX-License-Identifier: Apache-2.0
#include <qdxcore/reference.h>

#include <qdxcore/interfaces.h>

#include "support/class_builder.h"
#include "support/expect_status.h"
#include "support/faulty_provider.h"
#include "support/log_capture.h"
#include "support/recording_namespace.h"

#include <gtest/gtest.h>
#include <boost/make_shared.hpp>

namespace NVORNQDX20 {
namespace {

class CIMReference : public ::testing::Test {
 protected:
  CIMReference() {
    fClass = AddClass(fNamespace, "T_Disk", {{"Id", 0U}, {"Name", ""}}, {{"Size", 0UL}});
  }

  TCIMReference Reference(const TProperties& keys = {}) const {
    TCIMReference reference(fNamespace, TOptionsMap());
    reference.SetClassName("T_Disk");
    for (const auto& [name, value] : keys) reference.AddKeyValue(name, value);
    return reference;
  }

  const TNamespace fNamespace = MakeNamespace();
  boost::shared_ptr<ICIMClass> fClass;
};

TEST_F(CIMReference, DemandsItsOrderOfUse) {
  TCIMReference reference(nullptr, TOptionsMap());
  EXPECT_QDX_STATUS(reference.SetClassName("T_Disk"), kQDXStatusInvalidOpSequence);
  EXPECT_QDX_STATUS(reference.SetPath("T_Disk"), kQDXStatusInvalidOpSequence);
  EXPECT_QDX_STATUS(reference.AddKeyValue("Id", 1U), kQDXStatusInvalidOpSequence);
  EXPECT_QDX_STATUS(reference.GetClass(), kQDXStatusInvalidReference);
  EXPECT_QDX_STATUS(reference.GetPath(), kQDXStatusFail);  // an assertion
  EXPECT_EQ(reference.GetCIMElement(), nullptr);

  reference.SetClass(fClass);  // needs no namespace
  EXPECT_EQ(reference.GetClassName(), "T_Disk");
  reference.SetNamespace(fNamespace);
  EXPECT_QDX_STATUS(reference.SetPath("T_Disk"), kQDXStatusInvalidOpSequence);
  reference.AddKeyValue("Id", 1U);
  EXPECT_QDX_STATUS(reference.SetClass(fClass), kQDXStatusInvalidOpSequence);
  EXPECT_QDX_STATUS(reference.SetClassName("T_Disk"), kQDXStatusInvalidOpSequence);

  reference.Clear();
  EXPECT_EQ(reference.GetNamespace(), nullptr);
  EXPECT_QDX_STATUS(reference.SetClassName("T_Disk"), kQDXStatusInvalidOpSequence);
  reference.SetNamespace(fNamespace);
  reference.SetPath("T_Disk.Id=\"2\"");
  EXPECT_EQ(reference.GetPath(), "T_Disk.Id=\"2\"");
}

TEST_F(CIMReference, KeepsTheFirstValueOfAKey) {
  EXPECT_EQ(Reference({{"Id", 1U}, {"Id", 2U}}).GetPath(), "T_Disk.Id=\"1\"");
}

TEST_F(CIMReference, RefusesAKeyOfAnotherType) {
  const TLogCapture log;
  TCIMReference reference = Reference();
  EXPECT_QDX_STATUS(reference.AddKeyValue("Id", "1"), kQDXStatusTypeMismatch);
  EXPECT_EQ(log.Messages(),
            std::vector<std::string>{"0 Core: Declaration type: uint32 Value type: string"});
  EXPECT_EQ(reference.GetPath(), "T_Disk");
  EXPECT_QDX_STATUS(reference.AddKeyValue("None", 1U), kQDXStatusNotFound);  // the provider's
  reference.AddKeyValue("Size", 1UL);                                        // declared, if no key
}

TEST_F(CIMReference, VisitsKeysInByteOrderUntilToldToStop) {
  const TCIMReference reference = Reference({{"Name", "a"}, {"Id", 1U}, {"Size", 2UL}});
  std::string visited;
  reference.EnumerateKeyBindings([&visited](std::pair<std::string, TCIMValue> binding) {
    visited += binding.first + "=" + binding.second.ToString(10) + " ";
    return binding.first != "Name";
  });
  EXPECT_EQ(visited, "Id=1 Name=a ");
  EXPECT_THROW(reference.EnumerateKeyBindings(TKeyBindingCallback()), boost::bad_function_call);
  EXPECT_NO_THROW(Reference().EnumerateKeyBindings(TKeyBindingCallback()));
}

TEST_F(CIMReference, PassesItsOptionsToEveryClassLookup) {
  const auto recorder = boost::make_shared<TRecordingNamespace>(fNamespace);
  TCIMReference reference(recorder, {{"from", "x"}});
  reference.SetClassName("T_Disk");
  TCIMReference copy(reference);
  copy.Clear();
  copy.SetNamespace(recorder);
  copy.SetPath("T_Disk.Id=\"1\"");
  EXPECT_EQ(recorder->Asked(), "T_Disk(x) T_Disk(x) ");

  reference.SetClassName("T_None");  // what the namespace answers is stored, null included
  EXPECT_QDX_STATUS(reference.AddKeyValue("Id", 1U), kQDXStatusInvalidOpSequence);
  EXPECT_QDX_STATUS(reference.GetClassName(), kQDXStatusFail);
}

TEST_F(CIMReference, LeavesANullDeclarationToTheAssertionHandler) {
  const auto faults = boost::make_shared<TFaults>();
  faults->AnswerNull("ICIMClass::GetPropertyDecl", TFaults::kEveryCall);
  const TNamespace faulty = MakeFaultyNamespace(fNamespace, faults);
  TCIMReference reference(faulty, TOptionsMap());
  EXPECT_QDX_STATUS(reference.SetPath("T_Disk.Id=1"), kQDXStatusInvalidReference);
  EXPECT_QDX_STATUS(reference.AddKeyValue("Id", 1U), kQDXStatusFail);
  EXPECT_QDX_STATUS(TCIMReference(faulty, "T_Disk.Id=\"1\"", {}), kQDXStatusFail);
}

TEST_F(CIMReference, CopiesShareNothingButWhatTheyName) {
  TCIMReference original = Reference({{"Id", 1U}});
  TCIMReference copy(original);
  copy.AddKeyValue("Name", "a");
  EXPECT_EQ(original.GetPath(), "T_Disk.Id=\"1\"");
  original = copy;
  original = *&original;
  copy.Clear();
  EXPECT_EQ(original.GetPath(), "T_Disk.Id=\"1\",Name=\"a\"");
}

TEST_F(CIMReference, FetchesTheInstanceOnceAndKeepsIt) {
  TCIMReference reference = Reference({{"Id", 1U}, {"Name", "a"}});
  EXPECT_QDX_STATUS(reference.GetCIMElement(), kQDXStatusNotFound);
  const auto instance = AddInstance(fNamespace, "T_Disk", {{"Id", 1U}, {"Name", "a"}});
  const auto found = boost::dynamic_pointer_cast<ICIMInstance>(reference.GetCIMElement());
  ASSERT_TRUE(found);
  EXPECT_EQ(found->GetProperty("Name", {})->GetValue().ToString(10), "a");
  reference.AddKeyValue("Size", 99UL);  // names no instance, but the first answer is kept
  EXPECT_EQ(reference.GetCIMElement(), TCIMReference(reference).GetCIMElement());
  reference.Clear();
  reference.SetNamespace(fNamespace);
  reference.SetPath("T_Disk.Id=\"2\",Name=\"a\"");
  EXPECT_QDX_STATUS(reference.GetCIMElement(), kQDXStatusNotFound);
  EXPECT_EQ(Reference().GetCIMElement(), fClass);
}

TEST_F(CIMReference, ComparesClassObjectsAndKeys) {
  const TCIMReference none = Reference();
  const TCIMReference one = Reference({{"Id", 1U}});
  const TCIMReference oneA = Reference({{"Id", 1U}, {"Name", "a"}});
  const TCIMReference two = Reference({{"Id", 2U}});
  const TCIMReference named = Reference({{"Name", ""}});
  const TCIMReference* const ascending[] = {&none, &one, &oneA, &two, &named};
  for (std::size_t i = 0; i < std::size(ascending); ++i) {
    for (std::size_t j = 0; j < std::size(ascending); ++j) {
      EXPECT_EQ(*ascending[i] < *ascending[j], i < j) << i << j;
      EXPECT_EQ(*ascending[i] == *ascending[j], i == j) << i << j;
    }
  }
  EXPECT_TRUE(one == Reference({{"Id", 1U}}));

  const TNamespace otherNamespace = MakeNamespace();
  TCIMReference other(otherNamespace, TOptionsMap());
  other.SetClass(AddClass(otherNamespace, "T_Disk", {{"Id", 0U}}));
  EXPECT_FALSE(other == none);
  EXPECT_NE(other < none, none < other);
  EXPECT_TRUE(TCIMReference(nullptr, {}) == TCIMReference(fNamespace, {}));
}

}  // namespace
}  // namespace NVORNQDX20
