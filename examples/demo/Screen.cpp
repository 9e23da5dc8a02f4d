#include "demo/Screen.h"

#include <algorithm>
#include <iostream>

#include "demo/Preflight.h"
#include "qilsys/TFormatStringCore.h"

namespace demo {

namespace {

TStringCore EventLine(const Event& event) {
  return TFormatStringCore(u"%1 %2 %3")
      .arg(Moment(event.m_seconds))
      .arg(TStringCore(MemberNames[event.m_member]), -7)
      .arg(event.m_text);
}

/// A share from 0 to 1 as a bar of fixed width.
TStringCore Bar(double share, int width) {
  const int full = static_cast<int>(std::clamp(share, 0.0, 1.0) * width + 0.5);
  return TStringCore(u'\u2588', full) + TStringCore(u'\u2591', width - full);
}

/// Plain lines, one an event.
class PlainScreen : public Screen {
 public:
  void Title(double seconds, const TStringCore& text) override { Print(Moment(seconds) + u" == " + text); }
  void Tell(const Event& event) override { Print(EventLine(event)); }
  void Show(const Sample&, const std::vector<TStringCore>&) override {}
  void Progress(size_t, size_t) override {}

 private:
  static void Print(const TStringCore& line) { std::cout << line.toStdString() << std::endl; }
};

constexpr size_t ShownEvents = 8;

// Title and blank; head, members and group; blank, progress and blank; events. The cursor stands below them.
constexpr size_t LiveRows = 2 + 1 + MemberNames.size() + 1 + 3 + ShownEvents + 1;

/// A table that is drawn again in place: title, members, progress, the latest events.
class LiveScreen : public Screen {
 public:
  LiveScreen() { std::cout << "\x1b[?25l"; }
  ~LiveScreen() override { std::cout << "\x1b[?25h" << std::flush; }

  void Title(double seconds, const TStringCore& text) override {
    m_title = Moment(seconds) + u" " + text;
    Draw();
  }

  void Tell(const Event& event) override {
    m_events.push_back(EventLine(event));
    if (m_events.size() > ShownEvents) m_events.pop_front();
    Draw();
  }

  void Show(const Sample& sample, const std::vector<TStringCore>& states) override {
    m_table.clear();
    m_table.push_back(u"member   memory                               of limit   CPU  state");
    for (size_t i = 0; i < states.size(); ++i) m_table.push_back(Row(i, sample.m_usage[i], states[i]));
    m_table.push_back(GroupRow(sample));
    Draw();
  }

  void Progress(size_t done, size_t all) override {
    m_progress = TFormatStringCore(u"story    %1  %2 of %3")
                     .arg(Bar(static_cast<double>(done) / static_cast<double>(all), BarWidth))
                     .arg(done)
                     .arg(all);
    Draw();
  }

 private:
  static constexpr int BarWidth = 24;

  static TStringCore Row(size_t member, const Usage& usage, const TStringCore& state) {
    const TStringCore name(MemberNames[member]);
    if (!usage.m_running) return TFormatStringCore(u"%1  %2  %3").arg(name, -7).arg(TStringCore(), 54).arg(state);
    return Line(name, usage.m_bytes, Limits::PerProcess, usage.m_cpuPercent, state);
  }

  static TStringCore GroupRow(const Sample& sample) {
    unsigned long long bytes = 0;
    unsigned int cpu = 0;
    for (const Usage& usage : sample.m_usage) {
      bytes += usage.m_bytes;
      cpu += usage.m_cpuPercent;
    }
    return Line(u"group", bytes, Limits::AllProcesses, cpu, {});
  }

  static TStringCore Line(const TStringCore& name, unsigned long long bytes, unsigned long long limit, unsigned int cpu,
                          const TStringCore& state) {
    const double share = static_cast<double>(bytes) / static_cast<double>(limit);
    return TFormatStringCore(u"%1  %2  %3  %4 %%  %5 %%  %6")
        .arg(name, -7)
        .arg(Bar(share, BarWidth))
        .arg(Mebibytes(bytes), 10)
        .arg(share * 100, 6, 'f', 0)
        .arg(cpu, 4)
        .arg(state);
  }

  void Draw() {
    std::vector<TStringCore> lines = {m_title, {}};
    lines.insert(lines.end(), m_table.begin(), m_table.end());
    lines.insert(lines.end(), {TStringCore(), m_progress, TStringCore()});
    lines.insert(lines.end(), m_events.begin(), m_events.end());

    std::string text;
    if (m_drawn > 0) text += "\x1b[" + std::to_string(m_drawn) + "A";
    // A line that ran on would take two rows and spoil the count of rows to go up.
    const int width = OutputWidth() - 1;
    for (const TStringCore& line : lines) text += "\r\x1b[2K" + line.left(width).toStdString() + "\n";
    std::cout << text << std::flush;
    m_drawn = lines.size();
  }

  TStringCore m_title;
  TStringCore m_progress;
  std::vector<TStringCore> m_table;
  std::deque<TStringCore> m_events;
  size_t m_drawn = 0;
};

}  // namespace

std::unique_ptr<Screen> MakeScreen(bool plain) {
  if (plain || !OutputIsTerminal() || !FitsLiveTable(OutputHeight())) return std::make_unique<PlainScreen>();
  return std::make_unique<LiveScreen>();
}

bool FitsLiveTable(int rows) { return rows >= static_cast<int>(LiveRows); }

TStringCore Moment(double seconds) { return TFormatStringCore(u"[%1 s]").arg(seconds, 5, 'f', 1); }

TStringCore Mebibytes(unsigned long long bytes) {
  return TStringCore::number(static_cast<double>(bytes) / MiB, 'f', 1, false) + u" MiB";
}

}  // namespace demo
