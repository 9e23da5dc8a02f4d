#include "system/CodePage.h"

#include <algorithm>
#include <array>
#include <functional>

namespace qilsys::system {

namespace {

struct Charset {
  unsigned int codePage;
  const char* name;
};

constexpr std::array Charsets = {
    Charset{37, "EBCDIC"},         Charset{437, "US-ASCII"},      Charset{819, "iso-8859-1"},
    Charset{874, "tis-620"},       Charset{912, "iso-8859-2"},    Charset{914, "iso-8859-4"},
    Charset{915, "iso-8859-5"},    Charset{920, "iso-8859-9"},    Charset{922, "iso-8859-13"},
    Charset{923, "iso-8859-15"},   Charset{932, "Shift_JIS"},     Charset{936, "GBK"},
    Charset{943, "Shift_JIS"},     Charset{949, "EUC-KR"},        Charset{950, "Big5"},
    Charset{964, "EUC-TW"},        Charset{970, "EUC-KR"},        Charset{1089, "iso-8859-6"},
    Charset{1200, "UTF-16LE"},     Charset{1201, "UTF-16BE"},     Charset{1250, "windows-1250"},
    Charset{1251, "windows-1251"}, Charset{1252, "windows-1252"}, Charset{1253, "windows-1253"},
    Charset{1254, "windows-1254"}, Charset{1255, "windows-1255"}, Charset{1256, "windows-1256"},
    Charset{1257, "windows-1257"}, Charset{1258, "windows-1258"}, Charset{1363, "EUC-KR"},
    Charset{1386, "EUC-CN"},       Charset{20127, "US-ASCII"},    Charset{20866, "KOI8-R"},
    Charset{28591, "iso-8859-1"},  Charset{28592, "iso-8859-2"},  Charset{28593, "iso-8859-3"},
    Charset{28594, "iso-8859-4"},  Charset{28595, "iso-8859-5"},  Charset{28596, "iso-8859-6"},
    Charset{28597, "iso-8859-7"},  Charset{28598, "iso-8859-8"},  Charset{28599, "iso-8859-9"},
    Charset{28600, "iso-8859-10"}, Charset{28601, "iso-8859-11"}, Charset{28602, "iso-8859-12"},
    Charset{28603, "iso-8859-13"}, Charset{28604, "iso-8859-14"}, Charset{28605, "iso-8859-15"},
    Charset{28606, "iso-8859-16"}, Charset{38596, "iso-8859-6"},  Charset{38598, "iso-8859-8"},
    Charset{51949, "EUC-KR"},      Charset{54936, "GB18030"},     Charset{65000, "UTF-7"},
    Charset{65001, "UTF-8"},
};
static_assert(Charsets.size() == 55);
static_assert(std::ranges::is_sorted(Charsets, std::less{}, &Charset::codePage));

constexpr unsigned int Utf8 = 65001;

struct Codeset {
  std::string_view name;
  unsigned int codePage;
};

// The spellings of the GNU C library. Its plain "C" locale has the name of ASCII and reads as UTF-8: a program there
// has not asked for anything, and ASCII is part of UTF-8.
constexpr std::array Codesets = {
    Codeset{"UTF-8", Utf8},        Codeset{"ANSI_X3.4-1968", Utf8},
    Codeset{"ISO-8859-1", 28591},  Codeset{"ISO-8859-2", 28592},
    Codeset{"ISO-8859-3", 28593},  Codeset{"ISO-8859-4", 28594},
    Codeset{"ISO-8859-5", 28595},  Codeset{"ISO-8859-6", 28596},
    Codeset{"ISO-8859-7", 28597},  Codeset{"ISO-8859-8", 28598},
    Codeset{"ISO-8859-9", 28599},  Codeset{"ISO-8859-10", 28600},
    Codeset{"ISO-8859-11", 28601}, Codeset{"ISO-8859-13", 28603},
    Codeset{"ISO-8859-14", 28604}, Codeset{"ISO-8859-15", 28605},
    Codeset{"ISO-8859-16", 28606}, Codeset{"CP1250", 1250},
    Codeset{"CP1251", 1251},       Codeset{"CP1252", 1252},
    Codeset{"CP1253", 1253},       Codeset{"CP1254", 1254},
    Codeset{"CP1255", 1255},       Codeset{"CP1256", 1256},
    Codeset{"CP1257", 1257},       Codeset{"CP1258", 1258},
    Codeset{"KOI8-R", 20866},      Codeset{"TIS-620", 874},
    Codeset{"SHIFT_JIS", 932},     Codeset{"SJIS", 932},
    Codeset{"GBK", 936},           Codeset{"GB2312", 1386},
    Codeset{"GB18030", 54936},     Codeset{"EUC-KR", 51949},
    Codeset{"BIG5", 950},          Codeset{"EUC-TW", 964},
};

constexpr char ToUpperAscii(char c) { return 'a' <= c && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c; }

bool EqualIgnoringAsciiCase(std::string_view a, std::string_view b) {
  return std::ranges::equal(a, b, std::equal_to{}, ToUpperAscii, ToUpperAscii);
}

}  // namespace

const char* CharsetOfCodePage(unsigned int codePage) {
  const auto found = std::ranges::lower_bound(Charsets, codePage, std::less{}, &Charset::codePage);
  return found != Charsets.end() && found->codePage == codePage ? found->name : "UTF-8";
}

unsigned int CodePageOfCodeset(std::string_view codeset) {
  const auto found = std::ranges::find_if(
      Codesets, [codeset](const Codeset& row) { return EqualIgnoringAsciiCase(row.name, codeset); });
  return found != Codesets.end() ? found->codePage : Utf8;
}

}  // namespace qilsys::system
