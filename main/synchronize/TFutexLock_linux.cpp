#include "synchronize/TFutexLock_linux.h"

#include <thread>

namespace qilsys::synchronize {
namespace {

// Looks at the word before a thread sleeps. Sections here are short, so a holder that runs is done before a sleep would
// have begun. With one processor the holder can't run while another spins. A lock used before this is set spins not at
// all, which is harmless.
const int Looks = std::thread::hardware_concurrency() > 1 ? 4000 : 0;

// A pause takes about 140 cycles on newer processors, 10 on older ones. One at each look would make the whole spin
// longer than many a time slice of a holder that does not run; this way it stays near 15 microseconds.
constexpr int LooksToAPause = 16;

inline void Pause() {
#if defined(__x86_64__) || defined(__i386__)
  __builtin_ia32_pause();
#elif defined(__aarch64__)
  asm volatile("yield");
#endif
}

}  // namespace

// Once somebody sleeps, spinning on would only steal the lock from the sleeper that the holder is about to wake.
bool TFutexLock::SpinForLock() noexcept {
  for (int look = 1; look <= Looks; ++look) {
    const std::uint32_t state = m_word.load(std::memory_order_relaxed);
    if (state == Contended) {
      return false;
    }
    if (state == Free && TryLock()) {
      return true;
    }
    if (look % LooksToAPause == 0) {
      Pause();
    }
  }
  return false;
}

// A wait that fails is treated as a wake without a cause: the loop then spins, which is slow and still correct.
[[gnu::noinline]] void TFutexLock::LockSlow() noexcept {
  if (SpinForLock()) {
    return;
  }
  while (m_word.exchange(Contended, std::memory_order_acquire) != Free) {
    FutexWait(m_word, Contended, TDeadline::Never());
  }
}

}  // namespace qilsys::synchronize
