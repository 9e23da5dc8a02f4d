/// The class TStringCore, and the fast paths of its text inside and of a shared block. Include TStringCore.h, which adds
/// what belongs to it.
///
/// Positions and lengths are `int` in 16-bit code units unless a name says code points. A negative length means that
/// the text runs to its NUL. Positions outside the text do nothing or give -1, empty text or the end iterator; only
/// element access, number bases, capacity limits and conversions raise, and a failed operation leaves the text as it
/// was. Every argument of type `const TCodeUnit*` may be null. Arguments may point into the string's own text.
///
/// Each operation on TCodeUnit has a second form on the platform's other unit type; see TForeignForms.h.
#pragma once

#include <compare>
#include <concepts>
#include <cstddef>
#include <cstdint>
#include <iterator>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

#include "qilsys/Export.h"
#include "qilsys/TCodeUnit.h"
#include "qilsys/TForeignForms.h"
#include "qilsys/TStringOptions.h"
#include "qilsys/TStringStorage.h"

namespace qilsys::string {
struct Inside;
}  // namespace qilsys::string

/// Text of up to 14 units lives inside the object; longer text lives in a counted block that copies share until one of
/// them writes. Units are never validated and may include NUL. Different objects may be used from different threads
/// even where they share a block; one object is not safe while any thread writes to it.
class QILSYS_API TStringCore : public qilsys::TForeignForms<TStringCore> {
 public:
  using value_type = TCodeUnit;
  using size_type = std::size_t;
  using difference_type = std::ptrdiff_t;
  using CodePointIterator = TConstCodePointIterator<TStringCore>;

  class Exception;
  class CapacityException;
  class OutOfMemoryException;

  /// The most code units a block has room for, terminator included.
  static constexpr int MaxStringCapacity = 0x7FFFFFF8;

  // ---- Construction and assignment

  // What is defined behind the class is inline from here on, or a module that imports the class would have met it as
  // imported before.
  TStringCore() noexcept {}
  /// Copies `len` units as they are. Null gives empty text.
  inline TStringCore(const TCodeUnit* s, int len = -1);
  template <qilsys::ForeignUnit U>
  TStringCore(const U* s, int len = -1) : TStringCore(qilsys::TForeignText(s, s ? len : 0)) {}
  /// `s` is UTF-8 of `len` bytes; undecodable input becomes U+FFFD. Null gives empty text.
  template <qilsys::NarrowUnit C>
  TStringCore(const C* s, int len = -1) : TStringCore() {
    appendUtf8(s, len);
  }
  /// `n` copies of `c`; none where `n` is negative. A `char` is zero-extended, not decoded.
  TStringCore(TCodeUnit c, int n) : TStringCore() { assign(c, n); }
  TStringCore(char c, int n) : TStringCore() { assign(c, n); }
  template <qilsys::ForeignUnit U>
  TStringCore(U c, int n) : TStringCore() {
    assign(c, n);
  }
  /// The text of `text`, empty where that is null.
  explicit TStringCore(const qilsys::TForeignText& text) : TStringCore(text.data(), text.length()) {}

  /// Copies share a block: one atomic increment.
  inline TStringCore(const TStringCore& other) noexcept;
  /// Takes the block and leaves `other` empty; an inline `other` keeps its text.
  inline TStringCore(TStringCore&& other) noexcept;
  inline ~TStringCore();

  /// Shares the block of `other`; inline text is copied, into the block of this string where it holds one alone.
  inline TStringCore& operator=(const TStringCore& other);
  /// As the copy assignment, but takes a block and leaves `other` empty; an inline `other` keeps its text.
  inline TStringCore& operator=(TStringCore&& other);
  /// One unit. Templates, so that `text = {}` means the empty text.
  template <std::same_as<TCodeUnit> U>
  TStringCore& operator=(U c) {
    assign(c, 1);
    return *this;
  }
  template <qilsys::ForeignUnit U>
  TStringCore& operator=(U c) {
    assign(c, 1);
    return *this;
  }
  void assign(const TStringCore& other) { *this = other; }
  /// `n` copies of `c`; a negative `n` changes nothing.
  void assign(TCodeUnit c, int n);
  void assign(char c, int n) { assign(static_cast<TCodeUnit>(static_cast<unsigned char>(c)), n); }
  /// Keeps a held block. Where `s` is the first unit of this text, a negative `len` changes nothing and another cuts.
  void assign(const TCodeUnit* s, int len = -1) { _assignHandleSelf(s, len); }
  TStringCore& set(const TCodeUnit* s, int len = -1) {
    _assignHandleSelf(s, len);
    return *this;
  }
  /// By way of three copy assignments.
  void swap(TStringCore& other);
  using TForeignForms::assign;
  using TForeignForms::fromUtf16;
  using TForeignForms::fromWChar;
  using TForeignForms::set;
  friend void swap(TStringCore& a, TStringCore& b) { a.swap(b); }

