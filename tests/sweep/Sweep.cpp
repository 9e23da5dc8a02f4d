#include "sweep/Sweep.h"

#include <functional>
#include <new>
#include <set>

#include "qilsys/TStringCore.h"

namespace qilsys::test::sweep {
namespace {

// More than any operation here asks for: what goes on beyond them goes on for ever.
constexpr int MostRequests = 2000;

Raised RunWatched(Subject& subject) {
  try {
    subject.Run();
    return Raised::Nothing;
  } catch (const TStringCore::OutOfMemoryException&) {
    return Raised::Own;
  } catch (const std::bad_alloc&) {
    return Raised::Standard;
  } catch (...) {
    return Raised::Other;
  }
}

std::size_t Sight(const Subject& subject) { return std::hash<std::string>()(subject.Observe()); }

const char* JudgeException(Raises leave, Raised raised) {
  switch (raised) {
    case Raised::Own:
      return leave == Raises::Own || leave == Raises::Either ? nullptr : "raises TStringCore::OutOfMemoryException";
    case Raised::Standard:
      return leave == Raises::Standard || leave == Raises::Either ? nullptr : "raises std::bad_alloc";
    default:
      return "raises another exception than those of memory";
  }
}

// Of an operation that has raised.
const char* Judge(Subject& subject, const Leave& leave, Raised raised, std::size_t untouched) {
  if (const char* broken = JudgeException(leave.raises, raised)) return broken;
  if (leave.left == Left::Unusable) return nullptr;
  if (leave.left == Left::Unchanged && Sight(subject) != untouched) return "has changed what it works on";
  return RunWatched(subject) == Raised::Nothing ? nullptr : "fails a second time, with all its memory";
}

void RunAndJudge(Subject& subject, const Leave& leave, int n, Refused which, Outcome& outcome) {
  const std::size_t untouched = Sight(subject);
  RefuseFrom(n, which);
  outcome.raised = RunWatched(subject);
  outcome.requests = StopRefusing();
  const bool raised = outcome.raised != Raised::Nothing;
  outcome.isComparable =
      raised ? leave.left != Left::Unusable : leave.result == Result::Same || outcome.requests.refused == 0;
  try {
    if (raised) outcome.broken = Judge(subject, leave, outcome.raised, untouched);
    if (outcome.isComparable) outcome.seen = Sight(subject);
  } catch (...) {
    outcome.broken = "leaves an object that can't be looked at";
  }
}

// Of a run after which nothing is left to be made.
const char* WhatIsWrong(const Outcome& outcome, const Outcome& undisturbed) {
  const char* broken = Compare(outcome, undisturbed);
  return broken == nullptr && outcome.kept != 0 ? "leaks" : broken;
}

// What the runs of one operation have come to.
class Findings {
 public:
  explicit Findings(const Leave& leave) : m_leave(leave) {}

  void Add(const Outcome& outcome, const char* broken, Shape shape, int n, Refused which) {
    if (outcome.requests.refused > 0) m_raised.insert(outcome.raised);
    if (broken == nullptr || !m_broken.insert(broken).second) return;
    m_lines += std::string(NameOf(shape)) + ", request " + std::to_string(n) +
               (which == Refused::One ? "" : " and all after it") + ": " + broken + '\n';
  }

  std::string Lines() const { return m_lines + UnusedLeave(); }

 private:
  // A class that may be raised and never is, or a result that never came.
  const char* UnusedLeave() const {
    if (m_leave.when == When::Sometimes) return "";
    const bool either = m_leave.raises == Raises::Either;
    if ((either || m_leave.raises == Raises::Standard) && !m_raised.contains(Raised::Standard)) {
      return "has leave to raise std::bad_alloc and never does\n";
    }
    if (either && !m_raised.contains(Raised::Own)) return "has no text of its own that would need a block\n";
    if (m_leave.result == Result::Another && !m_raised.contains(Raised::Nothing)) {
      return "has leave to give another result and never does\n";
    }
    return "";
  }

  const Leave& m_leave;
  std::set<Raised> m_raised;
  std::set<std::string> m_broken;
  std::string m_lines;
};

}  // namespace

const char* NameOf(Shape shape) {
  switch (shape) {
    case Shape::Inline:
      return "inline";
    case Shape::OwnBlock:
      return "own block";
    default:
      return "shared block";
  }
}

Outcome RunRefused(const Operation& operation, Shape shape, int n, Refused which) {
  Outcome outcome;
  const long liveBefore = LiveBlocks();
  RunAndJudge(*operation.Make(shape), operation.leave, n, which, outcome);
  outcome.kept = LiveBlocks() - liveBefore;
  return outcome;
}

Outcome RunUndisturbed(const Operation& operation, Shape shape) {
  return RunRefused(operation, shape, -1, Refused::One);
}

const char* Compare(const Outcome& outcome, const Outcome& undisturbed) {
  if (outcome.broken != nullptr || !outcome.isComparable || outcome.seen == undisturbed.seen) return outcome.broken;
  return outcome.raised == Raised::Nothing ? "comes to another result and says nothing"
                                           : "comes to another result the second time";
}

std::string SweepWarm(const Operation& operation) {
  Findings findings(operation.leave);
  for (const Shape shape : Shapes) {
    // The first of them may leave things behind that are made once.
    RunUndisturbed(operation, shape);
    const Outcome undisturbed = RunUndisturbed(operation, shape);
    findings.Add(undisturbed, WhatIsWrong(undisturbed, undisturbed), shape, -1, Refused::One);
    bool refused = true;
    for (int n = 0; refused && n < MostRequests; ++n) {
      for (const Refused which : {Refused::One, Refused::AllAfter}) {
        const Outcome outcome = RunRefused(operation, shape, n, which);
        refused = outcome.requests.refused > 0;
        findings.Add(outcome, WhatIsWrong(outcome, undisturbed), shape, n, which);
      }
    }
  }
  return findings.Lines();
}

}  // namespace qilsys::test::sweep
