/// What the kernel shows of a process whose threads are held.
#pragma once

#ifndef __linux__
#error "This file is for Linux."
#endif

#include <sys/types.h>

#include <memory_resource>
#include <span>
#include <string>
#include <vector>

#include "base/FileDescriptor_linux.h"
#include "diagnostics/CrashDumpModules.h"

namespace qilsys::diagnostics {

/// Looks at a process by way of one of its threads: the first one has nothing to show once it has ended.
class TracedProcess : public ProcessMemory {
 public:
  TracedProcess(pid_t process, pid_t thread, std::pmr::memory_resource& memory);

  std::size_t Read(std::uint64_t address, std::span<std::byte> bytes) const override;

  /// A file of the thread's folder in /proc, up to `most` bytes; empty if it can't be read.
  std::pmr::string ReadFile(std::string_view name, std::size_t most = SIZE_MAX) const;

  /// Adds what is to be taken of a mapping.
  void AddTaken(const Mapping& mapping, Taken taken, std::pmr::vector<AddressRange>& ranges);

  std::uint64_t PageSize() const { return m_pageSize; }

 private:
  base::FileDescriptor Open(std::string_view name) const;
  void AddPages(const Mapping& mapping, Taken taken, std::pmr::vector<AddressRange>& ranges);

  const pid_t m_process;
  const pid_t m_thread;
  const std::uint64_t m_pageSize;
  std::pmr::memory_resource& m_memory;
  const base::FileDescriptor m_pages;
  std::pmr::vector<std::uint64_t> m_entries;
};

}  // namespace qilsys::diagnostics
