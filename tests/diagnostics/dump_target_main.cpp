// A program that gets dumped: its threads rest in functions of their own, each with a variable that a debugger can show.
// It is built without optimisation and with all debug information.
//
//   dump_target rest                        rests until it is written to, or its input ends
//   dump_target reserve                     does so with 2 GiB of memory that nobody has touched
//   dump_target dump PATH TYPE              dumps itself while the others rest
//   dump_target churn PATH TYPE             dumps itself while 24 threads begin and end all the time
//
// Says "ready" when all threads rest, and the result of a dump.
#include <atomic>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <string>
#include <string_view>
#include <thread>
#include <vector>

#include "qilsys/CrashDump.h"
#include "qilsys/TSystem.h"
#include "support/Latch.h"

using qilsys::test::Latch;

namespace {

Latch g_allRest(3);
Latch g_mayGoOn(1);

void Say(std::string_view text) {
  std::printf("%.*s\n", static_cast<int>(text.size()), text.data());
  std::fflush(stdout);
}

}  // namespace

// With names and variables of their own, so that no two of them can be taken for each other.

// Somebody wants to know a variable to the end.
void Keep(const volatile int&) {}

void RestOfTheBaker() {
  volatile int loaves = 1101;
  g_allRest.CountDown();
  g_mayGoOn.Wait();
  Keep(loaves);
}

void RestOfTheMiller() {
  volatile int sacks = 2202;
  g_allRest.CountDown();
  g_mayGoOn.Wait();
  Keep(sacks);
}

void RestOfTheTailor() {
  volatile int stitches = 3303;
  g_allRest.CountDown();
  g_mayGoOn.Wait();
  Keep(stitches);
}

void RestOfTheMain() {
  volatile int letters = 4404;
  Say("ready");
  std::getchar();
  Keep(letters);
}

int DumpOfTheMain(const std::string& path, _MINIDUMP_TYPE type) {
  volatile int pages = 5505;
  const std::u16string wide(path.begin(), path.end());
  const int result = WriteCrashDump(nullptr, TSystem::ProcessID(), wide.c_str(), type);
  return pages == 5505 ? result : -1;
}

namespace {

class RestingThreads {
 public:
  RestingThreads() { g_allRest.Wait(); }
  ~RestingThreads() {
    g_mayGoOn.CountDown();
    for (std::thread* thread : {&m_baker, &m_miller, &m_tailor}) thread->join();
  }
  RestingThreads(const RestingThreads&) = delete;
  RestingThreads& operator=(const RestingThreads&) = delete;

 private:
  std::thread m_baker{RestOfTheBaker};
  std::thread m_miller{RestOfTheMiller};
  std::thread m_tailor{RestOfTheTailor};
};

/// Rows of threads, each of which starts the next one of its row before it ends.
class ComingAndGoing {
 public:
  explicit ComingAndGoing(int rows) : m_over(rows) {
    for (int i = 0; i < rows; ++i) StartNext();
  }
  ~ComingAndGoing() {
    m_goesOn = false;
    m_over.Wait();
  }
  ComingAndGoing(const ComingAndGoing&) = delete;
  ComingAndGoing& operator=(const ComingAndGoing&) = delete;

 private:
  void StartNext() {
    std::thread([this] {
      if (m_goesOn) {
        StartNext();
      } else {
        m_over.CountDown();
      }
    }).detach();
  }

  std::atomic<bool> m_goesOn = true;
  Latch m_over;
};

void SayResult(int result) { Say(result != 0 ? "dumped" : "failed"); }

int Run(const std::vector<std::string>& words) {
  const RestingThreads resting;
  if (words.size() == 1 && words[0] == "rest") {
    RestOfTheMain();
    return 0;
  }
  if (words.size() == 1 && words[0] == "reserve") {
    const std::unique_ptr<void, decltype(&std::free)> reserved(std::malloc(std::size_t{1} << 31), &std::free);
    RestOfTheMain();
    return reserved ? 0 : 1;
  }
  if (words.size() != 3) return 2;
  const auto type = static_cast<_MINIDUMP_TYPE>(std::stoi(words[2]));
  if (words[0] == "dump") SayResult(DumpOfTheMain(words[1], type));
  if (words[0] == "churn") {
    const ComingAndGoing threads(24);
    SayResult(DumpOfTheMain(words[1], type));
  }
  return 0;
}

}  // namespace

int main(int argc, char** argv) { return Run(std::vector<std::string>(argv + 1, argv + argc)); }
