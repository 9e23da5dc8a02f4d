#include "qilsys/InvalidFutureException.h"

namespace AsyncTask {

InvalidFutureException::InvalidFutureException(const TError::ErrorInfo& info)
    : QuillonException(TStringCore("InvalidFuture"), info) {}

InvalidFutureException::InvalidFutureException(const InvalidFutureException&) = default;
InvalidFutureException& InvalidFutureException::operator=(const InvalidFutureException&) = default;
InvalidFutureException::~InvalidFutureException() = default;

}  // namespace AsyncTask
