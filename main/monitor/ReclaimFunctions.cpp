#include "monitor/ReclaimFunctions.h"

#include <utility>

#include "qilsys/LogicException.h"
#include "qilsys/TFormatStringCore.h"

namespace {

constexpr char File[] = "main/monitor/ReclaimFunctions";

}  // namespace

ReclaimFunctions::ReclaimFunctions(const TStringCore& name) : m_name(name) {}

void ReclaimFunctions::Add(const TStringCore& name, std::function<void(double)> func) {
  QILSYS_LOGIC_ASSERT(func, "func", File, 19, 0x90402CEB, "LogicException_LogicAssert_0x90402CEB");
  if (!func) return;
  TScopedLock lock(m_lock);
  const bool inserted = m_functions.try_emplace(name, std::move(func)).second;
  QILSYS_LOGIC_ASSERT(inserted, "m_functions.insert(std::make_pair(name, func)).second", File, 23, 0x4A8DFC55,
                      "LogicException_LogicAssert_0x4A8DFC55");
}

void ReclaimFunctions::Remove(const TStringCore& name) {
  TScopedLock lock(m_lock);
  const bool erased = m_functions.erase(name) > 0;
  QILSYS_LOGIC_ASSERT(erased, "m_functions.erase(name) > 0", File, 31, 0x559557CC,
                      "LogicException_LogicAssert_0x559557CC");
}

bool ReclaimFunctions::Reclaim(std::function<void(const TStringCore&)> logFunc, double argument) {
  TScopedLock lock(m_lock);
  const std::size_t count = m_functions.size();
  logFunc(TFormatStringCore(u"Resource Manager: Reclaiming %1. Number registered functions: %2")
              .arg(m_name)
              .arg(static_cast<unsigned long long>(count))
              .result());
  // A function may add or remove functions, itself included: each is called from a copy, and the next one is looked up.
  for (auto it = m_functions.begin(); it != m_functions.end();) {
    const auto [name, func] = *it;
    logFunc(u"Resource Manager: Calling reclaim function named: " + name);
    func(argument);
    it = m_functions.upper_bound(name);
  }
  return count > 0;
}
