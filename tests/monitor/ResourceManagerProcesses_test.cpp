// Members in processes of their own, on one port of the real loopback.
#include <gtest/gtest.h>

#include <algorithm>
#include <deque>

#include "monitor/Loopback.h"
#include "monitor/MemberProcess.h"
#include "monitor/MonitoredProcess_platform.h"
#include "monitor/ResourceValues.h"
#include "qilsys/MonitoredProcess.h"
#include "support/System.h"

namespace qilsys::test {
namespace {

constexpr unsigned long long Mebibyte = 1ULL << 20;

const char* Rejected = "Resource Manager: rejected invalid network packet from: 127.0.0.1";
const char* Deaf = "Resource Manager: listening thread has stopped";

class ProcessesTest : public testing::Test {
 protected:
  MemberProcess& Start(MemberArguments arguments = {}) {
    arguments.m_port = m_port;
    return m_members.emplace_back(arguments);
  }

  void StartMany(int count) {
    for (int i = 0; i < count; ++i) Start();
  }

  /// Expects that every member, but those excepted, counts so many from now on, sooner or later. All are looked at over
  /// the same time.
  void ExpectInfoCount(int count, const std::vector<const MemberProcess*>& except = {}) {
    std::vector<std::pair<MemberProcess*, std::size_t>> asked;
    for (MemberProcess& member : m_members) {
      const bool excepted = std::find(except.begin(), except.end(), &member) != except.end();
      if (!excepted) asked.emplace_back(&member, member.Lines().size());
    }
    for (const auto& [member, from] : asked) {
      EXPECT_TRUE(member->AwaitInfoCount(count, from)) << "member " << member->Pid() << " never counted " << count;
    }
  }

  /// The lines of a member that are neither those of every start nor the periodic ones.
  static std::vector<std::string> Unusual(MemberProcess& member) {
    std::vector<std::string> unusual;
    for (const std::string& line : member.Lines()) {
      const auto starts = [&](const char* start) { return line.starts_with(start); };
      if (starts("READY") || starts("DONE ") || starts("USAGE ") || starts("Resource Manager: Memory info: ") ||
          starts("Resource Manager: CPU info: ") || starts("Resource Manager: Max CPU limited to ") ||
          starts("Resource Manager: Per Process Memory Limit: ") ||
          starts("Resource Manager: All Processes Memory Limit: ") ||
          starts("Resource Manager: Checking resources every ") || starts("Resource Manager: listening on port ")) {
        continue;
      }
      unusual.push_back(line);
    }
    return unusual;
  }

  /// Ends a member in order, and checks that nothing happened to it but `unusual`.
  static void ExpectQuiet(MemberProcess& member, std::vector<std::string> unusual = {}) {
    member.Command("quit");
    EXPECT_EQ(member.Exit(), 0);
    if (std::find(unusual.begin(), unusual.end(), Deaf) == unusual.end()) unusual.push_back(Deaf);
    unusual.push_back("Resource Manager: stopped");
    EXPECT_EQ(Unusual(member), unusual);
  }

  static bool AwaitUsage(MemberProcess& member, unsigned long long low, unsigned long long high) {
    const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(20);
    while (std::chrono::steady_clock::now() < end) {
      const std::size_t from = member.Lines().size();
      member.Command("usage");
      unsigned long long usage = 0;
      const bool answered = member.Await(
          [&](const std::string& line) {
            if (!line.starts_with("USAGE ")) return false;
            usage = std::stoull(line.substr(6));
            return true;
          },
          from);
      if (!answered) return false;
      if (usage >= low && usage <= high) return true;
      // The figures move with the member's next report.
      member.AwaitInfoCount(1);
    }
    return false;
  }

