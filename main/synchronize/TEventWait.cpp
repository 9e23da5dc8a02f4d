// Waiting for several events at once, by callbacks: so it works over any mixture of them.
#include "qilsys/TEvent.h"

#include <atomic>
#include <functional>
#include <vector>

namespace {

using std::chrono::milliseconds;

// One wait. Callbacks run on signalling threads and refer to this object, which is safe since removing a callback
// waits for it to end.
class MultiWait {
 public:
  MultiWait(const std::vector<IEvent*>& events, unsigned int required, unsigned int& index)
      : m_events(events), m_countdown(required), m_slots(events.size()), m_fired(events.size()), m_index(index) {}
  MultiWait(const MultiWait&) = delete;
  MultiWait& operator=(const MultiWait&) = delete;
  ~MultiWait() {
    for (std::size_t i = 0; i < m_registered; ++i) {
      m_events[i]->RemoveOnSignalCallback(&m_slots[i]);
    }
  }

  bool Wait(milliseconds timeout) {
    while (m_registered < m_events.size()) {
      Register(m_registered);
    }
    return m_countdown.Wait(timeout);
  }

 private:
  // The test after the registration catches a signal that came before it. On an auto-reset event the test itself has
  // taken that signal, so the claim in Fire fails and the position can't count any more.
  void Register(std::size_t i) {
    IEvent& event = *m_events[i];
    m_slots[i] = [this, i] { Fire(i); };
    event.AddOnSignalCallback(&m_slots[i], m_slots[i]);
    ++m_registered;
    if (event.IsSet()) {
      m_slots[i]();
    }
  }

  // Each position counts at most once, however many threads get here: the exchange picks one. It needs no order of its
  // own, since the countdown's lock gives it. Of several stores to the index any one may stay.
  void Fire(std::size_t i) {
    const bool isAutoReset = dynamic_cast<const TAutoResetEvent*>(m_events[i]) != nullptr;
    if (m_fired[i].exchange(1, std::memory_order_relaxed) != 0) {
      return;
    }
    if (isAutoReset && !m_events[i]->Wait(milliseconds(0))) {
      return;
    }
    std::atomic_ref(m_index).store(static_cast<unsigned int>(i), std::memory_order_relaxed);
    m_countdown.Signal();
  }

  const std::vector<IEvent*>& m_events;
  const TCountdownEvent m_countdown;
  std::vector<std::function<void()>> m_slots;
  std::vector<std::atomic<std::uint32_t>> m_fired;
  unsigned int& m_index;
  std::size_t m_registered = 0;
};

bool WaitForCount(const std::vector<IEvent*>& events, unsigned int required, milliseconds timeout,
                  unsigned int& index) {
  return required == 0 || MultiWait(events, required, index).Wait(timeout);
}

}  // namespace

bool WaitForAll(const std::vector<IEvent*>& events, milliseconds timeout) {
  unsigned int unused = 0;
  return WaitForCount(events, static_cast<unsigned int>(events.size()), timeout, unused);
}

bool WaitForAny(const std::vector<IEvent*>& events, milliseconds timeout) {
  unsigned int unused = 0;
  return WaitForCount(events, 1, timeout, unused);
}

bool WaitForAny(const std::vector<IEvent*>& events, milliseconds timeout, unsigned int& index) {
  return WaitForCount(events, 1, timeout, index);
}
