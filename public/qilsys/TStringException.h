/// What strings raise. These classes have no base outside this header, on purpose: the string lies beneath the
/// exception tree of the library, so a handler for that tree, or for std::exception, catches none of them.
#pragma once

#include "qilsys/TStringCoreClass.h"

/// The root: a message and the means to keep the dynamic class across copies.
class QILSYS_API TStringCore::Exception {
 public:
  /// Null gives an empty message.
  explicit Exception(const TCodeUnit* text) : message(text) {}
  template <qilsys::ForeignUnit U>
  explicit Exception(const U* text) : message(text) {}
  explicit Exception(const TStringCore& text) : message(text) {}
  explicit Exception(TStringCore&& text) : message(std::move(text)) {}
  Exception(const Exception&) = default;
  Exception(Exception&&) = default;
  Exception& operator=(const Exception&) = default;
  Exception& operator=(Exception&&) = default;

  virtual ~Exception();
  /// A new object of the same dynamic class, owned by the caller.
  virtual Exception* Clone() const;
  /// Throws a copy of the same dynamic class.
  [[noreturn]] virtual void Throw() const;

  /// A copy of `message`.
  TStringCore CollateMessagesForLog() const { return message; }
  TStringCore GetConcatenatedMessages() const { return message; }

  TStringCore message;
};

/// A length or capacity outside what a string can hold.
class QILSYS_API TStringCore::CapacityException : public TStringCore::Exception {
 public:
  CapacityException();
  CapacityException(const CapacityException&) = default;
  CapacityException(CapacityException&& other) : Exception(static_cast<const Exception&>(other)) {}
  ~CapacityException() override;
  Exception* Clone() const override;
  [[noreturn]] void Throw() const override;
};

/// The heap gave nothing. Its text lies inline, so that raising it takes no memory of the string's own.
class QILSYS_API TStringCore::OutOfMemoryException : public TStringCore::Exception {
 public:
  OutOfMemoryException();
  OutOfMemoryException(const OutOfMemoryException&) = default;
  OutOfMemoryException(OutOfMemoryException&& other) : Exception(static_cast<const Exception&>(other)) {}
  ~OutOfMemoryException() override;
  Exception* Clone() const override;
  [[noreturn]] void Throw() const override;
};
