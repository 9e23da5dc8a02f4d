/// Random numbers of the system. Not boost's: its generator asks the system in some of its versions, and in others draws
/// from one that is seeded once, and never fails.
#pragma once

#include <cstdint>
#include <span>

namespace qilsys::monitor {

/// Fills `bytes` with the system's own random numbers. Throws `boost::uuids::entropy_error`, with the system's number of
/// the failure, if there are none.
void FillWithRandomNumbers(std::span<std::uint8_t> bytes);

}  // namespace qilsys::monitor
