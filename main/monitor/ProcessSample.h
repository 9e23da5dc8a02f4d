/// The arithmetic of process readings, apart from reading.
#pragma once

#include <cstdint>
#include <optional>
#include <vector>

/// What one reading of a process gives, in units of 100 nanoseconds. Only differences of two samples mean anything.
struct ProcessTimesSample {
  std::uint64_t m_kernelTime = 0;
  std::uint64_t m_userTime = 0;
  std::uint64_t m_wallTime = 0;
};

/// The clock of one processor, both figures in the same unit.
struct ProcessorClock {
  std::uint64_t m_current = 0;
  std::uint64_t m_maximum = 0;
};

/// Percent of the whole machine used between two samples, cut to eight bits before it is limited to 100; 0 where no
/// time has passed.
unsigned char CpuPercentBetween(const ProcessTimesSample& before, const ProcessTimesSample& after,
                                unsigned int numberOfCpus);

/// Whether no processor is below its maximum; true for an empty list, since what is not known must not hide real load.
bool AllAtMaximum(const std::vector<ProcessorClock>& clocks);

/// A machine without processors is a logic assertion.
void RequireProcessors(unsigned int numberOfCpus);
