// The sibling for Linux is Scarcity_linux.cpp.
#include "monitor/Scarcity.h"

#ifndef _WIN32
#error "This file is for Windows."
#endif

#include <windows.h>
// After windows.h, whose types it is made of.
#include <bcrypt.h>

#include <cstddef>
#include <stdexcept>
#include <string_view>

namespace qilsys::test {

namespace {

template <class T>
const T* InProgram(DWORD offset) {
  return reinterpret_cast<const T*>(reinterpret_cast<const std::byte*>(GetModuleHandleW(nullptr)) + offset);
}

const IMAGE_IMPORT_DESCRIPTOR* Imports() {
  const auto& dos = *InProgram<IMAGE_DOS_HEADER>(0);
  const auto& headers = *InProgram<IMAGE_NT_HEADERS>(static_cast<DWORD>(dos.e_lfanew));
  return InProgram<IMAGE_IMPORT_DESCRIPTOR>(
      headers.OptionalHeader.DataDirectory[IMAGE_DIRECTORY_ENTRY_IMPORT].VirtualAddress);
}

/// Where the program keeps the address of a function of another module.
ULONG_PTR* ImportedAddress(std::string_view function) {
  for (const IMAGE_IMPORT_DESCRIPTOR* module = Imports(); module->Name != 0; ++module) {
    const auto* names = InProgram<IMAGE_THUNK_DATA>(module->OriginalFirstThunk);
    const auto* addresses = InProgram<IMAGE_THUNK_DATA>(module->FirstThunk);
    for (std::size_t i = 0; names[i].u1.AddressOfData != 0; ++i) {
      if (IMAGE_SNAP_BY_ORDINAL(names[i].u1.Ordinal)) continue;
      const auto& name = *InProgram<IMAGE_IMPORT_BY_NAME>(static_cast<DWORD>(names[i].u1.AddressOfData));
      if (function == name.Name) return const_cast<ULONG_PTR*>(&addresses[i].u1.Function);
    }
  }
  throw std::runtime_error("the program does not call " + std::string(function));
}

void Write(ULONG_PTR* address, ULONG_PTR value) {
  DWORD before = 0;
  VirtualProtect(address, sizeof *address, PAGE_READWRITE, &before);
  *address = value;
  VirtualProtect(address, sizeof *address, before, &before);
}

NTSTATUS WINAPI GiveNothing(BCRYPT_ALG_HANDLE, PUCHAR, ULONG, ULONG) {
  return static_cast<NTSTATUS>(0xC0000001);  // STATUS_UNSUCCESSFUL
}

constexpr std::string_view RandomFunction = "BCryptGenRandom";

ULONG_PTR g_random = 0;

}  // namespace

NoRandomNumbers::NoRandomNumbers() {
  ULONG_PTR* const address = ImportedAddress(RandomFunction);
  g_random = *address;
  Write(address, reinterpret_cast<ULONG_PTR>(&GiveNothing));
}
NoRandomNumbers::~NoRandomNumbers() { Write(ImportedAddress(RandomFunction), g_random); }

bool NoThreads::CanBeHad() { return false; }
NoThreads::NoThreads() = default;
NoThreads::~NoThreads() = default;

bool NoFiles::CanBeHad() { return false; }
NoFiles::NoFiles() = default;
NoFiles::~NoFiles() = default;

}  // namespace qilsys::test
