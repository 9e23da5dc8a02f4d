// What do paths cost beside those of the C++ library? The texts are of usual length, and too long to lie inside a string.
#include <benchmark/benchmark.h>

#include <filesystem>
#include <string>
#include <vector>

#include "qilsys/TPathCore.h"
#include "qilsys/TPathFilesystem.h"

namespace {

constexpr char16_t Generic[] = u"c:/Users/somebody/Documents/reports/2024/summary.tar.gz";
constexpr char16_t Native[] = u"c:\\Users\\somebody\\Documents\\reports\\2024\\summary.tar.gz";

void PathFromGenericText(benchmark::State& state) {
  const TStringCore text(Generic);
  for (auto _ : state) {
    TPathCore path(text);
    benchmark::DoNotOptimize(path);
  }
}
BENCHMARK(PathFromGenericText);

void PathFromNativeText(benchmark::State& state) {
  const TStringCore text(Native);
  if (TPathCore(text) != TPathCore(Generic)) return state.SkipWithError("the path is wrong");
  for (auto _ : state) {
    TPathCore path(text);
    benchmark::DoNotOptimize(path);
  }
}
BENCHMARK(PathFromNativeText);

void StdPathFromText(benchmark::State& state) {
  const std::string text = std::filesystem::path(Generic).string();
  for (auto _ : state) {
    std::filesystem::path path(text);
    benchmark::DoNotOptimize(path);
  }
}
BENCHMARK(StdPathFromText);

void PathNativeString(benchmark::State& state) {
  const TPathCore path(Generic);
  for (auto _ : state) {
    TStringCore text = path.NativeString();
    benchmark::DoNotOptimize(text);
  }
}
BENCHMARK(PathNativeString);

void PathJoin(benchmark::State& state) {
  const TPathCore folder(u"c:/Users/somebody/Documents");
  const TPathCore name(u"summary.tar.gz");
  for (auto _ : state) {
    TPathCore path = folder / name;
    benchmark::DoNotOptimize(path);
  }
}
BENCHMARK(PathJoin);

void StdPathJoin(benchmark::State& state) {
  const std::filesystem::path folder(u"/Users/somebody/Documents");
  const std::filesystem::path name(u"summary.tar.gz");
  for (auto _ : state) {
    std::filesystem::path path = folder / name;
    benchmark::DoNotOptimize(path);
  }
}
BENCHMARK(StdPathJoin);

void PathParts(benchmark::State& state) {
  const TPathCore path(Generic);
  for (auto _ : state) {
    benchmark::DoNotOptimize(path.Parent());
    benchmark::DoNotOptimize(path.Stem());
    benchmark::DoNotOptimize(path.Extension());
    benchmark::DoNotOptimize(path.RootPath());
  }
}
BENCHMARK(PathParts);

void StdPathParts(benchmark::State& state) {
  const std::filesystem::path path(Generic);
  for (auto _ : state) {
    benchmark::DoNotOptimize(path.parent_path());
    benchmark::DoNotOptimize(path.stem());
    benchmark::DoNotOptimize(path.extension());
    benchmark::DoNotOptimize(path.root_path());
  }
}
BENCHMARK(StdPathParts);

TPathCore PathOfNames(benchmark::State& state) {
  return TPathCore(u"c:" + TStringCore(u"/name").repeated(static_cast<int>(state.range(0))));
}

// A walk makes the text of each element.
void PathWalk(benchmark::State& state) {
  const TPathCore path = PathOfNames(state);
  for (auto _ : state) {
    for (const TStringCore& element : path) benchmark::DoNotOptimize(element.constData());
  }
  state.SetItemsProcessed(state.iterations() * state.range(0));
}
BENCHMARK(PathWalk)->Range(8, 1 << 12);

void PathSize(benchmark::State& state) {
  const TPathCore path = PathOfNames(state);
  for (auto _ : state) benchmark::DoNotOptimize(path.size());
  state.SetItemsProcessed(state.iterations() * state.range(0));
}
BENCHMARK(PathSize)->Range(8, 1 << 12);

void PathCompare(benchmark::State& state) {
  const TPathCore path(Generic);
  const TPathCore upper(TStringCore(Generic).toUpper());
  if (path != upper) return state.SkipWithError("the paths differ");
  for (auto _ : state) benchmark::DoNotOptimize(path.Compare(upper));
}
BENCHMARK(PathCompare);

void PathHash(benchmark::State& state) {
  const TPathCore path(Generic);
  for (auto _ : state) benchmark::DoNotOptimize(std::hash<TPathCore>()(path));
}
BENCHMARK(PathHash);

void StdPathHash(benchmark::State& state) {
  const std::filesystem::path path(Generic);
  for (auto _ : state) benchmark::DoNotOptimize(hash_value(path));
}
BENCHMARK(StdPathHash);

void PathToFilesystemAndBack(benchmark::State& state) {
  const TPathCore path(Generic);
  for (auto _ : state) {
    TPathCore back = qilsys::FromFilesystemPath(qilsys::ToFilesystemPath(path));
    benchmark::DoNotOptimize(back);
  }
}
BENCHMARK(PathToFilesystemAndBack);

}  // namespace
