#include "qilsys/TSemaphore.h"

#include <utility>

#include "base/SystemError_platform.h"
#include "qilsys/QuillonException.h"
#include "qilsys/TError.h"
#include "qilsys/TFormatStringCore.h"
#include "synchronize/NoLimit.h"
#include "synchronize/SynchronizeForTest.h"
#include "synchronize/TSemaphore_platform.h"

namespace {

using qilsys::synchronize::NoLimit;
using qilsys::synchronize::TPlatformSemaphore;

constexpr std::uint32_t Maximum = 0x7FFFFFFF;

// The last error comes first: building the texts could change it.
[[noreturn]] void ThrowSystemFailure(const char* format, unsigned int code, const char* codeName) {
  const auto lastError = static_cast<unsigned int>(qilsys::base::LastSystemError());
  throw QuillonException(
      TFormatStringCore(format).arg(lastError),
      TError::ErrorInfo(QuillonError::MakeError(code, codeName), TError::System, grpc::StatusCode::UNKNOWN));
}

class Semaphore final : public TSemaphore {
 public:
  explicit Semaphore(unsigned int count);

  bool TryAcquire() override;
  bool Acquire(unsigned int timeoutMilliseconds) override;
  void Acquire() override;
  void Release() override;

  unsigned int WaitersForTest() { return m_semaphore.WaitersForTest(); }

 private:
  ~Semaphore() override = default;

  TPlatformSemaphore m_semaphore;
};

Semaphore::Semaphore(unsigned int count) {
  if (!m_semaphore.Create(count, Maximum)) {
    ThrowSystemFailure("TSemaphore::Construct: error=%1", 0x0D655B98, "QuillonException_AutoGen_0x0D655B98");
  }
}

bool Semaphore::TryAcquire() { return static_cast<TSemaphore*>(this)->Acquire(0); }

bool Semaphore::Acquire(unsigned int timeoutMilliseconds) {
  return m_semaphore.Wait(timeoutMilliseconds) == TPlatformSemaphore::WaitResult::Acquired;
}

void Semaphore::Acquire() {
  if (m_semaphore.Wait(NoLimit) == TPlatformSemaphore::WaitResult::Failed) {
    ThrowSystemFailure("TSemaphore::Acquire: error=%1", 0x4B4D16D1, "QuillonException_AutoGen_0x4B4D16D1");
  }
}

void Semaphore::Release() {
  if (!m_semaphore.Release()) {
    ThrowSystemFailure("TSemaphore::Release: error=%1", 0x26B5EE1F, "QuillonException_AutoGen_0x26B5EE1F");
  }
}

}  // namespace

TSemaphore::TSemaphore() = default;

TSemaphore::~TSemaphore() = default;

RefCntPtr<TSemaphore> TSemaphore::Construct(unsigned int count) { return new Semaphore(count); }

TSemaphoreScope::TSemaphoreScope(RefCntPtr<TSemaphore> semaphore) : m_semaphore(std::move(semaphore)) {
  m_semaphore->Acquire();
}

TSemaphoreScope::TSemaphoreScope(RefCntPtr<TSemaphore> semaphore, unsigned int timeoutMilliseconds) {
  if (semaphore->Acquire(timeoutMilliseconds)) {
    m_semaphore = std::move(semaphore);
  }
}

// A semaphore at its maximum has nothing to get back, and a destructor has nobody to tell.
TSemaphoreScope::~TSemaphoreScope() {
  try {
    Reset();
  } catch (const QuillonException&) {
  }
}

bool TSemaphoreScope::IsAcquired() const { return static_cast<bool>(m_semaphore); }

void TSemaphoreScope::Reset() {
  if (m_semaphore) {
    m_semaphore->Release();
    m_semaphore.reset();
  }
}

unsigned int SynchronizeForTest::Waiters(TSemaphore& semaphore) {
  return static_cast<Semaphore&>(semaphore).WaitersForTest();
}
