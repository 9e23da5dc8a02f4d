/// The heap as the sweep sees it: every request of the program's own objects comes by here, and so do ICU's.
///
/// The linker puts these functions in place of `malloc` and its kind (`--wrap`), so the entry points of the library, the
/// operators on top of them and the strings meet a refusal where they meet one in the field.
#pragma once

namespace qilsys::test::sweep {

enum class Refused {
  One,       ///< The request alone.
  AllAfter,  ///< The request and all that follow.
};

/// From now on counts requests of this thread, from 0, and refuses number `n`; none where that is negative.
void RefuseFrom(int n, Refused which);

/// Says that this thread works for the one that runs the operation, which waits meanwhile: its requests count too.
void CountAsWorkingThread(bool does);

struct Requests {
  int asked = 0;
  int refused = 0;
};

/// Ends what RefuseFrom began: the requests since.
Requests StopRefusing();

/// Blocks that have been given out and not been given back since the program started.
long LiveBlocks();

/// Lets the requests of ICU come by here too. To be called before any text is made.
void TakeOverHeapOfIcu();

/// False where a tool's own operators stand before those of the library, so that their requests don't come by here.
bool ReachesOperatorNew();

}  // namespace qilsys::test::sweep
