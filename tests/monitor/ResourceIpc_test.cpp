#include "monitor/ResourceIpc.h"

#include <gtest/gtest.h>

#include <atomic>
#include <boost/system/system_error.hpp>
#include <mutex>
#include <optional>
#include <stdexcept>
#include <system_error>
#include <vector>

#include "monitor/ChildProcess.h"
#include "monitor/Loopback.h"
#include "monitor/Scarcity.h"
#include "support/Eventually.h"
#include "support/OpenHandles.h"
#include "support/System.h"

namespace qilsys::test {
namespace {

using namespace monitor;

/// One `ResourceIpc` and what it has handed over.
class Listener {
 public:
  explicit Listener(unsigned short port, std::terminate_handler handler = nullptr)
      : m_ipc(
            std::in_place, port, [this](const ResourceValuesV2& values) { Add(m_values, values); },
            [this](const TStringCore& line) { Add(m_lines, line.toStdString()); }, handler) {}

  ResourceIpc& Ipc() { return *m_ipc; }
  void Destroy() { m_ipc.reset(); }

  std::vector<ResourceValuesV2> Values() { return Copy(m_values); }
  std::vector<std::string> Lines() { return Copy(m_lines); }

  bool HasValues(std::size_t count) {
    return Eventually([&] { return Values().size() >= count; });
  }
  bool HasLines(std::size_t count) {
    return Eventually([&] { return Lines().size() >= count; });
  }

 private:
  template <class T>
  void Add(std::vector<T>& list, T item) {
    const std::lock_guard lock(m_mutex);
    list.push_back(std::move(item));
  }
  template <class T>
  std::vector<T> Copy(const std::vector<T>& list) {
    const std::lock_guard lock(m_mutex);
    return list;
  }

