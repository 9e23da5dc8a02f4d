#include "monitor/ProcessSample.h"

#include <algorithm>

#include "qilsys/LogicException.h"

namespace qilsys::monitor {

unsigned char CpuPercentBetween(const ProcessTimesSample& before, const ProcessTimesSample& after,
                                unsigned int numberOfCpus) {
  const std::uint64_t deltaKernel = after.m_kernelTime - before.m_kernelTime;
  const std::uint64_t deltaUser = after.m_userTime - before.m_userTime;
  const std::uint64_t deltaWall = after.m_wallTime - before.m_wallTime;
  if (deltaWall == 0 || numberOfCpus == 0) return 0;
  const std::uint64_t percent = (deltaKernel + deltaUser) * 100 / deltaWall / numberOfCpus;
  return std::min<unsigned char>(static_cast<unsigned char>(percent), 100);
}

void RequireProcessors(unsigned int numberOfCpus) {
  QILSYS_LOGIC_ASSERT(numberOfCpus > 0, "GetNumberOfCpus() > 0", "main/monitor/MonitoredProcess_win", 82, 0xC01C309F,
                      "LogicException_LogicAssert_0xC01C309F");
}

}  // namespace qilsys::monitor
