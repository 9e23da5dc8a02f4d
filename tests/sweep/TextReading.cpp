// What a text gives without a change: conversions, comparison, elements and code points.
#include <functional>

#include "qilsys/TStringHash.h"
#include "support/Literals.h"
#include "sweep/Texts.h"

namespace qilsys::test::sweep {
namespace {

using Text = TStringCore;
constexpr auto Ci = Text::CaseInsensitive;

constexpr char16_t Units[] = u" aB,\u00E9\r\nab,\U0001F600 and more than thirty-two units";
constexpr wchar_t Wide[] = L" Ab,\u00C9\r\nab,\U0001F600 and more than thirty-two units";

constexpr Row<Texts> Converting[] = {
    {"toStdString", [](Texts& t) { t.bytes = t.text.toStdString(); }, StandardResult},
    {"toStdU16String", [](Texts& t) { t.units = t.text.toStdU16String(); }, StandardResult},
    {"toStdWString", [](Texts& t) { t.wide = t.text.toStdWString(); }, StandardResult},
    {"toStdUString", [](Texts& t) { t.wide = t.text.toStdUString(); }, StandardResult},
    {"toLatin1", [](Texts& t) { t.bytes = t.text.toLatin1(&t.flag); }, StandardResult},
    {"toLatin9", [](Texts& t) { t.bytes = t.text.toLatin9(&t.flag); }, StandardResult},
    {"toLocal8Bit",
     [](Texts& t) { t.bytes = t.text.toLocal8Bit(); },
     {Raises::Standard, Left::Unchanged, NoConverter, Result::Another}},
    {"toWCharArray_Units", [](Texts& t) { t.position = t.other.toWCharArray(t.unitBuffer, 100); }},
    {"toWCharArray_Wide", [](Texts& t) { t.position = t.other.toWCharArray(t.wideBuffer, 100); }},
    {"toWCharVector", [](Texts& t) { t.elements = t.text.toWCharVector(); }, StandardResult},
    {"subStringSizeInCodePoints", [](Texts& t) { t.position = t.text.subStringSizeInCodePoints(2, -1); }},
    {"subStringSizeInCodeUnits", [](Texts& t) { t.position = t.text.subStringSizeInCodeUnits(2, 8); }},
    {"Hash", [](Texts& t) { t.flag = std::hash<Text>()(t.text) != 0; }},
};

constexpr Row<Texts> Elements[] = {
    {"length_Units", [](Texts& t) { t.position = Text::length(Units); }},
    {"length_Wide", [](Texts& t) { t.position = Text::length(Wide); }},
    {"lengthInBytes", [](Texts& t) { t.position = t.text.lengthInBytes(); }},
    {"lengthInBytes_Units", [](Texts& t) { t.position = Text::lengthInBytes(Units); }},
    {"lengthInBytes_Wide", [](Texts& t) { t.position = Text::lengthInBytes(Wide); }},
    {"isShared", [](Texts& t) { t.flag = t.text.isShared(); }},
    {"at", [](Texts& t) { t.position = t.text.at(3); }},
    {"ElementOfAConst", [](Texts& t) { t.position = std::as_const(t.text)[3]; }},
    {"hasBOM", [](Texts& t) { t.flag = t.text.hasBOM(); }},
    {"codepoint_cbegin", [](Texts& t) { t.position = t.text.codepoint_cbegin().codeUnitIndex; }},
    {"codepoint_cend", [](Texts& t) { t.position = t.text.codepoint_cend().codeUnitIndex; }},
    {"createFromIndex", [](Texts& t) { t.position = t.text.createFromIndex(2).codePointIndex; }},
    {"Iterator_Forward",
     [](Texts& t) {
       for (auto at = t.text.codepoint_cbegin(); at != t.text.codepoint_cend(); ++at) t.number += *at;
     }},
    {"Iterator_Backward",
     [](Texts& t) {
       for (auto at = t.text.codepoint_cend(); at.codeUnitIndex != 0;) t.number += *--at;
     }},
    {"Iterator_Leap", [](Texts& t) { t.position = (t.text.codepoint_cbegin() + 5 - 2).codeUnitIndex; }},
};

constexpr Row<Texts> Comparing[] = {
    {"compare_String", [](Texts& t) { t.position = t.text.compare(t.other); }},
    {"compare_StringFolded", [](Texts& t) { t.position = t.text.compare(t.peer.toUpper(), Ci); }},
    {"compare_Units", [](Texts& t) { t.position = t.text.compare(Units); }},
    {"compare_Wide", [](Texts& t) { t.position = t.text.compare(Wide); }},
    {"compare_WideFolded", [](Texts& t) { t.position = t.text.compare(Wide, Ci); }},
    {"compare_TwoUnits", [](Texts& t) { t.position = Text::compare(Units, Units, Ci); }},
    {"compare_TwoWide", [](Texts& t) { t.position = Text::compare(Wide, Wide); }},
    {"compare_WideWithUnits", [](Texts& t) { t.position = Text::compare(Wide, Units, Ci); }},
    {"compareN_Units", [](Texts& t) { t.position = Text::compareN(Units, Units, 40, Ci); }},
    {"compareN_Wide", [](Texts& t) { t.position = Text::compareN(Wide, Units, 40, Ci); }},
    {"Equal", [](Texts& t) { t.flag = t.text == t.peer; }},
    {"NotEqual", [](Texts& t) { t.flag = t.text != t.peer; }},
    {"Less", [](Texts& t) { t.flag = t.text < t.other; }},
    {"LessOrEqual", [](Texts& t) { t.flag = t.text <= t.other; }},
    {"Greater", [](Texts& t) { t.flag = t.text > t.other; }},
    {"GreaterOrEqual", [](Texts& t) { t.flag = t.text >= t.other; }},
    {"Equal_Units", [](Texts& t) { t.flag = t.text == QILSYS_UNITS("ab"); }},
    {"Less_Units", [](Texts& t) { t.flag = t.text < QILSYS_UNITS("ab"); }},
    {"UnitsEqual", [](Texts& t) { t.flag = QILSYS_UNITS("ab") == t.text; }},
    {"UnitsLess", [](Texts& t) { t.flag = QILSYS_UNITS("ab") < t.text; }},
    {"Equal_Foreign", [](Texts& t) { t.flag = t.text == QILSYS_FOREIGN("ab and more than thirty-two units of text"); }},
    {"Less_Foreign", [](Texts& t) { t.flag = t.text < QILSYS_FOREIGN("ab and more than thirty-two units of text"); }},
    {"ForeignEqual", [](Texts& t) { t.flag = QILSYS_FOREIGN("ab and more than thirty-two units of text") == t.text; }},
    {"ForeignGreater", [](Texts& t) { t.flag = QILSYS_FOREIGN("ab and more than thirty-two units of text") > t.text; }},
    {"Equal_OneUnit", [](Texts& t) { t.flag = t.text == QILSYS_UNITS(' '); }},
    {"Less_OneUnit", [](Texts& t) { t.flag = t.text < QILSYS_UNITS('b'); }},
    {"OneUnitLess", [](Texts& t) { t.flag = QILSYS_UNITS('b') < t.text; }},
    {"OneForeignEqual", [](Texts& t) { t.flag = QILSYS_FOREIGN(' ') == t.text; }},
};

}  // namespace

void AddTextReading(std::vector<Operation>& operations) {
  AddRows<Texts>(operations, Converting);
  AddRows<Texts>(operations, Elements);
  AddRows<Texts>(operations, Comparing);
}

}  // namespace qilsys::test::sweep
