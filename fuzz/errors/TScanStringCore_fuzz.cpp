// Tokens of any text must come to what a second reading of it makes of them, skipped and read alike, and a failure must
// move nothing. Input: units of two bytes. Up to the first unit 0xFFFF they are the text; behind it come requests: a
// unit for the token, one for its number, and the units of its set or text up to the next 0xFFFF.
#include "qilsys/TScanStringCore.h"

#include <cstdint>
#include <cstdlib>
#include <string>
#include <vector>

#include "support/ScanModel.h"

namespace {

using namespace qilsys::test;

constexpr std::size_t MostBytes = 4096;
constexpr char16_t EndOfText = 0xFFFF;

void Require(bool condition) {
  if (!condition) std::abort();
}

class Input {
 public:
  Input(const std::uint8_t* data, std::size_t size) {
    for (std::size_t i = 0; i + 1 < size; i += 2) m_units.push_back(static_cast<char16_t>(data[i] | data[i + 1] << 8));
  }
  bool IsAtEnd() const { return m_at >= m_units.size(); }
  char16_t Unit() { return IsAtEnd() ? u'\0' : m_units[m_at++]; }
  // Texts end at a NUL, as they do for a scanner.
  std::u16string Text() {
    const std::size_t end = std::min(m_units.find(EndOfText, m_at), m_units.size());
    std::u16string text = m_units.substr(m_at, end - m_at);
    m_at = end + 1;
    return text.substr(0, text.find(u'\0'));
  }
  TokenRequest Request() {
    const auto token = static_cast<Token>(Unit() % TokenCount);
    const int number = static_cast<std::int16_t>(Unit());
    return {token, IsAtEnd() ? std::u16string() : Text(), number};
  }

 private:
  std::u16string m_units;
  std::size_t m_at = 0;
};

void CheckValue(const TokenRequest& request, std::u16string_view token, const TokenValues& out) {
  if (request.token == Token::Bool)
    Require(out.flag == (token[0] == u'1' || (token[0] | 0x20) == u't' || (token[0] | 0x20) == u'y'));
  if (request.token == Token::Bool || request.token == Token::Float || request.token == Token::Double) return;
  Require(UnitsOf(out.text) == token);
}

void Check(const std::u16string& text, Input& input) {
  const TStringCore whole = TStringCore::fromStdU16String(text);
  TScanStringCore skipping(whole);
  TScanStringCore reading(skipping);
  while (!input.IsAtEnd()) {
    const TokenRequest request = input.Request();
    const int index = skipping.index();
    const std::u16string_view rest = std::u16string_view(text).substr(static_cast<std::size_t>(index));
    const ExpectedToken skipped = ExpectToken(rest, request, false);
    Require(ScanFailure([&] { SkipToken(skipping, request); }) == (skipped.failure ? skipped.failure : ""));
    Require(skipping.index() == index + skipped.moved);

    TokenValues out;
    bool isRead = false;
    const std::string failure = ScanFailure([&] { isRead = ReadToken(reading, request, out); });
    if (isRead || !failure.empty()) {
      const ExpectedToken read = ExpectToken(rest, request, true);
      Require(failure == (read.failure ? read.failure : ""));
      Require(reading.index() == index + read.moved);
      if (isRead) CheckValue(request, rest.substr(0, static_cast<std::size_t>(read.length)), out);
    }
    reading = skipping;
    const bool isAtEnd = ScanFailure([&] { reading.end(); }).empty();
    Require(isAtEnd == (static_cast<std::size_t>(reading.index()) == text.size()));
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  if (size > MostBytes) return 0;
  Input input(data, size);
  const std::u16string text = input.Text();
  Check(text, input);
  return 0;
}
