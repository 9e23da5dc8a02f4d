#include "diagnostics/SymbolEngine.h"

#include <cstddef>
#include <new>
#include <utility>

using namespace qilsys::diagnostics;

namespace {

// A program walks from a few places, again and again; how many of their frames are remembered, at some 300 bytes each.
constexpr std::size_t MostKnown = 4096;

// The engine itself is never destroyed: objects that are destroyed after it, and threads that go on, may still walk.
SymbolEngine* MakeEngine() {
  alignas(SymbolEngine) static std::byte s_room[sizeof(SymbolEngine)];
  SymbolEngine* const engine = new (s_room) SymbolEngine(&MakeSymbolSource);
  CallAroundForks([] { SymbolEngine::Instance().Enter(); }, [] { SymbolEngine::Instance().Leave(); });
  return engine;
}

struct ClosedAtExit {
  ~ClosedAtExit() { engine->Close(); }

  SymbolEngine* const engine = MakeEngine();
};

}  // namespace

SymbolEngine& SymbolEngine::Instance() {
  static const ClosedAtExit Closed;
  return *Closed.engine;
}

SymbolEngine::SymbolEngine(std::unique_ptr<ISymbolSource> (*makeSource)()) : m_makeSource(makeSource) {}

StackFrameInfo SymbolEngine::Resolve(const CapturedFrame& frame, bool withLine) {
  StackFrameInfo info = Find(frame.lookUp, withLine);
  info.m_address = frame.address;
  if (!withLine) {
    info.m_fileName.clear();
    info.m_lineNumber = 0;
  }
  return info;
}

StackFrameInfo SymbolEngine::Find(std::uint64_t lookUp, bool withLine) {
  if (m_inside == std::this_thread::get_id()) return {};
  Enter();
  const std::unique_ptr<SymbolEngine, void (*)(SymbolEngine*)> left(this,
                                                                    [](SymbolEngine* engine) { engine->Leave(); });
  return m_isClosed ? StackFrameInfo() : Ask(lookUp, withLine).frame;
}

const SymbolEngine::Known& SymbolEngine::Ask(std::uint64_t lookUp, bool withLine) {
  const auto found = m_known.find(lookUp);
  if (found != m_known.end() && (found->second.hasLine || !withLine)) return found->second;
  if (!m_source) m_source = m_makeSource();
  Known known;
  m_source->FindNames(lookUp, known.frame);
  if (withLine) m_source->FindLine(lookUp, known.frame);
  known.hasLine = withLine;
  if (m_known.size() >= MostKnown) m_known.clear();
  return m_known[lookUp] = std::move(known);
}

void SymbolEngine::Enter() {
  m_mutex.lock();
  m_inside = std::this_thread::get_id();
}

void SymbolEngine::Leave() {
  m_inside = std::thread::id();
  m_mutex.unlock();
}

// At the end of a process the system may have ended another thread in the middle of a walk, with the lock held.
void SymbolEngine::Close() noexcept {
  const std::unique_lock lock(m_mutex, std::try_to_lock);
  if (!lock) return;
  m_isClosed = true;
  m_known.clear();
  m_source.reset();
}
