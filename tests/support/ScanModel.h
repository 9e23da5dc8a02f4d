/// Tokens a second way: what each comes to, worked out on a plain text, and how to ask a scanner for it.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

#include "qilsys/TCType.h"
#include "qilsys/TScanStringCore.h"
#include "support/StringText.h"

namespace qilsys::test {

enum class Token {
  AnyOf,
  AnyNotOf,
  Bool,
  Int,
  Float,
  Double,
  Line,
  Newline,
  NonWhitespace,
  Whitespace,
  String,
  Text,
};
inline constexpr int TokenCount = 12;

/// A token with what its operation is given besides.
struct TokenRequest {
  Token token;
  std::u16string units = {};  ///< The set of AnyOf and AnyNotOf, the text of Text; without NULs.
  int number = 0;             ///< The base of Int, the most units of String.
};

/// What becomes of a request: a failure and its message, or none. `moved` counts for a failed read of a number too.
struct ExpectedToken {
  const char* failure = nullptr;
  int length = 0;
  int moved = 0;
};

/// What reading delivered: the one of these that the token has.
struct TokenValues {
  TStringCore text = u"as it was, and longer than what fits inline";
  bool flag = true;
  float single = -1;
  double number = -1;
};

namespace scan_model {

inline ExpectedToken Plain(std::size_t length) { return {nullptr, static_cast<int>(length), static_cast<int>(length)}; }

/// The units at the start that satisfy the test.
template <class Test>
std::size_t CountWhile(std::u16string_view text, Test test) {
  std::size_t count = 0;
  while (count < text.size() && test(text[count])) ++count;
  return count;
}

inline bool IsSpace(char16_t unit) { return TCType::isSpace(static_cast<TCodeUnit>(unit)); }

inline std::u16string AsciiLowered(std::u16string_view text) {
  std::u16string lowered(text);
  for (char16_t& unit : lowered) unit = static_cast<char16_t>(unit >= u'A' && unit <= u'Z' ? unit + 32 : unit);
  return lowered;
}

inline ExpectedToken Bool(std::u16string_view text) {
  const std::u16string lowered = AsciiLowered(text);
  for (const std::u16string_view word : {u"1", u"0", u"true", u"false", u"yes", u"no"}) {
    if (lowered.starts_with(word)) return Plain(word.size());
  }
  return {"TScanStringCore::lengthBool: Boolean value not found."};
}

inline ExpectedToken Int(std::u16string_view text, int base) {
  const TStringCore whole = TStringCore::fromStdU16String(std::u16string(text));
  try {
    if (const int length = whole.leftIntegerLength(base)) return {nullptr, length, length};
  } catch (const TStringCore::Exception&) {
    return {"TStringCore::parseInteger: base out of range."};
  }
  return {"TScanStringCore::lengthInt: Integer value not found."};
}

inline ExpectedToken Newline(std::u16string_view text) {
  if (text.empty()) return Plain(0);
  if (text.starts_with(u"\r\n") || text.starts_with(u"\n\r")) return Plain(2);
  if (text[0] == u'\n' || text[0] == u'\r') return Plain(1);
  return {"TScanStringCore::lengthNewLine: No new line found."};
}

inline ExpectedToken Line(std::u16string_view text) {
  const std::size_t length = CountWhile(text, [](char16_t unit) { return unit != u'\n'; });
  const std::size_t moved = length + static_cast<std::size_t>(Newline(text.substr(length)).moved);
  return {nullptr, static_cast<int>(length), static_cast<int>(moved)};
}

/// A number, when `convert` is what reads it; a length alone, when it is null.
template <class Number>
ExpectedToken Float(std::u16string_view text, Number (TStringCore::*convert)(bool*) const, const char* refused) {
  const int length = TStringCore::fromStdU16String(std::u16string(text)).leftDoubleLength();
  if (length == 0) return {"TScanStringCore::lengthFloat: Float value not found."};
  bool isNumber = true;
  const std::u16string token(text.substr(0, static_cast<std::size_t>(length)));
  if (convert != nullptr) static_cast<void>((TStringCore::fromStdU16String(token).*convert)(&isNumber));
  return {isNumber ? nullptr : refused, length, length};
}

}  // namespace scan_model

/// What reading (or else skipping) the token at the start of `text` comes to.
inline ExpectedToken ExpectToken(std::u16string_view text, const TokenRequest& request, bool isRead) {
  using namespace scan_model;
  const auto isMember = [&](char16_t unit) { return request.units.find(unit) != std::u16string::npos; };
  switch (request.token) {
    case Token::AnyOf:
      return Plain(CountWhile(text, isMember));
    case Token::AnyNotOf:
      return Plain(CountWhile(text, [&](char16_t unit) { return !isMember(unit); }));
    case Token::Bool:
      return Bool(text);
    case Token::Int:
      return Int(text, request.number);
    case Token::Float:
      return Float(text, isRead ? &TStringCore::toFloat : nullptr,
                   "TScanStringCore::readFloat: Float value not found.");
    case Token::Double:
      return Float(text, isRead ? &TStringCore::toDouble : nullptr,
                   "TScanStringCore::readDouble: Float value not found.");
    case Token::Line:
      return Line(text);
    case Token::Newline:
      return Newline(text);
    case Token::NonWhitespace:
      return Plain(CountWhile(text, [](char16_t unit) { return !IsSpace(unit); }));
    case Token::Whitespace:
      return Plain(CountWhile(text, IsSpace));
    case Token::String:
      return Plain(request.number < 0 ? text.size() : text.substr(0, static_cast<std::size_t>(request.number)).size());
    case Token::Text:
      if (text.starts_with(request.units)) return Plain(request.units.size());
      return {"TScanStringCore::skip: String mismatch."};
  }
  return {};
}

/// Skips the token.
inline void SkipToken(TScanStringCore& scan, const TokenRequest& request) {
  const TStringCore units = TStringCore::fromStdU16String(request.units);
  switch (request.token) {
    case Token::AnyOf:
      return static_cast<void>(scan.skipAnyOf(units.constData()));
    case Token::AnyNotOf:
      return static_cast<void>(scan.skipAnyNotOf(units.constData()));
    case Token::Bool:
      return static_cast<void>(scan.skipBool());
    case Token::Int:
      return static_cast<void>(scan.skipInt(request.number));
    case Token::Float:
    case Token::Double:
      return static_cast<void>(scan.skipFloat());
    case Token::Line:
      return static_cast<void>(scan.skipLine());
    case Token::Newline:
      return static_cast<void>(scan.skipNewline());
    case Token::NonWhitespace:
      return static_cast<void>(scan.skipNonWhitespace());
    case Token::Whitespace:
      return static_cast<void>(scan.skipWhitespace());
    case Token::String:
      return static_cast<void>(scan.skipString(request.number));
    case Token::Text:
      return static_cast<void>(scan.skip(units.constData()));
  }
}

/// Reads the token; false for one that can only be skipped.
inline bool ReadToken(TScanStringCore& scan, const TokenRequest& request, TokenValues& out) {
  const TStringCore units = TStringCore::fromStdU16String(request.units);
  switch (request.token) {
    case Token::AnyOf:
      scan.readAnyOf(out.text, units.constData());
      return true;
    case Token::AnyNotOf:
      scan.readAnyNotOf(out.text, units.constData());
      return true;
    case Token::Bool:
      scan.readBool(out.flag);
      return true;
    case Token::Float:
      scan.readFloat(out.single);
      return true;
    case Token::Double:
      scan.readFloat(out.number);
      return true;
    case Token::Line:
      scan.readLine(out.text);
      return true;
    case Token::NonWhitespace:
      scan.readNonWhitespace(out.text);
      return true;
    case Token::String:
      scan.readString(out.text, request.number);
      return true;
    case Token::Int:
    case Token::Newline:
    case Token::Whitespace:
    case Token::Text:
      return false;
  }
  return false;
}

/// The message of what `action` raises; empty where it goes well.
template <class Action>
std::string ScanFailure(const Action& action) {
  try {
    action();
  } catch (const TScanStringCore::Exception& exception) {
    return Narrow(exception.GetMessagesFront());
  } catch (const TStringCore::Exception& exception) {
    return Narrow(exception.message);
  }
  return {};
}

}  // namespace qilsys::test