  static TStringCore fromUtf8(const char* s, int len = -1) { return TStringCore(s, len); }
  static TStringCore fromStdString(const std::string& s) { return fromUtf8(s.data(), static_cast<int>(s.size())); }
  static TStringCore fromUtf16(const TCodeUnit* s, int len = -1) { return TStringCore(s, len); }
  static TStringCore fromWChar(const TCodeUnit* s, int len = -1) { return TStringCore(s, len); }
  static TStringCore fromStdWString(const std::wstring& s) { return {s.data(), static_cast<int>(s.size())}; }
  static TStringCore fromStdUString(const std::wstring& s) { return fromStdWString(s); }
  static TStringCore fromStdU16String(const std::u16string& s) { return {s.data(), static_cast<int>(s.size())}; }
  /// Surrogate values and values above U+10FFFF become U+FFFD.
  static TStringCore fromUtf32(const char32_t* s, int len = -1);
  /// Each byte becomes one unit; NUL bytes inside a given length are kept.
  static TStringCore fromLatin1(const char* s, int len = -1);
  /// Ends at the first NUL byte, whatever the length.
  static TStringCore fromLatin9(const char* s, int len = -1);
  /// Decodes by the default converter of ICU; a converter failure ends the text.
  static TStringCore fromLocal8Bit(const char* s, int len = -1);

  // ---- Size and access

  using TForeignForms::length;
  using TForeignForms::lengthInBytes;
  int length() const noexcept { return m_storage.length(); }
  size_type size() const noexcept { return static_cast<size_type>(length()); }
  /// A text of 0x40000000 units and more has no byte count in an int; it wraps as the multiplication does.
  int lengthInBytes() const noexcept { return static_cast<int>(static_cast<unsigned>(length()) * sizeof(TCodeUnit)); }
  /// The units before the NUL of `s`: 0 for null. 0x7FFFFFF8 of them or more raise CapacityException.
  static int length(const TCodeUnit* s);
  static int lengthInBytes(const TCodeUnit* s);
  bool empty() const noexcept { return length() == 0; }
  bool isEmpty() const noexcept { return length() == 0; }
  /// The units of the storage, the terminator's slot included: 15 while inline.
  int capacity() const noexcept { return m_storage.capacity(); }
  /// True while another string holds the same block.
  bool isShared() const noexcept { return m_storage.isShared(); }
  /// Makes room for `n` units; never lowers the capacity and leaves a held block exclusive. Negative `n` raises.
  void reserve(int n) { reserveWithMode(n, GrowAtLeast); }
  /// Sets the length, 0 for a negative `n`. New units are not initialised.
  void resize(int n) { resizeForWrite(n < 0 ? 0 : n); }
  /// Shrinks the storage to the text.
  void squeeze();
  /// Gives up any block and becomes empty and inline.
  inline void clear() noexcept;

  /// The const forms never detach; the others first make a shared block exclusive.
  const TCodeUnit* data() const noexcept { return m_storage.units(); }
  const TCodeUnit* constData() const noexcept { return data(); }
  operator const TCodeUnit*() const noexcept { return data(); }
  const TCodeUnit* begin() const noexcept { return data(); }
  const TCodeUnit* cbegin() const noexcept { return data(); }
  const TCodeUnit* end() const noexcept { return data() + length(); }
  const TCodeUnit* cend() const noexcept { return data() + length(); }
  const TCodeUnit* front() const noexcept { return data(); }
  /// The last unit; not tested for emptiness.
  const TCodeUnit& back() const noexcept { return data()[length() - 1]; }
  TCodeUnit* data() {
    if (isShared()) detachSlow();
    return m_storage.units();
  }
  TCodeUnit* begin() { return data(); }
  TCodeUnit* end() { return data() + length(); }
  TCodeUnit& front() { return *data(); }
  TCodeUnit& back() { return data()[length() - 1]; }
  auto rbegin() const noexcept { return std::reverse_iterator<const TCodeUnit*>(end()); }
  auto rend() const noexcept { return std::reverse_iterator<const TCodeUnit*>(begin()); }
  auto crbegin() const noexcept { return rbegin(); }
  auto crend() const noexcept { return rend(); }
  auto rbegin() { return std::reverse_iterator<TCodeUnit*>(end()); }
  auto rend() { return std::reverse_iterator<TCodeUnit*>(begin()); }
  /// Element access takes 0 to length() inclusive, so the terminator too; any other index raises.
  TCodeUnit at(int i) const;
  TCodeUnit operator[](int i) const;
  TCodeUnit operator[](size_type i) const;
  TCodeUnit& operator[](int i);
  TCodeUnit& operator[](size_type i);
  /// Any other integer type goes by the form above that holds its values.
  template <std::integral I>
  TCodeUnit operator[](I i) const {
    return (*this)[static_cast<std::conditional_t<sizeof(I) < sizeof(int), int, size_type>>(i)];
  }
  template <std::integral I>
  TCodeUnit& operator[](I i) {
    return (*this)[static_cast<std::conditional_t<sizeof(I) < sizeof(int), int, size_type>>(i)];
  }

