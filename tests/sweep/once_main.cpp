// Runs one operation as the first of its process, with one request refused, and again with none.
//
//     sweep_once NAME SHAPE REQUEST ALL_AFTER
//
// Writes the requests of the first run, those of the second, the blocks that are out at the end, and what was wrong.
#include <cstdio>
#include <cstdlib>
#include <string_view>

#include "sweep/Sweep.h"

using namespace qilsys::test::sweep;

namespace {

const Operation* Find(std::string_view name) {
  for (const Operation& operation : AllOperations()) {
    if (operation.name == name) return &operation;
  }
  return nullptr;
}

}  // namespace

int main(int argc, char** argv) {
  TakeOverHeapOfIcu();
  const Operation* operation = argc == 5 ? Find(argv[1]) : nullptr;
  if (operation == nullptr) return EXIT_FAILURE;
  const Shape shape = Shapes[std::atoi(argv[2])];
  const Refused which = std::atoi(argv[4]) != 0 ? Refused::AllAfter : Refused::One;
  const Outcome first = RunRefused(*operation, shape, std::atoi(argv[3]), which);
  const Outcome second = RunUndisturbed(*operation, shape);
  const char* broken = Compare(first, second);
  std::printf("%d %d %ld %s\n", first.requests.asked, second.requests.asked, LiveBlocks(),
              broken == nullptr ? "" : broken);
  return EXIT_SUCCESS;
}
