#include "monitor/ProcessorClock.h"

#include <algorithm>
#include <array>
#include <optional>

#include "base/ProcText.h"

namespace qilsys::monitor {

namespace {

/// A file that holds a clock, and how many of its units make a MHz.
struct ClockFile {
  const char* name;
  std::uint64_t unitsPerMhz;
};

// Which there are is up to the driver. The last one is the clock of a short boost where the driver knows of boosts, and
// then seldom seen; so it is the last to ask.
constexpr std::array MaximumFiles = {
    ClockFile{"cpufreq/base_frequency", 1000},
    ClockFile{"acpi_cppc/nominal_freq", 1},
    ClockFile{"cpufreq/cpuinfo_max_freq", 1000},
};
constexpr ClockFile CurrentFile{"cpufreq/scaling_cur_freq", 1000};

// Rounded, since a clock that is measured misses the one that is set by some kHz. 0 is no clock: some firmware leaves
// a field empty so.
std::optional<std::uint64_t> ReadMhz(const std::string& processor, const ClockFile& file,
                                     const ReadProcessorFile& read) {
  const std::uint64_t units = base::SingleNumber(read(processor + file.name)).value_or(0);
  if (units == 0) return std::nullopt;
  return units / file.unitsPerMhz + (2 * (units % file.unitsPerMhz) >= file.unitsPerMhz ? 1 : 0);
}

std::optional<std::uint64_t> ReadMaximumMhz(const std::string& processor, const ReadProcessorFile& read) {
  for (const ClockFile& file : MaximumFiles) {
    if (const std::optional<std::uint64_t> maximum = ReadMhz(processor, file, read)) return maximum;
  }
  return std::nullopt;
}

}  // namespace

bool AllAtMaximum(const std::vector<ProcessorClock>& clocks) {
  return std::ranges::none_of(clocks, [](const ProcessorClock& clock) { return clock.currentMhz < clock.maximumMhz; });
}

std::vector<ProcessorClock> ProcessorClocksOf(unsigned int count, const ReadProcessorFile& read) {
  std::optional<std::uint64_t> highest;
  std::vector<ProcessorClock> clocks;
  for (unsigned int i = 0; i < count; ++i) {
    const std::string processor = "cpu" + std::to_string(i) + '/';
    highest = std::max(highest, ReadMhz(processor, CurrentFile, read));
    if (const auto maximum = ReadMaximumMhz(processor, read)) clocks.push_back({0, *maximum});
  }
  if (!highest) return {};
  for (ProcessorClock& clock : clocks) clock.currentMhz = *highest;
  return clocks;
}

}  // namespace qilsys::monitor
