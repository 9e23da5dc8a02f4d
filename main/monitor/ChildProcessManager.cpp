#include "monitor/ChildProcessManager.h"

#include <utility>

#include "monitor/ResourceValues.h"
#include "qilsys/LogicException.h"

namespace {

constexpr char File[] = "main/monitor/ChildProcessManager";

}  // namespace

ChildProcessManager::ChildProcessManager(std::function<void(const TStringCore&)> logFunc)
    : m_logFunc(std::move(logFunc)) {}

void ChildProcessManager::AddChild(unsigned int pid) {
  m_logFunc(u"Resource Manager: Adding child process: " + TStringCore::number(pid));
  TScopedLock lock(m_lock);
  const bool inserted = m_processes.try_emplace(pid, pid).second;
  QILSYS_LOGIC_ASSERT(inserted, "m_processes.emplace(pid, pid).second", File, 19, 0xB2145A1B,
                      "LogicException_LogicAssert_0xB2145A1B");
}

void ChildProcessManager::RemoveChild(unsigned int pid) {
  m_logFunc(u"Resource Manager: Removing child process: " + TStringCore::number(pid));
  TScopedLock lock(m_lock);
  const bool erased = m_processes.erase(pid) > 0;
  QILSYS_LOGIC_ASSERT(erased, "m_processes.erase(pid) > 0", File, 28, 0xD96CB2C8,
                      "LogicException_LogicAssert_0xD96CB2C8");
}

unsigned int ChildProcessManager::GetCpuUsage() {
  TScopedLock lock(m_lock);
  qilsys::monitor::PercentSum sum;
  for (const auto& [pid, process] : m_processes) sum.Add(process.GetCpuUsage());
  return sum.Limited();
}

unsigned long long ChildProcessManager::GetMemoryUsage() {
  TScopedLock lock(m_lock);
  unsigned long long sum = 0;
  for (const auto& [pid, process] : m_processes) sum += process.GetMemoryUsage();
  return sum;
}
