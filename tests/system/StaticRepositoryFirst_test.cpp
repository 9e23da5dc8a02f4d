// The first call of a process, which finds no repository.
#include <gtest/gtest.h>

#include <boost/any.hpp>

#include "qilsys/StaticRepository.h"

namespace {

TEST(StaticRepositoryFirst, IsMadeByTheFirstThatAsks) {
  DeinitializeStaticRepository();
  void* slot = nullptr;
  int value = 7;
  InitOnce(
      &slot, [](void* arg) { return new boost::any(*static_cast<int*>(arg)); }, &value,
      [](boost::any* made) -> void* { return boost::any_cast<int>(made); });
  ASSERT_NE(slot, nullptr);
  EXPECT_EQ(*static_cast<int*>(slot), 7);
  DeinitializeStaticRepository();
}

}  // namespace
