#include "base/ProcText.h"

#include <algorithm>
#include <charconv>
#include <limits>

namespace qilsys::base {

namespace {

constexpr std::string_view Blanks = " \t\n";

}  // namespace

std::string_view TakeUntil(std::string_view& text, char end) {
  const std::string_view part = text.substr(0, text.find(end));
  text.remove_prefix(std::min(part.size() + 1, text.size()));
  return part;
}

std::string_view TakeRow(std::string_view& text) { return TakeUntil(text, '\n'); }

std::string_view TakeWord(std::string_view& text) {
  text.remove_prefix(std::min(text.find_first_not_of(Blanks), text.size()));
  const std::string_view word = text.substr(0, text.find_first_of(Blanks));
  text.remove_prefix(word.size());
  return word;
}

// std::from_chars takes no sign, blank or base mark here.
std::optional<std::uint64_t> WholeNumber(std::string_view text) {
  std::uint64_t value = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
  if (error != std::errc() || end != text.data() + text.size()) return std::nullopt;
  return value;
}

std::optional<std::uint64_t> SingleNumber(std::string_view text) {
  if (text.ends_with('\n')) text.remove_suffix(1);
  return WholeNumber(text);
}

std::optional<std::string_view> ValueOf(std::string_view text, std::string_view key) {
  while (!text.empty()) {
    const std::string_view row = TakeRow(text);
    if (row.size() > key.size() && row[key.size()] == ':' && row.starts_with(key)) return row.substr(key.size() + 1);
  }
  return std::nullopt;
}

std::optional<std::uint64_t> BytesOfRow(std::string_view text, std::string_view key) {
  std::string_view value = ValueOf(text, key).value_or(std::string_view());
  const std::optional<std::uint64_t> kilobytes = WholeNumber(TakeWord(value));
  if (!kilobytes || TakeWord(value) != "kB" || !TakeWord(value).empty()) return std::nullopt;
  if (*kilobytes > std::numeric_limits<std::uint64_t>::max() / 1024) return std::nullopt;
  return *kilobytes * 1024;
}

std::string_view WithoutDeletedMark(std::string_view name) {
  constexpr std::string_view Mark = " (deleted)";
  if (name.ends_with(Mark)) name.remove_suffix(Mark.size());
  return name;
}

}  // namespace qilsys::base
