// When the sockets of Windows are started.
#include <gtest/gtest.h>

#include "monitor/Loopback.h"
#include "monitor/ResourceIpc.h"
#include "monitor/SocketTry_win.h"

namespace qilsys::test {
namespace {

TEST(ResourceIpcWindowsTest, SocketsAreStartedWithTheFirstOneAndNotAtLoad) {
  const unsigned short port = FreePort();
  EXPECT_FALSE(CanMakeSocket()) << "the sockets of the system were started while the program was loaded";
  {
    const ResourceIpc ipc(
        port, [](const ResourceValuesV2&) {}, [](const TStringCore&) {}, nullptr);
    EXPECT_TRUE(CanMakeSocket());
  }
  EXPECT_FALSE(CanMakeSocket());
}

}  // namespace
}  // namespace qilsys::test
