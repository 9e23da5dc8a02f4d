// The Linux sibling makes both of a futex and a queue of waiting threads.
#include "synchronize/TLocks_platform.h"

#ifndef _WIN32
#error "This file is for Windows."
#endif

#include <atomic>

#include "synchronize/LockCount_win.h"
#include "synchronize/TWaitable_win.h"

namespace qilsys::synchronize {
namespace {

constexpr DWORD SpinCount = 4000;

// `m_depth` is the holder's, and 0 while nobody is inside.
struct Section {
  Section() { InitializeCriticalSectionEx(&m_section, SpinCount, 0); }
  Section(const Section&) = delete;
  Section& operator=(const Section&) = delete;
  ~Section() { DeleteCriticalSection(&m_section); }

  CRITICAL_SECTION m_section;
  unsigned int m_depth = 0;
};

struct Condition {
  Condition() { InitializeConditionVariable(&m_condition); }

  CONDITION_VARIABLE m_condition;
  std::atomic<unsigned int> m_sleepers{0};
};

}  // namespace

TCriticalSection::TCriticalSection() { m_section.Construct<Section>(); }

TCriticalSection::~TCriticalSection() { m_section.Destroy<Section>(); }

void TCriticalSection::Enter() noexcept {
  Section& section = m_section.As<Section>();
  EnterCriticalSection(&section.m_section);
  ++section.m_depth;
}

bool TCriticalSection::TryEnter() noexcept {
  Section& section = m_section.As<Section>();
  const bool isEntered = TryEnterCriticalSection(&section.m_section) != FALSE;
  section.m_depth += isEntered ? 1 : 0;
  return isEntered;
}

void TCriticalSection::Leave() noexcept {
  Section& section = m_section.As<Section>();
  --section.m_depth;
  LeaveCriticalSection(&section.m_section);
}

bool TCriticalSection::IsContendedForTest() const noexcept {
  const CRITICAL_SECTION& section = m_section.As<Section>().m_section;
  const volatile LONG& lockCount = section.LockCount;
  const volatile LONG& entries = section.RecursionCount;
  return HasWaiters(lockCount, entries);
}

TConditionVariable::TConditionVariable() { m_condition.Construct<Condition>(); }

TConditionVariable::~TConditionVariable() { m_condition.Destroy<Condition>(); }

// The system's call leaves the section once only, however often the thread has entered it.
bool TConditionVariable::Sleep(TCriticalSection& criticalSection) noexcept {
  Condition& condition = m_condition.As<Condition>();
  Section& section = criticalSection.m_section.As<Section>();
  if (!MayWait()) [[unlikely]] {
    return false;
  }
  const unsigned int depth = section.m_depth;
  for (; section.m_depth > 1; --section.m_depth) {
    LeaveCriticalSection(&section.m_section);
  }
  section.m_depth = 0;
  condition.m_sleepers.fetch_add(1, std::memory_order_relaxed);
  const bool isWoken = SleepConditionVariableCS(&condition.m_condition, &section.m_section, INFINITE) != FALSE;
  condition.m_sleepers.fetch_sub(1, std::memory_order_relaxed);
  for (section.m_depth = 1; section.m_depth < depth; ++section.m_depth) {
    EnterCriticalSection(&section.m_section);
  }
  return isWoken;
}

void TConditionVariable::WakeOne() noexcept { WakeConditionVariable(&m_condition.As<Condition>().m_condition); }

unsigned int TConditionVariable::SleepersForTest() noexcept {
  return m_condition.As<Condition>().m_sleepers.load(std::memory_order_relaxed);
}

}  // namespace qilsys::synchronize
