// The exception with its two lists of messages, and its plain descendants.
#include "qilsys/QuillonException.h"

#include <cstring>

#include "qilsys/TFormatStringCore.h"

namespace {

using Messages = std::list<TStringCore>;

constexpr TCodeUnit LineFeed = 10;

// A list of this one message, or of none when it is empty. What is spliced from here can no longer fail.
Messages OneMessage(const TStringCore& message) { return message.empty() ? Messages() : Messages(1, message); }

TStringCore TextOf(const std::exception& exception) {
  // Every runtime has words of its own for an exception without a text, which are those of the base class; ours hold for
  // all of them.
  const char* const text = exception.what();
  const bool isOwn = text != nullptr && std::strcmp(text, std::exception().what()) != 0;
  return isOwn ? TStringCore::fromLocal8Bit(text) : TStringCore("Unknown exception");
}

template <class Message>
[[noreturn]] void StackAndRethrow(const Message& message) {
  try {
    throw;
  } catch (QuillonException& exception) {
    exception.StackMessage(message);
    throw;
  }
}

}  // namespace

QuillonException::QuillonException() : QuillonException(TError::ErrorInfo::NoError()) {}

QuillonException::QuillonException(const TError::ErrorInfo& info) : QuillonException(Messages(), info) {}

QuillonException::QuillonException(const TStringCore& message)
    : QuillonException(message, TError::ErrorInfo::NoError()) {}

QuillonException::QuillonException(const TStringCore& message, const TError::ErrorInfo& info)
    : QuillonException(OneMessage(message), info) {}

QuillonException::QuillonException(const TFormatStringCore& message)
    : QuillonException(message, TError::ErrorInfo::NoError()) {}

QuillonException::QuillonException(const TFormatStringCore& message, const TError::ErrorInfo& info)
    : QuillonException(info) {
  StackMessage(message);
}

QuillonException::QuillonException(const std::list<TStringCore>& messages)
    : QuillonException(messages, TError::ErrorInfo::NoError()) {}

QuillonException::QuillonException(const std::list<TStringCore>& messages, const TError::ErrorInfo& info)
    : m_messages(std::make_unique<Messages>(messages)),
      m_redactedMessages(std::make_unique<Messages>()),
      m_errorInfo(std::make_shared<TError::ErrorInfo>(info)) {}

QuillonException::QuillonException(const std::exception& exception)
    : QuillonException(exception, TError::ErrorInfo::NoError()) {}

QuillonException::QuillonException(const std::exception& exception, const TError::ErrorInfo& info)
    : QuillonException(TextOf(exception), info) {}

QuillonException::QuillonException(const QuillonException& other)
    : m_messages(std::make_unique<Messages>(*other.m_messages)),
      m_redactedMessages(std::make_unique<Messages>(*other.m_redactedMessages)),
      m_errorInfo(other.m_errorInfo) {}

QuillonException& QuillonException::operator=(const QuillonException& other) {
  if (this != &other) {
    Messages messages(*other.m_messages);
    Messages redactedMessages(*other.m_redactedMessages);
    m_messages->swap(messages);
    m_redactedMessages->swap(redactedMessages);
    m_errorInfo = other.m_errorInfo;
  }
  return *this;
}

QuillonException::~QuillonException() = default;

QuillonException* QuillonException::Clone() const { return new QuillonException(*this); }

void QuillonException::Throw() const { throw QuillonException(*this); }

TStringCore QuillonException::GetConcatenatedMessages() const {
  TStringCore result;
  for (const TStringCore& message : *m_messages) {
    result.append(message);
    if (message.empty() || message.back() != LineFeed) {
      result.append(LineFeed);
    }
  }
  return result;
}

TStringCore QuillonException::GetMessagesFront() const {
  return m_messages->empty() ? TStringCore() : m_messages->front();
}

TStringCore QuillonException::CollateMessagesForLog() const { return QuillonException::GetConcatenatedMessages(); }

void QuillonException::SetMessage(const TStringCore& message) {
  Messages messages = OneMessage(message);
  m_messages->swap(messages);
  m_redactedMessages->clear();
}

void QuillonException::SetMessage(const TFormatStringCore& message) {
  const TStringCore text = message.result();
  Messages messages = OneMessage(text);
  Messages redactedMessages = OneMessage(text);
  m_messages->swap(messages);
  m_redactedMessages->swap(redactedMessages);
}

void QuillonException::StackMessage(const TStringCore& message) {
  m_messages->splice(m_messages->end(), OneMessage(message));
}

void QuillonException::StackMessage(const TFormatStringCore& message) {
  const TStringCore text = message.result();
  Messages messages = OneMessage(text);
  m_redactedMessages->splice(m_redactedMessages->end(), OneMessage(text));
  m_messages->splice(m_messages->end(), messages);
}

void QuillonException::StackMessageFront(const TStringCore& message) {
  m_messages->splice(m_messages->begin(), OneMessage(message));
}

void QuillonException::StackMessageFront(const TFormatStringCore& message) {
  const TStringCore text = message.result();
  Messages messages = OneMessage(text);
  m_redactedMessages->splice(m_redactedMessages->begin(), OneMessage(text));
  m_messages->splice(m_messages->begin(), messages);
}

void QuillonException::ClearMessages() { m_messages->clear(); }

std::vector<TStringCore> QuillonException::GetMessagesVector() const {
  return std::vector<TStringCore>(m_messages->begin(), m_messages->end());
}

void QuillonException::ToString(const std::exception& exception, TStringCore& out) { out = TextOf(exception); }

QuillonOutOfMemoryException::QuillonOutOfMemoryException(const TError::ErrorInfo& info) : QuillonException(info) {
  StackMessage(TStringCore("Out of memory"));
}

QuillonOutOfMemoryException::QuillonOutOfMemoryException(const TStringCore& message, const TError::ErrorInfo& info)
    : QuillonException(message, info) {}

QuillonOutOfMemoryException::QuillonOutOfMemoryException(const std::list<TStringCore>& messages,
                                                         const TError::ErrorInfo& info)
    : QuillonException(messages, info) {}

QuillonOutOfMemoryException::QuillonOutOfMemoryException(const QuillonOutOfMemoryException&) = default;
QuillonOutOfMemoryException& QuillonOutOfMemoryException::operator=(const QuillonOutOfMemoryException&) = default;
QuillonOutOfMemoryException::~QuillonOutOfMemoryException() = default;

QuillonOutOfMemoryException* QuillonOutOfMemoryException::Clone() const {
  return new QuillonOutOfMemoryException(*this);
}

void QuillonOutOfMemoryException::Throw() const { throw QuillonOutOfMemoryException(*this); }

QuillonUserErrorException::QuillonUserErrorException(const TStringCore& message, const TError::ErrorInfo& info)
    : QuillonException(message, info) {}

QuillonUserErrorException::QuillonUserErrorException(const TFormatStringCore& message, const TError::ErrorInfo& info)
    : QuillonException(message, info) {}

QuillonUserErrorException::QuillonUserErrorException(const QuillonUserErrorException&) = default;
QuillonUserErrorException& QuillonUserErrorException::operator=(const QuillonUserErrorException&) = default;
QuillonUserErrorException::~QuillonUserErrorException() = default;

void StackExceptionAndRethrow(const TStringCore& message) { StackAndRethrow(message); }

void StackExceptionAndRethrow(const TFormatStringCore& message) { StackAndRethrow(message); }
