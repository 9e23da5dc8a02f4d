// Texts made from other texts, from other encodings, from units and from numbers.
#include <utility>

#include "support/Literals.h"
#include "sweep/Texts.h"

namespace qilsys::test::sweep {
namespace {

using Text = TStringCore;

constexpr char Narrow[] = "caf\xC3\xA9 and more than fourteen units";
constexpr char Latin[] = "caf\xE9 and more than fourteen units";
constexpr char32_t Points[] = U"caf\u00E9 \U0001F600 and more than fourteen units";
constexpr char16_t Units[] = u"caf\u00E9 \U0001F600 and more than thirty-two units of text";
constexpr wchar_t Wide[] = L"caf\u00E9 \U0001F600 and more than thirty-two units of text";

constexpr Row<Texts> Making[] = {
    {"TString_Default", [](Texts& t) { t.made = Text(); }},
    {"TString_Copy", [](Texts& t) { t.made = Text(t.text); }},
    {"TString_Move", [](Texts& t) { t.made = Text(std::move(t.text)); }},
    {"TString_Units", [](Texts& t) { t.made = Text(Units); }},
    {"TString_UnitsOfALength", [](Texts& t) { t.made = Text(Units, 20); }},
    {"TString_Wide", [](Texts& t) { t.made = Text(Wide); }},
    {"TString_WideOfALength", [](Texts& t) { t.made = Text(Wide, 40); }},
    {"TString_Utf8", [](Texts& t) { t.made = Text(Narrow); }},
    {"TString_Utf8OfALength", [](Texts& t) { t.made = Text(t.utf8.data(), static_cast<int>(t.utf8.size())); }},
    {"TString_UnitRepeated", [](Texts& t) { t.made = Text(u'x', 30); }},
    {"TString_WideRepeated", [](Texts& t) { t.made = Text(L'x', 30); }},
    {"TString_WideRepeatedOften", [](Texts& t) { t.made = Text(L'\u00E9', 900); }},
    {"TString_CharRepeated", [](Texts& t) { t.made = Text('x', 30); }},
    {"TString_ForeignText",
     [](Texts& t) { t.made = Text(TForeignText(QILSYS_FOREIGN("of more than thirty-two elements, so on the heap"))); }},
    {"Assign_Copy", [](Texts& t) { t.text = t.other; }},
    {"Assign_CopyOfASharer", [](Texts& t) { t.text = t.peer; }},
    {"Assign_Move", [](Texts& t) { t.text = std::move(t.other); }},
    {"Assign_OneUnit", [](Texts& t) { t.text = u'x'; }},
    {"Assign_OneWide", [](Texts& t) { t.text = L'x'; }},
    {"assign_String", [](Texts& t) { t.text.assign(t.other); }},
    {"assign_ShortString", [](Texts& t) { t.text.assign(t.list[1]); }},
    {"assign_Units", [](Texts& t) { t.text.assign(Units); }},
    {"assign_OwnUnits", [](Texts& t) { t.text.assign(t.text.constData() + 2, 3); }},
    {"assign_ManyUnits", [](Texts& t) { t.text.assign(t.longUnits.data(), static_cast<int>(t.longUnits.size())); }},
    {"assign_Wide", [](Texts& t) { t.text.assign(Wide); }},
    {"assign_ManyWide", [](Texts& t) { t.text.assign(t.longWide.data(), static_cast<int>(t.longWide.size())); }},
    {"assign_Utf8", [](Texts& t) { t.text.assign(Narrow); }},
    {"assign_UnitRepeated", [](Texts& t) { t.text.assign(u'x', 900); }},
    {"assign_WideRepeated", [](Texts& t) { t.text.assign(L'x', 900); }},
    {"assign_CharRepeated", [](Texts& t) { t.text.assign('x', 900); }},
    {"set_Units", [](Texts& t) { t.text.set(Units); }},
    {"set_Wide", [](Texts& t) { t.text.set(Wide); }},
    {"swap", [](Texts& t) { t.text.swap(t.other); }},
    {"swap_Free", [](Texts& t) { swap(t.text, t.other); }},
    {"fromUtf8", [](Texts& t) { t.made = Text::fromUtf8(Narrow); }},
    {"fromStdString", [](Texts& t) { t.made = Text::fromStdString(t.utf8); }},
    {"fromUtf16_Units", [](Texts& t) { t.made = Text::fromUtf16(Units); }},
    {"fromUtf16_Wide", [](Texts& t) { t.made = Text::fromUtf16(Wide); }},
    {"fromWChar_Units", [](Texts& t) { t.made = Text::fromWChar(Units); }},
    {"fromWChar_Wide", [](Texts& t) { t.made = Text::fromWChar(Wide); }},
    {"fromStdWString", [](Texts& t) { t.made = Text::fromStdWString(t.longWide); }},
    {"fromStdUString", [](Texts& t) { t.made = Text::fromStdUString(t.longWide); }},
    {"fromStdU16String", [](Texts& t) { t.made = Text::fromStdU16String(t.longUnits); }},
    {"fromUtf32", [](Texts& t) { t.made = Text::fromUtf32(Points); }},
    {"fromLatin1", [](Texts& t) { t.made = Text::fromLatin1(Latin); }},
    {"fromLatin9", [](Texts& t) { t.made = Text::fromLatin9(Latin); }},
    {"fromLocal8Bit",
     [](Texts& t) { t.made = Text::fromLocal8Bit(Narrow); },
     {Raises::Own, Left::Unchanged, NoConverter, Result::Another}},
};

constexpr Row<Texts> Storage[] = {
    {"reserve", [](Texts& t) { t.text.reserve(2000); }},
    {"reserve_Less", [](Texts& t) { t.text.reserve(3); }},
    {"resize_Up", [](Texts& t) { t.text.resize(t.text.length() + 100), t.text.resize(t.text.length() - 100); }},
    {"resize_Down", [](Texts& t) { t.text.resize(3); }},
    {"squeeze", [](Texts& t) { t.text.squeeze(); }},
    {"squeeze_AfterReserve", [](Texts& t) { t.text.reserve(2000), t.text.squeeze(); }},
    {"clear", [](Texts& t) { t.text.clear(); }},
    {"data_Detaches", [](Texts& t) { t.flag = t.text.data() != nullptr; }},
    {"begin_Detaches", [](Texts& t) { t.flag = t.text.begin() != nullptr; }},
    {"end_Detaches", [](Texts& t) { t.flag = t.text.end() != nullptr; }},
    {"front_Detaches", [](Texts& t) { t.text.front() = u'x'; }},
    {"back_Detaches", [](Texts& t) { t.text.back() = u'x'; }},
    {"rbegin_Detaches", [](Texts& t) { *t.text.rbegin() = u'x'; }},
    {"rend_Detaches", [](Texts& t) { t.flag = t.text.rend() != t.text.rbegin(); }},
    {"Element_OfAnInt", [](Texts& t) { t.text[2] = u'x'; }},
    {"Element_OfASize", [](Texts& t) { t.text[std::size_t{2}] = u'x'; }},
    {"Element_OfALong", [](Texts& t) { t.text[2L] = u'x'; }},
};

constexpr Row<Texts> Numbers[] = {
    {"number_Short", [](Texts& t) { t.made = Text::number(short{-12}, 10, 30); }},
    {"number_Int", [](Texts& t) { t.made = Text::number(-12, 2, 40); }},
    {"number_Long", [](Texts& t) { t.made = Text::number(-123456789L); }},
    {"number_LongLong", [](Texts& t) { t.made = Text::number(-1234567890123456789LL); }},
    {"number_UShort", [](Texts& t) { t.made = Text::number(static_cast<unsigned short>(12), 10, 30); }},
    {"number_UInt", [](Texts& t) { t.made = Text::number(123456789U, 2); }},
    {"number_ULong", [](Texts& t) { t.made = Text::number(123456789UL, 3); }},
    {"number_ULongLong", [](Texts& t) { t.made = Text::number(1234567890123456789ULL); }},
    {"number_Base64", [](Texts& t) { t.made = Text::number(1234567890123456789ULL, 64, 20); }},
    {"number_FillUnit", [](Texts& t) { t.made = Text::number(12, 10, 40, u'*'); }},
    {"number_FillWide", [](Texts& t) { t.made = Text::number(12, 10, 40, L'*'); }},
    {"number_Double", [](Texts& t) { t.made = Text::number(1.0 / 3, 'g', 17); }},
    {"number_DoubleOfManyDigits", [](Texts& t) { t.made = Text::number(1e300 / 3, 'f', 300); }},
    {"number_DoubleDecimalForm", [](Texts& t) { t.made = Text::number(1e20 / 3, 'e', 20, true); }},
    {"setNum_Int", [](Texts& t) { t.text.setNum(1234567890, 2); }},
    {"setNum_Double", [](Texts& t) { t.text.setNum(1.0 / 3, 'e', 20); }},
    {"pointer", [](Texts& t) { t.made = Text::pointer(nullptr); }},
    {"toShort", [](Texts& t) { t.number = Text(u"12").toShort(&t.flag); }},
    {"toUShort", [](Texts& t) { t.number = Text(u"12").toUShort(&t.flag); }},
    {"toInt", [](Texts& t) { t.number = t.text.toInt(&t.flag); }},
    {"toUInt", [](Texts& t) { t.number = t.text.toUInt(&t.flag, 36); }},
    {"toLong", [](Texts& t) { t.number = static_cast<double>(t.text.toLong(&t.flag)); }},
    {"toULong", [](Texts& t) { t.number = static_cast<double>(t.text.toULong(&t.flag, 16)); }},
    {"toLongLong", [](Texts& t) { t.number = static_cast<double>(t.text.toLongLong(&t.flag)); }},
    {"toULongLong", [](Texts& t) { t.number = static_cast<double>(t.text.toULongLong(&t.flag)); }},
    {"toDouble", [](Texts& t) { t.number = Text(u"1.5").toDouble(&t.flag); }},
    {"toDouble_LongText",
     [](Texts& t) {
       t.number = Text(u"3.14159265358979323846264338327950288419716939937510582097").toDouble(&t.flag);
     }},
    {"toDouble_Infinity", [](Texts& t) { t.flag = Text(u"-INFINITY").toDouble() < 0; }},
    {"toDouble_NoNumber", [](Texts& t) { t.number = t.text.toDouble(&t.flag); }},
    {"toFloat", [](Texts& t) { t.number = static_cast<double>(Text(u"0.1").toFloat(&t.flag)); }},
    {"leftIntegerLength", [](Texts& t) { t.position = t.text.leftIntegerLength(); }},
    {"leftIntegerLength_Units", [](Texts& t) { t.position = Text::leftIntegerLength(u"12 ab", 5); }},
    {"leftIntegerLength_Wide",
     [](Texts& t) { t.position = Text::leftIntegerLength(L"1234567890123456789012345678901234567890 ab", 43); }},
    {"leftDoubleLength", [](Texts& t) { t.position = t.text.leftDoubleLength(); }},
    {"leftDoubleLength_Units", [](Texts& t) { t.position = Text::leftDoubleLength(u"1.5e3 ab"); }},
    {"leftDoubleLength_Wide",
     [](Texts& t) { t.position = Text::leftDoubleLength(L"1234567890123456789012345678901234567890.5 ab"); }},
};

}  // namespace

void AddTextMaking(std::vector<Operation>& operations) {
  AddRows<Texts>(operations, Making);
  AddRows<Texts>(operations, Storage);
  AddRows<Texts>(operations, Numbers);
}

}  // namespace qilsys::test::sweep
