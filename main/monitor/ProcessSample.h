/// The arithmetic of process readings, apart from reading.
#pragma once

#include <cstdint>

/// What one reading of a process gives, in units of 100 nanoseconds. Only differences of two samples mean anything.
struct ProcessTimesSample {
  std::uint64_t m_kernelTime = 0;
  std::uint64_t m_userTime = 0;
  std::uint64_t m_wallTime = 0;
};

namespace qilsys::monitor {

/// Percent of the whole machine used between two samples, cut to eight bits before it is limited to 100; 0 where no
/// time has passed.
unsigned char CpuPercentBetween(const ProcessTimesSample& before, const ProcessTimesSample& after,
                                unsigned int numberOfCpus);

/// A machine without processors is a logic assertion.
void RequireProcessors(unsigned int numberOfCpus);

}  // namespace qilsys::monitor
