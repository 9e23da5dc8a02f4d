#include "qilsys/TScanStringCore.h"

#include <cstdint>
#include <memory>
#include <string_view>

#include "qilsys/LogicException.h"
#include "qilsys/TCType.h"
#include "units/TextLimits.h"

namespace {

namespace units = qilsys::units;

constexpr TCodeUnit Nothing[] = {0};
// In the order in which they are tried.
constexpr std::string_view BooleanWords[] = {"1", "0", "true", "false", "yes", "no"};
// The bit that tells the cases of an ASCII letter apart.
constexpr int CaseBit = 0x20;
constexpr TCodeUnit LineFeed = 10;
constexpr TCodeUnit CarriageReturn = 13;

[[noreturn]] void Fail(const char* message, TError::ErrorSource source, unsigned int code, const char* codeName) {
  throw TScanStringCore::Exception(TStringCore(message),
                                   {QuillonError::MakeError(code, codeName), source, grpc::StatusCode::UNKNOWN});
}

const TCodeUnit* TextOrNothing(const TCodeUnit* text) { return text != nullptr ? text : Nothing; }

// Units of a set, of which those of ASCII are found by one look.
class Members {
 public:
  explicit Members(const TCodeUnit* set) {
    for (set = TextOrNothing(set); *set != 0; ++set) {
      if (*set < 0x80) {
        m_ascii[*set / 64] |= std::uint64_t{1} << *set % 64;
      } else if (m_others == nullptr) {
        m_others = set;
      }
    }
  }

  bool Hold(TCodeUnit unit) const {
    if (unit < 0x80) return (m_ascii[unit / 64] >> unit % 64 & 1) != 0;
    const TCodeUnit* other = TextOrNothing(m_others);
    while (*other != 0 && *other != unit) ++other;
    return *other != 0;
  }

 private:
  std::uint64_t m_ascii[2] = {0, 0};
  // The set from its first unit beyond ASCII on.
  const TCodeUnit* m_others = nullptr;
};

int LengthBetween(const TCodeUnit* from, const TCodeUnit* to) {
  if (to - from >= units::LengthLimit) units::ThrowCapacity();
  return static_cast<int>(to - from);
}

// The units up to the first one that the test refuses, or to the end.
template <class Test>
int LengthWhile(const TCodeUnit* text, const Test& test) {
  const TCodeUnit* end = text;
  while (*end != 0 && test(*end)) ++end;
  return LengthBetween(text, end);
}

// The text may end before the word does, with a NUL, which no word has.
bool StartsWithWord(const TCodeUnit* text, std::string_view word) {
  for (const char c : word) {
    const int wanted = static_cast<unsigned char>(c);
    const TCodeUnit unit = *text++;
    if (unit != wanted && !(wanted >= 'a' && (unit | CaseBit) == wanted)) return false;
  }
  return true;
}

}  // namespace

TScanStringCore::TScanStringCore(const TStringCore& text) : TScanStringCore(text.constData()) {}

TScanStringCore::TScanStringCore(const TCodeUnit* text) : m_input(text) { reset(); }

TScanStringCore::TScanStringCore(const TScanStringCore&) = default;
TScanStringCore& TScanStringCore::operator=(const TScanStringCore&) = default;
TScanStringCore::~TScanStringCore() = default;

void TScanStringCore::setForeignInput(const TForeignUnit* text) {
  if constexpr (sizeof(TForeignUnit) > sizeof(TCodeUnit)) {
    if (text != nullptr) {
      m_converted = std::make_shared<const qilsys::TForeignText>(text);
      m_input = m_converted->data();
    }
  } else {
    m_input = reinterpret_cast<const TCodeUnit*>(text);
  }
  reset();
}

TScanStringCore& TScanStringCore::reset() {
  QILSYS_LOGIC_ASSERT(m_input != nullptr, "m_input", "main/qilsys/TScanStringCore", 101, 0x1D15303B,
                      "LogicException_LogicAssert_0x1D15303B");
  m_index = 0;
  return *this;
}

// Where the cursor stands. Null gets here only through an assertion hook that returned.
const TCodeUnit* TScanStringCore::rest() const { return TextOrNothing(m_input) + m_index; }

