// How the work of a member grows with its group: one pass of the worker, and one datagram taken in.
#include "monitor/ResourceManagerImpl.h"

#include <benchmark/benchmark.h>

namespace {

ResourceManager::GeneralConfig SilentHost() {
  ResourceManager::GeneralConfig general;
  general.m_logFunc = [](const TStringCore&) {};
  general.m_terminateFunc = [](unsigned char, const TStringCore&) {};
  general.m_checkIntervalSeconds = 255;
  return general;
}

ResourceManager::CpuConfig LimitedCpu() {
  ResourceManager::CpuConfig cpu;
  cpu.m_maxCpuPercent = 90;
  return cpu;
}

ResourceManager::MemoryConfig LimitedMemory() {
  ResourceManager::MemoryConfig memory;
  memory.m_perProcessLimit = 1ULL << 40;
  memory.m_allProcessesLimit = 1ULL << 50;
  memory.m_totalMemoryFunc = [] { return 1ULL; };
  return memory;
}

ResourceValuesV2 PeerValues(std::uint32_t id) {
  // Idle, so that a large group is no busier than a small one and stays below the limit.
  ResourceValuesV1 values;
  values.pid = id;
  return qilsys::monitor::Widen(values);
}

/// A member that decides for real and neither reads nor sends.
class DecidingMember : public ResourceManagerImpl {
 public:
  explicit DecidingMember(std::int64_t peers) : ResourceManagerImpl(LimitedCpu(), LimitedMemory(), SilentHost()) {
    for (std::int64_t i = 0; i < peers; ++i) OnValues(PeerValues(static_cast<std::uint32_t>(i)));
  }

  using ResourceManagerImpl::OnValues;

  NextWait Pass() { return Advance(m_state, m_self, false); }

 protected:
  void UpdateResourceValues(MonitoredProcess&, ResourceValuesV2& values) override {
    SetCpuFigures(values, 0, 1);
    SetMemoryFigures(values, 1);
    PurgePeers();
  }

 private:
  WorkerState m_state;
  MonitoredProcess m_self;
};

void Pass(benchmark::State& state) {
  DecidingMember member(state.range(0));
  if (!member.Pass()) state.SkipWithError("the worker ended");
  for (auto _ : state) benchmark::DoNotOptimize(member.Pass());
}
BENCHMARK(Pass)->Arg(1)->Arg(10)->Arg(100);

void Receipt(benchmark::State& state) {
  DecidingMember member(state.range(0));
  const ResourceValuesV2 values = PeerValues(static_cast<std::uint32_t>(state.range(0) / 2));
  for (auto _ : state) member.OnValues(values);
}
BENCHMARK(Receipt)->Arg(1)->Arg(10)->Arg(100);

void ReadMemory(benchmark::State& state) {
  const MonitoredProcess self;
  if (self.GetMemoryUsage() == 0) state.SkipWithError("no reading");
  for (auto _ : state) benchmark::DoNotOptimize(self.GetMemoryUsage());
}
BENCHMARK(ReadMemory);

void ReadCpu(benchmark::State& state) {
  const MonitoredProcess self;
  for (auto _ : state) benchmark::DoNotOptimize(self.GetCpuUsage());
}
BENCHMARK(ReadCpu);

}  // namespace
