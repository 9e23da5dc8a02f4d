// Searches, which give indices and iterators.
#include "qilsys/KMP.h"
#include "support/Literals.h"
#include "sweep/Texts.h"

namespace qilsys::test::sweep {
namespace {

using Text = TStringCore;
constexpr auto Ci = Text::CaseInsensitive;

constexpr char16_t Units[] = u" aB,\u00E9\r\nab,\U0001F600 and more than thirty-two units ab";
constexpr wchar_t Wide[] = L" aB,\u00E9\r\nab,\U0001F600 and more than thirty-two units ab";
constexpr wchar_t WideNeedle[] = L"ab, of more than thirty-two units, so that it stands on the heap";
constexpr wchar_t WideSet[] = L"\u00E9\U0001F600, of more than thirty-two units of it";

constexpr Row<Texts> Finding[] = {
    {"findStr_Units", [](Texts& t) { t.position = Text::findStr(Units, 20, u"AB", 2, 0, Ci); }},
    {"findStr_Wide", [](Texts& t) { t.position = Text::findStr(Wide, 20, L"AB", 2, 0, Ci); }},
    {"findStr_Terminated", [](Texts& t) { t.position = Text::findStr(Units, u"ab"); }},
    {"findStr_TerminatedWide", [](Texts& t) { t.position = Text::findStr(Wide, L"ab", 1, Ci); }},
    {"findStr_Mixed", [](Texts& t) { t.position = Text::findStr(Wide, 20, u"ab"); }},
    {"indexOf_String", [](Texts& t) { t.position = t.text.indexOf(t.list[1]); }},
    {"indexOf_Units", [](Texts& t) { t.position = t.text.indexOf(u"ab"); }},
    {"indexOf_UnitsFolded", [](Texts& t) { t.position = t.text.indexOf(u"\u00C9\r\nAB", 0, Ci); }},
    {"indexOf_Wide", [](Texts& t) { t.position = t.text.indexOf(WideNeedle); }},
    {"indexOf_OneUnit", [](Texts& t) { t.position = t.text.indexOf(u'b'); }},
    {"indexOf_OneWide", [](Texts& t) { t.position = t.text.indexOf(L'b'); }},
    {"indexOf_UnitInUnits", [](Texts& t) { t.position = Text::indexOf(Units, 20, u'b'); }},
    {"indexOf_WideInWide", [](Texts& t) { t.position = Text::indexOf(Wide, 20, L'b'); }},
    {"contains_String", [](Texts& t) { t.flag = t.text.contains(t.list[1], Ci); }},
    {"contains_Units", [](Texts& t) { t.flag = t.text.contains(u"ab"); }},
    {"contains_Wide", [](Texts& t) { t.flag = t.text.contains(WideNeedle, Ci); }},
    {"contains_OneUnit", [](Texts& t) { t.flag = t.text.contains(u'b'); }},
    {"contains_OneWide", [](Texts& t) { t.flag = t.text.contains(L'b'); }},
    {"count_OneUnit", [](Texts& t) { t.position = t.text.count(u'b'); }},
    {"count_OneWide", [](Texts& t) { t.position = t.text.count(L'b'); }},
    {"count_Units", [](Texts& t) { t.position = t.text.count(u"AB", Ci); }},
    {"count_Wide", [](Texts& t) { t.position = t.text.count(L"AB", Ci); }},
    {"count_String", [](Texts& t) { t.position = t.text.count(t.list[1]); }},
    {"startsWith_String", [](Texts& t) { t.flag = t.text.startsWith(t.peer, Ci); }},
    {"startsWith_Units", [](Texts& t) { t.flag = t.text.startsWith(u" Ab,\u00C9", Ci); }},
    {"startsWith_Wide", [](Texts& t) { t.flag = t.text.startsWith(Wide); }},
    {"startsWith_OneUnit", [](Texts& t) { t.flag = t.text.startsWith(u' '); }},
    {"startsWith_OneWide", [](Texts& t) { t.flag = t.text.startsWith(L' '); }},
    {"endsWith_String", [](Texts& t) { t.flag = t.text.endsWith(t.peer, Ci); }},
    {"endsWith_Units", [](Texts& t) { t.flag = t.text.endsWith(u"AB,\U0001F600 ", Ci); }},
    {"endsWith_Wide", [](Texts& t) { t.flag = t.text.endsWith(Wide); }},
    {"endsWith_OneUnit", [](Texts& t) { t.flag = t.text.endsWith(u' '); }},
    {"endsWith_OneWide", [](Texts& t) { t.flag = t.text.endsWith(L' '); }},
    {"lastIndexOf_String", [](Texts& t) { t.position = t.text.lastIndexOf(t.list[1], -1, Ci); }},
    {"lastIndexOf_Units", [](Texts& t) { t.position = t.text.lastIndexOf(u"AB", -1, Ci); }},
    {"lastIndexOf_Wide", [](Texts& t) { t.position = t.text.lastIndexOf(WideNeedle); }},
    {"lastIndexOf_OneUnit", [](Texts& t) { t.position = t.text.lastIndexOf(u'a'); }},
    {"lastIndexOf_OneWide", [](Texts& t) { t.position = t.text.lastIndexOf(L'a'); }},
};

constexpr Row<Texts> FindingIterators[] = {
    {"find_Units", [](Texts& t) { t.position = t.text.find(u"AB", Ci).codeUnitIndex; }},
    {"find_Wide", [](Texts& t) { t.position = t.text.find(WideNeedle, Ci).codeUnitIndex; }},
    {"find_UnitsFrom", [](Texts& t) { t.position = t.text.find(u"ab", t.text.createFromIndex(2)).codeUnitIndex; }},
    {"find_WideFrom", [](Texts& t) { t.position = t.text.find(L"ab", t.text.createFromIndex(2)).codeUnitIndex; }},
    {"find_OneUnit", [](Texts& t) { t.position = t.text.find(u'b').codeUnitIndex; }},
    {"find_OneWide", [](Texts& t) { t.position = t.text.find(L'b').codeUnitIndex; }},
    {"find_OneUnitFrom", [](Texts& t) { t.position = t.text.find(u'b', t.text.createFromIndex(2)).codeUnitIndex; }},
    {"find_OneWideFrom", [](Texts& t) { t.position = t.text.find(L'b', t.text.createFromIndex(2)).codeUnitIndex; }},
    {"findLast_String", [](Texts& t) { t.position = t.text.findLast(t.list[1]).codeUnitIndex; }},
    {"findLast_StringFolded", [](Texts& t) { t.position = t.text.findLast(u"AB", Ci).codeUnitIndex; }},
    {"findLast_StringFrom",
     [](Texts& t) { t.position = t.text.findLast(t.list[1], t.text.createFromIndex(2)).codeUnitIndex; }},
    {"findLast_OneUnit", [](Texts& t) { t.position = t.text.findLast(u'b').codeUnitIndex; }},
    {"findLast_OneWide", [](Texts& t) { t.position = t.text.findLast(L'b').codeUnitIndex; }},
    {"findLast_OneUnitFrom",
     [](Texts& t) { t.position = t.text.findLast(u'b', t.text.createFromIndex(2)).codeUnitIndex; }},
    {"findLast_OneWideFrom",
     [](Texts& t) { t.position = t.text.findLast(L'b', t.text.createFromIndex(2)).codeUnitIndex; }},
};

constexpr Row<Texts> FindingSets[] = {
    {"findOneOf_String", [](Texts& t) { t.position = t.text.findOneOf(t.other); }},
    {"findOneOf_Units", [](Texts& t) { t.position = t.text.findOneOf(u"\u00E9\U0001F600"); }},
    {"findOneOf_LongSet", [](Texts& t) { t.position = t.text.findOneOf(t.longSet.c_str()); }, LongSet},
    {"findOneOf_Wide", [](Texts& t) { t.position = t.text.findOneOf(WideSet); }},
    {"findOneOf_StringFrom",
     [](Texts& t) { t.position = t.text.findOneOf(t.other, t.text.createFromIndex(2)).codeUnitIndex; }},
    {"findOneOf_UnitsFrom",
     [](Texts& t) { t.position = t.text.findOneOf(u"\u00E9", t.text.createFromIndex(2)).codeUnitIndex; }},
    {"findOneOf_WideFrom",
     [](Texts& t) { t.position = t.text.findOneOf(WideSet, t.text.createFromIndex(2)).codeUnitIndex; }},
    {"findOneOf_UnitsInUnits", [](Texts& t) { t.position = Text::findOneOf(Units, u"\u00E9,"); }},
    {"findOneOf_WideInWide", [](Texts& t) { t.position = Text::findOneOf(Wide, L"\u00E9,"); }},
    {"findOneOf_UnitsInWide", [](Texts& t) { t.position = Text::findOneOf(Wide, u"\u00E9,"); }},
    {"findChar_Unit", [](Texts& t) { t.position = Text::findChar(Units, u','); }},
    {"findChar_Wide", [](Texts& t) { t.position = Text::findChar(Wide, L','); }},
    {"findOneNotOf_String", [](Texts& t) { t.position = t.text.findOneNotOf(t.peer); }, LongSet},
    {"findOneNotOf_Units", [](Texts& t) { t.position = t.text.findOneNotOf(u" aB,\u00E9"); }},
    {"findOneNotOf_Wide", [](Texts& t) { t.position = t.text.findOneNotOf(WideSet); }},
    {"findOneNotOf_OneUnit", [](Texts& t) { t.position = t.text.findOneNotOf(u' '); }},
    {"findOneNotOf_OneWide", [](Texts& t) { t.position = t.text.findOneNotOf(L' '); }},
    {"findOneNotOf_UnitsInUnits", [](Texts& t) { t.position = Text::findOneNotOf(Units, u" aB\U0001F600"); }},
    {"findOneNotOf_WideInWide", [](Texts& t) { t.position = Text::findOneNotOf(Wide, L" aB\U0001F600"); }},
    {"findOneNotOf_OneInUnits",
     [](Texts& t) { t.position = Text::findOneNotOf(QILSYS_UNITS("  ab"), QILSYS_UNITS(' ')); }},
    {"findOneNotOf_OneInForeign",
     [](Texts& t) {
       t.position = Text::findOneNotOf(QILSYS_FOREIGN("  ab, more than thirty-two elements"), QILSYS_FOREIGN(' '));
     }},
};

}  // namespace

void AddTextSearching(std::vector<Operation>& operations) {
  AddRows<Texts>(operations, Finding);
  AddRows<Texts>(operations, FindingIterators);
  AddRows<Texts>(operations, FindingSets);
}

}  // namespace qilsys::test::sweep
