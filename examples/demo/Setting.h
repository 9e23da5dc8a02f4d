/// The setting of the story: who takes part, and the limits that hold for them.
#pragma once

#include <array>

namespace demo {

constexpr unsigned long long MiB = 1024ull * 1024ull;

/// What a process of this program takes before it holds anything, as it was at the first call. That differs much from
/// system to system, and the quantities of the story are meant above it.
unsigned long long BareBytes();

/// `bytes` of private memory, less those of a bare process.
unsigned long long AboveBare(unsigned long long bytes);

/// Limits and pace of the group; every member is configured with the same ones.
struct Limits {
  static constexpr unsigned long long PerProcess = 128 * MiB;
  static constexpr unsigned long long AllProcesses = 235 * MiB;
  static constexpr unsigned int GroupCpuPercent = 10;
  static constexpr long long SustainedSeconds = 3;
  static constexpr long long CheckIntervalSeconds = 1;
};

/// Exit codes of a member whose monitor asked it to end itself.
struct ExitCodes {
  static constexpr unsigned char Memory = 71;
  static constexpr unsigned char Cpu = 72;
};

/// The members, in the order in which they are started and shown.
constexpr std::array<const char*, 6> MemberNames = {"Quiet", "Cache", "Leak", "Large", "Medium", "Burner"};

/// What a member holds when the story begins.
constexpr unsigned int StartingMiB = 10;

}  // namespace demo
