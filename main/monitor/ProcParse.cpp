#include "monitor/ProcParse.h"

#include <charconv>
#include <limits>

namespace proc {
namespace {

// All of `text` as a decimal number: std::from_chars takes no sign, blank or base mark here.
std::optional<std::uint64_t> WholeNumber(std::string_view text) {
  std::uint64_t value = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
  if (error != std::errc() || end != text.data() + text.size()) return std::nullopt;
  return value;
}

std::string_view WithoutLeadingBlanks(std::string_view text) {
  const std::size_t start = text.find_first_not_of(" \t");
  return start == std::string_view::npos ? std::string_view() : text.substr(start);
}

bool TakeSuffix(std::string_view& text, std::string_view suffix) {
  if (!text.ends_with(suffix)) return false;
  text.remove_suffix(suffix.size());
  return true;
}

// Cuts the first line off, without its line feed.
std::string_view TakeLine(std::string_view& text) {
  const std::size_t end = text.find('\n');
  const std::string_view line = text.substr(0, end);
  text = end == std::string_view::npos ? std::string_view() : text.substr(end + 1);
  return line;
}

// Cuts the next word off; words stand between single blanks.
std::string_view TakeWord(std::string_view& text) {
  const std::size_t end = text.find(' ');
  const std::string_view word = text.substr(0, end);
  text = end == std::string_view::npos ? std::string_view() : text.substr(end + 1);
  return word;
}

std::optional<std::uint64_t> BytesOfKilobytes(std::string_view value) {
  std::string_view digits = WithoutLeadingBlanks(value);
  if (!TakeSuffix(digits, " kB")) return std::nullopt;
  const std::optional<std::uint64_t> kilobytes = WholeNumber(digits);
  if (!kilobytes || *kilobytes > std::numeric_limits<std::uint64_t>::max() / 1024) return std::nullopt;
  return *kilobytes * 1024;
}

}  // namespace

std::optional<std::uint64_t> StatusBytes(std::string_view status, std::string_view name) {
  while (!status.empty()) {
    const std::string_view line = TakeLine(status);
    if (line.size() > name.size() && line.starts_with(name) && line[name.size()] == ':') {
      return BytesOfKilobytes(line.substr(name.size() + 1));
    }
  }
  return std::nullopt;
}

std::optional<ProcessMemoryInfo> MemoryOfStatus(std::string_view status) {
  const std::optional<std::uint64_t> resident = StatusBytes(status, "RssAnon");
  const std::optional<std::uint64_t> swapped = StatusBytes(status, "VmSwap");
  if (!resident || !swapped) return std::nullopt;
  ProcessMemoryInfo info;
  info.PrivateUsage = *resident + *swapped;
  info.PagefileUsage = info.PrivateUsage;
  info.PeakPagefileUsage = info.PrivateUsage;
  info.WorkingSetSize = StatusBytes(status, "VmRSS").value_or(0);
  info.PeakWorkingSetSize = StatusBytes(status, "VmHWM").value_or(0);
  return info;
}

std::optional<std::uint32_t> PageFaultsOfStat(std::string_view stat) {
  // The second field is the program's name in parentheses and may hold anything, so count from the last one.
  const std::size_t nameEnd = stat.rfind(") ");
  if (nameEnd == std::string_view::npos) return std::nullopt;
  std::string_view rest = stat.substr(nameEnd + 2);
  constexpr int wordsBeforeMinor = 7;
  for (int i = 0; i < wordsBeforeMinor; ++i) TakeWord(rest);
  const std::optional<std::uint64_t> minor = WholeNumber(TakeWord(rest));
  TakeWord(rest);
  const std::optional<std::uint64_t> major = WholeNumber(TakeWord(rest));
  if (!minor || !major) return std::nullopt;
  return static_cast<std::uint32_t>(*minor + *major);
}

std::optional<std::uint64_t> SingleNumber(std::string_view text) {
  TakeSuffix(text, "\n");
  return WholeNumber(text);
}

}  // namespace proc
