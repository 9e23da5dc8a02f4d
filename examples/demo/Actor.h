/// A member as the director sees it.
#pragma once

#include <array>
#include <optional>
#include <string>

#include "demo/ChildProcess.h"
#include "demo/Chronicle.h"
#include "qilsys/MonitoredProcess.h"
#include "qilsys/TStringCore.h"

namespace demo {

/// What the lines of a member's monitor can tell.
enum class Sign { Pass, HearsAll, OverOwnLimit, OverGroupLimit, MemoryReclaimed, HighCpu, SustainedCpu, CpuReclaimed };

/// A started member: its process, what it said, what it uses.
class Actor {
 public:
  /// Starts the member. Throws std::system_error, or QuillonException if it ends at once.
  Actor(size_t index, unsigned short port);

  unsigned int Id() const { return m_process.Id(); }
  const char* Name() const { return MemberNames[m_index]; }

  void Tell(const std::string& line) { m_process.Tell(line); }
  void Dismiss() { m_process.Dismiss(); }

  /// Takes in what the member said; new events are added to `chronicle`.
  void Listen(double seconds, Chronicle& chronicle);

  /// Reads what the member uses now, its memory above that of a bare process.
  Usage Measure();

  /// How often its monitor has given this sign.
  unsigned int Count(Sign sign) const { return m_signs[static_cast<size_t>(sign)]; }

  /// Its exit code once it has ended and been heard out.
  std::optional<int> ExitCode() { return m_process.ExitCode(); }

  /// In a word, what it is doing.
  const TStringCore& State() const { return m_state; }

 private:
  void Hear(const TStringCore& line, double seconds, Chronicle& chronicle);
  void NoteEnd(int exitCode, double seconds, Chronicle& chronicle);
  void Note(const TStringCore& text, bool marked, double seconds, Chronicle& chronicle);

  size_t m_index;
  ChildProcess m_process;
  MonitoredProcess m_meter;
  std::array<unsigned int, static_cast<size_t>(Sign::CpuReclaimed) + 1> m_signs{};
  TStringCore m_state = u"starting";
  bool m_ended = false;
};

}  // namespace demo
