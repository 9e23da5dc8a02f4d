#include "diagnostics/CrashDumpProc.h"

#include <algorithm>
#include <charconv>
#include <climits>

#include "base/ProcText.h"

namespace qilsys::diagnostics {

using base::TakeRow;
using base::TakeUntil;
using base::TakeWord;
using base::WholeNumber;

namespace {

std::optional<std::uint64_t> HexadecimalNumber(std::string_view text) {
  std::uint64_t value = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value, 16);
  if (error != std::errc() || end != text.data() + text.size()) return std::nullopt;
  return value;
}

/// The first row of a mapping: "55e0a000-55e0b000 r-xp 00002000 08:01 1234      /usr/bin/name".
std::optional<Mapping> ParseFirstRow(std::string_view row) {
  const auto start = HexadecimalNumber(TakeUntil(row, '-'));
  const auto end = HexadecimalNumber(TakeUntil(row, ' '));
  const std::string_view rights = TakeWord(row);
  const auto offset = HexadecimalNumber(TakeWord(row));
  TakeWord(row);
  const auto inode = WholeNumber(TakeWord(row));
  if (!start || !end || *start >= *end || rights.size() != 4 || !offset || !inode) return std::nullopt;
  row.remove_prefix(std::min(row.find_first_not_of(' '), row.size()));
  return Mapping{.start = *start,
                 .end = *end,
                 .offset = *offset,
                 .name = row,
                 .isReadable = rights[0] == 'r',
                 .isWritable = rights[1] == 'w',
                 .isExecutable = rights[2] == 'x',
                 .isShared = rights[3] == 's',
                 .staysOut = row == "[vvar]" || row == "[vvar_vclock]" || row == "[vsyscall]"};
}

/// Whether one of the flags says "do not dump", "device memory" or "no pages of memory".
bool StaysOut(std::string_view flags) {
  for (std::string_view flag = TakeWord(flags); !flag.empty(); flag = TakeWord(flags)) {
    if (flag == "dd" || flag == "io" || flag == "pf") return true;
  }
  return false;
}

/// A further row of a mapping, as smaps has them: "Rss:     12 kB", "VmFlags: rd mr mw me".
void TakeIn(std::string_view row, Mapping& mapping) {
  const std::string_view key = TakeUntil(row, ':');
  if (key == "VmFlags") mapping.staysOut = mapping.staysOut || StaysOut(row);
  if (key == "Rss") mapping.isInUse = TakeWord(row) != "0";
  if (key == "Swap") mapping.isInUse = mapping.isInUse || TakeWord(row) != "0";
}

std::optional<int> ProcessNumber(std::string_view word) {
  const auto number = WholeNumber(word);
  if (!number || *number > INT_MAX) return std::nullopt;
  return static_cast<int>(*number);
}

}  // namespace

std::pmr::vector<Mapping> ParseMappings(std::string_view text, std::pmr::memory_resource& memory) {
  std::pmr::vector<Mapping> mappings(&memory);
  while (!text.empty()) {
    const std::string_view row = TakeRow(text);
    if (const auto mapping = ParseFirstRow(row)) {
      mappings.push_back(*mapping);
    } else if (!mappings.empty()) {
      TakeIn(row, mappings.back());
    }
  }
  return mappings;
}

std::optional<ProcessStat> ParseProcessStat(std::string_view text) {
  const std::size_t begin = text.find('(');
  const std::size_t end = text.rfind(')');
  if (begin == std::string_view::npos || end == std::string_view::npos || end < begin) return std::nullopt;
  std::string_view rest = text.substr(end + 1);
  const std::string_view state = TakeWord(rest);
  const auto parent = ProcessNumber(TakeWord(rest));
  const auto group = ProcessNumber(TakeWord(rest));
  const auto session = ProcessNumber(TakeWord(rest));
  if (state.size() != 1 || !parent || !group || !session) return std::nullopt;
  return ProcessStat{text.substr(begin + 1, end - begin - 1), state[0], *parent, *group, *session};
}

}  // namespace qilsys::diagnostics
