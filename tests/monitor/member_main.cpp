// A member of a group, for tests of real processes. It writes one line for each thing that happens, and takes commands
// from standard input; the end of that input is "quit".
//
//   arguments: port memory-limit all-processes-limit cpu-limit version (port 0: no monitoring)
//   commands:  grow BYTES | shrink | burn | cache BYTES | child PID | unchild PID | usage | pid | quit
//
// With the arguments "send PORT" it sends one datagram of each version, always with the same figures.
#include <atomic>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <iostream>
#include <mutex>
#include <sstream>
#include <string>
#include <thread>
#include <vector>

#include "monitor/DieWithParent.h"
#include "monitor/ResourceIpc.h"
#include "qilsys/ResourceManager.h"
#include "qilsys/TSystem.h"

namespace {

void Say(const std::string& line) {
  static std::mutex s_mutex;
  const std::lock_guard lock(s_mutex);
  std::cout << line << std::endl;
}

class Host {
 public:
  // False where monitoring could not be started.
  bool Start(const std::vector<std::string>& arguments) {
    const auto port = static_cast<unsigned short>(std::stoul(arguments.at(0)));
    if (port == 0) return true;
    ResourceManager::MemoryConfig memory;
    memory.m_perProcessLimit = std::stoull(arguments.at(1));
    memory.m_allProcessesLimit = std::stoull(arguments.at(2));
    memory.m_terminateOnExcess = true;
    memory.m_terminateCode = 41;
    ResourceManager::CpuConfig cpu;
    cpu.m_maxCpuPercent = static_cast<std::uint32_t>(std::stoul(arguments.at(3)));
    cpu.m_sustainedSeconds = 1;
    cpu.m_terminateOnExcess = true;
    cpu.m_terminateCode = 42;
    ResourceManager::GeneralConfig general;
    general.m_infoEveryChecks = 1;
    general.m_useVersion1 = arguments.at(4) == "1";
    general.m_logFunc = [](const TStringCore& line) { Say(line.toStdString()); };
    general.m_terminateFunc = [](unsigned char code, const TStringCore& reason) {
      Say("TERMINATE " + reason.toStdString());
      std::_Exit(code);
    };
    try {
      ResourceManager::Start(port, cpu, memory, general);
    } catch (const std::exception& failure) {
      Say(std::string("FAILED ") + failure.what());
      return false;
    }
    return true;
  }

  void Run() {
    std::string line;
    while (std::getline(std::cin, line) && line != "quit") {
      std::istringstream words(line);
      std::string command;
      unsigned long long number = 0;
      words >> command >> number;
      Obey(command, number);
      Say("DONE " + command);
    }
    ResourceManager::Stop();
  }

 private:
  void Obey(const std::string& command, unsigned long long number) {
    if (command == "grow") m_blocks.emplace_back(number, '\1');
    if (command == "shrink") m_blocks.clear();
    if (command == "burn") Burn();
    if (command == "cache") Cache(number);
    if (command == "child") ResourceManager::RegisterChildProcessId(static_cast<unsigned int>(number));
    if (command == "unchild") ResourceManager::UnregisterChildProcessId(static_cast<unsigned int>(number));
    if (command == "pid") Say("PID " + std::to_string(TSystem::ProcessID()));
    if (command == "usage") Say("USAGE " + std::to_string(ResourceManager::GetCpuAndMemoryUsage().second));
  }

  static void Burn() {
    std::thread([] {
      for (std::atomic<unsigned int> turns = 0;; ++turns) continue;
    }).detach();
  }

  // Grows by what is given back when the monitor asks for it; the monitor may ask before all of it is there.
  void Cache(unsigned long long bytes) {
    const std::lock_guard lock(m_cacheMutex);
    ResourceManager::AddReclaimMemoryFunction(u"cache", [this](double) {
      const std::lock_guard inner(m_cacheMutex);
      std::vector<char>().swap(m_cache);
    });
    m_cache.assign(bytes, '\1');
  }

  std::vector<std::vector<char>> m_blocks;
  std::mutex m_cacheMutex;
  std::vector<char> m_cache;
};

// Each byte of each figure is another.
ResourceValuesV2 Sample() {
  ResourceValuesV2 values;
  values.pid = 0x04030201;
  for (std::size_t i = 0; i < values.uuid.size(); ++i) values.uuid[i] = static_cast<std::uint8_t>(0xA0 + i);
  values.memoryBytes = 0x1817161514131211;
  values.memoryLimitPercent = 0x21;
  values.cpuPercent = 0x22;
  values.reportIntervalSeconds = 0x23;
  return values;
}

void SendSamples(unsigned short port) {
  ResourceIpc ipc(
      port, [](const ResourceValuesV2&) {}, [](const TStringCore&) {}, nullptr);
  ipc.Send(Sample());
  ipc.Send(qilsys::monitor::Narrow(Sample()));
}

}  // namespace

int main(int argc, char** argv) {
  qilsys::test::DieWithParent();
  if (argc == 3 && std::string(argv[1]) == "send") {
    SendSamples(static_cast<unsigned short>(std::stoul(argv[2])));
    return 0;
  }
  Host host;
  Say("READY");
  if (!host.Start(std::vector<std::string>(argv + 1, argv + argc))) return 3;
  host.Run();
  return 0;
}
