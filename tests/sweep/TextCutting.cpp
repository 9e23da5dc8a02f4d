// Texts made from pieces of a text.
#include "support/Literals.h"
#include "sweep/Texts.h"

namespace qilsys::test::sweep {
namespace {

using Text = TStringCore;
constexpr auto Ci = Text::CaseInsensitive;
constexpr auto Drop = Text::DropEmptyTokens;

constexpr wchar_t Wide[] = L"a first field that needs a block,two,three and more than thirty-two units";
constexpr char16_t Units[] = u"a first field that needs a block,two,three and more than thirty-two units";
constexpr TCodeUnit OwnUnits[] =
    QILSYS_UNITS("a first field that needs a block,two,three and more than thirty-two units");
constexpr wchar_t WideSet[] = L"aB,\u00E9\U0001F600 and more than thirty-two units of it";

constexpr Row<Texts> Cutting[] = {
    {"left", [](Texts& t) { t.made = t.other.left(20); }},
    {"left_All", [](Texts& t) { t.made = t.text.left(2000); }},
    {"right", [](Texts& t) { t.made = t.other.right(20); }},
    {"mid", [](Texts& t) { t.made = t.other.mid(3, 20); }},
    {"mid_All", [](Texts& t) { t.made = t.text.mid(0); }},
    {"mid_Iterators", [](Texts& t) { t.made = t.other.mid(t.other.createFromIndex(2), t.other.createFromIndex(30)); }},
    {"mid_CodePoints", [](Texts& t) { t.made = t.other.mid(t.other.createFromIndex(2), 20); }},
    {"leftJustified", [](Texts& t) { t.made = t.text.leftJustified(1000); }},
    {"leftJustified_Wide", [](Texts& t) { t.made = t.text.leftJustified(1000, L'x'); }},
    {"leftJustified_Cut", [](Texts& t) { t.made = t.text.leftJustified(20, QILSYS_UNITS('x'), true); }},
    {"rightJustified", [](Texts& t) { t.made = t.text.rightJustified(1000); }},
    {"rightJustified_Wide", [](Texts& t) { t.made = t.text.rightJustified(1000, L'x'); }},
    {"repeated", [](Texts& t) { t.made = t.text.repeated(5); }},
    {"reversed", [](Texts& t) { t.made = t.text.reversed(); }},
    {"trimmed", [](Texts& t) { t.made = t.text.trimmed(); }},
    {"toLower", [](Texts& t) { t.made = t.text.toLower(); }},
    {"toUpper", [](Texts& t) { t.made = t.text.toUpper(); }},
    {"toUpper_Longer", [](Texts& t) { t.made = Text(u"stra\u00DFe \u0149 \u0390 and more than fourteen").toUpper(); }},
    {"spanIncluding_Units", [](Texts& t) { t.made = t.other.spanIncluding(u"Another txl,ogf\u00E9"); }},
    {"spanIncluding_Wide", [](Texts& t) { t.made = t.other.spanIncluding(WideSet); }},
    {"spanIncluding_LongSet", [](Texts& t) { t.made = t.text.spanIncluding(t.longSet.c_str()); }, LongSet},
    {"spanExcluding_Units", [](Texts& t) { t.made = t.other.spanExcluding(u"\u00E9\U0001F600"); }},
    {"spanExcluding_Wide", [](Texts& t) { t.made = t.other.spanExcluding(WideSet); }},
    {"section_Units", [](Texts& t) { t.made = t.text.section(QILSYS_UNITS(",\u00E9"), 0); }},
    {"section_UnitsFolded",
     [](Texts& t) { t.made = t.text.section(QILSYS_UNITS("B,\u00C9"), 0, -1, Text::SectionFoldSeparator); }},
    {"section_Foreign", [](Texts& t) { t.made = t.text.section(QILSYS_FOREIGN(",\u00E9"), 0); }},
    {"section_OneUnit", [](Texts& t) { t.made = t.text.section(u',', 0, 3); }},
    {"section_OneWide", [](Texts& t) { t.made = t.text.section(L',', -3); }},
    {"section_OfUnits", [](Texts& t) { t.made = Text::section(Units, 70, u",", 0, 1); }},
    {"section_OfWide", [](Texts& t) { t.made = Text::section(Wide, 70, L",", 0, 1); }},
    {"tokenize_String", [](Texts& t) { t.made = t.list[0].tokenize(Text(u","), t.position); }},
    {"tokenize_Units", [](Texts& t) { t.made = t.list[0].tokenize(u",", t.position); }},
    {"tokenize_MixedUnits", [](Texts& t) { t.made = t.other.tokenize(QILSYS_UNITS("\u00E9,"), t.position, Drop); }},
    {"tokenize_Foreign", [](Texts& t) { t.made = t.list[0].tokenize(WideSet, t.position, Drop); }},
};

constexpr Row<Texts> Splitting[] = {
    {"split_String", [](Texts& t) { t.fields = t.text.split(Text(u",")); }, ListOfTexts},
    {"split_Units", [](Texts& t) { t.fields = t.text.split(u"ab,", Drop); }, ListOfTexts},
    {"split_UnitsFolded", [](Texts& t) { t.fields = t.text.split(u"B,\u00C9", Drop, Ci); }, ListOfTexts},
    {"split_Wide", [](Texts& t) { t.fields = t.text.split(L"ab,"); }, ListOfTexts},
    {"split_OneUnit", [](Texts& t) { t.fields = t.text.split(u','); }, ListOfTexts},
    {"split_OneWide", [](Texts& t) { t.fields = t.text.split(L','); }, ListOfTexts},
    {"split_OfUnits", [](Texts& t) { t.fields = Text::split(Units, 70, u","); }, ListOfTexts},
    {"split_OfWide", [](Texts& t) { t.fields = Text::split(Wide, 70, L","); }, ListOfTexts},
    {"split_OfUnitsByOne", [](Texts& t) { t.fields = Text::split(OwnUnits, 70, QILSYS_UNITS(',')); }, ListOfTexts},
    {"split_OfWideByOne", [](Texts& t) { t.fields = Text::split(Wide, 70, L','); }, ListOfTexts},
    {"splitOnAny_String", [](Texts& t) { t.fields = t.text.splitOnAny(Text(u",\u00E9")); }, ListOfTexts},
    {"splitOnAny_Units", [](Texts& t) { t.fields = t.text.splitOnAny(u",\u00E9"); }, ListOfTexts},
    {"splitOnAny_Wide", [](Texts& t) { t.fields = t.text.splitOnAny(WideSet, Drop); }, ListOfShortTexts},
    {"join_String", [](Texts& t) { t.made = Text::join(t.list, t.other); }},
    {"join_OneUnit", [](Texts& t) { t.made = Text::join(t.list, QILSYS_UNITS(',')); }},
    {"join_OneForeign", [](Texts& t) { t.made = Text::join(t.list, QILSYS_FOREIGN(',')); }},
};

}  // namespace

void AddTextCutting(std::vector<Operation>& operations) {
  AddRows<Texts>(operations, Cutting);
  AddRows<Texts>(operations, Splitting);
}

}  // namespace qilsys::test::sweep
