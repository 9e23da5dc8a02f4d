/// Message templates with numbered markers.
///
///     TFormatStringCore(u"%1 of %2 files").arg(3).arg(total).result()
///
/// A template holds text, markers "%1" to "%99", and "%%" for one percent sign. It is read once, when it is set, and a
/// bad one fails there. A marker may stand any number of times, in any order, or be left out; a parameter's own text is
/// never read as a template.
#pragma once

#include <concepts>
#include <cstdint>
#include <initializer_list>
#include <type_traits>
#include <vector>

#include "qilsys/Export.h"
#include "qilsys/QuillonException.h"
#include "qilsys/TCodeUnit.h"
#include "qilsys/TError.h"
#include "qilsys/TForeignText.h"
#include "qilsys/TStringCore.h"

namespace qilsys {

/// What a message shows in its generic form, whatever it converts to: a path.
template <class T>
concept ShownGenerically = requires(const T& value) {
  { value.GenericString() } -> std::same_as<TStringCore>;
};

}  // namespace qilsys

/// A template and its parameters. A value: `result` and `formatString` may run at once on one object, everything else
/// needs exclusive use.
class QILSYS_API TFormatStringCore {
 public:
  class Exception;

  /// Sets the template. Every constructor and assignment from text raises `Exception` for a bad template. They are
  /// explicit, so that a literal handed to an exception is plain text and never a template by accident.
  explicit TFormatStringCore(const TStringCore& format);
  /// The same with zero-terminated text; null counts as empty.
  explicit TFormatStringCore(const TCodeUnit* format);
  template <qilsys::ForeignUnit U>
  explicit TFormatStringCore(const U* format) : TFormatStringCore(TStringCore(format)) {}
  /// The same with zero-terminated UTF-8; null counts as empty.
  template <qilsys::NarrowUnit C>
  explicit TFormatStringCore(const C* format) : TFormatStringCore(TStringCore(format)) {}
  TFormatStringCore(const TFormatStringCore&);
  ~TFormatStringCore();

  /// Here as everywhere below, an object is as it was where memory runs out, be it a string's (`TStringCore::Exception`)
  /// or that of a list (std::bad_alloc).
  TFormatStringCore& operator=(const TFormatStringCore&);
  /// Replaces the template; parameters already given stay. After a bad template the object must not be used.
  TFormatStringCore& operator=(const TStringCore& format);
  TFormatStringCore& operator=(const TCodeUnit* format);
  template <qilsys::ForeignUnit U>
  TFormatStringCore& operator=(const U* format) {
    return *this = TStringCore(format);
  }

  /// Appends the next parameter. A text shorter than `fieldWidth` is padded with `fill` on its left, for a negative
  /// `fieldWidth` on its right; a longer one is never cut.
  TFormatStringCore& arg(const TStringCore& a, int fieldWidth = 0, TCodeUnit fill = u' ');
  /// Appends a number, converted by `TStringCore::number` in `base` and then padded as text: a sign stands inside the
  /// fill, so -42 in width 5 with fill "0" is "00-42". Raises `TStringCore::Exception` for a bad base.
  TFormatStringCore& arg(short a, int fieldWidth = 0, int base = 10, TCodeUnit fill = u' ');
  TFormatStringCore& arg(unsigned short a, int fieldWidth = 0, int base = 10, TCodeUnit fill = u' ');
  TFormatStringCore& arg(int a, int fieldWidth = 0, int base = 10, TCodeUnit fill = u' ');
  TFormatStringCore& arg(unsigned int a, int fieldWidth = 0, int base = 10, TCodeUnit fill = u' ');
  TFormatStringCore& arg(long a, int fieldWidth = 0, int base = 10, TCodeUnit fill = u' ');
  TFormatStringCore& arg(unsigned long a, int fieldWidth = 0, int base = 10, TCodeUnit fill = u' ');
  TFormatStringCore& arg(long long a, int fieldWidth = 0, int base = 10, TCodeUnit fill = u' ');
  TFormatStringCore& arg(unsigned long long a, int fieldWidth = 0, int base = 10, TCodeUnit fill = u' ');
  /// Appends a floating-point number by `TStringCore::number(a, format, precision, decimalForm)`, padded as text.
  TFormatStringCore& arg(double a, int fieldWidth = 0, char format = 'g', int precision = 6, TCodeUnit fill = u' ',
                         bool decimalForm = false);
  /// Appends one character as a text of its own.
  TFormatStringCore& arg(TCodeUnit a, int fieldWidth = 0, TCodeUnit fill = u' ');

