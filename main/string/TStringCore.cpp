// Construction and assignment, size and access.
#include "qilsys/TStringCore.h"

#include <algorithm>

#include "string/OwnText.h"
#include "string/StringGrowth.h"
#include "units/TextLength.h"

using qilsys::StringBlock;
using namespace qilsys::string;

// ---- Construction and assignment

// Only for text that does not fit inline, into an object that holds no block yet.
void TStringCore::constructSlow(const TCodeUnit* s, int len) {
  if (len < 0) len = length(s);
  StringBlock* block = AllocateBlock(GeometricCapacity(len), nullptr);
  std::copy_n(s, len, block->units());
  block->units()[len] = 0;
  block->length = len;
  m_storage.setBlockPointer(block);
}

void TStringCore::assignSlow(const TStringCore& other) {
  if (this == &other) return;
  if (!other.m_storage.isInline()) {
    StringBlock* block = other.m_storage.blockPointer();
    block->retain();
    if (!m_storage.isInline()) giveUpBlock();
    m_storage.setBlockPointer(block);
  } else if (isShared()) {
    giveUpBlock();
    m_storage = other.m_storage;
  } else {
    StringBlock* block = m_storage.blockPointer();
    block->length = other.length();
    std::copy_n(other.data(), block->length + 1, block->units());
  }
}

void TStringCore::assign(TCodeUnit c, int n) {
  if (n >= 0) std::fill_n(resizeForWrite(n), n, c);
}

void TStringCore::_assignHandleSelf(const TCodeUnit* s, int len) {
  if (s == constData()) {
    if (len >= 0 && len < length()) resizeForWrite(len);
    return;
  }
  if (InSelf(*this, s)) {
    const int offset = static_cast<int>(s - constData());
    const int rest = length() - offset;
    const int count = len < 0 ? length(s) : std::min(len, rest);
    TCodeUnit* units = data();
    std::copy_n(units + offset, count, units);
    resizeForWrite(count);
    return;
  }
  // The length is set once and not by way of 0, so that a failure leaves the text.
  if (!s) len = 0;
  if (len < 0) len = length(s);
  std::copy_n(s, len, resizeForWrite(len));
}

void TStringCore::swap(TStringCore& other) {
  if (this == &other) return;
  TStringCore kept;
  kept = *this;
  *this = other;
  other = kept;
}

// ---- Size

TCodeUnit* TStringCore::resizeForWrite(int n) { return ResizeForWrite(m_storage, n); }

void TStringCore::reserveWithMode(int n, GrowthMode mode) { ReserveWithMode(m_storage, n, mode); }

void TStringCore::detachSlow() { UnshareInto(m_storage, capacity()); }

void TStringCore::freeBlock(StringBlock* block) noexcept { FreeBlock(block); }

void TStringCore::squeeze() {
  if (m_storage.isInline()) return;
  const int wanted =
      length() < qilsys::StringStorage::InlineCapacity ? qilsys::StringStorage::InlineCapacity : length() + 1;
  if (isShared()) {
    UnshareInto(m_storage, wanted);
  } else if (wanted != capacity()) {
    ReallocateBlock(m_storage, wanted);
  }
}

int TStringCore::length(const TCodeUnit* s) { return qilsys::units::TerminatedLength(s); }

int TStringCore::lengthInBytes(const TCodeUnit* s) {
  return static_cast<int>(static_cast<std::uint32_t>(length(s)) * sizeof(TCodeUnit));
}

// ---- Element access

namespace {

[[noreturn]] void ThrowOutOfRange(const char* access) {
  throw TStringCore::Exception(TStringCore(access) + u" argument out of range.");
}

}  // namespace

TCodeUnit TStringCore::at(int i) const {
  if (i < 0 || i > length()) ThrowOutOfRange("TStringCore::at(int):");
  return data()[i];
}

TCodeUnit TStringCore::operator[](int i) const {
  if (i < 0 || i > length()) ThrowOutOfRange("TStringCore::operator[int] const");
  return data()[i];
}

TCodeUnit TStringCore::operator[](size_type i) const {
  if (i > size()) ThrowOutOfRange("TStringCore::operator[size_type] const");
  return data()[i];
}

TCodeUnit& TStringCore::operator[](int i) {
  if (i < 0 || i > length()) ThrowOutOfRange("TStringCore::operator[int]");
  return data()[i];
}

TCodeUnit& TStringCore::operator[](size_type i) {
  if (i > size()) ThrowOutOfRange("TStringCore::operator[size_type]");
  return data()[i];
}
