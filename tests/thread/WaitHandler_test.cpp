#include "qilsys/WaitHandler.h"

#include <gtest/gtest.h>

#include "qilsys/AsyncTaskTls.h"

namespace {

using namespace AsyncTask;

class PlainHandler : public IWaitHandler {
 public:
  explicit PlainHandler(IWaitHandler** seenAtTheEnd = nullptr) : m_seenAtTheEnd(seenAtTheEnd) {}
  ~PlainHandler() override {
    if (m_seenAtTheEnd != nullptr) *m_seenAtTheEnd = TLS::Get().GetWaitHandler();
  }
  void Wait(SharedStateBase&) override {}
  bool WaitFor(SharedStateBase&, std::chrono::milliseconds) override { return true; }

 private:
  IWaitHandler** m_seenAtTheEnd;
};

IWaitHandler* Current() { return TLS::Get().GetWaitHandler(); }

TEST(WaitHandlerScopeGuard, PutsTheEarlierHandlerBack) {
  PlainHandler outerHandler;
  PlainHandler innerHandler;
  {
    const WaitHandlerScopeGuard outer(&outerHandler);
    EXPECT_EQ(Current(), &outerHandler);
    {
      const WaitHandlerScopeGuard inner(&innerHandler);
      EXPECT_EQ(Current(), &innerHandler);
      const WaitHandlerScopeGuard none(nullptr);
      EXPECT_EQ(Current(), nullptr);
    }
    EXPECT_EQ(Current(), &outerHandler);
  }
  EXPECT_EQ(Current(), nullptr);
}

TEST(OwningWaitHandlerScopeGuard, PutsTheEarlierHandlerBackAndThenDeletesItsOwn) {
  PlainHandler outerHandler;
  const WaitHandlerScopeGuard outer(&outerHandler);
  IWaitHandler* seenAtTheEnd = nullptr;
  {
    auto handler = std::make_unique<PlainHandler>(&seenAtTheEnd);
    IWaitHandler* const expected = handler.get();
    const OwningWaitHandlerScopeGuard owning(std::move(handler));
    EXPECT_EQ(Current(), expected);
  }
  EXPECT_EQ(seenAtTheEnd, &outerHandler);
  EXPECT_EQ(Current(), &outerHandler);
}

TEST(OwningWaitHandlerScopeGuard, TakesNone) {
  PlainHandler outerHandler;
  const WaitHandlerScopeGuard outer(&outerHandler);
  {
    const OwningWaitHandlerScopeGuard owning(nullptr);
    EXPECT_EQ(Current(), nullptr);
  }
  EXPECT_EQ(Current(), &outerHandler);
}

}  // namespace
