/// The grammar of the texts in which a Linux kernel tells about processes and the machine: rows, words between blanks,
/// decimal numbers. Pure functions, the same on every system; what is written in another way is refused, never guessed.
#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

namespace qilsys::base {

/// Cuts `text` behind the first `end`, and gives what stood before it; all of the text where there is none.
std::string_view TakeUntil(std::string_view& text, char end);

/// Cuts the first row off, and gives it without its line feed.
std::string_view TakeRow(std::string_view& text);

/// Cuts the next word off, with the blanks before it: words stand between blanks, tabs and line feeds. Empty at the end.
std::string_view TakeWord(std::string_view& text);

/// All of the text as a decimal number of 64 bits; signs, blanks and base marks are refused.
std::optional<std::uint64_t> WholeNumber(std::string_view text);

/// The number in a file that holds just one, with or without a line feed.
std::optional<std::uint64_t> SingleNumber(std::string_view text);

/// What stands behind "`key`:" in the first row that begins so.
std::optional<std::string_view> ValueOf(std::string_view text, std::string_view key);

/// The bytes of a row "`key`:   <number> kB". Nothing if the row is missing, is written in another way, or if the bytes
/// pass 64 bits.
std::optional<std::uint64_t> BytesOfRow(std::string_view text, std::string_view key);

/// The name of a file without the mark, " (deleted)", that the kernel puts behind that of one that is no longer there.
std::string_view WithoutDeletedMark(std::string_view name);

}  // namespace qilsys::base
