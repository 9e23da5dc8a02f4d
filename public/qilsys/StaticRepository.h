/// Objects made once for the process, on first use, and destroyed together.
///
///     static void* s_table = nullptr;
///     InitOnce(
///         &s_table, [](void*) { return new boost::any(Table()); }, nullptr,
///         [](boost::any* made) -> void* { return boost::any_cast<Table>(made); });
///
/// All three functions may be called on any thread at any time, from create and extract functions and from destructors of
/// objects too.
#pragma once

#include "qilsys/Export.h"

namespace boost {
class any;  // Its header is <boost/any.hpp>.
}

/// Makes the repository unless there is one; after a teardown too, and then objects can be made again. Raises
/// std::bad_alloc.
QILSYS_API void InitializeStaticRepository();

/// Destroys the objects, newest first, and then the repository; does nothing without one. The newest is the one whose
/// making began last: an object that was made inside another's create function goes before that. The slots keep their
/// pointers, which point nowhere then. It waits for objects that are being made.
QILSYS_API void DeinitializeStaticRepository();

/// Fills `*slot`, unless it is filled, with what `extract` gives for the object that belongs to the address `slot`. If
/// there is none yet, it becomes what `create` gives for `arg`: null or an object made with `new`, which the repository
/// then owns. However many threads ask, `create` runs once, and all of them return with the slot filled.
///
/// Does nothing where `slot` is null, and after a teardown. The first call of a process makes the repository. While the
/// functions run, a lock is held that lets in their own thread alone: they may ask for other objects, but a `create`
/// that asks for its own slot runs again, within itself. What they raise passes through. A `create` that raised, and
/// memory that ran out (std::bad_alloc), leave no object behind; the next call tries again.
///
/// The slot is read and written as by std::atomic_ref. A thread that has called this for a slot may read it plainly.
QILSYS_API void InitOnce(void** slot, boost::any* (*create)(void* arg), void* arg,
                         void* (*extract)(boost::any* object));
