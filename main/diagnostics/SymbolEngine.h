/// What is known of the addresses of this process: one object for all its walks.
#pragma once

#include <atomic>
#include <cstdint>
#include <memory>
#include <mutex>
#include <thread>
#include <unordered_map>

#include "diagnostics/StackLine.h"
#include "diagnostics/SymbolEngine_platform.h"

/// Made at the first walk, and kept until the process ends; what it then holds is given back. Any thread.
class SymbolEngine {
 public:
  static SymbolEngine& Instance();

  explicit SymbolEngine(std::unique_ptr<qilsys::diagnostics::ISymbolSource> (*makeSource)());
  SymbolEngine(const SymbolEngine&) = delete;
  SymbolEngine& operator=(const SymbolEngine&) = delete;

  /// What is known of the frame; of file and line nothing unless they are wanted. Nothing is known to a thread that is
  /// inside already, as where a host walks whenever memory is asked for. Throws std::bad_alloc, and is then as if it had
  /// not been asked.
  StackFrameInfo Resolve(const qilsys::diagnostics::CapturedFrame& frame, bool withLine);

  /// Gives back what it holds; from then on it knows nothing. Does nothing while another thread is inside.
  void Close() noexcept;

  /// Keeps all threads out until Leave: what a fork must not meet half done.
  void Enter();
  void Leave();

 private:
  struct Known {
    StackFrameInfo frame;
    bool hasLine = false;
  };

  StackFrameInfo Find(std::uint64_t lookUp, bool withLine);
  const Known& Ask(std::uint64_t lookUp, bool withLine);

  std::unique_ptr<qilsys::diagnostics::ISymbolSource> (*const m_makeSource)();
  // What follows is guarded by it: the systems' own readers of symbols are for one thread at a time.
  std::mutex m_mutex;
  std::atomic<std::thread::id> m_inside;
  std::unique_ptr<qilsys::diagnostics::ISymbolSource> m_source;
  std::unordered_map<std::uint64_t, Known> m_known;
  bool m_isClosed = false;
};