  // ---- Code points and conversion to other encodings

  using TForeignForms::toWCharArray;
  CodePointIterator codepoint_cbegin() const;
  CodePointIterator codepoint_cend() const;
  /// The iterator at a unit index, negative counting from the end; -1 and the length give the end. Raises
  /// std::runtime_error outside the text and inside a code point.
  CodePointIterator createFromIndex(int codeUnitIndex, int codePointIndex = -1) const;
  /// UTF-8.
  std::string toStdString() const;
  std::u16string toStdU16String() const;
  std::wstring toStdUString() const;
  std::wstring toStdWString() const;
  /// Units that the encoding lacks become "?" and set `*lossy`.
  std::string toLatin1(bool* lossy = nullptr) const;
  std::string toLatin9(bool* lossy = nullptr) const;
  /// By the default converter of ICU; `*lossy` is always false.
  std::string toLocal8Bit(bool* lossy = nullptr) const;
  /// Copies the text and a NUL: the elements written, or -1 where they do not fit. Lone surrogates become U+FFFD.
  int toWCharArray(TCodeUnit* target, int capacity) const;
  std::vector<wchar_t> toWCharVector() const;
  /// Code points in `units` units from `start`, negative for the rest.
  int subStringSizeInCodePoints(int start, int units) const;
  int subStringSizeInCodeUnits(int start, int codePoints) const;

  // ---- Comparison: -1, 0 or 1 by unsigned unit value; ends at the first NUL. Operators: TStringCoreOperators.h.

  using TForeignForms::compare;
  using TForeignForms::compareN;
  int compare(const TStringCore& other, CaseSensitivity cs = CaseSensitive) const;
  int compare(const TCodeUnit* other, CaseSensitivity cs = CaseSensitive) const;
  static int compare(const TCodeUnit* a, const TCodeUnit* b, CaseSensitivity cs = CaseSensitive);
  /// At most `n` units, all where `n` is negative.
  static int compareN(const TCodeUnit* a, const TCodeUnit* b, int n, CaseSensitivity cs = CaseSensitive);

  bool operator==(const TStringCore& other) const;
  bool operator!=(const TStringCore& other) const;
  bool operator<(const TStringCore& other) const;
  bool operator<=(const TStringCore& other) const;
  bool operator>(const TStringCore& other) const;
  bool operator>=(const TStringCore& other) const;
  bool operator==(const TCodeUnit* other) const;
  bool operator!=(const TCodeUnit* other) const;
  bool operator<(const TCodeUnit* other) const;
  bool operator<=(const TCodeUnit* other) const;
  bool operator>(const TCodeUnit* other) const;
  bool operator>=(const TCodeUnit* other) const;
  /// Against one unit: only the first unit counts, and the mirrored forms are deliberately not mirror images.
  bool operator==(TCodeUnit c) const;
  bool operator!=(TCodeUnit c) const;
  bool operator<(TCodeUnit c) const;
  bool operator<=(TCodeUnit c) const;
  bool operator>(TCodeUnit c) const;
  bool operator>=(TCodeUnit c) const;
  /// By compare, so that texts which differ behind a NUL alone are equivalent but not equal; against one unit by
  /// operator< and operator==. Declared here, since the conversion to a pointer would bring in the order of addresses.
  std::weak_ordering operator<=>(const TStringCore& other) const { return compare(other) <=> 0; }
  std::weak_ordering operator<=>(const TCodeUnit* other) const { return compare(other) <=> 0; }
  std::weak_ordering operator<=>(TCodeUnit c) const;

  // ---- Search: a unit index, or -1. A negative `start` has the length added.

