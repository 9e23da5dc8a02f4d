/// The texts that searches and their peers are measured on, and the way to measure one answer.
#pragma once

#include <benchmark/benchmark.h>

#include <cstddef>
#include <random>
#include <string>

namespace qilsys::benchmarks {

// Lower-case words between spaces, the same in every run; no word is longer than 9 units.
inline std::u16string Words(std::size_t units) {
  std::mt19937 random(42);
  // Roughly the letters of English text.
  constexpr char16_t Letters[] =
      u"eeeeeeeeeeeetttttttttaaaaaaaaooooooooiiiiiiinnnnnnnsssssshhhhhhrrrrrrddddllllcccuuummmwwffggyyppbbvk";
  std::u16string text;
  while (text.size() < units) {
    for (auto left = random() % 9 + 1; left > 0; --left) text += Letters[random() % 100];
    text += u' ';
  }
  text.resize(units);
  return text;
}

inline std::u16string Upper(std::u16string text) {
  for (char16_t& c : text) c = c >= u'a' && c <= u'z' ? static_cast<char16_t>(c - 32) : c;
  return text;
}

// Checks the answer once, then measures; bytes are those of `units`.
template <class Answer, class Wanted>
void Measure(benchmark::State& state, std::size_t units, const Wanted& wanted, Answer answer) {
  if (answer() != wanted) {
    state.SkipWithError("wrong answer");
    return;
  }
  for (auto _ : state) benchmark::DoNotOptimize(answer());
  state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(units * sizeof(char16_t)));
}

}  // namespace qilsys::benchmarks
