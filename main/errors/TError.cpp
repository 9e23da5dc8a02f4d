// The record of an error, the names of its two enumerations, and the strings by which it crosses a boundary.
#include "qilsys/TError.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <stdexcept>
#include <string>
#include <string_view>
#include <utility>

namespace TError {
namespace {

struct SourceName {
  ErrorSource source;
  const char* name;
};

constexpr std::array SourceNames = {
    SourceName{Client, "Client"},   SourceName{Configuration, "Configuration"},
    SourceName{Content, "Content"}, SourceName{DataSource, "DataSource"},
    SourceName{System, "System"},
};

// The index is the status.
constexpr std::array StatusNames = {
    "OK",        "CANCELLED",       "UNKNOWN",           "INVALID_ARGUMENT",   "DEADLINE_EXCEEDED",
    "NOT_FOUND", "ALREADY_EXISTS",  "PERMISSION_DENIED", "RESOURCE_EXHAUSTED", "FAILED_PRECONDITION",
    "ABORTED",   "OUT_OF_RANGE",    "UNIMPLEMENTED",     "INTERNAL",           "UNAVAILABLE",
    "DATA_LOSS", "UNAUTHENTICATED",
};

bool EqualIgnoringCase(const TStringCore& a, const char* b) {
  return a.compare(TStringCore(b), TStringCore::CaseInsensitive) == 0;
}

constexpr char NameOfOthers[] = "NeedsClassification";

// The classes and the case of the "C" locale, whatever the host's locale is: in Turkish, "I" is no capital of "i".
constexpr bool IsDigit(char c) { return '0' <= c && c <= '9'; }
constexpr bool IsLetter(char c) { return ('A' <= c && c <= 'Z') || ('a' <= c && c <= 'z'); }
constexpr bool IsHexDigit(char c) { return IsDigit(c) || ('A' <= c && c <= 'F') || ('a' <= c && c <= 'f'); }

constexpr char ToLower(char c) { return 'A' <= c && c <= 'Z' ? static_cast<char>(c | 0x20) : c; }

bool EqualAsAscii(std::string_view a, std::string_view b) { return std::ranges::equal(a, b, {}, ToLower, ToLower); }

constexpr std::string_view CodePrefix = "0x";

// The three forms are matched by hand: the text comes from outside, and the run-time library's regular expressions
// recurse once a character.
bool IsStatusText(std::string_view text) {  // ^[0-9]{1,2}$
  return (text.size() == 1 || text.size() == 2) && std::ranges::all_of(text, IsDigit);
}
bool IsSourceText(std::string_view text) {  // ^[A-Za-z]+$
  return !text.empty() && std::ranges::all_of(text, IsLetter);
}
bool IsCodeText(std::string_view text) {  // ^0x[0-9A-Fa-f]{8}$
  return text.size() == 10 && text.starts_with(CodePrefix) &&
         std::ranges::all_of(text.substr(CodePrefix.size()), IsHexDigit);
}

// The code with its prefix, in eight upper-case digits.
TStringCore CodeText(unsigned int code) {
  constexpr int Digits = 8;
  char text[] = "0x00000000";
  for (char* digit = text + CodePrefix.size() + Digits; code != 0; code >>= 4) *--digit = "0123456789ABCDEF"[code & 15];
  return TStringCore(text);
}

unsigned int ToNumber(std::string_view digits, int base) {
  unsigned int value = 0;
  std::from_chars(digits.data(), digits.data() + digits.size(), value, base);
  return value;
}

void Require(bool condition, int problem) {
  if (!condition) {
    throw std::invalid_argument("Encountered a problem (" + std::to_string(problem) +
                                ") during TError::ErrorInfo unmarshaling");
  }
}

}  // namespace

TStringCore GetErrorSourceAsString(ErrorSource source) {
  const auto found = std::ranges::find(SourceNames, source, &SourceName::source);
  return found != SourceNames.end() ? TStringCore(found->name) : TStringCore(NameOfOthers);
}

ErrorSource GetErrorSourceFromString(const TStringCore& name) {
  const auto found =
      std::ranges::find_if(SourceNames, [&name](const SourceName& row) { return EqualIgnoringCase(name, row.name); });
  return found != SourceNames.end() ? found->source : NeedsClassification;
}

TStringCore GetStatusCodeAsString(grpc::StatusCode status) {
  const int index = status;
  const bool hasName = 0 <= index && index < static_cast<int>(StatusNames.size());
  return TStringCore(hasName ? StatusNames[static_cast<std::size_t>(index)] : "DO_NOT_USE");
}

grpc::StatusCode GetStatusCodeFromString(const TStringCore& name) {
  const auto found =
      std::ranges::find_if(StatusNames, [&name](const char* row) { return EqualIgnoringCase(name, row); });
  return found != StatusNames.end() ? static_cast<grpc::StatusCode>(found - StatusNames.begin())
                                    : grpc::StatusCode::DO_NOT_USE;
}

ErrorInfo::ErrorInfo(const QuillonError& error, ErrorSource source, grpc::StatusCode status)
    : m_error(error), m_source(source), m_status(status) {}

ErrorInfo::ErrorInfo(const ErrorInfo&) = default;
ErrorInfo& ErrorInfo::operator=(const ErrorInfo& other) {
  // First what may fail.
  SetAuxAttrs(other.m_auxAttrs);
  m_error = other.m_error;
  m_source = other.m_source;
  m_status = other.m_status;
  return *this;
}
ErrorInfo::~ErrorInfo() = default;

bool ErrorInfo::operator==(const ErrorInfo& other) const {
  return m_status == other.m_status && m_source == other.m_source && m_error.GetCode() == other.m_error.GetCode();
}

bool ErrorInfo::operator!=(const ErrorInfo& other) const { return !(*this == other); }

ErrorInfo ErrorInfo::NoError() { return ErrorInfo(QuillonError::NoError(), NeedsClassification, grpc::StatusCode::OK); }

ErrorInfo ErrorInfo::InvalidErrorInfo() {
  return ErrorInfo(QuillonError::MakeError(0xBADBEEF5, "QilsysInvalidErrorInfo_0xBADBEEF5"), System,
                   grpc::StatusCode::INTERNAL);
}

ErrorInfo ErrorInfo::TestError() {
  return ErrorInfo(QuillonError::NoError(), Configuration, grpc::StatusCode::INTERNAL);
}

std::map<TStringCore, TStringCore> ErrorInfo::GetAuxAttrs() const { return m_auxAttrs; }

void ErrorInfo::SetAuxAttrs(const std::map<TStringCore, TStringCore>& attrs) {
  if (&attrs == &m_auxAttrs) return;
  std::map<TStringCore, TStringCore> copy(attrs);
  m_auxAttrs.swap(copy);
}

TStringCore ErrorInfo::GetAuxDatum(const TStringCore& key) const {
  const auto found = m_auxAttrs.find(key);
  return found != m_auxAttrs.end() ? found->second : TStringCore();
}

void ErrorInfo::SetAuxDatum(const TStringCore& key, const TStringCore& value) {
  m_auxAttrs.insert_or_assign(key, value);
}

void ErrorInfo::GetMembersAsStrings(TStringCore& code, TStringCore& source, TStringCore& status) const {
  TStringCore statusText = TStringCore::number(static_cast<int>(m_status));
  TStringCore sourceText = GetErrorSourceAsString(m_source);
  TStringCore codeText = CodeText(m_error.GetCode());
  status = std::move(statusText);
  source = std::move(sourceText);
  code = std::move(codeText);
}

ErrorInfo ErrorInfo::FromStringifiedMembers(const TStringCore& code, const TStringCore& source,
                                            const TStringCore& status) {
  const std::string codeText = code.toStdString();
  const std::string sourceText = source.toStdString();
  const std::string statusText = status.toStdString();
  Require(IsStatusText(statusText), 1);
  Require(IsSourceText(sourceText), 2);
  Require(IsCodeText(codeText), 3);

  const unsigned int statusNumber = ToNumber(statusText, 10);
  const unsigned int codeNumber = ToNumber(std::string_view(codeText).substr(CodePrefix.size()), 16);
  const ErrorSource knownSource = GetErrorSourceFromString(source);
  Require(statusNumber < StatusNames.size(), 4);
  // No text that is left by now has a zero code by another spelling; this guards the one code that means no error.
  Require(codeNumber != 0 || codeText == "0x00000000", 5);
  // The look-up gives this source for unknown names too; only the name itself may have meant it.
  Require(knownSource != NeedsClassification || EqualAsAscii(sourceText, NameOfOthers), 6);

  return ErrorInfo(QuillonError::MakeError(codeNumber, TStringCore("AutoGen_") + code), knownSource,
                   static_cast<grpc::StatusCode>(statusNumber));
}

}  // namespace TError