  using TForeignForms::contains;
  using TForeignForms::count;
  using TForeignForms::endsWith;
  using TForeignForms::find;
  using TForeignForms::findChar;
  using TForeignForms::findLast;
  using TForeignForms::findOneNotOf;
  using TForeignForms::findOneOf;
  using TForeignForms::findStr;
  using TForeignForms::indexOf;
  using TForeignForms::lastIndexOf;
  using TForeignForms::startsWith;
  static int findStr(const TCodeUnit* hay, int hayLen, const TCodeUnit* needle, int needleLen, int start,
                     CaseSensitivity cs = CaseSensitive);
  static int findStr(const TCodeUnit* hay, int hayLen, const TCodeUnit* needle, int start = 0,
                     CaseSensitivity cs = CaseSensitive);
  static int findStr(const TCodeUnit* hay, const TCodeUnit* needle, int start = 0, CaseSensitivity cs = CaseSensitive);

  /// The needle ends at its first NUL.
  int indexOf(const TStringCore& needle, int start = 0, CaseSensitivity cs = CaseSensitive) const;
  int indexOf(const TCodeUnit* needle, int start = 0, CaseSensitivity cs = CaseSensitive) const;
  int indexOf(TCodeUnit c, int start = 0) const;
  static int indexOf(const TCodeUnit* s, int len, TCodeUnit c, int start = 0);

  bool contains(const TStringCore& needle, CaseSensitivity cs = CaseSensitive) const;
  /// This text too ends at its first NUL.
  template <std::same_as<wchar_t> W>
  bool contains(const W* needle, CaseSensitivity cs = CaseSensitive) const {
    if constexpr (qilsys::ForeignUnit<W>) {
      return containsInTerminated(qilsys::TForeignText(needle).data(), cs);
    } else {
      return containsInTerminated(needle, cs);
    }
  }
  /// Always case-sensitive, whatever the argument says; no other overload ignores it.
  template <std::same_as<char16_t> W>
  bool contains(const W* needle, CaseSensitivity = CaseSensitive) const {
    return findStr(data(), length(), needle) >= 0;
  }
  bool contains(std::nullptr_t, CaseSensitivity cs = CaseSensitive) const { return containsInTerminated(nullptr, cs); }
  bool contains(TCodeUnit c) const;

  int count(TCodeUnit c) const;
  /// Matches may overlap.
  int count(const TCodeUnit* needle, CaseSensitivity cs = CaseSensitive) const;
  int count(const TStringCore& needle, CaseSensitivity cs = CaseSensitive) const;

  /// False for an empty needle.
  bool startsWith(const TStringCore& needle, CaseSensitivity cs = CaseSensitive) const;
  bool startsWith(const TCodeUnit* needle, CaseSensitivity cs = CaseSensitive) const;
  bool startsWith(TCodeUnit c) const;
  bool endsWith(const TStringCore& needle, CaseSensitivity cs = CaseSensitive) const;
  bool endsWith(const TCodeUnit* needle, CaseSensitivity cs = CaseSensitive) const;
  bool endsWith(TCodeUnit c) const;

  /// Backward from `from`, -1 meaning the length; folds whole code points.
  int lastIndexOf(const TStringCore& needle, int from = -1, CaseSensitivity cs = CaseSensitive) const;
  int lastIndexOf(const TCodeUnit* needle, int from = -1, CaseSensitivity cs = CaseSensitive) const;
  /// The scan includes the terminator, so NUL is found at the length; a `from` above the length starts there.
  int lastIndexOf(TCodeUnit c, int from = -1) const;

  /// Searches that give the end iterator where nothing is found.
  CodePointIterator find(const TCodeUnit* needle, CaseSensitivity cs = CaseSensitive) const;
  CodePointIterator find(const TCodeUnit* needle, const CodePointIterator& from,
                         CaseSensitivity cs = CaseSensitive) const;
  CodePointIterator find(TCodeUnit c) const;
  CodePointIterator find(TCodeUnit c, const CodePointIterator& from) const;
  CodePointIterator findLast(const TStringCore& needle, CaseSensitivity cs = CaseSensitive) const;
  CodePointIterator findLast(const TStringCore& needle, const CodePointIterator& from,
                             CaseSensitivity cs = CaseSensitive) const;
  CodePointIterator findLast(TCodeUnit c) const;
  CodePointIterator findLast(TCodeUnit c, const CodePointIterator& from) const;

  /// The first code point of a set; a set of ASCII units never matches another unit.
  CodePointIterator findOneOf(const TStringCore& set, CodePointIterator from) const;
  CodePointIterator findOneOf(const TCodeUnit* set, CodePointIterator from) const;
  int findOneOf(const TStringCore& set, int start = 0) const;
  int findOneOf(const TCodeUnit* set, int start = 0) const;
  static int findOneOf(const TCodeUnit* text, const TCodeUnit* set, int start = 0);
  static int findChar(const TCodeUnit* text, TCodeUnit c, int start = 0);
  int findOneNotOf(const TStringCore& set, int start = 0) const;
  int findOneNotOf(const TCodeUnit* set, int start = 0) const;
  int findOneNotOf(TCodeUnit c, int start = 0) const;
  /// Indices from the start of `text`, which ends at its NUL.
  static int findOneNotOf(const TCodeUnit* text, const TCodeUnit* set, int start = 0);
  /// The length of the run of `c` that the text begins with; a NUL `c` gives 0, or -1 on empty text.
  static int findOneNotOf(const TCodeUnit* text, TCodeUnit c);

