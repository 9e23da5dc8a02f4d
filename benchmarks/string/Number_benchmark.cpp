// What does a number cost as text, and back? std::to_chars and strtod stand beside as the measure.
#include <benchmark/benchmark.h>

#include <array>
#include <charconv>
#include <cstdint>
#include <cstdlib>
#include <random>
#include <string>
#include <vector>

#include "qilsys/TStringCore.h"

namespace {

constexpr std::size_t Numbers = 1024;

// Numbers of exactly `digits` decimal digits.
std::vector<std::uint64_t> NumbersOf(int digits) {
  std::uint64_t low = 1;
  for (int i = 1; i < digits; ++i) low *= 10;
  std::mt19937_64 engine(1);
  std::uniform_int_distribution<std::uint64_t> draw(low, digits == 20 ? ~std::uint64_t{0} : low * 10 - 1);
  std::vector<std::uint64_t> numbers(Numbers);
  for (std::uint64_t& number : numbers) number = draw(engine);
  return numbers;
}

// Numbers of every length, shuffled, so that no branch can be foretold.
std::vector<std::uint64_t> MixedNumbers() {
  std::mt19937_64 engine(2);
  std::vector<std::uint64_t> numbers(Numbers);
  for (std::uint64_t& number : numbers) number = engine() >> (engine() % 64);
  return numbers;
}

std::vector<std::uint64_t> NumbersFor(const benchmark::State& state) {
  return state.range(0) == 0 ? MixedNumbers() : NumbersOf(static_cast<int>(state.range(0)));
}

std::vector<double> Doubles() {
  std::mt19937_64 engine(3);
  std::vector<double> numbers(Numbers);
  for (double& number : numbers) number = (static_cast<double>(engine() % 2000000) - 1000000) / 1000;
  return numbers;
}

std::string ToChars(std::uint64_t value, int base) {
  std::array<char, 64> room;
  return std::string(room.data(), std::to_chars(room.begin(), room.end(), value, base).ptr);
}

bool AgreesWithToChars(const std::vector<std::uint64_t>& numbers, int base, benchmark::State& state) {
  for (const std::uint64_t number : numbers) {
    const std::string wanted = ToChars(number, base);
    if (TStringCore::number(static_cast<unsigned long long>(number), base) == TStringCore(wanted.c_str())) continue;
    state.SkipWithError("the text is wrong");
    return false;
  }
  return true;
}

void IntegerToText(benchmark::State& state, int base) {
  const std::vector<std::uint64_t> numbers = NumbersFor(state);
  if (!AgreesWithToChars(numbers, base, state)) return;
  std::size_t i = 0;
  for (auto _ : state) {
    TStringCore text = TStringCore::number(static_cast<unsigned long long>(numbers[i++ % Numbers]), base);
    benchmark::DoNotOptimize(text);
  }
  state.SetItemsProcessed(state.iterations());
}

void IntegerToChars(benchmark::State& state, int base) {
  const std::vector<std::uint64_t> numbers = NumbersFor(state);
  std::size_t i = 0;
  std::array<char, 64> room;
  for (auto _ : state) {
    const auto result = std::to_chars(room.begin(), room.end(), numbers[i++ % Numbers], base);
    benchmark::DoNotOptimize(result.ptr);
    benchmark::DoNotOptimize(room);
  }
  state.SetItemsProcessed(state.iterations());
}

#define INTEGER_BENCHMARK(function, base, name) \
  BENCHMARK_CAPTURE(function, name, base)->ArgName("digits")->Arg(1)->Arg(4)->Arg(8)->Arg(13)->Arg(20)->Arg(0)
INTEGER_BENCHMARK(IntegerToText, 10, decimal);
INTEGER_BENCHMARK(IntegerToChars, 10, decimal);
INTEGER_BENCHMARK(IntegerToText, 16, hexadecimal);
INTEGER_BENCHMARK(IntegerToChars, 16, hexadecimal);
INTEGER_BENCHMARK(IntegerToText, 36, base36);
INTEGER_BENCHMARK(IntegerToChars, 36, base36);

void DoubleToText(benchmark::State& state, char format) {
  const std::vector<double> numbers = Doubles();
  if (!(TStringCore::number(-1.5, 'f', 2) == TStringCore(u"-1.50"))) return state.SkipWithError("the text is wrong");
  std::size_t i = 0;
  for (auto _ : state) {
    TStringCore text = TStringCore::number(numbers[i++ % Numbers], format, 6);
    benchmark::DoNotOptimize(text);
  }
}
BENCHMARK_CAPTURE(DoubleToText, general, 'g');
BENCHMARK_CAPTURE(DoubleToText, fixed, 'f');

void DoublePrintf(benchmark::State& state, const char* format) {
  const std::vector<double> numbers = Doubles();
  std::size_t i = 0;
  std::array<char, 64> room;
  for (auto _ : state) {
    std::snprintf(room.data(), room.size(), format, numbers[i++ % Numbers]);
    benchmark::DoNotOptimize(room);
  }
}
BENCHMARK_CAPTURE(DoublePrintf, general, "%.6g");
BENCHMARK_CAPTURE(DoublePrintf, fixed, "%.6f");

void TextToInteger(benchmark::State& state) {
  std::vector<TStringCore> texts;
  for (const std::uint64_t number : NumbersFor(state)) texts.push_back(TStringCore(ToChars(number, 10).c_str()));
  bool ok = false;
  if (texts[0].toULongLong(&ok) != NumbersFor(state)[0] || !ok) return state.SkipWithError("the number is wrong");
  std::size_t i = 0;
  for (auto _ : state) benchmark::DoNotOptimize(texts[i++ % Numbers].toULongLong(&ok));
}
BENCHMARK(TextToInteger)->ArgName("digits")->Arg(4)->Arg(13)->Arg(20);

void TextToDouble(benchmark::State& state) {
  std::vector<TStringCore> texts;
  for (const double number : Doubles()) texts.push_back(TStringCore::number(number, 'f', 3));
  if (texts[0].toDouble() != Doubles()[0]) return state.SkipWithError("the number is wrong");
  std::size_t i = 0;
  for (auto _ : state) benchmark::DoNotOptimize(texts[i++ % Numbers].toDouble());
}
BENCHMARK(TextToDouble);

void CharsToDouble(benchmark::State& state) {
  std::vector<std::string> texts;
  for (const double number : Doubles()) texts.push_back(std::to_string(number));
  std::size_t i = 0;
  for (auto _ : state) benchmark::DoNotOptimize(std::strtod(texts[i++ % Numbers].c_str(), nullptr));
}
BENCHMARK(CharsToDouble);

}  // namespace
