#include "qilsys/TLocks.h"

#include <cstdint>
#include <limits>

#include "qilsys/LogicException.h"
#include "synchronize/SynchronizeForTest.h"
#include "synchronize/TLocks_platform.h"

using qilsys::synchronize::TConditionVariable;
using qilsys::synchronize::TCriticalSection;

namespace {

constexpr char File[] = "main/synchronize/TLocks";

}  // namespace

TRecursiveMutex::TRecursiveMutex(unsigned int) : m_section(std::make_unique<TCriticalSection>()) {}

TRecursiveMutex::~TRecursiveMutex() = default;

void TRecursiveMutex::Lock() { m_section->Enter(); }
void TRecursiveMutex::LockRead() { m_section->Enter(); }
bool TRecursiveMutex::TryLock() { return m_section->TryEnter(); }
void TRecursiveMutex::Unlock() { m_section->Leave(); }
void TRecursiveMutex::UnlockRead() { m_section->Leave(); }

// A writer is the thread inside of the section: that, not the counters, keeps the others out. The counters, guarded by
// the section, say whom a writer must wait for and whether one is there to be woken.
struct TReadWriteLock::Impl {
  void WaitForReaders();

  TConditionVariable m_cv;
  TCriticalSection m_section;
  std::uint16_t m_readerCount = 0;
  std::uint16_t m_writerCount = 0;
};

TReadWriteLock::TReadWriteLock(unsigned int) : m_impl(std::make_unique<Impl>()) {}

TReadWriteLock::~TReadWriteLock() = default;

// What raises here leaves the section entered: an invariant of this kind can't be repaired.
void TReadWriteLock::Lock() {
  m_impl->m_section.Enter();
  QILSYS_LOGIC_ASSERT(m_impl->m_writerCount < std::numeric_limits<std::uint16_t>::max(),
                      "m_writerCount < std::numeric_limits<decltype(m_writerCount)>::max()", File, 223, 0xA44EBAAD,
                      "LogicException_LogicAssert_0xA44EBAAD");
  ++m_impl->m_writerCount;
  if (m_impl->m_readerCount != 0) {
    m_impl->WaitForReaders();
  }
}

void TReadWriteLock::Impl::WaitForReaders() {
  while (m_readerCount != 0) {
    const bool isWoken = m_cv.Sleep(m_section);
    QILSYS_LOGIC_ASSERT(isWoken, "SleepConditionVariableCS(&m_cv, mutex.native_handle(), 0xFFFFFFFF)", File, 151,
                        0xA4874C3A, "LogicException_LogicAssert_0xA4874C3A");
  }
}

// The count still holds the writers that sleep: each one that leaves wakes the next.
void TReadWriteLock::Unlock() {
  const std::uint16_t remaining = --m_impl->m_writerCount;
  m_impl->m_section.Leave();
  if (remaining != 0) {
    m_impl->m_cv.WakeOne();
  }
}

void TReadWriteLock::LockRead() {
  m_impl->m_section.Enter();
  QILSYS_LOGIC_ASSERT(m_impl->m_readerCount < std::numeric_limits<std::uint16_t>::max(),
                      "m_readerCount < std::numeric_limits<decltype(m_readerCount)>::max()", File, 245, 0x88DFEC71,
                      "LogicException_LogicAssert_0x88DFEC71");
  ++m_impl->m_readerCount;
  m_impl->m_section.Leave();
}

void TReadWriteLock::UnlockRead() {
  m_impl->m_section.Enter();
  const bool isLast = --m_impl->m_readerCount == 0;
  const bool wakesWriter = isLast && m_impl->m_writerCount != 0;
  m_impl->m_section.Leave();
  if (wakesWriter) {
    m_impl->m_cv.WakeOne();
  }
}

unsigned int SynchronizeForTest::WaitingWriters(TReadWriteLock& lock) {
  lock.m_impl->m_section.Enter();
  const unsigned int waiting = lock.m_impl->m_cv.SleepersForTest();
  lock.m_impl->m_section.Leave();
  return waiting;
}

bool SynchronizeForTest::IsContended(const TRecursiveMutex& mutex) { return mutex.m_section->IsContendedForTest(); }

bool SynchronizeForTest::IsContended(const TReadWriteLock& lock) { return lock.m_impl->m_section.IsContendedForTest(); }
