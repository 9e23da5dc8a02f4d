// Walks of the stack.
#include <condition_variable>
#include <mutex>
#include <thread>
#include <vector>

#include "qilsys/TStackWalker.h"
#include "sweep/FailingHeap.h"
#include "sweep/Observed.h"
#include "sweep/Operation.h"

namespace qilsys::test::sweep {
namespace {

/// A thread that walks when it is told to. Its stack is the same in each run, so that what the library remembers of it
/// is the same too.
class WalkingThread {
 public:
  WalkingThread() : m_thread([this] { WalkUntilTheEnd(); }) {}
  WalkingThread(const WalkingThread&) = delete;
  WalkingThread& operator=(const WalkingThread&) = delete;
  ~WalkingThread() {
    Tell(Order::End, Order::End);
    m_thread.join();
  }

  bool Walk(TStackWalker& walker) {
    m_walker = &walker;
    Tell(Order::Walk, Order::Wait);
    return m_hasLines;
  }

 private:
  enum class Order { Wait, Walk, End };

  // Before memory runs out: for the first exception of a thread, GCC's library for Windows takes some, and ends the process
  // where there is none.
  static void TakeMemoryForExceptions() {
    try {
      throw 0;
    } catch (int) {
    }
  }
  void Tell(Order order, Order until) {
    std::unique_lock lock(m_mutex);
    m_order = order;
    m_told.notify_all();
    m_told.wait(lock, [&] { return m_order == until; });
  }
  void WalkUntilTheEnd() {
    TakeMemoryForExceptions();
    std::unique_lock lock(m_mutex);
    while (true) {
      m_told.wait(lock, [&] { return m_order != Order::Wait; });
      if (m_order == Order::End) return;
      CountAsWorkingThread(true);
      m_hasLines = m_walker->GenerateCallstack();
      CountAsWorkingThread(false);
      m_order = Order::Wait;
      m_told.notify_all();
    }
  }

  std::mutex m_mutex;
  std::condition_variable m_told;
  Order m_order = Order::Wait;
  TStackWalker* m_walker = nullptr;
  bool m_hasLines = false;
  std::thread m_thread;
};

/// A walker with lines, and one without.
struct Walkers {
  explicit Walkers(Shape) {
    TStackWalker::InitSym(true);
    TStackWalker::IncludeThreadInfo(false);
    thread.Walk(walker);
  }
  ~Walkers() {
    TStackWalker::IncludeThreadInfo(true);
    TStackWalker::InitSym(false);
  }
  Walkers(const Walkers&) = delete;
  Walkers& operator=(const Walkers&) = delete;
  std::string Observe() const {
    return Observed().AddAll(walker.GetCollected()).AddAll(other.GetCollected()).Add(flag).Bytes();
  }

  WalkingThread thread;
  TStackWalker walker;
  TStackWalker other;
  bool flag = false;
};

constexpr Leave List{Raises::Standard, Left::Unchanged, "the lines are a list of the standard library"};
constexpr Leave FewerLines{Raises::Nothing, Left::Unchanged, "a walk ends early, with the lines made so far",
                           Result::Another};

constexpr Row<Walkers> Walking[] = {
    {"GenerateCallstack", [](Walkers& w) { w.flag = w.thread.Walk(w.other); }, FewerLines},
    {"GenerateCallstack_Again", [](Walkers& w) { w.flag = w.thread.Walk(w.walker); }, FewerLines},
    {"GenerateCallstack_SwitchedOff",
     [](Walkers& w) {
       TStackWalker::InitSym(false);
       w.flag = !w.thread.Walk(w.walker);
     }},
    {"TStackWalker_Make", [](Walkers& w) { w.flag = TStackWalker().GetCollected().empty(); }},
    {"TStackWalker_Copy", [](Walkers& w) { w.flag = TStackWalker(w.walker).GetCollected().size() > 1; }, List},
    {"TStackWalker_Assign", [](Walkers& w) { w.other = w.walker; }, List},
    {"TStackWalker_AssignOverLines",
     [](Walkers& w) {
       w.walker = w.other;
       w.flag = true;
     }},
    {"InitSym", [](Walkers& w) { w.flag = TStackWalker::InitSym(true); }},
    {"IsActive", [](Walkers& w) { w.flag = TStackWalker::IsActive(); }},
    {"IncludeFileLineNumber", [](Walkers&) { TStackWalker::IncludeFileLineNumber(true); }},
    {"IncludeFileName", [](Walkers&) { TStackWalker::IncludeFileName(true); }},
    {"IncludeSystemMemoryAddresses", [](Walkers&) { TStackWalker::IncludeSystemMemoryAddresses(true); }},
    {"IncludeThreadInfo", [](Walkers&) { TStackWalker::IncludeThreadInfo(false); }},
};

}  // namespace

void AddDiagnosing(std::vector<Operation>& operations) { AddRows<Walkers>(operations, Walking); }

}  // namespace qilsys::test::sweep
