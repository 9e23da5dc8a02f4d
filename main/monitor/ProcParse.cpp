#include "monitor/ProcParse.h"

#include <limits>

#include "base/ProcText.h"

namespace qilsys::monitor {

using base::BytesOfRow;
using base::TakeWord;
using base::WholeNumber;

std::optional<std::uint64_t> PrivateBytesOfStatus(std::string_view status) {
  const std::optional<std::uint64_t> resident = BytesOfRow(status, "RssAnon");
  const std::optional<std::uint64_t> swapped = BytesOfRow(status, "VmSwap");
  if (!resident || !swapped || *resident > std::numeric_limits<std::uint64_t>::max() - *swapped) return std::nullopt;
  return *resident + *swapped;
}

std::optional<ProcessMemoryInfo> MemoryOfStatus(std::string_view status) {
  const std::optional<std::uint64_t> privateBytes = PrivateBytesOfStatus(status);
  if (!privateBytes) return std::nullopt;
  ProcessMemoryInfo info;
  info.PrivateUsage = *privateBytes;
  info.PagefileUsage = *privateBytes;
  info.PeakPagefileUsage = *privateBytes;
  info.WorkingSetSize = BytesOfRow(status, "VmRSS").value_or(0);
  info.PeakWorkingSetSize = BytesOfRow(status, "VmHWM").value_or(0);
  return info;
}

std::optional<std::uint32_t> PageFaultsOfStat(std::string_view stat) {
  // The second field is the program's name in parentheses and may hold anything, so count from the last one.
  const std::size_t nameEnd = stat.rfind(") ");
  if (nameEnd == std::string_view::npos) return std::nullopt;
  std::string_view rest = stat.substr(nameEnd + 2);
  constexpr int WordsBeforeMinor = 7;
  for (int i = 0; i < WordsBeforeMinor; ++i) TakeWord(rest);
  const std::optional<std::uint64_t> minor = WholeNumber(TakeWord(rest));
  TakeWord(rest);
  const std::optional<std::uint64_t> major = WholeNumber(TakeWord(rest));
  if (!minor || !major) return std::nullopt;
  return static_cast<std::uint32_t>(*minor + *major);
}

}  // namespace qilsys::monitor
