// Any bytes as what the kernel tells of the machine's memory, of mounts and of control groups: what is read from them
// keeps the promises of its header. The texts of one input are parted by NULs: meminfo, mounts, groups, figures.
#include "system/MachineMemory.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>
#include <string_view>

#include "base/ProcText.h"

namespace {

using namespace qilsys::base;
using namespace qilsys::system;

void Require(bool condition) {
  if (!condition) std::abort();
}

// Each folder is the parent of the one before it, and the last one the mount itself.
void CheckFolders(const CgroupMount& mount, const std::string& path) {
  const std::vector<std::string> folders = CgroupFolders(mount, path);
  Require(!folders.empty() && folders.back() == mount.mountPoint);
  for (std::size_t i = 0; i + 1 < folders.size(); ++i) {
    Require(folders[i].size() > folders[i + 1].size() && folders[i].starts_with(folders[i + 1]));
  }
}

void CheckGroups(std::string_view mounts, std::string_view groups, CgroupVersion version) {
  const std::optional<CgroupMount> mount = ParseCgroupMount(mounts, version);
  const std::optional<std::string> path = ParseCgroupPath(groups, version);
  if (mount) Require(mounts.find(version == CgroupVersion::V2 ? "cgroup2" : "cgroup") != std::string_view::npos);
  if (path) Require(path->starts_with('/') && groups.find(*path) != std::string_view::npos);
  if (mount && path) CheckFolders(*mount, *path);
}

void CheckBound(const MachineMemory& machine, std::string_view figures) {
  CgroupMemory group{.limit = WholeNumber(TakeWord(figures))};
  group.usage = WholeNumber(TakeWord(figures)).value_or(0);
  group.reclaimable = ParseStatRow(figures, "inactive_file").value_or(0);
  const MachineMemory bound = Bound(machine, group);
  Require(bound.available <= bound.total && bound.total <= machine.total && bound.available <= machine.available);
  Require(!group.limit || bound.total <= *group.limit);
  const TSystem::MemoryInfo info = ToMemoryInfo(bound, 4096);
  Require(info.m_usedPhysical > 0 && info.m_memoryLoad <= 100);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  std::string_view input(reinterpret_cast<const char*>(data), size);
  std::array<std::string_view, 4> texts;
  for (std::string_view& text : texts) text = TakeUntil(input, '\0');
  const auto& [meminfo, mounts, groups, figures] = texts;
  CheckGroups(mounts, groups, CgroupVersion::V1);
  CheckGroups(mounts, groups, CgroupVersion::V2);
  const std::optional<MachineMemory> machine = ParseMemInfo(meminfo);
  if (machine) Require(machine->available <= machine->total);
  CheckBound(machine.value_or(MachineMemory()), figures);
  return 0;
}
