/// The greatest text, and what the rooms beneath the string raise: exceptions whose classes are made of strings, so
/// the string's own source holds the bodies.
#pragma once

namespace qilsys::units {

/// The shortest length that no text may have; also the greatest capacity.
inline constexpr int LengthLimit = 0x7FFFFFF8;

/// Raises TStringCore::CapacityException.
[[noreturn]] void ThrowCapacity();
/// Raises TStringCore::OutOfMemoryException.
[[noreturn]] void ThrowOutOfMemory();
/// Raises TStringCore::Exception with this text (UTF-8).
[[noreturn]] void ThrowTextFailure(const char* text);

}  // namespace qilsys::units
