/// The options of string operations. All have a fixed underlying type: other values are legal.
#pragma once

#include "qilsys/Export.h"

/// A base of TStringCore, so that they are named TStringCore::CaseSensitive and the like.
struct QILSYS_API TStringOptions {
  /// Every test is against CaseSensitive, so any other value behaves as CaseInsensitive.
  enum CaseSensitivity : int { CaseInsensitive = 0, CaseSensitive = 1 };
  enum SplitBehavior : int { KeepEmptyTokens = 0, DropEmptyTokens = 1 };
  /// Bits, for section().
  enum SectionFlags : int {
    SectionDefault = 0,
    SectionDropEmpty = 1,              ///< Empty fields are not counted.
    SectionWithLeadingSeparator = 2,   ///< The result starts with the separator, if there is room.
    SectionWithTrailingSeparator = 4,  ///< The result ends with the separator, if there is room.
    SectionFoldSeparator = 8,          ///< The separator is matched case-insensitively.
  };
  friend constexpr SectionFlags operator|(SectionFlags a, SectionFlags b) noexcept {
    return static_cast<SectionFlags>(static_cast<int>(a) | static_cast<int>(b));
  }
  /// How a capacity is chosen; any other value behaves as GrowGeometric.
  enum GrowthMode : int { GrowGeometric = 0, GrowAtLeast = 1, GrowExact = 2 };
};
