#include "demo/Member.h"

#include <cstdlib>
#include <exception>
#include <iostream>
#include <map>
#include <sstream>

#include "demo/Setting.h"
#include "demo/Workload.h"
#include "qilsys/MonitoredProcess.h"
#include "qilsys/QuillonException.h"
#include "qilsys/ResourceManager.h"
#include "qilsys/TFormatStringCore.h"
#include "qilsys/TLocks.h"

namespace demo {

namespace {

/// Adds up the private memory of the group, so that the limit on all members works alike on any machine.
class GroupMemory {
 public:
  void SetMembers(std::istream& pids) {
    const TScopedLock scope(m_mutex);
    for (unsigned int pid = 0; pids >> pid;) Watch(pid);
  }

  unsigned long long Total() {
    const TScopedLock scope(m_mutex);
    unsigned long long total = 0;
    for (const auto& [pid, process] : m_members) {
      if (process.IsRunning()) total += AboveBare(process.GetMemoryUsage());
    }
    return total;
  }

 private:
  void Watch(unsigned int pid) {
    try {
      m_members.try_emplace(pid, pid);
    } catch (const QuillonException&) {
      // It ended before it could be watched, so it holds nothing.
    }
  }

  TRecursiveMutex m_mutex;
  std::map<unsigned int, MonitoredProcess> m_members;
};

/// The host: what it holds, what it can give back, and how it ends.
class Member {
 public:
  explicit Member(unsigned short port) {
    m_hoard.GrowTo(StartingMiB);
    ResourceManager::Start(port, Cpu(), Memory(), General());
  }

  ~Member() { ResourceManager::Stop(); }

  Member(const Member&) = delete;
  Member& operator=(const Member&) = delete;

  void Obey(const std::string& line) {
    std::istringstream words(line);
    std::string command;
    words >> command;
    if (command == "peers") return m_group.SetMembers(words);
    if (command == "cooperate") return Cooperate();
    if (command == "defy") return ResourceManager::RemoveReclaimCpuFunction(u"throttle");
    unsigned int amount = 0;
    words >> amount;
    if (command == "hold") m_hoard.GrowTo(amount);
    if (command == "cache") FillCache(amount);
    if (command == "burn") m_burner.Burn(amount);
  }

 private:
  /// One line in one piece, since two threads speak.
  static void Say(const TStringCore& kind, const TStringCore& text) {
    std::cout << (kind + u" " + text + u"\n").toStdString() << std::flush;
  }

  static ResourceManager::CpuConfig Cpu() {
    ResourceManager::CpuConfig config{};
    config.m_maxCpuPercent = Limits::GroupCpuPercent;
    config.m_sustainedSeconds = Limits::SustainedSeconds;
    config.m_terminateCode = ExitCodes::Cpu;
    config.m_terminateOnExcess = true;
    return config;
  }

  ResourceManager::MemoryConfig Memory() {
    ResourceManager::MemoryConfig config{};
    config.m_perProcessLimit = BareBytes() + Limits::PerProcess;
    config.m_allProcessesLimit = Limits::AllProcesses;
    config.m_terminateCode = ExitCodes::Memory;
    config.m_terminateOnExcess = true;
    config.m_totalMemoryFunc = [this] { return m_group.Total(); };
    return config;
  }

  static ResourceManager::GeneralConfig General() {
    ResourceManager::GeneralConfig config{};
    config.m_checkIntervalSeconds = Limits::CheckIntervalSeconds;
    config.m_startDelaySeconds = 1;
    config.m_infoEveryChecks = 1;
    config.m_logFunc = [](const TStringCore& text) { Say(u"log", text); };
    config.m_terminateFunc = [](unsigned char code, const TStringCore& reason) {
      Say(u"end", TFormatStringCore(u"%1 %2").arg(code).arg(reason));
      // The monitor's own thread is here, so the process ends without unwinding it.
      std::_Exit(code);
    };
    config.m_terminateHandler = std::get_terminate();
    return config;
  }

  void FillCache(unsigned int mebibytes) {
    ResourceManager::AddReclaimMemoryFunction(u"cache", [this](double used) {
      const unsigned int dropped = m_hoard.DropTo(StartingMiB);
      Say(u"did",
          TFormatStringCore(u"gave back a cache of %1 MiB at %2 of its limit").arg(dropped).arg(used, 0, 'f', 2));
    });
    m_hoard.GrowTo(mebibytes);
  }

  void Cooperate() {
    ResourceManager::AddReclaimCpuFunction(u"throttle", [this](double) {
      m_burner.Burn(ThrottledPercent);
      Say(u"did", u"throttled itself");
    });
  }

  static constexpr unsigned int ThrottledPercent = 3;

  GroupMemory m_group;
  Hoard m_hoard;
  Burner m_burner;
};

}  // namespace

int RunMember(const std::string& name, unsigned short port) try {
  Member member(port);
  for (std::string line; std::getline(std::cin, line);) member.Obey(line);
  return EXIT_SUCCESS;
} catch (const QuillonException& failure) {
  std::cerr << name << ": " << failure.GetConcatenatedMessages().toStdString() << std::flush;
  return EXIT_FAILURE;
} catch (const std::exception& failure) {
  std::cerr << name << ": " << failure.what() << std::endl;
  return EXIT_FAILURE;
}

}  // namespace demo
