/// The rules of a member written down a second time, as plainly as they can be said, for simulations to compare with.
///
/// It shares nothing with the code under test but the record of the figures: tables, texts, window and timer are its
/// own.
#pragma once

#include <cstdint>
#include <deque>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "monitor/Member.h"

namespace qilsys::test {

/// What the world answered during one step of a member, in order.
struct WorldAnswers {
  std::deque<Reading> m_readings;
  /// The used memory of all processes; nothing where the reading failed.
  std::deque<std::optional<unsigned long long>> m_totals;
};

class ReferenceMember {
 public:
  ReferenceMember(const Settings& settings, const ResourceValuesV2& own, int cpuFunctions, int memoryFunctions)
      : m_cpu(settings.m_cpu),
        m_memory(settings.m_memory),
        m_general(settings.m_general),
        m_own(own),
        m_cpuFunctions(cpuFunctions),
        m_memoryFunctions(memoryFunctions) {}

  struct Peer {
    ResourceValuesV2 m_values;
    std::int64_t m_heardAt;
  };

  void Hear(ResourceValuesV2 values, std::int64_t now) {
    if (values.reportIntervalSeconds == 0) {
      values.reportIntervalSeconds = static_cast<std::uint8_t>(m_general.m_checkIntervalSeconds & 0xFF);
    }
    if (m_ended) DropTheSilent(now);
    m_peers[values.uuid] = {values, now};
  }

  /// One step at the time `now`: its lines, and whether the worker goes on.
  Lines Step(std::int64_t now, bool stopped, WorldAnswers& answers, bool& goesOn) {
    m_now = now;
    m_answers = &answers;
    m_lines.clear();
    goesOn = Run(stopped);
    m_ended = !goesOn;
    return m_lines;
  }

  const std::map<ResourceIdentity, Peer>& Peers() const { return m_peers; }
  const ResourceValuesV2& Own() const { return m_own; }

 private:
  enum class At { Start, CpuReclaim, MemoryReclaim };

  bool CpuOn() const { return m_cpu.m_maxCpuPercent > 0 && m_cpu.m_maxCpuPercent < 100; }
  bool MemoryOn() const { return m_memory.m_perProcessLimit > 0; }

  bool Run(bool stopped) {
    const At at = m_at;
    m_at = At::Start;
    if (at == At::Start) {
      if (stopped) return false;
      Sample();
      ++m_passes;
      m_info = m_passes == m_general.m_infoEveryChecks;
    }
    if (at != At::MemoryReclaim && CpuOn()) {
      const bool fine = at == At::CpuReclaim ? JudgeReclaim("CPU", stopped) : CpuFine(m_info);
      if (!fine) {
        if (at == At::Start && StartReclaim("CPU", m_cpuFunctions)) {
          m_at = At::CpuReclaim;
          return true;
        }
        if (!GoesOnAfterExcess("CPU", "Cpu usage", m_cpu.m_terminateOnExcess, m_cpu.m_terminateCode)) return false;
      }
    }
    if (MemoryOn()) {
      const bool fine = at == At::MemoryReclaim ? JudgeReclaim("memory", stopped) : MemoryFine(m_info);
      if (!fine) {
        if (at != At::MemoryReclaim && StartReclaim("memory", m_memoryFunctions)) {
          m_at = At::MemoryReclaim;
          return true;
        }
        if (!GoesOnAfterExcess("memory", "memory useage", m_memory.m_terminateOnExcess, m_memory.m_terminateCode)) {
          return false;
        }
      }
    }
    if (m_info) m_passes = 0;
    return true;
  }

  void Sample() {
    const Reading reading = m_answers->m_readings.at(0);
    m_answers->m_readings.pop_front();
    if (CpuOn()) m_own.cpuPercent = static_cast<std::uint8_t>(reading.m_cpuPercent > 100 ? 100 : reading.m_cpuPercent);
    if (MemoryOn()) {
      m_own.memoryBytes = reading.m_memoryBytes;
      const double share =
          static_cast<double>(reading.m_memoryBytes) / static_cast<double>(m_memory.m_perProcessLimit) * 100;
      const unsigned int low = static_cast<unsigned int>(share) % 256;
      m_own.memoryLimitPercent = static_cast<std::uint8_t>(low > 100 ? 100 : low);
    }
    DropTheSilent(m_now);
  }

  void DropTheSilent(std::int64_t now) {
    for (auto it = m_peers.begin(); it != m_peers.end();) {
      const std::int64_t silent = now - it->second.m_heardAt;
      const bool old = silent >= it->second.m_values.reportIntervalSeconds * Second;
      it = old && it->first != m_own.uuid ? m_peers.erase(it) : std::next(it);
    }
  }

  bool CpuFine(bool info) {
    const unsigned int mine = m_own.cpuPercent;
    if (mine == 0) {
      if (info) Line("CPU info: 0%");
      m_highSince.reset();
      return true;
    }
    unsigned int total = mine;
    unsigned int largest = 0;
    for (const auto& [uuid, peer] : m_peers) {
      if (uuid == m_own.uuid) continue;
      total += peer.m_values.cpuPercent;
      largest = std::max<unsigned int>(largest, peer.m_values.cpuPercent);
    }
    if (total > 100) total = 100;
    double compared = total;
    if (m_cpu.m_useRollingMean) compared = FeedMean(total);
    if (info) {
      Line("CPU info: " + Number(mine) + "%; " + Number(total) + "% (Quillon total); " + Number(m_peers.size()) +
           " (info count)");
    }
    if (!(compared > m_cpu.m_maxCpuPercent)) {
      m_highSince.reset();
      return true;
    }
    if (!m_highSince) {
      Line("Detected high CPU usage. " + Number(total) + "%");
      m_highSince = m_now;
    }
    const bool longEnough = m_now - *m_highSince > m_cpu.m_sustainedSeconds * Second;
    if (largest > mine || !longEnough) return true;
    Line("Exceeded sustained high CPU threshold above " + Number(m_cpu.m_maxCpuPercent) + "% for " +
         std::to_string(m_cpu.m_sustainedSeconds) + " seconds.  This process has the highest usage of " + Number(mine) +
         "%");
    return false;
  }

