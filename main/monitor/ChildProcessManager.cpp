#include "monitor/ChildProcessManager.h"

#include <utility>

#include "monitor/ResourceValues.h"
#include "qilsys/LogicException.h"

ChildProcessManager::ChildProcessManager(std::function<void(const TStringCore&)> logFunc)
    : m_logFunc(std::move(logFunc)) {}

void ChildProcessManager::AddChild(unsigned int pid) {
  m_logFunc(u"Resource Manager: Adding child process: " + TStringCore::number(pid));
  TScopedLock lock(m_lock);
  QILSYS_LOGIC_ASSERT(m_processes.try_emplace(pid, pid).second, "m_processes.emplace(pid, pid).second",
                      "main/monitor/ChildProcessManager", 19, 0xB2145A1B, "LogicException_LogicAssert_0xB2145A1B");
}

void ChildProcessManager::RemoveChild(unsigned int pid) {
  m_logFunc(u"Resource Manager: Removing child process: " + TStringCore::number(pid));
  TScopedLock lock(m_lock);
  QILSYS_LOGIC_ASSERT(m_processes.erase(pid) > 0, "m_processes.erase(pid) > 0", "main/monitor/ChildProcessManager", 28,
                      0xD96CB2C8, "LogicException_LogicAssert_0xD96CB2C8");
}

unsigned int ChildProcessManager::GetCpuUsage() {
  TScopedLock lock(m_lock);
  PercentSum sum;
  for (const auto& [pid, process] : m_processes) sum.Add(process.GetCpuUsage());
  return sum.Limited();
}

unsigned long long ChildProcessManager::GetMemoryUsage() {
  TScopedLock lock(m_lock);
  unsigned long long sum = 0;
  for (const auto& [pid, process] : m_processes) sum += process.GetMemoryUsage();
  return sum;
}
