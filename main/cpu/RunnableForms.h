/// The choice among the forms that inner loops are compiled in.
#pragma once

#include <cstddef>
#include <initializer_list>
#include <span>

#include "cpu/CpuFeatures.h"

namespace qilsys::cpu {

/// Those forms of a table that this very processor can run; at least one of them always can.
///
/// A form is a row of function pointers with a member `needs`, the features without which it can't run, and each row of
/// a table is faster than those before it. A form with a member `TakeMissing` is given the row before it, to take over
/// the loops for which it has nothing better.
template <class Form, std::size_t Most>
class RunnableForms {
 public:
  /// A table in one or two parts, at most `Most` rows together.
  explicit RunnableForms(std::span<const Form> table, std::span<const Form> rest = {}) {
    const unsigned features = ReadCpuFeatures();
    for (const std::span<const Form> part : {table, rest}) {
      for (const Form& form : part) {
        if ((form.needs & ~features) == 0) Add(form);
      }
    }
  }

  std::span<const Form> All() const { return {m_forms, m_count}; }

 private:
  void Add(const Form& form) {
    m_forms[m_count] = form;
    if constexpr (requires(Form & f) { f.TakeMissing(f); }) {
      if (m_count > 0) m_forms[m_count].TakeMissing(m_forms[m_count - 1]);
    }
    ++m_count;
  }

  Form m_forms[Most] = {};
  std::size_t m_count = 0;
};

}  // namespace qilsys::cpu
