// The sweep in fresh processes.
#include <chrono>
#include <cstdio>
#include <string>

#include "support/SpawnedProcess.h"
#include "sweep/Sweep.h"

namespace qilsys::test::sweep {
namespace {

// Which shape makes no difference to what is made once.
constexpr Shape ColdShape = Shape::OwnBlock;

// There to fail, not to pass.
constexpr std::chrono::seconds Limit(20);

struct ColdRun {
  int asked = 0;
  int askedAgain = 0;
  long liveBlocks = 0;
  std::string broken;
};

// All that the program writes. Empty where it has ended otherwise than it should, or does not end at all.
std::string OutputOf(SpawnedProcess& process) {
  std::string output;
  while (true) {
    const auto more = process.Read(Limit);
    if (!more) return process.Wait() == 0 ? output : "";
    if (more->empty()) return "";
    output += *more;
  }
}

ColdRun RunCold(const Operation& operation, int n, Refused which) {
  SpawnedProcess process({QILSYS_SWEEP_ONCE, operation.name, std::to_string(static_cast<int>(ColdShape)),
                          std::to_string(n), which == Refused::AllAfter ? "1" : "0"});
  ColdRun run;
  const std::string output = OutputOf(process);
  int read = 0;
  if (std::sscanf(output.c_str(), "%d %d %ld %n", &run.asked, &run.askedAgain, &run.liveBlocks, &read) < 3) {
    run.broken = "hangs or dies";
    return run;
  }
  run.broken = output.substr(static_cast<std::size_t>(read));
  while (!run.broken.empty() && run.broken.back() <= ' ') run.broken.pop_back();
  return run;
}

std::string Line(int n, Refused which, const std::string& broken) {
  return "first of its process, request " + std::to_string(n) + (which == Refused::One ? "" : " and all after it") +
         ": " + broken + '\n';
}

}  // namespace

std::string SweepCold(const Operation& operation) {
  const ColdRun undisturbed = RunCold(operation, -1, Refused::One);
  if (!undisturbed.broken.empty()) return Line(-1, Refused::One, undisturbed.broken);
  if (undisturbed.asked == undisturbed.askedAgain) return "";
  std::string lines;
  for (int n = 0; n < undisturbed.asked; ++n) {
    for (const Refused which : {Refused::One, Refused::AllAfter}) {
      const ColdRun run = RunCold(operation, n, which);
      if (!run.broken.empty()) {
        lines += Line(n, which, run.broken);
      } else if (run.liveBlocks != undisturbed.liveBlocks) {
        lines += Line(n, which, "leaks " + std::to_string(run.liveBlocks - undisturbed.liveBlocks));
      }
    }
  }
  return lines;
}

}  // namespace qilsys::test::sweep
