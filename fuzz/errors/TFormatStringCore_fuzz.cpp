// A template and its parameters must come to what a second reading of the template makes of them, or fail with the same
// words. Input: units of two bytes; each unit 0xFFFF ends a parameter, and what comes after the last of them is the
// template.
#include "qilsys/TFormatStringCore.h"

#include <cstdint>
#include <cstdlib>
#include <string>
#include <vector>

#include "support/FormatModel.h"
#include "support/StringText.h"

namespace {

using Texts = std::vector<std::u16string>;

constexpr std::size_t MostBytes = 4096;
constexpr char16_t EndOfText = 0xFFFF;

void Require(bool condition) {
  if (!condition) std::abort();
}

Texts Split(const std::uint8_t* data, std::size_t size) {
  Texts texts(1);
  for (std::size_t i = 0; i + 1 < size; i += 2) {
    const auto unit = static_cast<char16_t>(data[i] | data[i + 1] << 8);
    if (unit == EndOfText) {
      texts.emplace_back();
    } else {
      texts.back().push_back(unit);
    }
  }
  return texts;
}

TStringCore Text(const std::u16string& units) { return TStringCore::fromStdU16String(units); }

// The message of what `action` raises; empty where it goes well.
template <class Action>
std::string Failure(const Action& action) {
  try {
    action();
  } catch (const TFormatStringCore::Exception& exception) {
    return qilsys::test::Narrow(exception.GetMessagesFront());
  }
  return {};
}

void Check(const std::u16string& units, const Texts& parameters) {
  const qilsys::test::FormatExpectation expected = qilsys::test::ExpectedFormat(units, parameters);
  TFormatStringCore format{TStringCore()};
  const std::string failure = Failure([&] { format = Text(units); });
  Require(failure == (expected.failure != nullptr ? expected.failure : ""));
  Require(Failure([&] { static_cast<void>(TFormatStringCore(Text(units))); }) == failure);
  if (!failure.empty()) return;
  for (const std::u16string& parameter : parameters) format.arg(Text(parameter));
  TStringCore result;
  const std::string missing = Failure([&] { result = format.result(); });
  Require(missing.empty() == (expected.highest <= static_cast<int>(parameters.size())));
  Require(!missing.empty() || qilsys::test::UnitsOf(result) == expected.text);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  if (size > MostBytes) return 0;
  Texts parameters = Split(data, size);
  const std::u16string format = parameters.back();
  parameters.pop_back();
  Check(format, parameters);
  return 0;
}
