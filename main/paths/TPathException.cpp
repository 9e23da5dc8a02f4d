// What walking a path raises, with the stack of the thread where that is asked for.
#include "qilsys/TPathCore.h"

#include <string>

#include "paths/PathFailure.h"
#include "qilsys/TStackWalker.h"

TPathCore::Exception::Exception(const TStringCore& message, const TError::ErrorInfo& info, bool includeStack)
    : QuillonException(message, info) {
  TStackWalker walker;
  if (!includeStack || !walker.GenerateCallstack()) return;
  for (const std::string& frame : walker.GetCollected()) StackMessage(TStringCore::fromStdString(frame));
}

TPathCore::Exception::Exception(const Exception&) = default;
TPathCore::Exception& TPathCore::Exception::operator=(const Exception&) = default;
TPathCore::Exception::~Exception() = default;

TPathCore::Exception* TPathCore::Exception::Clone() const { return new Exception(*this); }

void TPathCore::Exception::Throw() const { throw Exception(*this); }

void qilsys::paths::Fail(const char* message, unsigned int code, const char* codeName) {
  const QuillonError error = QuillonError::MakeError(code, codeName);
  throw TPathCore::Exception(message, {error, TError::System, grpc::StatusCode::UNKNOWN}, false);
}