  const unsigned short m_port = FreePort();
  std::deque<MemberProcess> m_members;
};

TEST_F(ProcessesTest, EightMembersHearEachOtherAndMissWhoFallsSilent) {
  StartMany(8);
  ExpectInfoCount(8);

  MemberProcess& killed = m_members[2];
  killed.Kill();
  EXPECT_EQ(killed.Exit(), KilledBySignal);
  ExpectInfoCount(7, {&killed});

  MemberProcess& stopped = m_members[5];
  stopped.Suspend();
  ExpectInfoCount(6, {&killed, &stopped});
  stopped.Resume();
  ExpectInfoCount(7, {&killed});

  for (MemberProcess& member : m_members) {
    if (&member != &killed) ExpectQuiet(member);
  }
}

TEST_F(ProcessesTest, BothVersionsShareAPort) {
  MemberArguments older;
  older.m_version1 = true;
  Start(older);
  Start();
  Start(older);
  ExpectInfoCount(3);
  for (MemberProcess& member : m_members) ExpectQuiet(member);
}

TEST_F(ProcessesTest, DatagramsFromElsewhereAreIgnored) {
  QILSYS_SKIP_UNDER_WINE("what is sent from a socket at 127.0.0.2 comes from 127.0.0.1");
  StartMany(2);
  ExpectInfoCount(2);
  Sender other(m_port, "127.0.0.2");
  for (const std::size_t length : {14U, 35U, 36U, 2000U}) other.Send(Bytes(length, 0x55));
  ExpectInfoCount(2);
  for (MemberProcess& member : m_members) ExpectQuiet(member);
}

TEST_F(ProcessesTest, DatagramsAreJudgedByLength) {
  StartMany(2);
  ExpectInfoCount(2);
  Sender sender(m_port);
  ResourceValuesV2 lasting;
  lasting.uuid.fill(1);
  lasting.reportIntervalSeconds = 255;
  sender.SendValues(lasting);
  ExpectInfoCount(3);

  sender.Send(Bytes(36, 0x55));
  sender.Send(Bytes(2000, 0x55));
  for (MemberProcess& member : m_members) {
    EXPECT_TRUE(member.Await([&](const std::string&) { return member.Count(Rejected) == 2; }));
  }

  // Figures of version 1 last for the receiver's own second, so they are sent until they have been counted.
  for (MemberProcess& member : m_members) {
    const std::size_t from = member.Lines().size();
    const auto counted = [&] {
      const std::vector<std::string>& lines = member.Lines();
      return std::any_of(lines.begin() + static_cast<std::ptrdiff_t>(from), lines.end(),
                         [](const std::string& line) { return line.ends_with("; 4 (info count)"); });
    };
    ResourceValuesV1 passing;
    passing.pid = 4660;
    for (int i = 0; i < 4 && !counted(); ++i) {
      if (i > 0) member.PutOutOfStep();
      const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(8);
      while (!counted() && std::chrono::steady_clock::now() < end) {
        sender.SendValues(passing);
        member.AwaitOutput(std::chrono::milliseconds(100));
      }
    }
    EXPECT_TRUE(counted());
  }
  ExpectInfoCount(3);
  for (MemberProcess& member : m_members) ExpectQuiet(member, {Rejected, Rejected});
}

TEST_F(ProcessesTest, AnEmptyDatagramEndsListeningAndNotSending) {
  StartMany(2);
  ExpectInfoCount(2);
  Sender(m_port, "127.0.0.2").Send({});
  const std::string error = "Resource Manager: socket error: " + boost::system::error_code().message();
  for (MemberProcess& member : m_members) EXPECT_TRUE(member.AwaitLine(Deaf));
  // The deaf ones know only themselves after a while; one that comes later hears all three.
  ExpectInfoCount(1);
  MemberProcess& late = Start();
  EXPECT_TRUE(late.AwaitInfoCount(3));
  ExpectQuiet(m_members[0], {error, Deaf});
  ExpectQuiet(m_members[1], {error, Deaf});
  ExpectQuiet(late);
}

TEST_F(ProcessesTest, APortTakenByAStrangerIsRefused) {
  const Stranger stranger(m_port);
  MemberProcess& member = Start();
  EXPECT_EQ(member.Exit(), 3);
  EXPECT_TRUE(member.Lines().back().starts_with("FAILED bind")) << member.Lines().back();
}

TEST_F(ProcessesTest, AChildCountsWhileItIsRegisteredAndLives) {
  MemberProcess& parent = Start();
  MemberProcess child{MemberArguments{}};
  ASSERT_TRUE(child.AwaitLine("READY"));
  const std::string pid = std::to_string(child.Pid());
  parent.Command("child " + pid);
  child.Command("grow " + std::to_string(256 * Mebibyte));
  ASSERT_TRUE(child.AwaitLine("DONE grow"));
  EXPECT_TRUE(AwaitUsage(parent, 256 * Mebibyte, ~0ULL));

  child.Kill();
  EXPECT_EQ(child.Exit(), KilledBySignal);
  EXPECT_TRUE(AwaitUsage(parent, 1, 255 * Mebibyte));
  parent.Command("unchild " + pid);
  ASSERT_TRUE(parent.AwaitLine("DONE unchild"));
  ExpectQuiet(parent,
              {"Resource Manager: Adding child process: " + pid, "Resource Manager: Removing child process: " + pid});
}

TEST_F(ProcessesTest, AChildThatGrowsEndsItsParentAndNobodyElse) {
  MemberArguments tight;
  tight.m_memoryLimit = 300 * Mebibyte;
  MemberProcess& parent = Start(tight);
  MemberProcess& other = Start(tight);
  MemberProcess child{MemberArguments{}};
  ASSERT_TRUE(child.AwaitLine("READY"));
  parent.Command("child " + std::to_string(child.Pid()));
  ASSERT_TRUE(parent.AwaitLine("DONE child"));
  child.Command("grow " + std::to_string(400 * Mebibyte));

  EXPECT_EQ(parent.Exit(), 41);
  EXPECT_EQ(parent.Lines().back(),
            "TERMINATE Resource Manager: Process is above memory threshold. Requesting termination.");
  child.Command("quit");
  EXPECT_EQ(child.Exit(), 0) << "a child is never addressed";
  EXPECT_TRUE(other.AwaitInfoCount(1));
  ExpectQuiet(other);
}

TEST_F(ProcessesTest, AReclaimThatHelpsAvertsTheEnd) {
  MemberArguments tight;
  tight.m_memoryLimit = 300 * Mebibyte;
  MemberProcess& member = Start(tight);
  member.Command("cache " + std::to_string(400 * Mebibyte));
  EXPECT_TRUE(member.AwaitLine("Resource Manager: Memory reclaimed. Process termination has been averted!"));
  EXPECT_TRUE(AwaitUsage(member, 1, 300 * Mebibyte));
  member.Command("quit");
  EXPECT_EQ(member.Exit(), 0);
}

TEST_F(ProcessesTest, TheOneThatBurnsYieldsTheProcessor) {
  // Only a clock that can't change, as under Wine, says that the load will count.
  const bool clocksMayChange = !monitor::ReadProcessorClocks().empty() && !HasGapsOfWine();
  if (clocksMayChange || !MonitoredProcess::IsCpuAtMaxFrequency()) {
    GTEST_SKIP() << "the clocks of this machine may count the load as none";
  }
  MemberArguments limited;
  limited.m_cpuLimit = 5;
  MemberProcess& burning = Start(limited);
  MemberProcess& idle = Start(limited);
  ASSERT_TRUE(idle.AwaitInfoCount(2));
  // Several threads, so that a busy machine leaves it more than the limit.
  for (int i = 0; i < 8; ++i) burning.Command("burn");
  EXPECT_EQ(burning.Exit(), 42);
  EXPECT_EQ(burning.Lines().back(),
            "TERMINATE Resource Manager: Process is above CPU threshold. Requesting termination.");
  idle.Command("quit");
  EXPECT_EQ(idle.Exit(), 0);
}

}  // namespace
}  // namespace qilsys::test
