/// The exception by which a cancelled task ends.
#pragma once

#include <list>

#include "qilsys/QuillonException.h"

namespace AsyncTask {

/// A task was cancelled. Passes through futures like any other exception, and keeps its type in `Clone` and `Throw`.
class QILSYS_API CancelException : public QuillonException {
 public:
  /// The one message "Canceled".
  explicit CancelException(const TError::ErrorInfo& info);
  /// The last argument is not used.
  CancelException(const TStringCore& message, const TError::ErrorInfo& info, bool);
  CancelException(const std::list<TStringCore>& messages, const TError::ErrorInfo& info);
  CancelException(const CancelException& other);
  CancelException& operator=(const CancelException& other);
  ~CancelException() override;

  CancelException* Clone() const override;
  [[noreturn]] void Throw() const override;

  /// A mark of the host's, false at first and copied with the exception. The library never sets it.
  bool IsOrphanQuery() const { return m_isOrphanQuery; }
  void SetIsOrphanQuery(bool isOrphanQuery) { m_isOrphanQuery = isOrphanQuery; }

 private:
  bool m_isOrphanQuery = false;
};

}  // namespace AsyncTask
