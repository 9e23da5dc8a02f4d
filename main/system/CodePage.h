/// Names of 8-bit text: Windows code pages and charsets.
#pragma once

#include <string_view>

namespace qilsys::system {

/// The charset of a code page; "UTF-8" for one without a row.
const char* CharsetOfCodePage(unsigned int codePage);

/// The code page of a codeset as a C library spells it ("ISO-8859-15", "ANSI_X3.4-1968"), ignoring case; UTF-8's for an
/// unknown one.
unsigned int CodePageOfCodeset(std::string_view codeset);

}  // namespace qilsys::system
