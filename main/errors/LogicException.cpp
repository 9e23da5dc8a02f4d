#include "qilsys/LogicException.h"

#include <atomic>
#include <string>
#include <utility>

#include "base/DebugChannel_platform.h"
#include "errors/LookupTStr.h"
#include "qilsys/TFormatStringCore.h"

namespace {

using LookupFunction = std::function<TStringCore(unsigned int)>;

constinit std::atomic<AssertHooks::LogicAssertHook> g_hook = nullptr;
constinit std::atomic<unsigned int> g_messageId = 0;

// Never destroyed, since an assertion may fail while the process's own statics are.
LookupFunction& Lookup() {
  static LookupFunction& s_lookup = *new LookupFunction([](unsigned int) { return TStringCore("Internal error."); });
  return s_lookup;
}

TError::ErrorInfo UnclassifiedInfo(const QuillonError& error) {
  return TError::ErrorInfo(error, TError::NeedsClassification, grpc::StatusCode::UNKNOWN);
}

TStringCore WithoutTrailingLineFeeds(TStringCore text) {
  text.trimRight('\n');
  return text;
}

const char* TextOrEmpty(const char* text) { return text ? text : ""; }

[[noreturn]] void ThrowWithoutHook(const char* label, const char* file, int line, const char* message) {
  const std::string text = std::string(label) + " failed (but no hook has been set) at " + TextOrEmpty(file) +
                           " line " + std::to_string(line) + ": " + TextOrEmpty(message);
  qilsys::base::WriteToDebugChannel(text.c_str());
  throw LogicException(TStringCore::fromStdString(text),
                       TError::ErrorInfo(QuillonError::MakeError(0xA2BCBC42, "QuillonException_AutoGen_0xA2BCBC42"),
                                         TError::Client, grpc::StatusCode::UNKNOWN));
}

}  // namespace

void AssertHooks::SetLogicAssertHook(LogicAssertHook hook) { g_hook = hook; }

AssertHooks::LogicAssertHook AssertHooks::GetLogicAssertHook() { return g_hook; }

TStringCore LookupTStr(unsigned int id) { return Lookup()(id); }

void InjectLookupTStr(std::function<TStringCore(unsigned int)> lookup) { Lookup() = std::move(lookup); }

void ThrowLogicException(char const* file, int line, char const* message, QuillonError const& error) {
  if (const AssertHooks::LogicAssertHook hook = g_hook) {
    hook(file, line, message, error);
    return;
  }
  ThrowWithoutHook("LogicAssert", file, line, message);
}

void ThrowLogicException(char const* file, int line, char const* message) {
  if (const AssertHooks::LogicAssertHook hook = g_hook) {
    hook(file, line, message, QuillonError::MakeError(0x6EA18A9E, "LogicException_0x6EA18A9E"));
    return;
  }
  ThrowWithoutHook("LogicAssert", file, line, message);
}

LogicException::LogicException(const TStringCore& internalMessage, const TError::ErrorInfo& info)
    : QuillonException(LookupTStr(g_messageId), info), m_internalMessage(WithoutTrailingLineFeeds(internalMessage)) {
  if (m_internalMessage.empty()) {
    m_internalMessage = TStringCore("No details given");
  }
}

LogicException::LogicException(const TStringCore& internalMessage, const QuillonError& error)
    : LogicException(internalMessage, UnclassifiedInfo(error)) {}

LogicException::LogicException(const TFormatStringCore& internalMessage, const TError::ErrorInfo& info)
    : LogicException(internalMessage.result(), info) {}

LogicException::LogicException(const TFormatStringCore& internalMessage, const QuillonError& error)
    : LogicException(internalMessage.result(), UnclassifiedInfo(error)) {}

LogicException::LogicException(const std::list<TStringCore>& messages, const TStringCore& internalMessage)
    : QuillonException(messages), m_internalMessage(WithoutTrailingLineFeeds(internalMessage)) {
  StackMessageFront(LookupTStr(g_messageId));
}

LogicException::LogicException(const LogicException&) = default;
LogicException& LogicException::operator=(const LogicException&) = default;
LogicException::~LogicException() = default;

LogicException* LogicException::Clone() const { return new LogicException(*this); }

void LogicException::Throw() const { throw LogicException(*this); }

TStringCore LogicException::CollateMessagesForLog() const {
  return TFormatStringCore("%1\nLogicException details: %2\n")
      .arg(GetConcatenatedMessages(), m_internalMessage)
      .result();
}

void LogicException::SetLogicExceptionMessageId(unsigned int id) {
  if (g_messageId != 0) {
    throw LogicException(TStringCore("Cannot set the logic exception message id twice."), TError::ErrorInfo::NoError());
  }
  g_messageId = id;
}
