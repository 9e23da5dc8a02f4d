/// What the edits of TStringCore mean, told the slow way on a std::u16string. Arguments are values, so an argument from
/// the edited text itself is what it was before the edit.
#pragma once

#include <string>

namespace qilsys::test {

class TextModel {
 public:
  explicit TextModel(std::u16string units) : m_units(std::move(units)) {}
  const std::u16string& units() const { return m_units; }
  int length() const { return static_cast<int>(m_units.size()); }

  void Append(const std::u16string& s) { m_units += s; }
  void Assign(const std::u16string& s) { m_units = s; }
  /// `own` is the offset of the text to insert in this text, -1 where it is another; it is read once the tail has
  /// moved.
  void Insert(int i, const std::u16string& s, int own);
  void InsertUnit(int i, char16_t c);
  void Replace(int pos, int n, const std::u16string& s, int own);
  void ReplaceByUnit(int pos, int n, char16_t c);
  int ReplaceCount(const std::u16string& before, const std::u16string& after);
  void ReplaceUnit(char16_t before, char16_t after);
  void RemoveAt(int pos, int n);
  void RemoveAll(const std::u16string& s);
  void RemoveUnit(char16_t c);
  void RemoveAnyOf(const std::u16string& set, int start);
  void ReplaceAnyOf(const std::u16string& set, char16_t c, int start);
  void Truncate(int n);
  void TrimSpace();
  void TrimUnit(char16_t c);
  void Fill(char16_t c, int n) { m_units.assign(static_cast<std::size_t>(n), c); }
  void Reverse();
  void DosToUnix();
  void UnixToDos();

 private:
  std::u16string m_units;
};

}  // namespace qilsys::test
