/// The exception of a future without a state.
#pragma once

#include "qilsys/QuillonException.h"

namespace AsyncTask {

/// A future was used that never had a state, or has given it away. A clone is a plain QuillonException.
class QILSYS_API InvalidFutureException : public QuillonException {
 public:
  /// The one message "InvalidFuture".
  explicit InvalidFutureException(const TError::ErrorInfo& info);
  InvalidFutureException(const InvalidFutureException& other);
  InvalidFutureException& operator=(const InvalidFutureException& other);
  ~InvalidFutureException() override;
};

}  // namespace AsyncTask
