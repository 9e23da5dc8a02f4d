/// Whether the host hears what the library announces.
#pragma once

namespace qilsys::test {

bool AreAnnouncementsHeard();

}  // namespace qilsys::test
