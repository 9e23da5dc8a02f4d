#include "qilsys/CancelException.h"

#include <gtest/gtest.h>

#include <memory>
#include <utility>

namespace {

using AsyncTask::CancelException;

const TError::ErrorInfo& SomeInfo() {
  static const TError::ErrorInfo s_info(QuillonError::MakeError(0x12345678, "SomeName"), TError::Content,
                                        grpc::StatusCode::ABORTED);
  return s_info;
}

TEST(CancelException, FromAnErrorAloneSaysCanceled) {
  const CancelException exception(SomeInfo());
  EXPECT_EQ(exception.GetMessagesVector(), std::vector<TStringCore>{"Canceled"});
  EXPECT_TRUE(exception.GetRedactedMessages().empty());
  EXPECT_EQ(exception.GetErrorInfo(), SomeInfo());
  EXPECT_FALSE(exception.IsOrphanQuery());
}

TEST(CancelException, TakesAMessageAndAFlagThatMeansNothing) {
  for (const bool flag : {false, true}) {
    const CancelException exception("by the user", SomeInfo(), flag);
    EXPECT_EQ(exception.GetMessagesVector(), std::vector<TStringCore>{"by the user"});
    EXPECT_EQ(exception.GetErrorInfo(), SomeInfo());
    EXPECT_FALSE(exception.IsOrphanQuery());
  }
}

TEST(CancelException, TakesMessagesAsTheyAre) {
  const CancelException exception(std::list<TStringCore>{"one", "", "three"}, SomeInfo());
  EXPECT_EQ(exception.GetMessagesVector(), (std::vector<TStringCore>{"one", "", "three"}));
  EXPECT_FALSE(exception.IsOrphanQuery());
}

TEST(CancelException, CopiesCarryTheMark) {
  CancelException marked(SomeInfo());
  marked.SetIsOrphanQuery(true);
  const CancelException copy(marked);
  EXPECT_TRUE(copy.IsOrphanQuery());
  CancelException assigned(SomeInfo());
  assigned = copy;
  EXPECT_TRUE(assigned.IsOrphanQuery());
  const CancelException moved(std::move(marked));
  EXPECT_TRUE(moved.IsOrphanQuery());
  assigned = CancelException(SomeInfo());
  EXPECT_FALSE(assigned.IsOrphanQuery());
}

TEST(CancelException, KeepsItsTypeAndItsMarkInClone) {
  CancelException marked("by the user", SomeInfo(), false);
  marked.SetIsOrphanQuery(true);
  const std::unique_ptr<QuillonException> clone(static_cast<const QuillonException&>(marked).Clone());
  const auto* const cancelled = dynamic_cast<const CancelException*>(clone.get());
  ASSERT_NE(cancelled, nullptr);
  EXPECT_TRUE(cancelled->IsOrphanQuery());
  EXPECT_EQ(cancelled->GetMessagesFront(), TStringCore("by the user"));
}

TEST(CancelException, KeepsItsTypeAndItsMarkInThrow) {
  CancelException marked(SomeInfo());
  marked.SetIsOrphanQuery(true);
  try {
    static_cast<const QuillonException&>(marked).Throw();
  } catch (const CancelException& caught) {
    EXPECT_NE(&caught, &marked);
    EXPECT_TRUE(caught.IsOrphanQuery());
    EXPECT_EQ(caught.GetErrorCode(), 0x12345678u);
  }
}

}  // namespace
