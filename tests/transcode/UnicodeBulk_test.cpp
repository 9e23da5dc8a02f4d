// Conversions between UTF-8 and UTF-16 against ICU: results, statuses and every element of the target.

#include <gtest/gtest.h>
#include <unicode/ustring.h>

#include <algorithm>
#include <iomanip>
#include <sstream>
#include <string>
#include <vector>

#include "qilsys/Unicode.h"
#include "support/Random.h"
#include "support/StringFailure.h"
#include "transcode/UnicodeBulk.h"

namespace {

using qilsys::test::MessageOf;
using qilsys::test::Rounds;
using qilsys::test::SeededRandom;

using Units = std::vector<TCodeUnit>;
constexpr size_t Margin = 24;  // Elements behind the capacity, which nothing may touch.
constexpr auto UnitMark = static_cast<TCodeUnit>(0x5555);
constexpr char ByteMark = 0x55;

std::string Dump(const auto& text) {
  std::ostringstream out;
  out << std::hex << std::setfill('0');
  for (const auto element : text) out << std::setw(2) << (static_cast<unsigned>(element) & 0xFFFF) << ' ';
  return out.str();
}

struct Answer {
  std::string text;  // The message of a failure.
  int length = 0;
  bool operator==(const Answer&) const = default;
};

Answer FromStatus(UErrorCode status, int length, const char* function, const char* interface) {
  if (status == U_ZERO_ERROR) return {"", length};
  return {"ICU error " + std::to_string(status) + " encountered while Unicode::" + function + " was trying to use " +
              interface,
          0};
}

template <class Call>
Answer FromCall(Call call) {
  int length = 0;
  const std::string text = MessageOf([&] { length = call(); });
  return text == "nothing raised" ? Answer{"", length} : Answer{text, 0};
}

/// False, with a failure, where the answers or any element differ.
bool SameFromUtf8(const std::string& source, int capacity) {
  const size_t size = static_cast<size_t>(capacity) + Margin;
  Units wanted(size, UnitMark);
  Units got = wanted;
  int32_t length = 0;
  UErrorCode status = U_ZERO_ERROR;
  u_strFromUTF8WithSub(reinterpret_cast<UChar*>(wanted.data()), capacity, &length, source.data(),
                       static_cast<int32_t>(source.size()), 0xFFFD, nullptr, &status);
  const Answer icu = FromStatus(status, length, "Utf8ToUtf16", "t_u_strFromUTF8WithSub");
  const Answer own = FromCall(
      [&] { return Unicode::Utf8ToUtf16(source.data(), static_cast<int>(source.size()), got.data(), capacity); });
  if (own == icu && got == wanted) return true;
  ADD_FAILURE() << "capacity " << capacity << ", source " << Dump(source) << "\nwanted " << icu.length << icu.text
                << ": " << Dump(wanted) << "\ngot " << own.length << own.text << ": " << Dump(got);
  return false;
}

bool SameFromUtf16(const Units& source, int capacity) {
  const size_t size = static_cast<size_t>(capacity) + Margin;
  std::string wanted(size, ByteMark);
  std::string got = wanted;
  int32_t length = 0;
  UErrorCode status = U_ZERO_ERROR;
  u_strToUTF8WithSub(wanted.data(), capacity, &length, reinterpret_cast<const UChar*>(source.data()),
                     static_cast<int32_t>(source.size()), 0xFFFD, nullptr, &status);
  const Answer icu = FromStatus(status, length, "Utf16ToUtf8", "t_u_strToUTF8WithSub");
  const Answer own = FromCall(
      [&] { return Unicode::Utf16ToUtf8(source.data(), static_cast<int>(source.size()), got.data(), capacity); });
  const int measured = Unicode::MeasureUtf16ToUtf8(source.data(), static_cast<int>(source.size()));
  if (own == icu && got == wanted && measured == length) return true;
  ADD_FAILURE() << "capacity " << capacity << ", source " << Dump(source) << "\nwanted " << icu.length << icu.text
                << ": " << Dump(wanted) << "\ngot " << own.length << own.text << ": " << Dump(got) << "\nmeasured "
                << measured << " for " << length;
  return false;
}

/// What one kernel makes of a text, with the rest that it leaves; true if it is the start of ICU's result.
bool KernelAgrees(const qilsys::transcode::Kernel& kernel, const std::string& source) {
  Units wanted(source.size() + Margin, UnitMark);
  Units got = wanted;
  const auto done = qilsys::transcode::ConvertUtf8(source.data(), static_cast<int>(source.size()), got.data(),
                                                   static_cast<int>(source.size()), kernel);
  int32_t length = 0;
  UErrorCode status = U_ZERO_ERROR;
  u_strFromUTF8WithSub(reinterpret_cast<UChar*>(wanted.data()), static_cast<int32_t>(source.size()), &length,
                       source.data(), static_cast<int32_t>(done.consumed), 0xFFFD, nullptr, &status);
  if (static_cast<int32_t>(done.written) == length && std::equal(got.begin(), got.begin() + length, wanted.begin()) &&
      std::all_of(got.begin() + static_cast<ptrdiff_t>(source.size()), got.end(),
                  [](TCodeUnit u) { return u == UnitMark; }))
    return true;
  ADD_FAILURE() << kernel.name << " on " << Dump(source) << "\nconsumed " << done.consumed << " written "
                << done.written << " wanted " << length << "\ngot " << Dump(got) << "\nwanted " << Dump(wanted);
  return false;
}

bool KernelAgrees(const qilsys::transcode::Kernel& kernel, const Units& source) {
  const size_t room = source.size() * 3;
  std::string wanted(room + Margin, ByteMark);
  std::string got = wanted;
  const auto done = qilsys::transcode::ConvertUtf16(source.data(), static_cast<int>(source.size()), got.data(),
                                                    static_cast<int>(room), kernel);
  int32_t length = 0;
  UErrorCode status = U_ZERO_ERROR;
  u_strToUTF8WithSub(wanted.data(), static_cast<int32_t>(room), &length, reinterpret_cast<const UChar*>(source.data()),
                     static_cast<int32_t>(done.consumed), 0xFFFD, nullptr, &status);
  int32_t whole = 0;
  status = U_ZERO_ERROR;
  u_strToUTF8WithSub(nullptr, 0, &whole, reinterpret_cast<const UChar*>(source.data()),
                     static_cast<int32_t>(source.size()), 0xFFFD, nullptr, &status);
  const auto counted = kernel.countUtf8(source.data(), source.size());
  if (static_cast<int32_t>(done.written) == length && got.compare(0, done.written, wanted, 0, done.written) == 0 &&
      got.compare(room, Margin, std::string(Margin, ByteMark)) == 0 && counted == whole)
    return true;
  ADD_FAILURE() << kernel.name << " on " << Dump(source) << "\nconsumed " << done.consumed << " written "
                << done.written << " wanted " << length << ", counted " << counted << " wanted " << whole;
  return false;
}

/// A place for a short piece in which the bulk forms have to meet it: inside blocks, and across their ends.
constexpr size_t Offsets[] = {0, 11, 12, 51, 52, 61, 62, 63, 64};

std::string Around(const std::string& piece, size_t offset) {
  return std::string(offset, 'x') + piece + std::string(200 - offset, 'y');
}

TEST(UnicodeOracle, EveryScalarValueBothWays) {
  for (UChar32 c = 0; c <= 0x10FFFF; ++c) {
    if (c >= 0xD800 && c <= 0xDFFF) continue;
    char bytes[4];
    int32_t length = 0;
    U8_APPEND_UNSAFE(bytes, length, c);
    ASSERT_TRUE(SameFromUtf8(std::string(bytes, static_cast<size_t>(length)), 3));
    Units units;
    if (c > 0xFFFF) units.push_back(static_cast<TCodeUnit>(U16_LEAD(c)));
    units.push_back(static_cast<TCodeUnit>(c > 0xFFFF ? U16_TRAIL(c) : c));
    ASSERT_TRUE(SameFromUtf16(units, 5));
  }
}

TEST(UnicodeOracle, EveryScalarValueInBulk) {
  for (const qilsys::transcode::Kernel& kernel : qilsys::transcode::Kernels()) {
    SCOPED_TRACE(kernel.name);
    for (UChar32 first = 0; first <= 0x10FFFF; first += 251) {
      std::string bytes;
      Units units;
      for (UChar32 c = first; c < first + 251 && c <= 0x10FFFF; ++c) {
        if (c >= 0xD800 && c <= 0xDFFF) continue;
        char next[4];
        int32_t length = 0;
        U8_APPEND_UNSAFE(next, length, c);
        bytes.append(next, static_cast<size_t>(length));
        if (c > 0xFFFF) units.push_back(static_cast<TCodeUnit>(U16_LEAD(c)));
        units.push_back(static_cast<TCodeUnit>(c > 0xFFFF ? U16_TRAIL(c) : c));
      }
      ASSERT_TRUE(KernelAgrees(kernel, bytes));
      ASSERT_TRUE(KernelAgrees(kernel, units));
    }
  }
}

TEST(UnicodeOracle, EveryOneAndTwoBytesAtEveryCapacity) {
  for (int first = 0; first <= 0xFF; ++first) {
    const std::string one(1, static_cast<char>(first));
    for (int capacity = 0; capacity <= 2; ++capacity) ASSERT_TRUE(SameFromUtf8(one, capacity));
    for (int second = 0; second <= 0xFF; ++second)
      for (int capacity = 0; capacity <= 3; ++capacity)
        ASSERT_TRUE(SameFromUtf8(one + static_cast<char>(second), capacity));
  }
}

TEST(UnicodeOracle, EveryThreeBytes) {
  std::string bytes(3, '\0');
  for (int value = 0; value < 1 << 24; ++value) {
    bytes[0] = static_cast<char>(value >> 16);
    bytes[1] = static_cast<char>(value >> 8);
    bytes[2] = static_cast<char>(value);
    ASSERT_TRUE(SameFromUtf8(bytes, 4));
  }
}

/// Every four bytes that differ in what the rules look at.
TEST(UnicodeOracle, FourBytesOfEveryKindInBulk) {
  const std::vector<int> kinds = {0x41, 0x7F, 0x80, 0x8F, 0x90, 0x9F, 0xA0, 0xBF, 0xC0, 0xC1, 0xC2, 0xDF, 0xE0,
                                  0xE1, 0xEC, 0xED, 0xEE, 0xEF, 0xF0, 0xF1, 0xF3, 0xF4, 0xF5, 0xF7, 0xF8, 0xFF};
  const size_t count = kinds.size();
  for (size_t value = 0; value < count * count * count * count; ++value) {
    std::string piece;
    for (size_t rest = value, i = 0; i < 4; ++i, rest /= count) piece += static_cast<char>(kinds[rest % count]);
    const std::string source = Around(piece, Offsets[value % std::size(Offsets)]);
    for (const qilsys::transcode::Kernel& kernel : qilsys::transcode::Kernels())
      ASSERT_TRUE(KernelAgrees(kernel, source));
  }
}

TEST(UnicodeOracle, SurrogatesAtEveryOffset) {
  const Units pieces[] = {{0xD800},         {0xDC00},        {0xD83D, 0xDE00}, {0xD83D, 0xD83D, 0xDE00},
                          {0xDE00, 0xD83D}, {0xDE00, 0xDE00}};
  for (size_t offset = 0; offset < 80; ++offset) {
    for (const Units& piece : pieces) {
      for (const TCodeUnit filler : {u'x', u'\u00E9', u'\u20AC'}) {
        Units source(offset, filler);
        source.insert(source.end(), piece.begin(), piece.end());
        ASSERT_TRUE(SameFromUtf16(source, static_cast<int>(source.size() * 3 + 1)));
        source.resize(160, filler);
        ASSERT_TRUE(SameFromUtf16(source, static_cast<int>(source.size() * 3 + 1)));
        for (const qilsys::transcode::Kernel& kernel : qilsys::transcode::Kernels())
          ASSERT_TRUE(KernelAgrees(kernel, source));
      }
    }
  }
}

// ---- Damaged random texts

void AppendUtf8(std::string& text, UChar32 c) {
  char bytes[4];
  int32_t length = 0;
  U8_APPEND_UNSAFE(bytes, length, c);
  text.append(bytes, static_cast<size_t>(length));
}

UChar32 RandomScalar(SeededRandom& random, int kind) {
  switch (kind) {
    case 0:
      return random.Between(0, 0x7F);
    case 1:
      return random.Between(0x80, 0x7FF);
    case 2:
      return random.OneIn(2) ? random.Between(0x800, 0xD7FF) : random.Between(0xE000, 0xFFFF);
    default:
      return random.Between(0x10000, 0x10FFFF);
  }
}

/// Runs of one kind of code point, as real texts have them, with some bytes damaged.
std::string RandomUtf8(SeededRandom& random, size_t length) {
  std::string text;
  while (text.size() < length) {
    const int kind = random.Between(0, 3);
    for (int run = random.Between(1, random.OneIn(4) ? 90 : 6); run > 0; --run)
      AppendUtf8(text, RandomScalar(random, kind));
    if (random.OneIn(3)) text += ' ';
  }
  text.resize(length);
  for (int damage = random.Between(0, 3); damage > 0 && !text.empty(); --damage)
    text[random.Between<size_t>(0, text.size() - 1)] = static_cast<char>(random.Between(0, 0xFF));
  return text;
}

Units RandomUtf16(SeededRandom& random, size_t length) {
  Units units;
  while (units.size() < length) {
    const int kind = random.Between(0, 3);
    for (int run = random.Between(1, random.OneIn(4) ? 40 : 6); run > 0; --run) {
      const UChar32 c = RandomScalar(random, kind);
      if (c > 0xFFFF) units.push_back(static_cast<TCodeUnit>(U16_LEAD(c)));
      units.push_back(static_cast<TCodeUnit>(c > 0xFFFF ? U16_TRAIL(c) : c));
    }
  }
  units.resize(length);
  for (int damage = random.Between(0, 3); damage > 0 && !units.empty(); --damage)
    units[random.Between<size_t>(0, units.size() - 1)] = static_cast<TCodeUnit>(random.Between(0xD800, 0xDFFF));
  return units;
}

size_t RandomLength(SeededRandom& random) { return random.Between<size_t>(0, random.OneIn(4) ? 600 : 70); }

TEST(UnicodeOracle, DamagedUtf8AtAnyCapacity) {
  SeededRandom random(1);
  for (int round = Rounds(1000000); round > 0; --round) {
    const std::string source = RandomUtf8(random, RandomLength(random));
    const int size = static_cast<int>(source.size());
    ASSERT_TRUE(SameFromUtf8(source, random.OneIn(2) ? size + 1 : random.Between(0, size + 2)));
  }
}

TEST(UnicodeOracle, DamagedUtf16AtAnyCapacity) {
  SeededRandom random(2);
  for (int round = Rounds(1000000); round > 0; --round) {
    const Units source = RandomUtf16(random, RandomLength(random));
    if (source.empty()) continue;
    const int size = static_cast<int>(source.size()) * 3;
    ASSERT_TRUE(SameFromUtf16(source, random.OneIn(2) ? size + 1 : random.Between(0, size + 2)));
  }
}

TEST(UnicodeOracle, DamagedTextsInEveryKernel) {
  SeededRandom random(3);
  for (int round = Rounds(100000); round > 0; --round) {
    const std::string bytes = RandomUtf8(random, RandomLength(random));
    const Units units = RandomUtf16(random, RandomLength(random));
    for (const qilsys::transcode::Kernel& kernel : qilsys::transcode::Kernels()) {
      ASSERT_TRUE(KernelAgrees(kernel, bytes));
      ASSERT_TRUE(KernelAgrees(kernel, units));
    }
  }
}

TEST(UnicodeOracle, CountsBeyondTheRangeOfALane) {
  const Units units(300001, u'\u20AC');
  for (const qilsys::transcode::Kernel& kernel : qilsys::transcode::Kernels())
    EXPECT_EQ(kernel.countUtf8(units.data(), units.size()), 900003) << kernel.name;
}

}  // namespace
