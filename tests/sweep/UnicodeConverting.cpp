// Whole buffers measured and converted.
#include "qilsys/KMP.h"
#include "qilsys/Unicode.h"
#include "support/Literals.h"
#include "sweep/Observed.h"
#include "sweep/Operation.h"
#include "sweep/Texts.h"

namespace qilsys::test::sweep {
namespace {

constexpr char Narrow[] = "caf\xC3\xA9 \xF0\x9F\x98\x80\r\nand more than thirty-two units of text";
constexpr char32_t Points[] = U"caf\u00E9 \U0001F600\r\nand more than thirty-two units of text";
constexpr char16_t Units[] = u"caf\u00E9 \U0001F600\r\nand more than thirty-two units of text";
constexpr wchar_t Wide[] = L"caf\u00E9 \U0001F600\r\nand more than thirty-two units of text";

// Where both unit types have 16 bits nothing is converted on the way.
constexpr Leave FromForeign{sizeof(TForeignUnit) > sizeof(TCodeUnit) ? Raises::Either : Raises::Standard,
                            Left::Unchanged, StandardResult.reason};

/// Targets of each kind, with room enough.
struct Buffers {
  explicit Buffers(Shape) {}
  std::string Observe() const {
    Observed seen;
    seen.Add(std::string(narrow)).Add(std::u32string(points)).Add(std::u16string(units)).Add(std::wstring(wide));
    return seen.Add(bytes).Add(units16).Add(wideText).Add(text).Add(length).AddAll(table).Bytes();
  }