  // ---- Editing. Every operation gives this string unless its result says otherwise.

  using TForeignForms::append;
  using TForeignForms::dosToUnix;
  using TForeignForms::fill;
  using TForeignForms::insert;
  using TForeignForms::prepend;
  using TForeignForms::push_back;
  using TForeignForms::push_front;
  using TForeignForms::removeAll;
  using TForeignForms::removeAnyOf;
  using TForeignForms::replace;
  using TForeignForms::replaceAnyOf;
  using TForeignForms::replaceCount;
  using TForeignForms::trim;
  using TForeignForms::trimLeft;
  using TForeignForms::trimRight;
  using TForeignForms::operator+=;
  TStringCore& append(const TStringCore& other);
  TStringCore& append(const TCodeUnit* s, int len = -1);
  inline TStringCore& append(TCodeUnit c);
  /// Zero-extended, not decoded.
  TStringCore& append(char c) { return append(static_cast<TCodeUnit>(static_cast<unsigned char>(c))); }
  TStringCore& operator+=(const TStringCore& other) { return append(other); }
  TStringCore& operator+=(const TCodeUnit* s) { return append(s, -1); }
  TStringCore& operator+=(TCodeUnit c) { return append(c); }
  void push_back(const TStringCore& other) { append(other); }
  void push_back(TCodeUnit c) { append(c); }

  TStringCore& insert(int i, const TStringCore& text) { return insert(i, text.data(), text.length()); }
  /// Does nothing where it would split a code point. Own text at or behind `i` is read as it stands once shifted.
  TStringCore& insert(int i, const TCodeUnit* s, int n = -1);
  /// One unit, also inside a code point.
  TStringCore& insert(int i, TCodeUnit c);
  TStringCore& insert(const CodePointIterator& at, const TStringCore& text);
  TStringCore& insert(const CodePointIterator& at, const TCodeUnit* s, int n = -1);
  TStringCore& prepend(const TStringCore& text) { return insert(0, text); }
  TStringCore& prepend(const TCodeUnit* s, int n = -1) { return insert(0, s, n); }
  TStringCore& prepend(TCodeUnit c) { return insert(0, c); }
  void push_front(const TStringCore& text) { insert(0, text); }
  void push_front(TCodeUnit c) { insert(0, c); }

  /// Puts text in place of `n` units from `pos`, which may be 0 units.
  TStringCore& replace(int pos, int n, const TCodeUnit* s, int len = -1);
  TStringCore& replace(int pos, int n, const TStringCore& text) { return replace(pos, n, text.data(), text.length()); }
  /// Each code point of the range becomes one unit `c`.
  TStringCore& replace(int pos, int n, TCodeUnit c);
  /// `n` counts units; the end iterator does nothing.
  TStringCore& replace(const CodePointIterator& at, int n, const TStringCore& text);
  TStringCore& replace(const CodePointIterator& at, int n, TCodeUnit c);
  /// Each match, left to right, never overlapping; replaced text is not searched again.
  TStringCore& replace(TCodeUnit before, TCodeUnit after);
  TStringCore& replace(TCodeUnit before, const TStringCore& after);
  TStringCore& replace(const TStringCore& before, const TStringCore& after, CaseSensitivity cs = CaseSensitive);
  TStringCore& replace(const TCodeUnit* before, int beforeLen, const TCodeUnit* after, int afterLen,
                       CaseSensitivity cs = CaseSensitive);
  /// The number of replacements. A negative length here means no text, not NUL-terminated text.
  int replaceCount(const TCodeUnit* before, int beforeLen, const TCodeUnit* after, int afterLen,
                   CaseSensitivity cs = CaseSensitive);
  /// Each code point of `set` from `start` on becomes one unit `c`.
  TStringCore& replaceAnyOf(const TCodeUnit* set, TCodeUnit c, int start = 0);
  TStringCore& replaceAnyOf(const TStringCore& set, TCodeUnit c, int start = 0);
  /// The same in a NUL-terminated buffer of the caller; gives its new length.
  static int replaceAnyOf(TCodeUnit* text, const TCodeUnit* set, TCodeUnit c, int start = 0);

