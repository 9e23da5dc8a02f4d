/// What walking a path raises, by the code of its site.
#pragma once

#include <gtest/gtest.h>

#include <ostream>
#include <string>

#include "qilsys/TPathCore.h"
#include "support/Utf8.h"

namespace qilsys::test {

struct PathFailure {
  const char* name;
  unsigned int code;
  const char* codeName;
  const char* message;
};

inline constexpr PathFailure OtherPath = {
    "OtherPath", 0x4E3E0D3F, "QuillonException_AutoGen_0x4E3E0D3F",
    "Invalid TPathCore::iterator asignment of from one TPathCore to different TPathCore."};
inline constexpr PathFailure EndOutOfRange = {
    "EndOutOfRange", 0x38CA4808, "QuillonException_AutoGen_0x38CA4808",
    "TPathCore::iterator::locateNextElement element end position is out of range."};
inline constexpr PathFailure StartOutOfRange = {
    "StartOutOfRange", 0x9E82DC54, "QuillonException_AutoGen_0x9E82DC54",
    "TPathCore::iterator::locateElementEnd element starting position is out of range."};
inline constexpr PathFailure InvalidPosition = {"InvalidPosition", 0xA22179A7, "QuillonException_AutoGen_0xA22179A7",
                                                "Invalid position in TPathCore::iterator::nextElement."};
inline constexpr PathFailure BeyondEnd = {"BeyondEnd", 0x24209A38, "QuillonException_AutoGen_0x24209A38",
                                          "TPathCore::iterator trying to increment beyond end."};
inline constexpr PathFailure BeyondBeginning = {"BeyondBeginning", 0x6C884971, "QuillonException_AutoGen_0x6C884971",
                                                "TPathCore::iterator trying to decrement beyond beginning."};
inline constexpr PathFailure OutOfSync = {"OutOfSync", 0x2BC6B9CE, "QuillonException_AutoGen_0x2BC6B9CE",
                                          "TPathCore::iterator out of sync in prev."};

/// Whether `f` fails that way, in each part of what it raises.
template <class F>
testing::AssertionResult FailsBy(const PathFailure& wanted, F f) {
  try {
    f();
  } catch (const TPathCore::Exception& exception) {
    EXPECT_EQ(exception.GetErrorSource(), TError::System);
    EXPECT_EQ(exception.GetErrorInfo().GetStatusCode(), grpc::StatusCode::UNKNOWN);
    EXPECT_EQ(exception.GetErrorCode(), wanted.code);
    EXPECT_EQ(Utf8(exception.GetErrorName()), wanted.codeName);
    EXPECT_EQ(Utf8All(exception.GetMessages()), std::vector<std::string>{wanted.message});
    return exception.GetErrorCode() == wanted.code ? testing::AssertionSuccess()
                                                   : testing::AssertionFailure() << "raised another failure";
  }
  return testing::AssertionFailure() << "raised nothing";
}

}  // namespace qilsys::test
