/// Assertions: conditions that only a bug can break, checked in every build, and what happens when one is broken.
#pragma once

#include <functional>
#include <list>

#include "qilsys/Export.h"
#include "qilsys/QuillonError.h"
#include "qilsys/QuillonException.h"
#include "qilsys/TStringCore.h"

/// The host's say in what a broken condition means for it.
namespace AssertHooks {

/// Called on the thread that met the broken condition, on several threads at once if need be. A hook that returns
/// lets the code after the assertion run on; to stop it, throw or end the process. Texts are UTF-8.
using LogicAssertHook = void (*)(char const* file, int line, char const* message, QuillonError const& error);

/// Replaces the hook of the process; null clears it. Takes no lock: call it before other threads start.
QILSYS_API void SetLogicAssertHook(LogicAssertHook hook);
/// The hook of the process, null at start.
QILSYS_API LogicAssertHook GetLogicAssertHook();

}  // namespace AssertHooks

/// A broken condition. The messages show a public text only; the reason is kept apart, for logs.
class QILSYS_API LogicException : public QuillonException {
 public:
  /// The text becomes the internal message, without its trailing line feeds, or "No details given" if nothing is
  /// left. The one message is the public text of the process.
  LogicException(const TStringCore& internalMessage, const TError::ErrorInfo& info);
  /// The same with a record of the error, `NeedsClassification` and "UNKNOWN".
  LogicException(const TStringCore& internalMessage, const QuillonError& error);
  LogicException(const TFormatStringCore& internalMessage, const TError::ErrorInfo& info);
  LogicException(const TFormatStringCore& internalMessage, const QuillonError& error);
  /// The public text and then the list as messages, with no error; an empty internal message stays empty.
  LogicException(const std::list<TStringCore>& messages, const TStringCore& internalMessage);
  LogicException(const LogicException& other);
  LogicException& operator=(const LogicException& other);
  ~LogicException() override;

  LogicException* Clone() const override;
  [[noreturn]] void Throw() const override;
  /// The messages and, after a blank line, the internal message.
  TStringCore CollateMessagesForLog() const override;

  const TStringCore& GetInternalMessage() const { return m_internalMessage; }

  /// Chooses the public text, once for the process: a second call throws a LogicException. An id of 0 changes
  /// nothing. Takes no lock: call it before other threads start.
  static void SetLogicExceptionMessageId(unsigned int id);

 private:
  TStringCore m_internalMessage;
};

/// Replaces the function that turns a message id into its public text; "Internal error." for every id at start.
/// An empty function makes the next look-up throw std::bad_function_call. Takes no lock: call it before other
/// threads start.
QILSYS_API void InjectLookupTStr(std::function<TStringCore(unsigned int)> lookup);

/// Reports a broken condition: calls the hook and returns if it does. With no hook the text goes to the debug channel
/// and a LogicException is thrown, whose code is 0xA2BCBC42 whatever error was passed.
QILSYS_API void ThrowLogicException(char const* file, int line, char const* message, QuillonError const& error);
/// The same for callers that have no error of their own; the hook sees code 0x6EA18A9E.
QILSYS_API void ThrowLogicException(char const* file, int line, char const* message);

/// States a condition that only a bug can break. The condition is evaluated once, everything else only when it is
/// false. `code` and `codeName` are literals chosen for this one site. Code after it must bear the condition being
/// false, since a hook may return.
#define QILSYS_LOGIC_ASSERT(condition, text, file, line, code, codeName)                          \
  do {                                                                                            \
    if (!(condition)) [[unlikely]] {                                                              \
      ::ThrowLogicException((file), (line), (text), ::QuillonError::MakeError((code), codeName)); \
    }                                                                                             \
  } while (false)
