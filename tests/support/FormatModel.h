/// A second reading of message templates, straight down the template, for tests that compare.
#pragma once

#include <algorithm>
#include <cstddef>
#include <string>
#include <vector>

#include "qilsys/TCType.h"

namespace qilsys::test {

/// The messages of bad templates.
namespace format_texts {

inline constexpr const char* IncompleteText = "Format string ends with an incomplete marker.";
inline constexpr const char* NumberlessText = "Invalid numberless marker in format string.";
inline constexpr const char* LeadingZeroText = "Leading zero in marker number in format string.";
inline constexpr const char* Above99Text = "Invalid marker number > 99 in format string.";

}  // namespace format_texts

/// What a template comes to with these parameters.
struct FormatExpectation {
  const char* failure = nullptr;  ///< The message, null where the template is good.
  int highest = 0;                ///< How many parameters it needs.
  std::u16string text;
};

inline bool IsFormatDigit(char16_t c) { return TCType::isDigit(static_cast<TCodeUnit>(c)); }

inline FormatExpectation ExpectedFormat(const std::u16string& format, const std::vector<std::u16string>& parameters) {
  FormatExpectation expected;
  std::size_t at = 0;
  while (at < format.size()) {
    const char16_t c = format[at++];
    if (c != u'%') {
      expected.text.push_back(c);
      continue;
    }
    if (at == format.size()) return {format_texts::IncompleteText, 0, {}};
    if (format[at] == u'%') {
      expected.text.push_back(u'%');
      ++at;
      continue;
    }
    if (!IsFormatDigit(format[at])) return {format_texts::NumberlessText, 0, {}};
    if (format[at] == u'0') return {format_texts::LeadingZeroText, 0, {}};
    int number = format[at++] - 48;
    for (; at < format.size() && IsFormatDigit(format[at]); ++at) {
      number = number * 10 + format[at] - 48;
      if (number > 99) return {format_texts::Above99Text, 0, {}};
    }
    expected.highest = std::max(expected.highest, number);
    if (number <= static_cast<int>(parameters.size())) {
      expected.text += parameters[static_cast<std::size_t>(number - 1)];
    }
  }
  return expected;
}

}  // namespace qilsys::test
