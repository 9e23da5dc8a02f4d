// The monitor as far as it runs without threads: its settings, its registers, readings of processes.
#include <functional>
#include <utility>
#include <vector>

#include "qilsys/MonitoredProcess.h"
#include "qilsys/ResourceManager.h"
#include "qilsys/ResourceReporter.h"
#include "qilsys/TSystem.h"
#include "sweep/Observed.h"
#include "sweep/Operation.h"

namespace qilsys::test::sweep {
namespace {

constexpr Leave Functions{Raises::Standard, Left::Unchanged, "callbacks are functions of the standard library"};
constexpr Leave Parts{Raises::Standard, Left::Unchanged, "its parts come from the operators"};
constexpr Leave Registers{Raises::Standard, Left::Unchanged, "the register is a container of the standard library"};

constexpr Leave ChildRegister{Raises::Either, Left::Unchanged,
                              "a child is a record of the library and of the standard library"};
constexpr Leave FirstRegistration{Raises::Standard, Left::Unchanged, Registers.reason, Result::Same, When::Sometimes};

/// A callback that has no room inside a std::function.
template <class Result, class... Arguments>
std::function<Result(Arguments...)> LargeFunction() {
  return [room = std::vector<int>(10)](Arguments...) { return static_cast<Result>(room.size()); };
}

class Reporter : public ResourceReporter {
 public:
  void Report(unsigned int) override {}
};

/// Settings that put no policy in force, so that the manager has neither thread nor socket.
struct Settings {
  explicit Settings(Shape) {
    memory.m_totalMemoryFunc = LargeFunction<unsigned long long>();
    general.m_logFunc = LargeFunction<void, const TStringCore&>();
    general.m_terminateFunc = LargeFunction<void, unsigned char, const TStringCore&>();
  }
  ~Settings() { ResourceManager::Stop(); }
  Settings(const Settings&) = delete;
  Settings& operator=(const Settings&) = delete;
  std::string Observe() const {
    Observed seen;
    seen.Add(flag).Add(memory.m_totalMemoryFunc != nullptr).Add(general.m_logFunc != nullptr);
    return seen.Add(ResourceManager::GetMemoryPressure() < 0).Bytes();
  }

  ResourceManager::CpuConfig cpu;
  ResourceManager::MemoryConfig memory;
  ResourceManager::GeneralConfig general;
  bool flag = false;
};

constexpr Row<Settings> Setting[] = {
    {"CpuConfig_Copy", [](Settings& s) { s.flag = ResourceManager::CpuConfig(s.cpu).m_maxCpuPercent == 0; }},
    {"MemoryConfig_Copy",
     [](Settings& s) { s.flag = ResourceManager::MemoryConfig(s.memory).m_totalMemoryFunc != nullptr; }, Functions},
    {"MemoryConfig_Assign", [](Settings& s) { s.memory = ResourceManager::MemoryConfig(s.memory); }, Functions},
    {"GeneralConfig_Copy", [](Settings& s) { s.flag = ResourceManager::GeneralConfig(s.general).m_logFunc != nullptr; },
     Functions},
    {"AdjustMemoryLimit", [](Settings& s) { s.flag = ResourceManager::AdjustMemoryLimit(1, 0, 0.5, 0.1) > 0; }},
    {"Start", [](Settings& s) { ResourceManager::Start(1, s.cpu, s.memory, s.general); }, Functions},
    {"Stop_NotStarted", [](Settings&) { ResourceManager::Stop(); }},
    {"GetMemoryPressure_NotStarted", [](Settings& s) { s.flag = ResourceManager::GetMemoryPressure() < 0; }},
};

/// A started manager with a function of each kind in its registers.
struct Started : Settings {
  explicit Started(Shape shape)
      : Settings(shape), name(shape == Shape::Inline ? u"short" : u"a name that needs a block") {
    if (shape == Shape::SharedBlock) peer = name;
    ResourceManager::Start(1, cpu, memory, general);
    ResourceManager::AddReclaimCpuFunction(u"known", LargeFunction<void, double>());
    ResourceManager::AddReclaimMemoryFunction(u"known", LargeFunction<void, double>());
  }

  TStringCore name;
  TStringCore peer;
};

constexpr Row<Started> Registering[] = {
    {"AddReclaimCpuFunction",
     [](Started& s) { ResourceManager::AddReclaimCpuFunction(s.name, LargeFunction<void, double>()); }, Registers},
    {"RemoveReclaimCpuFunction", [](Started&) { ResourceManager::RemoveReclaimCpuFunction(u"known"); }},
    {"AddReclaimMemoryFunction",
     [](Started& s) { ResourceManager::AddReclaimMemoryFunction(s.name, LargeFunction<void, double>()); }, Registers},
    {"RemoveReclaimMemoryFunction", [](Started&) { ResourceManager::RemoveReclaimMemoryFunction(u"known"); }},
    {"RegisterChildProcessId", [](Started&) { ResourceManager::RegisterChildProcessId(TSystem::ProcessID()); },
     ChildRegister},
    {"GetCpuAndMemoryUsage", [](Started& s) { s.flag = ResourceManager::GetCpuAndMemoryUsage().first == 0; }},
    {"Stop",
     [](Started&) { ResourceManager::Stop(); },
     {Raises::Own, Left::Unusable, "it is stopped all the same: what fails is the last line of the log"}},
};

/// Readings of this process.
struct Readings {
  explicit Readings(Shape) {}
  std::string Observe() const { return Observed().Add(flag).Add(own.GetProcessId() == TSystem::ProcessID()).Bytes(); }

  MonitoredProcess own;
  bool flag = false;
};

constexpr Row<Readings> Reading[] = {
    {"MonitoredProcess", [](Readings& r) { r.flag = MonitoredProcess().IsRunning(); }, Parts},
    {"MonitoredProcess_Pid", [](Readings& r) { r.flag = MonitoredProcess(TSystem::ProcessID()).IsRunning(); }, Parts},
    {"GetCpuUsage", [](Readings& r) { r.flag = r.own.GetCpuUsage() <= 100; }},
    {"GetMemoryUsage", [](Readings& r) { r.flag = r.own.GetMemoryUsage() > 0; }},
    {"IsRunning", [](Readings& r) { r.flag = r.own.IsRunning(); }},
    {"IsRunning_Pid", [](Readings& r) { r.flag = MonitoredProcess::IsRunning(TSystem::ProcessID()); }},
    {"IsCpuAtMaxFrequency", [](Readings& r) { MonitoredProcess::IsCpuAtMaxFrequency(), r.flag = true; }},
    {"GetCurrentProcessMemoryInfo", [](Readings& r) { r.flag = GetCurrentProcessMemoryInfo().PrivateUsage > 0; }},
    {"GetProcessMemoryInfo_Null", [](Readings& r) { r.flag = GetProcessMemoryInfo(nullptr).PrivateUsage == 0; }},
    {"ResourceReporter", [](Readings& r) { Reporter(), r.flag = true; }, FirstRegistration},
};

}  // namespace

void AddMonitoring(std::vector<Operation>& operations) {
  AddRows<Settings>(operations, Setting);
  AddRows<Started>(operations, Registering);
  AddRows<Readings>(operations, Reading);
}

}  // namespace qilsys::test::sweep
