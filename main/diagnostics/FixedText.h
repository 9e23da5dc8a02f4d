/// A short text that takes no memory but its own: for what runs in a signal handler or between fork and exit.
#pragma once

#include <algorithm>
#include <array>
#include <charconv>
#include <concepts>
#include <cstddef>
#include <string_view>

namespace qilsys::diagnostics {

/// Holds texts and decimal numbers, one after the other, up to `Room` bytes with the NUL behind them.
template <std::size_t Room>
class FixedText {
 public:
  FixedText() = default;

  FixedText& operator<<(std::string_view text) {
    m_isWhole = m_isWhole && text.size() < Room - m_length;
    if (m_isWhole) {
      std::copy(text.begin(), text.end(), m_text.begin() + static_cast<std::ptrdiff_t>(m_length));
      m_length += text.size();
      m_text[m_length] = '\0';
    }
    return *this;
  }

  FixedText& operator<<(std::integral auto number) {
    char digits[24];
    const char* const end = std::to_chars(digits, digits + sizeof digits, number).ptr;
    return *this << std::string_view(digits, static_cast<std::size_t>(end - digits));
  }

  /// False once something did not fit; what came before it stays.
  bool IsWhole() const { return m_isWhole; }
  std::string_view View() const { return {m_text.data(), m_length}; }
  const char* CStr() const { return m_text.data(); }

 private:
  std::array<char, Room> m_text{};
  std::size_t m_length = 0;
  bool m_isWhole = true;
};

}  // namespace qilsys::diagnostics
