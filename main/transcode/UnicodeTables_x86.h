/// Which bytes go where when code points of several lengths are spread over lanes, or gathered from them.
///
/// The layout is that of D. Lemire and W. Mula, "Transcoding billions of Unicode characters per second with SIMD
/// instructions" (2022); the entries are computed here.
#pragma once

#include <cstdint>

namespace qilsys::transcode {

constexpr std::uint8_t NoByte = 0x80;  // A shuffle writes zero for it.

// Plain arrays: the tables are made while compiling, and compilers allow that only so many steps and calls.
struct Shuffle {
  std::uint8_t bytes[16];

  constexpr void Clear() {
    for (std::uint8_t& byte : bytes) byte = NoByte;
  }
};

/// What to do with the next 12 bytes of UTF-8, by which of them end a code point.
struct Spread {
  std::uint8_t shuffle = 0;    // Index into SpreadTable::shuffles; its range tells the kind of lanes.
  std::uint8_t consumed = 12;  // Bytes. No valid text has the ends that keep this; the walk goes on all the same.
};

/// Six code points of 1 or 2 bytes fill 16-bit lanes; four of 1 to 3 bytes, or three of 1 to 4, fill 32-bit lanes.
/// In a lane the last byte of its code point comes first.
struct SpreadTable {
  static constexpr int FirstOfThreeBytes = 64;
  static constexpr int FirstOfFourBytes = 64 + 81;
  static constexpr int Shuffles = 64 + 81 + 64;
  static constexpr unsigned Ends = 1U << 12;

  Spread spreads[Ends]{};
  Shuffle shuffles[Shuffles]{};

  // Where bytes can be taken in two ways, the later one here takes more code points.
  constexpr SpreadTable() {
    AddShapes(3, 4, FirstOfFourBytes);
    AddShapes(4, 3, FirstOfThreeBytes);
    AddShapes(6, 2, 0);
  }

 private:
  /// Adds all sequences of `count` lengths from 1 to `longest`.
  constexpr void AddShapes(int count, int longest, int first) {
    int shapes = 1;
    for (int i = 0; i < count; ++i) shapes *= longest;
    for (int shape = 0; shape < shapes; ++shape) Add(shape, count, longest, first + shape);
  }

  /// The digits of `shape` to the base `longest` are the lengths less 1, the lowest the first code point's.
  constexpr void Add(int shape, int count, int longest, int index) {
    const int laneBytes = longest == 2 ? 2 : 4;
    Shuffle& shuffle = shuffles[index];
    shuffle.Clear();
    unsigned ends = 0;
    int consumed = 0;
    for (int i = 0; i < count; ++i, shape /= longest) {
      const int length = shape % longest + 1;
      consumed += length;
      ends |= 1U << (consumed - 1);
      for (int k = 0; k < length; ++k) shuffle.bytes[i * laneBytes + k] = static_cast<std::uint8_t>(consumed - 1 - k);
    }
    // Whatever ends behind them.
    for (; ends < Ends; ends += 1U << consumed) {
      spreads[ends] = {static_cast<std::uint8_t>(index), static_cast<std::uint8_t>(consumed)};
    }
  }
};

/// How the bytes of some lanes move together, and how many they are.
struct Gather {
  Shuffle shuffle{};
  std::uint8_t bytes = 0;

  constexpr void Take(int byte) { shuffle.bytes[bytes++] = static_cast<std::uint8_t>(byte); }
};

struct GatherTable {
  static constexpr unsigned Count = 256;
  Gather gathers[Count]{};
};

/// Eight 16-bit lanes of 1 or 2 bytes, by the lanes that hold 1.
constexpr GatherTable MakeGatherOfTwo() {
  GatherTable made;
  for (unsigned singles = 0; singles < GatherTable::Count; ++singles) {
    made.gathers[singles].shuffle.Clear();
    for (int lane = 0; lane < 8; ++lane) {
      made.gathers[singles].Take(2 * lane);
      if ((singles >> lane & 1) == 0) made.gathers[singles].Take(2 * lane + 1);
    }
  }
  return made;
}

/// Four 32-bit lanes of 1 to 3 bytes, by the lanes that hold 2 or more (low four bits) and 3 (high four bits).
constexpr GatherTable MakeGatherOfThree() {
  GatherTable made;
  for (unsigned lengths = 0; lengths < GatherTable::Count; ++lengths) {
    made.gathers[lengths].shuffle.Clear();
    for (int lane = 0; lane < 4; ++lane) {
      made.gathers[lengths].Take(4 * lane);
      if (lengths >> lane & 1) made.gathers[lengths].Take(4 * lane + 1);
      if (lengths >> (lane + 4) & 1) made.gathers[lengths].Take(4 * lane + 2);
    }
  }
  return made;
}

}  // namespace qilsys::transcode
