// Strings that share a block, each used by a thread of its own.
#include <gtest/gtest.h>

#include <string>
#include <thread>
#include <vector>

#include "qilsys/TStringCore.h"
#include "support/Latch.h"
#include "support/Random.h"
#include "support/StringHeaps.h"
#include "support/StringText.h"
#include "support/TStringCoreForTest.h"

using qilsys::test::Latch;
using qilsys::test::Rounds;
using qilsys::test::UnitsOf;

namespace {

constexpr int Threads = 4;

/// Runs `body(thread)` on each thread, all at once.
template <class Body>
void OnThreads(Body body) {
  Latch start(Threads);
  std::vector<std::jthread> threads;
  for (int i = 0; i < Threads; ++i) {
    threads.emplace_back([&start, body, i] {
      start.ArriveAndWait();
      body(i);
    });
  }
}

TEST(TStringCoreThreads, CopiesOfOneStringAreCountedRight) {
  const TStringCore text(u'x', 100);
  const int rounds = Rounds(5000);
  OnThreads([&text, rounds](int) {
    for (int i = 0; i < rounds; ++i) {
      TStringCore copy = text;
      TStringCore moved = std::move(copy);
      copy = moved;
    }
  });
  EXPECT_EQ(qilsys::test::TStringCoreForTest::References(text), 1);
}

TEST(TStringCoreThreads, EachWriterGetsABlockOfItsOwn) {
  const int rounds = Rounds(2000);
  for (int round = 0; round < 5; ++round) {
    TStringCore texts[Threads];
    texts[0] = TStringCore(u'x', 100);
    for (TStringCore& text : texts) text = texts[0];
    OnThreads([&texts, rounds](int self) {
      TStringCore& text = texts[self];
      for (int i = 0; i < rounds; ++i) {
        const TStringCore reader = text;
        text.data()[i % 100] = static_cast<TCodeUnit>(u'a' + self);
        ASSERT_EQ(reader.length(), text.length());
      }
    });
    for (int i = 0; i < Threads; ++i) EXPECT_EQ(texts[i].count(static_cast<TCodeUnit>(u'a' + i)), 100);
  }
}

TEST(TStringCoreThreads, TheLastOfTwoSharersMayWriteAtOnce) {
  // One reads and lets go while the other, once alone, writes into the block itself.
  for (int round = Rounds(300); round > 0; --round) {
    TStringCore writer(u'x', 100);
    TStringCore reader = writer;
    int sum = 0;
    std::jthread other([&reader, &sum] {
      for (const TCodeUnit unit : std::as_const(reader)) sum += unit;
      reader.clear();
    });
    writer.data()[0] = u'y';
    writer.append(u'z');
    other.join();
    EXPECT_EQ(sum, 100 * u'x');
    EXPECT_EQ(writer.constData()[0], u'y');
  }
}

}  // namespace