  double FeedMean(double x) {
    const auto room = static_cast<std::size_t>(m_cpu.m_sustainedSeconds / m_general.m_checkIntervalSeconds) + 1;
    m_window.push_back(x);
    if (m_window.size() > room) m_window.pop_front();
    if (m_window.size() < room) {
      m_mean += (x - m_mean) / static_cast<double>(m_window.size());
    } else if (room > 1) {
      m_mean += (x - m_window.front()) / static_cast<double>(room - 1);
    }
    return m_mean;
  }

  bool MemoryFine(bool info) {
    if (m_own.memoryBytes > m_memory.m_perProcessLimit) {
      Line("Exceeded allowed memory usage per process. " + Bytes(m_own.memoryBytes));
      return false;
    }
    const std::optional<unsigned long long> used = m_answers->m_totals.at(0);
    m_answers->m_totals.pop_front();
    if (!used) {
      Line(
          "Exception thrown while getting system memory usage, returning false from IsBelowMemoryThreashold(). no "
          "figure\n");
      return false;
    }
    unsigned long long group = m_own.memoryBytes;
    bool highest = true;
    for (const auto& [uuid, peer] : m_peers) {
      if (uuid == m_own.uuid) continue;
      group += peer.m_values.memoryBytes;
      if (peer.m_values.memoryLimitPercent > m_own.memoryLimitPercent) highest = false;
    }
    const std::string figures = Bytes(m_own.memoryBytes) + " (current process);" + Bytes(group) + " (Quillon total); " +
                                Bytes(*used) + " (total of all processes); " + Number(m_peers.size()) + " (info count)";
    if (info) Line("Memory info: " + figures);
    if (*used <= m_memory.m_allProcessesLimit || !highest) return true;
    Line("Exceeded allowed memory usage across all processes. Memory info: " + figures);
    return false;
  }

  bool StartReclaim(const std::string& resource, int functions) {
    Line("Reclaiming " + resource + ". Number registered functions: " + std::to_string(functions));
    for (int i = 0; i < functions; ++i) Line("Calling reclaim function named: f" + std::to_string(i));
    if (functions == 0) LineOfReclaim(resource, false);
    return functions > 0;
  }

  bool JudgeReclaim(const std::string& resource, bool stopped) {
    bool won = false;
    if (!stopped) {
      Sample();
      won = resource == "CPU" ? CpuFine(true) : MemoryFine(true);
    }
    LineOfReclaim(resource, won);
    return won;
  }

  void LineOfReclaim(const std::string& resource, bool won) {
    const std::string name = resource == "CPU" ? "CPU" : "Memory";
    Line(name + (won ? " reclaimed. Process termination has been averted!"
                     : " reclamation was unsucessful. Process has to be terminated."));
  }

  bool GoesOnAfterExcess(const std::string& resource, const std::string& usage, bool terminates, unsigned char code) {
    Line("Logging all CPU/memory info across processes.");
    LineOf(m_own);
    for (const auto& [uuid, peer] : m_peers) {
      if (uuid != m_own.uuid) LineOf(peer.m_values);
    }
    if (!terminates) {
      Line("Process is above " + resource + " threshold, but the process does not terminate on excessive " + usage +
           ". Not terminating.");
      return true;
    }
    m_lines.push_back("TERMINATE " + std::to_string(code) + " Resource Manager: Process is above " + resource +
                      " threshold. Requesting termination.");
    return false;
  }

  void LineOf(const ResourceValuesV2& values) {
    Line("pid: " + Number(values.pid) + "; Memory info: " + Bytes(values.memoryBytes) +
         "; Memory limit usage: " + Number(values.memoryLimitPercent) + "%; CPU info: " + Number(values.cpuPercent) +
         "%; uuid=" + IdentityText(values.uuid));
  }

  void Line(const std::string& text) { m_lines.push_back("Resource Manager: " + text); }

  static std::string Number(unsigned long long n) { return std::to_string(n); }

  static std::string Bytes(unsigned long long n) {
    std::string digits = std::to_string(n);
    for (auto i = static_cast<int>(digits.size()) - 3; i > 0; i -= 3)
      digits.insert(static_cast<std::size_t>(i), 1, ',');
    return digits + " bytes";
  }

  ResourceManager::CpuConfig m_cpu;
  ResourceManager::MemoryConfig m_memory;
  ResourceManager::GeneralConfig m_general;
  ResourceValuesV2 m_own;
  int m_cpuFunctions;
  int m_memoryFunctions;
  std::map<ResourceIdentity, Peer> m_peers;
  At m_at = At::Start;
  bool m_info = false;
  bool m_ended = false;
  unsigned int m_passes = 0;
  std::optional<std::int64_t> m_highSince;
  std::deque<double> m_window;
  double m_mean = 0;
  std::int64_t m_now = 0;
  WorldAnswers* m_answers = nullptr;
  Lines m_lines;
};

}  // namespace qilsys::test
