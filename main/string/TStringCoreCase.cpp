// Upper and lower case.
#include "qilsys/TStringCore.h"

#include <unicode/uloc.h>
#include <unicode/ustring.h>

#include <algorithm>

namespace {

using CaseMapping = decltype(&u_strToLower);

/// ICU finds its default locale on the first call, and hangs or crashes where memory fails it then; so it is asked for
/// while the library is loaded.
[[maybe_unused]] const char* const FirstDefaultLocale = uloc_getDefault();

/// Whether the language of the default locale maps ASCII letters as ASCII does. Turkish and Azeri do not: theirs is
/// the dotless i.
bool MapsAsciiAsUsual() {
  const char* locale = uloc_getDefault();
  const bool turkic = (locale[0] == 't' && locale[1] == 'r') || (locale[0] == 'a' && locale[1] == 'z');
  return !turkic || (locale[2] != 0 && locale[2] != '_');
}

bool IsAscii(const TStringCore& text) {
  TCodeUnit all = 0;
  for (const TCodeUnit unit : text) all = static_cast<TCodeUnit>(all | unit);
  return all < 0x80;
}

TStringCore MapAscii(const TStringCore& text, TCodeUnit firstToMap) {
  TStringCore result;
  result.reserve(text.length());
  result.resize(text.length());
  std::transform(text.cbegin(), text.cend(), result.begin(), [firstToMap](TCodeUnit unit) {
    const bool maps = static_cast<unsigned>(unit) - firstToMap < 26;
    return static_cast<TCodeUnit>(maps ? unit ^ 0x20 : unit);
  });
  return result;
}

// ICU's own unit type is the same 16 bits under another name on some platforms.
UChar* Units(TCodeUnit* s) { return reinterpret_cast<UChar*>(s); }
const UChar* Units(const TCodeUnit* s) { return reinterpret_cast<const UChar*>(s); }

/// The status of ICU is not looked at: what it wrote is the result.
TStringCore MapByIcu(const TStringCore& text, CaseMapping map) {
  TStringCore result;
  result.reserve(text.length());
  const auto run = [&] {
    UErrorCode status = U_ZERO_ERROR;
    return map(Units(result.data()), result.capacity(), Units(text.constData()), text.length(), nullptr, &status);
  };
  int length = run();
  if (length >= result.capacity()) {
    result.reserve(length);
    length = run();
  }
  result.resize(length);
  return result;
}

TStringCore MapCase(const TStringCore& text, TCodeUnit firstToMap, CaseMapping map) {
  return IsAscii(text) && MapsAsciiAsUsual() ? MapAscii(text, firstToMap) : MapByIcu(text, map);
}

}  // namespace

TStringCore TStringCore::toLower() const { return MapCase(*this, u'A', &u_strToLower); }

TStringCore TStringCore::toUpper() const { return MapCase(*this, u'a', &u_strToUpper); }
