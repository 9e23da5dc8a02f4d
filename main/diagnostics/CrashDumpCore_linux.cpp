#include "diagnostics/CrashDumpCore_linux.h"

#include <elf.h>
#include <signal.h>
#include <sys/procfs.h>
#include <sys/ptrace.h>
#include <sys/stat.h>
#include <sys/uio.h>
#include <sys/user.h>
#include <unistd.h>

#include <algorithm>
#include <cstring>

#include "base/FileDescriptor_linux.h"
#include "diagnostics/CrashDumpElf.h"
#include "diagnostics/CrashDumpModules.h"
#include "diagnostics/CrashDumpProc.h"
#include "diagnostics/CrashDumpProcess_linux.h"
#include "diagnostics/CrashDumpThreads_linux.h"

namespace qilsys::diagnostics {

using base::Uninterrupted;

namespace {

constexpr std::size_t CopiedAtOnce = std::size_t{1} << 20;
// What is left as a hole of the file where it is all zeros.
constexpr std::size_t BlockBytes = 4096;
// The vector registers of today's processors need a quarter of it.
constexpr std::size_t MostRegisterBytes = std::size_t{1} << 16;

/// One set of a thread's registers, as the kernel gives it; empty if the processor has none such.
std::span<const std::byte> ReadRegisters(pid_t thread, unsigned int set, std::span<std::byte> room) {
  iovec place{room.data(), room.size()};
  if (ptrace(PTRACE_GETREGSET, thread, reinterpret_cast<void*>(std::uintptr_t{set}), &place) != 0) return {};
  return room.first(place.iov_len);
}

/// Where the thread's stack is, by its general registers.
StackPlace StackOf(const elf_gregset_t& registers, bool isFirst) {
  user_regs_struct named;
  static_assert(sizeof named == sizeof registers);
  std::memcpy(&named, &registers, sizeof named);
#if defined(__x86_64__)
  return {.stackPointer = named.rsp, .threadBlock = named.fs_base, .isFirst = isFirst};
#else
  return {.stackPointer = named.sp, .isFirst = isFirst};
#endif
}

/// The pieces of a core, gathered while the process stands still.
class CoreMaker {
 public:
  CoreMaker(const DumpRequest& request, const HeldThreads& threads, std::pmr::memory_resource& memory)
      : m_request(request),
        m_threads(threads.All()),
        m_memory(memory),
        m_process(request.process, m_threads.front().id, memory),
        m_stat(m_process.ReadFile("stat")),
        m_auxiliary(m_process.ReadFile("auxv")),
        m_maps(m_process.ReadFile("smaps")),
        m_mappings(&memory),
        m_ranges(&memory),
        m_notes(&memory),
        m_registers(MostRegisterBytes, &memory) {
    // A kernel may be built without the longer form.
    if (m_maps.empty()) m_maps = m_process.ReadFile("maps");
    m_mappings = ParseMappings(m_maps, memory);
  }

  bool Write() {
    const auto machine = ParseElfMachine(BytesOfText(m_process.ReadFile("exe", BlockBytes)));
    if (!machine || m_mappings.empty()) return false;
    AddNotes();
    for (const Mapping& mapping : m_mappings) {
      m_process.AddTaken(mapping, TakenOf(mapping, m_request.content), m_ranges);
    }
    AddModuleList(BytesOfText(m_auxiliary), m_process, m_ranges);
    const auto segments = CutIntoSegments(m_mappings, std::move(m_ranges), m_process.PageSize(), m_memory);
    const CoreHead head = MakeCoreHead(*machine, segments, m_notes.size(), m_process.PageSize(), m_memory);
    return WriteAt(head.bytes, 0) && WriteAt(m_notes, head.bytes.size()) && Copy(segments, head.segmentsOffset);
  }

 private:
  static std::span<const std::byte> BytesOfText(std::string_view text) { return std::as_bytes(std::span(text)); }

  /// In the order of the kernel's own cores: debuggers take the process's notes to belong to the first thread.
  void AddNotes() {
    const ProcessStat stat = ParseProcessStat(m_stat).value_or(ProcessStat());
    AddStatus(m_threads.front(), stat);
    AddProcess(stat);
    AppendNote(m_notes, "CORE", NT_AUXV, BytesOfText(m_auxiliary));
    AppendNote(m_notes, "CORE", NT_FILE, MappedFiles(m_mappings, m_process.PageSize(), m_memory));
    AddFurtherRegisters(m_threads.front());
    for (const HeldThread& thread : m_threads.subspan(1)) {
      AddStatus(thread, stat);
      AddFurtherRegisters(thread);
    }
  }

  void AddStatus(const HeldThread& thread, const ProcessStat& stat) {
    elf_prstatus status{};
    status.pr_info.si_signo = thread.signal;
    status.pr_cursig = static_cast<short>(thread.signal);
    status.pr_pid = thread.id;
    status.pr_ppid = stat.parent;
    status.pr_pgrp = stat.group;
    status.pr_sid = stat.session;
    status.pr_fpvalid = 1;
    const auto registers = ReadRegisters(thread.id, NT_PRSTATUS, m_registers);
    std::memcpy(&status.pr_reg, registers.data(), std::min(registers.size(), sizeof status.pr_reg));
    AppendNote(m_notes, "CORE", NT_PRSTATUS, BytesOf(status));
    AddStack(m_mappings, StackOf(status.pr_reg, thread.id == m_request.process), m_process.PageSize(), m_ranges);
  }

