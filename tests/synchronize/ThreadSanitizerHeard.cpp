#include "ThreadSanitizerHost.h"

bool qilsys::test::AreAnnouncementsHeard() { return true; }
