#include <gtest/gtest.h>

#include "monitor/Member.h"

namespace qilsys::test {
namespace {

TEST(PeersTest, ASilentMemberAgesOutByItsOwnInterval) {
  Member member(Settings().Cpu(50).Interval(60));
  member.OnValues(PeerValues(1, 0, 0, 0, 3));
  member.OnValues(PeerValues(2, 0, 0, 0, 5));
  member.m_now += 3 * s_second - 1;
  member.PurgePeers();
  EXPECT_EQ(member.m_peers.size(), 2U);
  member.m_now += 1;
  member.PurgePeers();
  EXPECT_EQ(member.m_peers.size(), 1U);
  member.m_now += 2 * s_second;
  member.PurgePeers();
  EXPECT_TRUE(member.m_peers.empty());
}

TEST(PeersTest, TheOwnEntryNeverAges) {
  Member member(Settings().Cpu(50));
  member.HearSelf();
  member.m_now += 1000 * s_second;
  member.PurgePeers();
  EXPECT_EQ(member.m_peers.size(), 1U);
}

TEST(PeersTest, AMemberIsHeardAgainAfterItAgedOut) {
  Member member(Settings().Cpu(50));
  member.OnValues(PeerValues(1, 10));
  member.m_now += s_second;
  member.PurgePeers();
  EXPECT_TRUE(member.m_peers.empty());
  member.OnValues(PeerValues(1, 20));
  member.PurgePeers();
  EXPECT_EQ(member.m_peers.size(), 1U);
}

TEST(PeersTest, ALaterDatagramReplacesTheFiguresAndTheTime) {
  Member member(Settings().Cpu(50));
  member.OnValues(PeerValues(1, 10, 0, 0, 2));
  member.m_now += s_second;
  member.OnValues(PeerValues(1, 20, 0, 0, 2));
  member.m_now += s_second;
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
  member.m_now += 4 * s_second - 1;
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
