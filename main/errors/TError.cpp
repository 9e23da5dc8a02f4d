#include "qilsys/TError.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <stdexcept>
#include <string>
#include <string_view>

namespace TError {
namespace {

struct SourceName {
  ErrorSource source;
  const char* name;
};

constexpr std::array s_sourceNames = {
    SourceName{Client, "Client"},   SourceName{Configuration, "Configuration"},
    SourceName{Content, "Content"}, SourceName{DataSource, "DataSource"},
    SourceName{System, "System"},
};

// The index is the status.
constexpr std::array s_statusNames = {
    "OK",        "CANCELLED",       "UNKNOWN",           "INVALID_ARGUMENT",   "DEADLINE_EXCEEDED",
    "NOT_FOUND", "ALREADY_EXISTS",  "PERMISSION_DENIED", "RESOURCE_EXHAUSTED", "FAILED_PRECONDITION",
    "ABORTED",   "OUT_OF_RANGE",    "UNIMPLEMENTED",     "INTERNAL",           "UNAVAILABLE",
    "DATA_LOSS", "UNAUTHENTICATED",
};

bool EqualIgnoringCase(const TStringCore& a, const char* b) {
  return a.compare(TStringCore(b), TStringCore::CaseInsensitive) == 0;
}

// The classes of the "C" locale, whatever the host's locale is.
constexpr bool IsDigit(char c) { return '0' <= c && c <= '9'; }
constexpr bool IsLetter(char c) { return ('A' <= c && c <= 'Z') || ('a' <= c && c <= 'z'); }
constexpr bool IsHexDigit(char c) { return IsDigit(c) || ('A' <= c && c <= 'F') || ('a' <= c && c <= 'f'); }

constexpr std::string_view s_codePrefix = "0x";

// The three forms are matched by hand: the text comes from outside, and the run-time library's regular expressions
// recurse once a character.
bool IsStatusText(std::string_view text) {  // ^[0-9]{1,2}$
  return (text.size() == 1 || text.size() == 2) && std::ranges::all_of(text, IsDigit);
}
bool IsSourceText(std::string_view text) {  // ^[A-Za-z]+$
  return !text.empty() && std::ranges::all_of(text, IsLetter);
}
bool IsCodeText(std::string_view text) {  // ^0x[0-9A-Fa-f]{8}$
  return text.size() == 10 && text.starts_with(s_codePrefix) &&
         std::ranges::all_of(text.substr(s_codePrefix.size()), IsHexDigit);
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
  const auto found = std::ranges::find(s_sourceNames, source, &SourceName::source);
  return found != s_sourceNames.end() ? TStringCore(found->name) : TStringCore("NeedsClassification");
}

ErrorSource GetErrorSourceFromString(const TStringCore& name) {
  const auto found =
      std::ranges::find_if(s_sourceNames, [&name](const SourceName& row) { return EqualIgnoringCase(name, row.name); });
  return found != s_sourceNames.end() ? found->source : NeedsClassification;
}

TStringCore GetStatusCodeAsString(grpc::StatusCode status) {
  const int index = status;
  const bool hasName = 0 <= index && index < static_cast<int>(s_statusNames.size());
  return TStringCore(hasName ? s_statusNames[static_cast<std::size_t>(index)] : "DO_NOT_USE");
}

grpc::StatusCode GetStatusCodeFromString(const TStringCore& name) {
  const auto found =
      std::ranges::find_if(s_statusNames, [&name](const char* row) { return EqualIgnoringCase(name, row); });
  return found != s_statusNames.end() ? static_cast<grpc::StatusCode>(found - s_statusNames.begin())
                                      : grpc::StatusCode::DO_NOT_USE;
}

ErrorInfo::ErrorInfo(const QuillonError& error, ErrorSource source, grpc::StatusCode status)
    : m_error(error), m_source(source), m_status(status) {}

ErrorInfo::ErrorInfo(const ErrorInfo&) = default;
ErrorInfo& ErrorInfo::operator=(const ErrorInfo&) = default;
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

void ErrorInfo::SetAuxAttrs(const std::map<TStringCore, TStringCore>& attrs) { m_auxAttrs = attrs; }

TStringCore ErrorInfo::GetAuxDatum(const TStringCore& key) const {
  const auto found = m_auxAttrs.find(key);
  return found != m_auxAttrs.end() ? found->second : TStringCore();
}

void ErrorInfo::SetAuxDatum(const TStringCore& key, const TStringCore& value) {
  m_auxAttrs.insert_or_assign(key, value);
}

void ErrorInfo::GetMembersAsStrings(TStringCore& code, TStringCore& source, TStringCore& status) const {
  status = TStringCore::number(static_cast<int>(m_status));
  source = GetErrorSourceAsString(m_source);
  code = u"0x" + TStringCore::number(m_error.GetCode(), 16).rightJustified(8, u'0').toUpper();
}

ErrorInfo ErrorInfo::FromStringifiedMembers(const TStringCore& code, const TStringCore& source,
                                            const TStringCore& status) {
  const std::string codeText = code.toStdString();
  const std::string statusText = status.toStdString();
  Require(IsStatusText(statusText), 1);
  Require(IsSourceText(source.toStdString()), 2);
  Require(IsCodeText(codeText), 3);

  const unsigned int statusNumber = ToNumber(statusText, 10);
  const unsigned int codeNumber = ToNumber(std::string_view(codeText).substr(s_codePrefix.size()), 16);
  const ErrorSource knownSource = GetErrorSourceFromString(source);
  Require(statusNumber < s_statusNames.size(), 4);
  // No text that is left by now has a zero code by another spelling; this guards the one code that means no error.
  Require(codeNumber != 0 || codeText == "0x00000000", 5);
  // The look-up gives this source for unknown names too; only the name itself may have meant it.
  Require(knownSource != NeedsClassification ||
              GetErrorSourceAsString(knownSource).toLower().compare(source.toLower()) == 0,
          6);

  return ErrorInfo(QuillonError::MakeError(codeNumber, TStringCore("AutoGen_") + code), knownSource,
                   static_cast<grpc::StatusCode>(statusNumber));
}

}  // namespace TError
