#include <gtest/gtest.h>

#include <cstring>
#include <thread>

#include "monitor/Member.h"

namespace qilsys::test {
namespace {

TEST(PeersTest, ASilentMemberAgesOutByItsOwnInterval) {
  Member member(Settings().Cpu(50).Interval(60));
  member.OnValues(PeerValues(1, 0, 0, 0, 3));
  member.OnValues(PeerValues(2, 0, 0, 0, 5));
  member.m_now += 3 * Second - 1;
  member.PurgePeers();
  EXPECT_EQ(member.m_peers.size(), 2U);
  member.m_now += 1;
  member.PurgePeers();
  EXPECT_EQ(member.m_peers.size(), 1U);
  member.m_now += 2 * Second;
  member.PurgePeers();
  EXPECT_TRUE(member.m_peers.empty());
}

TEST(PeersTest, TheOwnEntryNeverAges) {
  Member member(Settings().Cpu(50));
  member.HearSelf();
  member.m_now += 1000 * Second;
  member.PurgePeers();
  EXPECT_EQ(member.m_peers.size(), 1U);
}

TEST(PeersTest, AMemberIsHeardAgainAfterItAgedOut) {
  Member member(Settings().Cpu(50));
  member.OnValues(PeerValues(1, 10));
  member.m_now += Second;
  member.PurgePeers();
  EXPECT_TRUE(member.m_peers.empty());
  member.OnValues(PeerValues(1, 20));
  member.PurgePeers();
  EXPECT_EQ(member.m_peers.size(), 1U);
}

TEST(PeersTest, ALaterDatagramReplacesTheFiguresAndTheTime) {
  Member member(Settings().Cpu(50));
  member.OnValues(PeerValues(1, 10, 0, 0, 2));
  member.m_now += Second;
  member.OnValues(PeerValues(1, 20, 0, 0, 2));
  member.m_now += Second;
  member.PurgePeers();
  ASSERT_EQ(member.m_peers.size(), 1U);
  EXPECT_EQ(member.m_peers.begin()->second.m_values.cpuPercent, 20);
}

TEST(PeersTest, AnIntervalThatIsNotStatedIsTheReceiversOwn) {
  Member member(Settings().Cpu(50).Interval(4));
  member.OnValues(PeerValues(1, 0, 0, 0, 0));
  ResourceValuesV1 older;
  older.pid = 4660;
  member.OnValues(Widen(older));
  member.m_now += 4 * Second - 1;
  member.PurgePeers();
  EXPECT_EQ(member.m_peers.size(), 2U);
  member.m_now += 1;
  member.PurgePeers();
  EXPECT_TRUE(member.m_peers.empty());
}

TEST(PeersTest, AnOwnIntervalWithoutALowByteAgesAtOnce) {
  Member member(Settings().Cpu(50).Interval(256));
  member.OnValues(PeerValues(1, 0, 0, 0, 0));
  member.PurgePeers();
  EXPECT_TRUE(member.m_peers.empty());
}

TEST(PeersTest, TheUsageOfTheGroupsViewIsTheOwnEntrys) {
  Member member(Settings().Cpu(50));
  member.OnValues(PeerValues(1, 10, 20));
  EXPECT_EQ(member.GetCpuAndMemoryUsage(), (std::pair<unsigned char, unsigned long long>(0, 0)));
  member.m_ownValues.cpuPercent = 33;
  member.m_ownValues.memoryBytes = 44;
  member.HearSelf();
  member.m_ownValues.cpuPercent = 99;
  EXPECT_EQ(member.GetCpuAndMemoryUsage(), (std::pair<unsigned char, unsigned long long>(33, 44)));
}

/// One of many thousand members that are told apart by `number`.
ResourceValuesV2 Stranger(std::uint32_t number, unsigned int intervalSeconds = 10) {
  ResourceValuesV2 values = PeerValues(0xEE, 0, 0, 0, intervalSeconds);
  std::memcpy(values.uuid.data(), &number, sizeof number);
  return values;
}

/// A member whose table has been filled by others, each of which stays for ten seconds.
class FullTableTest : public testing::Test {
 protected:
  FullTableTest() {
    for (std::uint32_t i = 0; i < 4096; ++i) m_member.OnValues(Stranger(i));
    EXPECT_EQ(m_member.TakeLines(), Lines{});
  }
  ~FullTableTest() noexcept override = default;

  bool Knows(const ResourceValuesV2& values) { return m_member.m_peers.contains(UuidOf(values)); }

