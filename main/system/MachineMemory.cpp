#include "system/MachineMemory.h"

#include <algorithm>
#include <charconv>

#include "base/ProcText.h"

namespace qilsys::system {

using base::BytesOfRow;
using base::SingleNumber;
using base::TakeRow;
using base::TakeUntil;
using base::TakeWord;
using base::WholeNumber;

namespace {

bool HoldsItem(std::string_view commaSeparated, std::string_view item) {
  while (!commaSeparated.empty()) {
    if (TakeUntil(commaSeparated, ',') == item) {
      return true;
    }
  }
  return false;
}

// Mount tables write blanks and backslashes as a backslash and three octal digits.
std::string WithoutOctalEscapes(std::string_view text) {
  std::string result;
  while (!text.empty()) {
    unsigned int code = 0;
    const char* const digits = text.data() + 1;
    if (text[0] == '\\' && text.size() >= 4 && std::from_chars(digits, digits + 3, code, 8).ptr == digits + 3) {
      result += static_cast<char>(code);
      text.remove_prefix(4);
    } else {
      result += text[0];
      text.remove_prefix(1);
    }
  }
  return result;
}

// The path of a group as the mount shows it: without the part that lies above the mount's own root.
std::string_view PathBelow(std::string_view root, std::string_view path) {
  if (root == "/") {
    return path;
  }
  const bool isBelow = path.starts_with(root) && (path.size() == root.size() || path[root.size()] == '/');
  return isBelow ? path.substr(root.size()) : std::string_view();
}

// What the files of a group are called.
struct CgroupFiles {
  const char* limit;
  const char* usage;
  const char* reclaimableRow;
};

constexpr CgroupFiles FilesV1 = {"/memory.limit_in_bytes", "/memory.usage_in_bytes", "total_inactive_file"};
constexpr CgroupFiles FilesV2 = {"/memory.max", "/memory.current", "inactive_file"};

// A limit of "max" is none.
CgroupMemory CgroupMemoryFrom(const TextOf& textOf, const std::string& folder, const CgroupFiles& files) {
  CgroupMemory group{.limit = SingleNumber(textOf(folder + files.limit))};
  if (group.limit) {
    group.usage = SingleNumber(textOf(folder + files.usage)).value_or(0);
    group.reclaimable = ParseStatRow(textOf(folder + "/memory.stat"), files.reclaimableRow).value_or(0);
  }
  return group;
}

// A parent's limit holds for its children too, so the walk goes up the tree.
void BoundByCgroups(MachineMemory& memory, const TextOf& textOf, CgroupVersion version) {
  const auto path = ParseCgroupPath(textOf("/proc/self/cgroup"), version);
  const auto mount = ParseCgroupMount(textOf("/proc/self/mountinfo"), version);
  if (!path || !mount) return;
  const CgroupFiles& files = version == CgroupVersion::V1 ? FilesV1 : FilesV2;
  for (const std::string& folder : CgroupFolders(*mount, *path)) {
    memory = Bound(memory, CgroupMemoryFrom(textOf, folder, files));
  }
}

std::uint32_t PercentOf(std::uint64_t part, std::uint64_t whole) {
  return whole == 0 ? 0 : static_cast<std::uint32_t>(static_cast<double>(part) * 100.0 / static_cast<double>(whole));
}

}  // namespace

TSystem::MemoryInfo ToMemoryInfo(const MachineMemory& memory, std::uint32_t pageSize) {
  const std::uint64_t used = memory.total - memory.available;
  return TSystem::MemoryInfo{
      .m_availablePhysical = memory.available,
      .m_usedPhysical = used == 0 ? 1 : used,
      .m_totalPhysical = memory.total,
      .m_pageSize = pageSize,
      .m_memoryLoad = memory.load.value_or(PercentOf(used, memory.total)),
  };
}

std::optional<MachineMemory> ParseMemInfo(std::string_view text) {
  const std::optional<std::uint64_t> total = BytesOfRow(text, "MemTotal");
  std::optional<std::uint64_t> available = BytesOfRow(text, "MemAvailable");
  if (!available) {
    available = BytesOfRow(text, "MemFree");
  }
  if (!total || !available) {
    return std::nullopt;
  }
  return MachineMemory{*total, std::min(*available, *total)};
}

// Rows are "number:controllers:path"; version 2 has the number 0 and no controllers.
std::optional<std::string> ParseCgroupPath(std::string_view text, CgroupVersion version) {
  while (!text.empty()) {
    std::string_view row = TakeRow(text);
    const std::string_view number = TakeUntil(row, ':');
    const std::string_view controllers = TakeUntil(row, ':');
    const bool isWanted =
        version == CgroupVersion::V2 ? number == "0" && controllers.empty() : HoldsItem(controllers, "memory");
    if (isWanted && row.starts_with('/')) {
      return std::string(row);
    }
  }
  return std::nullopt;
}

// Rows are "id parent device root mountpoint options [tags] - type source options".
std::optional<CgroupMount> ParseCgroupMount(std::string_view text, CgroupVersion version) {
  while (!text.empty()) {
    const std::string_view row = TakeRow(text);
    const std::size_t separator = row.find(" - ");
    if (separator == std::string_view::npos) {
      continue;
    }
    std::string_view head = row.substr(0, separator);
    std::string_view tail = row.substr(separator + 3);
    const std::string_view type = TakeWord(tail);
    TakeWord(tail);
    const bool isWanted =
        version == CgroupVersion::V2 ? type == "cgroup2" : type == "cgroup" && HoldsItem(TakeWord(tail), "memory");
    if (isWanted) {
      for (int skipped = 0; skipped < 3; ++skipped) {
        TakeWord(head);
      }
      const std::string root = WithoutOctalEscapes(TakeWord(head));
      return CgroupMount{.mountPoint = WithoutOctalEscapes(TakeWord(head)), .root = root};
    }
  }
  return std::nullopt;
}

std::vector<std::string> CgroupFolders(const CgroupMount& mount, std::string_view path) {
  std::string_view below = PathBelow(mount.root, path);
  std::vector<std::string> folders;
  while (!below.empty() && below != "/") {
    folders.push_back(mount.mountPoint + std::string(below));
    below = below.substr(0, below.rfind('/'));
  }
  folders.push_back(mount.mountPoint);
  return folders;
}

std::optional<std::uint64_t> ParseStatRow(std::string_view text, std::string_view key) {
  while (!text.empty()) {
    std::string_view row = TakeRow(text);
    if (TakeWord(row) == key) {
      return WholeNumber(TakeWord(row));
    }
  }
  return std::nullopt;
}

MachineMemory Bound(const MachineMemory& memory, const CgroupMemory& group) {
  if (!group.limit) {
    return memory;
  }
  const std::uint64_t held = group.usage - std::min(group.usage, group.reclaimable);
  const std::uint64_t room = *group.limit - std::min(*group.limit, held);
  return MachineMemory{.total = std::min(memory.total, *group.limit), .available = std::min(memory.available, room)};
}

MachineMemory MachineMemoryFrom(const TextOf& textOf) {
  MachineMemory memory = ParseMemInfo(textOf("/proc/meminfo")).value_or(MachineMemory());
  BoundByCgroups(memory, textOf, CgroupVersion::V1);
  BoundByCgroups(memory, textOf, CgroupVersion::V2);
  return memory;
}

}  // namespace qilsys::system
