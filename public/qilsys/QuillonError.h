/// The identity of an error: a number that stays the same for ever, and a name for people.
#pragma once

#include <compare>

#include "qilsys/Export.h"
#include "qilsys/TStringCore.h"

/// A 32-bit code with a readable code name. Two errors are the same error when their codes are equal; the name is
/// for display only and nothing checks that it spells the code. A plain value without locking.
class QILSYS_API QuillonError {
 public:
  QuillonError(const QuillonError& other);
  QuillonError& operator=(const QuillonError& other);
  ~QuillonError();

  /// The error with exactly this code and name.
  static QuillonError MakeError(unsigned int code, TStringCore codeName);
  /// Code 0 and an empty name.
  static QuillonError NoError();

  unsigned int GetCode() const { return m_code; }
  /// The name, by reference into this record.
  const TStringCore& GetCodeName() const { return m_codeName; }

  /// By the code alone. The order is a weak one, since equal errors may still differ in their names.
  friend bool operator==(const QuillonError& a, const QuillonError& b) noexcept { return a.m_code == b.m_code; }
  friend std::weak_ordering operator<=>(const QuillonError& a, const QuillonError& b) noexcept {
    return a.m_code <=> b.m_code;
  }

 private:
  QuillonError(unsigned int code, TStringCore codeName);

  unsigned int m_code;
  TStringCore m_codeName;
};
