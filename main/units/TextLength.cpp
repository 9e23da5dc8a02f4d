#include "units/TextLength.h"

#include <cstring>

#include "units/TextLimits.h"

namespace qilsys::units {

namespace {

template <class Unit>
int CountElements(const Unit* text, int limit) {
  int length = 0;
  while (length < limit && text[length] != 0) ++length;
  return length;
}

template <class Unit>
int MeasureText(const Unit* text) {
  const int length = text ? CountElements(text, LengthLimit) : 0;
  if (length == LengthLimit) ThrowCapacity();
  return length;
}

}  // namespace

int TerminatedLength(const char* text) {
  const std::size_t length = text ? std::strlen(text) : 0;
  if (length >= static_cast<std::size_t>(LengthLimit)) ThrowCapacity();
  return static_cast<int>(length);
}

int TerminatedLength(const char32_t* text) { return MeasureText(text); }
int TerminatedLength(const TCodeUnit* text) { return MeasureText(text); }
int TerminatedLength(const TForeignUnit* text) { return MeasureText(text); }

int TerminatedLength(const TForeignUnit* text, int limit) { return text ? CountElements(text, limit) : 0; }

}  // namespace qilsys::units
