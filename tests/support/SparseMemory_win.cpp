// The sibling for Linux is SparseMemory_linux.cpp.
//
// Committed memory counts against the machine's limit from the start, and reading it takes a page of its own for each
// page read. So what lies between the two ends is one small section of zeros, shown again and again side by side.
#include "support/SparseMemory.h"

#ifndef _WIN32
#error "This file is for Windows."
#endif

#include <windows.h>

#include <algorithm>
#include <new>

namespace qilsys::test {

namespace {

// Places of views and of reservations are multiples of this on every Windows.
constexpr std::size_t Granule = 64 * 1024;
constexpr std::size_t ViewBytes = 16 * 1024 * 1024;

constexpr std::size_t Rounded(std::size_t bytes) { return (bytes + Granule - 1) / Granule * Granule; }

/// Calls `visit(start, length)` for each view between the two ends.
template <class Visit>
bool ForEachView(unsigned char* data, std::size_t bytes, const Visit& visit) {
  const std::size_t end = bytes - SparseMemory::WritableBytes;
  for (std::size_t at = SparseMemory::WritableBytes; at < end; at += ViewBytes) {
    if (!visit(data + at, std::min(ViewBytes, end - at))) return false;
  }
  return true;
}

bool Commit(unsigned char* start) {
  return VirtualAlloc(start, SparseMemory::WritableBytes, MEM_RESERVE | MEM_COMMIT, PAGE_READWRITE) != nullptr;
}

bool MapAll(HANDLE section, unsigned char* data, std::size_t bytes) {
  return Commit(data) && Commit(data + bytes - SparseMemory::WritableBytes) &&
         ForEachView(data, bytes, [&](unsigned char* start, std::size_t length) {
           return MapViewOfFileEx(section, FILE_MAP_READ, 0, 0, length, start) != nullptr;
         });
}

/// What has not been mapped is left alone, since by then it may be somebody else's.
void UnmapAll(unsigned char* data, std::size_t bytes) {
  VirtualFree(data, 0, MEM_RELEASE);
  VirtualFree(data + bytes - SparseMemory::WritableBytes, 0, MEM_RELEASE);
  ForEachView(data, bytes, [](unsigned char* start, std::size_t) { return UnmapViewOfFile(start) != FALSE; });
}

/// A place where there is room, if nobody else takes it meanwhile.
unsigned char* FindRoom(std::size_t bytes) {
  void* room = VirtualAlloc(nullptr, bytes, MEM_RESERVE, PAGE_NOACCESS);
  if (room != nullptr) VirtualFree(room, 0, MEM_RELEASE);
  return static_cast<unsigned char*>(room);
}

}  // namespace

SparseMemory::SparseMemory(std::size_t bytes) : m_data(nullptr), m_bytes(std::max(Rounded(bytes), 2 * WritableBytes)) {
  static_assert(WritableBytes % Granule == 0);
  const HANDLE section = CreateFileMappingW(INVALID_HANDLE_VALUE, nullptr, PAGE_READWRITE, 0, ViewBytes, nullptr);
  if (section == nullptr) throw std::bad_alloc();
  for (int attempt = 0; attempt < 10 && m_data == nullptr; ++attempt) {
    unsigned char* room = FindRoom(m_bytes);
    if (room == nullptr) break;
    if (MapAll(section, room, m_bytes)) {
      m_data = room;
    } else {
      UnmapAll(room, m_bytes);
    }
  }
  // The views keep the section.
  CloseHandle(section);
  if (m_data == nullptr) throw std::bad_alloc();
}

SparseMemory::~SparseMemory() { UnmapAll(m_data, m_bytes); }

}  // namespace qilsys::test
