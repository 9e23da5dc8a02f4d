#include "qilsys/AsyncTaskTls.h"

#include "memory/ThreadBlock.h"
#include "qilsys/LogicException.h"

namespace {

constexpr char File[] = "main/thread/AsyncTaskTls";

}  // namespace

namespace AsyncTask {

TLS::TLS() noexcept : m_block(&CurrentThreadBlock()) {}

TLS TLS::Get() noexcept { return {}; }

unsigned long long TLS::GetDepth() const noexcept { return m_block->depth; }
void TLS::SetDepth(unsigned long long depth) noexcept { m_block->depth = depth; }
void TLS::IncrementDepth() noexcept { ++m_block->depth; }

void TLS::DecrementDepth() {
  QILSYS_LOGIC_ASSERT(m_block->depth > 0, "depth > 0", File, 87, 0x0C2FD434, "LogicException_LogicAssert_0x0C2FD434");
  --m_block->depth;
}

TCancelEvent* TLS::GetCancelEvent() const noexcept { return m_block->cancelEvent; }
void TLS::SetCancelEvent(const TCancelEvent* event) noexcept {
  m_block->cancelEvent = const_cast<TCancelEvent*>(event);
}

IWaitHandler* TLS::GetWaitHandler() const noexcept { return m_block->waitHandler; }
void TLS::SetWaitHandler(const IWaitHandler* handler) noexcept {
  m_block->waitHandler = const_cast<IWaitHandler*>(handler);
}

void (*TLS::GetThreadCleanupFunc() const noexcept)() { return m_block->threadCleanupFunction; }
void TLS::SetThreadCleanupFunc(void (*cleanup)()) noexcept { m_block->threadCleanupFunction = cleanup; }

}  // namespace AsyncTask
