// What does a message cost? The peers, where they are built in, do the same with the same arguments.
#include <benchmark/benchmark.h>

#include <cstdio>
#include <string>

#include "qilsys/TFormatStringCore.h"

#ifdef QILSYS_BENCHMARK_PEERS
#include <QString>
#endif

namespace {

constexpr char16_t Template[] = u"Loaded %1 of %2 rows from %3 in %4 s";
constexpr char16_t Wanted[] = u"Loaded 12345 of 4000000000 rows from orders in 1.25 s";

TStringCore FourMixed(const TStringCore& name) {
  return TFormatStringCore(Template).arg(12345).arg(4000000000U).arg(name).arg(1.25).result();
}

void FormatFourMixed(benchmark::State& state) {
  const TStringCore name(u"orders");
  if (!(FourMixed(name) == TStringCore(Wanted))) return state.SkipWithError("the text is wrong");
  for (auto _ : state) {
    TStringCore text = FourMixed(name);
    benchmark::DoNotOptimize(text);
  }
}
BENCHMARK(FormatFourMixed);

// The template is set once and filled again and again.
void FormatFourMixedAgain(benchmark::State& state) {
  const TStringCore name(u"orders");
  TFormatStringCore format(Template);
  for (auto _ : state) {
    format.clearParms();
    TStringCore text = format.arg(12345).arg(4000000000U).arg(name).arg(1.25).result();
    benchmark::DoNotOptimize(text);
  }
}
BENCHMARK(FormatFourMixedAgain);

void FormatFourIntegers(benchmark::State& state) {
  for (auto _ : state) {
    TStringCore text = TFormatStringCore(Template).arg(12345).arg(67).arg(890123).arg(4).result();
    benchmark::DoNotOptimize(text);
  }
}
BENCHMARK(FormatFourIntegers);

void FormatTemplateAlone(benchmark::State& state) {
  for (auto _ : state) {
    TFormatStringCore format(Template);
    benchmark::DoNotOptimize(format);
  }
}
BENCHMARK(FormatTemplateAlone);

// Text grows, markers do not: the copying.
void FormatLongText(benchmark::State& state) {
  const TStringCore text(u'x', static_cast<int>(state.range(0)));
  TFormatStringCore format(u"<%1>");
  format.arg(text);
  for (auto _ : state) {
    TStringCore result = format.result();
    benchmark::DoNotOptimize(result);
  }
  state.SetBytesProcessed(state.iterations() * state.range(0) * 2);
}
BENCHMARK(FormatLongText)->Range(8, 1 << 16);

void PrintfFourMixed(benchmark::State& state) {
  const std::string name = "orders";
  for (auto _ : state) {
    char room[128];
    std::snprintf(room, sizeof room, "Loaded %d of %u rows from %s in %g s", 12345, 4000000000U, name.c_str(), 1.25);
    benchmark::DoNotOptimize(room);
  }
}
BENCHMARK(PrintfFourMixed);

#ifdef QILSYS_BENCHMARK_PEERS
void QtFourMixed(benchmark::State& state) {
  const QString name = QStringLiteral("orders");
  const auto make = [&] { return QString::fromUtf16(Template).arg(12345).arg(4000000000U).arg(name).arg(1.25); };
  if (make() != QString::fromUtf16(Wanted)) return state.SkipWithError("the text is wrong");
  for (auto _ : state) {
    QString text = make();
    benchmark::DoNotOptimize(text);
  }
}
BENCHMARK(QtFourMixed);

// The form that costs Qt least: its template needs no copy.
void QtFourMixedLiteral(benchmark::State& state) {
  const QString name = QStringLiteral("orders");
  for (auto _ : state) {
    QString text =
        QStringLiteral("Loaded %1 of %2 rows from %3 in %4 s").arg(12345).arg(4000000000U).arg(name).arg(1.25);
    benchmark::DoNotOptimize(text);
  }
}
BENCHMARK(QtFourMixedLiteral);
#endif

}  // namespace
