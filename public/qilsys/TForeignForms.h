/// The second form of every string operation: the one that takes the platform's other unit type. UTF-8 text has its
/// forms here too.
///
/// Each form turns its arguments into TCodeUnit and calls the native form of the same name, whose contract holds (see
/// TStringCore.h). Lengths and positions of a foreign argument count its elements. A single foreign unit that needs two
/// code units acts as that text where the operation has a text form, and as U+FFFD elsewhere.
#pragma once

#include <algorithm>
#include <concepts>
#include <cstddef>
#include <type_traits>
#include <vector>

#include "qilsys/TCodeUnit.h"
#include "qilsys/TForeignText.h"
#include "qilsys/TStringOptions.h"
#include "qilsys/Unicode.h"

template <class TString>
class TConstCodePointIterator;

namespace qilsys {

template <class A>
concept ForeignPointer =
    std::is_pointer_v<std::decay_t<A>> && ForeignUnit<std::remove_cv_t<std::remove_pointer_t<std::decay_t<A>>>>;

template <class A>
concept TextPointer = ForeignPointer<A> || std::is_convertible_v<const A&, const TCodeUnit*>;

/// Two texts of which at least one is foreign. The other may be native, a string or a literal `nullptr`.
template <class A, class B>
concept ForeignTexts = TextPointer<A> && TextPointer<B> &&(ForeignPointer<A> || ForeignPointer<B>);

/// A base of `S`, the string; it brings the forms in by using-declarations. Templates on the unit type, and not plain
/// overloads: a literal `nullptr` can then mean nothing but the native form.
template <class S>
class TForeignForms : public TStringOptions {
  using Iterator = TConstCodePointIterator<S>;
  using List = std::vector<S>;
  using Source = TForeignText;

  /// A native text beside a foreign one, in the manner of TForeignText.
  class NativeText {
   public:
    explicit NativeText(const TCodeUnit* s, int len = -1) noexcept : m_units(s), m_length(len) {}
    static int Measure(const TCodeUnit* s, int limit = -1) {
      int n = 0;
      while (s && n < limit && s[n] != 0) ++n;
      return limit < 0 ? S::length(s) : n;
    }
    const TCodeUnit* data() const noexcept { return m_units; }
    int length() const { return m_length < 0 ? S::length(m_units) : m_length; }
    int UnitIndex(int index) const noexcept { return index; }
    int ElementIndex(int index) const noexcept { return index; }

   private:
    const TCodeUnit* m_units;
    int m_length;
  };
  template <class A>
  using TextOf = std::conditional_t<ForeignPointer<A>, TForeignText, NativeText>;

  S& self() noexcept { return static_cast<S&>(*this); }
  const S& self() const noexcept { return static_cast<const S&>(*this); }

 public:
  // ---- Construction, size, conversion

  template <ForeignUnit U>
  void assign(U c, int n) {
    TForeignText(c).Visit([&](auto unit) { assignRepeated(unit, n); });
  }
  template <ForeignUnit U>
  void assign(const U* s, int len = -1) {
    const Source text(s, len);
    self().assign(text.data(), text.length());
  }
  /// UTF-8.
  template <NarrowUnit C>
  void assign(const C* s, int len = -1) {
    self().assignUtf8(s, len);
  }
  template <ForeignUnit U>
  S& set(const U* s, int len = -1) {
    assign(s, len);
    return self();
  }
  template <ForeignUnit U>
  static S fromUtf16(const U* s, int len = -1) {
    return S(s, len);
  }
  template <ForeignUnit U>
  static S fromWChar(const U* s, int len = -1) {
    return S(s, len);
  }
  template <ForeignUnit U>
  static int length(const U* s) {
    return Source::Measure(s);
  }
  template <ForeignUnit U>
  static int lengthInBytes(const U* s) {
    return static_cast<int>(static_cast<unsigned>(Source::Measure(s)) * sizeof(TCodeUnit));
  }
  template <ForeignUnit U>
  int toWCharArray(U* target, int capacity) const {
    const auto room = static_cast<std::size_t>(capacity < 0 ? 0 : capacity);
    return static_cast<int>(Unicode::toWCharArray(self().data(), self().size(), target, room)) - 1;
  }

  // ---- Comparison