  /// Units before the start count against `n` where `pos` is negative; an `n` past the end cuts.
  TStringCore& removeAt(int pos, int n);
  TStringCore& removeAt(const CodePointIterator& at, int n);
  /// Drops what follows an embedded NUL once a `c` was found.
  TStringCore& removeAll(TCodeUnit c);
  /// Text joined by a removal is found only from the removal point on.
  TStringCore& removeAll(const TCodeUnit* s, int len = -1, CaseSensitivity cs = CaseSensitive);
  TStringCore& removeAll(const TStringCore& text, CaseSensitivity cs = CaseSensitive);
  TStringCore& removeAnyOf(const TCodeUnit* set, int start = 0);
  TStringCore& removeAnyOf(const TStringCore& set, int start = 0);
  /// The same in a NUL-terminated buffer of the caller; gives its new length. A set of several units, none a surrogate
  /// and one at least not ASCII, ends the shortened text with the digit zero in place of NUL.
  static int removeAnyOf(TCodeUnit* text, const TCodeUnit* set, int start = 0);

  TStringCore& truncate(int n);
  TStringCore& truncate(const CodePointIterator& at);
  TStringCore& truncateAtFirstNull();
  void chop(int n);

  /// White space by TCType.
  TStringCore& trim();
  TStringCore& trimLeft();
  TStringCore& trimRight();
  TStringCore& trim(TCodeUnit c);
  TStringCore& trimLeft(TCodeUnit c);
  TStringCore& trimRight(TCodeUnit c);
  /// Sign-extended, unlike append(char).
  TStringCore& trim(char c) { return trim(static_cast<TCodeUnit>(static_cast<signed char>(c))); }
  TStringCore& trimLeft(char c) { return trimLeft(static_cast<TCodeUnit>(static_cast<signed char>(c))); }
  TStringCore& trimRight(char c) { return trimRight(static_cast<TCodeUnit>(static_cast<signed char>(c))); }
  /// The code points of a set.
  TStringCore& trim(const TCodeUnit* set);
  TStringCore& trimLeft(const TCodeUnit* set);
  TStringCore& trimRight(const TCodeUnit* set);
  TStringCore& trim(const TStringCore& set);
  TStringCore& trimLeft(const TStringCore& set);
  TStringCore& trimRight(const TStringCore& set);

  /// `n` units `c`; a negative `n` means the number of code points of the text.
  TStringCore& fill(TCodeUnit c, int n = -1);
  /// Keeps surrogate pairs in order.
  void reverse();
  TStringCore toLower() const;
  TStringCore toUpper() const;
  /// The byte order mark is U+FEFF.
  bool hasBOM() const noexcept { return data()[0] == 0xFEFF; }
  TStringCore& prependBOM();
  TStringCore& removeBOM();
  TStringCore& dosToUnix();
  /// In a NUL-terminated buffer of the caller; gives its new length.
  static int dosToUnix(TCodeUnit* text);
  TStringCore& unixToDos();
  /// CR LF on every platform.
  TStringCore& toNativeLineEndings() { return unixToDos(); }

  // ---- Substrings and splitting: new strings. A result that equals the whole text shares its block.

  using TForeignForms::join;
  using TForeignForms::leftJustified;
  using TForeignForms::rightJustified;
  using TForeignForms::section;
  using TForeignForms::spanExcluding;
  using TForeignForms::spanIncluding;
  using TForeignForms::split;
  using TForeignForms::splitOnAny;
  using TForeignForms::tokenize;
  /// The first or last `n` units: none where `n` is below 1, the whole text where it has no more.
  TStringCore left(int n) const;
  TStringCore right(int n) const;
  /// `n` units from `pos` on, as far as they go. A negative `n` runs to the first NUL.
  TStringCore mid(int pos, int n = -1) const;
  /// From `from` up to `to`; the rest of the text where `to` is the end, or `codePoints` is -1.
  TStringCore mid(CodePointIterator from, CodePointIterator to) const;
  TStringCore mid(CodePointIterator from, int codePoints = -1) const;
  /// The text padded with `fill` to `width` units, behind it or before it. Longer text stays, unless `truncate` cuts
  /// it to its first `width` units.
  TStringCore leftJustified(int width, TCodeUnit fill = u' ', bool truncate = false) const;
  TStringCore rightJustified(int width, TCodeUnit fill = u' ', bool truncate = false) const;
  /// The text `n` times over: none of it where `n` is below 1.
  TStringCore repeated(int n) const;
  /// Copies after reverse() and trim().
  TStringCore reversed() const;
  TStringCore trimmed() const;
  /// The text before the first code point outside the set, or before the first one in it; all of it without one.
  TStringCore spanIncluding(const TCodeUnit* set) const;
  TStringCore spanExcluding(const TCodeUnit* set) const;

