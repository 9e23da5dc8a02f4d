#include "sweep/Texts.h"

namespace qilsys::test::sweep {
namespace {

// White space at both ends, letters in both cases, line ends, separators, a unit outside ASCII and a pair.
constexpr char16_t Pattern[] = u" aB,\u00E9\r\nab,\U0001F600 ";

// A field that has a block, as a piece of the text has that it begins.
constexpr char16_t LongField[] = u"  a field of more than fourteen units,";

TStringCore Made(Shape shape) {
  const TStringCore once(Pattern);
  return shape == Shape::Inline ? once : TStringCore(LongField) + once.repeated(60);
}

}  // namespace

Texts::Texts(Shape shape) : text(Made(shape)), peer(shape == Shape::SharedBlock ? text : Made(shape)) {
  for (int i = 0; i < 30; ++i) longUnits += Pattern;
  for (const TCodeUnit unit : TStringCore(u"ab,\u00E9").repeated(80)) longWide += static_cast<wchar_t>(unit);
  for (char16_t unit = 0x100; unit < 0x1A0; ++unit) longSet += unit;
  longSet += Pattern;
  utf8 = text.toStdString();
}

std::string Texts::Observe() const {
  Observed seen;
  seen.Add(text).Add(peer).Add(other).Add(made).Add(bytes).Add(units).Add(wide);
  seen.Add(number).Add(position).Add(flag).AddAll(list).AddAll(fields).AddAll(elements);
  seen.Add(std::u16string(unitBuffer)).Add(std::wstring(wideBuffer));
  return seen.Bytes();
}

}  // namespace qilsys::test::sweep
