#include "system/ModuleName.h"

#include <algorithm>
#include <charconv>

#include "base/ProcText.h"

namespace qilsys::system {

using base::TakeRow;
using base::TakeWord;

namespace {

// Behind the addresses: permissions, offset, device, number of the file.
constexpr int WordsBeforeName = 4;

/// Takes a hexadecimal number and the character behind it off the row; false where they don't stand there.
bool TakeNumber(std::string_view& row, char behind, std::uint64_t& number) {
  const auto [end, error] = std::from_chars(row.data(), row.data() + row.size(), number, 16);
  const auto length = static_cast<std::size_t>(end - row.data());
  if (error != std::errc() || length == row.size() || *end != behind) return false;
  row.remove_prefix(length + 1);
  return true;
}

/// "7f12a4c00000-7f12a4c21000 r-xp 00001000 08:01 1234   /lib/libc.so.6": the name, where the row has this address. What
/// is mapped from no file has no name, or one in brackets.
std::string_view FileOfRow(std::string_view row, std::uint64_t address) {
  std::uint64_t first = 0;
  std::uint64_t end = 0;
  if (!TakeNumber(row, '-', first) || !TakeNumber(row, ' ', end) || address < first || address >= end) return {};
  for (int word = 0; word < WordsBeforeName; ++word) TakeWord(row);
  row.remove_prefix(std::min(row.find_first_not_of(' '), row.size()));
  return row.starts_with('/') ? row : std::string_view();
}

}  // namespace

std::string_view FilenameOf(std::string_view name) { return name.substr(name.rfind('/') + 1); }

std::string_view MappedFileAt(std::string_view maps, std::uint64_t address) {
  std::string_view file;
  while (file.empty() && !maps.empty()) file = FileOfRow(TakeRow(maps), address);
  return file;
}

}  // namespace qilsys::system
