#include "demo/Setting.h"

#include "qilsys/MonitoredProcess.h"

namespace demo {

unsigned long long BareBytes() {
  static const unsigned long long Bytes = GetCurrentProcessMemoryInfo().PrivateUsage;
  return Bytes;
}

unsigned long long AboveBare(unsigned long long bytes) { return bytes > BareBytes() ? bytes - BareBytes() : 0; }

}  // namespace demo
