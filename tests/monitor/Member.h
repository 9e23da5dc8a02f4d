/// A resource manager without threads and sockets: its clock, its readings and its wire are the test's.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "monitor/ResourceManagerImpl.h"

namespace qilsys::test {

using namespace monitor;

using Lines = std::vector<std::string>;

constexpr std::int64_t Second = 1'000'000'000;

/// An identity as the log lines print it.
inline std::string IdentityText(const ResourceIdentity& identity) {
  constexpr char digits[] = "0123456789abcdef";
  std::string text;
  for (std::size_t i = 0; i < identity.size(); ++i) {
    if (i == 4 || i == 6 || i == 8 || i == 10) text += '-';
    text += digits[identity[i] >> 4];
    text += digits[identity[i] & 15];
  }
  return text;
}

/// All that a member is started with. Log lines and termination requests are added to `m_lines`, in one order.
struct Settings {
  ResourceManager::CpuConfig m_cpu;
  ResourceManager::MemoryConfig m_memory;
  ResourceManager::GeneralConfig m_general;
  std::shared_ptr<Lines> m_lines = std::make_shared<Lines>();

  Settings() {
    m_general.m_logFunc = [lines = m_lines](const TStringCore& line) { lines->push_back(line.toStdString()); };
    m_general.m_terminateFunc = [lines = m_lines](unsigned char code, const TStringCore& reason) {
      lines->push_back("TERMINATE " + std::to_string(code) + " " + reason.toStdString());
    };
  }

  Settings& Cpu(std::uint32_t maxPercent, std::int64_t sustainedSeconds = 0) {
    m_cpu.m_maxCpuPercent = maxPercent;
    m_cpu.m_sustainedSeconds = sustainedSeconds;
    return *this;
  }
  Settings& RollingMean() {
    m_cpu.m_useRollingMean = true;
    return *this;
  }
  Settings& Memory(std::uint64_t perProcess, std::uint64_t allProcesses) {
    m_memory.m_perProcessLimit = perProcess;
    m_memory.m_allProcessesLimit = allProcesses;
    return *this;
  }
  Settings& Interval(std::int64_t seconds) {
    m_general.m_checkIntervalSeconds = seconds;
    return *this;
  }
  Settings& InfoEvery(std::uint32_t checks) {
    m_general.m_infoEveryChecks = checks;
    return *this;
  }
  Settings& TerminateCpu(unsigned char code) {
    m_cpu.m_terminateOnExcess = true;
    m_cpu.m_terminateCode = code;
    return *this;
  }
  Settings& TerminateMemory(unsigned char code) {
    m_memory.m_terminateOnExcess = true;
    m_memory.m_terminateCode = code;
    return *this;
  }
  Settings& Version1() {
    m_general.m_useVersion1 = true;
    return *this;
  }
};

/// What one sample of a member reads.
struct Reading {
  unsigned int m_cpuPercent = 0;
  unsigned long long m_memoryBytes = 0;
};

class Member : public ResourceManagerImpl {
 public:
  explicit Member(const Settings& settings)
      : ResourceManagerImpl(settings.m_cpu, settings.m_memory, settings.m_general), m_lines(settings.m_lines) {}

  /// A member with the process id and the identity of `own`, among others in this one process.
  Member(const Settings& settings, const ResourceValuesV2& own)
      : ResourceManagerImpl(settings.m_cpu, settings.m_memory, settings.m_general, own), m_lines(settings.m_lines) {}

  using ResourceManagerImpl::Advance;
  using ResourceManagerImpl::IsBelowCpuThreshold;
  using ResourceManagerImpl::IsBelowMemoryThreashold;
  using ResourceManagerImpl::LogAllProcesses;
  using ResourceManagerImpl::m_cpuMean;
  using ResourceManagerImpl::m_highCpuSince;
  using ResourceManagerImpl::m_ipc;
  using ResourceManagerImpl::m_ownValues;
  using ResourceManagerImpl::m_peers;
  using ResourceManagerImpl::m_peersLock;
  using ResourceManagerImpl::m_rvVersion;
  using ResourceManagerImpl::m_stopEvent;
  using ResourceManagerImpl::m_worker;
  using ResourceManagerImpl::OnValues;
  using ResourceManagerImpl::PurgePeers;
  using ResourceManagerImpl::ReclaimCpu;
  using ResourceManagerImpl::ReclaimMemory;
  using ResourceManagerImpl::Send;
  using ResourceManagerImpl::Work;

  /// One step of the worker; `stopped` tells how the wait before it ended.
  NextWait Step(bool stopped = false) { return Advance(m_state, m_self, stopped); }

  /// The lines since the last call.
  Lines TakeLines() { return std::exchange(*m_lines, {}); }

  /// Has the own figures come back, as they do within microseconds of a sample.
  void HearSelf() { OnValues(m_ownValues); }

  unsigned long long GetTotalMemoryUsed() override {
    return m_total ? m_total() : ResourceManagerImpl::GetTotalMemoryUsed();
  }

  std::int64_t m_now = 1000 * Second;
  Reading m_reading;
  /// Gives the reading of each sample, in place of `m_reading`.
  std::function<Reading()> m_read;
  /// Takes what the member sends.
  std::function<void(const ResourceValuesV2&)> m_wire;
  /// Gives the used memory of all processes, in place of the settings' function and the machine.
  std::function<unsigned long long()> m_total;
  int m_samples = 0;
  MonitoredProcess m_self;
  WorkerState m_state;

 protected:
  std::int64_t GetSteadyTime() override { return m_now; }

  void UpdateResourceValues(MonitoredProcess&, ResourceValuesV2& values) override {
    ++m_samples;
    const Reading reading = m_read ? m_read() : m_reading;
    if (CpuPolicyInForce()) SetCpuFigures(values, 0, static_cast<unsigned char>(reading.m_cpuPercent));
    if (MemoryPolicyInForce()) SetMemoryFigures(values, reading.m_memoryBytes);
    if (m_wire) m_wire(values);
    PurgePeers();
  }

 private:
  std::shared_ptr<Lines> m_lines;
};

/// Figures of another member, told apart by `id`.
inline ResourceValuesV2 PeerValues(std::uint8_t id, unsigned int cpuPercent, unsigned long long memoryBytes = 0,
                                   unsigned int memoryLimitPercent = 0, unsigned int intervalSeconds = 1) {
  ResourceValuesV2 values;
  values.pid = 1000U + id;
  values.uuid.fill(id);
  values.cpuPercent = static_cast<std::uint8_t>(cpuPercent);
  values.memoryBytes = memoryBytes;
  values.memoryLimitPercent = static_cast<std::uint8_t>(memoryLimitPercent);
  values.reportIntervalSeconds = static_cast<std::uint8_t>(intervalSeconds);
  return values;
}

}  // namespace qilsys::test
