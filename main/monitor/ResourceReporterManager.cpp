#include "monitor/ResourceReporterManager.h"

#include <algorithm>

#include "qilsys/LogicException.h"

namespace {

constexpr char File[] = "main/monitor/ResourceReporterManager";

}  // namespace

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
  const auto found = std::find(m_reporters.begin(), m_reporters.end(), reporter);
  const bool isRegistered = found != m_reporters.end();
  QILSYS_LOGIC_ASSERT(isRegistered, "el != mng.m_reporters.end()", File, 39, 0xD0963F53,
                      "LogicException_LogicAssert_0xD0963F53");
  if (isRegistered) m_reporters.erase(found);
}

void ResourceReporterManager::ReportAll(unsigned int seconds) {
  TScopedLock lock(m_lock);
  // By index: a reporter may register or destroy reporters while it is called.
  for (std::size_t i = 0; i < m_reporters.size(); ++i) m_reporters[i]->Report(seconds);
}
