// The engines of searching and of sets against models that are written as plainly as possible.
//
// The first byte chooses how the input is cut, every further one a letter of a small alphabet, since few letters make
// periods, near misses and broken pairs in every order.
#include <cstdint>
#include <cstdlib>
#include <string>
#include <string_view>
#include <vector>

#include "search/Search.h"
#include "support/SearchModels.h"

namespace {

using namespace qilsys::search;
using namespace qilsys::test;

constexpr std::size_t MostBytes = 2048;
constexpr std::u16string_view Alphabet{u"aaaabbAB\0k\u212A\u00E4\uFFFD\xD801\xDC00\xDC28", 16};

void Require(bool condition) {
  if (!condition) std::abort();
}

std::u16string Letters(const std::uint8_t* data, std::size_t size) {
  std::u16string text;
  for (std::size_t i = 0; i < size; ++i) text += Alphabet[data[i] % Alphabet.size()];
  return text;
}

/// Terminated units on the heap, so that a sanitizer sees a read too far.
class Units {
 public:
  explicit Units(std::u16string_view text) : m_units(text.begin(), text.end()) { m_units.push_back(0); }
  const TCodeUnit* Data() const { return m_units.data(); }
  int Length() const { return static_cast<int>(m_units.size()) - 1; }

 private:
  std::vector<TCodeUnit> m_units;
};

void CheckNeedle(std::u16string_view text, std::u16string_view needle, int start, CaseSensitivity cs) {
  const bool folds = cs != TStringOptions::CaseSensitive;
  const Units t(text), n(needle);
  Require(findStrCore(t.Data(), t.Length(), n.Data(), n.Length(), start, cs) == ModelFind(text, needle, start, folds));
  Require(findLastStr(t.Data(), t.Length(), n.Data(), n.Length(), start, cs) ==
          ModelLastIndexOf(text, needle, start, folds));
  if (text.find(u'\0') != text.npos || needle.find(u'\0') != needle.npos) return;
  Require(countStr(t.Data(), t.Length(), n.Data(), n.Length(), cs) ==
          ModelCount(std::u16string(text), std::u16string(needle), folds));
}

void CheckSet(std::u16string_view text, std::u16string_view set, int start) {
  const Units t(text), s(set);
  Require(findAnyOfCore(t.Data(), t.Length(), s.Data(), s.Length(), start) == ModelFindAnyOf(text, set, start));
  Require(findNotOfCore(t.Data(), t.Length(), s.Data(), s.Length(), start) == ModelFindNotOf(text, set, start));
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  if (size < 2 || size > MostBytes) return 0;
  const std::u16string letters = Letters(data + 1, size - 1);
  // The needle is what is cut off the end: up to half of all.
  const std::size_t cut = letters.size() - letters.size() * (data[0] % 16) / 32;
  const std::u16string_view text = std::u16string_view(letters).substr(0, cut);
  const std::u16string_view needle = std::u16string_view(letters).substr(cut);
  const int length = static_cast<int>(text.size());
  for (const int start : {0, -1, length / 2, length, -length / 2}) {
    CheckNeedle(text, needle, start, TStringOptions::CaseSensitive);
    CheckNeedle(text, needle, start, TStringOptions::CaseInsensitive);
    CheckSet(text, needle, start);
  }
  return 0;
}
