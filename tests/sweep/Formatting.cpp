// Format strings.
#include "qilsys/TFormatStringCore.h"
#include "support/Literals.h"
#include "sweep/Observed.h"
#include "sweep/Operation.h"

namespace qilsys::test::sweep {
namespace {

using Format = TFormatStringCore;
using Text = TStringCore;

constexpr Leave Containers{Raises::Either, Left::Unchanged,
                           "markers and parameters are containers of the standard library"};
constexpr Leave Container{Raises::Standard, Left::Unchanged, Containers.reason};
constexpr Leave NewTemplate{Raises::Either, Left::Unusable, "after a failed template the object is not to be used"};

/// A template that has its parameters, and another.
struct Formats {
  explicit Formats(Shape shape) : text(shape == Shape::Inline ? u"short" : u"a parameter that needs a block") {
    if (shape == Shape::SharedBlock) peer = text;
    format.arg(text).arg(2);
    other.arg(3).arg(4).arg(5);
  }
  std::string Observe() const {
    Observed seen;
    seen.Add(text).Add(peer).Add(made).Add(format.formatString()).Add(other.formatString());
    return seen.Add(format.result()).Add(other.result()).Add(wider(format)).Bytes();
  }
  // Shows how many parameters there are: the parameters that the template itself does not show.
  static Text wider(const Format& format) {
    Format all(format);
    all = Text(u"%1|%2");
    return all.result();
  }

  Text text;
  Text peer;
  Text made;
  Format format{u"%1 of %2 files, %% and more"};
  Format other{u"%3 %2 %1 %1 %1 %% %% %%"};
};

/// A template with all the parameters it shows, so that there is no room prepared for more.
struct Filled {
  explicit Filled(Shape shape) : text(shape == Shape::Inline ? u"short" : u"a parameter that needs a block") {
    if (shape == Shape::SharedBlock) peer = text;
    format.arg(u"first");
  }
  std::string Observe() const {
    Observed seen;
    seen.Add(text).Add(peer).Add(format.formatString());
    Format all(format);
    all = Text(u"%1 %2 %3 %4 %5 %6 %7 %8 %9 %10 %11");
    for (bool complete = false; !complete; all.arg(u"-")) complete = AddResult(seen, all);
    return seen.Bytes();
  }
  // A template with too few parameters has no result.
  static bool AddResult(Observed& seen, const Format& format) {
    try {
      seen.Add(format.result());
      return true;
    } catch (const Format::Exception&) {
      return false;
    }
  }

  Text text;
  Text peer;
  Format format{u"%1"};
};

constexpr Row<Formats> Whole[] = {
    {"Format_FromString", [](Formats& f) { f.made = Format(Text(u"%1 and more than fourteen")).formatString(); },
     Containers},
    {"Format_FromUnits", [](Formats& f) { f.made = Format(u"%1 and more than fourteen").formatString(); }, Containers},
    {"Format_FromWide",
     [](Formats& f) { f.made = Format(L"%1 and more than thirty-two units of text").formatString(); }, Containers},
    {"Format_FromUtf8", [](Formats& f) { f.made = Format("%1 and more than fourteen").formatString(); }, Containers},
    {"Format_Copy", [](Formats& f) { f.made = Format(f.format).result(); }, Containers},
    {"Format_Assign", [](Formats& f) { f.format = f.other; }, Container},
    {"Format_AssignString", [](Formats& f) { f.format = Text(u"%2 %1 %2 %1 %2 %1 %2 %1"); }, NewTemplate},
    {"Format_AssignUnits", [](Formats& f) { f.format = QILSYS_UNITS("%2 %1 %2 %1 %2 %1 %2 %1"); }, NewTemplate},
    {"Format_AssignForeign", [](Formats& f) { f.format = QILSYS_FOREIGN("%2 %1 %2 %1 %2 %1 %2 %1"); }, NewTemplate},
    {"Format_result", [](Formats& f) { f.made = f.format.result(); }},
    {"Format_AsString", [](Formats& f) { f.made = static_cast<Text>(f.format); }},
    {"Format_formatString", [](Formats& f) { f.made = f.format.formatString(); }},
};

constexpr Row<Filled> Filling[] = {
    {"arg_String", [](Filled& f) { f.format.arg(f.text); }, Container},
    {"arg_StringPadded", [](Filled& f) { f.format.arg(f.text, 40); }, Containers},
    {"arg_StringPaddedWide", [](Filled& f) { f.format.arg(f.text, -40, QILSYS_FOREIGN('*')); }, Containers},
    {"arg_Short", [](Filled& f) { f.format.arg(short{1}, 20); }, Containers},
    {"arg_UShort", [](Filled& f) { f.format.arg(static_cast<unsigned short>(1), 20); }, Containers},
    {"arg_Int", [](Filled& f) { f.format.arg(1, 20); }, Containers},
    {"arg_UInt", [](Filled& f) { f.format.arg(1U, 20); }, Containers},
    {"arg_Long", [](Filled& f) { f.format.arg(1L, 20); }, Containers},
    {"arg_ULong", [](Filled& f) { f.format.arg(1UL, 20); }, Containers},
    {"arg_LongLong", [](Filled& f) { f.format.arg(1LL, 20); }, Containers},
    {"arg_ULongLong", [](Filled& f) { f.format.arg(1ULL, 20); }, Containers},
    {"arg_Double", [](Filled& f) { f.format.arg(1.0 / 3, 40, 'g', 17); }, Containers},
    {"arg_OneUnit", [](Filled& f) { f.format.arg(QILSYS_UNITS('x'), 20); }, Containers},
    {"arg_OneForeign", [](Filled& f) { f.format.arg(QILSYS_FOREIGN('x'), 20); }, Containers},
    {"arg_TwoTexts", [](Filled& f) { f.format.arg(f.text, f.peer); }, Container},
    {"arg_FiveTexts", [](Filled& f) { f.format.arg(f.text, u"more than stands inside", f.peer, u"4", u"5"); },
     Containers},
    {"arg_TenTexts",
     [](Filled& f) {
       f.format.arg(u"1", u"2", u"3", u"4", u"5", f.text, u"more than stands inside", u"8", u"9", u"10");
     },
     Containers},
    {"arg_Vector",
     [](Filled& f) {
       f.format.arg(std::vector<Text>{f.text, u"more than stands inside", u"3"});
     },
     Containers},
    {"clearParms", [](Filled& f) { f.format.clearParms(); }},
};

}  // namespace

void AddFormats(std::vector<Operation>& operations) {
  AddRows<Formats>(operations, Whole);
  AddRows<Filled>(operations, Filling);
}

}  // namespace qilsys::test::sweep
