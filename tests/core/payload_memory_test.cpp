// SPDX-License-Identifier: Apache-2.0
// The memory of values, which a thread keeps for its next ones. A program of its own, since it
// counts all blocks of the process.
#include <qdxcore/reference.h>
#include <qdxcore/value.h>

#include <gtest/gtest.h>

#include <atomic>
#include <cstddef>
#include <cstdlib>
#include <new>
#include <random>
#include <string>
#include <thread>
#include <utility>
#include <vector>

namespace {

std::atomic<int> blocksInUse = 0;

}  // namespace

// Never inline: the compiler would miss the pair of new and delete.
__attribute__((noinline)) void* operator new(std::size_t size) {
  ++blocksInUse;
  if (void* const memory = std::malloc(size)) return memory;
  throw std::bad_alloc();
}
__attribute__((noinline)) void operator delete(void* memory) noexcept {
  if (memory != nullptr) --blocksInUse;
  std::free(memory);
}
void operator delete(void* memory, std::size_t) noexcept { ::operator delete(memory); }

namespace {

using namespace NVORNQDX20;

const TCIMDateTime kDate("20040315143000.000000+060");

/// Of each kind that needs no namespace.
TCIMValue MakeValue(unsigned int kind, unsigned int number) {
  switch (kind % 4) {
    case 0:
      return number;
    case 1:
      return std::to_string(number);
    case 2:
      return kDate;
    default:
      return TCIMValue(TCIMValue::TCIMType::kCIMTypeUint32, 0,
                       std::vector<TCIMValue>(number % 3, TCIMValue(number)));
  }
}

std::vector<TCIMValue> MakeValues() {
  std::vector<TCIMValue> values;
  for (unsigned int i = 0; i < 2000; ++i) values.push_back(MakeValue(i, i));
  return values;
}

std::vector<TCIMReference> MakeReferences() {
  return std::vector<TCIMReference>(200, TCIMReference(nullptr, TOptionsMap()));
}

TEST(PayloadMemory, IsThatOfOneValueAtATime) {
  std::mt19937 random(1);
  std::vector<TCIMValue> values(600, TCIMValue(0U));
  std::vector<std::string> texts(values.size(), "0");
  for (unsigned int i = 1; i <= 20000; ++i) {
    const auto number = static_cast<unsigned int>(random());
    const std::size_t at = number % values.size();
    // In runs of two kinds, so that more blocks are free than are kept.
    values[at] = MakeValue(i / 1000 + number / 1000 % 2, number);
    texts[at] = values[at].ToString(10);
    if (i % 1000 != 0) continue;
    for (std::size_t j = 0; j < values.size(); ++j) EXPECT_EQ(values[j].ToString(10), texts[j]);
  }
}

TEST(PayloadMemory, IsThatOfOneReferenceAtATime) {
  const auto make = [](unsigned int number) {
    return TCIMReference(nullptr, TOptionsMap{{"number", TCIMValue(number)}});
  };
  std::mt19937 random(1);
  std::vector<TCIMReference> references(80, make(0));
  std::vector<unsigned int> numbers(references.size(), 0);
  for (unsigned int i = 1; i <= 5000; ++i) {
    const std::size_t at = random() % references.size();
    // One assignment, and one body that is made and destroyed by itself.
    references[at] = make(numbers[at] = i);
    if (i % 500 == 0) std::vector<TCIMReference>(40, make(i));
    for (std::size_t j = 0; i % 50 == 0 && j < references.size(); ++j) {
      EXPECT_EQ(references[j].GetBody()->GetOptions().at("number"), TCIMValue(numbers[j]));
    }
  }
}

TEST(PayloadMemory, IsKeptInPartAndReturnedAtTheEndOfTheThread) {
  const int before = blocksInUse;
  int kept = 0;
  std::vector<TCIMValue> passedOn;
  std::vector<TCIMReference> references;
  std::thread([&] {
    // Registered first, so destroyed after the thread has returned what it kept.
    thread_local std::vector<TCIMValue> late;
    thread_local std::vector<TCIMReference> lateReferences;
    late = MakeValues();
    lateReferences = MakeReferences();
    const int beforeValues = blocksInUse;
    for (int i = 0; i < 10; ++i) {
      MakeValues();
      MakeReferences();
    }
    kept = blocksInUse - beforeValues;
    passedOn = MakeValues();
    references = MakeReferences();
  }).join();
  std::thread([&] {
    std::vector<TCIMValue>().swap(passedOn);
    std::vector<TCIMReference>().swap(references);
  }).join();
  EXPECT_EQ(blocksInUse, before);
  EXPECT_LE(kept, 300);
}

}  // namespace
