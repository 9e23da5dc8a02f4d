/// Names of table rows.
#pragma once

#include <gtest/gtest.h>

#include <string>

namespace qilsys::test {

/// Names a test by the field `name` of its row.
template <class Row>
std::string RowName(const testing::TestParamInfo<Row>& info) {
  return info.param.name;
}

}  // namespace qilsys::test
