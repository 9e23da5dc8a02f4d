// The sibling for Linux is RandomBytes_linux.cpp.
#include "monitor/RandomBytes_platform.h"

#ifndef _WIN32
#error "This file is for Windows."
#endif

#include <windows.h>
// After windows.h, whose types it is made of.
#include <bcrypt.h>

#include <boost/uuid/entropy_error.hpp>

namespace qilsys::monitor {

namespace {

void RequireSuccess(NTSTATUS status, const char* call) {
  if (status < 0) throw boost::uuids::entropy_error(status, call);
}

/// The system's generator, closed once.
class Generator {
 public:
  Generator() {
    RequireSuccess(BCryptOpenAlgorithmProvider(&m_provider, BCRYPT_RNG_ALGORITHM, nullptr, 0),
                   "BCryptOpenAlgorithmProvider");
  }
  Generator(const Generator&) = delete;
  Generator& operator=(const Generator&) = delete;
  ~Generator() { BCryptCloseAlgorithmProvider(m_provider, 0); }

  void Fill(std::span<std::uint8_t> bytes) const {
    RequireSuccess(BCryptGenRandom(m_provider, bytes.data(), static_cast<ULONG>(bytes.size()), 0), "BCryptGenRandom");
  }

 private:
  BCRYPT_ALG_HANDLE m_provider = nullptr;
};

}  // namespace

void FillWithRandomNumbers(std::span<std::uint8_t> bytes) { Generator().Fill(bytes); }

}  // namespace qilsys::monitor
