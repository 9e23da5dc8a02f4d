#include "system/MachineMemory.h"

#include <algorithm>
#include <charconv>
#include <limits>

namespace {

constexpr std::string_view s_blanks = " \t\n";

// Cuts the text at the first of these characters, and takes the part before it out of the text.
std::string_view TakeUntil(std::string_view& text, char end) {
  const std::string_view part = text.substr(0, text.find(end));
  text.remove_prefix(std::min(part.size() + 1, text.size()));
  return part;
}

std::string_view TakeWord(std::string_view& text) {
  text.remove_prefix(std::min(text.find_first_not_of(s_blanks), text.size()));
  const std::string_view word = text.substr(0, text.find_first_of(s_blanks));
  text.remove_prefix(word.size());
  return word;
}

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

// A row such as "MemTotal:       24684084 kB".
std::optional<std::uint64_t> ParseMemInfoRow(std::string_view text, std::string_view key) {
  while (!text.empty()) {
    std::string_view row = TakeUntil(text, '\n');
    if (TakeWord(row) == key) {
      const std::optional<std::uint64_t> kibibytes = qilsys::ParseByteCount(TakeWord(row));
      const bool isPlausible = kibibytes && *kibibytes <= std::numeric_limits<std::uint64_t>::max() / 1024;
      return isPlausible && TakeWord(row) == "kB" ? std::optional(*kibibytes * 1024) : std::nullopt;
    }
  }
  return std::nullopt;
}

// The path of a group as the mount shows it: without the part that lies above the mount's own root.
std::string_view PathBelow(std::string_view root, std::string_view path) {
  if (root == "/") {
    return path;
  }
  const bool isBelow = path.starts_with(root) && (path.size() == root.size() || path[root.size()] == '/');
  return isBelow ? path.substr(root.size()) : std::string_view();
}

std::uint32_t PercentOf(std::uint64_t part, std::uint64_t whole) {
  return whole == 0 ? 0 : static_cast<std::uint32_t>(static_cast<double>(part) * 100.0 / static_cast<double>(whole));
}

}  // namespace

TSystem::MemoryInfo qilsys::ToMemoryInfo(const MachineMemory& memory, std::uint32_t pageSize) {
  const std::uint64_t used = memory.m_total - memory.m_available;
  return TSystem::MemoryInfo{
      .m_availablePhysical = memory.m_available,
      .m_usedPhysical = used == 0 ? 1 : used,
      .m_totalPhysical = memory.m_total,
      .m_pageSize = pageSize,
      .m_memoryLoad = memory.m_load.value_or(PercentOf(used, memory.m_total)),
  };
}

std::optional<qilsys::MachineMemory> qilsys::ParseMemInfo(std::string_view text) {
  const std::optional<std::uint64_t> total = ParseMemInfoRow(text, "MemTotal:");
  std::optional<std::uint64_t> available = ParseMemInfoRow(text, "MemAvailable:");
  if (!available) {
    available = ParseMemInfoRow(text, "MemFree:");
  }
  if (!total || !available) {
    return std::nullopt;
  }
  return MachineMemory{*total, std::min(*available, *total)};
}

// Rows are "number:controllers:path"; version 2 has the number 0 and no controllers.
std::optional<std::string> qilsys::ParseCgroupPath(std::string_view text, CgroupVersion version) {
  while (!text.empty()) {
    std::string_view row = TakeUntil(text, '\n');
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
std::optional<qilsys::CgroupMount> qilsys::ParseCgroupMount(std::string_view text, CgroupVersion version) {
  while (!text.empty()) {
    const std::string_view row = TakeUntil(text, '\n');
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
      return CgroupMount{.m_mountPoint = WithoutOctalEscapes(TakeWord(head)), .m_root = root};
    }
  }
  return std::nullopt;
}

std::vector<std::string> qilsys::CgroupFolders(const CgroupMount& mount, std::string_view path) {
  std::string_view below = PathBelow(mount.m_root, path);
  std::vector<std::string> folders;
  while (!below.empty() && below != "/") {
    folders.push_back(mount.m_mountPoint + std::string(below));
    below = below.substr(0, below.rfind('/'));
  }
  folders.push_back(mount.m_mountPoint);
  return folders;
}

std::optional<std::uint64_t> qilsys::ParseByteCount(std::string_view text) {
  const std::string_view word = TakeWord(text);
  std::uint64_t value = 0;
  const auto [end, error] = std::from_chars(word.data(), word.data() + word.size(), value);
  return error == std::errc() && end == word.data() + word.size() ? std::optional(value) : std::nullopt;
}

std::optional<std::uint64_t> qilsys::ParseStatRow(std::string_view text, std::string_view key) {
  while (!text.empty()) {
    std::string_view row = TakeUntil(text, '\n');
    if (TakeWord(row) == key) {
      return ParseByteCount(row);
    }
  }
  return std::nullopt;
}

qilsys::MachineMemory qilsys::Bound(const MachineMemory& memory, const CgroupMemory& group) {
  if (!group.m_limit) {
    return memory;
  }
  const std::uint64_t held = group.m_usage - std::min(group.m_usage, group.m_reclaimable);
  const std::uint64_t room = *group.m_limit - std::min(*group.m_limit, held);
  return MachineMemory{.m_total = std::min(memory.m_total, *group.m_limit),
                       .m_available = std::min(memory.m_available, room)};
}
