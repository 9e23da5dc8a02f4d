/// QILSYS_API marks what the shared library shows; everything else stays hidden.
#pragma once

#if defined(QILSYS_STATIC)
#define QILSYS_API
#elif defined(_WIN32) && defined(QILSYS_BUILDING)
#define QILSYS_API __declspec(dllexport)
#elif defined(_WIN32)
#define QILSYS_API __declspec(dllimport)
#else
#define QILSYS_API __attribute__((visibility("default")))
#endif

#if defined(_MSC_VER)
// An exported class may hold, or derive from, what is not exported: types of the C++ library, and plain structures whose
// members are all inline. Both sides of the interface are built by one compiler, with one runtime, so they agree.
#pragma warning(disable : 4251 4275)
#endif

/// The two marks of a class template's instance that the library shows: `extern template class QILSYS_API_DECLARED X<T>;`
/// in the header and `template class QILSYS_API_DEFINED X<T>;` in the source. MSVC wants an export marked where the code
/// is made, others where the instance is first named. GCC for Windows shows no inline members of an instance, whatever
/// the mark: there each module has its own copies of them.
#if defined(_WIN32) && defined(__GNUC__)
#define QILSYS_API_DECLARED
#define QILSYS_API_DEFINED
#elif defined(_WIN32) && defined(QILSYS_BUILDING)
#define QILSYS_API_DECLARED
#define QILSYS_API_DEFINED QILSYS_API
#else
#define QILSYS_API_DECLARED QILSYS_API
#define QILSYS_API_DEFINED
#endif
