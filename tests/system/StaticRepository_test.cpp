#include "qilsys/StaticRepository.h"

#include <gtest/gtest.h>

#include <atomic>
#include <boost/any.hpp>
#include <functional>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

#include "support/Latch.h"
#include "support/Random.h"

namespace {

using qilsys::test::Latch;

// What happened to objects, in order. Of one thread, but for the counts.
struct Journal {
  std::vector<std::string> made;
  std::vector<std::string> destroyed;
  std::atomic<int> makings = 0;
  std::atomic<int> alive = 0;
};

// An object that tells when it ends. It is copied on its way into a boost::any; only the last copy counts.
class Witness {
 public:
  Witness(Journal& journal, std::string name, std::function<void()> atEnd = {})
      : m_journal(&journal), m_name(std::move(name)), m_atEnd(std::move(atEnd)) {
    ++m_journal->alive;
  }
  Witness(const Witness&) = delete;
  Witness(Witness&&) = delete;
  Witness& operator=(const Witness&) = delete;
  Witness& operator=(Witness&&) = delete;
  ~Witness() {
    if (m_atEnd) m_atEnd();
    m_journal->destroyed.push_back(m_name);
    --m_journal->alive;
  }

 private:
  Journal* m_journal;
  std::string m_name;
  std::function<void()> m_atEnd;
};

using Held = std::shared_ptr<Witness>;

// What a test asks for, with the functions that InitOnce wants.
struct Wish {
  Journal& journal;
  std::string name;
  std::function<void()> inside = {};
  std::function<void()> atEnd = {};
  void* slot = nullptr;

  void Ask() { InitOnce(&slot, &Create, this, &Extract); }
  static boost::any* Create(void* arg) {
    Wish& wish = *static_cast<Wish*>(arg);
    ++wish.journal.makings;
    if (wish.inside) wish.inside();
    wish.journal.made.push_back(wish.name);
    return new boost::any(std::make_shared<Witness>(wish.journal, wish.name, wish.atEnd));
  }
  static void* Extract(boost::any* object) { return boost::any_cast<Held>(object)->get(); }
};

using Names = std::vector<std::string>;

class StaticRepository : public testing::Test {
 protected:
  StaticRepository() { InitializeStaticRepository(); }
  ~StaticRepository() override { DeinitializeStaticRepository(); }

