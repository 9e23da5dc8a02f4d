/// The engines behind searching and comparing, on raw units.
///
/// Lengths and indices count units, and -1 means "not found". Every sensitivity but `CaseSensitive` folds. Units of raw
/// text that comes with a length may hold NULs; text without one ends at its first.
///
/// Every search for a needle takes a time that is linear in text and needle, whatever the letters; only findLastStr
/// says an exception. Nothing here allocates, but for a set of more than 64 units that are not all ASCII and for the
/// table of buildFailureTable: those may raise std::bad_alloc, before anything is changed. Nothing else raises but the
/// measuring of a text without a length (TextLength.h).
#pragma once

#include <vector>

#include "qilsys/TCodeUnit.h"
#include "qilsys/TStringOptions.h"
#include "units/Folding.h"

namespace qilsys::search {

using CaseSensitivity = TStringOptions::CaseSensitivity;

/// Units before the first NUL among `len`, or `len`.
int lengthToNul(const TCodeUnit* s, int len);

// Comparing: -1, 0 or 1, by unsigned unit value, up to the first NUL. Null counts as empty text.

/// Compares two texts that end at their NULs.
int compareText(const TCodeUnit* a, const TCodeUnit* b, CaseSensitivity cs);

/// Compares two texts whose terminators stand at their lengths; the result is as without the lengths, only sooner.
int compareText(const TCodeUnit* a, int aLen, const TCodeUnit* b, int bLen, CaseSensitivity cs);

/// Compares at most `n` units; all of them when `n` is negative.
int compareN(const TCodeUnit* a, const TCodeUnit* b, int n, CaseSensitivity cs);

/// Whether compareN gives 0; both texts must have `n` readable units.
bool equalUpToNul(const TCodeUnit* a, const TCodeUnit* b, int n, CaseSensitivity cs);

/// The first index at which the texts differ, or `n`; NULs are like all other units.
int firstDifference(const TCodeUnit* a, const TCodeUnit* b, int n, CaseSensitivity cs);

// Substrings.

/// The first place of `needle` at or after `start` (from the end when negative). The empty needle, or one that begins
/// with NUL, is found at `start` itself, if that lies before `hayLen`.
int findStrCore(const TCodeUnit* hay, int hayLen, const TCodeUnit* needle, int needleLen, int start,
                CaseSensitivity cs);

/// The same for a needle of at least one unit, in which a NUL is like any other, and from an index that is not negative.
int findUnits(const TCodeUnit* text, int textLen, const TCodeUnit* needle, int needleLen, int from, CaseSensitivity cs);

/// Fills `table` with the index of the last unit of the longest proper border of each prefix, -1 for none. A null
/// needle or a length below 1 leaves it untouched.
void buildFailureTable(const TCodeUnit* needle, int length, std::vector<int>& table, CaseSensitivity cs);

/// The first match by Knuth-Morris-Pratt, with a table made by buildFailureTable for the same needle.
int kmpSearch(const TCodeUnit* text, int textLen, const TCodeUnit* needle, int needleLen, const std::vector<int>& table,
              CaseSensitivity cs);

/// The last place of `needle`, by code point, at or before `from` (-1: the end; below: from the end). Where text or
/// needle has a lone surrogate the walk is tied to how each step treats it, and long near misses cost needle times text.
int findLastStr(const TCodeUnit* text, int textLen, const TCodeUnit* needle, int needleLen, int from,
                CaseSensitivity cs);

/// How many code points a walk backward may compare for each unit of its way before findLastWellFormed is faster.
constexpr int UnitsPerStepBackward = 4;

/// Whether no surrogate is alone.
bool isWellFormed(const TCodeUnit* s, int len);

/// The last place of `needle`, by code point, that lies before `end` with all its units. Text and needle must be well
/// formed, and `end` at most the text's length.
int findLastWellFormed(const TCodeUnit* text, int end, const TCodeUnit* needle, int needleLen, CaseSensitivity cs);

/// How many times `needle` occurs, overlaps included.
int countStr(const TCodeUnit* text, int textLen, const TCodeUnit* needle, int needleLen, CaseSensitivity cs);

// Single units.

/// The first `c` at or after `start` (from the end when negative). A negative `len` is measured.
int findUnit(const TCodeUnit* s, int len, TCodeUnit c, int start);

/// The last `c` at or before `from` (-1: the length; below: from the end). The unit at `len` must be readable: text
/// that is terminated there holds a NUL for this search.
int findLastUnit(const TCodeUnit* s, int len, TCodeUnit c, int from);

/// How many of `len` units are `c`.
int countUnit(const TCodeUnit* s, int len, TCodeUnit c);

// Sets. Text and set must be terminated at their lengths, since decoding looks one unit ahead.

/// The first unit or code point at or after `start` that is in `set`; a negative `start` finds nothing.
int findAnyOfCore(const TCodeUnit* text, int textLen, const TCodeUnit* set, int setLen, int start);

/// The first code point at or after `start` that is not in `set`; a negative `start` finds nothing.
int findNotOfCore(const TCodeUnit* text, int textLen, const TCodeUnit* set, int setLen, int start);

}  // namespace qilsys::search
