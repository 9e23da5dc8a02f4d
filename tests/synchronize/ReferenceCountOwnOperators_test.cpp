#include "qilsys/ReferenceCount.h"

#include <gtest/gtest.h>

#include <new>

#include "OwnOperators.h"
#include "qilsys/TEvent.h"
#include "qilsys/TSemaphore.h"

namespace {

using qilsys::test::IsOwn;
using qilsys::test::OwnMemory;

class Own : public RefCntObject {};

class alignas(64) OwnAligned : public RefCntObject {};

TEST(OwnOperators, AreThoseOfTheProgram) {
  int* number = nullptr;
  {
    const OwnMemory own;
    number = new int(1);
  }
  EXPECT_TRUE(IsOwn(number));
  delete number;
}

template <class T>
class OwnOperatorsTest : public testing::Test {};

using Counted = testing::Types<TCancelEvent, Own, OwnAligned>;
TYPED_TEST_SUITE(OwnOperatorsTest, Counted);

TYPED_TEST(OwnOperatorsTest, CountedObjectsComeFromTheLibraryAndGoBackThere) {
  RefCntPtr<TypeParam> object;
  {
    const OwnMemory own;
    object = new TypeParam;
  }
  EXPECT_FALSE(IsOwn(object.get()));
  object.reset();
}

TYPED_TEST(OwnOperatorsTest, SoDoThoseThatAreMadeWithoutRaising) {
  RefCntPtr<TypeParam> object;
  {
    const OwnMemory own;
    object = new (std::nothrow) TypeParam;
  }
  EXPECT_FALSE(IsOwn(object.get()));
  object.reset();
}

TEST(OwnOperators, AScopeThatTheProgramMakesMayBeDestroyedByTheLibrary) {
  const RefCntPtr<TSemaphore> semaphore = TSemaphore::Construct(1);
  RefCntPtr<TSemaphoreScope> scope;
  {
    const OwnMemory own;
    scope = new TSemaphoreScope(semaphore);
  }
  EXPECT_FALSE(IsOwn(scope.get()));
  scope.reset();
  EXPECT_TRUE(semaphore->TryAcquire());
}

TEST(OwnOperators, AnObjectMayBeLetGoInsideOfTheLibrary) {
  RefCntPtr<TCancelEvent> parent;
  {
    const OwnMemory own;
    parent = new TCancelEvent;
    parent->Add(new TCancelEvent);
  }
  parent.reset();
}

}  // namespace