  template <ForeignUnit U>
  int compare(const U* other, CaseSensitivity cs = CaseSensitive) const {
    return self().compare(Source(other).data(), cs);
  }
  template <class A, class B>
    requires ForeignTexts<A, B>
  static int compare(const A& a, const B& b, CaseSensitivity cs = CaseSensitive) {
    return S::compare(TextOf<A>(a).data(), TextOf<B>(b).data(), cs);
  }
  template <class A, class B>
    requires ForeignTexts<A, B>
  static int compareN(const A& a, const B& b, int n, CaseSensitivity cs = CaseSensitive) {
    const TextOf<A> first(a, TextOf<A>::Measure(a, n));
    const TextOf<B> second(b, TextOf<B>::Measure(b, n));
    const int order = S::compareN(first.data(), second.data(), std::min(first.length(), second.length()), cs);
    if (order != 0) return order;
    return first.length() < second.length() ? -1 : first.length() > second.length() ? 1 : 0;
  }

  // ---- Search

  template <class A, class B>
    requires ForeignTexts<A, B>
  static int findStr(const A& hay, int hayLen, const B& needle, int needleLen, int start,
                     CaseSensitivity cs = CaseSensitive) {
    if (hayLen < 0) return -1;
    const TextOf<A> text(hay, hayLen);
    // The first element counts even where the length does not reach it.
    const TextOf<B> sought(needle, needleLen < 1 ? 1 : needleLen);
    return text.ElementIndex(S::findStr(text.data(), text.length(), sought.data(),
                                        needleLen < 1 ? needleLen : sought.length(), text.UnitIndex(start), cs));
  }
  template <class A, class B>
    requires ForeignTexts<A, B>
  static int findStr(const A& hay, int hayLen, const B& needle, int start = 0, CaseSensitivity cs = CaseSensitive) {
    return findStr(hay, hayLen, needle, TextOf<B>::Measure(needle), start, cs);
  }
  template <class A, class B>
    requires ForeignTexts<A, B>
  static int findStr(const A& hay, const B& needle, int start = 0, CaseSensitivity cs = CaseSensitive) {
    return findStr(hay, TextOf<A>::Measure(hay), needle, start, cs);
  }
  template <ForeignUnit U>
  int indexOf(const U* needle, int start = 0, CaseSensitivity cs = CaseSensitive) const {
    return self().indexOf(Source(needle).data(), start, cs);
  }
  template <ForeignUnit U>
  int indexOf(U c, int start = 0) const {
    return TForeignText(c).Visit([&](auto sought) { return self().indexOf(sought, start); });
  }
  template <TextPointer A, ForeignUnit U>
  static int indexOf(const A& s, int len, U c, int start = 0) {
    const TextOf<A> text(s, len);
    return TForeignText(c).Visit(
        [&](auto sought) { return text.ElementIndex(indexIn(text, sought, text.UnitIndex(start))); });
  }
  template <ForeignUnit U>
  bool contains(U c) const {
    return TForeignText(c).Visit([&](auto sought) { return containsWhole(sought); });
  }
  template <ForeignUnit U>
  int count(U c) const {
    return TForeignText(c).Visit([&](auto sought) { return self().count(sought); });
  }
  template <ForeignUnit U>
  int count(const U* needle, CaseSensitivity cs = CaseSensitive) const {
    return self().count(Source(needle).data(), cs);
  }
  template <ForeignUnit U>
  bool startsWith(const U* needle, CaseSensitivity cs = CaseSensitive) const {
    return self().startsWith(Source(needle).data(), cs);
  }
  template <ForeignUnit U>
  bool startsWith(U c) const {
    return TForeignText(c).Visit([&](auto sought) { return self().startsWith(sought); });
  }
  template <ForeignUnit U>
  bool endsWith(const U* needle, CaseSensitivity cs = CaseSensitive) const {
    return self().endsWith(Source(needle).data(), cs);
  }
  template <ForeignUnit U>
  bool endsWith(U c) const {
    return TForeignText(c).Visit([&](auto sought) { return self().endsWith(sought); });
  }
  template <ForeignUnit U>
  int lastIndexOf(const U* needle, int from = -1, CaseSensitivity cs = CaseSensitive) const {
    return self().lastIndexOf(Source(needle).data(), from, cs);
  }
  template <ForeignUnit U>
  int lastIndexOf(U c, int from = -1) const {
    return TForeignText(c).Visit([&](auto sought) { return self().lastIndexOf(sought, from); });
  }
  template <ForeignUnit U>
  Iterator find(const U* needle, CaseSensitivity cs = CaseSensitive) const {
    return self().find(Source(needle).data(), cs);
  }
  template <ForeignUnit U>
  Iterator find(const U* needle, const Iterator& from, CaseSensitivity cs = CaseSensitive) const {
    return self().find(Source(needle).data(), from, cs);
  }
  template <ForeignUnit U>
  Iterator find(U c) const {
    return TForeignText(c).Visit([&](auto sought) { return self().find(sought); });
  }
  template <ForeignUnit U>
  Iterator find(U c, const Iterator& from) const {
    return TForeignText(c).Visit([&](auto sought) { return self().find(sought, from); });
  }
  template <ForeignUnit U>
  Iterator findLast(U c) const {
    return TForeignText(c).Visit([&](auto sought) { return self().findLast(sought); });
  }
  template <ForeignUnit U>
  Iterator findLast(U c, const Iterator& from) const {
    return TForeignText(c).Visit([&](auto sought) { return self().findLast(sought, from); });
  }
  template <ForeignUnit U>
  Iterator findOneOf(const U* set, Iterator from) const {
    return self().findOneOf(Source(set).data(), from);
  }
  template <ForeignUnit U>
  int findOneOf(const U* set, int start = 0) const {
    return self().findOneOf(Source(set).data(), start);
  }
  template <class A, class B>
    requires ForeignTexts<A, B>
  static int findOneOf(const A& text, const B& set, int start = 0) {
    const TextOf<A> hay(text);
    return hay.ElementIndex(S::findOneOf(hay.data(), TextOf<B>(set).data(), hay.UnitIndex(start)));
  }
  template <TextPointer A, ForeignUnit U>
  static int findChar(const A& text, U c, int start = 0) {
    const U set[] = {c, U{}};
    return findOneOf(text, set, start);
  }
  template <ForeignUnit U>
  int findOneNotOf(const U* set, int start = 0) const {
    return self().findOneNotOf(Source(set).data(), start);
  }
  template <ForeignUnit U>
  int findOneNotOf(U c, int start = 0) const {
    return TForeignText(c).Visit([&](auto set) { return self().findOneNotOf(set, start); });
  }
  template <class A, class B>
    requires ForeignTexts<A, B>
  static int findOneNotOf(const A& text, const B& set, int start = 0) {
    const TextOf<A> hay(text);
    return hay.ElementIndex(S::findOneNotOf(hay.data(), TextOf<B>(set).data(), hay.UnitIndex(start)));
  }
  template <TextPointer A, ForeignUnit U>
  static int findOneNotOf(const A& text, U c) {
    const TextOf<A> hay(text);
    return TForeignText(c).Visit([&](auto run) { return hay.ElementIndex(lengthOfRun(hay, run)); });
  }

