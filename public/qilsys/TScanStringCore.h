/// A cursor over text, for parsers written by hand.
///
///     TStringCore name;
///     double limit;
///     TScanStringCore(line).readAnyNotOf(name, u"=").skip(u"=").skipWhitespace().readFloat(limit).end();
///
/// Each call takes one token at the cursor and moves behind it; a token of another kind raises
/// `TScanStringCore::Exception`, with the status "UNKNOWN". Calls chain.
#pragma once

#include <cstdint>
#include <memory>

#include "qilsys/Export.h"
#include "qilsys/QuillonException.h"
#include "qilsys/TCodeUnit.h"
#include "qilsys/TForeignText.h"
#include "qilsys/TStringCore.h"

/// The text belongs to the caller: it ends at its first NUL, must outlive the scanner and stay as it is while it is
/// scanned. Lengths and positions count code units. A call that fails moves nothing and leaves its result as it was; only
/// `readFloat` does more. A token that would end at unit 0x7FFFFFF8 or behind raises `TStringCore::CapacityException`.
/// A value of one thread.
class QILSYS_API TScanStringCore {
 public:
  class Exception;

  /// Begins at the start of the text; a temporary string is gone when its expression ends.
  explicit TScanStringCore(const TStringCore& text);
  /// Null is a logic assertion. Where a hook lets that pass, the scanner is at the end of an empty text.
  explicit TScanStringCore(const TCodeUnit* text);
  /// Text whose elements are wider than a code unit is converted once; the scanner and its copies share what it gives.
  /// Raises what TForeignText raises, and std::bad_alloc.
  template <qilsys::ForeignUnit U>
  explicit TScanStringCore(const U* text) : m_input(nullptr) {
    setForeignInput(text);
  }
  /// UTF-8 would need a text that nobody holds.
  template <qilsys::NarrowUnit C>
  explicit TScanStringCore(const C* text) = delete;
  TScanStringCore(const TScanStringCore&);
  TScanStringCore& operator=(const TScanStringCore&);
  ~TScanStringCore();

  /// Puts the cursor back to the start.
  TScanStringCore& reset();
  /// The position of the cursor.
  int index() const { return m_index; }
  /// The text from its start, wherever the cursor is.
  const TCodeUnit* str() const { return m_input; }
  /// Raises unless the cursor is at the end of the text. Never moves.
  TScanStringCore& end();

  // A skip passes over a token, a read also delivers it in place of what `out` held. Where nothing is said of raising,
  // the token may be empty. A skip takes memory only for a set or text of the other unit type, of more than 31 units.

  /// Units of a set. Null is the empty set.
  TScanStringCore& skipAnyOf(const TCodeUnit* set);
  TScanStringCore& readAnyOf(TStringCore& out, const TCodeUnit* set);
  template <qilsys::ForeignUnit U>
  TScanStringCore& skipAnyOf(const U* set) {
    return skipAnyOf(qilsys::TForeignText(set).data());
  }
  template <qilsys::ForeignUnit U>
  TScanStringCore& readAnyOf(TStringCore& out, const U* set) {
    return readAnyOf(out, qilsys::TForeignText(set).data());
  }
  /// Units up to the first one of a set.
  TScanStringCore& skipAnyNotOf(const TCodeUnit* set);
  TScanStringCore& readAnyNotOf(TStringCore& out, const TCodeUnit* set);
  template <qilsys::ForeignUnit U>
  TScanStringCore& skipAnyNotOf(const U* set) {
    return skipAnyNotOf(qilsys::TForeignText(set).data());
  }
  template <qilsys::ForeignUnit U>
  TScanStringCore& readAnyNotOf(TStringCore& out, const U* set) {
    return readAnyNotOf(out, qilsys::TForeignText(set).data());
  }
  /// "1", "0", "true", "false", "yes" or "no" in any case, even where a longer word begins so; raises for anything else.
  TScanStringCore& skipBool();
  TScanStringCore& readBool(bool& out);
  /// An integer as `TStringCore::leftIntegerLength` knows it; raises where there is none. As there, a bad base, and base
  /// 0 on the last unit of the text, raise `TStringCore::Exception`.
  TScanStringCore& skipInt(int base);
  /// A number as `TStringCore::leftDoubleLength` knows it; raises where there is none. At the end of the text it lets
  /// "+", "." and "1e" pass.
  TScanStringCore& skipFloat();
  /// The same, converted by `TStringCore::toFloat` or `toDouble`. What these refuse raises too, and then the cursor
  /// stands behind the token and `out` holds what the conversion gave.
  TScanStringCore& readFloat(float& out);
  TScanStringCore& readFloat(double& out);
  /// The rest of the line and its line feed, which is not delivered; a carriage return before it is.
  TScanStringCore& skipLine();
  TScanStringCore& readLine(TStringCore& out);
  /// One line end: CR, LF, CR LF or LF CR. Passes at the end of the text; raises for anything else.
  TScanStringCore& skipNewline();
  /// Units up to white space or the end.
  TScanStringCore& skipNonWhitespace();
  TScanStringCore& readNonWhitespace(TStringCore& out);
  /// White space by `TCType::isSpace`.
  TScanStringCore& skipWhitespace();
  /// At most `max` units, the rest of the text where `max` is negative.
  TScanStringCore& skipString(int max);
  TScanStringCore& readString(TStringCore& out, int max);
  /// Exactly this text; raises for anything else. Null is the empty text.
  TScanStringCore& skip(const TCodeUnit* text);
  template <qilsys::ForeignUnit U>
  TScanStringCore& skip(const U* text) {
    return skip(qilsys::TForeignText(text).data());
  }

 private:
  static int lengthAnyOf(const TCodeUnit* text, const TCodeUnit* set);
  static int lengthAnyNotOf(const TCodeUnit* text, const TCodeUnit* set);
  static int lengthBool(const TCodeUnit* text);
  static int lengthInt(const TCodeUnit* text, int base);
  static int lengthFloat(const TCodeUnit* text);
  static int lengthLine(const TCodeUnit* text);
  static int lengthNewline(const TCodeUnit* text);
  static int lengthNonWhitespace(const TCodeUnit* text);
  static int lengthWhitespace(const TCodeUnit* text);
  static int lengthString(const TCodeUnit* text, int max);

  void setForeignInput(const TForeignUnit* text);
  const TCodeUnit* rest() const;
  int indexBehind(int length) const;
  TScanStringCore& move(int length);
  TScanStringCore& deliver(TStringCore& out, int length);
  template <class Number>
  bool readNumber(Number& out, Number (TStringCore::*convert)(bool* ok) const);

  const TCodeUnit* m_input;
  std::int32_t m_index = 0;
  // Only where the input had to be converted.
  std::shared_ptr<const qilsys::TForeignText> m_converted;
};

/// A token that is not there.
class QILSYS_API TScanStringCore::Exception : public QuillonException {
 public:
  Exception(const TStringCore& message, const TError::ErrorInfo& info);
  Exception(const Exception& other);
  Exception(Exception&& other);
  Exception& operator=(const Exception& other);
  Exception& operator=(Exception&& other);
  ~Exception() override;

  Exception* Clone() const override;
  [[noreturn]] void Throw() const override;
};
