/// Looks at what strings raise.
#pragma once

#include <gtest/gtest.h>

#include <string>
#include <typeinfo>

#include "qilsys/TStringCore.h"

namespace qilsys::test {

/// The text of the TStringCore::Exception that `f` raises, which has to be of that very class.
template <class F>
std::string MessageOf(F f) {
  try {
    f();
  } catch (const TStringCore::Exception& exception) {
    EXPECT_EQ(typeid(exception), typeid(TStringCore::Exception));
    return exception.message.toStdString();
  }
  return "nothing raised";
}

}  // namespace qilsys::test
