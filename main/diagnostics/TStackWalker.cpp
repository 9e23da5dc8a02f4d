#include "qilsys/TStackWalker.h"

#include <array>
#include <cstddef>
#include <exception>
#include <span>

#include "diagnostics/StackLine.h"
#include "diagnostics/SymbolEngine.h"
#include "diagnostics/SymbolEngine_platform.h"

using namespace qilsys::diagnostics;

const int StackWalkerConfig::numberOfStackWalks;

namespace {

LineParts PartsOf(const StackWalkerConfig& config) {
  return {config.m_includeThreadInfo, config.m_includeSystemMemoryAddresses, config.m_includeFileName,
          config.m_includeFileLineNumber};
}

void AddLines(std::list<std::string>& lines, std::span<const CapturedFrame> frames, const LineParts& parts) {
  const std::uint64_t thread = NumberOfThread();
  LoadSymbolLibrary();
  SymbolEngine& engine = SymbolEngine::Instance();
  for (const CapturedFrame& frame : frames) {
    const StackFrameInfo info = engine.Resolve(frame, parts.fileName || parts.lineNumber);
    if (!IsHidden(info)) lines.push_back(StackLine(info, parts, thread));
  }
}

}  // namespace

TStackWalker::TStackWalker() = default;
TStackWalker::TStackWalker(const TStackWalker&) = default;
TStackWalker::~TStackWalker() = default;

// All lines or none, where memory runs out.
TStackWalker& TStackWalker::operator=(const TStackWalker& other) {
  std::list<std::string> lines = other.m_collected;
  m_collected.swap(lines);
  return *this;
}

// Some libraries' lists take memory even when they are made, so that this can fail outside the walk too.
bool TStackWalker::GenerateCallstack() noexcept {
  const StackWalkerConfig& config = GetStackWalkerConfig();
  if (!config.m_active) return false;
  try {
    std::list<std::string> lines = GenerateCallstackImpl(config);
    m_collected.swap(lines);
  } catch (const std::exception&) {
    m_collected.clear();
  }
  return !m_collected.empty();
}

const std::list<std::string>& TStackWalker::GetCollected() const { return m_collected; }

std::list<std::string> TStackWalker::GenerateCallstackImpl(const StackWalkerConfig& config) {
  std::array<CapturedFrame, StackWalkerConfig::numberOfStackWalks> frames;
  const std::size_t count = CaptureStack(frames);
  std::list<std::string> lines;
  if (count == 0) return lines;
  try {
    AddLines(lines, std::span(frames).first(count), PartsOf(config));
  } catch (const std::exception&) {
    // No memory for one more line. The innermost ones, which say the most, are there.
  }
  return lines;
}

bool TStackWalker::InitSym(bool enable) { return GetStackWalkerConfig().m_active.exchange(enable); }

bool TStackWalker::IsActive() { return GetStackWalkerConfig().m_active; }

void TStackWalker::IncludeFileLineNumber(bool include) { GetStackWalkerConfig().m_includeFileLineNumber = include; }

void TStackWalker::IncludeFileName(bool include) { GetStackWalkerConfig().m_includeFileName = include; }

void TStackWalker::IncludeSystemMemoryAddresses(bool include) {
  GetStackWalkerConfig().m_includeSystemMemoryAddresses = include;
}

void TStackWalker::IncludeThreadInfo(bool include) { GetStackWalkerConfig().m_includeThreadInfo = include; }

StackWalkerConfig& TStackWalker::GetStackWalkerConfig() {
  static StackWalkerConfig s_config;
  return s_config;
}
