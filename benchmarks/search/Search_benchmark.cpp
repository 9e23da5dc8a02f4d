// What does comparing and searching cost beside the standard string and, where they are built in, ICU and Qt?
#include <benchmark/benchmark.h>

#include <algorithm>
#include <string>

#include "qilsys/TStringCore.h"
#include "support/SearchTexts.h"

#ifdef QILSYS_BENCHMARK_PEERS
#include <unicode/uchar.h>
#include <unicode/ustring.h>

#include <QString>
#endif

namespace {

using qilsys::benchmarks::Measure;
using qilsys::benchmarks::Upper;
using qilsys::benchmarks::Words;

constexpr auto Fold = TStringCore::CaseInsensitive;

std::size_t SizeOf(const benchmark::State& state) { return static_cast<std::size_t>(state.range(0)); }

TStringCore Own(const std::u16string& text) { return TStringCore(text.data(), static_cast<int>(text.size())); }

int Index(std::size_t at) { return at == std::u16string::npos ? -1 : static_cast<int>(at); }

#ifdef QILSYS_BENCHMARK_PEERS
QString QtText(const std::u16string& text) {
  return QString::fromUtf16(text.data(), static_cast<qsizetype>(text.size()));
}

int Place(const std::u16string& text, const char16_t* at) {
  return at == nullptr ? -1 : static_cast<int>(at - text.data());
}

int Sign(int order) { return order < 0 ? -1 : order > 0 ? 1 : 0; }
#endif

void Sizes(benchmark::internal::Benchmark* benchmark) { benchmark->Arg(16)->Arg(1000)->Arg(32 * 1024); }

// ---- Equal texts, in the same case and not

struct Pair {
  explicit Pair(std::size_t size) : lower(Words(size)), same(lower), upper(Upper(lower)) {}
  std::u16string lower, same, upper;
};

void BM_Compare(benchmark::State& state) {
  const Pair texts(SizeOf(state));
  const TStringCore a = Own(texts.lower), b = Own(texts.same);
  Measure(state, SizeOf(state), 0, [&] { return a.compare(b); });
}
BENCHMARK(BM_Compare)->Apply(Sizes);

void BM_CompareStd(benchmark::State& state) {
  const Pair texts(SizeOf(state));
  Measure(state, SizeOf(state), 0, [&] { return texts.lower.compare(texts.same); });
}
BENCHMARK(BM_CompareStd)->Apply(Sizes);

void BM_CompareFolded(benchmark::State& state) {
  const Pair texts(SizeOf(state));
  const TStringCore a = Own(texts.lower), b = Own(texts.upper);
  Measure(state, SizeOf(state), 0, [&] { return a.compare(b, Fold); });
}
BENCHMARK(BM_CompareFolded)->Apply(Sizes);

char16_t Lower(char16_t c) { return c >= u'A' && c <= u'Z' ? static_cast<char16_t>(c | 0x20) : c; }

void BM_CompareFoldedStd(benchmark::State& state) {
  const Pair texts(SizeOf(state));
  const auto same = [](char16_t a, char16_t b) { return Lower(a) == Lower(b); };
  Measure(state, SizeOf(state), true, [&] {
    return std::equal(texts.lower.begin(), texts.lower.end(), texts.upper.begin(), texts.upper.end(), same);
  });
}
BENCHMARK(BM_CompareFoldedStd)->Apply(Sizes);

// ---- A needle at the very end

struct Hay {
  explicit Hay(std::size_t size) : text(Words(size) + needle), answer(static_cast<int>(size)) {}
  std::u16string needle = u"quixotic", text;
  int answer;
};

void BM_Find(benchmark::State& state) {
  const Hay hay(SizeOf(state));
  const TStringCore text = Own(hay.text), needle = Own(hay.needle);
  Measure(state, SizeOf(state), hay.answer, [&] { return text.indexOf(needle); });
}
BENCHMARK(BM_Find)->Apply(Sizes);

void BM_FindStd(benchmark::State& state) {
  const Hay hay(SizeOf(state));
  Measure(state, SizeOf(state), hay.answer, [&] { return Index(hay.text.find(hay.needle)); });
}
BENCHMARK(BM_FindStd)->Apply(Sizes);

// Both ends of this needle stand all over the text.
void BM_FindCommonEnds(benchmark::State& state) {
  const std::u16string needle = u"seventeenths";
  const std::u16string units = Words(SizeOf(state)) + needle;
  const TStringCore text = Own(units), sought = Own(needle);
  Measure(state, SizeOf(state), static_cast<int>(SizeOf(state)), [&] { return text.indexOf(sought); });
}
BENCHMARK(BM_FindCommonEnds)->Apply(Sizes);

void BM_FindFolded(benchmark::State& state) {
  const Hay hay(SizeOf(state));
  const TStringCore text = Own(hay.text), needle = Own(Upper(hay.needle));
  Measure(state, SizeOf(state), hay.answer, [&] { return text.indexOf(needle, 0, Fold); });
}
BENCHMARK(BM_FindFolded)->Apply(Sizes);

void BM_FindFoldedStd(benchmark::State& state) {
  const Hay hay(SizeOf(state));
  const std::u16string needle = Upper(hay.needle);
  const auto same = [](char16_t a, char16_t b) { return Lower(a) == Lower(b); };
  Measure(state, SizeOf(state), hay.answer, [&] {
    return static_cast<int>(std::search(hay.text.begin(), hay.text.end(), needle.begin(), needle.end(), same) -
                            hay.text.begin());
  });
}
BENCHMARK(BM_FindFoldedStd)->Apply(Sizes);

// The worst case: a near miss at every place.
void BM_FindFoldedNearMisses(benchmark::State& state) {
  const std::u16string needle = std::u16string(32, u'A') + u"B" + std::u16string(32, u'A');
  const TStringCore text = Own(std::u16string(SizeOf(state), u'a')), sought = Own(needle);
  Measure(state, SizeOf(state), -1, [&] { return text.indexOf(sought, 0, Fold); });
}
BENCHMARK(BM_FindFoldedNearMisses)->Arg(32 * 1024);

void BM_FindUnit(benchmark::State& state) {
  const Hay hay(SizeOf(state));
  const TStringCore text = Own(hay.text);
  Measure(state, SizeOf(state), hay.answer, [&] { return text.indexOf(u'q'); });
}
BENCHMARK(BM_FindUnit)->Apply(Sizes);

void BM_FindUnitStd(benchmark::State& state) {
  const Hay hay(SizeOf(state));
  Measure(state, SizeOf(state), hay.answer, [&] { return Index(hay.text.find(u'q')); });
}
BENCHMARK(BM_FindUnitStd)->Apply(Sizes);

// ---- One of five ASCII units, at the very end

struct SetHay {
  explicit SetHay(std::size_t size) : text(Words(size) + u";"), answer(static_cast<int>(size)) {}
  std::u16string text, set = u",;:!?";
  int answer;
};

void BM_FindOneOf(benchmark::State& state) {
  const SetHay hay(SizeOf(state));
  const TStringCore text = Own(hay.text), set = Own(hay.set);
  Measure(state, SizeOf(state), hay.answer, [&] { return text.findOneOf(set); });
}
BENCHMARK(BM_FindOneOf)->Apply(Sizes);

void BM_FindOneOfStd(benchmark::State& state) {
  const SetHay hay(SizeOf(state));
  Measure(state, SizeOf(state), hay.answer, [&] { return Index(hay.text.find_first_of(hay.set)); });
}
BENCHMARK(BM_FindOneOfStd)->Apply(Sizes);

// More units than fit the vector scan.
void BM_FindOneOfMany(benchmark::State& state) {
  const SetHay hay(SizeOf(state));
  const TStringCore text = Own(hay.text), set(u",;:!?.()[]{}");
  Measure(state, SizeOf(state), hay.answer, [&] { return text.findOneOf(set); });
}
BENCHMARK(BM_FindOneOfMany)->Apply(Sizes);

#ifdef QILSYS_BENCHMARK_PEERS

void BM_CompareQt(benchmark::State& state) {
  const Pair texts(SizeOf(state));
  const QString a = QtText(texts.lower), b = QtText(texts.same);
  Measure(state, SizeOf(state), 0, [&] { return a.compare(b); });
}
BENCHMARK(BM_CompareQt)->Apply(Sizes);

void BM_CompareFoldedQt(benchmark::State& state) {
  const Pair texts(SizeOf(state));
  const QString a = QtText(texts.lower), b = QtText(texts.upper);
  Measure(state, SizeOf(state), 0, [&] { return a.compare(b, Qt::CaseInsensitive); });
}
BENCHMARK(BM_CompareFoldedQt)->Apply(Sizes);

void BM_CompareFoldedIcu(benchmark::State& state) {
  const Pair texts(SizeOf(state));
  const auto size = static_cast<std::int32_t>(SizeOf(state));
  Measure(state, SizeOf(state), 0,
          [&] { return Sign(u_memcasecmp(texts.lower.data(), texts.upper.data(), size, U_FOLD_CASE_DEFAULT)); });
}
BENCHMARK(BM_CompareFoldedIcu)->Apply(Sizes);

void BM_FindQt(benchmark::State& state) {
  const Hay hay(SizeOf(state));
  const QString text = QtText(hay.text), needle = QtText(hay.needle);
  Measure(state, SizeOf(state), hay.answer, [&] { return static_cast<int>(text.indexOf(needle)); });
}
BENCHMARK(BM_FindQt)->Apply(Sizes);

void BM_FindIcu(benchmark::State& state) {
  const Hay hay(SizeOf(state));
  const auto size = static_cast<std::int32_t>(hay.text.size());
  Measure(state, SizeOf(state), hay.answer,
          [&] { return Place(hay.text, u_strFindFirst(hay.text.data(), size, hay.needle.data(), 8)); });
}
BENCHMARK(BM_FindIcu)->Apply(Sizes);

void BM_FindFoldedQt(benchmark::State& state) {
  const Hay hay(SizeOf(state));
  const QString text = QtText(hay.text), needle = QtText(Upper(hay.needle));
  Measure(state, SizeOf(state), hay.answer,
          [&] { return static_cast<int>(text.indexOf(needle, 0, Qt::CaseInsensitive)); });
}
BENCHMARK(BM_FindFoldedQt)->Apply(Sizes);

void BM_FindUnitQt(benchmark::State& state) {
  const Hay hay(SizeOf(state));
  const QString text = QtText(hay.text);
  Measure(state, SizeOf(state), hay.answer, [&] { return static_cast<int>(text.indexOf(QChar(u'q'))); });
}
BENCHMARK(BM_FindUnitQt)->Apply(Sizes);

void BM_FindOneOfIcu(benchmark::State& state) {
  const SetHay hay(SizeOf(state));
  Measure(state, SizeOf(state), hay.answer,
          [&] { return Place(hay.text, u_strpbrk(hay.text.data(), hay.set.data())); });
}
BENCHMARK(BM_FindOneOfIcu)->Apply(Sizes);

#endif

}  // namespace
