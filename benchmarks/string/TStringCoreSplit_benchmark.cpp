// What does it cost to take a text apart and to put it together again, beside the same with the standard string and,
// where they are built in, Qt?
#include <benchmark/benchmark.h>

#include <string>
#include <vector>

#include "qilsys/TStringCore.h"
#include "support/SearchTexts.h"

#ifdef QILSYS_BENCHMARK_PEERS
#include <QString>
#include <QStringList>
#endif

namespace {

using qilsys::benchmarks::Measure;
using qilsys::benchmarks::Words;

constexpr std::size_t Size = 512 * 1024;  // units: one MiB

// Fields of 1 to 9 units, as in a list of values.
std::u16string ShortFields() {
  std::u16string text = Words(Size);
  for (char16_t& c : text) c = c == u' ' ? u',' : c;
  return text;
}

// Fields of some 40 units, too long to lie inside a string object of any of the libraries.
std::u16string LongFields() {
  std::u16string text = Words(Size);
  for (std::size_t i = 40; i < text.size(); i += 41) text[i] = u',';
  return text;
}

std::u16string Fields(const benchmark::State& state) { return state.range(0) == 0 ? ShortFields() : LongFields(); }

std::vector<std::u16string> StdSplit(const std::u16string& text, char16_t sep) {
  std::vector<std::u16string> fields;
  std::size_t start = 0;
  for (std::size_t at; (at = text.find(sep, start)) != text.npos; start = at + 1) {
    fields.push_back(text.substr(start, at - start));
  }
  fields.push_back(text.substr(start));
  return fields;
}

void Kinds(benchmark::internal::Benchmark* benchmark) { benchmark->ArgName("long")->Arg(0)->Arg(1); }

TStringCore Own(const std::u16string& text) { return TStringCore(text.data(), static_cast<int>(text.size())); }

void BM_Split(benchmark::State& state) {
  const std::u16string units = Fields(state);
  const TStringCore text = Own(units);
  Measure(state, Size, StdSplit(units, u',').size(), [&] { return text.split(u',').size(); });
}
BENCHMARK(BM_Split)->Apply(Kinds);

void BM_SplitByText(benchmark::State& state) {
  const std::u16string units = Fields(state);
  const TStringCore text = Own(units);
  Measure(state, Size, StdSplit(units, u',').size(), [&] { return text.split(u",").size(); });
}
BENCHMARK(BM_SplitByText)->Apply(Kinds);

void BM_SplitOnAny(benchmark::State& state) {
  const std::u16string units = Fields(state);
  const TStringCore text = Own(units);
  Measure(state, Size, StdSplit(units, u',').size(), [&] { return text.splitOnAny(u",;").size(); });
}
BENCHMARK(BM_SplitOnAny)->Apply(Kinds);

void BM_SplitStd(benchmark::State& state) {
  const std::u16string units = Fields(state);
  Measure(state, Size, StdSplit(units, u',').size(), [&] { return StdSplit(units, u',').size(); });
}
BENCHMARK(BM_SplitStd)->Apply(Kinds);

void BM_Join(benchmark::State& state) {
  const TStringCore text = Own(Fields(state));
  const std::vector<TStringCore> fields = text.split(u',');
  Measure(state, Size, text, [&] { return TStringCore::join(fields, u','); });
}
BENCHMARK(BM_Join)->Apply(Kinds);

void BM_JoinStd(benchmark::State& state) {
  const std::u16string units = Fields(state);
  const std::vector<std::u16string> fields = StdSplit(units, u',');
  Measure(state, Size, units, [&] {
    std::u16string joined;
    joined.reserve(Size);
    for (std::size_t i = 0; i < fields.size(); ++i) {
      if (i != 0) joined += u',';
      joined += fields[i];
    }
    return joined;
  });
}
BENCHMARK(BM_JoinStd)->Apply(Kinds);

// One field by its number, counted from either end.
void BM_Section(benchmark::State& state) {
  const std::u16string units = Fields(state);
  const TStringCore text = Own(units);
  const std::vector<std::u16string> fields = StdSplit(units, u',');
  const int number = state.range(1) != 0 ? 7 : -7;
  const TStringCore wanted = Own(number < 0 ? fields[fields.size() - 7] : fields[7]);
  Measure(state, Size, wanted, [&] { return text.section(u',', number, number); });
}
BENCHMARK(BM_Section)->ArgNames({"long", "front"})->ArgsProduct({{0, 1}, {0, 1}});

#ifdef QILSYS_BENCHMARK_PEERS

QString QtText(const std::u16string& text) {
  return QString::fromUtf16(text.data(), static_cast<qsizetype>(text.size()));
}

void BM_SplitQt(benchmark::State& state) {
  const std::u16string units = Fields(state);
  const QString text = QtText(units);
  Measure(state, Size, static_cast<qsizetype>(StdSplit(units, u',').size()),
          [&] { return text.split(QChar(u',')).size(); });
}
BENCHMARK(BM_SplitQt)->Apply(Kinds);

void BM_JoinQt(benchmark::State& state) {
  const QString text = QtText(Fields(state));
  const QStringList fields = text.split(QChar(u','));
  Measure(state, Size, text, [&] { return fields.join(QChar(u',')); });
}
BENCHMARK(BM_JoinQt)->Apply(Kinds);

#endif

}  // namespace
