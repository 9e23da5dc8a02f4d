#include <gtest/gtest.h>

#include <string>

#include "base/DebugChannel_platform.h"
#include "support/DebugChannel.h"
#include "support/System.h"

namespace {

std::string Written(const std::string& text) {
  qilsys::test::DebugChannelCapture capture;
  qilsys::base::WriteToDebugChannel(text.c_str());
  return capture.Take();
}

TEST(DebugChannel, GetsTheText) {
  EXPECT_EQ(Written(""), "\n");
  EXPECT_EQ(Written("plain"), "plain\n");
}

TEST(DebugChannel, GetsTheTextInWhateverLetters) {
  QILSYS_SKIP_UNDER_WINE("the debugger's channel has 8 bits alone, in the code page of the process");
  EXPECT_EQ(Written("\xC3\xA4\xE4\xB8\x80\xF0\x9F\x98\x80 in a path"),
            "\xC3\xA4\xE4\xB8\x80\xF0\x9F\x98\x80 in a path\n");
}

// In one piece or in several, each of which the capture ends by a line feed.
TEST(DebugChannel, GetsALongTextWhole) {
  const std::string text(100000, 'x');
  std::string written = Written(text);
  std::erase(written, '\n');
  EXPECT_TRUE(written == text) << written.size();
}

}  // namespace
