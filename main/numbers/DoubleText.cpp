#include "numbers/DoubleText.h"

#include <algorithm>
#include <charconv>

#include "numbers/PlainDouble.h"

namespace qilsys::numbers {
namespace {

bool IsUpper(char format) { return format == 'E' || format == 'F' || format == 'G'; }

std::chars_format CharsFormat(char format) {
  switch (format) {
    case 'e':
    case 'E':
      return std::chars_format::scientific;
    case 'g':
    case 'G':
      return std::chars_format::general;
    default:
      return std::chars_format::fixed;
  }
}

// The precision that prints the same text; -1 if no text of that precision can fit.
int UsefulPrecision(char format, int precision) {
  if (precision < 0) return 6;
  if (CharsFormat(format) != std::chars_format::general) return precision < DoubleText::PrintLimit ? precision : -1;
  // A double has 767 significant digits at most, and this format prints no zeros after them.
  return std::min(precision, 767);
}

}  // namespace

DoubleText::DoubleText(std::string_view text) : length(static_cast<int>(text.size())) {
  text.copy(characters, text.size());
}

int DoubleText::ExponentIndex() const {
  int at = 0;
  while (at < length && (characters[at] | 0x20) != 'e') ++at;
  return at == 0 || at == length ? -1 : at;
}

void DoubleText::Remove(int from, int to) {
  std::copy(characters + to, characters + length, characters + from);
  length -= to - from;
}

DoubleText PrintDouble(double value, char format, int precision) {
  DoubleText text;
  const int useful = UsefulPrecision(format, precision);
  if (useful < 0) return text;
  if (PrintPlainDouble(value, format, useful, text)) return text;
  // The same text as the formatted print, by definition, but for the case; and no locale takes part.
  const std::to_chars_result printed =
      std::to_chars(text.characters, std::end(text.characters), value, CharsFormat(format), useful);
  const auto length = printed.ptr - text.characters;
  if (printed.ec != std::errc{} || length >= DoubleText::PrintLimit) return text;
  text.length = static_cast<int>(length);
  if (IsUpper(format)) std::replace(text.characters, text.characters + length, 'e', 'E');
  return text;
}

void TidyExponent(DoubleText& text) {
  const int e = text.ExponentIndex();
  if (e < 0) return;
  int first = e + 1;
  if (first < text.length && (text.characters[first] == '+' || text.characters[first] == '-')) ++first;
  int digit = first;
  while (digit < text.length && text.characters[digit] == '0') ++digit;
  const int zeros = digit - first;
  const int others = text.length - digit;
  if (zeros == 0 || zeros + others <= 2) return;
  text.Remove(first, first + (others > 1 ? zeros : zeros + others - 2));
}

void DropPointZero(DoubleText& text) {
  const int e = text.ExponentIndex();
  if (e > 2 && text.characters[e - 2] == '.' && text.characters[e - 1] == '0') text.Remove(e - 2, e);
}

void AddPointZero(DoubleText& text) {
  if (text.View().find('.') != std::string_view::npos) return;
  const int e = text.ExponentIndex();
  const int at = e > 0 ? e : text.length;
  std::copy_backward(text.characters + at, text.characters + text.length, text.characters + text.length + 2);
  text.characters[at] = '.';
  text.characters[at + 1] = '0';
  text.length += 2;
}

void DropTrailingZeros(DoubleText& text) {
  const int e = text.ExponentIndex();
  const int end = e > 0 ? e : text.length;
  if (end == 0) return;
  int last = end - 1;
  while (last > 0 && text.characters[last] == '0') --last;
  const int kept = text.characters[last] == '.' ? last + 2 : last + 1;
  if (kept < end) text.Remove(kept, end);
}

void DropNegativeZeroSign(DoubleText& text) {
  if (text.length == 0 || text.characters[0] != '-') return;
  const std::string_view mantissa = text.View().substr(1, text.View().find_first_of("eE") - 1);
  if (mantissa.find_first_not_of("0.") == std::string_view::npos) text.Remove(0, 1);
}

}  // namespace qilsys::numbers
