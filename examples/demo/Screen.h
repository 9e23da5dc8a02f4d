/// What a watcher sees while the story runs.
#pragma once

#include <deque>
#include <memory>
#include <string>
#include <vector>

#include "demo/Chronicle.h"
#include "qilsys/TStringCore.h"

namespace demo {

/// Shows the run; one kind for terminals, one for everything else.
class Screen {
 public:
  virtual ~Screen() = default;

  virtual void Title(double seconds, const TStringCore& text) = 0;
  virtual void Tell(const Event& event) = 0;
  virtual void Show(const Sample& sample, const std::vector<TStringCore>& states) = 0;
  virtual void Progress(size_t done, size_t all) = 0;
};

/// A live table where standard output is a terminal, high enough for it, and `plain` is not asked for, else plain lines.
std::unique_ptr<Screen> MakeScreen(bool plain);

/// Whether all rows of the live table fit a terminal of so many, so that it can be drawn again in place.
bool FitsLiveTable(int rows);

/// A moment as it stands before an event, such as "[ 12.3 s]".
TStringCore Moment(double seconds);

/// A quantity of memory as a watcher reads it, such as "104.2 MiB".
TStringCore Mebibytes(unsigned long long bytes);

}  // namespace demo
