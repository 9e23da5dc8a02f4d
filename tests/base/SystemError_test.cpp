#include "base/SystemError_platform.h"

#include <gtest/gtest.h>

#include <boost/system/error_code.hpp>
#include <string>
#include <thread>

#include "support/SystemError.h"

namespace {

using qilsys::base::LastSystemError;
using qilsys::base::SystemErrorText;
using qilsys::test::NumberOf;
using qilsys::test::SetLastErrorNumber;
using qilsys::test::SystemError;

constexpr SystemError Errors[] = {SystemError::InvalidHandle, SystemError::InvalidParameter, SystemError::TooManyUnits,
                                  SystemError::Refused};

// Another library's way to the same texts takes a full stop off their end.
std::string WithoutFullStop(std::string text) {
  if (text.ends_with('.')) text.pop_back();
  return text;
}

TEST(SystemError, TheLastOneIsTheThreadsOwn) {
  for (const SystemError error : Errors) {
    int others = 0;
    std::jthread([&] {
      SetLastErrorNumber(NumberOf(error));
      others = LastSystemError();
    }).join();
    EXPECT_EQ(others, NumberOf(error));
  }
  SetLastErrorNumber(NumberOf(SystemError::Refused));
  EXPECT_EQ(LastSystemError(), NumberOf(SystemError::Refused));
}

TEST(SystemError, HasTheTextOfTheSystem) {
  for (const SystemError error : Errors) {
    const std::string text = SystemErrorText(NumberOf(error));
    EXPECT_EQ(WithoutFullStop(text), WithoutFullStop(boost::system::system_category().message(NumberOf(error))));
    EXPECT_FALSE(text.empty());
  }
}

TEST(SystemError, TextsEndInNoBlankAndHoldNoLineBreak) {
  for (const SystemError error : Errors) {
    const std::string text = SystemErrorText(NumberOf(error));
    EXPECT_EQ(text.find_last_not_of(" \r\n"), text.size() - 1);
    EXPECT_EQ(text.find_first_of("\r\n"), std::string::npos);
  }
}

TEST(SystemError, ANumberThatNobodyKnowsHarmsNothing) { EXPECT_NO_THROW(SystemErrorText(0x7FFFFFFF)); }

}  // namespace
