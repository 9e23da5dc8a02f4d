#include "diagnostics/CrashDumpRanges.h"

#include <algorithm>

#include "base/ProcText.h"

namespace qilsys::diagnostics {

namespace {

// Of an entry of pagemap.
constexpr std::uint64_t PageIsPresent = std::uint64_t{1} << 63;
constexpr std::uint64_t PageIsSwapped = std::uint64_t{1} << 62;
constexpr std::uint64_t PageIsOfFile = std::uint64_t{1} << 61;

constexpr std::uint64_t PagesBetweenRuns = 16;

// Leaf functions use so much below the stack pointer without moving it, where the calling convention has a red zone.
constexpr std::uint64_t RedZoneBytes = 128;

// What is taken of a stack that is not the thread's own, whose end nothing tells.
constexpr std::uint64_t ForeignStackBytes = std::uint64_t{1} << 20;

bool IsTaken(std::uint64_t entry, Taken taken) {
  if ((entry & (PageIsPresent | PageIsSwapped)) == 0) return false;
  return taken != Taken::OwnPages || (entry & PageIsOfFile) == 0;
}

bool IsOfFile(const Mapping& mapping) {
  return mapping.name.starts_with('/') && base::WithoutDeletedMark(mapping.name) == mapping.name;
}

const Mapping* Find(std::span<const Mapping> mappings, std::uint64_t address) {
  const auto at =
      std::ranges::find_if(mappings, [&](const Mapping& m) { return m.start <= address && address < m.end; });
  return at == mappings.end() ? nullptr : &*at;
}

const Mapping* FindFirstStack(std::span<const Mapping> mappings) {
  const auto at = std::ranges::find(mappings, "[stack]", &Mapping::name);
  return at == mappings.end() ? nullptr : &*at;
}

/// The range of the thread's own stack, from its lowest address on; empty where it isn't known.
AddressRange OwnStack(std::span<const Mapping> mappings, const StackPlace& place, std::uint64_t pageSize) {
  const Mapping* const mapping = place.isFirst ? FindFirstStack(mappings) : Find(mappings, place.threadBlock);
  if (mapping == nullptr) return {};
  if (place.isFirst) return {mapping->start, mapping->end};
  // Other memory may join on behind the thread's block, in the same mapping.
  return {mapping->start, std::min(mapping->end, place.threadBlock + 2 * pageSize)};
}

void SortAndJoin(std::pmr::vector<AddressRange>& ranges) {
  std::ranges::sort(ranges, {}, &AddressRange::start);
  std::size_t kept = 0;
  for (const AddressRange& range : ranges) {
    if (kept > 0 && range.start <= ranges[kept - 1].end) {
      ranges[kept - 1].end = std::max(ranges[kept - 1].end, range.end);
    } else {
      ranges[kept++] = range;
    }
  }
  ranges.resize(kept);
}

/// The segments of one mapping; `range` is the first that ends behind its start.
template <class TRange>
void Cut(const Mapping& mapping, TRange range, TRange lastRange, std::pmr::vector<Segment>& segments) {
  const auto add = [&](std::uint64_t start, std::uint64_t end, std::uint64_t fileBytes) {
    if (start < end) {
      segments.push_back({start, end - start, fileBytes, mapping.isReadable, mapping.isWritable, mapping.isExecutable});
    }
  };
  std::uint64_t done = mapping.start;
  for (; range != lastRange && range->start < mapping.end; ++range) {
    const std::uint64_t start = std::max(range->start, done);
    const std::uint64_t end = std::min(range->end, mapping.end);
    add(done, start, 0);
    add(start, end, end - start);
    done = end;
  }
  add(done, mapping.end, 0);
}

}  // namespace

DumpContent ContentOf(_MINIDUMP_TYPE type) {
  const bool isFull = (type & MiniDumpWithFullMemory) != 0;
  return {.moduleData = isFull || (type & MiniDumpWithDataSegs) != 0,
          .privateMemory = isFull || (type & MiniDumpWithPrivateReadWriteMemory) != 0,
          .sharedMemory = isFull};
}

Taken TakenOf(const Mapping& mapping, DumpContent content) {
  if (!mapping.isReadable || mapping.staysOut) return Taken::Nothing;
  // The kernel's own code in the process, which stands in no file.
  if (mapping.name == "[vdso]") return Taken::Whole;
  if (IsOfFile(mapping)) {
    if (mapping.isShared) return Taken::Nothing;
    if (content.moduleData) return Taken::OwnPages;
    return mapping.offset == 0 ? Taken::Head : Taken::Nothing;
  }
  if (!mapping.isInUse) return Taken::Nothing;
  return (mapping.isShared ? content.sharedMemory : content.privateMemory) ? Taken::UsedPages : Taken::Nothing;
}

void AddUsedRuns(std::span<const std::uint64_t> entries, std::uint64_t address, std::uint64_t pageSize, Taken taken,
                 std::pmr::vector<AddressRange>& ranges) {
  for (const std::uint64_t entry : entries) {
    if (IsTaken(entry, taken)) {
      const bool joins =
          !ranges.empty() && address >= ranges.back().end && address - ranges.back().end <= PagesBetweenRuns * pageSize;
      if (joins) {
        ranges.back().end = address + pageSize;
      } else {
        ranges.push_back({address, address + pageSize});
      }
    }
    address += pageSize;
  }
}

void AddStack(std::span<const Mapping> mappings, const StackPlace& place, std::uint64_t pageSize,
              std::pmr::vector<AddressRange>& ranges) {
  const std::uint64_t lowest = place.stackPointer - std::min(place.stackPointer, RedZoneBytes);
  const AddressRange own = OwnStack(mappings, place, pageSize);
  if (own.start <= place.stackPointer && place.stackPointer < own.end) {
    ranges.push_back({std::max(own.start, lowest), own.end});
    return;
  }
  if (own.start < own.end) ranges.push_back(own);
  if (const Mapping* const mapping = Find(mappings, place.stackPointer)) {
    ranges.push_back(
        {std::max(mapping->start, lowest), std::min(mapping->end, place.stackPointer + ForeignStackBytes)});
  }
}

std::pmr::vector<Segment> CutIntoSegments(std::span<const Mapping> mappings, std::pmr::vector<AddressRange>&& ranges,
                                          std::uint64_t pageSize, std::pmr::memory_resource& memory) {
  for (AddressRange& range : ranges) {
    range.start -= range.start % pageSize;
    range.end += (pageSize - range.end % pageSize) % pageSize;
  }
  std::erase_if(ranges, [](const AddressRange& range) { return range.start >= range.end; });
  SortAndJoin(ranges);
  std::pmr::vector<Segment> segments(&memory);
  for (const Mapping& mapping : mappings) {
    const bool isDumped = mapping.isReadable && !mapping.staysOut;
    const auto first = std::ranges::upper_bound(ranges, mapping.start, {}, &AddressRange::end);
    Cut(mapping, isDumped ? first : ranges.end(), ranges.end(), segments);
  }
  return segments;
}

}  // namespace qilsys::diagnostics
