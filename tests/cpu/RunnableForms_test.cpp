#include "cpu/RunnableForms.h"

#include <gtest/gtest.h>

namespace qilsys::cpu {
namespace {

// No processor has it.
constexpr auto Unknown = static_cast<CpuFeatures>(1U << 31);

int One() { return 1; }
int Two() { return 2; }
int Three() { return 3; }

struct Plain {
  CpuFeatures needs;
  int (*loop)();
};

struct Inheriting {
  CpuFeatures needs;
  int (*first)();
  int (*second)();
  void TakeMissing(const Inheriting& before) {
    if (first == nullptr) first = before.first;
    if (second == nullptr) second = before.second;
  }
};

TEST(RunnableForms, AreThoseWhoseNeedsAreMet) {
  constexpr Plain Table[] = {{NoFeatures, One}, {Unknown, Two}, {NoFeatures, Three}};
  const RunnableForms<Plain, 3> forms{Table};
  ASSERT_EQ(forms.All().size(), 2U);
  EXPECT_EQ(forms.All()[0].loop(), 1);
  EXPECT_EQ(forms.All()[1].loop(), 3);
}

TEST(RunnableForms, NeedAllOfTheirFeatures) {
  const Plain table[] = {{NoFeatures, One}, {ReadCpuFeatures() | Unknown, Two}, {ReadCpuFeatures(), Three}};
  const RunnableForms<Plain, 3> forms{table};
  ASSERT_EQ(forms.All().size(), 2U);
  EXPECT_EQ(forms.All()[1].loop(), 3);
}

TEST(RunnableForms, TakeWhatTheyLackFromTheFormBeforeThem) {
  constexpr Inheriting First[] = {{NoFeatures, One, One}};
  constexpr Inheriting Rest[] = {{NoFeatures, Two, nullptr}, {Unknown, Three, Three}, {NoFeatures, nullptr, Three}};
  const RunnableForms<Inheriting, 4> forms{First, Rest};
  ASSERT_EQ(forms.All().size(), 3U);
  EXPECT_EQ(forms.All()[1].first(), 2);
  EXPECT_EQ(forms.All()[1].second(), 1);
  EXPECT_EQ(forms.All()[2].first(), 2);
  EXPECT_EQ(forms.All()[2].second(), 3);
}

}  // namespace
}  // namespace qilsys::cpu
