#include "hash/Lookup2.h"

#include "hash/ReadWord.h"

namespace qilsys::hash {

namespace {

/// The 96 bits that are stirred.
struct Registers {
  uint32_t a;
  uint32_t b;
  uint32_t c;

  void Mix() {
    MixRound(13, 8, 13);
    MixRound(12, 16, 5);
    MixRound(3, 10, 15);
  }

 private:
  void MixRound(int right, int left, int last) {
    a = (a - b - c) ^ (c >> right);
    b = (b - c - a) ^ (a << left);
    c = (c - a - b) ^ (b >> last);
  }
};

constexpr uint32_t GoldenRatio = 0x9e3779b9;
constexpr uint32_t RoundBytes = 12;

/// The sum of up to four bytes, the first the lowest.
uint32_t Tail(const unsigned char* data, uint32_t count) {
  uint32_t word = 0;
  for (uint32_t i = 0; i < count; ++i) word |= uint32_t{data[i]} << (8 * i);
  return word;
}

}  // namespace

uint32_t Lookup2(const unsigned char* data, uint32_t length, uint32_t initial) {
  Registers r{GoldenRatio, GoldenRatio, initial};
  uint32_t left = length;
  for (; left >= RoundBytes; left -= RoundBytes, data += RoundBytes) {
    r.a += ReadLittle32(data);
    r.b += ReadLittle32(data + 4);
    r.c += ReadLittle32(data + 8);
    r.Mix();
  }
  r.c += length;
  // The lowest byte of the third register is the length's, so its last three bytes move up by one.
  if (left > 8) r.c += Tail(data + 8, left - 8) << 8;
  if (left > 0) r.a += Tail(data, left < 4 ? left : 4);
  if (left > 4) r.b += Tail(data + 4, left < 8 ? left - 4 : 4);
  r.Mix();
  return r.c;
}

}  // namespace qilsys::hash
