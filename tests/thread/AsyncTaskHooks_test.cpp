#include "qilsys/AsyncTaskHooks.h"

#include <gtest/gtest.h>

#include <stdexcept>
#include <utility>
#include <vector>

namespace {

using namespace AsyncTask;

// Leaves no hook behind.
class AsyncTaskHooksTest : public testing::Test {
 protected:
  ~AsyncTaskHooksTest() override {
    SetExceptionHook(nullptr);
    SetExecutionHook(nullptr);
    SetOnSharedStateCreatedHook(nullptr);
  }
};

TEST_F(AsyncTaskHooksTest, WithoutOneAnExceptionStaysItself) {
  const std::exception_ptr exception = std::make_exception_ptr(std::runtime_error("one"));
  EXPECT_EQ(_ApplyExceptionHook(exception), exception);
  EXPECT_EQ(_ApplyExceptionHook(nullptr), nullptr);
}

TEST_F(AsyncTaskHooksTest, TheHookOfExceptionsGivesAnother) {
  const std::exception_ptr one = std::make_exception_ptr(std::runtime_error("one"));
  const std::exception_ptr other = std::make_exception_ptr(std::runtime_error("other"));
  SetExceptionHook([&](std::exception_ptr exception) {
    EXPECT_EQ(exception, one);
    return other;
  });
  EXPECT_EQ(_ApplyExceptionHook(one), other);
  SetExceptionHook([&](std::exception_ptr exception) { return exception; });
  EXPECT_EQ(_ApplyExceptionHook(one), one) << "the second hook replaces the first";
  SetExceptionHook(nullptr);
  EXPECT_EQ(_ApplyExceptionHook(other), other);
}

TEST_F(AsyncTaskHooksTest, WithoutOneWorkIsMovedOn) {
  int calls = 0;
  std::function<void()> work = [&] { ++calls; };
  _ApplyExecutionHook(std::move(work), true)();
  EXPECT_EQ(calls, 1);
}

TEST_F(AsyncTaskHooksTest, TheHookOfWorkIsGivenTheFlagAndMayWrapIt) {
  std::vector<int> order;
  std::vector<bool> flags;
  SetExecutionHook([&](std::function<void()> work, bool flag) -> std::function<void()> {
    flags.push_back(flag);
    return [&order, work = std::move(work)] {
      order.push_back(1);
      work();
      order.push_back(3);
    };
  });
  _ApplyExecutionHook([&] { order.push_back(2); }, true)();
  EXPECT_EQ(order, (std::vector<int>{1, 2, 3}));
  _ApplyExecutionHook([] {}, false);
  EXPECT_EQ(flags, (std::vector<bool>{true, false}));
}

TEST_F(AsyncTaskHooksTest, TheHookOfStatesIsCalledIfThereIsOne) {
  _ApplyOnSharedStateCreatedHook({});
  int calls = 0;
  SetOnSharedStateCreatedHook([&](std::weak_ptr<SharedStateBase> state) {
    EXPECT_TRUE(state.expired());
    ++calls;
  });
  _ApplyOnSharedStateCreatedHook({});
  EXPECT_EQ(calls, 1);
}

}  // namespace
