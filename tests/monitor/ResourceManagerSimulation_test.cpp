// Groups of up to a hundred members in one thread, on a clock of their own and a wire that loses, doubles, delays and
// forges. Each step of each member is compared with the rules as ReferenceMember has them.
#include <gtest/gtest.h>

#include <algorithm>
#include <queue>

#include "monitor/Member.h"
#include "monitor/ReferenceMember.h"
#include "qilsys/QuillonException.h"
#include "support/Random.h"

namespace qilsys::test {
namespace {

constexpr std::int64_t Millisecond = Second / 1000;

/// How the wire treats datagrams: once in so many, 0 for never.
struct Wire {
  int m_losesOneIn = 0;
  int m_doublesOneIn = 0;
  int m_delaysOneIn = 0;
  int m_forgesOneIn = 0;
};

bool StartsWith(const std::string& text, const char* start) { return text.rfind(start, 0) == 0; }

class World {
 public:
  World(SeededRandom& random, const Wire& wire) : m_random(random), m_wire(wire) {}

  /// One process of the group: the code under test, the reference, and what the world makes them read.
  struct Process {
    std::size_t m_index = 0;
    std::unique_ptr<Member> m_member;
    std::unique_ptr<ReferenceMember> m_reference;
    WorldAnswers m_answers;
    Reading m_reading;
    /// Makes a new reading before each sample.
    std::function<void(Process&)> m_change;
    unsigned long long m_total = 0;
    bool m_alive = true;
    std::int64_t m_endedAt = 0;
  };

  Process& Add(const Settings& settings, int cpuFunctions, int memoryFunctions, std::int64_t start) {
    auto process = std::make_unique<Process>();
    Process& p = *process;
    p.m_index = m_processes.size();
    p.m_member = std::make_unique<Member>(settings, FirstValues(p.m_index, settings.m_general));
    p.m_reference = std::make_unique<ReferenceMember>(settings, p.m_member->m_ownValues, cpuFunctions, memoryFunctions);
    Connect(p, cpuFunctions, memoryFunctions);
    m_processes.push_back(std::move(process));
    Push({start, 0, &p, std::nullopt});
    return p;
  }

  /// Runs all events up to the time, in order.
  void RunUntil(std::int64_t end) {
    while (!m_events.empty() && m_events.top().m_time <= end && !testing::Test::HasFailure()) {
      const Event event = m_events.top();
      m_events.pop();
      m_now = event.m_time;
      event.m_datagram ? Deliver(*event.m_process, *event.m_datagram) : Wake(*event.m_process, false);
    }
    m_now = std::max(m_now, end);
  }

  /// Stops every worker, wherever it waits.
  void StopAll() {
    for (const auto& process : m_processes) {
      int steps = 0;
      while (process->m_alive && ++steps < 5 && !testing::Test::HasFailure()) Wake(*process, true);
      EXPECT_FALSE(process->m_alive);
    }
  }

  Process& At(std::size_t index) { return *m_processes[index]; }
  std::size_t Size() const { return m_processes.size(); }
  std::int64_t Now() const { return m_now; }

  std::vector<std::size_t> Ended() const {
    std::vector<std::size_t> ended;
    for (const auto& process : m_processes) {
      if (!process->m_alive) ended.push_back(process->m_index);
    }
    return ended;
  }

 private:
  struct Event {
    std::int64_t m_time;
    std::uint64_t m_order;
    Process* m_process;
    /// What is delivered; nothing for the end of a wait.
    std::optional<ResourceValuesV2> m_datagram;

    bool operator<(const Event& other) const {
      return m_time != other.m_time ? m_time > other.m_time : m_order > other.m_order;
    }
  };

  void Push(Event event) {
    event.m_order = ++m_order;
    m_events.push(event);
  }

  // All members are of this one process, so the world gives each an id and an identity of its own.
  ResourceValuesV2 FirstValues(std::size_t index, const ResourceManager::GeneralConfig& general) {
    ResourceValuesV2 own;
    own.pid = static_cast<std::uint32_t>(1000 + index);
    own.reportIntervalSeconds = static_cast<std::uint8_t>(general.m_checkIntervalSeconds);
    for (std::uint8_t& byte : own.uuid) byte = static_cast<std::uint8_t>(m_random.Between(0, 255));
    return general.m_useVersion1 ? Widen(Narrow(own)) : own;
  }

