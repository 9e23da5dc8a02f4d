#include "qilsys/QuillonError.h"

#include <utility>

QuillonError::QuillonError(unsigned int code, TStringCore codeName) : m_code(code), m_codeName(std::move(codeName)) {}

QuillonError::QuillonError(const QuillonError&) = default;
QuillonError& QuillonError::operator=(const QuillonError&) = default;
QuillonError::~QuillonError() = default;

QuillonError QuillonError::MakeError(unsigned int code, TStringCore codeName) {
  return QuillonError(code, std::move(codeName));
}

QuillonError QuillonError::NoError() { return QuillonError(0, TStringCore()); }
