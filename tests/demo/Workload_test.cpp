#include "demo/Workload.h"

#include <gtest/gtest.h>

#include <thread>
#include <vector>

namespace {

// The host's own thread and the monitor's both set the share. A data race shows under ThreadSanitizer, and two sets of
// threads in any build that is unlucky.
TEST(DemoBurner, TakesItsShareFromAnyThread) {
  for (int round = 0; round < 20; ++round) {
    demo::Burner burner;
    std::vector<std::thread> hosts;
    for (int i = 0; i < 4; ++i) hosts.emplace_back([&burner] { burner.Burn(0); });
    for (std::thread& host : hosts) host.join();
  }
}

}  // namespace
