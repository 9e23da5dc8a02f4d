/// Values as bytes that can be compared and told apart, for Subject::Observe.
#pragma once

#include <string>
#include <string_view>
#include <type_traits>

#include "qilsys/TStringCore.h"

namespace qilsys::test::sweep {

/// The sum of what a subject shows.
class Observed {
 public:
  template <class Value>
    requires(std::is_arithmetic_v<Value> || std::is_enum_v<Value>)
  Observed& Add(Value value) { return AddBytes(&value, sizeof value); }
  Observed& Add(const TStringCore& text) { return AddBytes(text.constData(), text.size() * sizeof(TCodeUnit)); }
  template <class Unit>
  Observed& Add(const std::basic_string<Unit>& text) {
    return AddBytes(text.data(), text.size() * sizeof(Unit));
  }
  /// All elements of a container.
  template <class Container>
    requires requires(const Container& all) {
      typename Container::value_type;
      all.begin();
    }
  Observed& AddAll(const Container& all) {
    Add(all.size());
    for (const auto& one : all) Add(one);
    return *this;
  }
  const std::string& Bytes() const { return m_bytes; }

 private:
  Observed& AddBytes(const void* data, std::size_t size) {
    m_bytes += std::to_string(size) + ':';
    m_bytes.append(static_cast<const char*>(data), size);
    return *this;
  }

  std::string m_bytes;
};

}  // namespace qilsys::test::sweep
