/// Attributes and pragmas that compilers spell differently, for inner loops.
///
/// A form of a loop is a function for which the compiler may use more instructions than elsewhere (QILSYS_TARGET). What it
/// calls has to be compiled for the same instructions: inlined into it always, or a form of its own that is never inlined.
#pragma once

#if defined(__GNUC__)
#define QILSYS_TARGET(names) __attribute__((target(names)))
#define QILSYS_ALWAYS_INLINE __attribute__((always_inline)) inline
#define QILSYS_NOINLINE __attribute__((noinline))
#define QILSYS_PRAGMA(words) _Pragma(#words)
#define QILSYS_UNROLL(count) QILSYS_PRAGMA(GCC unroll count)
#else
#define QILSYS_TARGET(names)
#define QILSYS_ALWAYS_INLINE __forceinline
#define QILSYS_NOINLINE __declspec(noinline)
#define QILSYS_UNROLL(count)
#endif
