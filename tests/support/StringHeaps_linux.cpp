// The sibling for Windows is StringHeaps_win.cpp.
#include "support/StringHeaps.h"

#ifndef __linux__
#error "This file is for Linux."
#endif

#include <sys/mman.h>
#include <unistd.h>

#include <cstring>
#include <new>

namespace qilsys::test {
namespace {

// The size stands in a page before the block, so that the block keeps its alignment.
constexpr std::size_t Page = 4096;

void* MapLazily(void* block, std::size_t size) {
  char* base = static_cast<char*>(block);
  void* mapped = nullptr;
  if (base == nullptr) {
    mapped = mmap(nullptr, size + Page, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE, -1, 0);
  } else {
    base -= Page;
    std::size_t old = 0;
    std::memcpy(&old, base, sizeof old);
    mapped = mremap(base, old, size + Page, MREMAP_MAYMOVE);
  }
  if (mapped == MAP_FAILED) return nullptr;
  size += Page;
  std::memcpy(mapped, &size, sizeof size);
  return static_cast<char*>(mapped) + Page;
}

void Unmap(void* block) {
  char* base = static_cast<char*>(block) - Page;
  std::size_t size = 0;
  std::memcpy(&size, base, sizeof size);
  munmap(base, size);
}

}  // namespace

LazyStringHeap::LazyStringHeap() : m_guard({&MapLazily, &Unmap}) {}

RepeatedBytes::RepeatedBytes(std::size_t size, char fill) : m_size(size) {
  constexpr std::size_t Piece = std::size_t{16} << 20;
  const int file = memfd_create("repeated", 0);
  if (file < 0 || ftruncate(file, Piece) != 0) throw std::bad_alloc();
  m_data = static_cast<char*>(mmap(nullptr, size, PROT_NONE, MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE, -1, 0));
  void* first = mmap(nullptr, Piece, PROT_READ | PROT_WRITE, MAP_SHARED, file, 0);
  std::memset(first, fill, Piece);
  munmap(first, Piece);
  for (std::size_t at = 0; at < size; at += Piece) {
    const std::size_t length = size - at < Piece ? size - at : Piece;
    mmap(m_data + at, length, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_FIXED, file, 0);
  }
  close(file);
  std::memset(m_data + size - 8, 0, 8);
}

RepeatedBytes::~RepeatedBytes() { munmap(m_data, m_size); }

}  // namespace qilsys::test
