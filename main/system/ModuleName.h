/// Names of modules in what Linux says of them. Pure functions of text.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace qilsys::system {

/// What stands behind the last "/".
std::string_view FilenameOf(std::string_view name);

/// The file that is mapped at `address`, by the text of a process's "maps": a full name as it stands there, so with a
/// line feed as "\012" and perhaps with the mark of one that has been removed. Empty where there is none, or where the
/// text is another than that of "maps".
std::string_view MappedFileAt(std::string_view maps, std::uint64_t address);

}  // namespace qilsys::system