  /// Appends a path, as text in its generic form.
  template <qilsys::ShownGenerically P>
  TFormatStringCore& arg(const P& a, int fieldWidth = 0) {
    return arg(a.GenericString(), fieldWidth);
  }
  template <qilsys::ShownGenerically P, std::integral Fill>
  TFormatStringCore& arg(const P& a, int fieldWidth, Fill fill) {
    if constexpr (qilsys::ForeignUnit<Fill>) {
      return arg(a.GenericString(), fieldWidth, fill);
    } else {
      return arg(a.GenericString(), fieldWidth, static_cast<TCodeUnit>(fill));
    }
  }

  /// Appends two to ten texts in order, unpadded; all of them or none.
  template <class... Texts>
    requires(sizeof...(Texts) >= 2 && sizeof...(Texts) <= 10 && (std::convertible_to<const Texts&, TStringCore> && ...))
  TFormatStringCore& arg(const Texts&... texts) {
    // A text that has to be converted lives to the end of the call.
    return append({&static_cast<const TStringCore&>(Shown(texts))...});
  }
  /// Replaces all parameters by these. The other forms append.
  TFormatStringCore& arg(const std::vector<TStringCore>& all);

  /// The forms above for a character or a fill of the other unit type. A fill that needs two units becomes U+FFFD.
  template <qilsys::ForeignUnit U>
  TFormatStringCore& arg(U a, int fieldWidth = 0) {
    return arg(a, fieldWidth, TCodeUnit{u' '});
  }
  template <qilsys::ForeignUnit U, class Fill>
    requires(qilsys::ForeignUnit<Fill> || std::same_as<Fill, TCodeUnit>)
  TFormatStringCore& arg(U a, int fieldWidth, Fill fill) {
    const qilsys::TForeignText text(a);
    return arg(TStringCore(text.data(), text.length()), fieldWidth, fill);
  }
  template <qilsys::ForeignUnit U>
  TFormatStringCore& arg(TCodeUnit a, int fieldWidth, U fill) {
    return arg(a, fieldWidth, qilsys::ForeignToUnit(fill));
  }
  template <qilsys::ForeignUnit U>
  TFormatStringCore& arg(const TStringCore& a, int fieldWidth, U fill) {
    return arg(a, fieldWidth, qilsys::ForeignToUnit(fill));
  }
  template <std::integral T, qilsys::ForeignUnit U>
  TFormatStringCore& arg(T a, int fieldWidth, int base, U fill) {
    return arg(a, fieldWidth, base, qilsys::ForeignToUnit(fill));
  }
  template <qilsys::ForeignUnit U>
  TFormatStringCore& arg(double a, int fieldWidth, char format, int precision, U fill, bool decimalForm = false) {
    return arg(a, fieldWidth, format, precision, qilsys::ForeignToUnit(fill), decimalForm);
  }

  /// The template with every marker replaced, made with one allocation at most. Raises `Exception` if a marker has no
  /// parameter; parameters without a marker are ignored.
  TStringCore result() const;
  operator TStringCore() const;

  /// The template as it was set.
  TStringCore formatString() const;
  /// Drops the parameters, so that the template can be filled again.
  void clearParms();
  /// The object itself, for a chain of `arg` to start from.
  TFormatStringCore& args();

 private:
  // One marker of the template; number 0 is the percent sign that "%%" stands for.
  struct Marker {
    std::int32_t position;
    std::int32_t length;
    std::int32_t number;
  };

  template <class T>
  static const T& Shown(const T& text) {
    return text;
  }
  template <qilsys::ShownGenerically P>
  static TStringCore Shown(const P& path) {
    return path.GenericString();
  }

  void scanForMarkers();
  int scanMarker(int position);
  void makeRoomForParameters();
  TFormatStringCore& append(std::initializer_list<const TStringCore*> texts);
  TFormatStringCore& pad(const TStringCore& a, int fieldWidth, TCodeUnit fill);
  template <class Make>
  TFormatStringCore& appendMade(const Make& make, int fieldWidth, TCodeUnit fill);
  void requireParameters() const;
  int resultLength() const;
  const TStringCore& parameter(const Marker& marker) const;
  void expandInto(TCodeUnit* target) const;

  std::int32_t m_highestMarker = 0;
  std::vector<Marker> m_markers;
  std::vector<TStringCore> m_parameters;
  TStringCore m_format;
};

/// A bad template, or too few parameters for it. `Clone` and `Throw` are those of QuillonException and yield a plain
/// QuillonException.
class QILSYS_API TFormatStringCore::Exception : public QuillonException {
 public:
  Exception(const TStringCore& message, const TError::ErrorInfo& info);
  Exception(const Exception&);
  Exception& operator=(const Exception&);
  ~Exception() override;
};