  Member m_member{Settings().Cpu(50)};
  const Lines m_full{"Resource Manager: Too many members. Ignoring new ones."};
};

TEST_F(FullTableTest, IgnoresNewOnesWithOneLine) {
  for (std::uint32_t i = 5000; i < 5010; ++i) m_member.OnValues(Stranger(i));
  EXPECT_EQ(m_member.m_peers.size(), 4096U);
  EXPECT_FALSE(Knows(Stranger(5000)));
  EXPECT_EQ(m_member.TakeLines(), m_full);
}

TEST_F(FullTableTest, TakesKnownOnes) {
  ResourceValuesV2 known = Stranger(7);
  known.cpuPercent = 77;
  m_member.OnValues(known);
  EXPECT_EQ(m_member.m_peers.at(UuidOf(known)).m_values.cpuPercent, 77);
  EXPECT_EQ(m_member.TakeLines(), Lines{});
}

TEST_F(FullTableTest, TakesTheMembersOwn) {
  m_member.m_ownValues.cpuPercent = 33;
  m_member.HearSelf();
  EXPECT_EQ(m_member.GetCpuAndMemoryUsage().first, 33);
  EXPECT_EQ(m_member.TakeLines(), Lines{});
}

TEST_F(FullTableTest, IsPurgedOnReceiptByTheSameRule) {
  m_member.m_now += 5 * Second;
  m_member.OnValues(Stranger(0, 2));
  m_member.m_now += 2 * Second - 1;
  m_member.OnValues(Stranger(5000));
  EXPECT_FALSE(Knows(Stranger(5000))) << "nobody has been silent for an interval yet";
  m_member.m_now += 1;
  m_member.OnValues(Stranger(5000));
  EXPECT_TRUE(Knows(Stranger(5000)));
  EXPECT_FALSE(Knows(Stranger(0)));
  EXPECT_EQ(m_member.m_peers.size(), 4096U);
}

TEST_F(FullTableTest, EachFillingHasItsLine) {
  m_member.OnValues(Stranger(5000));
  EXPECT_EQ(m_member.TakeLines(), m_full);
  m_member.m_now += 10 * Second;
  for (std::uint32_t i = 0; i < 4096; ++i) m_member.OnValues(Stranger(i));
  EXPECT_EQ(m_member.m_peers.size(), 4096U);
  EXPECT_EQ(m_member.TakeLines(), Lines{});
  m_member.OnValues(Stranger(5000));
  m_member.OnValues(Stranger(5001));
  EXPECT_EQ(m_member.TakeLines(), m_full);
}

TEST(PeersTest, WhenTheWorkerHasEndedTheTableIsPurgedOnReceipt) {
  Member member(Settings().Cpu(50));
  member.OnValues(PeerValues(1, 0));
  member.m_now += Second;
  member.OnValues(PeerValues(2, 0));
  EXPECT_EQ(member.m_peers.size(), 2U) << "the worker's pass is what purges";
  member.Step(true);
  member.OnValues(PeerValues(3, 0));
  EXPECT_EQ(member.m_peers.size(), 2U);
  member.m_now += Second;
  member.OnValues(PeerValues(4, 0));
  EXPECT_EQ(member.m_peers.size(), 1U);
}

TEST(LogAllProcessesTest, TheTableIsFreeWhileTheHostLogs) {
  Settings settings;
  Member* logging = nullptr;
  int free = 0;
  settings.Cpu(50).m_general.m_logFunc = [&](const TStringCore& line) {
    if (!line.startsWith(u"Resource Manager: pid: ")) return;
    std::thread([&] {
      if (!logging->m_peersLock.TryLock()) return;
      ++free;
      logging->m_peersLock.Unlock();
    }).join();
  };
  Member member(settings);
  logging = &member;
  member.OnValues(PeerValues(1, 0));
  member.OnValues(PeerValues(2, 0));
  member.LogAllProcesses(member.m_ownValues);
  EXPECT_EQ(free, 3);
}

TEST(LogAllProcessesTest, TheOwnLineComesFirstAndThenThePeersInKeyOrder) {
  ResourceValuesV2 own = PeerValues(0x55, 34, 1'234'567, 12);
  own.pid = 4711;
  Member member(Settings().Cpu(50), own);
  member.HearSelf();
  member.OnValues(PeerValues(0xAB, 1, 2, 3));
  member.OnValues(PeerValues(0x01, 4, 5000, 6));
  member.LogAllProcesses(member.m_ownValues);
  EXPECT_EQ(member.TakeLines(),
            (Lines{"Resource Manager: Logging all CPU/memory info across processes.",
                   "Resource Manager: pid: 4711; Memory info: 1,234,567 bytes; Memory limit usage: 12%; CPU info: 34%; "
                   "uuid=55555555-5555-5555-5555-555555555555",
                   "Resource Manager: pid: 1001; Memory info: 5,000 bytes; Memory limit usage: 6%; CPU info: 4%; "
                   "uuid=01010101-0101-0101-0101-010101010101",
                   "Resource Manager: pid: 1171; Memory info: 2 bytes; Memory limit usage: 3%; CPU info: 1%; "
                   "uuid=abababab-abab-abab-abab-abababababab"}));
}

}  // namespace
}  // namespace qilsys::test