  std::mutex m_mutex;
  std::vector<ResourceValuesV2> m_values;
  std::vector<std::string> m_lines;
  std::optional<ResourceIpc> m_ipc;
};

ResourceValuesV2 Sample(std::uint8_t id) {
  ResourceValuesV2 values;
  values.pid = id;
  values.uuid.fill(id);
  values.memoryBytes = 0x0102030405060708;
  values.memoryLimitPercent = 11;
  values.cpuPercent = 22;
  values.reportIntervalSeconds = 33;
  return values;
}

const char* Stopped = "Resource Manager: listening thread has stopped";
const char* Rejected = "Resource Manager: rejected invalid network packet from: 127.0.0.1";

TEST(ResourceIpcTest, EveryMemberHearsAllItselfIncluded) {
  const unsigned short port = FreePort();
  Listener first(port);
  Listener second(port);
  first.Ipc().Send(Sample(1));
  ASSERT_TRUE(first.HasValues(1));
  second.Ipc().Send(Sample(2));
  for (Listener* listener : {&first, &second}) {
    ASSERT_TRUE(listener->HasValues(2));
    EXPECT_EQ(BytesOf(listener->Values()[0]), BytesOf(Sample(1)));
    EXPECT_EQ(BytesOf(listener->Values()[1]), BytesOf(Sample(2)));
    EXPECT_TRUE(listener->Lines().empty());
  }
}

TEST(ResourceIpcTest, Version1IsWidenedOnReceipt) {
  Listener outsider(FreePort());
  Listener listener(FreePort());
  ResourceValuesV1 values = Narrow(Sample(1));
  values.pid = 4660;
  listener.Ipc().Send(values);
  ASSERT_TRUE(listener.HasValues(1));
  const ResourceValuesV2 heard = listener.Values()[0];
  EXPECT_EQ(+heard.version, 2U);
  EXPECT_EQ(+heard.pid, 4660U);
  EXPECT_EQ(heard.uuid, (ResourceIdentity{0x34, 0x12}));
  EXPECT_EQ(+heard.memoryBytes, 0x0102030405060708U);
  EXPECT_EQ(heard.memoryLimitPercent, 11);
  EXPECT_EQ(heard.cpuPercent, 22);
  EXPECT_EQ(heard.reportIntervalSeconds, 0);
  EXPECT_TRUE(outsider.Values().empty()) << "another port is another group";
}

TEST(ResourceIpcTest, LengthIsTheOnlyTest) {
  const unsigned short port = FreePort();
  Listener listener(port);
  ResourceValuesV2 values = Sample(1);
  values.version = 7;
  values.cpuPercent = 255;
  Sender(port).SendValues(values);
  ASSERT_TRUE(listener.HasValues(1));
  EXPECT_EQ(BytesOf(listener.Values()[0]), BytesOf(values));
}

TEST(ResourceIpcTest, OtherLengthsAreRejectedAndListeningGoesOn) {
  const unsigned short port = FreePort();
  Listener listener(port);
  Sender sender(port);
  const std::vector<std::size_t> lengths{1, 13, 15, 34, 36, 1023, 1024, 1025, 2000, 65000};
  for (std::size_t i = 0; i < lengths.size(); ++i) {
    sender.Send(Bytes(lengths[i], 0x55));
    ASSERT_TRUE(listener.HasLines(i + 1)) << lengths[i];
  }
  EXPECT_EQ(listener.Lines(), std::vector<std::string>(lengths.size(), Rejected));
  EXPECT_TRUE(listener.Values().empty());
  sender.SendValues(Sample(1));
  EXPECT_TRUE(listener.HasValues(1));
}

TEST(ResourceIpcTest, OtherAddressesAreIgnoredInSilence) {
  QILSYS_SKIP_UNDER_WINE("what is sent from a socket at 127.0.0.2 comes from 127.0.0.1");
  const unsigned short port = FreePort();
  Listener listener(port);
  Sender other(port, "127.0.0.2");
  for (const std::size_t length : {14U, 35U, 36U, 2000U}) other.Send(Bytes(length, 0x55));
  // Datagrams to one socket keep their order, so when this one is there the others have been judged.
  Sender(port).SendValues(Sample(1));
  ASSERT_TRUE(listener.HasValues(1));
  EXPECT_EQ(listener.Values().size(), 1U);
  EXPECT_TRUE(listener.Lines().empty());
}

class EmptyDatagramTest : public testing::TestWithParam<const char*> {};

TEST_P(EmptyDatagramTest, EndsListeningWhileSendingGoesOn) {
  const unsigned short port = FreePort();
  Listener deaf(port);
  Sender(port, GetParam()).Send({});
  ASSERT_TRUE(deaf.HasLines(2));
  const std::string noError = boost::system::error_code().message();
  EXPECT_EQ(deaf.Lines(), (std::vector<std::string>{"Resource Manager: socket error: " + noError, Stopped}));

  Listener hearing(port);
  deaf.Ipc().Send(Sample(9));
  ASSERT_TRUE(hearing.HasValues(1));
  EXPECT_TRUE(deaf.Values().empty());
  deaf.Destroy();
  EXPECT_EQ(deaf.Lines().size(), 2U);
}

INSTANTIATE_TEST_SUITE_P(FromAnywhere, EmptyDatagramTest, testing::Values("127.0.0.1", "127.0.0.2"),
                         [](const auto& row) { return std::string(row.param).back() == '1' ? "Member" : "Other"; });

TEST(ResourceIpcTest, StoppingLogsThatTheThreadHasStopped) {
  Listener listener(FreePort());
  listener.Destroy();
  EXPECT_EQ(listener.Lines(), std::vector<std::string>{Stopped});
}

TEST(ResourceIpcTest, StoppingTwiceIsStoppingOnce) {
  Listener listener(FreePort());
  listener.Ipc().Stop();
  listener.Ipc().Stop();
  listener.Destroy();
  EXPECT_EQ(listener.Lines(), std::vector<std::string>{Stopped});
}

TEST(ResourceIpcTest, StoppingOnTheListeningThreadIsTheThreadError) {
  std::atomic<bool> refused = false;
  // What passes through a socket gives no order that ThreadSanitizer knows; the atomic does.
  std::atomic<ResourceIpc*> self = nullptr;
  const auto stopInside = [&](const ResourceValuesV2&) {
    try {
      self.load()->Stop();
    } catch (const std::system_error& error) {
      refused = error.code() == std::errc::resource_deadlock_would_occur;
    }
  };
  ResourceIpc ipc(
      FreePort(), stopInside, [](const TStringCore&) {}, nullptr);
  self = &ipc;
  ipc.Send(Sample(1));
  EXPECT_TRUE(Eventually([&] { return refused.load(); }));
}

TEST(ResourceIpcTest, AFloodIsHeardWhole) {
  const unsigned short port = FreePort();
  Listener listener(port);
  constexpr unsigned int count = 200;
  for (unsigned int i = 0; i < count; ++i) listener.Ipc().Send(Sample(static_cast<std::uint8_t>(i)));
  ASSERT_TRUE(listener.HasValues(count));
  for (unsigned int i = 0; i < count; ++i) EXPECT_EQ(+listener.Values()[i].pid, i);
}

// The monitor's hosts start programs of their own, and these may outlive it.
TEST(ResourceIpcTest, AProgramThatIsStartedInheritsNoSocket) {
  const unsigned short port = FreePort();
  Listener listener(port);
  const ChildProcess child;
  listener.Destroy();
  EXPECT_EQ(listener.Lines(), std::vector<std::string>{Stopped});
  EXPECT_NO_THROW(Stranger{port});
}

/// An error whose text is in the 8-bit encoding of the process, as the system's texts are.
class LocalCategory : public boost::system::error_category {
 public:
  const char* name() const noexcept override { return "local"; }
  std::string message(int) const override { return TStringCore(u"Stra\u00DFe").toLocal8Bit(); }
};

TEST(SocketErrorLineTest, ReadsTheTextInTheEncodingOfTheProcess) {
  const LocalCategory category;
  const TStringCore local = TStringCore::fromLocal8Bit(category.message(1).c_str());
  EXPECT_EQ(SocketErrorLine(boost::system::error_code(1, category)), u"Resource Manager: socket error: " + local);
  if (local != u"Stra\u00DFe") GTEST_SKIP() << "left out: the encoding of this process lacks the letter";
}

class PortTakenTest : public testing::TestWithParam<Claim> {};

TEST_P(PortTakenTest, IsABindFailure) {
  if (GetParam() == Claim::Default) {
    QILSYS_SKIP_UNDER_WINE("a port is shared with who has not asked for that");
  }
  const unsigned short port = FreePort();
  const Stranger stranger(port, GetParam());
  try {
    const Listener listener(port);
    ADD_FAILURE() << "the port was free";
  } catch (const boost::system::system_error& error) {
    EXPECT_TRUE(IsPortTaken(error.code())) << error.code();
    EXPECT_EQ(std::string(error.what()).substr(0, 4), "bind");
  }
}

INSTANTIATE_TEST_SUITE_P(Strangers, PortTakenTest, testing::Values(Claim::Default, Claim::Alone),
                         [](const auto& row) { return row.param == Claim::Alone ? "HoldsItAlone" : "HoldsIt"; });

// Nothing can be sent to port 0, and any port is bound where 0 is asked for.
TEST(ResourceIpcTest, AFailedSendThrowsAndListeningGoesOn) {
  Listener listener(0);
  const auto send = [&](const auto& values) {
    try {
      listener.Ipc().Send(values);
      ADD_FAILURE() << "the datagram was sent";
    } catch (const boost::system::system_error& error) {
      EXPECT_TRUE(std::string(error.what()).starts_with("send_to: ")) << error.what();
    }
  };
  send(Sample(1));
  send(Narrow(Sample(1)));
  EXPECT_TRUE(listener.Lines().empty());
  listener.Destroy();
  EXPECT_EQ(listener.Lines(), std::vector<std::string>{Stopped});
}

TEST(ResourceIpcTest, AThreadThatCantBeStartedLeavesThePortFree) {
  if (!NoThreads::CanBeHad()) GTEST_SKIP() << "left out on Windows: it has no means to refuse a thread";
  const unsigned short port = FreePort();
  try {
    const NoThreads none;
    const Listener listener(port);
    ADD_FAILURE() << "the thread was started";
  } catch (const std::system_error& error) {
    EXPECT_EQ(error.code(), std::errc::resource_unavailable_try_again);
  }
  const Stranger stranger(port);
}

TEST(ResourceIpcTest, LeavesNothingOpen) {
  const auto run = [] {
    const unsigned short port = FreePort();
    {
      Listener listener(port);
      listener.Ipc().Send(Sample(1));
      ASSERT_TRUE(listener.HasValues(1));
    }
    const Stranger stranger(port);
    EXPECT_THROW(Listener{port}, boost::system::system_error);
  };
  // What the system opens at the first use stays.
  run();
  const unsigned int before = OpenHandles();
  for (int i = 0; i < 20; ++i) run();
  EXPECT_LE(OpenHandles(), before + MostKeptByThreads);
}

/// The handler that a listening thread has when it takes its first datagram.
std::terminate_handler HandlerWhileListening(std::terminate_handler given) {
  std::terminate_handler seen = nullptr;
  std::atomic<bool> heard = false;
  ResourceIpc ipc(
      FreePort(),
      [&](const ResourceValuesV2&) {
        seen = std::get_terminate();
        heard = true;
      },
      [](const TStringCore&) {}, given);
  ipc.Send(Sample(1));
  EXPECT_TRUE(Eventually([&] { return heard.load(); }));
  return seen;
}

// Asked on the thread itself, since some systems keep a handler for each thread.
TEST(ResourceIpcTest, TheHandlerIsInstalledOnTheListeningThread) {
  const std::terminate_handler before = std::get_terminate();
  const std::terminate_handler mine = [] { std::abort(); };
  EXPECT_EQ(HandlerWhileListening(mine), mine);
  std::set_terminate(mine);
  EXPECT_NE(HandlerWhileListening(nullptr), mine) << "null is the default handler";
  std::set_terminate(before);
}

TEST(ResourceIpcDeathTest, AThrowOutOfTheReceiptEndsInTheHandler) {
  testing::GTEST_FLAG(death_test_style) = "threadsafe";
  EXPECT_EXIT(
      {
        const unsigned short port = FreePort();
        ResourceIpc ipc(
            port, [](const ResourceValuesV2&) { throw std::runtime_error("no"); }, [](const TStringCore&) {},
            [] { std::_Exit(17); });
        ipc.Send(Sample(1));
        Eventually([] { return false; });
      },
      testing::ExitedWithCode(17), "");
}

}  // namespace
}  // namespace qilsys::test
