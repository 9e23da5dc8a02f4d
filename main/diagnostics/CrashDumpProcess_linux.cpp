#include "diagnostics/CrashDumpProcess_linux.h"

#include <fcntl.h>
#include <sys/uio.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>

#include "diagnostics/FixedText.h"

namespace qilsys::diagnostics {

using base::FileDescriptor;
using base::Uninterrupted;

namespace {

constexpr std::size_t EntriesAtOnce = 8192;

}  // namespace

TracedProcess::TracedProcess(pid_t process, pid_t thread, std::pmr::memory_resource& memory)
    : m_process(process),
      m_thread(thread),
      m_pageSize(static_cast<std::uint64_t>(sysconf(_SC_PAGESIZE))),
      m_memory(memory),
      m_pages(Open("pagemap")),
      m_entries(EntriesAtOnce, &memory) {}

std::size_t TracedProcess::Read(std::uint64_t address, std::span<std::byte> bytes) const {
  const iovec local{bytes.data(), bytes.size()};
  const iovec remote{reinterpret_cast<void*>(address), bytes.size()};
  const ssize_t got = process_vm_readv(m_thread, &local, 1, &remote, 1, 0);
  return got > 0 ? static_cast<std::size_t>(got) : 0;
}

std::pmr::string TracedProcess::ReadFile(std::string_view name, std::size_t most) const {
  const FileDescriptor file = Open(name);
  std::pmr::string text(&m_memory);
  std::size_t length = 0;
  while (file.IsOpen() && length < most) {
    text.resize(std::min(most, std::max<std::size_t>(4096, 2 * length)));
    const ssize_t got = Uninterrupted([&] { return read(file.Get(), text.data() + length, text.size() - length); });
    // A text that breaks off in an error is none.
    if (got < 0) length = 0;
    if (got <= 0) break;
    length += static_cast<std::size_t>(got);
  }
  text.resize(length);
  return text;
}

void TracedProcess::AddTaken(const Mapping& mapping, Taken taken, std::pmr::vector<AddressRange>& ranges) {
  const bool hasHead = mapping.offset == 0 && (taken == Taken::Head || taken == Taken::OwnPages);
  if (hasHead) ranges.push_back({mapping.start, mapping.start + m_pageSize});
  if (taken == Taken::Whole) ranges.push_back({mapping.start, mapping.end});
  if (taken == Taken::OwnPages || taken == Taken::UsedPages) AddPages(mapping, taken, ranges);
}

void TracedProcess::AddPages(const Mapping& mapping, Taken taken, std::pmr::vector<AddressRange>& ranges) {
  for (std::uint64_t address = mapping.start; address < mapping.end;) {
    const std::uint64_t wanted = std::min<std::uint64_t>(EntriesAtOnce, (mapping.end - address) / m_pageSize);
    const off_t offset = static_cast<off_t>(address / m_pageSize * sizeof(std::uint64_t));
    const ssize_t got =
        Uninterrupted([&] { return pread(m_pages.Get(), m_entries.data(), wanted * sizeof(std::uint64_t), offset); });
    const std::size_t count = got > 0 ? static_cast<std::size_t>(got) / sizeof(std::uint64_t) : 0;
    if (count == 0) {
      // A kernel that does not tell the pages: all of them, then; those of zeros take no room in the file.
      ranges.push_back({address, mapping.end});
      return;
    }
    AddUsedRuns(std::span(m_entries).first(count), address, m_pageSize, taken, ranges);
    address += count * m_pageSize;
  }
}

FileDescriptor TracedProcess::Open(std::string_view name) const {
  FixedText<128> path;
  path << "/proc/" << m_process << "/task/" << m_thread << "/" << name;
  return FileDescriptor(Uninterrupted([&] { return open(path.CStr(), O_RDONLY | O_CLOEXEC); }));
}

}  // namespace qilsys::diagnostics