  // ---- Editing

  template <ForeignUnit U>
  S& append(const U* s, int len = -1) {
    const Source text(s, len);
    return self().append(text.data(), text.length());
  }
  /// UTF-8; more than 0x7FFFFFFF bytes raise.
  template <NarrowUnit C>
  S& append(const C* s, int len = -1) {
    return self().appendUtf8(s, len);
  }
  template <ForeignUnit U>
  S& append(U c) {
    return TForeignText(c).Visit([&](auto text) -> S& { return self().append(text); });
  }
  template <ForeignUnit U>
  S& operator+=(const U* s) {
    return append(s);
  }
  template <ForeignUnit U>
  S& operator+=(U c) {
    return append(c);
  }
  template <ForeignUnit U>
  void push_back(U c) {
    append(c);
  }
  template <ForeignUnit U>
  S& insert(int i, const U* s, int n = -1) {
    const Source text(s, n);
    return self().insert(i, text.data(), text.length());
  }
  template <ForeignUnit U>
  S& insert(int i, U c) {
    return TForeignText(c).Visit([&](auto text) -> S& { return self().insert(i, text); });
  }
  template <ForeignUnit U>
  S& insert(const Iterator& at, const U* s, int n = -1) {
    const Source text(s, n);
    return self().insert(at, text.data(), text.length());
  }
  template <ForeignUnit U>
  S& prepend(const U* s, int n = -1) {
    return insert(0, s, n);
  }
  template <ForeignUnit U>
  S& prepend(U c) {
    return insert(0, c);
  }
  template <ForeignUnit U>
  void push_front(U c) {
    insert(0, c);
  }
  template <ForeignUnit U>
  S& replace(int pos, int n, const U* s, int len = -1) {
    const Source text(s, len);
    return self().replace(pos, n, text.data(), text.length());
  }
  template <ForeignUnit U>
  S& replace(int pos, int n, U c) {
    return TForeignText(c).Visit([&](auto text) -> S& { return self().replace(pos, n, text); });
  }
  template <ForeignUnit U>
  S& replace(const Iterator& at, int n, U c) {
    return TForeignText(c).Visit([&](auto text) -> S& { return self().replace(at, n, text); });
  }
  template <ForeignUnit U>
  S& replace(U before, U after) {
    const TForeignText from(before);
    const TForeignText to(after);
    if (from.length() == 1 && to.length() == 1) return self().replace(from.data()[0], to.data()[0]);
    return self().replace(from.data(), from.length(), to.data(), to.length());
  }
  template <ForeignUnit U>
  S& replace(U before, const S& after) {
    const TForeignText from(before);
    return self().replace(from.data(), from.length(), after.data(), after.length());
  }
  template <class A, class B>
  requires ForeignTexts<A, B> S& replace(const A& before, int beforeLen, const B& after, int afterLen,
                                         CaseSensitivity cs = CaseSensitive) {
    replaceCount(before, beforeLen, after, afterLen, cs);
    return self();
  }
  template <class A, class B>
    requires ForeignTexts<A, B>
  int replaceCount(const A& before, int beforeLen, const B& after, int afterLen, CaseSensitivity cs = CaseSensitive) {
    const TextOf<A> from(before, beforeLen < 0 ? 0 : beforeLen);
    const TextOf<B> to(after, afterLen < 0 ? 0 : afterLen);
    return self().replaceCount(from.data(), from.length(), to.data(), to.length(), cs);
  }
  template <ForeignUnit U>
  S& replaceAnyOf(const U* set, U c, int start = 0) {
    return self().replaceAnyOf(Source(set).data(), ForeignToUnit(c), start);
  }
  template <ForeignUnit U>
  S& replaceAnyOf(const TCodeUnit* set, U c, int start = 0) {
    return self().replaceAnyOf(set, ForeignToUnit(c), start);
  }
  template <ForeignUnit U>
  S& replaceAnyOf(const S& set, U c, int start = 0) {
    return self().replaceAnyOf(set, ForeignToUnit(c), start);
  }
  template <ForeignUnit U>
  static int replaceAnyOf(U* text, const U* set, U c, int start = 0) {
    TForeignBuffer buffer(text);
    const int units = S::replaceAnyOf(buffer.data(), Source(set).data(), ForeignToUnit(c), buffer.UnitIndex(start));
    return buffer.Store(units, start, 1);
  }
  template <ForeignUnit U>
  S& removeAll(U c) {
    return TForeignText(c).Visit([&](auto text) -> S& { return self().removeAll(text); });
  }
  template <ForeignUnit U>
  S& removeAll(const U* s, int len = -1, CaseSensitivity cs = CaseSensitive) {
    const Source text(s, len);
    return self().removeAll(text.data(), text.length(), cs);
  }
  template <ForeignUnit U>
  S& removeAnyOf(const U* set, int start = 0) {
    return self().removeAnyOf(Source(set).data(), start);
  }
  template <ForeignUnit U>
  static int removeAnyOf(U* text, const U* set, int start = 0) {
    TForeignBuffer buffer(text);
    return buffer.Store(S::removeAnyOf(buffer.data(), Source(set).data(), buffer.UnitIndex(start)), start, 0);
  }
  template <ForeignUnit U>
  S& trim(U c) {
    return TForeignText(c).Visit([&](auto set) -> S& { return self().trim(set); });
  }
  template <ForeignUnit U>
  S& trimLeft(U c) {
    return TForeignText(c).Visit([&](auto set) -> S& { return self().trimLeft(set); });
  }
  template <ForeignUnit U>
  S& trimRight(U c) {
    return TForeignText(c).Visit([&](auto set) -> S& { return self().trimRight(set); });
  }
  template <ForeignUnit U>
  S& trim(const U* set) {
    return self().trim(Source(set).data());
  }
  template <ForeignUnit U>
  S& trimLeft(const U* set) {
    return self().trimLeft(Source(set).data());
  }
  template <ForeignUnit U>
  S& trimRight(const U* set) {
    return self().trimRight(Source(set).data());
  }
  template <ForeignUnit U>
  S& fill(U c, int n = -1) {
    return self().fill(ForeignToUnit(c), n);
  }
  template <ForeignUnit U>
  static int dosToUnix(U* text) {
    return text ? static_cast<int>(Unicode::normalizeLineEndings(text)) : 0;
  }

