/// The script: what the members are told to do, and what has to come of it.
#pragma once

#include <functional>
#include <vector>

#include "demo/Actor.h"

namespace demo {

/// The members by role, in the order of MemberNames.
class Cast {
 public:
  explicit Cast(std::vector<std::unique_ptr<Actor>>& actors) : m_actors(actors) {}

  Actor& Quiet() const { return *m_actors[0]; }
  Actor& Cache() const { return *m_actors[1]; }
  Actor& Leak() const { return *m_actors[2]; }
  Actor& Large() const { return *m_actors[3]; }
  Actor& Medium() const { return *m_actors[4]; }
  Actor& Burner() const { return *m_actors[5]; }

  /// All that have not ended.
  std::vector<Actor*> Present() const;

 private:
  std::vector<std::unique_ptr<Actor>>& m_actors;
};

/// One step of the story.
struct Beat {
  /// Heads what follows; empty where the beat goes on with the one before.
  TStringCore m_title;
  /// Within this time it has to be done.
  double m_seconds = 0;
  std::function<void(const Cast&)> m_begin;
  std::function<bool(const Cast&)> m_done;
  /// What failed, should it not be done in time.
  TStringCore m_failure;
  /// Can't come off where the processors stay below their top clock.
  bool m_needsFullClock = false;
};

/// The story from the first beat to the last.
std::vector<Beat> TellStory();

/// The exit code with which the story lets a member end, by index; the others have to stay until they are dismissed.
int ToldExitCode(size_t member);

}  // namespace demo
