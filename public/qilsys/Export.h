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
