/// What tests set of parallel loops.
#pragma once

namespace qilsys::thread {

/// Off, every index of a ParallelForThread runs on the calling thread.
extern bool g_isThreadingEnabled;

}  // namespace qilsys::thread
