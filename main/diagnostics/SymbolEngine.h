/// What is known of the addresses of this process: one object for all its walks.
#pragma once

#include <cstdint>
#include <memory>
#include <mutex>
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

  /// What is known of the frame; of file and line nothing unless they are wanted. Throws std::bad_alloc, and is then as
  /// if it had not been asked.
  StackFrameInfo Resolve(const qilsys::diagnostics::CapturedFrame& frame, bool withLine);

  /// Gives back what it holds; from then on it knows nothing. Does nothing while another thread is inside.
  void Close() noexcept;

  /// Keeps all threads out until Leave: what a fork must not meet half done.
  void Enter() { m_mutex.lock(); }
  void Leave() { m_mutex.unlock(); }

 private:
  struct Known {
    StackFrameInfo frame;
    bool hasLine = false;
  };

  const Known* Find(std::uint64_t lookUp, bool withLine);

  std::unique_ptr<qilsys::diagnostics::ISymbolSource> (*const m_makeSource)();
  // What follows is guarded by it: the systems' own readers of symbols are for one thread at a time.
  std::mutex m_mutex;
  std::unique_ptr<qilsys::diagnostics::ISymbolSource> m_source;
  std::unordered_map<std::uint64_t, Known> m_known;
  bool m_isClosed = false;
};