  void AddProcess(const ProcessStat& stat) {
    elf_prpsinfo info{};
    info.pr_sname = stat.state;
    info.pr_pid = m_request.process;
    info.pr_ppid = stat.parent;
    info.pr_pgrp = stat.group;
    info.pr_sid = stat.session;
    const auto copy = [](std::string_view text, std::span<char> field) {
      std::ranges::copy(text.substr(0, field.size() - 1), field.begin());
    };
    copy(stat.name, info.pr_fname);
    std::pmr::string words = m_process.ReadFile("cmdline", BlockBytes);
    std::ranges::replace(words, '\0', ' ');
    copy(words, info.pr_psargs);
    AppendNote(m_notes, "CORE", NT_PRPSINFO, BytesOf(info));
  }

  void AddFurtherRegisters(const HeldThread& thread) {
    const auto add = [&](const char* name, unsigned int set) {
      const auto registers = ReadRegisters(thread.id, set, m_registers);
      if (!registers.empty()) AppendNote(m_notes, name, set, registers);
    };
    add("CORE", NT_PRFPREG);
    add("LINUX", NT_X86_XSTATE);
  }

  bool Copy(std::span<const Segment> segments, std::uint64_t offset) {
    std::pmr::vector<std::byte> buffer(CopiedAtOnce, &m_memory);
    for (const Segment& segment : segments) {
      for (std::uint64_t done = 0; done < segment.fileBytes;) {
        const auto part = std::span(buffer).first(std::min<std::uint64_t>(buffer.size(), segment.fileBytes - done));
        ReadPages(segment.address + done, part);
        if (!WriteBlocks(part, offset)) return false;
        done += part.size();
        offset += part.size();
      }
    }
    // What is zero at the end belongs to the file too.
    return ftruncate(m_request.file, static_cast<off_t>(offset)) == 0;
  }

  /// Pages that can't be read, as those of a mapped file behind its end, become zeros.
  void ReadPages(std::uint64_t address, std::span<std::byte> bytes) const {
    while (!bytes.empty()) {
      std::size_t got = m_process.Read(address, bytes);
      if (got == 0) {
        got = std::min<std::size_t>(bytes.size(), m_process.PageSize());
        std::ranges::fill(bytes.first(got), std::byte{0});
      }
      address += got;
      bytes = bytes.subspan(got);
    }
  }

  /// Leaves blocks of zeros out: what was never written in a file reads as zeros.
  bool WriteBlocks(std::span<const std::byte> bytes, std::uint64_t offset) const {
    std::size_t from = 0;
    for (std::size_t at = 0; at < bytes.size(); at += BlockBytes) {
      const auto block = bytes.subspan(at, std::min(BlockBytes, bytes.size() - at));
      const bool isZero = block[0] == std::byte{0} && std::memcmp(&block[0], &block[1], block.size() - 1) == 0;
      if (!isZero) continue;
      if (!WriteAt(bytes.subspan(from, at - from), offset + from)) return false;
      from = at + block.size();
    }
    return WriteAt(bytes.subspan(from), offset + from);
  }

  bool WriteAt(std::span<const std::byte> bytes, std::uint64_t offset) const {
    while (!bytes.empty()) {
      const ssize_t done =
          Uninterrupted([&] { return pwrite(m_request.file, bytes.data(), bytes.size(), static_cast<off_t>(offset)); });
      if (done <= 0) return false;
      offset += static_cast<std::uint64_t>(done);
      bytes = bytes.subspan(static_cast<std::size_t>(done));
    }
    return true;
  }

  const DumpRequest& m_request;
  const std::span<const HeldThread> m_threads;
  std::pmr::memory_resource& m_memory;
  TracedProcess m_process;
  const std::pmr::string m_stat;
  const std::pmr::string m_auxiliary;
  std::pmr::string m_maps;
  std::pmr::vector<Mapping> m_mappings;
  std::pmr::vector<AddressRange> m_ranges;
  Bytes m_notes;
  std::pmr::vector<std::byte> m_registers;
};

/// A process that is killed leaves its threads even while they are held, and its memory is gone.
bool IsStillHeld(const HeldThreads& threads) {
  siginfo_t info;
  return ptrace(PTRACE_GETSIGINFO, threads.All().front().id, nullptr, &info) == 0;
}

}  // namespace

DumpOutcome WriteCore(const DumpRequest& request, std::pmr::memory_resource& memory) {
  HeldThreads threads(request.process, memory);
  if (threads.All().empty()) return DumpOutcome::Refused;
  threads.PutFirst(request.firstThread);
  CoreMaker maker(request, threads, memory);
  return maker.Write() && IsStillHeld(threads) ? DumpOutcome::Whole : DumpOutcome::Failed;
}

}  // namespace qilsys::diagnostics
