// A library for the tests to load: something to point at.
#include "qilsys/Export.h"

extern "C" {
QILSYS_API extern const int PlaceInModule;
const int PlaceInModule = 1;
}
