// What does a text cost on its way from UTF-8 and back, and in another case, beside ICU's own functions?
#include <benchmark/benchmark.h>
#include <unicode/ustring.h>

#include <string>
#include <string_view>
#include <vector>

#include "qilsys/TStringCore.h"
#include "qilsys/Unicode.h"

namespace {

constexpr int Substitute = 0xFFFD;

/// One sentence each: all ASCII, mostly two bytes a letter, all three bytes, all four.
constexpr std::string_view Sentences[] = {
    "The quick brown fox jumps over the lazy dog; ",
    "\u0421\u044A\u0435\u0448\u044C \u0436\u0435 \u0435\u0449\u0451 \u044D\u0442\u0438\u0445 \u043C\u044F\u0433\u043A"
    "\u0438\u0445 \u0431\u0443\u043B\u043E\u043A ",
    "\u5929\u5730\u7384\u9EC4\u5B87\u5B99\u6D2A\u8352\u65E5\u6708\u76C8\u6603",
    "\U0001F600\U0001F680\U0001F308\U0001F40C",
};

std::string Utf8Text(const benchmark::State& state) {
  std::string text;
  const std::string_view sentence = Sentences[state.range(0)];
  while (text.size() + sentence.size() <= static_cast<size_t>(state.range(1))) text += sentence;
  return text;
}

TStringCore Text(const benchmark::State& state) { return TStringCore::fromStdString(Utf8Text(state)); }

int Length(const std::string& text) { return static_cast<int>(text.size()); }

const UChar* IcuUnits(const TCodeUnit* units) { return reinterpret_cast<const UChar*>(units); }

void Kinds(benchmark::internal::Benchmark* benchmark) {
  benchmark->ArgNames({"kind", "bytes"})->ArgsProduct({{0, 1, 2, 3}, {64, 1000, 65536}});
}

void BM_FromUtf8(benchmark::State& state) {
  const std::string text = Utf8Text(state);
  std::vector<TCodeUnit> target(text.size() + 1);
  const int room = static_cast<int>(target.size());
  if (TStringCore(target.data(), Unicode::Utf8ToUtf16(text.data(), Length(text), target.data(), room)).toStdString() !=
      text) {
    return state.SkipWithError("the text does not come back");
  }
  for (auto _ : state) {
    benchmark::DoNotOptimize(Unicode::Utf8ToUtf16(text.data(), Length(text), target.data(), room));
    benchmark::ClobberMemory();
  }
  state.SetBytesProcessed(state.iterations() * static_cast<int64_t>(text.size()));
}
BENCHMARK(BM_FromUtf8)->Apply(Kinds);

void BM_FromUtf8Icu(benchmark::State& state) {
  const std::string text = Utf8Text(state);
  std::vector<UChar> target(text.size() + 1);
  for (auto _ : state) {
    UErrorCode status = U_ZERO_ERROR;
    int32_t length = 0;
    u_strFromUTF8WithSub(target.data(), static_cast<int32_t>(target.size()), &length, text.data(), Length(text),
                         Substitute, nullptr, &status);
    benchmark::DoNotOptimize(length);
    benchmark::ClobberMemory();
  }
  state.SetBytesProcessed(state.iterations() * static_cast<int64_t>(text.size()));
}
BENCHMARK(BM_FromUtf8Icu)->Apply(Kinds);

void BM_ToUtf8(benchmark::State& state) {
  const std::string wanted = Utf8Text(state);
  const TStringCore text = Text(state);
  std::string target(wanted.size() + 1, '\0');
  const int room = Length(target);
  if (Unicode::Utf16ToUtf8(text.constData(), text.length(), target.data(), room) != Length(wanted) ||
      target.compare(0, wanted.size(), wanted) != 0) {
    return state.SkipWithError("the text does not come back");
  }
  for (auto _ : state) {
    benchmark::DoNotOptimize(Unicode::Utf16ToUtf8(text.constData(), text.length(), target.data(), room));
    benchmark::ClobberMemory();
  }
  state.SetBytesProcessed(state.iterations() * static_cast<int64_t>(wanted.size()));
}
BENCHMARK(BM_ToUtf8)->Apply(Kinds);

void BM_ToUtf8Icu(benchmark::State& state) {
  const TStringCore text = Text(state);
  std::string target(static_cast<size_t>(state.range(1)) + 1, '\0');
  int32_t length = 0;
  for (auto _ : state) {
    UErrorCode status = U_ZERO_ERROR;
    u_strToUTF8WithSub(target.data(), Length(target), &length, IcuUnits(text.constData()), text.length(), Substitute,
                       nullptr, &status);
    benchmark::DoNotOptimize(length);
    benchmark::ClobberMemory();
  }
  state.SetBytesProcessed(state.iterations() * int64_t{length});
}
BENCHMARK(BM_ToUtf8Icu)->Apply(Kinds);

void BM_CaseMapping(benchmark::State& state) {
  const TStringCore text = Text(state);
  if (text.toUpper().toLower() != text.toLower()) return state.SkipWithError("the text does not come back");
  for (auto _ : state) benchmark::DoNotOptimize(text.toUpper());
}
BENCHMARK(BM_CaseMapping)->Apply(Kinds);

void BM_CaseMappingIcu(benchmark::State& state) {
  const TStringCore text = Text(state);
  std::vector<UChar> target(static_cast<size_t>(text.length()) + 1);
  for (auto _ : state) {
    UErrorCode status = U_ZERO_ERROR;
    benchmark::DoNotOptimize(u_strToUpper(target.data(), static_cast<int32_t>(target.size()),
                                          IcuUnits(text.constData()), text.length(), nullptr, &status));
    benchmark::ClobberMemory();
  }
}
BENCHMARK(BM_CaseMappingIcu)->Apply(Kinds);

}  // namespace