  void Connect(Process& p, int cpuFunctions, int memoryFunctions) {
    p.m_member->m_read = [&p] {
      if (p.m_change) p.m_change(p);
      p.m_answers.m_readings.push_back(p.m_reading);
      return p.m_reading;
    };
    p.m_member->m_total = [this, &p] { return Total(p); };
    p.m_member->m_wire = [this](const ResourceValuesV2& values) { Broadcast(values); };
    for (int i = 0; i < cpuFunctions; ++i) {
      p.m_member->CpuReclaim().Add("f" + TStringCore::number(i), [this, &p](double) {
        if (m_random.OneIn(2)) p.m_reading.m_cpuPercent /= 2;
      });
    }
    for (int i = 0; i < memoryFunctions; ++i) {
      p.m_member->MemoryReclaim().Add("f" + TStringCore::number(i), [this, &p](double) {
        if (m_random.OneIn(2)) p.m_reading.m_memoryBytes /= 2;
      });
    }
  }

  unsigned long long Total(Process& p) {
    if (m_wire.m_forgesOneIn > 0 && m_random.OneIn(30)) {
      p.m_answers.m_totals.push_back(std::nullopt);
      throw QuillonException(TStringCore(u"no figure"));
    }
    p.m_answers.m_totals.push_back(p.m_total);
    return p.m_total;
  }

  void Broadcast(ResourceValuesV2 values) {
    const bool forged = Happens(m_wire.m_forgesOneIn);
    for (const auto& process : m_processes) {
      if (Happens(m_wire.m_losesOneIn)) continue;
      Travel(*process, values);
      if (Happens(m_wire.m_doublesOneIn)) Travel(*process, values);
      if (forged) Travel(*process, Forge(values));
    }
  }

  void Travel(Process& to, const ResourceValuesV2& values) {
    std::int64_t delay = Millisecond;
    if (m_wire.m_delaysOneIn > 0) delay = m_random.Between<std::int64_t>(1, 3 * Millisecond);
    if (Happens(m_wire.m_delaysOneIn)) delay = m_random.Between<std::int64_t>(1, 10 * Second);
    Push({m_now + delay, 0, &to, values});
  }

  // Anything of the right length is taken for figures, also those of a member that never sent them.
  ResourceValuesV2 Forge(ResourceValuesV2 values) {
    if (m_random.OneIn(2)) {
      for (std::uint8_t& byte : values.uuid) byte = static_cast<std::uint8_t>(m_random.Between(0, 255));
    }
    values.version = m_random.Between<std::uint32_t>(0, 0xFFFFFFFF);
    values.pid = m_random.Between<std::uint32_t>(0, 0xFFFFFFFF);
    values.memoryBytes = m_random.Between<std::uint64_t>(0, 0xFFFFFFFFFFFFFFFF);
    values.memoryLimitPercent = static_cast<std::uint8_t>(m_random.Between(0, 255));
    values.cpuPercent = static_cast<std::uint8_t>(m_random.Between(0, 255));
    values.reportIntervalSeconds = static_cast<std::uint8_t>(m_random.Between(0, 4));
    return values;
  }

  bool Happens(int oneIn) { return oneIn > 0 && m_random.OneIn(oneIn); }

  // A member whose worker has ended still listens.
  void Deliver(Process& p, const ResourceValuesV2& datagram) {
    p.m_member->m_now = m_now;
    p.m_member->OnValues(datagram);
    p.m_reference->Hear(datagram, m_now);
    if (!p.m_alive) {
      EXPECT_EQ(p.m_member->m_peers.size(), p.m_reference->Peers().size());
    }
  }

  void Wake(Process& p, bool stopped) {
    p.m_member->m_now = m_now;
    const ResourceManagerImpl::NextWait wait = p.m_member->Step(stopped);
    const Lines lines = p.m_member->TakeLines();
    Compare(p, stopped, lines, wait.has_value());
    CheckYielding(p, lines);
    if (wait) {
      const std::int64_t jitter = m_wire.m_delaysOneIn > 0 ? m_random.Between<std::int64_t>(0, 2 * Millisecond) : 0;
      if (!stopped) Push({m_now + wait->count() * Millisecond + jitter, 0, &p, std::nullopt});
    } else {
      p.m_alive = false;
      p.m_endedAt = m_now;
    }
  }