int TScanStringCore::indexBehind(int length) const {
  if (length >= units::LengthLimit - m_index) units::ThrowCapacity();
  return m_index + length;
}

TScanStringCore& TScanStringCore::move(int length) {
  m_index = indexBehind(length);
  return *this;
}

TScanStringCore& TScanStringCore::deliver(TStringCore& out, int length) {
  const int behind = indexBehind(length);
  out.assign(rest(), length);
  m_index = behind;
  return *this;
}

TScanStringCore& TScanStringCore::end() {
  if (*rest() != 0) {
    Fail("TScanStringCore::end(): Expected null character.", TError::System, 0x57D65295,
         "QuillonException_AutoGen_0x57D65295");
  }
  return *this;
}

// ---- The length of a token

int TScanStringCore::lengthAnyOf(const TCodeUnit* text, const TCodeUnit* set) {
  return LengthWhile(text, [members = Members(set)](TCodeUnit unit) { return members.Hold(unit); });
}

int TScanStringCore::lengthAnyNotOf(const TCodeUnit* text, const TCodeUnit* set) {
  return LengthWhile(text, [members = Members(set)](TCodeUnit unit) { return !members.Hold(unit); });
}

int TScanStringCore::lengthBool(const TCodeUnit* text) {
  for (const std::string_view word : BooleanWords) {
    if (StartsWithWord(text, word)) return static_cast<int>(word.size());
  }
  Fail("TScanStringCore::lengthBool: Boolean value not found.", TError::Client, 0xE9FB330D,
       "QuillonException_AutoGen_0xE9FB330D");
}

int TScanStringCore::lengthInt(const TCodeUnit* text, int base) {
  // The rest of the text need not be measured: digits end before its NUL, and only base 0 asks whether there are two
  // units.
  const int most = text[0] == 0 ? 0 : text[1] == 0 ? 1 : units::LengthLimit;
  const int length = TStringCore::leftIntegerLength(text, most, base);
  if (length <= 0) {
    Fail("TScanStringCore::lengthInt: Integer value not found.", TError::Client, 0x3AD2C18B,
         "QuillonException_AutoGen_0x3AD2C18B");
  }
  return length;
}

int TScanStringCore::lengthFloat(const TCodeUnit* text) {
  const int length = TStringCore::leftDoubleLength(text, units::LengthLimit);
  if (length <= 0) {
    Fail("TScanStringCore::lengthFloat: Float value not found.", TError::Client, 0xE601166D,
         "QuillonException_AutoGen_0xE601166D");
  }
  return length;
}

int TScanStringCore::lengthLine(const TCodeUnit* text) {
  return LengthWhile(text, [](TCodeUnit unit) { return unit != LineFeed; });
}

int TScanStringCore::lengthNewline(const TCodeUnit* text) {
  if (*text == 0) return 0;
  if (*text != LineFeed && *text != CarriageReturn) {
    // The name with a capital L is that of the message, and on purpose.
    Fail("TScanStringCore::lengthNewLine: No new line found.", TError::Client, 0xB44D5F02,
         "QuillonException_AutoGen_0xB44D5F02");
  }
  const TCodeUnit other = *text == LineFeed ? CarriageReturn : LineFeed;
  return text[1] == other ? 2 : 1;
}

int TScanStringCore::lengthNonWhitespace(const TCodeUnit* text) {
  return LengthWhile(text, [](TCodeUnit unit) { return !TCType::isSpace(unit); });
}

int TScanStringCore::lengthWhitespace(const TCodeUnit* text) {
  return LengthWhile(text, [](TCodeUnit unit) { return TCType::isSpace(unit); });
}

int TScanStringCore::lengthString(const TCodeUnit* text, int max) {
  if (max < 0) return TStringCore::length(text);
  const TCodeUnit* end = text;
  while (*end != 0 && end - text < max) ++end;
  return static_cast<int>(end - text);
}

// ---- Tokens

TScanStringCore& TScanStringCore::skipAnyOf(const TCodeUnit* set) { return move(lengthAnyOf(rest(), set)); }

TScanStringCore& TScanStringCore::readAnyOf(TStringCore& out, const TCodeUnit* set) {
  return deliver(out, lengthAnyOf(rest(), set));
}

TScanStringCore& TScanStringCore::skipAnyNotOf(const TCodeUnit* set) { return move(lengthAnyNotOf(rest(), set)); }

