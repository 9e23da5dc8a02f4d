#include "synchronize/Futex_linux.h"

#ifndef __linux__
#error "This file is for Linux."
#endif

#include <linux/futex.h>
#include <sys/syscall.h>
#include <time.h>
#include <unistd.h>

#include <cerrno>

#include "synchronize/SynchronizeForTest.h"

namespace qilsys::synchronize {
namespace {

static_assert(sizeof(TFutexWord) == 4 && TFutexWord::is_always_lock_free);

thread_local int t_errorForTest = 0;

timespec ToTimespec(std::chrono::nanoseconds time) {
  const auto seconds = std::chrono::duration_cast<std::chrono::seconds>(time);
  return {.tv_sec = seconds.count(), .tv_nsec = (time - seconds).count()};
}

// The BITSET form takes a point of the monotonic clock; the plain form takes a span, which would start afresh
// with each look at the word.
long WaitOnWord(const TFutexWord& word, std::uint32_t expected, const timespec* until) {
  if (t_errorForTest != 0) [[unlikely]] {
    errno = t_errorForTest;
    return -1;
  }
  return syscall(SYS_futex, &word, FUTEX_WAIT_BITSET | FUTEX_PRIVATE_FLAG, expected, until, nullptr,
                 FUTEX_BITSET_MATCH_ANY);
}

FutexResult ResultOf(int error) {
  switch (error) {
    case EAGAIN:
    case EINTR:
      return FutexResult::Woken;
    case ETIMEDOUT:
      return FutexResult::TimedOut;
    default:
      return FutexResult::Failed;
  }
}

}  // namespace

FutexResult FutexWait(const TFutexWord& word, std::uint32_t expected, const TDeadline& deadline) noexcept {
  const timespec until = ToTimespec(deadline.SinceEpoch());
  const long result = WaitOnWord(word, expected, deadline.IsLimited() ? &until : nullptr);
  return result == 0 ? FutexResult::Woken : ResultOf(errno);
}

void FutexWakeOne(const TFutexWord* address) noexcept {
  syscall(SYS_futex, address, FUTEX_WAKE | FUTEX_PRIVATE_FLAG, 1, nullptr, nullptr, 0);
}

}  // namespace qilsys::synchronize

const bool SynchronizeForTest::OwnsQueues = true;

void SynchronizeForTest::FailWaits(int error) { qilsys::synchronize::t_errorForTest = error; }
