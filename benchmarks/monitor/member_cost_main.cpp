// What monitoring costs a member: processor time and private memory, measured in members of their own processes, all
// on one port, with one check a second and both policies in force.
//
//   monitor_member_cost [members] [seconds]
#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <deque>
#include <iostream>
#include <sstream>
#include <string>
#include <thread>
#include <vector>

#include "monitor/Loopback.h"
#include "monitor/MonitoredProcess_platform.h"
#include "qilsys/MonitoredProcess.h"
#include "qilsys/ResourceManager.h"
#include "support/SpawnedProcess.h"

namespace {

/// What a member writes to its output.
struct Cost {
  /// Nanoseconds of processor time in each second of monitoring.
  double m_nanosecondsEachSecond = 0;
  double m_privateBytes = 0;
};

double ProcessorNanoseconds() {
  const ProcessTimesSample times = qilsys::monitor::CurrentProcess()->ReadTimes().value_or(ProcessTimesSample());
  return static_cast<double>(times.m_kernelTime + times.m_userTime) * 100;
}

double PrivateBytes() { return static_cast<double>(GetCurrentProcessMemoryInfo().PrivateUsage); }

void StartMember(unsigned short port) {
  ResourceManager::CpuConfig cpu;
  cpu.m_maxCpuPercent = 90;
  cpu.m_sustainedSeconds = 60;
  cpu.m_useRollingMean = true;
  ResourceManager::MemoryConfig memory;
  memory.m_perProcessLimit = 1ULL << 40;
  memory.m_allProcessesLimit = 1ULL << 50;
  ResourceManager::GeneralConfig general;
  general.m_infoEveryChecks = 10;
  general.m_logFunc = [](const TStringCore&) {};
  general.m_terminateFunc = [](unsigned char, const TStringCore&) {};
  ResourceManager::Start(port, cpu, memory, general);
}

int RunMember(unsigned short port, unsigned int seconds) {
  GetCurrentProcessMemoryInfo();  // what the reading itself needs the first time is not the monitor's
  Cost cost;
  const double bytesBefore = PrivateBytes();
  StartMember(port);
  const double timeBefore = ProcessorNanoseconds();
  std::this_thread::sleep_for(std::chrono::seconds(seconds));
  cost.m_nanosecondsEachSecond = (ProcessorNanoseconds() - timeBefore) / seconds;
  cost.m_privateBytes = PrivateBytes() - bytesBefore;
  ResourceManager::Stop();
  std::cout << cost.m_nanosecondsEachSecond << ' ' << cost.m_privateBytes << std::endl;
  return 0;
}

/// Waits for the end of a member; false if it has not told its cost.
bool ReadCost(qilsys::test::SpawnedProcess& member, Cost& cost) {
  std::string text;
  while (const auto part = member.Read(std::chrono::seconds(1))) text += *part;
  std::istringstream words(text);
  return member.Wait() == 0 && words >> cost.m_nanosecondsEachSecond >> cost.m_privateBytes;
}

void Print(const char* what, std::vector<double> values, double unit, const char* unitName) {
  std::sort(values.begin(), values.end());
  std::printf("%-16s median %8.3f, highest %8.3f %s\n", what, values[values.size() / 2] / unit, values.back() / unit,
              unitName);
}

int Measure(const std::string& program, int members, unsigned int seconds) {
  const std::string port = std::to_string(qilsys::test::FreePort());
  std::deque<qilsys::test::SpawnedProcess> processes;
  for (int i = 0; i < members; ++i) {
    processes.emplace_back(std::vector<std::string>{program, "--member", port, std::to_string(seconds)});
  }
  std::vector<double> times;
  std::vector<double> bytes;
  for (qilsys::test::SpawnedProcess& process : processes) {
    Cost cost;
    if (!ReadCost(process, cost)) continue;
    times.push_back(cost.m_nanosecondsEachSecond);
    bytes.push_back(cost.m_privateBytes);
  }
  if (times.empty()) return 1;
  std::printf("%zu members, one check a second, %u seconds\n", times.size(), seconds);
  Print("processor", times, 1e7, "percent of a core");
  Print("private memory", bytes, 1024, "KiB");
  return 0;
}

}  // namespace

int main(int argc, char** argv) {
  if (argc == 4 && std::string(argv[1]) == "--member") {
    return RunMember(static_cast<unsigned short>(std::atoi(argv[2])), static_cast<unsigned int>(std::atoi(argv[3])));
  }
  const int members = argc > 1 ? std::atoi(argv[1]) : 10;
  const int seconds = argc > 2 ? std::atoi(argv[2]) : 30;
  if (members <= 0 || seconds <= 0) return 2;
  return Measure(argv[0], members, static_cast<unsigned int>(seconds));
}
