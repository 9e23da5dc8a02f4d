#include "demo/Actor.h"

#include "qilsys/TFormatStringCore.h"

namespace demo {

namespace {

/// How a line of the monitor is recognised, and what it means to a watcher. Signs without a meaning are only counted.
struct Reading {
  const char16_t* m_part;
  Sign m_sign;
  const char16_t* m_meaning;
  const char16_t* m_state;
};

constexpr Reading Readings[] = {
    {u"Memory info: ", Sign::Pass, nullptr, nullptr},
    {u" 6 (info count)", Sign::HearsAll, nullptr, nullptr},
    {u"Exceeded allowed memory usage per process", Sign::OverOwnLimit, u"is over its own limit", u"over limit"},
    {u"Exceeded allowed memory usage across all", Sign::OverGroupLimit,
     u"has the largest share of a group over its limit", u"over limit"},
    {u"Memory reclaimed", Sign::MemoryReclaimed, u"is below its limit again and stays", u"reclaimed"},
    {u"Detected high CPU usage", Sign::HighCpu, nullptr, nullptr},
    {u"Exceeded sustained high CPU", Sign::SustainedCpu, u"is the busiest of a group over its CPU limit",
     u"over CPU limit"},
    {u"CPU reclaimed", Sign::CpuReclaimed, u"holds to the CPU limit again and stays", u"throttled"},
};

std::vector<std::string> Arguments(size_t index, unsigned short port) {
  return {"--member", MemberNames[index], "--port", std::to_string(port)};
}

}  // namespace

Actor::Actor(size_t index, unsigned short port)
    : m_index(index), m_process(Arguments(index, port)), m_meter(m_process.Id()) {}

void Actor::Listen(double seconds, Chronicle& chronicle) {
  // Asked first, so that nothing said before the end is missed.
  const std::optional<int> exitCode = m_process.ExitCode();
  for (const std::string& line : m_process.Hear()) Hear(TStringCore::fromStdString(line), seconds, chronicle);
  if (exitCode && !m_ended) {
    m_ended = true;
    NoteEnd(*exitCode, seconds, chronicle);
  }
}

void Actor::NoteEnd(int exitCode, double seconds, Chronicle& chronicle) {
  m_state = exitCode == 0 ? u"left" : u"ended";
  if (exitCode == 0) return Note(u"leaves when the story is over", false, seconds, chronicle);
  Note(TFormatStringCore(u"has ended with code %1").arg(exitCode), true, seconds, chronicle);
}

void Actor::Hear(const TStringCore& line, double seconds, Chronicle& chronicle) {
  const int blank = line.indexOf(u' ');
  const TStringCore kind = line.left(blank);
  const TStringCore text = line.mid(blank + 1).replace(u"Resource Manager: ", u"");
  if (kind == u"did") return Note(text, true, seconds, chronicle);
  if (kind == u"end")
    return Note(TFormatStringCore(u"is asked to end itself, code %1").arg(text), false, seconds, chronicle);
  for (const Reading& reading : Readings) {
    if (!text.contains(TStringCore(reading.m_part))) continue;
    ++m_signs[static_cast<size_t>(reading.m_sign)];
    if (reading.m_state != nullptr) m_state = reading.m_state;
    if (reading.m_meaning != nullptr) Note(reading.m_meaning, false, seconds, chronicle);
  }
  if (m_state == u"starting") m_state = u"member";
}

void Actor::Note(const TStringCore& text, bool marked, double seconds, Chronicle& chronicle) {
  chronicle.m_events.push_back({seconds, m_index, text, marked});
}

Usage Actor::Measure() {
  if (!m_meter.IsRunning()) return {};
  return {AboveBare(m_meter.GetMemoryUsage()), m_meter.GetCpuUsage(), true};
}

}  // namespace demo
