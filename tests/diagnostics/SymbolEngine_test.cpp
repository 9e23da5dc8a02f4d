#include "diagnostics/SymbolEngine.h"

#include <gtest/gtest.h>

#include <atomic>
#include <new>
#include <string>
#include <thread>
#include <vector>

#include "support/Latch.h"

namespace qilsys::test {
namespace {

using diagnostics::CapturedFrame;
using diagnostics::ISymbolSource;

// What the sources of a test have been asked, and what they are to do.
struct Record {
  std::atomic<int> made = 0;
  std::atomic<int> ended = 0;
  std::atomic<int> names = 0;
  std::atomic<int> lines = 0;
  std::atomic<int> inside = 0;
  std::atomic<bool> hasBeenShared = false;
  std::atomic<bool> lacksMemory = false;
  // Asked from inside a question, if there is one.
  SymbolEngine* engine = nullptr;
  StackFrameInfo answerInside;
};
Record* s_record = nullptr;

// Knows of every address but 0 its own number.
class Source : public ISymbolSource {
 public:
  Source() { ++s_record->made; }
  Source(const Source&) = delete;
  Source& operator=(const Source&) = delete;
  ~Source() override { ++s_record->ended; }

  void FindNames(std::uint64_t lookUp, StackFrameInfo& frame) override {
    const Alone alone;
    ++s_record->names;
    if (s_record->engine) s_record->answerInside = s_record->engine->Resolve({lookUp, lookUp}, true);
    if (lookUp != 0) frame.m_moduleName = "module" + std::to_string(lookUp);
    if (s_record->lacksMemory) throw std::bad_alloc();
    if (lookUp != 0) frame.m_symbolName = "symbol" + std::to_string(lookUp);
  }
  void FindLine(std::uint64_t lookUp, StackFrameInfo& frame) override {
    const Alone alone;
    ++s_record->lines;
    if (lookUp == 0) return;
    frame.m_fileName = "file" + std::to_string(lookUp);
    frame.m_lineNumber = static_cast<std::uint32_t>(lookUp);
  }

 private:
  struct Alone {
    Alone() {
      if (++s_record->inside > 1) s_record->hasBeenShared = true;
      std::this_thread::yield();
    }
    Alone(const Alone&) = delete;
    Alone& operator=(const Alone&) = delete;
    ~Alone() { --s_record->inside; }
  };
};

std::unique_ptr<ISymbolSource> MakeSource() {
  if (s_record->lacksMemory) throw std::bad_alloc();
  return std::make_unique<Source>();
}

class SymbolEngineTest : public testing::Test {
 protected:
  SymbolEngineTest() { s_record = &m_record; }

  // A call that returns to `address`.
  static CapturedFrame FrameAt(std::uint64_t address) { return {address, address - 1}; }

