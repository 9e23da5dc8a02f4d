#include "demo/Workload.h"

#include <chrono>

#include "demo/Setting.h"

namespace demo {

namespace {

// 8 MiB eight times a second: fast enough for a short story, slow enough to be watched.
constexpr unsigned int StepMiB = 8;
constexpr std::chrono::milliseconds StepTime(125);

// The slice of time of which a burner works its share and sleeps the rest.
constexpr std::chrono::milliseconds Slice(20);

}  // namespace

Hoard::Hoard() : m_thread([this] { Run(); }) {}

Hoard::~Hoard() {
  m_stop.Signal();
  m_thread.join();
}

void Hoard::GrowTo(unsigned int mebibytes) {
  const TScopedLock scope(m_mutex);
  m_target = mebibytes;
}

unsigned int Hoard::DropTo(unsigned int mebibytes) {
  const TScopedLock scope(m_mutex);
  m_target = mebibytes;
  unsigned int dropped = 0;
  for (; m_blocks.size() > mebibytes; ++dropped) m_blocks.pop_back();
  return dropped;
}

void Hoard::Run() {
  while (!m_stop.Wait(StepTime)) Step();
}

void Hoard::Step() {
  const TScopedLock scope(m_mutex);
  for (unsigned int i = 0; i < StepMiB && m_blocks.size() < m_target; ++i) {
    // Written, not only reserved: memory counts once it is touched.
    m_blocks.emplace_back(MiB, static_cast<unsigned char>(1));
  }
  while (m_blocks.size() > m_target) m_blocks.pop_back();
}

Burner::~Burner() {
  m_stop.Signal();
  for (std::thread& thread : m_threads) thread.join();
}

void Burner::Burn(unsigned int percent) {
  m_percent = percent;
  const TScopedLock scope(m_mutex);
  while (m_threads.size() < std::thread::hardware_concurrency()) m_threads.emplace_back([this] { Run(); });
}

void Burner::Run() {
  while (!m_stop.IsSet()) {
    const auto start = std::chrono::steady_clock::now();
    const auto busy = Slice * m_percent.load() / 100;
    while (std::chrono::steady_clock::now() - start < busy) {
    }
    m_stop.Wait(Slice - busy);
  }
}

}  // namespace demo
