/// Runs the story with real processes.
#pragma once

#include <chrono>
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

/// Owns the members; whatever happens, none of them outlives it.
class Director {
 public:
  Director(unsigned short port, Screen& screen);

  /// Runs the whole story. Throws StoryFailure or Interrupted.
  void Run();

  const Chronicle& Record() const { return m_chronicle; }

 private:
  void StartMembers();
  void Play(const Beat& beat);
  void Tick();
  void Sample();
  void CheckExits();
  double Seconds() const;

  unsigned short m_port;
  Screen& m_screen;
  std::chrono::steady_clock::time_point m_start = std::chrono::steady_clock::now();
  double m_lastSample = -1;
  Chronicle m_chronicle;
  std::vector<std::unique_ptr<Actor>> m_actors;
};

}  // namespace demo
