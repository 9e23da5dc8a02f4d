// What does it cost to build, copy, move, grow and edit a text, beside the string of the standard library and, with
// QILSYS_BENCHMARK_PEERS, those of ICU, Qt and Boost?
#include "qilsys/TStringCore.h"

#include <benchmark/benchmark.h>

#include <string>

#ifdef QILSYS_BENCHMARK_PEERS
#include <unicode/unistr.h>

#include <QString>
#include <boost/container/string.hpp>
#endif

namespace {

// The same few operations on each type.
struct Ours {
  using Text = TStringCore;
  static Text Make(const char16_t* s, int n) { return Text(s, n); }
  static void Append(Text& text, char16_t c) { text.append(c); }
  static void Append(Text& text, const Text& other) { text.append(other); }
  static void Insert(Text& text, int at, const Text& other) { text.insert(at, other); }
  static void Remove(Text& text, int at, int n) { text.removeAt(at, n); }
  static void Replace(Text& text, char16_t before, char16_t after) { text.replace(before, after); }
  static Text Lower(const Text& text) { return text.toLower(); }
  static int Length(const Text& text) { return text.length(); }
  static char16_t First(const Text& text) { return text.constData()[0]; }
};

struct Standard {
  using Text = std::u16string;
  static Text Make(const char16_t* s, int n) { return Text(s, static_cast<std::size_t>(n)); }
  static void Append(Text& text, char16_t c) { text.push_back(c); }
  static void Append(Text& text, const Text& other) { text.append(other); }
  static void Insert(Text& text, int at, const Text& other) { text.insert(static_cast<std::size_t>(at), other); }
  static void Remove(Text& text, int at, int n) {
    text.erase(static_cast<std::size_t>(at), static_cast<std::size_t>(n));
  }
  static void Replace(Text& text, char16_t before, char16_t after) {
    for (char16_t& unit : text) unit = unit == before ? after : unit;
  }
  static int Length(const Text& text) { return static_cast<int>(text.size()); }
  static char16_t First(const Text& text) { return text[0]; }
};

#ifdef QILSYS_BENCHMARK_PEERS

struct Boost {
  using Text = boost::container::basic_string<char16_t>;
  static Text Make(const char16_t* s, int n) { return Text(s, static_cast<std::size_t>(n)); }
  static void Append(Text& text, char16_t c) { text.push_back(c); }
  static void Append(Text& text, const Text& other) { text.append(other); }
  static void Insert(Text& text, int at, const Text& other) { text.insert(static_cast<std::size_t>(at), other); }
  static void Remove(Text& text, int at, int n) {
    text.erase(static_cast<std::size_t>(at), static_cast<std::size_t>(n));
  }
  static void Replace(Text& text, char16_t before, char16_t after) {
    for (char16_t& unit : text) unit = unit == before ? after : unit;
  }
  static int Length(const Text& text) { return static_cast<int>(text.size()); }
  static char16_t First(const Text& text) { return text[0]; }
};

struct Icu {
  using Text = icu::UnicodeString;
  static Text Make(const char16_t* s, int n) { return Text(s, n); }
  static void Append(Text& text, char16_t c) { text.append(c); }
  static void Append(Text& text, const Text& other) { text.append(other); }
  static void Insert(Text& text, int at, const Text& other) { text.insert(at, other); }
  static void Remove(Text& text, int at, int n) { text.remove(at, n); }
  static void Replace(Text& text, char16_t before, char16_t after) { text.findAndReplace(Text(before), Text(after)); }
  static Text Lower(const Text& text) { return Text(text).toLower(); }
  static int Length(const Text& text) { return text.length(); }
  static char16_t First(const Text& text) { return text[0]; }
};

struct Qt {
  using Text = QString;
  static Text Make(const char16_t* s, int n) { return Text(reinterpret_cast<const QChar*>(s), n); }
  static void Append(Text& text, char16_t c) { text.append(QChar(c)); }
  static void Append(Text& text, const Text& other) { text.append(other); }
  static void Insert(Text& text, int at, const Text& other) { text.insert(at, other); }
  static void Remove(Text& text, int at, int n) { text.remove(at, n); }
  static void Replace(Text& text, char16_t before, char16_t after) { text.replace(QChar(before), QChar(after)); }
  static Text Lower(const Text& text) { return text.toLower(); }
  static int Length(const Text& text) { return static_cast<int>(text.size()); }
  static char16_t First(const Text& text) { return text[0].unicode(); }
};

#endif

std::u16string Letters(int n) { return std::u16string(static_cast<std::size_t>(n), u'x'); }

/// Ends a benchmark whose answer is wrong.
template <class Type>
bool Answers(benchmark::State& state, const typename Type::Text& text, int length, char16_t first) {
  if (Type::Length(text) == length && (length == 0 || Type::First(text) == first)) return true;
  state.SkipWithError("wrong answer");
  return false;
}

template <class Type>
void BM_BuildAndDestroy(benchmark::State& state) {
  const int n = static_cast<int>(state.range(0));
  const std::u16string units = Letters(n);
  if (!Answers<Type>(state, Type::Make(units.data(), n), n, u'x')) return;
  const char16_t* source = units.data();
  for (auto _ : state) {
    benchmark::DoNotOptimize(source);
    auto text = Type::Make(source, n);
    benchmark::DoNotOptimize(text);
  }
}

template <class Type>
void BM_Copy(benchmark::State& state) {
  const int n = static_cast<int>(state.range(0));
  const auto source = Type::Make(Letters(n).data(), n);
  if (!Answers<Type>(state, source, n, u'x')) return;
  for (auto _ : state) {
    auto text = source;
    benchmark::DoNotOptimize(text);
  }
}

template <class Type>
void BM_Move(benchmark::State& state) {
  const int n = static_cast<int>(state.range(0));
  auto text = Type::Make(Letters(n).data(), n);
  for (auto _ : state) {
    auto taken = std::move(text);
    benchmark::DoNotOptimize(taken);
    text = std::move(taken);
    benchmark::DoNotOptimize(text);
  }
  Answers<Type>(state, text, n, u'x');
}

template <class Type>
typename Type::Text UnitByUnit(int n) {
  typename Type::Text text;
  for (int i = 0; i < n; ++i) Type::Append(text, u'x');
  return text;
}

template <class Type>
void BM_AppendUnits(benchmark::State& state) {
  const int n = static_cast<int>(state.range(0));
  if (!Answers<Type>(state, UnitByUnit<Type>(n), n, u'x')) return;
  for (auto _ : state) {
    auto text = UnitByUnit<Type>(n);
    benchmark::DoNotOptimize(text);
  }
  state.SetItemsProcessed(state.iterations() * n);
}

template <class Type>
void BM_AppendTexts(benchmark::State& state) {
  const int n = static_cast<int>(state.range(0));
  const auto piece = Type::Make(Letters(10).data(), 10);
  for (auto _ : state) {
    typename Type::Text text;
    for (int i = 0; i < n; ++i) Type::Append(text, piece);
    benchmark::DoNotOptimize(text);
  }
  state.SetItemsProcessed(state.iterations() * n);
}

template <class Type>
void BM_InsertAndRemove(benchmark::State& state) {
  const int n = static_cast<int>(state.range(0));
  auto text = Type::Make(Letters(n).data(), n);
  const auto piece = Type::Make(Letters(5).data(), 5);
  for (auto _ : state) {
    Type::Insert(text, n / 2, piece);
    Type::Remove(text, n / 2, 5);
    benchmark::DoNotOptimize(text);
  }
  Answers<Type>(state, text, n, u'x');
}

template <class Type>
void BM_ReplaceUnit(benchmark::State& state) {
  const int n = static_cast<int>(state.range(0));
  auto text = Type::Make(Letters(n).data(), n);
  for (auto _ : state) {
    Type::Replace(text, u'x', u'y');
    Type::Replace(text, u'y', u'x');
    benchmark::DoNotOptimize(text);
  }
  Answers<Type>(state, text, n, u'x');
  state.SetBytesProcessed(state.iterations() * n * 4);
}

template <class Type>
void BM_ToLower(benchmark::State& state) {
  const int n = static_cast<int>(state.range(0));
  const std::u16string upper(static_cast<std::size_t>(n), state.range(1) ? u'\u00C4' : u'X');
  const auto text = Type::Make(upper.data(), n);
  if (!Answers<Type>(state, Type::Lower(text), n, state.range(1) ? u'\u00E4' : u'x')) return;
  for (auto _ : state) {
    auto lower = Type::Lower(text);
    benchmark::DoNotOptimize(lower);
  }
  state.SetBytesProcessed(state.iterations() * n * 2);
}

#define QILSYS_BENCHMARK_TYPE(type)                                                                             \
  BENCHMARK_TEMPLATE(BM_BuildAndDestroy, type)->Arg(0)->Arg(3)->Arg(10)->Arg(14)->Arg(15)->Arg(100)->Arg(1000); \
  BENCHMARK_TEMPLATE(BM_Copy, type)->Arg(10)->Arg(100)->Arg(1000);                                              \
  BENCHMARK_TEMPLATE(BM_Move, type)->Arg(10)->Arg(100);                                                         \
  BENCHMARK_TEMPLATE(BM_AppendUnits, type)->Arg(10)->Arg(1000);                                                 \
  BENCHMARK_TEMPLATE(BM_AppendTexts, type)->Arg(10)->Arg(1000);                                                 \
  BENCHMARK_TEMPLATE(BM_InsertAndRemove, type)->Arg(100)->Arg(10000);                                           \
  BENCHMARK_TEMPLATE(BM_ReplaceUnit, type)->Arg(100)->Arg(10000)

#define QILSYS_BENCHMARK_CASE(type) \
  BENCHMARK_TEMPLATE(BM_ToLower, type)->ArgNames({"n", "wide"})->Args({10, 0})->Args({1000, 0})->Args({1000, 1})

QILSYS_BENCHMARK_TYPE(Ours);
QILSYS_BENCHMARK_TYPE(Standard);
QILSYS_BENCHMARK_CASE(Ours);
#ifdef QILSYS_BENCHMARK_PEERS
QILSYS_BENCHMARK_TYPE(Boost);
QILSYS_BENCHMARK_TYPE(Icu);
QILSYS_BENCHMARK_TYPE(Qt);
QILSYS_BENCHMARK_CASE(Icu);
QILSYS_BENCHMARK_CASE(Qt);
#endif

}  // namespace
