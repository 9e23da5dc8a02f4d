// Texts whose UTF-8 has more bytes than an int counts.
#include <gtest/gtest.h>

#include <climits>
#include <functional>
#include <string>

#include "qilsys/TStringCore.h"
#include "qilsys/Unicode.h"
#include "support/RowName.h"
#include "support/StringHeaps.h"

namespace qilsys::test {
namespace {

// Each unit is U+4E4E, three bytes of UTF-8; the last four are NUL, one byte each.
constexpr char Fill = 0x4E;
constexpr int MostUnits = INT_MAX / 3;
static_assert(INT_MAX == 3 * MostUnits + 1);
constexpr int WrappingTwice = 1500000000;

/// Text that a test gives a length of its own.
class ManyUnits {
 public:
  explicit ManyUnits(int units) : m_bytes(std::size_t{2} * static_cast<std::size_t>(units) + 8, Fill) {}
  const TCodeUnit* Data() const { return reinterpret_cast<const TCodeUnit*>(m_bytes.data()); }

 private:
  RepeatedBytes m_bytes;
};

void ExpectCapacityException(const std::function<void()>& operation) {
  try {
    operation();
    ADD_FAILURE() << "nothing was raised";
  } catch (const TStringCore::CapacityException& e) {
    EXPECT_EQ(e.message, u"String capacity overflow.");
  }
}

struct Row {
  const char* name;
  int units;
};

void PrintTo(const Row& row, std::ostream* out) { *out << row.name; }

class UnicodeLimits : public testing::TestWithParam<Row> {
 protected:
  ManyUnits m_text{GetParam().units};
  const TCodeUnit* m_data = m_text.Data();
  int m_units = GetParam().units;
  std::string m_target = std::string(100, 'x');
};

TEST_P(UnicodeLimits, MeasureRaises) {
  ExpectCapacityException([&] { (void)Unicode::MeasureUtf16ToUtf8(m_data, m_units); });
}
TEST_P(UnicodeLimits, ConversionWithoutTargetRaises) {
  ExpectCapacityException([&] { (void)Unicode::Utf16ToUtf8(m_data, m_units, nullptr, 0); });
}
TEST_P(UnicodeLimits, ConversionRaisesAndWritesNothing) {
  ExpectCapacityException([&] { (void)Unicode::Utf16ToUtf8(m_data, m_units, m_target.data(), 100); });
  EXPECT_EQ(m_target, std::string(100, 'x'));
}
TEST_P(UnicodeLimits, ToStdStringRaises) {
  ExpectCapacityException([&] { (void)Unicode::toStdString(m_data, static_cast<size_t>(m_units)); });
}

INSTANTIATE_TEST_SUITE_P(Table, UnicodeLimits,
                         testing::Values(Row{"OneByteTooMany", MostUnits + 1}, Row{"WrappingTwice", WrappingTwice}),
                         RowName<Row>);

TEST(UnicodeLimitsExact, AsManyBytesAsAnIntCountsAreMeasured) {
  const ManyUnits text(MostUnits);
  EXPECT_EQ(Unicode::MeasureUtf16ToUtf8(text.Data(), MostUnits), INT_MAX - 1);
  EXPECT_EQ(Unicode::MeasureUtf16ToUtf8(text.Data(), MostUnits + 1), INT_MAX);
}

}  // namespace
}  // namespace qilsys::test
