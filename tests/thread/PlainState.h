/// A state of a future that counts how often it is cancelled.
#pragma once

#include <atomic>

#include "qilsys/SharedState.h"

namespace qilsys::test {

class PlainState : public AsyncTask::SharedStateBase {
 public:
  void Cancel() override { ++m_cancels; }
  int Cancels() const { return m_cancels; }

  using SharedStateBase::AssertIsReady;
  using SharedStateBase::GetCancelEvent;
  using SharedStateBase::GetWhenCanceled;
  using SharedStateBase::IgnoresCancelBeforeStart;
  using SharedStateBase::MarkAsCancelled;

 private:
  std::atomic<int> m_cancels{0};
};

}  // namespace qilsys::test