  void Compare(Process& p, bool stopped, const Lines& lines, bool goesOn) {
    bool shouldGoOn = false;
    const Lines wanted = p.m_reference->Step(m_now, stopped, p.m_answers, shouldGoOn);
    ASSERT_EQ(lines, wanted) << "member " << p.m_index << " at " << m_now;
    ASSERT_EQ(goesOn, shouldGoOn) << "member " << p.m_index << " at " << m_now;
    ASSERT_TRUE(p.m_answers.m_readings.empty());
    ASSERT_TRUE(p.m_answers.m_totals.empty());
    ASSERT_EQ(p.m_member->m_peers.size(), p.m_reference->Peers().size()) << "member " << p.m_index << " at " << m_now;
    for (const auto& [uuid, peer] : p.m_reference->Peers()) {
      ASSERT_TRUE(p.m_member->m_peers.contains(UuidOf(peer.m_values))) << IdentityText(uuid);
    }
  }

  // The rule without an arbiter, looked at from outside: nobody yields to the group while it knows of a higher member.
  void CheckYielding(Process& p, const Lines& lines) {
    for (const std::string& line : lines) {
      const bool cpu = StartsWith(line, "Resource Manager: Exceeded sustained high CPU threshold");
      const bool memory = StartsWith(line, "Resource Manager: Exceeded allowed memory usage across all processes.");
      m_yields += cpu || memory ? 1 : 0;
      for (const auto& [uuid, peer] : p.m_member->m_peers) {
        if (uuid == UuidOf(p.m_member->m_ownValues)) continue;
        const ResourceValuesV2& own = p.m_member->m_ownValues;
        ASSERT_FALSE(cpu && peer.m_values.cpuPercent > own.cpuPercent) << line;
        ASSERT_FALSE(memory && peer.m_values.memoryLimitPercent > own.memoryLimitPercent) << line;
      }
    }
  }

 public:
  int m_yields = 0;

