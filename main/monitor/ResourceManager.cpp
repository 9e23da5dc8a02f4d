#include "qilsys/ResourceManager.h"

#include <atomic>
#include <utility>

#include "monitor/MemoryLimit.h"
#include "monitor/ResourceManagerImpl.h"
#include "qilsys/LogicException.h"
#include "qilsys/TSystem.h"

namespace {

constexpr char File[] = "main/monitor/ResourceManager";

// What the host's thread is doing with the manager. It calls the host meanwhile, which may call back.
enum class Phase { Settled, Starting, StartingToBeStopped, Stopping };

std::atomic<Phase> g_phase = Phase::Settled;

// The end of a start, and of the manager too if that was asked for in between.
void EndStart() {
  if (g_phase.exchange(Phase::Settled) == Phase::StartingToBeStopped) ResourceManager::Stop();
}

// What every function that needs a started manager begins with: false if there is none and the assertion's hook
// returns.
bool RequireStarted(const ResourceManagerImpl* singleton, int line, unsigned int code, const char* codeName) {
  QILSYS_LOGIC_ASSERT(singleton, "s_singleton", File, line, code, codeName);
  return singleton != nullptr;
}

}  // namespace

ResourceManagerImpl* ResourceManager::s_singleton = nullptr;

// The implementation is stored before it starts: one that can't start stays in place until Stop.
void ResourceManager::Start(unsigned short port, const CpuConfig& cpuConfig, const MemoryConfig& memoryConfig,
                            const GeneralConfig& generalConfig) {
  QILSYS_LOGIC_ASSERT(generalConfig.m_logFunc != nullptr, "generalConfig.m_logFunc != nullptr", File, 32, 0x726F85B0,
                      "LogicException_LogicAssert_0x726F85B0");
  QILSYS_LOGIC_ASSERT(generalConfig.m_terminateFunc != nullptr, "generalConfig.m_terminateFunc != nullptr", File, 34,
                      0x7A7F6F49, "LogicException_LogicAssert_0x7A7F6F49");
  if (!generalConfig.m_logFunc || s_singleton != nullptr) return;
  s_singleton = new ResourceManagerImpl(cpuConfig, memoryConfig, generalConfig);
  g_phase = Phase::Starting;
  try {
    s_singleton->StartMonitoring(port);
  } catch (...) {
    EndStart();
    throw;
  }
  EndStart();
}

void ResourceManager::Stop() {
  if (s_singleton == nullptr) return;
  // From inside a start it takes effect when that returns; from inside a stop it has nothing to add.
  Phase phase = Phase::Starting;
  g_phase.compare_exchange_strong(phase, Phase::StartingToBeStopped);
  if (phase != Phase::Settled) return;
  s_singleton->StopThreads();
  // The last log line still sees the manager. Where it throws, the object is gone all the same.
  struct Forgetting {
    ~Forgetting() {
      s_singleton = nullptr;
      g_phase = Phase::Settled;
    }
  } const forgetting;
  g_phase = Phase::Stopping;
  delete s_singleton;
}

void ResourceManager::AddReclaimCpuFunction(const TStringCore& name, std::function<void(double)> func) {
  if (!RequireStarted(s_singleton, 70, 0x63847926, "LogicException_LogicAssert_0x63847926")) return;
  s_singleton->CpuReclaim().Add(name, std::move(func));
}

void ResourceManager::RemoveReclaimCpuFunction(const TStringCore& name) {
  if (!RequireStarted(s_singleton, 76, 0x89B0A734, "LogicException_LogicAssert_0x89B0A734")) return;
  s_singleton->CpuReclaim().Remove(name);
}

void ResourceManager::AddReclaimMemoryFunction(const TStringCore& name, std::function<void(double)> func) {
  if (!RequireStarted(s_singleton, 82, 0x401F5132, "LogicException_LogicAssert_0x401F5132")) return;
  s_singleton->MemoryReclaim().Add(name, std::move(func));
}

void ResourceManager::RemoveReclaimMemoryFunction(const TStringCore& name) {
  if (!RequireStarted(s_singleton, 88, 0x5935050F, "LogicException_LogicAssert_0x5935050F")) return;
  s_singleton->MemoryReclaim().Remove(name);
}

void ResourceManager::RegisterChildProcessId(unsigned int pid) {
  if (!RequireStarted(s_singleton, 94, 0xC229B6E8, "LogicException_LogicAssert_0xC229B6E8")) return;
  s_singleton->Children().AddChild(pid);
}

void ResourceManager::UnregisterChildProcessId(unsigned int pid) {
  if (!RequireStarted(s_singleton, 100, 0x17D48ECC, "LogicException_LogicAssert_0x17D48ECC")) return;
  s_singleton->Children().RemoveChild(pid);
}

std::pair<unsigned char, unsigned long long> ResourceManager::GetCpuAndMemoryUsage() {
  if (!RequireStarted(s_singleton, 106, 0x9834CEA0, "LogicException_LogicAssert_0x9834CEA0")) return {0, 0};
  return s_singleton->GetCpuAndMemoryUsage();
}

double ResourceManager::GetMemoryPressure() { return s_singleton != nullptr ? s_singleton->GetMemoryPressure() : -1.0; }

unsigned long long ResourceManager::AdjustMemoryLimit(unsigned int minimumBaseGiB, unsigned int explicitLimitGiB,
                                                      double fraction, double reserveGiB) {
  if (explicitLimitGiB != 0) return std::uint64_t{explicitLimitGiB} << 30;
  return qilsys::monitor::MemoryLimitFor(TSystem::Memory().m_totalPhysical, minimumBaseGiB, fraction, reserveGiB);
}

ResourceManager& ResourceManager::operator=(const ResourceManager&) { return *this; }

ResourceManager& ResourceManager::operator=(ResourceManager&&) noexcept { return *this; }
