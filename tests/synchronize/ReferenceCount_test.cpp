#include "qilsys/ReferenceCount.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <memory>
#include <new>
#include <stdexcept>
#include <thread>
#include <type_traits>
#include <unordered_set>
#include <utility>
#include <vector>

#include "support/CaughtAssertion.h"
#include "support/DebugChannel.h"
#include "support/Latch.h"
#include "support/Random.h"
#include "support/System.h"

using qilsys::test::CatchAssertion;
using qilsys::test::CaughtAssertion;
using qilsys::test::DebugChannelCapture;
using qilsys::test::Latch;
using qilsys::test::Rounds;

namespace {

// Tells when it goes.
class Counted : public RefCntObject {
 public:
  explicit Counted(int* destroyed = nullptr) : m_destroyed(destroyed) {}
  int m_value = 1;

 protected:
  ~Counted() override {
    if (m_destroyed) {
      ++*m_destroyed;
    }
  }

 private:
  int* m_destroyed;
};

class Derived : public Counted {
  using Counted::Counted;
};

using Ptr = RefCntPtr<Counted, RefCntObject>;

static_assert(sizeof(Ptr) == sizeof(void*));
static_assert(!std::is_destructible_v<RefCntObject>);
static_assert(!std::is_destructible_v<RefCntObjectNonVirtualBase<RefCntObject>>);
static_assert(!std::is_polymorphic_v<RefCntObjectNonVirtualBase<RefCntObject>>);
static_assert(sizeof(RefCntObjectNonVirtualBase<RefCntObject>) == 8);
static_assert(std::is_nothrow_move_constructible_v<Ptr>);
static_assert(std::is_same_v<RefCntPtr<Counted>, Ptr>);

// ---- Objects

TEST(RefCntObject, StartsWithoutOwners) {
  int destroyed = 0;
  Counted* const object = new Counted(&destroyed);
  EXPECT_EQ(object->UseCount(), 0);
  EXPECT_EQ(object->AddReference(), 1);
  EXPECT_EQ(object->AddReference(), 2);
  EXPECT_EQ(object->UseCount(), 2);
  EXPECT_EQ(object->RemoveReference(), 1);
  EXPECT_EQ(destroyed, 0);
  EXPECT_EQ(object->RemoveReference(), 0);
  EXPECT_EQ(destroyed, 1);
}

TEST(RefCntObject, TheBasesOperationDestroysToo) {
  int destroyed = 0;
  const RefCntObjectNonVirtualBase<RefCntObject>* const object = new Counted(&destroyed);
  object->AddReference();
  EXPECT_EQ(object->RemoveReference(), 0);
  EXPECT_EQ(destroyed, 1);
}

TEST(RefCntObject, CopiesHaveNoOwners) {
  int destroyed = 0;
  const Ptr source(new Counted(&destroyed));
  Counted* const copy = new Counted(*source);
  EXPECT_EQ(copy->UseCount(), 0);
  EXPECT_EQ(source->UseCount(), 1);
  const Ptr owner(copy);
}

TEST(RefCntObject, AssignmentLeavesBothCounts) {
  const Ptr one(new Counted);
  const Ptr two(new Counted);
  const Ptr twoAgain(two);
  two->m_value = 2;
  *one = *two;
  EXPECT_EQ(one->m_value, 2);
  EXPECT_EQ(one->UseCount(), 1);
  EXPECT_EQ(two->UseCount(), 2);
}

TEST(RefCntObject, SurplusRemovalGoesBelowZeroAndDestroysNothing) {
  int destroyed = 0;
  Counted* const object = new Counted(&destroyed);
  EXPECT_EQ(object->RemoveReference(), -1);
  EXPECT_EQ(object->RemoveReference(), -2);
  EXPECT_EQ(destroyed, 0);
  object->AddReference();
  object->AddReference();
  EXPECT_EQ(object->AddReference(), 1);
  EXPECT_EQ(object->RemoveReference(), 0);
  EXPECT_EQ(destroyed, 1);
}

TEST(RefCntObject, CountsThroughPointersToConst) {
  const Counted* const object = new Counted;
  EXPECT_EQ(object->AddReference(), 1);
  EXPECT_EQ(object->RemoveReference(), 0);
}

// ---- Their memory

class alignas(128) Aligned : public RefCntObject {};

TEST(RefCntObjectMemory, IsAlignedAsItsClassWants) {
  for (const RefCntPtr<Aligned>& object :
       {RefCntPtr<Aligned>(new Aligned), RefCntPtr<Aligned>(new (std::nothrow) Aligned)}) {
    EXPECT_EQ(reinterpret_cast<std::uintptr_t>(object.get()) % 128, 0u);
  }
}

TEST(RefCntObjectMemory, MayBeGivenByTheCaller) {
  alignas(Counted) std::byte place[sizeof(Counted)];
  int destroyed = 0;
  Counted* const object = new (place) Counted(&destroyed);
  EXPECT_EQ(static_cast<void*>(object), place);
}

// A checker of memory sees whether it is given back.
template <class Base>
class Throwing : public Base {
 public:
  Throwing() { throw std::runtime_error("constructor"); }
};

TEST(RefCntObjectMemory, IsGivenBackWhereAConstructorThrows) {
  EXPECT_THROW(new Throwing<Counted>, std::runtime_error);
  EXPECT_THROW(new Throwing<Aligned>, std::runtime_error);
  EXPECT_THROW(new (std::nothrow) Throwing<Counted>, std::runtime_error);
  EXPECT_THROW(new (std::nothrow) Throwing<Aligned>, std::runtime_error);
}

// A counting class of its own, which may look inside its count.
class Probe : public RefCntObjectNonVirtualBase<Probe> {
 public:
  void TakeOver() const { SetRefCountToOne(); }
  int DropOnly() const { return RemoveReferenceInternal(); }
};

TEST(RefCntObjectNonVirtualBase, MostDerivedClassMaySetOneOwner) {
  Probe* const probe = new Probe;
  probe->AddReference();
  probe->AddReference();
  probe->TakeOver();
  EXPECT_EQ(probe->UseCount(), 1);
  EXPECT_EQ(probe->RemoveReference(), 0);
}

TEST(RefCntObjectNonVirtualBase, AssignmentLeavesBothCounts) {
  Probe one;
  Probe two;
  two.AddReference();
  EXPECT_EQ(&(one = two), &one);
  EXPECT_EQ(one.UseCount(), 0);
  EXPECT_EQ(two.UseCount(), 1);
}

TEST(RefCntObjectNonVirtualBase, InternalRemovalNeverDestroys) {
  Probe probe;
  probe.AddReference();
  EXPECT_EQ(probe.DropOnly(), 0);
  EXPECT_EQ(probe.DropOnly(), -1);
}

TEST(RefCntObjectNonVirtualBase, CarriesItsMark) {
  struct Layout {
    std::int32_t count;
    std::uint32_t mark;
  };
  Probe probe;
  probe.AddReference();
  const Probe copy(probe);
  Layout layout;
  static_assert(sizeof(Probe) == sizeof(Layout));
  std::memcpy(&layout, static_cast<const void*>(&probe), sizeof(layout));
  EXPECT_EQ(layout.count, 1);
  EXPECT_EQ(layout.mark, 0xC466E877u);
  std::memcpy(&layout, static_cast<const void*>(&copy), sizeof(layout));
  EXPECT_EQ(layout.count, 0);
  EXPECT_EQ(layout.mark, 0xC466E877u);
}

// The count can't be driven there one by one, so it is written from outside.
void WriteCount(Probe& probe, std::int32_t count) { std::memcpy(static_cast<void*>(&probe), &count, sizeof(count)); }

TEST(RefCntObjectDeathTest, EndsTheProcessWhenTheCountReachesItsLimit) {
  Probe probe;
  WriteCount(probe, 0x7FFFFFFD);
  EXPECT_EQ(probe.AddReference(), 0x7FFFFFFE);
  EXPECT_EXIT(probe.AddReference(), qilsys::test::EndedByAbort, "");
}

// ---- The pointer

class RefCntPtrTest : public testing::Test {
 protected:
  int m_destroyed = 0;
  Ptr m_pointer{new Counted(&m_destroyed)};
};

TEST_F(RefCntPtrTest, OwnsAndReleases) {
  EXPECT_EQ(m_pointer->UseCount(), 1);
  m_pointer.reset();
  EXPECT_EQ(m_destroyed, 1);
  EXPECT_EQ(m_pointer.get(), nullptr);
}

TEST_F(RefCntPtrTest, NullHasNothingToCount) {
  const Ptr empty;
  const Ptr fromNull(nullptr);
  const Ptr fromNullPointer(static_cast<Counted*>(nullptr));
  const Ptr copy(empty);
  EXPECT_FALSE(empty);
  EXPECT_FALSE(fromNull);
  EXPECT_FALSE(fromNullPointer);
  EXPECT_FALSE(copy);
}

TEST_F(RefCntPtrTest, CopyAddsAnOwner) {
  {
    const Ptr copy(m_pointer);
    EXPECT_EQ(copy.get(), m_pointer.get());
    EXPECT_EQ(m_pointer->UseCount(), 2);
  }
  EXPECT_EQ(m_pointer->UseCount(), 1);
}

TEST_F(RefCntPtrTest, MoveChangesNoCount) {
  Ptr moved(std::move(m_pointer));
  EXPECT_EQ(m_pointer.get(), nullptr);
  EXPECT_EQ(moved->UseCount(), 1);
  Ptr assigned;
  assigned = std::move(moved);
  EXPECT_EQ(moved.get(), nullptr);
  EXPECT_EQ(assigned->UseCount(), 1);
}

TEST_F(RefCntPtrTest, RawPointerBecomesAnOwnerAgain) {
  const Ptr again(m_pointer.get());
  EXPECT_EQ(m_pointer->UseCount(), 2);
}

TEST_F(RefCntPtrTest, SelfAssignmentKeepsTheObject) {
  const Ptr& same = m_pointer;
  m_pointer = same;
  EXPECT_EQ(m_pointer->UseCount(), 1);
  Ptr& movedSame = m_pointer;
  m_pointer = std::move(movedSame);
  EXPECT_EQ(m_pointer->UseCount(), 1);
  m_pointer = m_pointer.get();
  EXPECT_EQ(m_pointer->UseCount(), 1);
  m_pointer.reset(m_pointer.get());
  EXPECT_EQ(m_pointer->UseCount(), 1);
  EXPECT_EQ(m_destroyed, 0);
}

TEST_F(RefCntPtrTest, AssignmentReleasesTheOldObject) {
  m_pointer = Ptr(new Counted);
  EXPECT_EQ(m_destroyed, 1);
  EXPECT_EQ(m_pointer->UseCount(), 1);
  m_pointer = nullptr;
  EXPECT_FALSE(m_pointer);
}

// A list node: the old object alone keeps the new one alive.
class Node : public RefCntObject {
 public:
  RefCntPtr<Node> m_next;
};

TEST(RefCntPtrAssignment, NewObjectMayBeKeptByTheOldOne) {
  RefCntPtr<Node> head(new Node);
  head->m_next = new Node;
  Node* const second = head->m_next.get();
  head = head->m_next;
  EXPECT_EQ(head.get(), second);
  EXPECT_EQ(head->UseCount(), 1);
}

// Looks back at the pointer that is letting it go.
class LooksBack : public RefCntObject {
 public:
  LooksBack(RefCntPtr<LooksBack>* owner, bool* sawEmpty) : m_owner(owner), m_sawEmpty(sawEmpty) {}

