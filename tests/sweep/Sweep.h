/// Runs operations while requests for memory are refused, and judges what comes of it.
#pragma once

#include <cstddef>
#include <string>

#include "sweep/FailingHeap.h"
#include "sweep/Operation.h"

namespace qilsys::test::sweep {

enum class Raised { Nothing, Own, Standard, Other };

/// What one run of an operation came to. Holds nothing on the heap, whose blocks are counted.
struct Outcome {
  Requests requests;
  Raised raised = Raised::Nothing;
  /// What was wrong; null where nothing was.
  const char* broken = nullptr;
  /// What an observer saw at the end, as a hash of it.
  std::size_t seen = 0;
  /// Whether that is what an undisturbed run leaves to be seen.
  bool isComparable = true;
  /// Blocks more than before, with the subject gone.
  long kept = 0;
};

/// Runs the operation on a new subject while request `n` is refused and, where that raised and the object is promised to
/// be as before, once more with all the memory it asks for.
Outcome RunRefused(const Operation& operation, Shape shape, int n, Refused which);

/// The same with nothing refused.
Outcome RunUndisturbed(const Operation& operation, Shape shape);

/// What is wrong with `outcome`, which is to be compared with that of an undisturbed run; null for nothing.
const char* Compare(const Outcome& outcome, const Outcome& undisturbed);

/// Refuses each request of the operation in turn, alone and with all after it, in each shape: what was wrong, a line
/// each, empty where nothing was. A leave that nothing has used is wrong too.
std::string SweepWarm(const Operation& operation);

/// The same in fresh processes, as far as the operation asks for more when it is the first of its process.
std::string SweepCold(const Operation& operation);

}  // namespace qilsys::test::sweep
