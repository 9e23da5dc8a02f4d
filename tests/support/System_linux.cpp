#include "support/System.h"

namespace qilsys::test {

bool HasGapsOfWine() { return false; }

}  // namespace qilsys::test