 private:
  SeededRandom& m_random;
  Wire m_wire;
  std::vector<std::unique_ptr<Process>> m_processes;
  std::priority_queue<Event> m_events;
  std::uint64_t m_order = 0;
  std::int64_t m_now = 0;
};

Settings RandomSettings(SeededRandom& random) {
  constexpr std::uint32_t limits[] = {0, 1, 50, 70, 90, 99, 100, 150};
  Settings settings;
  settings.Cpu(limits[random.Between(0, 7)], random.Between(0, 12)).Interval(random.Between(1, 4));
  settings.InfoEvery(random.Between(0U, 4U));
  settings.m_cpu.m_useRollingMean = random.OneIn(3);
  if (random.OneIn(4)) settings.TerminateCpu(static_cast<unsigned char>(random.Between(0, 255)));
  if (!random.OneIn(4))
    settings.Memory(random.Between<std::uint64_t>(1, 4'000'000), random.Between<std::uint64_t>(0, 60'000'000));
  if (random.OneIn(4)) settings.TerminateMemory(static_cast<unsigned char>(random.Between(0, 255)));
  settings.m_general.m_useVersion1 = random.OneIn(4);
  return settings;
}

// Few different figures, so that ties are common, and each stays for some samples, so that times can run out.
void ChangeAtRandom(SeededRandom& random, World::Process& p) {
  constexpr unsigned int percents[] = {0, 1, 5, 20, 20, 30, 45, 60, 95};
  constexpr unsigned long long bytes[] = {0, 1000, 500'000, 500'000, 1'000'000, 3'999'999, 12'345'678};
  if (random.OneIn(6)) p.m_reading.m_cpuPercent = percents[random.Between(0, 8)];
  if (random.OneIn(6)) p.m_reading.m_memoryBytes = bytes[random.Between(0, 6)];
  if (random.OneIn(6)) p.m_total = random.Between<std::uint64_t>(0, 80'000'000);
}

/// Gives how often a member yielded to the group.
int SimulateAtRandom(SeededRandom& random, const Wire& wire, int members, int seconds) {
  World world(random, wire);
  for (int i = 0; i < members; ++i) {
    World::Process& p = world.Add(RandomSettings(random), random.Between(0, 2), random.Between(0, 2),
                                  random.Between<std::int64_t>(0, 5 * Second));
    p.m_reading = {30, 500'000};
    p.m_change = [&random](World::Process& process) { ChangeAtRandom(random, process); };
  }
  world.RunUntil(seconds * Second);
  world.StopAll();
  return world.m_yields;
}

TEST(ResourceManagerSimulationTest, AHundredMembersFollowTheRules) {
  SeededRandom random;
  EXPECT_GT(SimulateAtRandom(random, Wire{12, 15, 12, 0}, 100, 40), 0) << "the simulation is to reach what it is for";
}

// Among so many there is nearly always a forger that claims to be the highest, so nobody may have to yield.
TEST(ResourceManagerSimulationTest, AHundredMembersFollowTheRulesAmongForgers) {
  SeededRandom random;
  SimulateAtRandom(random, Wire{12, 15, 12, 30}, 100, 40);
}

TEST(ResourceManagerSimulationTest, GroupsOfAnySizeFollowTheRules) {
  int yields = 0;
  for (int round = 0; round < Rounds(30) && !HasFailure(); ++round) {
    SeededRandom random(static_cast<std::uint64_t>(round) + 1);
    const Wire wire{random.Between(0, 20), random.Between(0, 20), random.Between(0, 20), random.Between(0, 100)};
    yields += SimulateAtRandom(random, wire, random.Between(3, 30), 120);
  }
  EXPECT_GT(yields, 0);
}

/// Members that differ in what they use, in step and on a wire without faults.
class OrderlyGroup {
 public:
  OrderlyGroup(const Settings& settings, const std::vector<Reading>& readings) : m_world(m_random, Wire{}) {
    for (std::size_t i = 0; i < readings.size(); ++i) {
      Settings own = settings;
      const Settings lines;
      own.m_lines = lines.m_lines;
      own.m_general.m_logFunc = lines.m_general.m_logFunc;
      own.m_general.m_terminateFunc = lines.m_general.m_terminateFunc;
      m_world.Add(own, 0, 0, static_cast<std::int64_t>(i) * 5 * Millisecond).m_reading = readings[i];
    }
  }

  World& Get() { return m_world; }

 private:
  SeededRandom m_random;
  World m_world;
};

TEST(ResourceManagerSimulationTest, TheHighestYieldOneAfterAnotherUntilTheGroupIsBelow) {
  OrderlyGroup group(Settings().Cpu(50, 3).TerminateCpu(1), {{10, 0}, {31, 0}, {20, 0}, {40, 0}, {5, 0}, {12, 0}});
  World& world = group.Get();
  world.RunUntil(10 * Second);
  EXPECT_EQ(world.Ended(), (std::vector<std::size_t>{1, 3})) << "40 and 31 have gone, 47 are left";
  EXPECT_LT(world.At(3).m_endedAt, world.At(1).m_endedAt);
  world.RunUntil(60 * Second);
  EXPECT_EQ(world.Ended(), (std::vector<std::size_t>{1, 3}));
}

TEST(ResourceManagerSimulationTest, TiesAllYield) {
  OrderlyGroup group(Settings().Cpu(90, 3).TerminateCpu(1),
                     {{30, 0}, {10, 0}, {30, 0}, {30, 0}, {29, 0}, {30, 0}, {30, 0}});
  World& world = group.Get();
  world.RunUntil(60 * Second);
  EXPECT_EQ(world.Ended(), (std::vector<std::size_t>{0, 2, 3, 5, 6}));
  const auto [first, last] = std::minmax({world.At(0).m_endedAt, world.At(2).m_endedAt, world.At(3).m_endedAt,
                                          world.At(5).m_endedAt, world.At(6).m_endedAt});
  EXPECT_LT(last - first, Second) << "in one and the same interval";
}

TEST(ResourceManagerSimulationTest, TheHighestShareOfItsOwnLimitYieldsMemory) {
  OrderlyGroup group(Settings().Memory(1000, 2000).TerminateMemory(1), {{0, 500}, {0, 990}, {0, 700}});
  World& world = group.Get();
  bool metered = false;
  for (std::size_t i = 0; i < world.Size(); ++i) {
    world.At(i).m_change = [&](World::Process& p) {
      p.m_total = 0;
      for (std::size_t other = 0; metered && other < world.Size(); ++other) {
        if (world.At(other).m_alive) p.m_total += world.At(other).m_reading.m_memoryBytes;
      }
    };
  }
  // In its first pass a member has heard of nobody and is the highest it knows; so all are to have met before.
  world.RunUntil(3 * Second - 1);
  metered = true;
  world.RunUntil(60 * Second);
  EXPECT_EQ(world.Ended(), std::vector<std::size_t>{1});
}

/// Members that are over the limit of all from their first check on, until the highest has gone.
class FirstCheckTest : public testing::Test {
 protected:
  /// Who has yielded in the end. Each member starts so long after the one before.
  std::vector<std::size_t> Yielding(std::int64_t apart, bool withReclaimFunction) {
    World world(m_random, Wire{});
    for (const unsigned long long bytes : {200U, 900U, 300U, 400U}) {
      const auto index = static_cast<std::int64_t>(world.Size());
      World::Process& p =
          world.Add(Settings().Memory(1000, 1600).TerminateMemory(1), 0, withReclaimFunction ? 1 : 0, index * apart);
      p.m_reading.m_memoryBytes = bytes;
      p.m_change = [&world](World::Process& changed) { changed.m_total = TotalOf(world); };
      if (withReclaimFunction) GiveNothingBack(*p.m_member);
    }
    world.RunUntil(20 * Second);
    return world.Ended();
  }

 private:
  // Who ends in this very instant is still there for the others.
  static unsigned long long TotalOf(World& world) {
    unsigned long long total = 0;
    for (std::size_t i = 0; i < world.Size(); ++i) {
      const World::Process& p = world.At(i);
      if (p.m_alive || p.m_endedAt == world.Now()) total += p.m_reading.m_memoryBytes;
    }
    return total;
  }

  // A function of the world may give half of it back.
  static void GiveNothingBack(Member& member) {
    member.MemoryReclaim().Remove(u"f0");
    member.MemoryReclaim().Add(u"f0", [](double) {});
  }

  SeededRandom m_random;
};

// Nobody has sent before the first check, so each takes itself for the highest.
TEST_F(FirstCheckTest, MembersThatStartInOneInstantAllYield) {
  EXPECT_EQ(Yielding(0, false), (std::vector<std::size_t>{0, 1, 2, 3}));
}

// Only the first has heard nobody.
TEST_F(FirstCheckTest, OfMembersThatStartApartTheFirstAloneYieldsUnheard) {
  EXPECT_EQ(Yielding(150 * Millisecond, false), std::vector<std::size_t>{0});
}

// It gives the group an interval in which all are heard, before anybody is judged.
TEST_F(FirstCheckTest, WithAReclaimFunctionOnlyTheHighestYields) {
  EXPECT_EQ(Yielding(0, true), std::vector<std::size_t>{1});
  EXPECT_EQ(Yielding(150 * Millisecond, true), std::vector<std::size_t>{1});
}

TEST(ResourceManagerSimulationTest, ASilentMemberAgesOutByItsOwnInterval) {
  SeededRandom random;
  World world(random, Wire{});
  world.Add(Settings().Cpu(99, 100).Interval(1), 0, 0, 0);
  World::Process& slow = world.Add(Settings().Cpu(99, 100).Interval(3), 0, 0, 0);
  World::Process& quick = world.Add(Settings().Cpu(99, 100).Interval(1), 0, 0, 0);
  slow.m_reading.m_cpuPercent = quick.m_reading.m_cpuPercent = 10;
  world.RunUntil(10 * Second - 1);
  EXPECT_EQ(world.At(0).m_member->m_peers.size(), 3U);
  slow.m_alive = quick.m_alive = false;
  // Both were last heard at 9.001 s; the first member looks at every full second.
  world.At(1).m_member->m_wire = world.At(2).m_member->m_wire = nullptr;
  world.RunUntil(10 * Second);
  EXPECT_EQ(world.At(0).m_member->m_peers.size(), 3U);
  world.RunUntil(11 * Second);
  EXPECT_EQ(world.At(0).m_member->m_peers.size(), 2U);
  world.RunUntil(12 * Second);
  EXPECT_EQ(world.At(0).m_member->m_peers.size(), 2U);
  world.RunUntil(13 * Second);
  EXPECT_EQ(world.At(0).m_member->m_peers.size(), 1U);
}

}  // namespace
}  // namespace qilsys::test
