// What does a parser written by hand pay a token? The standard library's stream, where it has the same, stands beside it.
#include "qilsys/TScanStringCore.h"

#include <benchmark/benchmark.h>

#include <sstream>
#include <string>

namespace {

// `count` settings, a line each.
TStringCore Settings(int count) {
  TStringCore text;
  for (int i = 0; i < count; ++i) text += u"some.setting_with_a_name = 1234.5 # and a word on it\r\n";
  return text;
}

double SumOfSettings(TScanStringCore scan) {
  double sum = 0;
  TStringCore name;
  while (*(scan.str() + scan.index()) != 0) {
    double value = 0;
    scan.readAnyNotOf(name, u" =").skipAnyOf(u" =").readFloat(value).skipLine();
    sum += value;
  }
  return sum;
}

void ScanSettings(benchmark::State& state) {
  const auto count = static_cast<int>(state.range(0));
  const TStringCore text = Settings(count);
  if (SumOfSettings(TScanStringCore(text)) != count * 1234.5) return state.SkipWithError("the sum is wrong");
  for (auto _ : state) benchmark::DoNotOptimize(SumOfSettings(TScanStringCore(text)));
  state.SetItemsProcessed(state.iterations() * count);
}
BENCHMARK(ScanSettings)->Arg(1)->Arg(1000);

void StreamSettings(benchmark::State& state) {
  const auto count = static_cast<int>(state.range(0));
  const std::string text = Settings(count).toStdString();
  for (auto _ : state) {
    std::istringstream stream(text);
    double sum = 0;
    std::string name;
    std::string sign;
    double value = 0;
    while (stream >> name >> sign >> value) {
      sum += value;
      std::getline(stream, name);
    }
    if (sum != count * 1234.5) return state.SkipWithError("the sum is wrong");
  }
  state.SetItemsProcessed(state.iterations() * count);
}
BENCHMARK(StreamSettings)->Arg(1)->Arg(1000);

// One kind of token from the start of a long text, whose rest must cost nothing.
template <class Skip>
void SkipAtStart(benchmark::State& state, const TStringCore& text, int wanted, Skip skip) {
  TScanStringCore scan(text);
  if (skip(scan).index() != wanted) return state.SkipWithError("the cursor is elsewhere");
  for (auto _ : state) benchmark::DoNotOptimize(skip(scan.reset()).index());
}
void SkipInt(benchmark::State& state) {
  SkipAtStart(
      state, u"1234567" + TStringCore(u' ', 1 << 20), 7, [](auto& scan) -> auto& { return scan.skipInt(10); });
}
BENCHMARK(SkipInt);
void SkipBool(benchmark::State& state) {
  SkipAtStart(
      state, u"no" + TStringCore(u' ', 1 << 20), 2, [](auto& scan) -> auto& { return scan.skipBool(); });
}
BENCHMARK(SkipBool);

// Long tokens: a line, white space, a set of ASCII and one beyond.
constexpr int Long = 1 << 16;
void SkipLongLine(benchmark::State& state) {
  SkipAtStart(
      state, TStringCore(u'x', Long), Long, [](auto& scan) -> auto& { return scan.skipLine(); });
  state.SetBytesProcessed(state.iterations() * Long * 2);
}
BENCHMARK(SkipLongLine);
void SkipLongWhitespace(benchmark::State& state) {
  SkipAtStart(
      state, TStringCore(u' ', Long), Long, [](auto& scan) -> auto& { return scan.skipWhitespace(); });
  state.SetBytesProcessed(state.iterations() * Long * 2);
}
BENCHMARK(SkipLongWhitespace);
void SkipLongAsciiSet(benchmark::State& state) {
  SkipAtStart(
      state, TStringCore(u'9', Long), Long, [](auto& scan) -> auto& { return scan.skipAnyOf(u"0123456789"); });
  state.SetBytesProcessed(state.iterations() * Long * 2);
}
BENCHMARK(SkipLongAsciiSet);
void SkipLongSetBeyondAscii(benchmark::State& state) {
  SkipAtStart(
      state, TStringCore(TCodeUnit{0x663}, Long), Long,
      [](auto& scan) -> auto& { return scan.skipAnyOf(u"\u0660\u0661\u0662\u0663"); });
  state.SetBytesProcessed(state.iterations() * Long * 2);
}
BENCHMARK(SkipLongSetBeyondAscii);

}  // namespace
