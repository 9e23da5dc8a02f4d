#include "demo/Director.h"

#include <csignal>
#include <thread>

#include "qilsys/MonitoredProcess.h"
#include "qilsys/TFormatStringCore.h"

namespace demo {

namespace {

constexpr std::chrono::milliseconds TickTime(50);
constexpr double SampleSeconds = 0.2;

// Members that start apart also check apart, so that each has a fresh datagram of every other whenever it decides.
constexpr std::chrono::milliseconds StartDistance(150);

volatile std::sig_atomic_t g_interrupted = 0;

void OnInterrupt(int) { g_interrupted = 1; }

}  // namespace

bool TickUntil(const std::function<bool()>& isDone, const std::function<void()>& tick,
               const std::function<double()>& seconds, double deadline) {
  while (!isDone()) {
    const bool isLate = seconds() > deadline;
    tick();
    if (isLate) return isDone();
  }
  return true;
}

Director::Director(unsigned short port, Screen& screen) : m_port(port), m_screen(screen) {
  std::signal(SIGINT, OnInterrupt);
  std::signal(SIGTERM, OnInterrupt);
}

void Director::Run() {
  StartMembers();
  const std::vector<Beat> story = TellStory();
  for (size_t i = 0; i < story.size(); ++i) {
    m_screen.Progress(i, story.size());
    Play(story[i]);
  }
  m_screen.Progress(story.size(), story.size());
}

void Director::StartMembers() {
  for (size_t i = 0; i < MemberNames.size(); ++i) {
    m_actors.push_back(std::make_unique<Actor>(i, m_port));
    std::this_thread::sleep_for(StartDistance);
  }
}

void Director::Play(const Beat& beat) {
  if (beat.m_needsFullClock && m_leftOut) return;
  if (!beat.m_title.empty()) m_screen.Title(Seconds(), beat.m_title);
  const Cast cast(m_actors);
  m_sawSlowClock = false;
  beat.m_begin(cast);
  const auto tick = [this] {
    Tick();
    std::this_thread::sleep_for(TickTime);
  };
  if (!TickUntil([&] { return beat.m_done(cast); }, tick, [this] { return Seconds(); }, Seconds() + beat.m_seconds)) {
    LeaveOut(beat, cast);
  }
  // What came of this beat is told before the next one begins.
  Tick();
}

// Below their top clock the monitor takes processors as idle, and rightly so: a laptop that saves power fails nobody.
void Director::LeaveOut(const Beat& beat, const Cast& cast) {
  if (!beat.m_needsFullClock || !m_sawSlowClock) throw StoryFailure(beat.m_failure.toStdString());
  m_leftOut = true;
  cast.Burner().Tell("burn 0");
  m_screen.Title(Seconds(), u"Left out: the processors run below their top clock, so no member counts as busy");
}

void Director::Tick() {
  if (g_interrupted != 0) throw Interrupted();
  const size_t before = m_chronicle.m_events.size();
  for (const auto& actor : m_actors) actor->Listen(Seconds(), m_chronicle);
  for (size_t i = before; i < m_chronicle.m_events.size(); ++i) m_screen.Tell(m_chronicle.m_events[i]);
  Sample();
  CheckExits();
}

void Director::Sample() {
  if (Seconds() - m_lastSample < SampleSeconds) return;
  m_lastSample = Seconds();
  if (!MonitoredProcess::IsCpuAtMaxFrequency()) m_sawSlowClock = true;
  demo::Sample sample{m_lastSample, {}};
  std::vector<TStringCore> states;
  for (size_t i = 0; i < m_actors.size(); ++i) {
    sample.m_usage[i] = m_actors[i]->Measure();
    states.push_back(m_actors[i]->State());
  }
  m_chronicle.m_samples.push_back(sample);
  m_screen.Show(sample, states);
}

void Director::CheckExits() {
  for (size_t i = 0; i < m_actors.size(); ++i) {
    const std::optional<int> code = m_actors[i]->ExitCode();
    if (!code || *code == ToldExitCode(i) || (m_leftOut && *code == 0 && ToldExitCode(i) == ExitCodes::Cpu)) continue;
    throw StoryFailure(TFormatStringCore(u"%1 ended with code %2, which the story does not let it do.")
                           .arg(TStringCore(MemberNames[i]))
                           .arg(*code)
                           .result()
                           .toStdString());
  }
}

double Director::Seconds() const {
  return std::chrono::duration<double>(std::chrono::steady_clock::now() - m_start).count();
}

}  // namespace demo