  // ---- Substrings and splitting

  template <ForeignUnit U>
  S leftJustified(int width, U fill, bool truncate = false) const {
    return self().leftJustified(width, ForeignToUnit(fill), truncate);
  }
  template <ForeignUnit U>
  S rightJustified(int width, U fill, bool truncate = false) const {
    return self().rightJustified(width, ForeignToUnit(fill), truncate);
  }
  template <ForeignUnit U>
  S spanIncluding(const U* set) const {
    return self().spanIncluding(Source(set).data());
  }
  template <ForeignUnit U>
  S spanExcluding(const U* set) const {
    return self().spanExcluding(Source(set).data());
  }
  template <ForeignUnit U>
  List split(const U* sep, SplitBehavior behavior = KeepEmptyTokens, CaseSensitivity cs = CaseSensitive) const {
    return self().split(Source(sep).data(), behavior, cs);
  }
  template <ForeignUnit U>
  List split(U sep, SplitBehavior behavior = KeepEmptyTokens) const {
    return TForeignText(sep).Visit([&](auto text) { return self().split(text, behavior); });
  }
  template <class A, class B>
    requires ForeignTexts<A, B>
  static List split(const A& text, int len, const B& sep, SplitBehavior behavior = KeepEmptyTokens,
                    CaseSensitivity cs = CaseSensitive) {
    const TextOf<A> whole(text, len);
    return S::split(whole.data(), len < 0 ? len : whole.length(), TextOf<B>(sep).data(), behavior, cs);
  }
  template <TextPointer A, ForeignUnit U>
  static List split(const A& text, int len, U sep, SplitBehavior behavior = KeepEmptyTokens) {
    const TextOf<A> whole(text, len);
    return TForeignText(sep).Visit([&](auto unit) { return S::split(whole.data(), whole.length(), unit, behavior); });
  }
  template <ForeignUnit U>
  List splitOnAny(const U* set, SplitBehavior behavior = KeepEmptyTokens) const {
    return self().splitOnAny(Source(set).data(), behavior);
  }
  template <ForeignUnit U>
  S tokenize(const U* set, int& pos, SplitBehavior behavior = KeepEmptyTokens) const {
    return self().tokenize(Source(set).data(), pos, behavior);
  }
  template <ForeignUnit U>
  S section(const U* sep, int first, int last = -1, SectionFlags flags = SectionDefault) const {
    return self().section(Source(sep).data(), first, last, flags);
  }
  template <ForeignUnit U>
  S section(U sep, int first, int last = -1, SectionFlags flags = SectionDefault) const {
    return TForeignText(sep).Visit([&](auto text) { return self().section(text, first, last, flags); });
  }
  template <class A, class B>
    requires ForeignTexts<A, B>
  static S section(const A& text, int len, const B& sep, int first, int last = -1,
                   SectionFlags flags = SectionDefault) {
    const TextOf<A> whole(text, len);
    return S::section(whole.data(), whole.length(), TextOf<B>(sep).data(), first, last, flags);
  }
  template <ForeignUnit U>
  static S join(const List& list, U sep) {
    return S::join(list, S(TForeignText(sep)));
  }

