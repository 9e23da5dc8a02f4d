/// Where the blocks of strings come from.
#pragma once

#include <cstddef>

namespace qilsys::string {

/// The two heap functions of string blocks: TRealloc and TFree. Tests put others in their place, to fail an allocation
/// or to hand out room for a text of two thousand million units without having it.
struct StringHeap {
  void* (*reallocate)(void* block, std::size_t size);
  void (*release)(void* block);
};

/// Plain: exchanged only while no other thread uses strings.
extern StringHeap g_stringHeap;

}  // namespace qilsys::string
