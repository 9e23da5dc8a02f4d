#include "qilsys/MonitoredProcess.h"

#include <new>
#include <utility>

#include "monitor/MonitoredProcessImpl.h"
#include "qilsys/LogicException.h"
#include "qilsys/QuillonException.h"
#include "qilsys/TFormatStringCore.h"
#include "qilsys/TSystem.h"

using namespace qilsys::monitor;

namespace {

unsigned int GetNumberOfCpus() {
  static const unsigned int Count = CountProcessors();
  return Count;
}

[[noreturn]] void ThrowNotRunning(unsigned int pid) {
  throw QuillonException(TFormatStringCore(u"Process pid=%1 is not running").arg(pid),
                         TError::ErrorInfo(QuillonError::MakeError(0xC1062A71, u"QuillonException_AutoGen_0xC1062A71"),
                                           TError::System, grpc::StatusCode::UNKNOWN));
}

std::unique_ptr<IProcessHandle> Open(unsigned int pid) {
  return pid == TSystem::ProcessID() ? CurrentProcess() : OpenProcessToWatch(pid);
}

}  // namespace

MonitoredProcess::Impl::Impl(unsigned int pid, std::unique_ptr<IProcessHandle> handle)
    : m_pid(pid), m_handle(std::move(handle)) {
  if (!m_handle) ThrowNotRunning(pid);
  const std::optional<ProcessTimesSample> first = m_handle->ReadTimes();
  if (!first) ThrowNotRunning(pid);
  m_lastSample = std::make_unique<ProcessTimesSample>(*first);
}

unsigned char MonitoredProcess::Impl::NextCpuPercent(unsigned int numberOfCpus) {
  const std::optional<ProcessTimesSample> sample = m_handle->ReadTimes();
  if (!sample) return 0;
  const ProcessTimesSample before = std::exchange(*m_lastSample, *sample);
  return CpuPercentBetween(before, *sample, numberOfCpus);
}

MonitoredProcess::MonitoredProcess() : MonitoredProcess(TSystem::ProcessID()) {}

MonitoredProcess::MonitoredProcess(unsigned int pid) {
  RequireProcessors(GetNumberOfCpus());
  m_impl = std::make_unique<Impl>(pid, Open(pid));
}

MonitoredProcess::MonitoredProcess(std::unique_ptr<Impl> impl) : m_impl(std::move(impl)) {}

MonitoredProcess::MonitoredProcess(MonitoredProcess&& other) noexcept = default;

MonitoredProcess& MonitoredProcess::operator=(MonitoredProcess&& other) noexcept = default;

MonitoredProcess::~MonitoredProcess() = default;

unsigned char MonitoredProcess::GetCpuUsage() const { return m_impl->NextCpuPercent(GetNumberOfCpus()); }

unsigned long long MonitoredProcess::GetMemoryUsage() const { return m_impl->m_handle->ReadPrivateBytes(); }

unsigned int MonitoredProcess::GetProcessId() const { return m_impl->m_pid; }

bool MonitoredProcess::IsRunning() const { return m_impl->m_handle->IsAlive(); }

bool MonitoredProcess::IsRunning(unsigned int pid) { return IsProcessAlive(pid); }

// Clocks that there is no memory to read are not known.
bool MonitoredProcess::IsCpuAtMaxFrequency() {
  try {
    return AllAtMaximum(ReadProcessorClocks());
  } catch (const std::bad_alloc&) {
    return AllAtMaximum({});
  }
}
