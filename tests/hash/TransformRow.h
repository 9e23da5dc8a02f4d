/// Every digest in every form of its inner loop that this machine can run: the rows of the suites about digests.
#pragma once

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "hash/ShaTransform.h"
#include "qilsys/sha2.h"

namespace qilsys::test {

struct TransformRow {
  std::string name;
  const hash::ShaTransforms* transforms;
  sha2::SHA_TYPE type;
};

inline std::vector<TransformRow> TransformRows() {
  std::vector<TransformRow> rows;
  for (const auto& transforms : hash::AvailableShaTransforms()) {
    for (int type = sha2::SHA160; type <= sha2::SHA512; ++type) {
      sha2 digest;
      digest.Init(sha2::SHA_TYPE(type));
      rows.push_back({std::string(transforms.name) + "_" + digest.GetTypeString(), &transforms, sha2::SHA_TYPE(type)});
    }
  }
  return rows;
}

/// While it lives, all digests are computed by the row's form.
class TransformTest : public testing::TestWithParam<TransformRow> {
 protected:
  TransformTest() { hash::ChooseShaTransformsForTest(GetParam().transforms); }
  ~TransformTest() override { hash::ChooseShaTransformsForTest(nullptr); }

  std::string Hex(const std::string& message) {
    sha2 digest;
    return digest.GetHash(m_type, reinterpret_cast<const unsigned char*>(message.data()), message.size());
  }

  const sha2::SHA_TYPE m_type = GetParam().type;
};

}  // namespace qilsys::test