 protected:
  ~LooksBack() override { *m_sawEmpty = !*m_owner; }

 private:
  RefCntPtr<LooksBack>* m_owner;
  bool* m_sawEmpty;
};

TEST(RefCntPtrReset, DestructorSeesAnEmptyPointer) {
  bool sawEmpty = false;
  RefCntPtr<LooksBack> owner;
  owner = new LooksBack(&owner, &sawEmpty);
  owner.reset();
  EXPECT_TRUE(sawEmpty);
}

TEST(RefCntPtrReset, DestructionEmptiesThePointerFirst) {
  bool sawEmpty = false;
  alignas(RefCntPtr<LooksBack>) std::byte storage[sizeof(RefCntPtr<LooksBack>)];
  auto* const owner = new (storage) RefCntPtr<LooksBack>;
  *owner = new LooksBack(owner, &sawEmpty);
  std::destroy_at(owner);
  EXPECT_TRUE(sawEmpty);
}

TEST_F(RefCntPtrTest, ConvertsToABaseClass) {
  RefCntPtr<Derived> derived(new Derived);
  const Ptr base(derived);
  EXPECT_EQ(derived->UseCount(), 2);
  const RefCntPtr<const Counted> constant(base);
  EXPECT_EQ(derived->UseCount(), 3);
  EXPECT_TRUE(base == derived);
  const Ptr moved(std::move(derived));
  EXPECT_EQ(derived.get(), nullptr);
  EXPECT_EQ(moved->UseCount(), 3);
  static_assert(!std::is_constructible_v<RefCntPtr<Derived>, Ptr>);
}

TEST_F(RefCntPtrTest, Compares) {
  const Ptr same(m_pointer);
  const Ptr other(new Counted);
  EXPECT_TRUE(same == m_pointer);
  EXPECT_TRUE(other != m_pointer);
  EXPECT_TRUE(m_pointer == same.get());
  EXPECT_TRUE(same.get() == m_pointer);
  EXPECT_TRUE(m_pointer != nullptr);
  EXPECT_TRUE(nullptr == Ptr());
  EXPECT_TRUE((other < m_pointer) != (m_pointer < other));
  EXPECT_TRUE(same <= m_pointer);
}

TEST_F(RefCntPtrTest, Swaps) {
  Counted* const object = m_pointer.get();
  Ptr other;
  swap(other, m_pointer);
  EXPECT_EQ(other.get(), object);
  EXPECT_EQ(m_pointer.get(), nullptr);
  m_pointer.swap(other);
  EXPECT_EQ(m_pointer.get(), object);
}

TEST_F(RefCntPtrTest, IsAKeyOfHashedContainers) {
  std::unordered_set<Ptr, RefCntPtrHash> set;
  set.insert(m_pointer);
  set.insert(m_pointer);
  set.insert(Ptr());
  EXPECT_EQ(set.size(), 2u);
  EXPECT_EQ(set.count(m_pointer), 1u);
  static_assert(std::is_empty_v<RefCntPtrHash>);
}

// ---- Null dereferenced

const CaughtAssertion NullDereferenced{"public/qilsys/ReferenceCount", 340, "Null pointer dereferenced", 0x00BF554A,
                                       "LogicException_LogicAssert_0x00BF554A"};

TEST(RefCntPtrNull, DereferencingIsAnAssertion) {
  const Ptr null;
  EXPECT_EQ(CatchAssertion([&null] { static_cast<void>(null->m_value); }), NullDereferenced);
  EXPECT_EQ(CatchAssertion([&null] { static_cast<void>((*null).m_value); }), NullDereferenced);
}

TEST(RefCntPtrNull, WithoutHookItThrows) {
  DebugChannelCapture channel;
  EXPECT_THROW(*Ptr(), LogicException);
  EXPECT_EQ(channel.Take(),
            "LogicAssert failed (but no hook has been set) at public/qilsys/ReferenceCount line 340: Null pointer "
            "dereferenced\n");
}

TEST(RefCntPtrNullDeathTest, EndsTheProcessWhenTheHookReturns) {
  EXPECT_EXIT(
      {
        const qilsys::test::RecordedAssertions asserts;
        *Ptr();
      },
      qilsys::test::EndedByAbort, "");
}

// ---- Threads

// Runs both at once: neither begins before the other is there.
template <class One, class Two>
void Together(One one, Two two) {
  Latch start(2);
  std::thread other([&] {
    start.ArriveAndWait();
    two();
  });
  start.ArriveAndWait();
  one();
  other.join();
}

TEST(RefCntPtrThreads, NoOwnerIsLostOrCountedTwice) {
  const int rounds = Rounds(3'000'000);
  int destroyed = 0;
  Ptr shared(new Counted(&destroyed));
  const auto copyAndDrop = [&shared, rounds] {
    for (int i = 0; i < rounds; ++i) {
      const Ptr copy(shared);
    }
  };
  Together(copyAndDrop, copyAndDrop);
  EXPECT_EQ(shared->UseCount(), 1);
  shared.reset();
  EXPECT_EQ(destroyed, 1);
}

TEST(RefCntPtrThreads, ExactlyOneThreadSeesZeroAndDestroys) {
  const int rounds = Rounds(2000);
  for (int round = 0; round < rounds; ++round) {
    int destroyed = 0;
    const Counted* const object = new Counted(&destroyed);
    object->AddReference();
    object->AddReference();
    int results[2] = {};
    Together([&] { results[0] = object->RemoveReference(); }, [&] { results[1] = object->RemoveReference(); });
    ASSERT_EQ(results[0] + results[1], 1);
    ASSERT_EQ(destroyed, 1);
  }
}

}  // namespace
