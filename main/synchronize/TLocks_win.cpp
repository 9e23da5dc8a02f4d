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

// `depth` is the holder's, and 0 while nobody is inside.
struct Section {
  Section() { InitializeCriticalSectionEx(&lock, SpinCount, 0); }
  Section(const Section&) = delete;
  Section& operator=(const Section&) = delete;
  ~Section() { DeleteCriticalSection(&lock); }

  CRITICAL_SECTION lock;
  unsigned int depth = 0;
};

struct Condition {
  Condition() { InitializeConditionVariable(&variable); }

  CONDITION_VARIABLE variable;
  std::atomic<unsigned int> sleepers{0};
};

}  // namespace

TCriticalSection::TCriticalSection() { m_section.Construct<Section>(); }

TCriticalSection::~TCriticalSection() { m_section.Destroy<Section>(); }

void TCriticalSection::Enter() noexcept {
  Section& section = m_section.As<Section>();
  EnterCriticalSection(&section.lock);
  ++section.depth;
}

bool TCriticalSection::TryEnter() noexcept {
  Section& section = m_section.As<Section>();
  const bool isEntered = TryEnterCriticalSection(&section.lock) != FALSE;
  section.depth += isEntered ? 1 : 0;
  return isEntered;
}

void TCriticalSection::Leave() noexcept {
  Section& section = m_section.As<Section>();
  --section.depth;
  LeaveCriticalSection(&section.lock);
}

bool TCriticalSection::IsContendedForTest() const noexcept {
  const CRITICAL_SECTION& section = m_section.As<Section>().lock;
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
  const unsigned int depth = section.depth;
  for (; section.depth > 1; --section.depth) {
    LeaveCriticalSection(&section.lock);
  }
  section.depth = 0;
  condition.sleepers.fetch_add(1, std::memory_order_relaxed);
  const bool isWoken = SleepConditionVariableCS(&condition.variable, &section.lock, INFINITE) != FALSE;
  condition.sleepers.fetch_sub(1, std::memory_order_relaxed);
  for (section.depth = 1; section.depth < depth; ++section.depth) {
    EnterCriticalSection(&section.lock);
  }
  return isWoken;
}

void TConditionVariable::WakeOne() noexcept { WakeConditionVariable(&m_condition.As<Condition>().variable); }

unsigned int TConditionVariable::SleepersForTest() noexcept {
  return m_condition.As<Condition>().sleepers.load(std::memory_order_relaxed);
}

}  // namespace qilsys::synchronize
