// Reads the texts that MachineMemory.cpp understands. The Windows sibling asks the system in one call.
#include "system/MachineMemory.h"

#ifndef __linux__
#error "This file is for Linux."
#endif

#include <string>

#include "base/ProcText.h"
#include "system/TSystem_platform.h"
#include "system/TextFile_linux.h"

namespace qilsys::system {

namespace {

// What the files of a group are called.
struct CgroupFiles {
  const char* limit;
  const char* usage;
  const char* reclaimableRow;
};

constexpr CgroupFiles FilesV1 = {"/memory.limit_in_bytes", "/memory.usage_in_bytes", "total_inactive_file"};
constexpr CgroupFiles FilesV2 = {"/memory.max", "/memory.current", "inactive_file"};

CgroupMemory ReadCgroup(const std::string& folder, const CgroupFiles& files) {
  CgroupMemory group{.limit = base::SingleNumber(ReadTextFile(folder + files.limit))};
  if (group.limit) {
    group.usage = base::SingleNumber(ReadTextFile(folder + files.usage)).value_or(0);
    group.reclaimable = ParseStatRow(ReadTextFile(folder + "/memory.stat"), files.reclaimableRow).value_or(0);
  }
  return group;
}

// A parent's limit holds for its children too, so the walk goes up the tree.
void BoundByCgroups(MachineMemory& memory, CgroupVersion version) {
  const auto path = ParseCgroupPath(ReadTextFile("/proc/self/cgroup"), version);
  const auto mount = ParseCgroupMount(ReadTextFile("/proc/self/mountinfo"), version);
  if (!path || !mount) {
    return;
  }
  for (const std::string& folder : CgroupFolders(*mount, *path)) {
    memory = Bound(memory, ReadCgroup(folder, version == CgroupVersion::V1 ? FilesV1 : FilesV2));
  }
}

}  // namespace

MachineMemory ReadMachineMemory() {
  MachineMemory memory = ParseMemInfo(ReadTextFile("/proc/meminfo")).value_or(MachineMemory());
  BoundByCgroups(memory, CgroupVersion::V1);
  BoundByCgroups(memory, CgroupVersion::V2);
  return memory;
}

}  // namespace qilsys::system
