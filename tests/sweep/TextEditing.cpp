// Edits of a text in place.
#include "support/Literals.h"
#include "sweep/Texts.h"

namespace qilsys::test::sweep {
namespace {

using Text = TStringCore;
constexpr auto Ci = Text::CaseInsensitive;

constexpr wchar_t Wide[] = L"caf\u00E9 \U0001F600 and more than thirty-two units of text";

Text::CodePointIterator At(const Texts& t, int unit) { return t.text.createFromIndex(unit); }

int Length(const std::u16string& units) { return static_cast<int>(units.size()); }

constexpr Row<Texts> Appending[] = {
    {"append_String", [](Texts& t) { t.text.append(t.other); }},
    {"append_Itself", [](Texts& t) { t.text.append(t.text); }},
    {"append_ASharer", [](Texts& t) { t.text.append(t.peer); }},
    {"append_Units", [](Texts& t) { t.text.append(t.longUnits.c_str()); }},
    {"append_OwnUnits", [](Texts& t) { t.text.append(t.text.constData() + 2, 8); }},
    {"append_Wide", [](Texts& t) { t.text.append(Wide); }},
    {"append_Utf8", [](Texts& t) { t.text.append(t.utf8.c_str()); }},
    {"append_OneUnit", [](Texts& t) { t.text.append(u'x'); }},
    {"append_OneWide", [](Texts& t) { t.text.append(L'x'); }},
    {"append_TwoUnits", [](Texts& t) { t.text.append(t.list[0].constData(), 2); }},
    {"append_OneChar", [](Texts& t) { t.text.append('x'); }},
    {"AppendAssign_String", [](Texts& t) { t.text += t.other; }},
    {"AppendAssign_Units", [](Texts& t) { t.text += u"more than stands inside"; }},
    {"AppendAssign_Wide", [](Texts& t) { t.text += Wide; }},
    {"AppendAssign_OneUnit", [](Texts& t) { t.text += u'x'; }},
    {"AppendAssign_OneWide", [](Texts& t) { t.text += L'x'; }},
    {"push_back_String", [](Texts& t) { t.text.push_back(t.other); }},
    {"push_back_OneUnit", [](Texts& t) { t.text.push_back(u'x'); }},
    {"push_back_OneWide", [](Texts& t) { t.text.push_back(L'x'); }},
    {"Plus_String", [](Texts& t) { t.made = t.text + t.other; }},
    {"Plus_Units", [](Texts& t) { t.made = t.text + QILSYS_UNITS("more than stands inside"); }},
    {"Plus_Foreign", [](Texts& t) { t.made = t.text + QILSYS_FOREIGN("more than stands inside"); }},
    {"Plus_OneUnit", [](Texts& t) { t.made = t.text + QILSYS_UNITS('x'); }},
    {"Plus_OneForeign", [](Texts& t) { t.made = t.text + QILSYS_FOREIGN('x'); }},
    {"UnitsPlus", [](Texts& t) { t.made = QILSYS_UNITS("more than stands inside") + t.text; }},
    {"ForeignPlus", [](Texts& t) { t.made = QILSYS_FOREIGN("more than stands inside") + t.text; }},
    {"OneUnitPlus", [](Texts& t) { t.made = QILSYS_UNITS('x') + t.text; }},
    {"OneForeignPlus", [](Texts& t) { t.made = QILSYS_FOREIGN('x') + t.text; }},
};

constexpr Row<Texts> Inserting[] = {
    {"insert_String", [](Texts& t) { t.text.insert(3, t.other); }},
    {"insert_Units", [](Texts& t) { t.text.insert(3, t.longUnits.c_str()); }},
    {"insert_OwnUnits", [](Texts& t) { t.text.insert(3, t.text.constData() + 1, 6); }},
    {"insert_Wide", [](Texts& t) { t.text.insert(3, Wide); }},
    {"insert_OneUnit", [](Texts& t) { t.text.insert(3, u'x'); }},
    {"insert_OneWide", [](Texts& t) { t.text.insert(3, L'x'); }},
    {"insert_StringAtIterator", [](Texts& t) { t.text.insert(At(t, 3), t.other); }},
    {"insert_UnitsAtIterator", [](Texts& t) { t.text.insert(At(t, 3), u"more than stands inside"); }},
    {"insert_WideAtIterator", [](Texts& t) { t.text.insert(At(t, 3), Wide); }},
    {"prepend_String", [](Texts& t) { t.text.prepend(t.other); }},
    {"prepend_Units", [](Texts& t) { t.text.prepend(u"more than stands inside"); }},
    {"prepend_Wide", [](Texts& t) { t.text.prepend(Wide); }},
    {"prepend_OneUnit", [](Texts& t) { t.text.prepend(u'x'); }},
    {"prepend_OneWide", [](Texts& t) { t.text.prepend(L'x'); }},
    {"push_front_String", [](Texts& t) { t.text.push_front(t.other); }},
    {"push_front_OneUnit", [](Texts& t) { t.text.push_front(u'x'); }},
    {"push_front_OneWide", [](Texts& t) { t.text.push_front(L'x'); }},
};

constexpr Row<Texts> Replacing[] = {
    {"replace_RangeByUnits", [](Texts& t) { t.text.replace(2, 3, t.longUnits.c_str()); }},
    {"replace_RangeByOwnUnits", [](Texts& t) { t.text.replace(2, 1, t.text.constData() + 1, 9); }},
    {"replace_RangeByString", [](Texts& t) { t.text.replace(2, 3, t.other); }},
    {"replace_RangeByWide", [](Texts& t) { t.text.replace(2, 3, Wide); }},
    {"replace_RangeByUnit", [](Texts& t) { t.text.replace(2, 5, u'x'); }},
    {"replace_RangeByOneWide", [](Texts& t) { t.text.replace(2, 5, L'x'); }},
    {"replace_AtIteratorByString", [](Texts& t) { t.text.replace(At(t, 2), 3, t.other); }},
    {"replace_AtIteratorByUnit", [](Texts& t) { t.text.replace(At(t, 2), 3, u'x'); }},
    {"replace_AtIteratorByOneWide", [](Texts& t) { t.text.replace(At(t, 2), 3, L'x'); }},
    {"replace_UnitByUnit", [](Texts& t) { t.text.replace(u'a', u'x'); }},
    {"replace_WideByWide", [](Texts& t) { t.text.replace(L'a', L'x'); }},
    {"replace_UnitByString", [](Texts& t) { t.text.replace(u'a', t.other); }},
    {"replace_WideByString", [](Texts& t) { t.text.replace(L'a', t.other); }},
    {"replace_StringByString", [](Texts& t) { t.text.replace(Text(u"ab"), t.other); }},
    {"replace_StringFolded", [](Texts& t) { t.text.replace(Text(u"AB,\u00C9"), Text(u"WXYZ"), Ci); }},
    {"replace_StringFoldedByLonger", [](Texts& t) { t.text.replace(Text(u"\u00C9\r"), t.other, Ci); }},
    {"replace_Units", [](Texts& t) { t.text.replace(QILSYS_UNITS("ab"), 2, QILSYS_UNITS("wxyz"), 4); }},
    {"replace_Foreign", [](Texts& t) { t.text.replace(QILSYS_FOREIGN("ab"), 2, QILSYS_FOREIGN("wxyz"), 4); }},
    {"replace_LongNeedle", [](Texts& t) { t.text.replace(t.longUnits.data(), Length(t.longUnits), u"x", 1); },
     LongNeedle},
    {"replaceCount_Units",
     [](Texts& t) { t.position = t.text.replaceCount(QILSYS_UNITS("AB"), 2, QILSYS_UNITS("x"), 1, Ci); }},
    {"replaceCount_Foreign",
     [](Texts& t) { t.position = t.text.replaceCount(QILSYS_FOREIGN("AB"), 2, QILSYS_FOREIGN("wxyz"), 4, Ci); }},
    {"replaceCount_OwnUnits",
     [](Texts& t) { t.position = t.text.replaceCount(t.text.constData() + 2, 2, t.text.constData(), 9); }},
    {"replaceAnyOf_Units", [](Texts& t) { t.text.replaceAnyOf(u"aB", u'x'); }},
    {"replaceAnyOf_MixedUnits", [](Texts& t) { t.text.replaceAnyOf(QILSYS_UNITS("a\u00E9\U0001F600"), u'x'); }},
    {"replaceAnyOf_MixedForeign", [](Texts& t) { t.text.replaceAnyOf(QILSYS_FOREIGN("a\u00E9\U0001F600"), u'x'); }},
    {"replaceAnyOf_ByForeign", [](Texts& t) { t.text.replaceAnyOf(QILSYS_UNITS("a\u00E9"), QILSYS_FOREIGN('x')); }},
    {"replaceAnyOf_AllForeign", [](Texts& t) { t.text.replaceAnyOf(QILSYS_FOREIGN("a\u00E9"), QILSYS_FOREIGN('x')); }},
    {"replaceAnyOf_String", [](Texts& t) { t.text.replaceAnyOf(Text(u"a\u00E9"), u'x'); }},
    {"replaceAnyOf_LongSet", [](Texts& t) { t.text.replaceAnyOf(t.longSet.c_str(), u'x'); }, EditByLongSet},
    {"replaceAnyOf_Buffer",
     [](Texts& t) { t.position = Text::replaceAnyOf(t.unitBuffer, u"A\u00E9\U0001F600", u'x'); }},
    {"replaceAnyOf_WideBuffer",
     [](Texts& t) { t.position = Text::replaceAnyOf(t.wideBuffer, L"A\u00E9\U0001F600", L'x'); }},
};

constexpr Row<Texts> Removing[] = {
    {"removeAt", [](Texts& t) { t.text.removeAt(2, 3); }},
    {"removeAt_Iterator", [](Texts& t) { t.text.removeAt(At(t, 2), 3); }},
    {"removeAll_OneUnit", [](Texts& t) { t.text.removeAll(u'a'); }},
    {"removeAll_OneWide", [](Texts& t) { t.text.removeAll(L'a'); }},
    {"removeAll_Units", [](Texts& t) { t.text.removeAll(u"ab"); }},
    {"removeAll_UnitsFolded", [](Texts& t) { t.text.removeAll(u"\u00C9\r\nAB", -1, Ci); }},
    {"removeAll_Wide", [](Texts& t) { t.text.removeAll(L"ab"); }},
    {"removeAll_WideFolded", [](Texts& t) { t.text.removeAll(L"\u00C9\r\nAB", -1, Ci); }},
    {"removeAll_String", [](Texts& t) { t.text.removeAll(Text(u"ab")); }},
    {"removeAll_StringFolded", [](Texts& t) { t.text.removeAll(Text(u"AB,"), Ci); }},
    {"removeAll_LongFolded", [](Texts& t) { t.text.removeAll(t.longUnits.data(), Length(t.longUnits), Ci); },
     LongNeedle},
    {"removeAnyOf_Units", [](Texts& t) { t.text.removeAnyOf(u"aB"); }},
    {"removeAnyOf_MixedUnits", [](Texts& t) { t.text.removeAnyOf(QILSYS_UNITS("a\u00E9\U0001F600")); }},
    {"removeAnyOf_MixedForeign", [](Texts& t) { t.text.removeAnyOf(QILSYS_FOREIGN("a\u00E9\U0001F600")); }},
    {"removeAnyOf_String", [](Texts& t) { t.text.removeAnyOf(Text(u"a\u00E9")); }},
    {"removeAnyOf_LongSet", [](Texts& t) { t.text.removeAnyOf(t.longSet.c_str()); }, EditByLongSet},
    {"removeAnyOf_Buffer", [](Texts& t) { t.position = Text::removeAnyOf(t.unitBuffer, u"A\U0001F600"); }},
    {"removeAnyOf_WideBuffer", [](Texts& t) { t.position = Text::removeAnyOf(t.wideBuffer, L"A\U0001F600"); }},
    {"truncate", [](Texts& t) { t.text.truncate(5); }},
    {"truncate_Iterator", [](Texts& t) { t.text.truncate(At(t, 5)); }},
    {"truncateAtFirstNull", [](Texts& t) { t.text.truncateAtFirstNull(); }},
    {"chop", [](Texts& t) { t.text.chop(2); }},
    {"removeBOM", [](Texts& t) { t.text.removeBOM(); }},
};

constexpr Row<Texts> Trimming[] = {
    {"trim", [](Texts& t) { t.text.trim(); }},
    {"trimLeft", [](Texts& t) { t.text.trimLeft(); }},
    {"trimRight", [](Texts& t) { t.text.trimRight(); }},
    {"trim_OneUnit", [](Texts& t) { t.text.trim(u' '); }},
    {"trimLeft_OneUnit", [](Texts& t) { t.text.trimLeft(u' '); }},
    {"trimRight_OneUnit", [](Texts& t) { t.text.trimRight(u' '); }},
    {"trim_OneWide", [](Texts& t) { t.text.trim(L' '); }},
    {"trimLeft_OneWide", [](Texts& t) { t.text.trimLeft(L' '); }},
    {"trimRight_OneWide", [](Texts& t) { t.text.trimRight(L' '); }},
    {"trim_OneChar", [](Texts& t) { t.text.trim(' '); }},
    {"trim_Units", [](Texts& t) { t.text.trim(QILSYS_UNITS(" a\U0001F600")); }},
    {"trimLeft_Units", [](Texts& t) { t.text.trimLeft(QILSYS_UNITS(" a\U0001F600")); }},
    {"trimRight_Units", [](Texts& t) { t.text.trimRight(QILSYS_UNITS(" a\U0001F600")); }},
    {"trim_Foreign", [](Texts& t) { t.text.trim(QILSYS_FOREIGN(" a\U0001F600")); }},
    {"trimLeft_Foreign", [](Texts& t) { t.text.trimLeft(QILSYS_FOREIGN(" a\U0001F600")); }},
    {"trimRight_Foreign", [](Texts& t) { t.text.trimRight(QILSYS_FOREIGN(" a\U0001F600")); }},
    {"trim_String", [](Texts& t) { t.text.trim(Text(u" a\U0001F600")); }},
    {"trimLeft_String", [](Texts& t) { t.text.trimLeft(Text(u" a\U0001F600")); }},
    {"trimRight_String", [](Texts& t) { t.text.trimRight(Text(u" a\U0001F600")); }},
    {"trim_LongSet", [](Texts& t) { t.text.trim(t.longSet.c_str()); }, EditByLongSet},
};

constexpr Row<Texts> Turning[] = {
    {"fill_OneUnit", [](Texts& t) { t.text.fill(u'x', 2000); }},
    {"fill_OneWide", [](Texts& t) { t.text.fill(L'x'); }},
    {"reverse", [](Texts& t) { t.text.reverse(); }},
    {"prependBOM", [](Texts& t) { t.text.prependBOM(); }},
    {"dosToUnix", [](Texts& t) { t.text.dosToUnix(); }},
    {"dosToUnix_Buffer", [](Texts& t) { t.position = Text::dosToUnix(t.unitBuffer); }},
    {"dosToUnix_WideBuffer", [](Texts& t) { t.position = Text::dosToUnix(t.wideBuffer); }},
    {"unixToDos", [](Texts& t) { t.text.unixToDos(); }},
    {"toNativeLineEndings", [](Texts& t) { t.text.toNativeLineEndings(); }},
};

}  // namespace

void AddTextEditing(std::vector<Operation>& operations) {
  AddRows<Texts>(operations, Appending);
  AddRows<Texts>(operations, Inserting);
  AddRows<Texts>(operations, Replacing);
  AddRows<Texts>(operations, Removing);
  AddRows<Texts>(operations, Trimming);
  AddRows<Texts>(operations, Turning);
}

}  // namespace qilsys::test::sweep
