// What does the first walk of a process cost, with which everything is opened, and what a frame of the ones after it?
#include <benchmark/benchmark.h>

#include <array>
#include <chrono>
#include <cstddef>
#include <cstdint>
#include <cstdlib>

#include "cpu/Compiler.h"
#include "diagnostics/SymbolEngine.h"
#include "diagnostics/SymbolEngine_platform.h"
#include "qilsys/TStackWalker.h"

namespace {

using Clock = std::chrono::steady_clock;

struct FirstWalk {
  double seconds;
  std::size_t lines;
};

// What comes first in the process, comes here.
const FirstWalk& TheFirstWalk() {
  static const FirstWalk s_first = [] {
    TStackWalker::InitSym(true);
    TStackWalker walker;
    const Clock::time_point start = Clock::now();
    walker.GenerateCallstack();
    return FirstWalk{std::chrono::duration<double>(Clock::now() - start).count(), walker.GetCollected().size()};
  }();
  return s_first;
}

// Calls `atEnd` `depth` frames further in. The call goes by a pointer that compilers can't see through.
template <class AtEnd>
QILSYS_NOINLINE std::size_t Descend(std::int64_t depth, const AtEnd& atEnd) {
  static std::size_t (*const volatile s_down)(std::int64_t, const AtEnd&) = &Descend<AtEnd>;
  if (depth > 0) return s_down(depth - 1, atEnd) + 1;
  atEnd();
  return 0;
}

void RequireFrames(std::size_t lines, std::int64_t depth) {
  if (lines < static_cast<std::size_t>(depth)) std::abort();
}

void CountFrames(benchmark::State& state, std::size_t frames) {
  state.counters["per_frame"] = benchmark::Counter(
      static_cast<double>(frames), benchmark::Counter::kIsIterationInvariantRate | benchmark::Counter::kInvert);
}

// There is one in a process, so that its time is told and not measured again.
void BM_FirstWalk(benchmark::State& state) {
  for (auto _ : state) state.SetIterationTime(TheFirstWalk().seconds);
  state.counters["lines"] = static_cast<double>(TheFirstWalk().lines);
}
BENCHMARK(BM_FirstWalk)->UseManualTime()->Iterations(1)->Unit(benchmark::kMillisecond);

void BM_WarmWalk(benchmark::State& state) {
  TheFirstWalk();
  Descend(state.range(0), [&] {
    TStackWalker walker;
    walker.GenerateCallstack();
    RequireFrames(walker.GetCollected().size(), state.range(0));
    for (auto _ : state) benchmark::DoNotOptimize(walker.GenerateCallstack());
    CountFrames(state, walker.GetCollected().size());
  });
}
BENCHMARK(BM_WarmWalk)->Arg(10)->Arg(50)->Arg(150);

// Neither files nor lines.
void BM_WarmWalkOfNamesAlone(benchmark::State& state) {
  TheFirstWalk();
  TStackWalker::IncludeFileName(false);
  TStackWalker::IncludeFileLineNumber(false);
  Descend(state.range(0), [&] {
    TStackWalker walker;
    walker.GenerateCallstack();
    for (auto _ : state) benchmark::DoNotOptimize(walker.GenerateCallstack());
    CountFrames(state, walker.GetCollected().size());
  });
  TStackWalker::IncludeFileName(true);
  TStackWalker::IncludeFileLineNumber(true);
}
BENCHMARK(BM_WarmWalkOfNamesAlone)->Arg(50);

// The part of a walk that takes no lock.
void BM_Capture(benchmark::State& state) {
  Descend(state.range(0), [&] {
    std::array<qilsys::diagnostics::CapturedFrame, StackWalkerConfig::numberOfStackWalks> frames;
    std::size_t count = 0;
    for (auto _ : state) benchmark::DoNotOptimize(count = qilsys::diagnostics::CaptureStack(frames));
    CountFrames(state, count);
  });
}
BENCHMARK(BM_Capture)->Arg(50);

// Frames that no walk has met before, in modules that one has.
void BM_NewFrame(benchmark::State& state) {
  TheFirstWalk();
  SymbolEngine engine(&qilsys::diagnostics::MakeSymbolSource);
  const auto somewhere = reinterpret_cast<std::uint64_t>(&RequireFrames);
  engine.Resolve({somewhere, somewhere}, true);
  std::uint64_t step = 0;
  for (auto _ : state) {
    const std::uint64_t address = somewhere + ++step % 0x4000;
    benchmark::DoNotOptimize(engine.Resolve({address, address}, true));
  }
}
BENCHMARK(BM_NewFrame)->Iterations(0x2000);

// What a host pays that has not switched walks on.
void BM_SwitchedOff(benchmark::State& state) {
  TStackWalker::InitSym(false);
  TStackWalker walker;
  for (auto _ : state) benchmark::DoNotOptimize(walker.GenerateCallstack());
  TStackWalker::InitSym(true);
}
BENCHMARK(BM_SwitchedOff);

}  // namespace
