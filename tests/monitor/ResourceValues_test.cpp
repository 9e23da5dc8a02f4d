#include "monitor/ResourceValues.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <boost/uuid/entropy_error.hpp>
#include <boost/uuid/uuid_io.hpp>
#include <cstddef>
#include <cstring>
#include <vector>

#include "monitor/Scarcity.h"
#include "support/RowName.h"

namespace qilsys::monitor {
namespace {

TEST(ResourceValuesTest, Version2IsThirtyFiveBytesInItsOrder) {
  EXPECT_EQ(sizeof(ResourceValuesV2), 35U);
  EXPECT_EQ(offsetof(ResourceValuesV2, version), 0U);
  EXPECT_EQ(offsetof(ResourceValuesV2, pid), 4U);
  EXPECT_EQ(offsetof(ResourceValuesV2, uuid), 8U);
  EXPECT_EQ(offsetof(ResourceValuesV2, memoryBytes), 24U);
  EXPECT_EQ(offsetof(ResourceValuesV2, memoryLimitPercent), 32U);
  EXPECT_EQ(offsetof(ResourceValuesV2, cpuPercent), 33U);
  EXPECT_EQ(offsetof(ResourceValuesV2, reportIntervalSeconds), 34U);
}

TEST(ResourceValuesTest, Version1IsFourteenBytesInItsOrder) {
  EXPECT_EQ(sizeof(ResourceValuesV1), 14U);
  EXPECT_EQ(offsetof(ResourceValuesV1, pid), 0U);
  EXPECT_EQ(offsetof(ResourceValuesV1, memoryBytes), 4U);
  EXPECT_EQ(offsetof(ResourceValuesV1, memoryLimitPercent), 12U);
  EXPECT_EQ(offsetof(ResourceValuesV1, cpuPercent), 13U);
}

TEST(ResourceValuesTest, VersionsHaveTheirNumbers) {
  EXPECT_EQ(static_cast<int>(ResourceValuesVersion::VER_1), 1);
  EXPECT_EQ(static_cast<int>(ResourceValuesVersion::VER_2), 2);
}

TEST(ResourceValuesTest, WideningPutsThePidIntoTheIdentity) {
  ResourceValuesV1 values;
  values.pid = 4660;
  values.memoryBytes = 0x1122334455667788;
  values.memoryLimitPercent = 55;
  values.cpuPercent = 66;
  const ResourceValuesV2 wide = Widen(values);
  EXPECT_EQ(+wide.version, 2U);
  EXPECT_EQ(+wide.pid, 4660U);
  EXPECT_EQ(wide.uuid, (ResourceIdentity{0x34, 0x12}));
  EXPECT_EQ(+wide.memoryBytes, 0x1122334455667788U);
  EXPECT_EQ(wide.memoryLimitPercent, 55);
  EXPECT_EQ(wide.cpuPercent, 66);
  EXPECT_EQ(wide.reportIntervalSeconds, 0);
}

TEST(ResourceValuesTest, NarrowingKeepsWhatVersion1Has) {
  ResourceValuesV2 values;
  values.pid = 7;
  values.uuid.fill(9);
  values.memoryBytes = 8;
  values.memoryLimitPercent = 1;
  values.cpuPercent = 2;
  const ResourceValuesV1 narrow = Narrow(values);
  EXPECT_EQ(+narrow.pid, 7U);
  EXPECT_EQ(+narrow.memoryBytes, 8U);
  EXPECT_EQ(narrow.memoryLimitPercent, 1);
  EXPECT_EQ(narrow.cpuPercent, 2);
}

TEST(ResourceValuesTest, RandomBytesAreStampedAsVersion4) {
  ResourceIdentity zeros{};
  ResourceIdentity ones;
  ones.fill(0xFF);
  EXPECT_EQ(Version4(zeros), (ResourceIdentity{0, 0, 0, 0, 0, 0, 0x40, 0, 0x80}));
  EXPECT_EQ(Version4(ones), (ResourceIdentity{0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0x4F, 0xFF, 0xBF, 0xFF, 0xFF, 0xFF,
                                              0xFF, 0xFF, 0xFF, 0xFF}));
}

TEST(ResourceValuesTest, EveryByteOfAnIdentityIsDrawn) {
  // All bits of a byte that is not drawn stay the same.
  ResourceIdentity once{};
  ResourceIdentity changed{};
  for (int i = 0; i < 64; ++i) {
    const ResourceIdentity drawn = MakeOwnValues(ResourceValuesVersion::VER_2, 1, 1).uuid;
    if (i == 0) once = drawn;
    for (std::size_t byte = 0; byte < drawn.size(); ++byte)
      changed[byte] = static_cast<std::uint8_t>(changed[byte] | (once[byte] ^ drawn[byte]));
  }
  ResourceIdentity wanted;
  wanted.fill(0xFF);
  wanted[6] = 0x0F;
  wanted[8] = 0x3F;
  EXPECT_EQ(changed, wanted);
}

TEST(ResourceValuesTest, ADatagramIsTakenByItsLengthAlone) {
  const std::vector<unsigned char> bytes(64, 0xA5);
  for (std::size_t length = 0; length <= bytes.size(); ++length) {
    const auto values = ValuesOfDatagram({bytes.data(), length});
    EXPECT_EQ(values.has_value(), length == 14 || length == 35) << length;
  }
  const ResourceValuesV2 whole = *ValuesOfDatagram({bytes.data(), 35});
  EXPECT_EQ(std::memcmp(&whole, bytes.data(), 35), 0);
  const ResourceValuesV2 widened = *ValuesOfDatagram({bytes.data(), 14});
  EXPECT_EQ(+widened.version, 2U);
  EXPECT_EQ(widened.uuid, (ResourceIdentity{0xA5, 0xA5, 0xA5, 0xA5}));
  EXPECT_EQ(widened.reportIntervalSeconds, 0);
}

TEST(ResourceValuesTest, OwnRecordOfVersion2HasARandomVersion4Identity) {
  const ResourceValuesV2 own = MakeOwnValues(ResourceValuesVersion::VER_2, 4711, 5);
  EXPECT_EQ(+own.version, 2U);
  EXPECT_EQ(+own.pid, 4711U);
  EXPECT_EQ(own.uuid[6] & 0xF0, 0x40);
  EXPECT_EQ(own.uuid[8] & 0xC0, 0x80);
  EXPECT_EQ(+own.memoryBytes, 0U);
  EXPECT_EQ(own.memoryLimitPercent, 0);
  EXPECT_EQ(own.cpuPercent, 0);
  EXPECT_EQ(own.reportIntervalSeconds, 5);
  EXPECT_NE(own.uuid, MakeOwnValues(ResourceValuesVersion::VER_2, 4711, 5).uuid);
}

TEST(ResourceValuesTest, OwnRecordOfVersion1IsWhatOthersMakeOfIt) {
  const ResourceValuesV2 own = MakeOwnValues(ResourceValuesVersion::VER_1, 4660, 5);
  EXPECT_EQ(+own.version, 2U);
  EXPECT_EQ(+own.pid, 4660U);
  EXPECT_EQ(own.uuid, (ResourceIdentity{0x34, 0x12}));
  EXPECT_EQ(own.reportIntervalSeconds, 0);
}

TEST(ResourceValuesTest, NoRandomNumbersIsTheEntropyError) {
  const test::NoRandomNumbers none;
  EXPECT_THROW(MakeOwnValues(ResourceValuesVersion::VER_2, 1, 1), boost::uuids::entropy_error);
  EXPECT_THROW(MakeOwnValues(ResourceValuesVersion::VER_1, 1, 1), boost::uuids::entropy_error);
}

TEST(ResourceValuesTest, IntervalIsSentInItsLowByte) {
  EXPECT_EQ(MakeOwnValues(ResourceValuesVersion::VER_2, 1, 256).reportIntervalSeconds, 0);
  EXPECT_EQ(MakeOwnValues(ResourceValuesVersion::VER_2, 1, 300).reportIntervalSeconds, 44);
  EXPECT_EQ(MakeOwnValues(ResourceValuesVersion::VER_2, 1, 255).reportIntervalSeconds, 255);
}

TEST(ResourceValuesTest, IdentityPrintsInGroupsOfLowerCase) {
  ResourceValuesV2 values;
  for (std::size_t i = 0; i < values.uuid.size(); ++i) values.uuid[i] = static_cast<std::uint8_t>(0xF0 + i);
  EXPECT_EQ(boost::uuids::to_string(UuidOf(values)), "f0f1f2f3-f4f5-f6f7-f8f9-fafbfcfdfeff");
}

unsigned int SumOf(std::initializer_list<unsigned char> percents) {
  PercentSum sum;
  for (const unsigned char percent : percents) sum.Add(percent);
  return sum.Limited();
}

TEST(PercentSumTest, WrapsAtEightBitsAndIsLimitedAtTheEnd) {
  EXPECT_EQ(SumOf({}), 0U);
  EXPECT_EQ(SumOf({100}), 100U);
  EXPECT_EQ(SumOf({60, 70}), 100U);
  EXPECT_EQ(SumOf({100, 100, 100}), 44U);
  EXPECT_EQ(SumOf({100, 100, 56}), 0U);
  EXPECT_EQ(SumOf({99, 1}), 100U);
}

struct PercentRow {
  const char* name;
  unsigned long long bytes;
  unsigned long long limit;
  int percent;
};

class PercentOfLimitTest : public testing::TestWithParam<PercentRow> {};

TEST_P(PercentOfLimitTest, CutsToEightBitsBeforeTheLimit) {
  EXPECT_EQ(PercentOfLimit(GetParam().bytes, GetParam().limit), GetParam().percent);
}

INSTANTIATE_TEST_SUITE_P(Rows, PercentOfLimitTest,
                         testing::Values(PercentRow{"Nothing", 0, 1000, 0}, PercentRow{"JustBelowOne", 9, 1000, 0},
                                         PercentRow{"Truncated", 599, 1000, 59}, PercentRow{"All", 1000, 1000, 100},
                                         PercentRow{"HalfAgain", 1500, 1000, 100},
                                         PercentRow{"LastBeforeTheCut", 2550, 1000, 100},
                                         PercentRow{"TheCut", 2560, 1000, 0}, PercentRow{"ThreeTimes", 3000, 1000, 44},
                                         PercentRow{"NoLowBitsLeft", 0xFFFFFFFFFFFFFFFF, 1, 0}),
                         test::RowName<PercentRow>);

}  // namespace
}  // namespace qilsys::monitor
