// SPDX-License-Identifier: Apache-2.0
#include "input/facts_message.h"

#include <gtest/gtest.h>

namespace NVORNQDX20::NStore {
namespace {

TDocumentFacts SomeFacts() {
  TDocumentFacts facts;
  facts.fHost = {"u", "m", "s", "maker", "model", "name"};
  facts.fTime = -5;
  facts.fNamespaces = {"root/cimv2"};
  facts.fClasses = {{"root/cimv2", "Disk"}, {"root/cimv2", "Port"}};
  facts.fProperties = {{0, "Size", "uint64", "", false, false}, {1, "MAC", "string", "address"}};
  facts.fObjects = {{0, "sda", "disks"}, {0, "sdb", "disks"}, {1, "eth0", ""}};
  facts.fFacts = {{0, 0, "1"}, {0, 1, "2"}, {1, 2, "\xc3\xa9"}};
  facts.fMissing = {{0, "sda", "Model", "why", true}, {1, std::nullopt, "Speed", "why"}};
  facts.fUnknown = {{"root/cimv2", "Disk", "", "sda", "Model"}};
  facts.fFailures = {{"p", "root/x", "reading", "it crashed"}};
  return facts;
}

std::optional<TFactsMessage> SentAndReceived(const TDocumentFacts& facts) {
  return DecodeFacts(EncodeFacts({facts, ""}), 100);
}

TEST(FactsMessage, ArrivesAsItWasSent) {
  const std::string bytes = EncodeFacts({SomeFacts(), ""});
  const auto message = DecodeFacts(bytes, 100);
  ASSERT_TRUE(message && message->fFacts);
  EXPECT_EQ(EncodeFacts(*message), bytes);
  EXPECT_EQ(message->fFacts->fFacts[2].fValue, "\xc3\xa9");
  EXPECT_EQ(message->fFacts->fMissing[1].fObject, std::nullopt);
  const auto failure = DecodeFacts(EncodeFacts({std::nullopt, "no facts"}), 100);
  ASSERT_TRUE(failure);
  EXPECT_EQ(failure->fFailure, "no facts");
}

TEST(FactsMessage, RefusesEveryPartOfOneAndEveryWrongByteOrTakesItWhole) {
  const std::string bytes = EncodeFacts({SomeFacts(), ""});
  for (std::size_t size = 0; size < bytes.size(); ++size) {
    EXPECT_FALSE(DecodeFacts(bytes.substr(0, size), 100)) << size;
  }
  EXPECT_FALSE(DecodeFacts(bytes + "x", 100));
  for (std::size_t at = 0; at < bytes.size(); ++at) {
    for (const char wrong : {'\0', '\xff', '\x7f', '\x01'}) {
      std::string changed = bytes;
      changed[at] = wrong;
      const auto message = DecodeFacts(changed, 100);
      // What is taken is consistent: all indexes lead somewhere.
      if (!message || !message->fFacts) continue;
      for (const auto& fact : message->fFacts->fFacts) {
        EXPECT_LT(fact.fProperty, message->fFacts->fProperties.size()) << at;
        EXPECT_LT(fact.fObject, message->fFacts->fObjects.size()) << at;
      }
    }
  }
}

TEST(FactsMessage, RefusesWhatNoDocumentHas) {
  const auto refused = [](auto change) {
    TDocumentFacts facts = SomeFacts();
    change(facts);
    return !SentAndReceived(facts);
  };
  EXPECT_TRUE(refused([](auto& facts) { facts.fFacts[1].fProperty = 1; })) << "of another class";
  EXPECT_TRUE(refused([](auto& facts) { facts.fFacts[1].fObject = 0; })) << "twice";
  EXPECT_TRUE(refused([](auto& facts) { facts.fFacts[2].fObject = 3; })) << "of no object";
  EXPECT_TRUE(refused([](auto& facts) { facts.fObjects[1].fName = "sda"; })) << "twice";
  EXPECT_TRUE(refused([](auto& facts) { facts.fMissing[1].fClass = 2; })) << "of no class";
  EXPECT_TRUE(refused([](auto& facts) { facts.fHost.fName = "\xff"; })) << "no UTF-8";
  EXPECT_TRUE(refused([](auto& facts) { facts.fHost.fName = std::string(1, '\0'); })) << "zero";
  EXPECT_TRUE(refused([](auto& facts) { facts.fWarnings.resize(101); })) << "too many";
}

}  // namespace
}  // namespace NVORNQDX20::NStore
