// Every type's reading of an integer must be that of the documented steps. Input: a byte for the base, then the text.
#include <cerrno>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>

#include "qilsys/TStringCore.h"
#include "support/IntegerModel.h"

namespace {

constexpr std::size_t MostBytes = 4096;

template <class T>
void Check(T (TStringCore::*read)(bool*, int) const, const TStringCore& text, int base,
           const qilsys::test::ReadInteger& wanted) {
  bool ok = false;
  const T value = (text.*read)(&ok, base);
  if (!(qilsys::test::IntegerOf<T>{value, ok, errno} == qilsys::test::InType<T>(wanted))) std::abort();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  if (size == 0 || size > MostBytes) return 0;
  const int drawn = data[0] % 36 + 1;
  const int base = drawn == 1 ? 0 : drawn;
  std::string bytes;
  for (std::size_t i = 1; i < size; ++i) bytes.push_back(static_cast<char>(data[i] & 0x7F));
  const TStringCore text = TStringCore::fromLatin1(bytes.data(), static_cast<int>(bytes.size()));
  const qilsys::test::ReadInteger wanted = qilsys::test::ReadIntegerByTheSteps(bytes, base);
  Check(&TStringCore::toShort, text, base, wanted);
  Check(&TStringCore::toUShort, text, base, wanted);
  Check(&TStringCore::toInt, text, base, wanted);
  Check(&TStringCore::toUInt, text, base, wanted);
  Check(&TStringCore::toLong, text, base, wanted);
  Check(&TStringCore::toULong, text, base, wanted);
  Check(&TStringCore::toLongLong, text, base, wanted);
  Check(&TStringCore::toULongLong, text, base, wanted);
  return 0;
}
