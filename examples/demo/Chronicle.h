/// What happened, and what was measured, in order of time.
#pragma once

#include <array>
#include <string>
#include <vector>

#include "demo/Setting.h"
#include "qilsys/TStringCore.h"

namespace demo {

/// One thing that a member did or that befell it.
struct Event {
  double m_seconds = 0;
  size_t m_member = 0;
  TStringCore m_text;
  /// A turning point, to be marked in the picture.
  bool m_marked = false;
};

/// What one member used at one moment, its memory above that of a bare process.
struct Usage {
  unsigned long long m_bytes = 0;
  unsigned int m_cpuPercent = 0;
  bool m_running = false;
};

/// The readings of all members at one moment.
struct Sample {
  double m_seconds = 0;
  std::array<Usage, MemberNames.size()> m_usage;
};

/// The record of a run, for the summary, the table of values and the picture.
struct Chronicle {
  std::vector<Event> m_events;
  std::vector<Sample> m_samples;
};

}  // namespace demo
