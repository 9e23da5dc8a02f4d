// Reads the texts that MachineMemory.cpp understands. The Windows sibling asks the system in one call.
#include "system/MachineMemory.h"

#if !defined(__linux__)
#error "This file is for Linux only."
#endif

#include <fstream>
#include <iterator>
#include <string>

#include "system/TSystem_platform.h"

namespace {

using qilsys::CgroupMemory;
using qilsys::CgroupVersion;

// What the files of a group are called.
struct CgroupFiles {
  const char* limit;
  const char* usage;
  const char* reclaimableRow;
};

constexpr CgroupFiles s_filesV1 = {"/memory.limit_in_bytes", "/memory.usage_in_bytes", "total_inactive_file"};
constexpr CgroupFiles s_filesV2 = {"/memory.max", "/memory.current", "inactive_file"};

// Empty when there is no such file.
std::string ReadText(const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  return std::string(std::istreambuf_iterator<char>(file), {});
}

CgroupMemory ReadCgroup(const std::string& folder, const CgroupFiles& files) {
  CgroupMemory group{.m_limit = qilsys::ParseByteCount(ReadText(folder + files.limit))};
  if (group.m_limit) {
    group.m_usage = qilsys::ParseByteCount(ReadText(folder + files.usage)).value_or(0);
    group.m_reclaimable = qilsys::ParseStatRow(ReadText(folder + "/memory.stat"), files.reclaimableRow).value_or(0);
  }
  return group;
}

// A parent's limit holds for its children too, so the walk goes up the tree.
void BoundByCgroups(qilsys::MachineMemory& memory, CgroupVersion version) {
  const auto path = qilsys::ParseCgroupPath(ReadText("/proc/self/cgroup"), version);
  const auto mount = qilsys::ParseCgroupMount(ReadText("/proc/self/mountinfo"), version);
  if (!path || !mount) {
    return;
  }
  for (const std::string& folder : qilsys::CgroupFolders(*mount, *path)) {
    memory = Bound(memory, ReadCgroup(folder, version == CgroupVersion::V1 ? s_filesV1 : s_filesV2));
  }
}

}  // namespace

qilsys::MachineMemory qilsys::ReadMachineMemory() {
  MachineMemory memory = ParseMemInfo(ReadText("/proc/meminfo")).value_or(MachineMemory());
  BoundByCgroups(memory, CgroupVersion::V1);
  BoundByCgroups(memory, CgroupVersion::V2);
  return memory;
}