  Journal m_journal;
};

TEST_F(StaticRepository, MakesAnObjectAndFillsItsSlot) {
  Wish wish{m_journal, "a"};
  wish.Ask();
  ASSERT_NE(wish.slot, nullptr);
  EXPECT_EQ(m_journal.alive, 1);
  const void* const first = wish.slot;
  wish.Ask();
  EXPECT_EQ(wish.slot, first);
  EXPECT_EQ(m_journal.makings, 1);
}

TEST_F(StaticRepository, GivesTheSameObjectForASlotThatWasCleared) {
  Wish wish{m_journal, "a"};
  wish.Ask();
  const void* const first = wish.slot;
  wish.slot = nullptr;
  wish.Ask();
  EXPECT_EQ(wish.slot, first);
  EXPECT_EQ(m_journal.makings, 1);
}

TEST_F(StaticRepository, LeavesAFilledSlotAlone) {
  int other = 0;
  Wish wish{m_journal, "a"};
  wish.slot = &other;
  wish.Ask();
  EXPECT_EQ(wish.slot, &other);
  EXPECT_EQ(m_journal.makings, 0);
}

TEST_F(StaticRepository, DoesNothingWithoutASlot) {
  Wish wish{m_journal, "a"};
  InitOnce(nullptr, &Wish::Create, &wish, &Wish::Extract);
  EXPECT_EQ(m_journal.makings, 0);
}

TEST_F(StaticRepository, IsNotMadeTwice) {
  Wish wish{m_journal, "a"};
  wish.Ask();
  InitializeStaticRepository();
  EXPECT_EQ(m_journal.alive, 1);
  const void* const first = wish.slot;
  wish.slot = nullptr;
  wish.Ask();
  EXPECT_EQ(wish.slot, first);
}

TEST_F(StaticRepository, DestroysTheNewestFirst) {
  Wish wishes[] = {{m_journal, "a"}, {m_journal, "b"}, {m_journal, "c"}};
  for (Wish& wish : wishes) wish.Ask();
  DeinitializeStaticRepository();
  EXPECT_EQ(m_journal.destroyed, (Names{"c", "b", "a"}));
  EXPECT_NE(wishes[0].slot, nullptr);
}

TEST_F(StaticRepository, DestroysWhatWasMadeInsideAnotherBeforeThat) {
  Wish inner{m_journal, "inner"};
  Wish outer{m_journal, "outer", [&] { inner.Ask(); }};
  Wish last{m_journal, "last"};
  outer.Ask();
  last.Ask();
  EXPECT_NE(inner.slot, nullptr);
  EXPECT_NE(outer.slot, nullptr);
  EXPECT_EQ(m_journal.made, (Names{"inner", "outer", "last"}));
  DeinitializeStaticRepository();
  EXPECT_EQ(m_journal.destroyed, (Names{"last", "inner", "outer"}));
}

TEST_F(StaticRepository, MakesNothingAfterTeardown) {
  DeinitializeStaticRepository();
  DeinitializeStaticRepository();
  Wish wish{m_journal, "a"};
  wish.Ask();
  EXPECT_EQ(wish.slot, nullptr);
  EXPECT_EQ(m_journal.makings, 0);
}

TEST_F(StaticRepository, CanBeMadeAgain) {
  Wish wish{m_journal, "a"};
  wish.Ask();
  DeinitializeStaticRepository();
  InitializeStaticRepository();
  wish.slot = nullptr;
  wish.Ask();
  EXPECT_NE(wish.slot, nullptr);
  EXPECT_EQ(m_journal.makings, 2);
  EXPECT_EQ(m_journal.alive, 1);
}

// ---- Functions that go astray

TEST_F(StaticRepository, RunsAFunctionWithinItselfThatAsksForItsOwnSlot) {
  int depth = 0;
  Wish wish{m_journal, "a"};
  wish.inside = [&] {
    if (++depth < 3) wish.Ask();
  };
  wish.Ask();
  EXPECT_EQ(m_journal.makings, 3);
  // One object to a slot: what the inner calls made has given way to that of the outermost.
  EXPECT_EQ(m_journal.alive, 1);
  const void* const first = wish.slot;
  wish.slot = nullptr;
  wish.Ask();
  EXPECT_EQ(wish.slot, first);
  EXPECT_EQ(m_journal.makings, 3);
  DeinitializeStaticRepository();
  EXPECT_EQ(m_journal.alive, 0);
}

TEST_F(StaticRepository, ForgetsASlotWhoseFunctionRaises) {
  Wish before{m_journal, "before"};
  Wish inner{m_journal, "inner"};
  bool isFirst = true;
  Wish wish{m_journal, "a"};
  wish.inside = [&] {
    inner.Ask();
    if (std::exchange(isFirst, false)) throw std::runtime_error("not yet");
  };
  before.Ask();
  EXPECT_THROW(wish.Ask(), std::runtime_error);
  EXPECT_EQ(wish.slot, nullptr);
  EXPECT_NE(inner.slot, nullptr);
  wish.Ask();
  EXPECT_NE(wish.slot, nullptr);
  DeinitializeStaticRepository();
  EXPECT_EQ(m_journal.destroyed, (Names{"a", "inner", "before"}));
}

TEST_F(StaticRepository, KeepsTheInnerObjectWhereTheOuterOneRaises) {
  int depth = 0;
  Wish wish{m_journal, "a"};
  wish.inside = [&] {
    if (++depth > 1) return;
    wish.Ask();
    throw std::runtime_error("outer");
  };
  EXPECT_THROW(wish.Ask(), std::runtime_error);
  EXPECT_NE(wish.slot, nullptr);
  EXPECT_EQ(m_journal.alive, 1);
  DeinitializeStaticRepository();
  EXPECT_EQ(m_journal.destroyed, (Names{"a"}));
}

TEST_F(StaticRepository, HandsNullOnAndKeepsIt) {
  static int s_makings;
  s_makings = 0;
  void* slot = nullptr;
  const auto create = [](void*) -> boost::any* {
    ++s_makings;
    return nullptr;
  };
  static int s_instead;
  const auto extract = [](boost::any* object) -> void* { return object == nullptr ? &s_instead : nullptr; };
  InitOnce(&slot, create, nullptr, extract);
  EXPECT_EQ(slot, &s_instead);
  slot = nullptr;
  InitOnce(&slot, create, nullptr, extract);
  EXPECT_EQ(slot, &s_instead);
  EXPECT_EQ(s_makings, 1);
}

TEST_F(StaticRepository, KeepsAnObjectThatIsRefused) {
  Wish wish{m_journal, "a"};
  const auto refuse = [](boost::any*) -> void* { throw std::runtime_error("refused"); };
  EXPECT_THROW(InitOnce(&wish.slot, &Wish::Create, &wish, refuse), std::runtime_error);
  EXPECT_EQ(wish.slot, nullptr);
  wish.Ask();
  EXPECT_NE(wish.slot, nullptr);
  EXPECT_EQ(m_journal.makings, 1);
}

TEST_F(StaticRepository, MayBeTornDownByAFunction) {
  Wish before{m_journal, "before"};
  Wish wish{m_journal, "a", [] { DeinitializeStaticRepository(); }};
  before.Ask();
  wish.Ask();
  EXPECT_EQ(wish.slot, nullptr);
  EXPECT_EQ(m_journal.destroyed, (Names{"before", "a"}));
  Wish raising{m_journal, "b", [] {
                 DeinitializeStaticRepository();
                 throw std::runtime_error("torn down");
               }};
  InitializeStaticRepository();
  EXPECT_THROW(raising.Ask(), std::runtime_error);
  EXPECT_EQ(raising.slot, nullptr);
  EXPECT_EQ(m_journal.alive, 0);
}

TEST_F(StaticRepository, MakesAndDestroysWhatADestructorAsksFor) {
  Wish late{m_journal, "late"};
  Wish first{m_journal, "first"};
  Wish wish{m_journal, "a", {}, [&] { late.Ask(); }};
  first.Ask();
  wish.Ask();
  DeinitializeStaticRepository();
  EXPECT_EQ(m_journal.made, (Names{"first", "a", "late"}));
  EXPECT_EQ(m_journal.destroyed, (Names{"a", "late", "first"}));
}

TEST_F(StaticRepository, MayBeTornDownByADestructor) {
  Wish first{m_journal, "first"};
  Wish wish{m_journal, "a", {}, [] { DeinitializeStaticRepository(); }};
  first.Ask();
  wish.Ask();
  DeinitializeStaticRepository();
  EXPECT_EQ(m_journal.destroyed, (Names{"first", "a"}));
}

// ---- Many threads

constexpr int Threads = 16;

// Runs `work` on each thread, all at once.
void OnAllThreads(const std::function<void(int)>& work) {
  Latch start(Threads);
  std::vector<std::thread> threads;
  for (int i = 0; i < Threads; ++i) {
    threads.emplace_back([&, i] {
      start.ArriveAndWait();
      work(i);
    });
  }
  for (std::thread& thread : threads) thread.join();
}

TEST_F(StaticRepository, MakesOneObjectHoweverManyThreadsAsk) {
  for (int round = qilsys::test::Rounds(50); round > 0; --round) {
    Journal journal;
    Wish inner{journal, "inner"};
    Wish wish{journal, "a", [&] { inner.Ask(); }};
    const void* seen[Threads];
    OnAllThreads([&](int i) {
      // Half of them begin with what the others reach from inside.
      if (i % 2 == 0) inner.Ask();
      wish.Ask();
      seen[i] = wish.slot;
    });
    EXPECT_EQ(journal.makings, 2);
    for (const void* slot : seen) EXPECT_EQ(slot, wish.slot);
    EXPECT_NE(wish.slot, nullptr);
    DeinitializeStaticRepository();
    EXPECT_EQ(journal.alive, 0);
    InitializeStaticRepository();
  }
}

TEST_F(StaticRepository, IsMadeOnceHoweverManyThreadsMakeIt) {
  Wish wish{m_journal, "a"};
  OnAllThreads([&](int) {
    InitializeStaticRepository();
    wish.Ask();
  });
  EXPECT_EQ(m_journal.makings, 1);
}

// Whoever comes too late finds nothing made; nobody finds a repository that is gone.
TEST_F(StaticRepository, IsTornDownWhileThreadsAsk) {
  for (int round = qilsys::test::Rounds(50); round > 0; --round) {
    Journal journal;
    std::vector<std::unique_ptr<Wish>> wishes;
    for (int i = 0; i < Threads; ++i) wishes.push_back(std::make_unique<Wish>(Wish{journal, std::to_string(i)}));
    InitializeStaticRepository();
    OnAllThreads([&](int i) {
      if (i % 8 == 7) {
        DeinitializeStaticRepository();
      } else {
        for (const auto& wish : wishes) wish->Ask();
      }
    });
    EXPECT_EQ(journal.alive, 0);
    for (const auto& wish : wishes) EXPECT_LE(wish->slot != nullptr, journal.makings > 0);
  }
}

}  // namespace
