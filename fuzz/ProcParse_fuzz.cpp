// Any bytes as the text of a process's status and stat, and of a number's file, give what a slow reading by the letter
// gives.
#include "monitor/ProcParse.h"

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <optional>
#include <sstream>
#include <string>
#include <vector>

#include "base/ProcText.h"

namespace {

using Number = std::optional<std::uint64_t>;

void Require(bool condition) {
  if (!condition) std::abort();
}

// Digit by digit, and never beyond 64 bits.
Number DigitsOf(const std::string& word) {
  if (word.empty()) return std::nullopt;
  std::uint64_t value = 0;
  for (const char c : word) {
    if (c < '0' || c > '9') return std::nullopt;
    const auto digit = static_cast<std::uint64_t>(c - '0');
    if (value > (UINT64_MAX - digit) / 10) return std::nullopt;
    value = value * 10 + digit;
  }
  return value;
}

std::vector<std::string> WordsOf(const std::string& text) {
  std::vector<std::string> words(1);
  for (const char c : text) {
    if (c != ' ' && c != '\t' && c != '\n') {
      words.back() += c;
    } else if (!words.back().empty()) {
      words.emplace_back();
    }
  }
  if (words.back().empty()) words.pop_back();
  return words;
}

Number BytesByTheLetter(const std::string& text, const std::string& key) {
  std::istringstream rows(text);
  for (std::string row; std::getline(rows, row);) {
    if (row.compare(0, key.size() + 1, key + ':') != 0) continue;
    const std::vector<std::string> words = WordsOf(row.substr(key.size() + 1));
    const Number kilobytes = words.size() == 2 && words[1] == "kB" ? DigitsOf(words[0]) : std::nullopt;
    return kilobytes && *kilobytes <= UINT64_MAX / 1024 ? Number(*kilobytes * 1024) : std::nullopt;
  }
  return std::nullopt;
}

void CheckStatus(const std::string& text) {
  const Number resident = BytesByTheLetter(text, "RssAnon");
  const Number swapped = BytesByTheLetter(text, "VmSwap");
  Require(qilsys::base::BytesOfRow(text, "RssAnon") == resident);
  Number wanted;
  if (resident && swapped && *resident <= UINT64_MAX - *swapped) wanted = *resident + *swapped;
  Require(qilsys::monitor::PrivateBytesOfStatus(text) == wanted);
  const auto counters = qilsys::monitor::MemoryOfStatus(text);
  Require(counters.has_value() == wanted.has_value());
  if (!counters) return;
  Require(Number(counters->PrivateUsage) == wanted && Number(counters->PagefileUsage) == wanted);
  Require(counters->WorkingSetSize == BytesByTheLetter(text, "VmRSS").value_or(0));
}

void CheckStat(const std::string& text) {
  std::optional<std::uint32_t> wanted;
  const std::size_t nameEnd = text.rfind(") ");
  if (nameEnd != std::string::npos) {
    const std::vector<std::string> words = WordsOf(text.substr(nameEnd + 2));
    const Number minor = words.size() > 9 ? DigitsOf(words[7]) : std::nullopt;
    const Number major = words.size() > 9 ? DigitsOf(words[9]) : std::nullopt;
    if (minor && major) wanted = static_cast<std::uint32_t>(*minor + *major);
  }
  Require(qilsys::monitor::PageFaultsOfStat(text) == wanted);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string text(data, data + size);
  CheckStatus(text);
  CheckStat(text);
  const bool endsInLineFeed = text.ends_with('\n');
  Require(qilsys::base::SingleNumber(text) == DigitsOf(text.substr(0, text.size() - (endsInLineFeed ? 1 : 0))));
  return 0;
}
