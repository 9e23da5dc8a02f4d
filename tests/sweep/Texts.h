/// What the operations of text work on.
#pragma once

#include <string>
#include <vector>

#include "qilsys/TStringCore.h"
#include "sweep/Observed.h"
#include "sweep/Operation.h"

namespace qilsys::test::sweep {

/// A text in one of the shapes, arguments for its operations, and room for what these give.
struct Texts {
  explicit Texts(Shape shape);
  std::string Observe() const;

  TStringCore text;
  TStringCore peer;  ///< Shares the block of `text` where that is the shape; else another text of that shape.
  TStringCore other = u"Another text that is long enough for a block, and more";
  std::vector<TStringCore> list{u"a field that is long enough for a block,b", u"two", u"three"};
  // Longer than what stands in the place of a heap for short sets and needles; the needle is a piece of long texts.
  std::u16string longUnits;
  std::wstring longWide;
  std::u16string longSet;
  std::string utf8;

  TStringCore made;
  std::vector<TStringCore> fields;
  std::string bytes;
  std::u16string units;
  std::wstring wide;
  std::vector<wchar_t> elements;
  double number = 0;
  int position = 0;
  bool flag = false;
  char16_t unitBuffer[100] = u"A\u00E9, b\r\nAb, \U0001F600c\r\n, ab and more than stands inside a foreign text's room";
  wchar_t wideBuffer[100] = L"A\u00E9, b\r\nAb, \U0001F600c\r\n, ab and more than stands inside a foreign text's room";
};

// Leaves of more than one table: what the interface makes of the standard library's containers raises what these do.
inline constexpr Leave StandardResult{Raises::Standard, Left::Unchanged, "its result is of the standard library"};
inline constexpr Leave ListOfTexts{Raises::Either, Left::Unchanged,
                                   "its result is a container of the standard library"};
/// The same where no field needs a block with every type of units.
inline constexpr Leave ListOfShortTexts{Raises::Either, Left::Unchanged, ListOfTexts.reason, Result::Same,
                                        When::Sometimes};
inline constexpr char NoConverter[] = "a converter of ICU that can't be opened gives empty text";
// Short sets and needles need no heap.
inline constexpr Leave LongSet{Raises::Standard, Left::Unchanged, "a set of more than 64 units is decoded on the heap"};
inline constexpr Leave EditByLongSet{Raises::Either, Left::Unchanged, LongSet.reason};
inline constexpr Leave LongNeedle{Raises::Either, Left::Unchanged, "a table of more than 256 units lies on the heap",
                                  Result::Same, When::Sometimes};

}  // namespace qilsys::test::sweep
