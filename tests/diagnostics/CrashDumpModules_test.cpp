#include "diagnostics/CrashDumpModules.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cstring>
#include <map>

namespace qilsys::diagnostics {
namespace {

using Ranges = std::pmr::vector<AddressRange>;

/// Memory of eight bytes here and there.
class FakeMemory : public ProcessMemory {
 public:
  std::size_t Read(std::uint64_t address, std::span<std::byte> bytes) const override {
    std::size_t done = 0;
    for (; done < bytes.size(); done += 8) {
      const auto at = m_words.find(address + done);
      if (at == m_words.end()) break;
      std::memcpy(bytes.data() + done, &at->second, std::min<std::size_t>(8, bytes.size() - done));
    }
    return std::min(done, bytes.size());
  }

  void Put(std::uint64_t address, std::initializer_list<std::uint64_t> words) {
    for (const std::uint64_t word : words) {
      m_words[address] = word;
      address += 8;
    }
  }

 private:
  std::map<std::uint64_t, std::uint64_t> m_words;
};

// Keys and types of the format.
constexpr std::uint64_t HeadersAddress = 3;
constexpr std::uint64_t HeaderBytes = 4;
constexpr std::uint64_t HeaderCount = 5;
constexpr std::uint64_t DynamicSection = 2;
constexpr std::uint64_t HeadersThemselves = 6;
constexpr std::uint64_t DebuggersEntry = 21;

/// A program that was linked to 0 and has been loaded to 0x10000, with two libraries.
class AddModules : public testing::Test {
 protected:
  AddModules() {
    m_memory.Put(0x10040, {HeadersThemselves, 0x40, 0x40, 0x40, 112, 112, 8});
    m_memory.Put(0x10078, {DynamicSection, 0x500, 0x2000, 0x2000, 48, 48, 8});
    m_memory.Put(0x12000, {1, 99, DebuggersEntry, 0x700000, 0, 0});
    m_memory.Put(0x700000, {1, 0x800000, 0, 0, 0});
    PutModule(0x800000, 0x900000, 0x800100);
    PutModule(0x800100, 0x900010, 0x800200);
    PutModule(0x800200, 0, 0);
  }

  void PutModule(std::uint64_t at, std::uint64_t name, std::uint64_t next) { m_memory.Put(at, {0, name, 0, next, 0}); }

  Ranges Added() const {
    Ranges ranges;
    AddModuleList(std::as_bytes(std::span(m_auxiliary)), m_memory, ranges);
    return ranges;
  }

  static bool Holds(const Ranges& ranges, AddressRange range) {
    return std::ranges::find(ranges, range) != ranges.end();
  }

  FakeMemory m_memory;
  std::vector<std::uint64_t> m_auxiliary{6, 4096, HeadersAddress, 0x10040, HeaderBytes, 56, HeaderCount, 2, 0, 0};
};

TEST_F(AddModules, AddsHeadersDynamicSectionAndEveryElement) {
  const Ranges ranges = Added();
  EXPECT_TRUE(Holds(ranges, {0x10040, 0x10040 + 112})) << "headers";
  EXPECT_TRUE(Holds(ranges, {0x12000, 0x12020})) << "dynamic section up to the entry";
  EXPECT_TRUE(Holds(ranges, {0x700000, 0x700028})) << "head of the list";
  for (const std::uint64_t at : {0x800000u, 0x800100u, 0x800200u}) EXPECT_TRUE(Holds(ranges, {at, at + 40})) << at;
  for (const std::uint64_t name : {0x900000u, 0x900010u}) EXPECT_TRUE(Holds(ranges, {name, name + 1024})) << name;
  EXPECT_EQ(ranges.size(), 8u);
}

TEST_F(AddModules, AProgramThatIsLoadedWhereItWasLinkedToNeedsNoHeaderOfHeaders) {
  m_memory.Put(0x10040, {1, 0, 0, 0, 0, 0, 0});
  m_memory.Put(0x10078, {DynamicSection, 0, 0x12000, 0, 0, 0, 0});
  EXPECT_EQ(Added().size(), 8u);
}

TEST_F(AddModules, WithoutHeadersThereIsNothing) {
  for (const std::size_t wrong : {3u, 5u, 7u}) {
    auto auxiliary = m_auxiliary;
    std::swap(auxiliary, m_auxiliary);
    m_auxiliary[wrong] = wrong == 7 ? 5000 : 0;
    EXPECT_EQ(Added(), Ranges()) << wrong;
    std::swap(auxiliary, m_auxiliary);
  }
  m_auxiliary.clear();
  EXPECT_EQ(Added(), Ranges());
}

TEST_F(AddModules, AProgramWithoutLibrariesHasItsHeadersOnly) {
  m_memory.Put(0x10078, {1, 0, 0, 0, 0, 0, 0});
  EXPECT_EQ(Added(), (Ranges{{0x10040, 0x10040 + 112}}));
}

TEST_F(AddModules, ADynamicSectionWithoutTheEntryEndsTheSearch) {
  m_memory.Put(0x12010, {0, 0});
  EXPECT_EQ(Added().size(), 1u);
}

TEST_F(AddModules, ADynamicSectionWithoutEndEndsTheSearch) {
  for (std::uint64_t i = 0; i < 2000; ++i) m_memory.Put(0x12000 + 16 * i, {1, 1});
  EXPECT_EQ(Added().size(), 1u);
}

TEST_F(AddModules, WhatCannotBeReadEndsTheWalk) {
  PutModule(0x800100, 0x900010, 0xDEAD0000);
  EXPECT_EQ(Added().size(), 3u + 2 + 2);
  m_memory.Put(0x12010, {DebuggersEntry, 0xDEAD0000});
  EXPECT_EQ(Added().size(), 2u);
  m_auxiliary[3] = 0xDEAD0000;
  EXPECT_EQ(Added().size(), 1u);
}

TEST_F(AddModules, AListInACircleEnds) {
  PutModule(0x800200, 0, 0x800000);
  EXPECT_GT(Added().size(), 1000u);
}

}  // namespace
}  // namespace qilsys::diagnostics
