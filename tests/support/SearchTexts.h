/// One text in the forms that an operation may take it in.
#pragma once

#include <gtest/gtest.h>

#include <string>
#include <string_view>

#include "qilsys/TStringCore.h"
#include "support/Random.h"
#include "support/StringText.h"

namespace qilsys::test {

/// The text as `wchar_t` holds it: code points where that is wider than a unit, lone surrogates as they are.
inline std::wstring Wide(std::u16string_view text) {
  std::wstring wide;
  for (std::size_t i = 0; i < text.size(); ++i) {
    const bool isPair =
        sizeof(wchar_t) > 2 && (text[i] & 0xFC00) == 0xD800 && i + 1 < text.size() && (text[i + 1] & 0xFC00) == 0xDC00;
    if (isPair) {
      wide += static_cast<wchar_t>(0x10000 + ((text[i] & 0x3FF) << 10) + (text[i + 1] & 0x3FF));
      ++i;
    } else {
      wide += static_cast<wchar_t>(text[i]);
    }
  }
  return wide;
}

/// Calls `check` with the text as `const char16_t*` and as `const wchar_t*`, NUL-terminated.
template <class Check>
void EachRawForm(const std::u16string& text, Check check) {
  {
    SCOPED_TRACE("as char16_t");
    check(text.c_str());
  }
  SCOPED_TRACE("as wchar_t");
  const std::wstring wide = Wide(text);
  check(wide.c_str());
}

/// The string of `text`, NULs included.
inline TStringCore String(std::u16string_view text) { return TStringCore(text.data(), static_cast<int>(text.size())); }

/// Up to `maxLength` units, each drawn from `alphabet`.
inline std::u16string RandomText(SeededRandom& random, std::u16string_view alphabet, std::size_t maxLength) {
  std::u16string text(random.Between<std::size_t>(0, maxLength), u' ');
  for (char16_t& unit : text) unit = alphabet[random.Between<std::size_t>(0, alphabet.size() - 1)];
  return text;
}

/// Few letters in both cases, units that fold across ASCII, NUL, halves of a supplementary letter in both cases.
inline constexpr std::u16string_view SearchAlphabet{u"aAbB\0,kK\u212As\u017F\u00C4\u00E4\xD801\xDC00\xDC28\uFFFD", 17};

/// Two letters in both cases: full of near misses.
inline constexpr std::u16string_view NearMissAlphabet{u"aAb", 3};

}  // namespace qilsys::test