TScanStringCore& TScanStringCore::readAnyNotOf(TStringCore& out, const TCodeUnit* set) {
  return deliver(out, lengthAnyNotOf(rest(), set));
}

TScanStringCore& TScanStringCore::skipBool() { return move(lengthBool(rest())); }

TScanStringCore& TScanStringCore::readBool(bool& out) {
  const int behind = indexBehind(lengthBool(rest()));
  const int first = *rest() | CaseBit;
  out = first == u'1' || first == u't' || first == u'y';
  m_index = behind;
  return *this;
}

TScanStringCore& TScanStringCore::skipInt(int base) { return move(lengthInt(rest(), base)); }

TScanStringCore& TScanStringCore::skipFloat() { return move(lengthFloat(rest())); }

// Whatever takes memory comes before the first change, so that only a token that is no number leaves a mark.
template <class Number>
bool TScanStringCore::readNumber(Number& out, Number (TStringCore::*convert)(bool* ok) const) {
  const int length = lengthFloat(rest());
  const int behind = indexBehind(length);
  const TStringCore token(rest(), length);
  bool isNumber = false;
  const Number value = (token.*convert)(&isNumber);
  m_index = behind;
  out = value;
  return isNumber;
}

TScanStringCore& TScanStringCore::readFloat(float& out) {
  if (!readNumber(out, &TStringCore::toFloat)) {
    Fail("TScanStringCore::readFloat: Float value not found.", TError::Client, 0x85FD6267,
         "QuillonException_AutoGen_0x85FD6267");
  }
  return *this;
}

TScanStringCore& TScanStringCore::readFloat(double& out) {
  if (!readNumber(out, &TStringCore::toDouble)) {
    Fail("TScanStringCore::readDouble: Float value not found.", TError::Client, 0x930719DA,
         "QuillonException_AutoGen_0x930719DA");
  }
  return *this;
}

TScanStringCore& TScanStringCore::skipLine() {
  const int length = lengthLine(rest());
  return move(length + lengthNewline(rest() + length));
}

TScanStringCore& TScanStringCore::readLine(TStringCore& out) {
  const int length = lengthLine(rest());
  const int behind = indexBehind(length + lengthNewline(rest() + length));
  out.assign(rest(), length);
  m_index = behind;
  return *this;
}

TScanStringCore& TScanStringCore::skipNewline() { return move(lengthNewline(rest())); }

TScanStringCore& TScanStringCore::skipNonWhitespace() { return move(lengthNonWhitespace(rest())); }

TScanStringCore& TScanStringCore::readNonWhitespace(TStringCore& out) {
  return deliver(out, lengthNonWhitespace(rest()));
}

TScanStringCore& TScanStringCore::skipWhitespace() { return move(lengthWhitespace(rest())); }

TScanStringCore& TScanStringCore::skipString(int max) { return move(lengthString(rest(), max)); }

TScanStringCore& TScanStringCore::readString(TStringCore& out, int max) {
  return deliver(out, lengthString(rest(), max));
}

TScanStringCore& TScanStringCore::skip(const TCodeUnit* text) {
  text = TextOrNothing(text);
  const TCodeUnit* at = rest();
  // The rest ends with a NUL, which equals no unit of the text.
  for (; *text != 0; ++text, ++at) {
    if (*at != *text) {
      Fail("TScanStringCore::skip: String mismatch.", TError::Client, 0x9DAC629F,
           "QuillonException_AutoGen_0x9DAC629F");
    }
  }
  return move(LengthBetween(rest(), at));
}

// ---- The exception

TScanStringCore::Exception::Exception(const TStringCore& message, const TError::ErrorInfo& info)
    : QuillonException(message, info) {}
TScanStringCore::Exception::Exception(const Exception&) = default;
TScanStringCore::Exception::Exception(Exception&&) = default;
TScanStringCore::Exception& TScanStringCore::Exception::operator=(const Exception&) = default;
TScanStringCore::Exception& TScanStringCore::Exception::operator=(Exception&&) = default;
TScanStringCore::Exception::~Exception() = default;

TScanStringCore::Exception* TScanStringCore::Exception::Clone() const { return new Exception(*this); }

void TScanStringCore::Exception::Throw() const { throw Exception(*this); }
