/// Every kind of event under one roof, so that one suite runs over all of them; and a plain model, written with the
/// standard library alone, that shows the suite asks nothing peculiar.
#pragma once

#include <condition_variable>
#include <functional>
#include <map>
#include <mutex>
#include <utility>

#include "qilsys/TEvent.h"
#include "synchronize/SynchronizeForTest.h"

namespace qilsys::test {

/// An event as a user of the library might write one: manual reset, released waiters told apart by a generation.
class ModelEvent : public IEvent {
 public:
  void Signal() const override {
    {
      const std::lock_guard lock(m_mutex);
      m_isSet = true;
      ++m_generation;
    }
    m_condition.notify_all();
    const std::lock_guard lock(m_callbackMutex);
    for (const auto& [key, callback] : m_callbacks) {
      callback();
    }
  }
  bool IsSet() const override {
    const std::lock_guard lock(m_mutex);
    return m_isSet;
  }
  bool Wait(std::chrono::milliseconds timeout) const override {
    std::unique_lock lock(m_mutex);
    const Waiting waiting(*this);
    if (timeout.count() >= 0xFFFFFFFF) {
      m_condition.wait(lock, std::cref(waiting));
      return true;
    }
    return m_condition.wait_for(lock, timeout, std::cref(waiting));
  }
  bool Wait() const override { return Wait(std::chrono::milliseconds::max()); }
  void Reset() const override {
    const std::lock_guard lock(m_mutex);
    m_isSet = false;
  }
  void AddOnSignalCallback(void* key, std::function<void()> callback) const override {
    const std::lock_guard lock(m_callbackMutex);
    m_callbacks[key] = std::move(callback);
  }
  void RemoveOnSignalCallback(void* key) const override {
    const std::lock_guard lock(m_callbackMutex);
    m_callbacks.erase(key);
  }

  unsigned int Waiters() const {
    const std::lock_guard lock(m_mutex);
    return m_waiters;
  }

 private:
  class Waiting {
   public:
    explicit Waiting(const ModelEvent& event) : m_event(event), m_generation(event.m_generation) { ++event.m_waiters; }
    Waiting(const Waiting&) = delete;
    Waiting& operator=(const Waiting&) = delete;
    ~Waiting() { --m_event.m_waiters; }
    bool operator()() const { return m_event.m_isSet || m_event.m_generation != m_generation; }

   private:
    const ModelEvent& m_event;
    const unsigned int m_generation;
  };

  mutable std::mutex m_mutex;
  mutable std::condition_variable m_condition;
  mutable bool m_isSet = false;
  mutable unsigned int m_generation = 0;
  mutable unsigned int m_waiters = 0;
  mutable std::recursive_mutex m_callbackMutex;
  mutable std::map<void*, std::function<void()>> m_callbacks;
};

inline unsigned int Waiters(const ModelEvent& event) { return event.Waiters(); }
template <class Event>
unsigned int Waiters(const Event& event) {
  return SynchronizeForTest::Waiters(event);
}

/// Makes an event of a kind that one signal sets, and says what is peculiar to the kind.
template <class Event>
struct EventKind {
  static constexpr bool TakesSignal = false;
  static constexpr bool EverySignalCounts = true;
  const Event& operator*() const { return m_event; }
  Event m_event;
};

template <>
struct EventKind<TAutoResetEvent> {
  static constexpr bool TakesSignal = true;
  static constexpr bool EverySignalCounts = true;
  const TAutoResetEvent& operator*() const { return m_event; }
  TAutoResetEvent m_event;
};

template <>
struct EventKind<TCountdownEvent> {
  static constexpr bool TakesSignal = false;
  static constexpr bool EverySignalCounts = false;
  const TCountdownEvent& operator*() const { return m_event; }
  TCountdownEvent m_event{1};
};

template <>
struct EventKind<TCancelEvent> {
  static constexpr bool TakesSignal = false;
  static constexpr bool EverySignalCounts = true;
  const TCancelEvent& operator*() const { return *m_event; }
  RefCntPtr<TCancelEvent> m_event{new TCancelEvent};
};

}  // namespace qilsys::test
