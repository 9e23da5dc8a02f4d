// Templates of messages: the scan for markers, the parameters, and the expansion.
#include "qilsys/TFormatStringCore.h"

#include <algorithm>
#include <cstring>
#include <iterator>
#include <utility>

#include "qilsys/TCType.h"
#include "units/UnitScan.h"

namespace {

constexpr int HighestNumber = 99;

TError::ErrorInfo FormatError(unsigned int code, const char* codeName) {
  return {QuillonError::MakeError(code, codeName), TError::Client, grpc::StatusCode::UNKNOWN};
}

[[noreturn]] void Fail(const TStringCore& message, unsigned int code, const char* codeName) {
  throw TFormatStringCore::Exception(message, FormatError(code, codeName));
}

[[noreturn]] void FailBelowOne() {
  Fail("Invalid marker number <= 0 in format string.", 0x274BF5E7, "QuillonException_AutoGen_0x274BF5E7");
}

[[noreturn]] void FailBelowOneAtEnd() {
  Fail("Format string ends with an invalid marker number <= 0.", 0xA4DB9BBE, "QuillonException_AutoGen_0xA4DB9BBE");
}

[[noreturn]] void FailIncomplete() {
  Fail("Format string ends with an incomplete marker.", 0xA33EDF83, "QuillonException_AutoGen_0xA33EDF83");
}

// The value that a unit adds to a number. Digits beyond ASCII count by their unit too, far above any valid number.
int DigitValue(TCodeUnit unit) { return unit - u'0'; }

// As TCType::isDigit, without a call for what templates hold.
bool IsDigit(TCodeUnit unit) { return unit < 0x80 ? unit >= u'0' && unit <= u'9' : TCType::isDigit(unit); }

int FirstDigit(TCodeUnit unit) {
  if (!IsDigit(unit)) {
    Fail("Invalid numberless marker in format string.", 0xF7AF5E37, "QuillonException_AutoGen_0xF7AF5E37");
  }
  if (unit == u'0') {
    Fail("Leading zero in marker number in format string.", 0xB3668D59, "QuillonException_AutoGen_0xB3668D59");
  }
  return DigitValue(unit);
}

int NextDigit(int number, TCodeUnit unit) {
  const int next = number * 10 + DigitValue(unit);
  if (next > HighestNumber) {
    Fail("Invalid marker number > 99 in format string.", 0xCA249FEE, "QuillonException_AutoGen_0xCA249FEE");
  }
  return next;
}

// Makes a text where it is to stand. A text that is moved there right after it was made unit by unit makes the
// processor wait for its own stores, which costs more than making it.
template <class Make>
struct InPlace {
  const Make& make;
  operator TStringCore() const { return make(); }
};

qilsys::units::IsUnit<qilsys::units::UnitLanes> IsPercent(const TStringCore& format) {
  return {format.constData(), u'%'};
}

// How many markers a template can have: each holds one "%" at least.
std::size_t MostMarkers(const TStringCore& format) {
  return static_cast<std::size_t>(qilsys::units::scanCount(format.length(), IsPercent(format)));
}

TCodeUnit* Copy(TCodeUnit* to, const TCodeUnit* from, int length) {
  std::memcpy(to, from, static_cast<std::size_t>(length) * sizeof(TCodeUnit));
  return to + length;
}

}  // namespace

TFormatStringCore::Exception::Exception(const TStringCore& message, const TError::ErrorInfo& info)
    : QuillonException(message, info) {}
TFormatStringCore::Exception::Exception(const Exception&) = default;
TFormatStringCore::Exception& TFormatStringCore::Exception::operator=(const Exception&) = default;
TFormatStringCore::Exception::~Exception() = default;

TFormatStringCore::TFormatStringCore(const TStringCore& format) : m_format(format) {
  scanForMarkers();
  makeRoomForParameters();
}
TFormatStringCore::TFormatStringCore(const TCodeUnit* format) : m_format(format) {
  scanForMarkers();
  makeRoomForParameters();
}
TFormatStringCore::TFormatStringCore(const TFormatStringCore&) = default;
TFormatStringCore::~TFormatStringCore() = default;

