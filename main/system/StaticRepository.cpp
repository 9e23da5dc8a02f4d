#include "qilsys/StaticRepository.h"

#include <atomic>
#include <boost/any.hpp>
#include <forward_list>
#include <iterator>
#include <memory>
#include <mutex>
#include <unordered_map>
#include <utility>

#include "qilsys/ReferenceCount.h"
#include "qilsys/TLocks.h"

namespace {

using Create = boost::any* (*)(void*);
using Extract = void* (*)(boost::any*);

// Counted, so that threads which are in it, or wait for its lock, still have one to find closed.
class Repository : public RefCntObject {
 public:
  void Fill(void** slot, Create create, void* arg, Extract extract);
  /// Destroys the objects and takes no others.
  void Close();

 private:
  using Slots = std::forward_list<void**>;

  boost::any* Make(void** slot, Create create, void* arg);
  void Forget(Slots::const_iterator place);

  std::unordered_map<void**, std::unique_ptr<boost::any>> m_objects;
  Slots m_newestFirst;
  bool m_isClosed = false;
  TRecursiveMutex m_lock;
};

// Only writes what is new: threads that have seen the pointer may read the slot plainly.
void Store(void** slot, void* pointer) {
  const std::atomic_ref<void*> shared(*slot);
  if (shared.load(std::memory_order_relaxed) != pointer) shared.store(pointer, std::memory_order_release);
}

void Repository::Fill(void** slot, Create create, void* arg, Extract extract) {
  const TScopedLock lock(m_lock);
  if (m_isClosed) return;
  const auto known = m_objects.find(slot);
  boost::any* const object = known != m_objects.end() ? known->second.get() : Make(slot, create, arg);
  // By `create` itself, which may do so.
  if (m_isClosed) return;
  Store(slot, extract(object));
}

// The slot takes its place among the others first and has an object last: so what is made in between is newer, and a
// function that asks for its own slot finds nothing.
boost::any* Repository::Make(void** slot, Create create, void* arg) {
  m_newestFirst.push_front(slot);
  const Slots::const_iterator place = m_newestFirst.cbegin();
  try {
    std::unique_ptr<boost::any> made(create(arg));
    if (m_isClosed) return nullptr;
    boost::any* const object = made.get();
    m_objects[slot].swap(made);
    return object;
  } catch (...) {
    if (!m_isClosed) Forget(place);
    throw;
  }
}

void Repository::Forget(Slots::const_iterator place) {
  auto before = m_newestFirst.cbefore_begin();
  while (std::next(before) != place) ++before;
  m_newestFirst.erase_after(before);
}

// Destructors may have objects made, which are the newest then.
void Repository::Close() {
  const TScopedLock lock(m_lock);
  while (!m_newestFirst.empty()) {
    void** const slot = m_newestFirst.front();
    m_newestFirst.pop_front();
    const auto destroyed = m_objects.extract(slot);
  }
  m_isClosed = true;
}

// Held for a moment only, and never while functions of the host run.
std::mutex& ProcessLock() {
  static std::mutex s_lock;
  return s_lock;
}

// Owned by hand: no static of the process may end what a host has not ended.
constinit Repository* g_repository = nullptr;
constinit bool g_isTornDown = false;

RefCntPtr<Repository> Current() {
  const std::lock_guard lock(ProcessLock());
  return g_repository;
}

// Under the process's lock.
void Build() {
  RefCntPtr<Repository> built(new Repository);
  built->AddReference();
  g_repository = built.get();
  g_isTornDown = false;
}

RefCntPtr<Repository> CurrentOrFirst() {
  const std::lock_guard lock(ProcessLock());
  if (g_repository == nullptr && !g_isTornDown) Build();
  return g_repository;
}

}  // namespace

void InitializeStaticRepository() {
  const std::lock_guard lock(ProcessLock());
  if (g_repository == nullptr) Build();
}

void DeinitializeStaticRepository() {
  const RefCntPtr<Repository> repository = Current();
  if (!repository) return;
  repository->Close();
  const std::lock_guard lock(ProcessLock());
  if (g_repository != repository.get()) return;
  g_repository = nullptr;
  g_isTornDown = true;
  repository->RemoveReference();
}

void InitOnce(void** slot, boost::any* (*create)(void*), void* arg, void* (*extract)(boost::any*)) {
  if (slot == nullptr || std::atomic_ref<void*>(*slot).load(std::memory_order_acquire) != nullptr) return;
  if (const RefCntPtr<Repository> repository = CurrentOrFirst()) repository->Fill(slot, create, arg, extract);
}
