#include "monitor/ResourceReporterManager.h"

#include <algorithm>

#include "qilsys/LogicException.h"

ResourceReporterManager& ResourceReporterManager::Get() {
  static ResourceReporterManager s_manager;
  return s_manager;
}

void ResourceReporterManager::Add(ResourceReporter* reporter) {
  TScopedLock lock(m_lock);
  m_reporters.push_back(reporter);
}

void ResourceReporterManager::Remove(ResourceReporter* reporter) {
  TScopedLock lock(m_lock);
  const auto el = std::find(m_reporters.begin(), m_reporters.end(), reporter);
  QILSYS_LOGIC_ASSERT(el != m_reporters.end(), "el != mng.m_reporters.end()", "main/monitor/ResourceReporterManager",
                      39, 0xD0963F53, "LogicException_LogicAssert_0xD0963F53");
  if (el != m_reporters.end()) m_reporters.erase(el);
}

void ResourceReporterManager::ReportAll(unsigned int seconds) {
  TScopedLock lock(m_lock);
  // By index: a reporter may register or destroy reporters while it is called.
  for (std::size_t i = 0; i < m_reporters.size(); ++i) m_reporters[i]->Report(seconds);
}