TFormatStringCore& TFormatStringCore::operator=(const TFormatStringCore& other) {
  TFormatStringCore copy(other);
  std::swap(m_highestMarker, copy.m_highestMarker);
  m_markers.swap(copy.m_markers);
  m_parameters.swap(copy.m_parameters);
  m_format.swap(copy.m_format);
  return *this;
}

TFormatStringCore& TFormatStringCore::operator=(const TStringCore& format) {
  std::vector<Marker> markers;
  markers.reserve(MostMarkers(format));
  m_markers.swap(markers);
  const TStringCore oldFormat = std::exchange(m_format, format);
  const int oldHighestMarker = m_highestMarker;
  scanForMarkers();
  try {
    makeRoomForParameters();
  } catch (...) {
    m_markers.swap(markers);
    m_format = oldFormat;
    m_highestMarker = oldHighestMarker;
    throw;
  }
  return *this;
}

TFormatStringCore& TFormatStringCore::operator=(const TCodeUnit* format) { return *this = TStringCore(format); }

void TFormatStringCore::scanForMarkers() {
  m_markers.clear();
  m_highestMarker = 0;
  m_markers.reserve(MostMarkers(m_format));
  int next = 0;
  qilsys::units::scanEach(m_format.length(), IsPercent(m_format), [&](int position) {
    if (position >= next) next = scanMarker(position);
  });
}

// So that the calls of `arg` for this template make the list grow no more.
void TFormatStringCore::makeRoomForParameters() { m_parameters.reserve(static_cast<std::size_t>(m_highestMarker)); }

// Adds the marker that begins at `position` and gives the index behind it.
int TFormatStringCore::scanMarker(int position) {
  const TCodeUnit* const format = m_format.constData();
  const int end = m_format.length();
  int at = position + 1;
  if (at == end) FailIncomplete();
  if (format[at] == u'%') {
    m_markers.push_back({position, 2, 0});
    return at + 1;
  }
  int number = FirstDigit(format[at++]);
  while (at < end && IsDigit(format[at])) number = NextDigit(number, format[at++]);
  if (number <= 0) at == end ? FailBelowOneAtEnd() : FailBelowOne();
  m_highestMarker = std::max(m_highestMarker, number);
  m_markers.push_back({position, at - position, number});
  return at;
}

TFormatStringCore& TFormatStringCore::append(std::initializer_list<const TStringCore*> texts) {
  const std::size_t count = m_parameters.size() + texts.size();
  if (count > m_parameters.capacity()) m_parameters.reserve(std::max(count, 2 * m_parameters.capacity()));
  for (const TStringCore* text : texts) m_parameters.push_back(*text);
  return *this;
}

TFormatStringCore& TFormatStringCore::arg(const TStringCore& a, int fieldWidth, TCodeUnit fill) {
  if (fieldWidth == 0) {
    m_parameters.push_back(a);
    return *this;
  }
  return pad(a, fieldWidth, fill);
}

TFormatStringCore& TFormatStringCore::pad(const TStringCore& a, int fieldWidth, TCodeUnit fill) {
  if (fieldWidth > 0) {
    m_parameters.push_back(a.rightJustified(fieldWidth, fill, false));
  } else {
    // The lowest width has no positive counterpart; its negation wraps to itself and pads nothing.
    m_parameters.push_back(a.leftJustified(static_cast<int>(0U - static_cast<unsigned>(fieldWidth)), fill, false));
  }
  return *this;
}

template <class Make>
TFormatStringCore& TFormatStringCore::appendMade(const Make& make, int fieldWidth, TCodeUnit fill) {
  if (fieldWidth != 0) return pad(make(), fieldWidth, fill);
  m_parameters.emplace_back(InPlace<Make>{make});
  return *this;
}