  /// The fields between separators; none at all for an empty separator.
  std::vector<TStringCore> split(const TStringCore& sep, SplitBehavior behavior = KeepEmptyTokens,
                                 CaseSensitivity cs = CaseSensitive) const;
  std::vector<TStringCore> split(const TCodeUnit* sep, SplitBehavior behavior = KeepEmptyTokens,
                                 CaseSensitivity cs = CaseSensitive) const;
  std::vector<TStringCore> split(TCodeUnit sep, SplitBehavior behavior = KeepEmptyTokens) const;
  /// `len` is the real length here, not measured.
  static std::vector<TStringCore> split(const TCodeUnit* text, int len, const TCodeUnit* sep,
                                        SplitBehavior behavior = KeepEmptyTokens, CaseSensitivity cs = CaseSensitive);
  static std::vector<TStringCore> split(const TCodeUnit* text, int len, TCodeUnit sep,
                                        SplitBehavior behavior = KeepEmptyTokens);
  std::vector<TStringCore> splitOnAny(const TStringCore& set, SplitBehavior behavior = KeepEmptyTokens) const;
  std::vector<TStringCore> splitOnAny(const TCodeUnit* set, SplitBehavior behavior = KeepEmptyTokens) const;
  /// The next field from `pos`, which moves on and becomes -1 with the last one.
  TStringCore tokenize(const TStringCore& set, int& pos, SplitBehavior behavior = KeepEmptyTokens) const;
  TStringCore tokenize(const TCodeUnit* set, int& pos, SplitBehavior behavior = KeepEmptyTokens) const;
  /// Fields `first` to `last`, negative counting from the last field.
  TStringCore section(const TCodeUnit* sep, int first, int last = -1, SectionFlags flags = SectionDefault) const;
  TStringCore section(TCodeUnit sep, int first, int last = -1, SectionFlags flags = SectionDefault) const;
  static TStringCore section(const TCodeUnit* text, int len, const TCodeUnit* sep, int first, int last = -1,
                             SectionFlags flags = SectionDefault);
  static TStringCore join(const std::vector<TStringCore>& list, const TStringCore& sep);
  static TStringCore join(const std::vector<TStringCore>& list, TCodeUnit sep);

  // ---- Numbers. Bases 2 to 36, and 64 for number() alone; any other base raises.

  using TForeignForms::leftDoubleLength;
  using TForeignForms::leftIntegerLength;
  using TForeignForms::number;
  /// Text shorter than `width` is filled up in front. In base 10, "0" as fill goes between sign and digits; in any other
  /// a negative number is the 64-bit pattern of its value.
  static TStringCore number(short value, int base = 10, int width = 0, TCodeUnit fill = u' ');
  static TStringCore number(int value, int base = 10, int width = 0, TCodeUnit fill = u' ');
  static TStringCore number(long value, int base = 10, int width = 0, TCodeUnit fill = u' ');
  static TStringCore number(long long value, int base = 10, int width = 0, TCodeUnit fill = u' ');
  static TStringCore number(unsigned short value, int base = 10, int width = 0, TCodeUnit fill = u' ');
  static TStringCore number(unsigned int value, int base = 10, int width = 0, TCodeUnit fill = u' ');
  static TStringCore number(unsigned long value, int base = 10, int width = 0, TCodeUnit fill = u' ');
  static TStringCore number(unsigned long long value, int base = 10, int width = 0, TCodeUnit fill = u' ');
  /// `format` is one of e, f, g and their capitals; `decimalForm` drops trailing zeros but keeps a decimal point.
  static TStringCore number(double value, char format = 'g', int precision = 6, bool decimalForm = false);
  template <std::integral N>
  TStringCore& setNum(N value, int base = 10) {
    return *this = number(value, base);
  }
  TStringCore& setNum(double value, char format = 'g', int precision = 6, bool decimalForm = false) {
    return *this = number(value, format, precision, decimalForm);
  }
  /// The address in base 16, after "0x" with `prefix`, and with zeros before it to 16 digits with `fullWidth`.
  static TStringCore pointer(const void* p, bool prefix = true, bool fullWidth = true);
  /// `*ok` tells whether the whole text was a number in range; `errno` is 34 on overflow, 22 without digits.
  short toShort(bool* ok = nullptr, int base = 10) const;
  unsigned short toUShort(bool* ok = nullptr, int base = 10) const;
  int toInt(bool* ok = nullptr, int base = 10) const;
  unsigned int toUInt(bool* ok = nullptr, int base = 10) const;
  /// 64 bits on every platform.
  long long toLong(bool* ok = nullptr, int base = 10) const;
  unsigned long long toULong(bool* ok = nullptr, int base = 10) const;
  long long toLongLong(bool* ok = nullptr, int base = 10) const;
  unsigned long long toULongLong(bool* ok = nullptr, int base = 10) const;
  double toDouble(bool* ok = nullptr) const;
  float toFloat(bool* ok = nullptr) const;
  /// The number of leading units that form a number.
  int leftIntegerLength(int base = 10) const;
  static int leftIntegerLength(const TCodeUnit* text, int len, int base = 10);
  int leftDoubleLength() const;
  static int leftDoubleLength(const TCodeUnit* text, int len = -1);

