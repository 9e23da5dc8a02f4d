#include <gtest/gtest.h>

#include <memory>
#include <typeinfo>

#include "qilsys/TPathCore.h"
#include "qilsys/TStackWalker.h"
#include "support/Utf8.h"

using namespace qilsys::test;

namespace {

TError::ErrorInfo SomeError() {
  return {QuillonError::MakeError(7, u"Seven"), TError::Client, grpc::StatusCode::NOT_FOUND};
}

/// Walks of the stack are switched as said while it lives.
class StackWalks {
 public:
  explicit StackWalks(bool areOn) : m_before(TStackWalker::InitSym(areOn)) {}
  StackWalks(const StackWalks&) = delete;
  StackWalks& operator=(const StackWalks&) = delete;
  ~StackWalks() { TStackWalker::InitSym(m_before); }

 private:
  bool m_before;
};

TEST(TPathCoreException, HasMessageAndRecord) {
  const StackWalks on(true);
  const TPathCore::Exception exception(u"text", SomeError(), false);
  EXPECT_EQ(Utf8All(exception.GetMessages()), std::vector<std::string>{"text"});
  EXPECT_TRUE(exception.GetRedactedMessages().empty());
  EXPECT_EQ(exception.GetErrorInfo(), SomeError());
}

TEST(TPathCoreException, HasTheFramesOfTheThreadBehindItsMessage) {
  const StackWalks on(true);
  const TPathCore::Exception exception(u"text", SomeError(), true);
  const std::vector<std::string> messages = Utf8All(exception.GetMessages());
  ASSERT_GT(messages.size(), 1u);
  EXPECT_EQ(messages[0], "text");
  for (std::size_t i = 1; i < messages.size(); ++i) EXPECT_NE(messages[i].find('!'), std::string::npos) << messages[i];
}

TEST(TPathCoreException, HasNoFramesWhileWalksAreOff) {
  const StackWalks off(false);
  const TPathCore::Exception exception(u"text", SomeError(), true);
  EXPECT_EQ(Utf8All(exception.GetMessages()), std::vector<std::string>{"text"});
}

TEST(TPathCoreException, KeepsItsClassInCopies) {
  const TPathCore::Exception exception(u"text", SomeError(), false);
  const std::unique_ptr<QuillonException> clone(static_cast<const QuillonException&>(exception).Clone());
  const QuillonException& copy = *clone;
  EXPECT_EQ(typeid(copy), typeid(TPathCore::Exception));
  EXPECT_EQ(Utf8(clone->GetMessagesFront()), "text");
  try {
    clone->Throw();
  } catch (const QuillonException& thrown) {
    EXPECT_EQ(typeid(thrown), typeid(TPathCore::Exception));
  }
  TPathCore::Exception assigned(u"other", TError::ErrorInfo::NoError(), false);
  assigned = exception;
  EXPECT_EQ(Utf8(assigned.GetMessagesFront()), "text");
  EXPECT_EQ(assigned.GetErrorCode(), 7u);
}

}  // namespace
