/// The root of the tree of exceptions, and stacking of messages on an exception in flight.
///
/// | class                          | `Clone` and `Throw` give  |
/// |--------------------------------|---------------------------|
/// | `QuillonException`             | the same class            |
/// | `QuillonOutOfMemoryException`  | the same class            |
/// | `QuillonUserErrorException`    | a plain QuillonException  |
///
/// A class that overrides neither operation loses its type on the far side of a copy, and keeps messages and error.
/// `TStringCore::Exception` stands outside this tree, since the string lies beneath it.
#pragma once

#include <exception>
#include <list>
#include <memory>
#include <vector>

#include "qilsys/Export.h"
#include "qilsys/TError.h"
#include "qilsys/TStringCore.h"

class TFormatStringCore;

/// A failure with a stack of messages, the oldest first, and the record of its error. Text that came from a format
/// string stands also on the redacted list; plain text does not. Not derived from std::exception. Copies share the
/// record, so a copy may be thrown on another thread; one object belongs to one thread at a time.
class QILSYS_API QuillonException {
 public:
  /// No messages. Without a record the error is `TError::ErrorInfo::NoError()`, here and below.
  QuillonException();
  explicit QuillonException(const TError::ErrorInfo& info);
  /// One message; an empty text adds none.
  explicit QuillonException(const TStringCore& message);
  QuillonException(const TStringCore& message, const TError::ErrorInfo& info);
  /// One message on both lists; raises what the format's `result()` raises.
  explicit QuillonException(const TFormatStringCore& message);
  QuillonException(const TFormatStringCore& message, const TError::ErrorInfo& info);
  /// The messages as they are, empty ones included.
  explicit QuillonException(const std::list<TStringCore>& messages);
  QuillonException(const std::list<TStringCore>& messages, const TError::ErrorInfo& info);
  /// The text of `what()`, read in the local 8-bit encoding.
  explicit QuillonException(const std::exception& exception);
  QuillonException(const std::exception& exception, const TError::ErrorInfo& info);
  QuillonException(const QuillonException& other);
  QuillonException& operator=(const QuillonException& other);

  virtual ~QuillonException();
  /// A copy on the heap, of this class by its own copy constructor. The caller owns it.
  virtual QuillonException* Clone() const;
  /// Throws a copy by value.
  [[noreturn]] virtual void Throw() const;
  /// All messages in order, each ended by one line feed unless it brings its own.
  virtual TStringCore GetConcatenatedMessages() const;
  /// The first message, or an empty string.
  virtual TStringCore GetMessagesFront() const;
  /// What a log shows; more than the messages in classes that keep internal details.
  virtual TStringCore CollateMessagesForLog() const;

  /// Replaces the messages of both lists. An empty text leaves none.
  void SetMessage(const TStringCore& message);
  void SetMessage(const TFormatStringCore& message);
  /// Adds a message at the end; an empty text adds none.
  void StackMessage(const TStringCore& message);
  void StackMessage(const TFormatStringCore& message);
  /// Adds a message at the head; an empty text adds none.
  void StackMessageFront(const TStringCore& message);
  void StackMessageFront(const TFormatStringCore& message);
  /// Removes the messages. The redacted list keeps what it holds.
  void ClearMessages();

  const std::list<TStringCore>& GetMessages() const { return *m_messages; }
  const std::list<TStringCore>& GetRedactedMessages() const { return *m_redactedMessages; }
  std::vector<TStringCore> GetMessagesVector() const;

  const TError::ErrorInfo& GetErrorInfo() const { return *m_errorInfo; }
  const QuillonError& GetError() const { return m_errorInfo->GetQuillonError(); }
  unsigned int GetErrorCode() const { return GetError().GetCode(); }
  const TStringCore& GetErrorName() const { return GetError().GetCodeName(); }
  TError::ErrorSource GetErrorSource() const { return m_errorInfo->GetErrorSource(); }

  /// Assigns the text of `what()`, read in the local 8-bit encoding.
  static void ToString(const std::exception& exception, TStringCore& out);

 private:
  std::unique_ptr<std::list<TStringCore>> m_messages;
  std::unique_ptr<std::list<TStringCore>> m_redactedMessages;
  std::shared_ptr<TError::ErrorInfo> m_errorInfo;
};

/// Memory ran out.
class QILSYS_API QuillonOutOfMemoryException : public QuillonException {
 public:
  /// The one message "Out of memory".
  explicit QuillonOutOfMemoryException(const TError::ErrorInfo& info);
  QuillonOutOfMemoryException(const TStringCore& message, const TError::ErrorInfo& info);
  QuillonOutOfMemoryException(const std::list<TStringCore>& messages, const TError::ErrorInfo& info);
  QuillonOutOfMemoryException(const QuillonOutOfMemoryException& other);
  QuillonOutOfMemoryException& operator=(const QuillonOutOfMemoryException& other);
  ~QuillonOutOfMemoryException() override;

  QuillonOutOfMemoryException* Clone() const override;
  [[noreturn]] void Throw() const override;
};

/// The user made a mistake. A clone is a plain QuillonException: a handler for this class fires only on the way up
/// from where it was raised.
class QILSYS_API QuillonUserErrorException : public QuillonException {
 public:
  QuillonUserErrorException(const TStringCore& message, const TError::ErrorInfo& info);
  QuillonUserErrorException(const TFormatStringCore& message, const TError::ErrorInfo& info);
  QuillonUserErrorException(const QuillonUserErrorException& other);
  QuillonUserErrorException& operator=(const QuillonUserErrorException& other);
  ~QuillonUserErrorException() override;
};

/// Called in a catch block: adds the message at the end of a QuillonException in flight and rethrows that same
/// object. Any other exception passes on unchanged. With no exception in flight the process terminates.
[[noreturn]] QILSYS_API void StackExceptionAndRethrow(const TStringCore& message);
[[noreturn]] QILSYS_API void StackExceptionAndRethrow(const TFormatStringCore& message);