  Record m_record;
  SymbolEngine m_engine{&MakeSource};
};

TEST_F(SymbolEngineTest, ShowsTheAddressAndLooksUpTheCall) {
  const StackFrameInfo frame = m_engine.Resolve(FrameAt(8), true);
  EXPECT_EQ(frame.m_address, 8u);
  EXPECT_EQ(frame.m_symbolName, "symbol7");
  EXPECT_EQ(frame.m_moduleName, "module7");
  EXPECT_EQ(frame.m_fileName, "file7");
  EXPECT_EQ(frame.m_lineNumber, 7u);
}

TEST_F(SymbolEngineTest, WhatItsSourceDoesNotKnowIsEmpty) {
  const StackFrameInfo frame = m_engine.Resolve(FrameAt(1), true);
  EXPECT_EQ(frame.m_address, 1u);
  EXPECT_EQ(frame.m_symbolName + frame.m_moduleName + frame.m_fileName, "");
  EXPECT_EQ(frame.m_lineNumber, 0u);
}

TEST_F(SymbolEngineTest, MakesItsSourceAtTheFirstQuestionAndOnce) {
  EXPECT_EQ(m_record.made, 0);
  m_engine.Resolve(FrameAt(8), true);
  m_engine.Resolve(FrameAt(9), true);
  EXPECT_EQ(m_record.made, 1);
}

TEST_F(SymbolEngineTest, AsksForEachAddressOnce) {
  for (int i = 0; i < 3; ++i) m_engine.Resolve(FrameAt(8), true);
  EXPECT_EQ(m_record.names, 1);
  EXPECT_EQ(m_record.lines, 1);
}

TEST_F(SymbolEngineTest, TwoFramesOfOneCallDifferByTheirAddressAlone) {
  EXPECT_EQ(m_engine.Resolve({8, 7}, true).m_address, 8u);
  const StackFrameInfo exact = m_engine.Resolve({7, 7}, true);
  EXPECT_EQ(exact.m_address, 7u);
  EXPECT_EQ(exact.m_symbolName, "symbol7");
}

TEST_F(SymbolEngineTest, LinesAreNotAskedForUnlessWanted) {
  const StackFrameInfo frame = m_engine.Resolve(FrameAt(8), false);
  EXPECT_EQ(m_record.lines, 0);
  EXPECT_EQ(frame.m_symbolName, "symbol7");
  EXPECT_EQ(frame.m_fileName, "");
}

TEST_F(SymbolEngineTest, ALineIsFoundLaterWhereItIsWantedLater) {
  m_engine.Resolve(FrameAt(8), false);
  const StackFrameInfo frame = m_engine.Resolve(FrameAt(8), true);
  EXPECT_EQ(frame.m_fileName, "file7");
  EXPECT_EQ(frame.m_lineNumber, 7u);
}

TEST_F(SymbolEngineTest, ALineThatIsKnownIsNotShownUnlessWanted) {
  m_engine.Resolve(FrameAt(8), true);
  const StackFrameInfo frame = m_engine.Resolve(FrameAt(8), false);
  EXPECT_EQ(frame.m_fileName, "");
  EXPECT_EQ(frame.m_lineNumber, 0u);
}

TEST_F(SymbolEngineTest, MoreAddressesThanItRemembersAreAllRight) {
  for (int round = 0; round < 2; ++round) {
    for (std::uint64_t address = 2; address < 10000; ++address) {
      ASSERT_EQ(m_engine.Resolve(FrameAt(address), true).m_lineNumber, address - 1);
    }
  }
}

TEST_F(SymbolEngineTest, ASourceThatNoMemoryWasLeftForIsMadeLater) {
  m_record.lacksMemory = true;
  EXPECT_THROW(m_engine.Resolve(FrameAt(8), true), std::bad_alloc);
  m_record.lacksMemory = false;
  EXPECT_EQ(m_engine.Resolve(FrameAt(8), true).m_symbolName, "symbol7");
}

TEST_F(SymbolEngineTest, HalfAnAnswerIsNotRemembered) {
  m_engine.Resolve(FrameAt(9), true);
  m_record.lacksMemory = true;
  EXPECT_THROW(m_engine.Resolve(FrameAt(8), true), std::bad_alloc);
  m_record.lacksMemory = false;
  EXPECT_EQ(m_engine.Resolve(FrameAt(8), true).m_symbolName, "symbol7");
}

TEST_F(SymbolEngineTest, LetsOneThreadAtATimeAskTheSource) {
  constexpr int Threads = 8;
  Latch start(Threads);
  std::vector<std::thread> threads;
  std::atomic<int> wrong = 0;
  for (int i = 0; i < Threads; ++i) {
    threads.emplace_back([&] {
      start.ArriveAndWait();
      for (std::uint64_t address = 2; address < 200; ++address) {
        if (m_engine.Resolve(FrameAt(address), address % 2 == 0).m_moduleName !=
            "module" + std::to_string(address - 1)) {
          ++wrong;
        }
      }
    });
  }
  for (std::thread& thread : threads) thread.join();
  EXPECT_EQ(wrong, 0);
  EXPECT_FALSE(m_record.hasBeenShared);
  EXPECT_EQ(m_record.made, 1);
}

TEST_F(SymbolEngineTest, KnowsNothingForAThreadThatIsInsideAlready) {
  m_record.engine = &m_engine;
  EXPECT_EQ(m_engine.Resolve(FrameAt(8), true).m_symbolName, "symbol7");
  EXPECT_EQ(m_record.answerInside.m_address, 7u);
  EXPECT_EQ(m_record.answerInside.m_symbolName + m_record.answerInside.m_moduleName, "");
  m_record.engine = nullptr;
  m_engine.Enter();
  EXPECT_EQ(m_engine.Resolve(FrameAt(8), true).m_symbolName, "");
  m_engine.Leave();
  EXPECT_EQ(m_engine.Resolve(FrameAt(8), true).m_symbolName, "symbol7");
}

TEST_F(SymbolEngineTest, ClosedItHasGivenBackItsSourceAndKnowsNothing) {
  m_engine.Resolve(FrameAt(8), true);
  m_engine.Close();
  EXPECT_EQ(m_record.ended, 1);
  const StackFrameInfo frame = m_engine.Resolve(FrameAt(8), true);
  EXPECT_EQ(frame.m_address, 8u);
  EXPECT_EQ(frame.m_symbolName + frame.m_moduleName + frame.m_fileName, "");
  EXPECT_EQ(m_record.made, 1);
}

TEST_F(SymbolEngineTest, IsNotClosedWhileAnotherThreadIsInside) {
  m_engine.Resolve(FrameAt(8), true);
  Latch inside(1);
  Latch closed(1);
  std::thread other([&] {
    m_engine.Enter();
    inside.CountDown();
    closed.Wait();
    m_engine.Leave();
  });
  inside.Wait();
  m_engine.Close();
  closed.CountDown();
  other.join();
  EXPECT_EQ(m_record.ended, 0);
  EXPECT_EQ(m_engine.Resolve(FrameAt(8), true).m_symbolName, "symbol7");
}

TEST(SymbolEngineInstance, IsOneForTheProcess) { EXPECT_EQ(&SymbolEngine::Instance(), &SymbolEngine::Instance()); }

}  // namespace
}  // namespace qilsys::test
