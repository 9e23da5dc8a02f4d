/// What is left of a run: a summary, a table of values, a picture.
#pragma once

#include <filesystem>

#include "demo/Chronicle.h"

namespace demo {

/// Prints what each member did and why.
void PrintSummary(const Chronicle& chronicle);

/// Writes memory.csv, events.csv and memory.svg into `folder`, which is made if need be, and says where they are.
/// The picture is drawn by gnuplot; without it the values are written all the same, and a line says so.
/// Throws std::runtime_error if the folder can't be written.
void WriteFiles(const Chronicle& chronicle, const std::filesystem::path& folder);

}  // namespace demo
