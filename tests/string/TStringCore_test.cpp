// Storage: representation, sharing, construction, assignment and element access.
#include "qilsys/TStringCore.h"

#include <gtest/gtest.h>

#include <string>
#include <type_traits>

#include "support/StringText.h"
#include "support/TStringCoreForTest.h"

using namespace std::string_literals;
using qilsys::test::UnitsOf;
using Inside = qilsys::test::TStringCoreForTest;

namespace {

TStringCore Letters(int n) { return TStringCore(u'z', n); }

static_assert(sizeof(TStringCore) == 32);
static_assert(std::is_nothrow_copy_constructible_v<TStringCore> && std::is_nothrow_move_constructible_v<TStringCore>);

struct CapacityRow {
  int length;
  bool isInline;
  int capacity;
};

class CapacityOfText : public testing::TestWithParam<CapacityRow> {};

TEST_P(CapacityOfText, FollowsItsLength) {
  const TStringCore text = Letters(GetParam().length);
  EXPECT_EQ(Inside::IsInline(text), GetParam().isInline);
  EXPECT_EQ(text.capacity(), GetParam().capacity);
  EXPECT_EQ(text.length(), GetParam().length);
  EXPECT_EQ(text.constData()[text.length()], 0);
}

INSTANTIATE_TEST_SUITE_P(Lengths, CapacityOfText,
                         testing::Values(CapacityRow{0, true, 15}, CapacityRow{1, true, 15}, CapacityRow{14, true, 15},
                                         CapacityRow{15, false, 18}, CapacityRow{16, false, 18},
                                         CapacityRow{17, false, 26}, CapacityRow{24, false, 26},
                                         CapacityRow{25, false, 42}, CapacityRow{40, false, 42},
                                         CapacityRow{41, false, 58}, CapacityRow{56, false, 58},
                                         CapacityRow{57, false, 90}, CapacityRow{88, false, 90},
                                         CapacityRow{1000, false, 1018}, CapacityRow{1017, false, 1530}),
                         [](const auto& row) { return "Length" + std::to_string(row.param.length); });

TEST(TStringCore, StartsEmptyAndInline) {
  const TStringCore text;
  EXPECT_TRUE(text.empty());
  EXPECT_TRUE(text.isEmpty());
  EXPECT_EQ(text.size(), 0U);
  EXPECT_EQ(text.capacity(), 15);
  EXPECT_EQ(*text.data(), 0);
  EXPECT_FALSE(text.isShared());
}

TEST(TStringCore, CountsUnitsAndBytes) {
  EXPECT_EQ(TStringCore(u"abc").length(), 3);
  EXPECT_EQ(TStringCore(u"abc").lengthInBytes(), 6);
  EXPECT_EQ(TStringCore::length(u"abc"), 3);
  EXPECT_EQ(TStringCore::length(nullptr), 0);
  EXPECT_EQ(TStringCore::lengthInBytes(u"abc"), 6);
  EXPECT_EQ(TStringCore::lengthInBytes(nullptr), 0);
}

TEST(TStringCore, ReadsPointerAndLength) {
  EXPECT_EQ(UnitsOf(TStringCore(nullptr, 5)), u"");
  EXPECT_EQ(UnitsOf(TStringCore(u"abc", 0)), u"");
  EXPECT_EQ(UnitsOf(TStringCore(u"abc", 2)), u"ab");
  EXPECT_EQ(UnitsOf(TStringCore(u"a\0b", 3)), u"a\0b"s);
  EXPECT_EQ(UnitsOf(TStringCore(u"a\0b")), u"a");
  EXPECT_EQ(UnitsOf(TStringCore(u"\xD800z\xDC00")), u"\xD800z\xDC00") << "units are not validated";
  EXPECT_EQ(UnitsOf(TStringCore(u"12345678901234")), u"12345678901234");
  EXPECT_EQ(UnitsOf(TStringCore(u"123456789012345")), u"123456789012345");
  EXPECT_EQ(UnitsOf(TStringCore(u"0123456789012345678901234567890", 31)), u"0123456789012345678901234567890");
}

TEST(TStringCore, RepeatsOneUnit) {
  EXPECT_EQ(UnitsOf(TStringCore(u'z', 3)), u"zzz");
  EXPECT_EQ(UnitsOf(TStringCore(u'z', 0)), u"");
  EXPECT_EQ(UnitsOf(TStringCore(u'z', -1)), u"");
  EXPECT_EQ(UnitsOf(TStringCore('\xE9', 2)), u"\u00E9\u00E9") << "a byte is widened, not decoded";
}

TEST(TStringCore, ReadsUtf8) {
  EXPECT_EQ(UnitsOf(TStringCore("a\xC3\xA9")), u"a\u00E9");
  EXPECT_EQ(UnitsOf(TStringCore("abc", 2)), u"ab");
  EXPECT_EQ(UnitsOf(TStringCore(static_cast<const char*>(nullptr))), u"");
  EXPECT_EQ(UnitsOf(TStringCore::fromUtf8("\xF0\x9F\x98\x80")), u"\U0001F600");
  EXPECT_EQ(UnitsOf(TStringCore::fromStdString("a\0b"s)), u"a\0b"s);
}

TEST(TStringCore, ReadsStandardStrings) {
  EXPECT_EQ(UnitsOf(TStringCore::fromStdU16String(u"a\0b"s)), u"a\0b"s);
  EXPECT_EQ(UnitsOf(TStringCore::fromStdWString(L"a\0\u00E9"s)), u"a\0\u00E9"s);
  EXPECT_EQ(UnitsOf(TStringCore::fromStdUString(L"\U0001F600")), u"\U0001F600");
  EXPECT_EQ(UnitsOf(TStringCore::fromUtf16(u"ab", 1)), u"a");
  EXPECT_EQ(UnitsOf(TStringCore::fromWChar(L"ab")), u"ab");
}

// ---- Sharing

TEST(TStringCore, CopiesOfABlockShareIt) {
  TStringCore a = Letters(20);
  TStringCore b;
  b = a;
  EXPECT_TRUE(a.isShared());
  EXPECT_TRUE(b.isShared());
  EXPECT_EQ(a.constData(), b.constData());
  const TStringCore c(a);
  EXPECT_EQ(Inside::References(a), 3);
}

TEST(TStringCore, WritingLeavesTheOtherSharer) {
  const TStringCore b = Letters(20);
  TStringCore a = b;
  a.data()[0] = u'y';
  EXPECT_EQ(UnitsOf(b), std::u16string(20, u'z'));
  EXPECT_EQ(a[0], u'y');
  EXPECT_FALSE(a.isShared());
  EXPECT_FALSE(b.isShared());
  EXPECT_EQ(a.capacity(), b.capacity());
}

TEST(TStringCore, ConstReadsNeverDetach) {
  const TStringCore a = Letters(20);
  const TStringCore b = a;
  static_cast<void>(b.data());
  static_cast<void>(b.begin());
  static_cast<void>(b.end());
  static_cast<void>(b.front());
  static_cast<void>(b.back());
  static_cast<void>(*b.rbegin());
  static_cast<void>(b[0]);
  static_cast<void>(b.at(0));
  static_cast<void>(static_cast<const TCodeUnit*>(b));
  EXPECT_TRUE(a.isShared());
}

TEST(TStringCore, EachWritableAccessDetaches) {
  const TStringCore kept = Letters(20);
  const auto detaches = [&kept](auto access) {
    TStringCore text = kept;
    access(text);
    return !text.isShared();
  };
  EXPECT_TRUE(detaches([](TStringCore& s) { static_cast<void>(s.data()); }));
  EXPECT_TRUE(detaches([](TStringCore& s) { static_cast<void>(s.begin()); }));
  EXPECT_TRUE(detaches([](TStringCore& s) { static_cast<void>(s.end()); }));
  EXPECT_TRUE(detaches([](TStringCore& s) { static_cast<void>(s.front()); }));
  EXPECT_TRUE(detaches([](TStringCore& s) { static_cast<void>(s.back()); }));
  EXPECT_TRUE(detaches([](TStringCore& s) { static_cast<void>(s.rbegin()); }));
  EXPECT_TRUE(detaches([](TStringCore& s) { static_cast<void>(s.rend()); }));
  EXPECT_TRUE(detaches([](TStringCore& s) { static_cast<void>(s[0]); }));
  EXPECT_TRUE(detaches([](TStringCore& s) { static_cast<void>(s[std::size_t{0}]); }));
  EXPECT_FALSE(detaches([](TStringCore& s) { static_cast<void>(s.crbegin()); }));
  EXPECT_FALSE(detaches([](TStringCore& s) { static_cast<void>(s.cbegin()); }));
}

TEST(TStringCore, MoveOfInlineTextLeavesTheSource) {
  TStringCore b(u"short");
  TStringCore a;
  a = std::move(b);
  EXPECT_EQ(UnitsOf(a), u"short");
  EXPECT_EQ(UnitsOf(b), u"short");  // NOLINT(bugprone-use-after-move): that is what is tested
  const TStringCore c(std::move(b));
  EXPECT_EQ(UnitsOf(b), u"short");  // NOLINT(bugprone-use-after-move)
}

TEST(TStringCore, MoveOfABlockEmptiesTheSource) {
  TStringCore b = Letters(20);
  const TCodeUnit* units = b.constData();
  TStringCore a;
  a = std::move(b);
  EXPECT_EQ(a.constData(), units);
  EXPECT_EQ(Inside::References(a), 1);
  EXPECT_TRUE(b.empty());  // NOLINT(bugprone-use-after-move)
  EXPECT_TRUE(Inside::IsInline(b));
  TStringCore c(std::move(a));
  EXPECT_EQ(c.constData(), units);
  EXPECT_TRUE(a.empty());  // NOLINT(bugprone-use-after-move)
}

TEST(TStringCore, AssignmentToItselfChangesNothing) {
  TStringCore text = Letters(20);
  TStringCore& same = text;
  text = same;
  text = std::move(same);
  EXPECT_EQ(UnitsOf(text), std::u16string(20, u'z'));
  EXPECT_EQ(Inside::References(text), 1);
}

TEST(TStringCore, AssignmentBetweenTwoSharersKeepsTheBlock) {
  TStringCore a = Letters(20);
  TStringCore b = a;
  a = b;
  EXPECT_EQ(Inside::References(a), 2);
  a = std::move(b);
  EXPECT_EQ(Inside::References(a), 1);
  EXPECT_EQ(UnitsOf(a), std::u16string(20, u'z'));
}

TEST(TStringCore, InlineTextAssignedToAnExclusiveBlockStaysInTheBlock) {
  TStringCore text = Letters(20);
  const int capacity = text.capacity();
  text = TStringCore(u"abc");
  EXPECT_EQ(UnitsOf(text), u"abc");
  EXPECT_EQ(text.capacity(), capacity);
  EXPECT_FALSE(Inside::IsInline(text));
}

TEST(TStringCore, InlineTextAssignedToASharedBlockGivesTheBlockUp) {
  const TStringCore other = Letters(20);
  TStringCore text = other;
  text = TStringCore(u"abc");
  EXPECT_EQ(UnitsOf(text), u"abc");
  EXPECT_TRUE(Inside::IsInline(text));
  EXPECT_FALSE(other.isShared());
}

TEST(TStringCore, SwapExchangesEveryPairOfForms) {
  for (const int m : {0, 3, 20}) {
    for (const int n : {0, 5, 30}) {
      TStringCore a(u'a', m);
      TStringCore b(u'b', n);
      a.swap(b);
      EXPECT_EQ(UnitsOf(a), std::u16string(static_cast<std::size_t>(n), u'b'));
      EXPECT_EQ(UnitsOf(b), std::u16string(static_cast<std::size_t>(m), u'a'));
      a.swap(a);
      EXPECT_EQ(a.length(), n);
    }
  }
}

// ---- Assignment of raw text

TEST(TStringCore, AssignsUnits) {
  TStringCore text(u"old");
  text.assign(u'c', -1);
  EXPECT_EQ(UnitsOf(text), u"old") << "a negative count changes nothing";
  text.assign(u'c', 2);
  EXPECT_EQ(UnitsOf(text), u"cc");
  text.assign('\x80', 1);
  EXPECT_EQ(UnitsOf(text), u"\u0080"s);
  text = u'z';
  EXPECT_EQ(UnitsOf(text), u"z");
  text = {};
  EXPECT_TRUE(text.empty());
}

TEST(TStringCore, AssignsRawText) {
  TStringCore text = Letters(40);
  const int capacity = text.capacity();
  text.assign(u"abc");
  EXPECT_EQ(UnitsOf(text), u"abc");
  EXPECT_EQ(text.capacity(), capacity) << "a held block is kept";
  EXPECT_EQ(UnitsOf(text.set(u"abcd", 2)), u"ab");
  text.assign(nullptr, 0);
  EXPECT_TRUE(text.empty());
  text = u"x";
  text.assign(nullptr, 5);
  EXPECT_TRUE(text.empty());
  text = u"x";
  text.assign("\xC3\xA9", -1);
  EXPECT_EQ(UnitsOf(text), u"\u00E9");
  text.assign(static_cast<const char*>(nullptr));
  EXPECT_TRUE(text.empty());
}

TEST(TStringCore, AssignsItsOwnFirstUnits) {
  TStringCore text(u"abcdef");
  text.assign(text.data(), -1);
  EXPECT_EQ(UnitsOf(text), u"abcdef");
  text.assign(text.data(), 9);
  EXPECT_EQ(UnitsOf(text), u"abcdef");
  text.assign(text.data(), 3);
  EXPECT_EQ(UnitsOf(text), u"abc");
  TStringCore withNul(u"a\0b", 3);
  withNul.assign(withNul.data(), -1);
  EXPECT_EQ(withNul.length(), 3) << "not measured again";
}

TEST(TStringCore, AssignsItsOwnTail) {
  for (const int repeats : {1, 10}) {
    TStringCore text = TStringCore(u"abcdef").repeated(repeats);
    const std::u16string whole = UnitsOf(text);
    const TStringCore sharer = text;
    text.assign(text.constData() + 2, -1);
    EXPECT_EQ(UnitsOf(text), whole.substr(2));
    EXPECT_EQ(UnitsOf(sharer), whole);
    text.assign(text.constData() + 1, 2);
    EXPECT_EQ(UnitsOf(text), u"de");
    text.assign(text.constData() + 1, 100);
    EXPECT_EQ(UnitsOf(text), u"e") << "clipped at the terminator";
    text.assign(text.constData() + 1, -1);
    EXPECT_TRUE(text.empty()) << "the terminator belongs to the own text";
  }
}

// ---- Size

TEST(TStringCore, CutTextKeepsItsBlockUntilSqueezed) {
  TStringCore text = Letters(1000);
  text.resize(3);
  EXPECT_EQ(UnitsOf(text), u"zzz");
  EXPECT_EQ(text.capacity(), 1018);
  EXPECT_FALSE(Inside::IsInline(text));
  text.squeeze();
  EXPECT_EQ(UnitsOf(text), u"zzz");
  EXPECT_EQ(text.capacity(), 15);
  EXPECT_TRUE(Inside::IsInline(text));
}

TEST(TStringCore, SqueezeFitsLongText) {
  TStringCore text = Letters(100);
  text.squeeze();
  EXPECT_EQ(text.capacity(), 101);
  const TCodeUnit* units = text.constData();
  text.squeeze();
  EXPECT_EQ(text.constData(), units);
  EXPECT_EQ(UnitsOf(text), std::u16string(100, u'z'));
}

TEST(TStringCore, SqueezeOfSharedShortTextKeepsABlock) {
  TStringCore text = Letters(40);
  text.resize(3);
  const TStringCore other = text;
  text.squeeze();
  EXPECT_EQ(UnitsOf(text), u"zzz");
  EXPECT_EQ(text.capacity(), 15);
  EXPECT_FALSE(Inside::IsInline(text));
  EXPECT_FALSE(other.isShared());
  text = TStringCore(u"12345678901234");
  EXPECT_EQ(UnitsOf(text), u"12345678901234") << "fourteen units fit a block of capacity 15";
  EXPECT_EQ(text.capacity(), 15);
}

TEST(TStringCore, SqueezeOfSharedFittingTextStillUnshares) {
  TStringCore text = Letters(40);
  text.squeeze();
  const TStringCore other = text;
  text.squeeze();
  EXPECT_FALSE(text.isShared());
  EXPECT_EQ(text.capacity(), 41);
}

TEST(TStringCore, ResizeKeepsWhatFits) {
  TStringCore text(u"abcdef");
  text.resize(-5);
  EXPECT_TRUE(text.empty());
  text = u"abcdef";
  text.resize(40);
  EXPECT_EQ(UnitsOf(text).substr(0, 6), u"abcdef");
  EXPECT_EQ(text.constData()[40], 0);
  const TStringCore other = text;
  text.resize(4);
  EXPECT_EQ(UnitsOf(text), u"abcd");
  EXPECT_EQ(other.length(), 40);
  EXPECT_EQ(text.capacity(), other.capacity());
}

TEST(TStringCore, ReserveFollowsItsThresholds) {
  TStringCore text(u"abc");
  text.reserve(14);
  EXPECT_TRUE(Inside::IsInline(text));
  EXPECT_EQ(text.capacity(), 15);
  text.reserve(15);
  EXPECT_FALSE(Inside::IsInline(text));
  EXPECT_EQ(text.capacity(), 16);
  text.reserve(100);
  EXPECT_EQ(text.capacity(), 101);
  text.reserve(3);
  EXPECT_EQ(text.capacity(), 101) << "never lowered";
  EXPECT_EQ(UnitsOf(text), u"abc");
}

TEST(TStringCore, ReserveLeavesABlockExclusive) {
  TStringCore text = Letters(20);
  const TStringCore other = text;
  text.reserve(1);
  EXPECT_FALSE(text.isShared());
  EXPECT_EQ(text.capacity(), other.capacity());
}

TEST(TStringCore, ClearGivesTheBlockUp) {
  TStringCore text = Letters(20);
  const TStringCore other = text;
  text.clear();
  EXPECT_TRUE(Inside::IsInline(text));
  EXPECT_EQ(text.capacity(), 15);
  EXPECT_TRUE(text.empty());
  EXPECT_FALSE(other.isShared());
}

TEST(TStringCore, KnowsItsOwnUnits) {
  const TStringCore text(u"abc");
  EXPECT_TRUE(Inside::InSelf(text, text.data()));
  EXPECT_TRUE(Inside::InSelf(text, text.data() + 3));
  EXPECT_FALSE(Inside::InSelf(text, text.data() + 4));
  EXPECT_FALSE(Inside::InSelf(text, nullptr));
}

// ---- Elements

TEST(TStringCore, WalksBothWays) {
  TStringCore text(u"abc");
  EXPECT_EQ(std::u16string(text.rbegin(), text.rend()), u"cba");
  EXPECT_EQ(std::u16string(text.crbegin(), text.crend()), u"cba");
  EXPECT_EQ(text.back(), u'c');
  text.back() = u'z';
  text.front() = u'y';
  EXPECT_EQ(UnitsOf(text), u"ybz");
  EXPECT_EQ(*std::as_const(text).front(), u'y');
}

TEST(TStringCore, TheTerminatorIsAnElement) {
  TStringCore text(u"abc");
  EXPECT_EQ(text.at(3), 0);
  EXPECT_EQ(std::as_const(text)[3], 0);
  EXPECT_EQ(std::as_const(text)[std::size_t{3}], 0);
  EXPECT_EQ(&text[3], text.data() + 3);
  EXPECT_EQ(&text[std::size_t{3}], text.data() + 3);
}

template <class Access>
std::string MessageOf(Access access) {
  try {
    access();
  } catch (const TStringCore::Exception& e) {
    return e.message.toStdString();
  }
  return "nothing raised";
}

TEST(TStringCore, ElementsOutsideRaise) {
  TStringCore text(u"abc");
  const TStringCore& read = text;
  const std::size_t wrapped = static_cast<std::size_t>(-1);
  for (const int i : {-1, 4}) {
    EXPECT_EQ(MessageOf([&] { return read.at(i); }), "TStringCore::at(int): argument out of range.");
    EXPECT_EQ(MessageOf([&] { return text[i]; }), "TStringCore::operator[int] argument out of range.");
    EXPECT_EQ(MessageOf([&] { return read[i]; }), "TStringCore::operator[int] const argument out of range.");
  }
  for (const std::size_t i : {std::size_t{4}, wrapped}) {
    EXPECT_EQ(MessageOf([&] { return text[i]; }), "TStringCore::operator[size_type] argument out of range.");
    EXPECT_EQ(MessageOf([&] { return read[i]; }), "TStringCore::operator[size_type] const argument out of range.");
  }
  EXPECT_EQ(MessageOf([&] { return text[-1L]; }), "TStringCore::operator[size_type] argument out of range.");
}

TEST(TStringCore, AFailedWriteAccessDoesNotDetach) {
  TStringCore text = Letters(20);
  const TStringCore other = text;
  EXPECT_THROW(text[21] = u'y', TStringCore::Exception);
  EXPECT_TRUE(text.isShared());
}

}  // namespace