  char narrow[200] = "one\r\ntwo";
  char32_t points[200] = U"";
  char16_t units[200] = u"one\r\ntwo, and more than stands inside a foreign text's own room";
  wchar_t wide[200] = L"one\r\ntwo, and more than stands inside a foreign text's own room";
  std::string bytes;
  std::u16string units16;
  std::wstring wideText;
  TStringCore text;
  std::vector<int> table;
  long long length = 0;
};

constexpr Row<Buffers> Measuring[] = {
    {"MeasureUtf8ToUtf16", [](Buffers& b) { b.length = Unicode::MeasureUtf8ToUtf16(Narrow); }},
    {"MeasureUtf8ToUtf32", [](Buffers& b) { b.length = Unicode::MeasureUtf8ToUtf32(Narrow); }},
    {"MeasureUtf32ToUtf8", [](Buffers& b) { b.length = Unicode::MeasureUtf32ToUtf8(Points); }},
    {"MeasureUtf32ToUtf16", [](Buffers& b) { b.length = Unicode::MeasureUtf32ToUtf16(Points); }},
    {"MeasureUtf8ToUtf8", [](Buffers& b) { b.length = Unicode::MeasureUtf8ToUtf8(Narrow); }},
    {"MeasureUtf16ToUtf8_Units", [](Buffers& b) { b.length = Unicode::MeasureUtf16ToUtf8(Units); }},
    {"MeasureUtf16ToUtf8_Wide", [](Buffers& b) { b.length = Unicode::MeasureUtf16ToUtf8(Wide); }},
    {"MeasureUtf16ToUtf32_Units", [](Buffers& b) { b.length = Unicode::MeasureUtf16ToUtf32(Units); }},
    {"MeasureUtf16ToUtf32_Wide", [](Buffers& b) { b.length = Unicode::MeasureUtf16ToUtf32(Wide); }},
    {"LengthInCodePoints_Units", [](Buffers& b) { b.length = Unicode::LengthInCodePoints(Units, 0, -1); }},
    {"LengthInCodePoints_Wide", [](Buffers& b) { b.length = Unicode::LengthInCodePoints(Wide, 0, -1); }},
    {"SubStringSizeInCodeUnits_Units",
     [](Buffers& b) { b.length = Unicode::SubStringSizeInCodeUnits(Units, 40, 2, 20); }},
    {"SubStringSizeInCodeUnits_Wide",
     [](Buffers& b) { b.length = Unicode::SubStringSizeInCodeUnits(Wide, 40, 2, 20); }},
};

constexpr Row<Buffers> Converting[] = {
    {"Utf8ToUtf16_Units", [](Buffers& b) { b.length = Unicode::Utf8ToUtf16(Narrow, b.units, 200); }},
    {"Utf8ToUtf16_Wide", [](Buffers& b) { b.length = Unicode::Utf8ToUtf16(Narrow, b.wide, 200); }},
    {"Utf32ToUtf16_Units", [](Buffers& b) { b.length = Unicode::Utf32ToUtf16(Points, b.units, 200); }},
    {"Utf32ToUtf16_Wide", [](Buffers& b) { b.length = Unicode::Utf32ToUtf16(Points, b.wide, 200); }},
    {"Utf16ToUtf8_Units", [](Buffers& b) { b.length = Unicode::Utf16ToUtf8(Units, b.narrow, 200); }},
    {"Utf16ToUtf8_Wide", [](Buffers& b) { b.length = Unicode::Utf16ToUtf8(Wide, b.narrow, 200); }},
    {"Utf16ToUtf32_Units", [](Buffers& b) { b.length = Unicode::Utf16ToUtf32(Units, b.points, 200); }},
    {"Utf16ToUtf32_Wide", [](Buffers& b) { b.length = Unicode::Utf16ToUtf32(Wide, b.points, 200); }},
    {"Utf8ToUtf32", [](Buffers& b) { b.length = Unicode::Utf8ToUtf32(Narrow, b.points, 200); }},
    {"Utf32ToUtf8", [](Buffers& b) { b.length = Unicode::Utf32ToUtf8(Points, b.narrow, 200); }},
    {"StringValidateCopy_Units", [](Buffers& b) { b.length = Unicode::StringValidateCopy(Units, -1, b.units, 200); }},
    {"StringValidateCopy_Wide", [](Buffers& b) { b.length = Unicode::StringValidateCopy(Wide, -1, b.wide, 200); }},
    {"StringValidateCopy_Mixed", [](Buffers& b) { b.length = Unicode::StringValidateCopy(Units, -1, b.wide, 200); }},
    {"Unicode_toWCharArray_Units",
     [](Buffers& b) { b.length = static_cast<long long>(Unicode::toWCharArray(Units, 40, b.units, 200)); }},
    {"Unicode_toWCharArray_Wide",
     [](Buffers& b) { b.length = static_cast<long long>(Unicode::toWCharArray(Wide, 40, b.wide, 200)); }},
    {"Unicode_toStdString_Units", [](Buffers& b) { b.bytes = Unicode::toStdString(Units, 40); }, StandardResult},
    {"Unicode_toStdString_Wide", [](Buffers& b) { b.bytes = Unicode::toStdString(Wide, 40); }, FromForeign},
    {"Unicode_toStdU16String_Units", [](Buffers& b) { b.units16 = Unicode::toStdU16String(Units, 40); },
     StandardResult},
    {"Unicode_toStdU16String_Wide", [](Buffers& b) { b.units16 = Unicode::toStdU16String(Wide, 40); }, FromForeign},
    {"Unicode_toStdWString_Units", [](Buffers& b) { b.wideText = Unicode::toStdWString(Units, 40); }, StandardResult},
    {"Unicode_toStdWString_Wide", [](Buffers& b) { b.wideText = Unicode::toStdWString(Wide, 40); }, FromForeign},
    {"normalizeLineEndings_Narrow",
     [](Buffers& b) { b.length = static_cast<long long>(Unicode::normalizeLineEndings(b.narrow)); }},
    {"normalizeLineEndings_Units",
     [](Buffers& b) { b.length = static_cast<long long>(Unicode::normalizeLineEndings(b.units)); }},
    {"normalizeLineEndings_Wide",
     [](Buffers& b) { b.length = static_cast<long long>(Unicode::normalizeLineEndings(b.wide)); }},
    {"Unicode_unixToDos_Units", [](Buffers& b) { b.text = Unicode::unixToDos(Units, 40); }},
    {"Unicode_unixToDos_Wide", [](Buffers& b) { b.text = Unicode::unixToDos(Wide, 40); }},
    {"KMP_StringTable",
     [](Buffers& b) {
       b.table = KMP::StringTable(QILSYS_UNITS("abcab"), 5, TStringOptions::CaseInsensitive).failureTable();
     },
     {Raises::Standard, Left::Unchanged, "the table is a container of the standard library by its interface"}},
};

}  // namespace

void AddUnicode(std::vector<Operation>& operations) {
  AddRows<Buffers>(operations, Measuring);
  AddRows<Buffers>(operations, Converting);
}

}  // namespace qilsys::test::sweep
