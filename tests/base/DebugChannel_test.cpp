#include <gtest/gtest.h>

#include <string>

#include "base/DebugChannel_platform.h"
#include "support/DebugChannel.h"

namespace {

std::string Written(const std::string& text) {
  qilsys::test::DebugChannelCapture capture;
  qilsys::base::WriteToDebugChannel(text.c_str());
  return capture.Take();
}

TEST(DebugChannel, GetsTheTextInWhateverLetters) {
  for (const char* text : {"", "plain", "\xC3\xA4\xE4\xB8\x80\xF0\x9F\x98\x80 in path"}) {
    EXPECT_EQ(Written(text), std::string(text) + "\n");
  }
}

TEST(DebugChannel, GetsALongTextWhole) {
  const std::string text(100000, 'x');
  EXPECT_EQ(Written(text), text + "\n");
}

}  // namespace