  // ---- Numbers

  template <std::integral N, ForeignUnit U>
  static S number(N value, int base, int width, U fill) {
    return S::number(value, base, width, ForeignToUnit(fill));
  }
  template <ForeignUnit U>
  static int leftIntegerLength(const U* text, int len, int base = 10) {
    const Source whole(text, len);
    return S::leftIntegerLength(whole.data(), whole.length(), base);
  }
  template <ForeignUnit U>
  static int leftDoubleLength(const U* text, int len = -1) {
    const Source whole(text, len);
    return S::leftDoubleLength(whole.data(), whole.length());
  }

 private:
  void assignRepeated(TCodeUnit c, int n) { self().assign(c, n); }
  void assignRepeated(const TCodeUnit* pair, int n) {
    if (n < 0) return;
    if (n > S::MaxStringCapacity / 2) throw typename S::CapacityException();
    self().resize(2 * n);
    for (TCodeUnit* unit = self().begin(); n > 0; --n) {
      *unit++ = pair[0];
      *unit++ = pair[1];
    }
  }
  bool containsWhole(TCodeUnit c) const { return self().contains(c); }
  bool containsWhole(const TCodeUnit* pair) const { return self().contains(S(pair, 2)); }
  template <class T>
  static int lengthOfRun(const T& text, TCodeUnit c) {
    return S::findOneNotOf(text.data(), c);
  }
  template <class T>
  static int lengthOfRun(const T& text, const TCodeUnit* pair) {
    const int end = S::findOneNotOf(text.data(), pair);
    return end < 0 ? std::max(text.length(), 0) : end;
  }
  template <class T>
  static int indexIn(const T& text, TCodeUnit c, int start) {
    return S::indexOf(text.data(), text.length(), c, start);
  }
  template <class T>
  static int indexIn(const T& text, const TCodeUnit* pair, int start) {
    return S::findStr(text.data(), text.length(), pair, 2, start);
  }
};

}  // namespace qilsys
