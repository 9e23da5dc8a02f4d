// Floating-point numbers to text.
#include "qilsys/TStringCore.h"

#include <cmath>
#include <utility>

#include "numbers/DoubleText.h"

namespace {

enum class Form { Scientific, Fixed, General };

Form FormOf(char format) {
  switch (format | 0x20) {
    case 'e':
      return Form::Scientific;
    case 'g':
      return Form::General;
    default:
      return Form::Fixed;
  }
}

void TidyMantissa(qilsys::numbers::DoubleText& text, Form form, bool decimalForm) {
  if (!decimalForm) {
    if (form == Form::General) qilsys::numbers::DropPointZero(text);
  } else if (form == Form::General) {
    qilsys::numbers::AddPointZero(text);
  } else {
    qilsys::numbers::DropTrailingZeros(text);
  }
}

}  // namespace

TStringCore TStringCore::number(double value, char format, int precision, bool decimalForm) {
  if (std::isinf(value)) return value > 0 ? TStringCore(u"inf") : TStringCore(u"-inf");
  if (std::isnan(value)) return TStringCore(u"nan");
  const Form form = FormOf(format);
  qilsys::numbers::DoubleText text = qilsys::numbers::PrintDouble(value, form == Form::Fixed ? 'f' : format, precision);
  if (text.length == 0) return TStringCore();
  qilsys::numbers::TidyExponent(text);
  TidyMantissa(text, form, decimalForm);
  qilsys::numbers::DropNegativeZeroSign(text);
  return fromLatin1(text.characters, text.length);
}
