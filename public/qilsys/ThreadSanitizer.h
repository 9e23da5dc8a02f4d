/// What ThreadSanitizer is told of the order that this library gives to threads.
///
/// A host that is built with the tool shows it the host's code only. Of a lock in this library it sees nothing, so it
/// would report all that the lock guards as a race. Where the tool is in the process it has two functions to be told by,
/// which are null elsewhere: there an announcement costs a look at a pointer, and in a host's own code nothing.
#pragma once

#if defined(__SANITIZE_THREAD__)
#define QILSYS_UNDER_THREAD_SANITIZER
#elif defined(__has_feature)
#if __has_feature(thread_sanitizer)
#define QILSYS_UNDER_THREAD_SANITIZER
#endif
#endif

// Code that the tool sees needs no announcement, which would only hide what is wrong there. Symbols that may be missing
// are a thing of ELF.
#if defined(QILSYS_BUILDING) && defined(__ELF__) && !defined(QILSYS_UNDER_THREAD_SANITIZER)

extern "C" {
[[gnu::weak]] void __tsan_acquire(void* address);
[[gnu::weak]] void __tsan_release(void* address);
}

namespace qilsys::base {

/// From here on this thread sees what others wrote before they released the same address. Nothing is read there.
inline void AnnounceAcquire(const void* address) noexcept {
  if (__tsan_acquire) [[unlikely]] {
    __tsan_acquire(const_cast<void*>(address));
  }
}

/// Stands before the step that lets another thread go on.
inline void AnnounceRelease(const void* address) noexcept {
  if (__tsan_release) [[unlikely]] {
    __tsan_release(const_cast<void*>(address));
  }
}

}  // namespace qilsys::base

#else

namespace qilsys::base {

inline void AnnounceAcquire(const void*) noexcept {}
inline void AnnounceRelease(const void*) noexcept {}

}  // namespace qilsys::base

#endif

#undef QILSYS_UNDER_THREAD_SANITIZER
