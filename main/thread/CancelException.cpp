#include "qilsys/CancelException.h"

namespace AsyncTask {

CancelException::CancelException(const TError::ErrorInfo& info) : QuillonException(TStringCore("Canceled"), info) {}

CancelException::CancelException(const TStringCore& message, const TError::ErrorInfo& info, bool)
    : QuillonException(message, info) {}

CancelException::CancelException(const std::list<TStringCore>& messages, const TError::ErrorInfo& info)
    : QuillonException(messages, info) {}

CancelException::CancelException(const CancelException&) = default;
CancelException& CancelException::operator=(const CancelException&) = default;
CancelException::~CancelException() = default;

CancelException* CancelException::Clone() const { return new CancelException(*this); }

void CancelException::Throw() const { throw CancelException(*this); }

}  // namespace AsyncTask
