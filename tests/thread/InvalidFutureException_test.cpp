#include "qilsys/InvalidFutureException.h"

#include <gtest/gtest.h>

#include <memory>
#include <typeinfo>

namespace {

using AsyncTask::InvalidFutureException;

TEST(InvalidFutureException, SaysInvalidFuture) {
  const InvalidFutureException exception(TError::ErrorInfo::TestError());
  EXPECT_EQ(exception.GetMessagesVector(), std::vector<TStringCore>{"InvalidFuture"});
  EXPECT_TRUE(exception.GetRedactedMessages().empty());
  EXPECT_EQ(exception.GetErrorInfo(), TError::ErrorInfo::TestError());
}

TEST(InvalidFutureException, CopiesAndAssigns) {
  const InvalidFutureException exception(TError::ErrorInfo::TestError());
  InvalidFutureException copy(exception);
  EXPECT_EQ(copy.GetMessagesFront(), TStringCore("InvalidFuture"));
  copy.ClearMessages();
  copy = exception;
  EXPECT_EQ(copy.GetMessagesFront(), TStringCore("InvalidFuture"));
}

TEST(InvalidFutureException, ACloneIsAPlainException) {
  const InvalidFutureException exception(TError::ErrorInfo::TestError());
  const std::unique_ptr<QuillonException> clone(exception.Clone());
  const QuillonException& cloned = *clone;
  EXPECT_EQ(typeid(cloned), typeid(QuillonException));
}

}  // namespace
