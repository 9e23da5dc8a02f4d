#include "demo/Report.h"

#include <cstdlib>
#include <fstream>
#include <iostream>
#include <stdexcept>

#include "demo/Screen.h"
#include "qilsys/TFormatStringCore.h"

namespace demo {

namespace {

namespace fs = std::filesystem;

double InMiB(unsigned long long bytes) { return static_cast<double>(bytes) / MiB; }

std::string Shown(const fs::path& file) {
  const std::u8string text = file.u8string();
  return std::string(text.begin(), text.end());
}

std::ofstream OpenForWriting(const fs::path& file) {
  std::ofstream out(file);
  if (!out) throw std::runtime_error("Can't write " + Shown(file));
  return out;
}

void WriteValues(const Chronicle& chronicle, const fs::path& file) {
  std::ofstream out = OpenForWriting(file);
  out << "seconds";
  for (const char* name : MemberNames) out << ',' << name << " MiB," << name << " CPU %";
  out << ",group MiB,group CPU %\n";
  for (const Sample& sample : chronicle.m_samples) {
    unsigned long long total = 0;
    unsigned int cpu = 0;
    out << sample.m_seconds;
    for (const Usage& usage : sample.m_usage) {
      total += usage.m_bytes;
      cpu += usage.m_cpuPercent;
      if (usage.m_running) {
        out << ',' << InMiB(usage.m_bytes) << ',' << usage.m_cpuPercent;
      } else {
        out << ",,";
      }
    }
    out << ',' << InMiB(total) << ',' << cpu << '\n';
  }
}

void WriteEvents(const Chronicle& chronicle, const fs::path& file) {
  std::ofstream out = OpenForWriting(file);
  out << "seconds,member,event\n";
  for (const Event& event : chronicle.m_events) {
    const TStringCore text = TStringCore(event.m_text).replace(u"\"", u"\"\"");
    out << event.m_seconds << ',' << MemberNames[event.m_member] << ",\"" << text.toStdString() << "\"\n";
  }
}

/// The turning points, as named lines across a panel.
void MarkEvents(std::ostream& out, const Chronicle& chronicle) {
  int tag = 0;
  for (const Event& event : chronicle.m_events) {
    if (!event.m_marked) continue;
    ++tag;
    out << "set arrow " << tag << " from " << event.m_seconds << ", graph 0 to " << event.m_seconds
        << ", graph 1 nohead dashtype 3 linecolor rgb '#888888'\n";
    TStringCore text = TStringCore(MemberNames[event.m_member]) + u" " + event.m_text;
    out << "set label " << tag << " '" << text.replace(u'\'', u' ').toStdString() << "' at " << event.m_seconds
        << ", graph 0.98 rotate by 90 right offset 0.6,0 font ',9' textcolor rgb '#444444'\n";
  }
}

constexpr const char* LimitStyle = "linecolor rgb 'red' linewidth 2 dashtype 2";

void PlotMembers(std::ostream& out) {
  out << "set ylabel 'MiB'\nset yrange [0:" << InMiB(Limits::PerProcess) * 2 << "]\n"
      << "plot " << InMiB(Limits::PerProcess) << " title 'limit of a member' " << LimitStyle;
  for (size_t i = 0; i < MemberNames.size(); ++i) {
    out << ", \\\n  'memory.csv' every ::1 using 1:" << 2 + 2 * i << " with lines linewidth 2 title '" << MemberNames[i]
        << "'";
  }
  out << "\n";
}

/// One figure of the whole group against its limit.
void PlotGroup(std::ostream& out, const char* unit, double limit, size_t column) {
  out << "set ylabel '" << unit << "'\nset yrange [0:*]\n"
      << "plot " << limit << " title 'limit of the group' " << LimitStyle
      << ", \\\n  'memory.csv' every ::1 using 1:" << column
      << " with filledcurves y=0 fillstyle transparent solid 0.3 title 'group, " << unit << "'\n";
}

void WritePlot(const Chronicle& chronicle, const fs::path& file) {
  constexpr size_t FirstGroupColumn = 2 + 2 * MemberNames.size();
  std::ofstream out = OpenForWriting(file);
  out << "set terminal svg size 1100,1100 font 'sans,12' background 'white'\n"
         "set output 'memory.svg'\n"
         "set datafile separator ','\n"
         "set multiplot layout 3,1 title 'A group that keeps itself within limits'\n"
         "set grid ytics\nset xlabel 'seconds'\nset key outside right top\n"
         "set lmargin at screen 0.08\nset rmargin at screen 0.76\n"
      << "set xrange [0:" << chronicle.m_samples.back().m_seconds + 1 << "]\n";
  MarkEvents(out, chronicle);
  PlotMembers(out);
  out << "unset label\n";
  PlotGroup(out, "MiB", InMiB(Limits::AllProcesses), FirstGroupColumn);
  PlotGroup(out, "CPU %", Limits::GroupCpuPercent, FirstGroupColumn + 1);
}

// By way of the working folder, whose name then needs no quoting in any shell.
bool DrawPicture(const fs::path& folder) {
  const fs::path before = fs::current_path();
  fs::current_path(folder);
  const bool drawn = std::system("gnuplot memory.gp") == 0 && fs::exists("memory.svg");
  fs::current_path(before);
  return drawn;
}

}  // namespace

void PrintSummary(const Chronicle& chronicle) {
  std::cout << "\nWhat each member did, and why:\n";
  for (size_t i = 0; i < MemberNames.size(); ++i) {
    std::cout << "  " << MemberNames[i] << "\n";
    for (const Event& event : chronicle.m_events) {
      if (event.m_member != i) continue;
      std::cout << "    " << Moment(event.m_seconds).toStdString() << " " << event.m_text.toStdString() << "\n";
    }
  }
}

void WriteFiles(const Chronicle& chronicle, const fs::path& folder) {
  fs::create_directories(folder);
  WriteValues(chronicle, folder / "memory.csv");
  WriteEvents(chronicle, folder / "events.csv");
  WritePlot(chronicle, folder / "memory.gp");
  std::cout << "\nValues:  " << Shown(folder / "memory.csv") << "\nEvents:  " << Shown(folder / "events.csv") << "\n";
  if (DrawPicture(folder)) {
    std::cout << "Picture: " << Shown(folder / "memory.svg") << "\n";
  } else {
    std::cout << "Picture: not drawn, since gnuplot did not run (Debian's package is gnuplot-nox)\n";
  }
}

}  // namespace demo