TFormatStringCore& TFormatStringCore::arg(short a, int fieldWidth, int base, TCodeUnit fill) {
  return appendMade([=] { return TStringCore::number(a, base); }, fieldWidth, fill);
}
TFormatStringCore& TFormatStringCore::arg(unsigned short a, int fieldWidth, int base, TCodeUnit fill) {
  return appendMade([=] { return TStringCore::number(a, base); }, fieldWidth, fill);
}
TFormatStringCore& TFormatStringCore::arg(int a, int fieldWidth, int base, TCodeUnit fill) {
  return appendMade([=] { return TStringCore::number(a, base); }, fieldWidth, fill);
}
TFormatStringCore& TFormatStringCore::arg(unsigned int a, int fieldWidth, int base, TCodeUnit fill) {
  return appendMade([=] { return TStringCore::number(a, base); }, fieldWidth, fill);
}
TFormatStringCore& TFormatStringCore::arg(long a, int fieldWidth, int base, TCodeUnit fill) {
  return appendMade([=] { return TStringCore::number(a, base); }, fieldWidth, fill);
}
TFormatStringCore& TFormatStringCore::arg(unsigned long a, int fieldWidth, int base, TCodeUnit fill) {
  return appendMade([=] { return TStringCore::number(a, base); }, fieldWidth, fill);
}
TFormatStringCore& TFormatStringCore::arg(long long a, int fieldWidth, int base, TCodeUnit fill) {
  return appendMade([=] { return TStringCore::number(a, base); }, fieldWidth, fill);
}
TFormatStringCore& TFormatStringCore::arg(unsigned long long a, int fieldWidth, int base, TCodeUnit fill) {
  return appendMade([=] { return TStringCore::number(a, base); }, fieldWidth, fill);
}

TFormatStringCore& TFormatStringCore::arg(double a, int fieldWidth, char format, int precision, TCodeUnit fill,
                                          bool decimalForm) {
  return appendMade([=] { return TStringCore::number(a, format, precision, decimalForm); }, fieldWidth, fill);
}

TFormatStringCore& TFormatStringCore::arg(TCodeUnit a, int fieldWidth, TCodeUnit fill) {
  return appendMade([=] { return TStringCore(&a, 1); }, fieldWidth, fill);
}

TFormatStringCore& TFormatStringCore::arg(const std::vector<TStringCore>& all) {
  m_parameters = all;
  return *this;
}

TStringCore TFormatStringCore::result() const {
  requireParameters();
  const int length = resultLength();
  TStringCore text;
  text.reserve(length);
  text.resize(length);
  expandInto(text.data());
  return text;
}

TFormatStringCore::operator TStringCore() const { return result(); }

void TFormatStringCore::requireParameters() const {
  if (std::ssize(m_parameters) >= m_highestMarker) return;
  TFormatStringCore message(u"Insufficient parameters to format string (have %1, need %2: format string = \"%3\")");
  message.arg(static_cast<unsigned long long>(m_parameters.size())).arg(m_highestMarker).arg(m_format);
  Fail(message.result(), 0x0E2B86FB, "QuillonException_AutoGen_0x0E2B86FB");
}

// A length beyond the limit of a string comes out as one that no string takes, so that the sum never wraps.
int TFormatStringCore::resultLength() const {
  long long length = m_format.length();
  for (const Marker& marker : m_markers) {
    length += (marker.number == 0 ? 1 : parameter(marker).length()) - marker.length;
  }
  return static_cast<int>(std::min<long long>(length, TStringCore::MaxStringCapacity));
}

const TStringCore& TFormatStringCore::parameter(const Marker& marker) const {
  return m_parameters[static_cast<std::size_t>(marker.number - 1)];
}

void TFormatStringCore::expandInto(TCodeUnit* target) const {
  const TCodeUnit* const format = m_format.constData();
  int position = 0;
  for (const Marker& marker : m_markers) {
    target = Copy(target, format + position, marker.position - position);
    if (marker.number == 0) {
      *target++ = u'%';
    } else {
      target = Copy(target, parameter(marker).constData(), parameter(marker).length());
    }
    position = marker.position + marker.length;
  }
  Copy(target, format + position, m_format.length() - position);
}

TStringCore TFormatStringCore::formatString() const { return m_format; }

void TFormatStringCore::clearParms() { m_parameters.clear(); }

TFormatStringCore& TFormatStringCore::args() { return *this; }