 private:
  friend class qilsys::TForeignForms<TStringCore>;
  friend struct qilsys::string::Inside;

  // What the inline paths call, and no more: a helper of the sources is no member, since members are exported.
  void constructSlow(const TCodeUnit* s, int len);
  void assignSlow(const TStringCore& other);
  void detachSlow();
  TStringCore& appendUnitSlow(TCodeUnit c);
  static void freeBlock(qilsys::StringBlock* block) noexcept;
  /// The one step that every change of the length passes through; gives the writable units.
  TCodeUnit* resizeForWrite(int n);
  void reserveWithMode(int n, GrowthMode mode);
  void _assignHandleSelf(const TCodeUnit* s, int len);
  /// Puts UTF-8 behind the first `at` units; no bytes change nothing.
  TStringCore& writeUtf8(int at, const char* s, int len);
  TStringCore& appendUtf8(const char* s, int len) { return writeUtf8(length(), s, len); }
  inline void assignUtf8(const char* s, int len);
  bool containsInTerminated(const TCodeUnit* needle, CaseSensitivity cs) const;
  inline void giveUpBlock() noexcept;

  qilsys::StringStorage m_storage;
};

static_assert(sizeof(TStringCore) == 32);

// ---- Construction, assignment, end

inline TStringCore::TStringCore(const TCodeUnit* s, int len) {
  constexpr int Most = qilsys::StringStorage::MaxInlineLength;
  if (!s) return;
  TCodeUnit* const units = m_storage.inlineUnits();
  int n = 0;
  if (len < 0) {
    for (; n < Most && s[n] != 0; ++n) units[n] = s[n];
    if (s[n] == 0) [[likely]] {
      m_storage.setInlineLength(n);
      return;
    }
  } else if (len <= Most) [[likely]] {
    for (; n < len; ++n) units[n] = s[n];
    m_storage.setInlineLength(n);
    return;
  }
  constructSlow(s, len);
}

inline TStringCore::TStringCore(const TStringCore& other) noexcept : m_storage(other.m_storage) {
  if (!m_storage.isInline()) m_storage.blockPointer()->retain();
}

inline TStringCore::TStringCore(TStringCore&& other) noexcept : m_storage(other.m_storage) {
  if (!m_storage.isInline()) other.m_storage = qilsys::StringStorage();
}

inline void TStringCore::giveUpBlock() noexcept {
  if (m_storage.blockPointer()->release()) freeBlock(m_storage.blockPointer());
}

inline TStringCore::~TStringCore() {
  if (!m_storage.isInline()) giveUpBlock();
}

inline TStringCore& TStringCore::operator=(const TStringCore& other) {
  if (m_storage.isInline() && other.m_storage.isInline()) {
    m_storage = other.m_storage;
  } else {
    assignSlow(other);
  }
  return *this;
}

inline TStringCore& TStringCore::operator=(TStringCore&& other) {
  if (other.m_storage.isInline() || this == &other) return *this = static_cast<const TStringCore&>(other);
  const qilsys::StringStorage taken = std::exchange(other.m_storage, qilsys::StringStorage());
  clear();
  m_storage = taken;
  return *this;
}

inline void TStringCore::assignUtf8(const char* s, int len) {
  if (!s || len == 0 || (len < 0 && *s == 0)) {
    resize(0);
  } else {
    writeUtf8(0, s, len);
  }
}

inline void TStringCore::clear() noexcept {
  if (!m_storage.isInline()) giveUpBlock();
  m_storage = qilsys::StringStorage();
}

// ---- Append

inline TStringCore& TStringCore::append(TCodeUnit c) {
  if (m_storage.isInline()) {
    const int n = m_storage.length();
    if (n < qilsys::StringStorage::MaxInlineLength) [[likely]] {
      m_storage.inlineUnits()[n] = c;
      m_storage.setInlineLength(n + 1);
      return *this;
    }
  } else {
    qilsys::StringBlock* const block = m_storage.blockPointer();
    const int n = block->length;
    if (n + 1 < block->capacity && block->references() == 1) [[likely]] {
      block->units()[n] = c;
      block->units()[n + 1] = 0;
      block->length = n + 1;
      return *this;
    }
  }
  return appendUnitSlow(c);
}
