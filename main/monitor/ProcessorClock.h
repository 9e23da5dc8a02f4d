/// Whether the processors run at full clock, apart from asking the system for their clocks.
#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

namespace qilsys::monitor {

/// The clock of one processor.
struct ProcessorClock {
  std::uint64_t currentMhz = 0;
  std::uint64_t maximumMhz = 0;

  bool operator==(const ProcessorClock&) const = default;
};

/// Whether no processor is below its maximum; true for an empty list, since what is not known must not hide real load.
bool AllAtMaximum(const std::vector<ProcessorClock>& clocks);

/// Gives the text of a file in the folder where Linux tells about processors, such as "cpu0/cpufreq/base_frequency";
/// empty if there is none.
using ReadProcessorFile = std::function<std::string(const std::string& path)>;

/// The clocks of the processors 0 to `count` - 1 from what their drivers tell. The maximum is the clock that a processor
/// can hold, not the one to which it rises for moments; the current one is the highest of all processors, since the low
/// clock of an idle one says nothing of a busy machine. A processor without a known maximum is left out, and so are all
/// where no current clock is known.
std::vector<ProcessorClock> ProcessorClocksOf(unsigned int count, const ReadProcessorFile& read);

}  // namespace qilsys::monitor
