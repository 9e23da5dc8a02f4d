/// Which bytes go where when code points of several lengths are spread over lanes, or gathered from them.
///
/// The layout is that of D. Lemire and W. Mula, "Transcoding billions of Unicode characters per second with SIMD
/// instructions" (2022); the entries are computed here.
#pragma once

#include <array>
#include <bit>
#include <cstddef>
#include <cstdint>

namespace Unicode {

using Shuffle = std::array<std::uint8_t, 16>;
constexpr std::uint8_t NoByte = 0x80;  // A shuffle writes zero for it.

/// What to do with the next 12 bytes of UTF-8, by which of them end a code point.
struct Spread {
  std::uint8_t shuffle;   // Index into SpreadTable::shuffles; its range tells the kind of lanes.
  std::uint8_t consumed;  // Bytes.
};

/// Six code points of 1 or 2 bytes fill 16-bit lanes; four of 1 to 3 bytes, or three of 1 to 4, fill 32-bit lanes.
/// In a lane the last byte of its code point comes first.
struct SpreadTable {
  static constexpr int FirstOfThreeBytes = 64;
  static constexpr int FirstOfFourBytes = 64 + 81;
  static constexpr int Shuffles = 64 + 81 + 64;

  std::array<Spread, 4096> spreads{};
  std::array<Shuffle, Shuffles> shuffles{};

  constexpr SpreadTable() {
    for (unsigned ends = 0; ends < spreads.size(); ++ends) Add(ends);
  }

 private:
  /// The lengths of the first code points, at most six.
  struct Lengths {
    std::array<std::uint8_t, 6> bytes{};
    int count = 0;

    constexpr bool StartWith(int wanted, int longest) const {
      if (count < wanted) return false;
      for (int i = 0; i < wanted; ++i)
        if (bytes[static_cast<std::size_t>(i)] > longest) return false;
      return true;
    }
  };

  constexpr void Add(unsigned ends) {
    Lengths lengths;
    for (unsigned rest = ends; rest != 0 && lengths.count < 6;) {
      const int length = std::countr_zero(rest) + 1;
      lengths.bytes[static_cast<std::size_t>(lengths.count++)] = static_cast<std::uint8_t>(length);
      rest >>= length;
    }
    if (lengths.StartWith(6, 2)) return Store(ends, lengths, 6, 2, 0);
    if (lengths.StartWith(4, 3)) return Store(ends, lengths, 4, 3, FirstOfThreeBytes);
    if (lengths.StartWith(3, 4)) return Store(ends, lengths, 3, 4, FirstOfFourBytes);
    spreads[ends] = {0, 12};  // No valid text has these ends.
  }

  constexpr void Store(unsigned ends, const Lengths& lengths, int count, int longest, int first) {
    int index = first;
    int weight = 1;
    int consumed = 0;
    for (int i = 0; i < count; ++i) {
      const int length = lengths.bytes[static_cast<std::size_t>(i)];
      index += (length - 1) * weight;
      weight *= longest;
      consumed += length;
    }
    spreads[ends] = {static_cast<std::uint8_t>(index), static_cast<std::uint8_t>(consumed)};
    Shuffle& shuffle = shuffles[static_cast<std::size_t>(index)];
    // All zeros until the first of the ends that share it.
    if (shuffle[15] == 0) shuffle = MakeShuffle(lengths, count, longest == 2 ? 2 : 4);
  }

  static constexpr Shuffle MakeShuffle(const Lengths& lengths, int count, int laneBytes) {
    Shuffle shuffle{};
    shuffle.fill(NoByte);
    int source = 0;
    for (int i = 0; i < count; ++i) {
      source += lengths.bytes[static_cast<std::size_t>(i)];
      for (int k = 0; k < lengths.bytes[static_cast<std::size_t>(i)]; ++k)
        shuffle[static_cast<std::size_t>(i * laneBytes + k)] = static_cast<std::uint8_t>(source - 1 - k);
    }
    return shuffle;
  }
};

/// How the bytes of some lanes move together, and how many they are.
struct Gather {
  Shuffle shuffle{};
  std::uint8_t bytes = 0;

  constexpr void Take(int byte) { shuffle[bytes++] = static_cast<std::uint8_t>(byte); }
};

/// Eight 16-bit lanes of 1 or 2 bytes, by the lanes that hold 1.
constexpr std::array<Gather, 256> MakeGatherOfTwo() {
  std::array<Gather, 256> table{};
  for (unsigned singles = 0; singles < table.size(); ++singles) {
    table[singles].shuffle.fill(NoByte);
    for (int lane = 0; lane < 8; ++lane) {
      table[singles].Take(2 * lane);
      if ((singles >> lane & 1) == 0) table[singles].Take(2 * lane + 1);
    }
  }
  return table;
}

/// Four 32-bit lanes of 1 to 3 bytes, by the lanes that hold 2 or more (low four bits) and 3 (high four bits).
constexpr std::array<Gather, 256> MakeGatherOfThree() {
  std::array<Gather, 256> table{};
  for (unsigned lengths = 0; lengths < table.size(); ++lengths) {
    table[lengths].shuffle.fill(NoByte);
    for (int lane = 0; lane < 4; ++lane) {
      table[lengths].Take(4 * lane);
      if (lengths >> lane & 1) table[lengths].Take(4 * lane + 1);
      if (lengths >> (lane + 4) & 1) table[lengths].Take(4 * lane + 2);
    }
  }
  return table;
}

}  // namespace Unicode
