#include "qilsys/WaitHandler.h"

#include <utility>

#include "qilsys/AsyncTaskTls.h"

namespace AsyncTask {
namespace {

// Returns the one from before.
IWaitHandler* Install(IWaitHandler* handler) {
  TLS tls = TLS::Get();
  IWaitHandler* const previous = tls.GetWaitHandler();
  tls.SetWaitHandler(handler);
  return previous;
}

}  // namespace

IWaitHandler::~IWaitHandler() = default;

WaitHandlerScopeGuard::WaitHandlerScopeGuard(IWaitHandler* handler) : m_previous(Install(handler)) {}

WaitHandlerScopeGuard::~WaitHandlerScopeGuard() { Install(m_previous); }

OwningWaitHandlerScopeGuard::OwningWaitHandlerScopeGuard(std::unique_ptr<IWaitHandler> handler)
    : m_handler(std::move(handler)), m_previous(Install(m_handler.get())) {}

OwningWaitHandlerScopeGuard::~OwningWaitHandlerScopeGuard() { Install(m_previous); }

}  // namespace AsyncTask
