#include "diagnostics/CrashDumpElf.h"

#include <gtest/gtest.h>

#include <array>
#include <cstring>
#include <string>

namespace qilsys::diagnostics {
namespace {

constexpr std::uint64_t Page = 0x1000;

std::string TextOf(std::span<const std::byte> bytes) {
  return {reinterpret_cast<const char*>(bytes.data()), bytes.size()};
}

template <class T>
T At(std::span<const std::byte> bytes, std::size_t offset) {
  T value{};
  if (offset + sizeof value > bytes.size()) throw std::out_of_range("beyond the bytes");
  std::memcpy(&value, bytes.data() + offset, sizeof value);
  return value;
}

std::span<const std::byte> Content(std::string_view text) { return std::as_bytes(std::span(text)); }

/// Lengths and type in numbers of 32 bits, then name and content, each padded to a multiple of 4.
TEST(AppendNote, PadsNameAndContent) {
  Bytes notes;
  AppendNote(notes, "CORE", 7, Content("abcde"));
  EXPECT_EQ(At<std::uint32_t>(notes, 0), 5u);
  EXPECT_EQ(At<std::uint32_t>(notes, 4), 5u);
  EXPECT_EQ(At<std::uint32_t>(notes, 8), 7u);
  EXPECT_EQ(TextOf(notes).substr(12), std::string("CORE\0\0\0\0abcde\0\0\0", 16));
}

TEST(AppendNote, AddsNoPaddingWhereNoneIsNeeded) {
  Bytes notes;
  AppendNote(notes, "ABC", 1, Content("12345678"));
  EXPECT_EQ(TextOf(notes).substr(12), std::string("ABC\0"
                                                  "12345678",
                                                  12));
  AppendNote(notes, "ABC", 2, {});
  EXPECT_EQ(notes.size(), 12u + 12 + 12 + 4);
  EXPECT_EQ(At<std::uint32_t>(notes, 24 + 4), 0u);
}

TEST(MappedFiles, ListsAddressesThenNames) {
  const std::vector<Mapping> mappings{
      {.start = 0x1000, .end = 0x3000, .offset = 0x2000, .name = "/bin/a"},
      {.start = 0x4000, .end = 0x5000, .name = "[heap]"},
      {.start = 0x5000, .end = 0x6000, .name = ""},
      {.start = 0x7000, .end = 0x8000, .name = "/lib/b c.so"},
  };
  const Bytes bytes = MappedFiles(mappings, Page, *std::pmr::new_delete_resource());
  const std::array<std::uint64_t, 8> numbers{2, Page, 0x1000, 0x3000, 2, 0x7000, 0x8000, 0};
  for (std::size_t i = 0; i < numbers.size(); ++i) EXPECT_EQ(At<std::uint64_t>(bytes, 8 * i), numbers[i]) << i;
  EXPECT_EQ(TextOf(bytes).substr(64), std::string("/bin/a\0/lib/b c.so\0", 19));
}

TEST(MappedFiles, OfNothingIsACountOfNothing) {
  const Bytes bytes = MappedFiles({}, Page, *std::pmr::new_delete_resource());
  EXPECT_EQ(bytes.size(), 16u);
  EXPECT_EQ(At<std::uint64_t>(bytes, 0), 0u);
}

/// The first bytes of a program for x86-64, as the format lays them down.
std::string ProgramHead() {
  std::string head(64, '\0');
  head.replace(0, 7,
               "\x7F"
               "ELF\x02\x01\x01");
  head[18] = 62;
  head[48] = 5;
  return head;
}

TEST(ParseElfMachine, ReadsTheMachineAndItsFlags) {
  EXPECT_EQ(ParseElfMachine(Content(ProgramHead())), (ElfMachine{62, 5}));
}

TEST(ParseElfMachine, RefusesWhatIsNoProgramOf64Bits) {
  std::string head = ProgramHead();
  EXPECT_FALSE(ParseElfMachine(Content(head.substr(0, 63))));
  head[4] = 1;
  EXPECT_FALSE(ParseElfMachine(Content(head))) << "32 bits";
  head = ProgramHead();
  head[5] = 2;
  EXPECT_FALSE(ParseElfMachine(Content(head))) << "the other order of bytes";
  head = ProgramHead();
  head[3] = 'f';
  EXPECT_FALSE(ParseElfMachine(Content(head)));
  EXPECT_FALSE(ParseElfMachine({}));
}

CoreHead HeadOf(std::span<const Segment> segments, std::size_t notesBytes) {
  return MakeCoreHead({62, 0}, segments, notesBytes, Page, *std::pmr::new_delete_resource());
}

TEST(MakeCoreHead, SaysWhatTheFileIs) {
  const CoreHead core = HeadOf({}, 100);
  EXPECT_EQ(TextOf(core.bytes).substr(0, 16), std::string("\x7F"
                                                          "ELF\x02\x01\x01\0\0\0\0\0\0\0\0\0",
                                                          16));
  EXPECT_EQ(At<std::uint16_t>(core.bytes, 16), 4u) << "a core";
  EXPECT_EQ(At<std::uint16_t>(core.bytes, 18), 62u) << "the machine";
  EXPECT_EQ(At<std::uint32_t>(core.bytes, 20), 1u) << "the version";
  EXPECT_EQ(At<std::uint64_t>(core.bytes, 32), 64u) << "where the program headers stand";
  EXPECT_EQ(At<std::uint16_t>(core.bytes, 52), 64u) << "bytes of this head";
  EXPECT_EQ(At<std::uint16_t>(core.bytes, 54), 56u) << "bytes of a program header";
  EXPECT_EQ(At<std::uint16_t>(core.bytes, 56), 1u) << "program headers";
  EXPECT_EQ(At<std::uint16_t>(core.bytes, 60), 0u) << "sections";
}

TEST(MakeCoreHead, NotesFollowAtOnceAndSegmentsOnAWholePage) {
  const CoreHead core = HeadOf({}, 100);
  EXPECT_EQ(core.bytes.size(), 64u + 56);
  EXPECT_EQ(At<std::uint32_t>(core.bytes, 64), 4u) << "notes";
  EXPECT_EQ(At<std::uint64_t>(core.bytes, 64 + 8), 120u) << "where they stand";
  EXPECT_EQ(At<std::uint64_t>(core.bytes, 64 + 32), 100u) << "their bytes";
  EXPECT_EQ(core.segmentsOffset, Page);
  EXPECT_EQ(HeadOf({}, Page - 120).segmentsOffset, Page);
  EXPECT_EQ(HeadOf({}, Page - 119).segmentsOffset, 2 * Page);
}

TEST(MakeCoreHead, SegmentsStandOneBehindTheOther) {
  const std::vector<Segment> segments{{0x10000, 0x2000, 0x2000, true, true, false},
                                      {0x20000, 0x5000, 0, true, false, true},
                                      {0x30000, 0x1000, 0x1000, true, false, false}};
  const CoreHead core = HeadOf(segments, 0);
  ASSERT_EQ(core.bytes.size(), 64u + 4 * 56);
  const std::array<std::uint32_t, 3> rights{6, 5, 4};
  const std::array<std::uint64_t, 3> offsets{Page, Page + 0x2000, Page + 0x2000};
  for (std::size_t i = 0; i < segments.size(); ++i) {
    const std::size_t at = 64 + 56 * (i + 1);
    EXPECT_EQ(At<std::uint32_t>(core.bytes, at), 1u) << "memory";
    EXPECT_EQ(At<std::uint32_t>(core.bytes, at + 4), rights[i]);
    EXPECT_EQ(At<std::uint64_t>(core.bytes, at + 8), offsets[i]);
    EXPECT_EQ(At<std::uint64_t>(core.bytes, at + 16), segments[i].address);
    EXPECT_EQ(At<std::uint64_t>(core.bytes, at + 32), segments[i].fileBytes);
    EXPECT_EQ(At<std::uint64_t>(core.bytes, at + 40), segments[i].memoryBytes);
    EXPECT_EQ(At<std::uint64_t>(core.bytes, at + 48), Page);
  }
}

TEST(MakeCoreHead, CountsAboveSixteenBitsInTheFirstSection) {
  const CoreHead few = HeadOf(std::vector<Segment>(0xFFFD), 0);
  EXPECT_EQ(At<std::uint16_t>(few.bytes, 56), 0xFFFEu);
  EXPECT_EQ(At<std::uint16_t>(few.bytes, 60), 0u);
  const CoreHead many = HeadOf(std::vector<Segment>(0x12344), 0);
  EXPECT_EQ(At<std::uint16_t>(many.bytes, 56), 0xFFFFu);
  EXPECT_EQ(At<std::uint16_t>(many.bytes, 58), 64u) << "bytes of a section header";
  EXPECT_EQ(At<std::uint16_t>(many.bytes, 60), 1u);
  const std::uint64_t section = At<std::uint64_t>(many.bytes, 40);
  EXPECT_EQ(section, 64u + 56 * 0x12345);
  EXPECT_EQ(At<std::uint32_t>(many.bytes, section + 44), 0x12345u);
  EXPECT_EQ(At<std::uint64_t>(many.bytes, 64 + 8), section + 64) << "the notes stand behind it";
  EXPECT_EQ(many.bytes.size(), section + 64);
}

}  // namespace
}  // namespace qilsys::diagnostics
