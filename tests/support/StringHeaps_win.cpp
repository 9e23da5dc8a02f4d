// The sibling for Linux is StringHeaps_linux.cpp.
#include "support/StringHeaps.h"

#ifndef _WIN32
#error "This file is for Windows."
#endif

#include <windows.h>

#include <algorithm>
#include <cstring>
#include <new>
#include <vector>

namespace qilsys::test {
namespace {

// ---- Memory that comes into being where it is touched. Committed at once, it would count against the machine's limit
// to its full size.

// For the longest text with its header.
constexpr std::size_t Room = (std::size_t{4} << 30) + 4096;

std::vector<char*>& LazyBlocks() {
  static std::vector<char*> s_blocks;
  return s_blocks;
}

bool IsLazy(const char* address) {
  return std::ranges::any_of(LazyBlocks(),
                             [&](const char* block) { return block <= address && address < block + Room; });
}

LONG CALLBACK CommitWhatIsTouched(EXCEPTION_POINTERS* exception) {
  const EXCEPTION_RECORD& record = *exception->ExceptionRecord;
  if (record.ExceptionCode != EXCEPTION_ACCESS_VIOLATION) return EXCEPTION_CONTINUE_SEARCH;
  auto* address = reinterpret_cast<char*>(record.ExceptionInformation[1]);
  if (!IsLazy(address)) return EXCEPTION_CONTINUE_SEARCH;
  const bool committed = VirtualAlloc(address, 1, MEM_COMMIT, PAGE_READWRITE) != nullptr;
  return committed ? EXCEPTION_CONTINUE_EXECUTION : EXCEPTION_CONTINUE_SEARCH;
}

// Every block has room for the longest text from the start, so that none ever moves.
void* ReserveLazily(void* block, std::size_t size) {
  if (size > Room) return nullptr;
  if (block != nullptr) return block;
  static void* const s_handler = AddVectoredExceptionHandler(1, &CommitWhatIsTouched);
  block = s_handler == nullptr ? nullptr : VirtualAlloc(nullptr, Room, MEM_RESERVE, PAGE_READWRITE);
  if (block != nullptr) LazyBlocks().push_back(static_cast<char*>(block));
  return block;
}

void Release(void* block) {
  std::erase(LazyBlocks(), block);
  VirtualFree(block, 0, MEM_RELEASE);
}

// ---- The same piece of memory again and again

constexpr std::size_t Piece = std::size_t{16} << 20;

HANDLE FilledSection(char fill) {
  const HANDLE section = CreateFileMappingW(INVALID_HANDLE_VALUE, nullptr, PAGE_READWRITE, 0, Piece, nullptr);
  void* view = section == nullptr ? nullptr : MapViewOfFile(section, FILE_MAP_WRITE, 0, 0, Piece);
  if (view == nullptr) throw std::bad_alloc();
  std::memset(view, fill, Piece);
  UnmapViewOfFile(view);
  return section;
}

std::size_t LengthAt(std::size_t at, std::size_t size) { return std::min(Piece, size - at); }

void UnmapBefore(char* data, std::size_t end) {
  for (std::size_t at = 0; at < end; at += Piece) UnmapViewOfFile(data + at);
}

// Only the last piece is to be written, and so a copy of its own. False, with nothing mapped, where somebody else has
// taken a place meanwhile.
bool MapPieces(HANDLE section, char* data, std::size_t size) {
  for (std::size_t at = 0; at < size; at += Piece) {
    const DWORD access = size - at <= Piece ? FILE_MAP_COPY : FILE_MAP_READ;
    if (MapViewOfFileEx(section, access, 0, 0, LengthAt(at, size), data + at) == nullptr) {
      UnmapBefore(data, at);
      return false;
    }
  }
  return true;
}

char* FindPlace(std::size_t size) {
  void* place = VirtualAlloc(nullptr, size, MEM_RESERVE, PAGE_NOACCESS);
  if (place == nullptr) throw std::bad_alloc();
  VirtualFree(place, 0, MEM_RELEASE);
  return static_cast<char*>(place);
}

}  // namespace

LazyStringHeap::LazyStringHeap() : m_guard({&ReserveLazily, &Release}) {}

RepeatedBytes::RepeatedBytes(std::size_t size, char fill) : m_size(size), m_data(nullptr) {
  const HANDLE section = FilledSection(fill);
  bool mapped = false;
  for (int attempt = 0; attempt < 10 && !mapped; ++attempt) {
    m_data = FindPlace(size);
    mapped = MapPieces(section, m_data, size);
  }
  CloseHandle(section);
  if (!mapped) throw std::bad_alloc();
  std::memset(m_data + size - 8, 0, 8);
}

RepeatedBytes::~RepeatedBytes() { UnmapBefore(m_data, m_size); }

}  // namespace qilsys::test
