// What monitoring costs a member: processor time and private memory, measured in members of their own processes, all
// on one port, with one check a second and both policies in force.
//
//   monitor_member_cost [members] [seconds]
#include <spawn.h>
#include <sys/wait.h>
#include <time.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <boost/asio/io_context.hpp>
#include <boost/asio/ip/udp.hpp>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

#include "qilsys/MonitoredProcess.h"
#include "qilsys/ResourceManager.h"

namespace {

/// What a member writes into its pipe.
struct Cost {
  /// Nanoseconds of processor time in each second of monitoring.
  double m_nanosecondsEachSecond = 0;
  double m_privateBytes = 0;
};

double ProcessorNanoseconds() {
  timespec time{};
  clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &time);
  return static_cast<double>(time.tv_sec) * 1e9 + static_cast<double>(time.tv_nsec);
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
  sleep(seconds);
  cost.m_nanosecondsEachSecond = (ProcessorNanoseconds() - timeBefore) / seconds;
  cost.m_privateBytes = PrivateBytes() - bytesBefore;
  ResourceManager::Stop();
  return write(STDOUT_FILENO, &cost, sizeof cost) == sizeof cost ? 0 : 1;
}

unsigned short FreePort() {
  boost::asio::io_context context;
  const boost::asio::ip::udp::socket socket(context,
                                            boost::asio::ip::udp::endpoint(boost::asio::ip::address_v4::loopback(), 0));
  return socket.local_endpoint().port();
}

pid_t Spawn(char* program, unsigned short port, unsigned int seconds, int output) {
  posix_spawn_file_actions_t actions;
  posix_spawn_file_actions_init(&actions);
  posix_spawn_file_actions_adddup2(&actions, output, STDOUT_FILENO);
  std::string portText = std::to_string(port);
  std::string secondsText = std::to_string(seconds);
  std::array<char, 9> member{"--member"};
  std::array<char*, 5> arguments{program, member.data(), portText.data(), secondsText.data(), nullptr};
  pid_t pid = -1;
  if (posix_spawn(&pid, program, &actions, nullptr, arguments.data(), environ) != 0) pid = -1;
  posix_spawn_file_actions_destroy(&actions);
  return pid;
}

void Print(const char* what, std::vector<double> values, double unit, const char* unitName) {
  std::sort(values.begin(), values.end());
  std::printf("%-16s median %8.3f, highest %8.3f %s\n", what, values[values.size() / 2] / unit, values.back() / unit,
              unitName);
}

int Measure(char* program, int members, unsigned int seconds) {
  int pipeEnds[2];
  if (pipe(pipeEnds) != 0) return 1;
  const unsigned short port = FreePort();
  for (int i = 0; i < members; ++i) {
    if (Spawn(program, port, seconds, pipeEnds[1]) == -1) return 1;
  }
  std::vector<double> times;
  std::vector<double> bytes;
  Cost cost;
  for (int i = 0; i < members && read(pipeEnds[0], &cost, sizeof cost) == sizeof cost; ++i) {
    times.push_back(cost.m_nanosecondsEachSecond);
    bytes.push_back(cost.m_privateBytes);
  }
  while (wait(nullptr) > 0) continue;
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
