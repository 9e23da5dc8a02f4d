/// Floating-point numbers as narrow text: the print of the C runtime, and the steps that tidy what it gave.
///
/// The steps also mend forms that only some runtimes print (three exponent digits, say), so that the text of a number
/// is the same everywhere.
#pragma once

#include <string_view>

namespace qilsys::numbers {

/// A printed number under work. Only the first `length` characters hold anything.
struct DoubleText {
  /// The print has to fit this many bytes, its terminator included.
  static constexpr int PrintLimit = 1024;

  /// An empty text, or a copy of `text`, which must be shorter than the limit.
  explicit DoubleText(std::string_view text = {});

  std::string_view View() const { return {characters, static_cast<std::size_t>(length)}; }
  /// Index of the first "e" or "E"; -1 if there is none or nothing stands before it.
  int ExponentIndex() const;
  void Append(char character) { characters[length++] = character; }
  void Remove(int from, int to);

  int length = 0;
  // The printer may need room beyond the text that it leaves: up to 309 digits before the point.
  char characters[2 * PrintLimit];
};

/// Prints a finite `value` as the C runtime's formatted print does in the "C" locale. `format` is "e", "f" or "g" in
/// either case. A text that does not fit the limit comes out empty.
DoubleText PrintDouble(double value, char format, int precision);

/// Takes leading zeros off an exponent of more than two digits, down to two.
void TidyExponent(DoubleText& text);
/// Takes ".0" off the end of a mantissa that an exponent follows.
void DropPointZero(DoubleText& text);
/// Puts ".0" at the end of a mantissa in a text that has no ".".
void AddPointZero(DoubleText& text);
/// Takes the zeros off the end of the mantissa, but for one after a ".". Zeros go even where there is no ".".
void DropTrailingZeros(DoubleText& text);
/// Takes the "-" off a number that shows nothing but zeros.
void DropNegativeZeroSign(DoubleText& text);

}  // namespace qilsys::numbers
