// The message id can be set once in a process, so this program has one test.
#include <gtest/gtest.h>

#include "qilsys/LogicException.h"
#include "support/Utf8.h"

using qilsys::test::Utf8;

namespace {

void ExpectRefused(unsigned int id) {
  try {
    LogicException::SetLogicExceptionMessageId(id);
    ADD_FAILURE() << "was accepted";
  } catch (const LogicException& exception) {
    EXPECT_EQ(Utf8(exception.GetInternalMessage()), "Cannot set the logic exception message id twice.");
    EXPECT_TRUE(exception.GetErrorInfo() == TError::ErrorInfo::NoError());
  }
}

TEST(LogicExceptionMessageId, IsSetOnce) {
  InjectLookupTStr([](unsigned int id) { return TStringCore::number(id); });
  LogicException::SetLogicExceptionMessageId(0);
  EXPECT_EQ(Utf8(LogicException(u"reason", QuillonError::NoError()).GetMessagesFront()), "0");

  LogicException::SetLogicExceptionMessageId(77);
  EXPECT_EQ(Utf8(LogicException(u"reason", QuillonError::NoError()).GetMessagesFront()), "77");

  ExpectRefused(77);
  ExpectRefused(78);
  ExpectRefused(0);
  EXPECT_EQ(Utf8(LogicException(u"reason", QuillonError::NoError()).GetMessagesFront()), "77");
}

}  // namespace
