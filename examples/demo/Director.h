/// Runs the story with real processes.
#pragma once

#include <chrono>
#include <functional>
#include <memory>
#include <stdexcept>
#include <vector>

#include "demo/Actor.h"
#include "demo/Chronicle.h"
#include "demo/Screen.h"
#include "demo/Story.h"

namespace demo {

/// The story did not go as told.
class StoryFailure : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

/// Somebody asked the demo to stop.
class Interrupted : public std::exception {};

/// Calls `tick` until `isDone`; false if that has not come when `seconds` is above `deadline`. What the time has brought
/// is taken in before it is judged: this process may have been stopped for long, and the members not.
bool TickUntil(const std::function<bool()>& isDone, const std::function<void()>& tick,
               const std::function<double()>& seconds, double deadline);

/// Owns the members; whatever happens, none of them outlives it.
class Director {
 public:
  Director(unsigned short port, Screen& screen);

  /// Runs the whole story. Throws StoryFailure or Interrupted.
  void Run();

  const Chronicle& Record() const { return m_chronicle; }

  /// True if the beats that need processors at their full clock did not come off on a machine that has none.
  bool HasLeftOutBeats() const { return m_leftOut; }

 private:
  void StartMembers();
  void Play(const Beat& beat);
  void LeaveOut(const Beat& beat, const Cast& cast);
  void Tick();
  void Sample();
  void CheckExits();
  double Seconds() const;

  unsigned short m_port;
  Screen& m_screen;
  std::chrono::steady_clock::time_point m_start = std::chrono::steady_clock::now();
  double m_lastSample = -1;
  bool m_sawSlowClock = false;
  bool m_leftOut = false;
  Chronicle m_chronicle;
  std::vector<std::unique_ptr<Actor>> m_actors;
};

}  // namespace demo
