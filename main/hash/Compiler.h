/// What compilers spell differently, for the inner loops.
#pragma once

// A form of a loop is a function for which the compiler may use more instructions than elsewhere; what it calls has to
// be part of it, or a form of its own that stays apart.
#if defined(__GNUC__)
#define QILSYS_WITH_INSTRUCTIONS(names) __attribute__((target(names)))
#define QILSYS_PART_OF_CALLER __attribute__((always_inline)) inline
#define QILSYS_APART __attribute__((noinline))
#define QILSYS_PRAGMA(words) _Pragma(#words)
#define QILSYS_UNROLL(count) QILSYS_PRAGMA(GCC unroll count)
#else
#define QILSYS_WITH_INSTRUCTIONS(names)
#define QILSYS_PART_OF_CALLER __forceinline
#define QILSYS_APART __declspec(noinline)
#define QILSYS_UNROLL(count)
#endif
