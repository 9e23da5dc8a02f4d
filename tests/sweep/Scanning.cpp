// Cursors over text.
#include <memory>

#include "qilsys/TScanStringCore.h"
#include "support/Literals.h"
#include "sweep/Observed.h"
#include "sweep/Operation.h"

namespace qilsys::test::sweep {
namespace {

using Scan = TScanStringCore;

constexpr Leave Converted{Raises::Either, Left::Unchanged,
                          "the converted text is held by a pointer of the standard library", Result::Same,
                          When::Sometimes};
constexpr Leave Failure{Raises::Either, Left::Unchanged, "an exception of the tree keeps its messages in a list"};

/// A text with a token of each kind, and a cursor over it.
struct Scanned {
  explicit Scanned(Shape shape) : out(shape == Shape::Inline ? u"short" : u"a result that needs a block") {
    if (shape == Shape::SharedBlock) peer = out;
  }
  std::string Observe() const {
    Observed seen;
    seen.Add(scan.index()).Add(TStringCore(scan.str())).Add(out).Add(peer).Add(flag).Add(single).Add(number);
    return seen.Bytes();
  }
  /// Notes that a token was not there; what else is raised goes on.
  template <class Step>
  void Missed(Step step) {
    try {
      step();
    } catch (const Scan::Exception&) {
      flag = true;
    }
  }

  const TStringCore text = u"3.14159265358979323846 a_word_that_needs_a_block yes\r\nand a line that needs one too\n";
  Scan scan{text};
  TStringCore out;
  TStringCore peer;
  bool flag = false;
  float single = 0;
  double number = 0;
};

constexpr Row<Scanned> Scanning[] = {
    {"Scan_FromString", [](Scanned& s) { s.number = Scan(s.text).index(); }},
    {"Scan_FromUnits", [](Scanned& s) { s.number = Scan(s.text.constData()).index(); }},
    {"Scan_FromForeign",
     [](Scanned& s) {
       s.number = Scan(QILSYS_FOREIGN("a text that is longer than what a foreign text has room for")).index();
     },
     Converted},
    {"Scan_Copy", [](Scanned& s) { s.number = Scan(s.scan).index(); }},
    {"Scan_Assign", [](Scanned& s) { s.scan = Scan(s.text).skipString(3); }},
    {"Scan_reset", [](Scanned& s) { s.scan.skipString(3).reset(); }},
    {"Scan_end", [](Scanned& s) { s.scan.skipString(-1).end(); }},
    {"Scan_skipAnyOf", [](Scanned& s) { s.scan.skipAnyOf(u"0123456789."); }},
    {"Scan_skipAnyOfForeign",
     [](Scanned& s) { s.scan.skipAnyOf(QILSYS_FOREIGN("0123456789.,+-*/()[]{}<>=!?:;abcdefghijkl")); }},
    {"Scan_readAnyOf", [](Scanned& s) { s.scan.readAnyOf(s.out, u"0123456789."); }},
    {"Scan_readAnyOfForeign", [](Scanned& s) { s.scan.readAnyOf(s.out, L"0123456789."); }},
    {"Scan_skipAnyNotOf", [](Scanned& s) { s.scan.skipAnyNotOf(u" "); }},
    {"Scan_readAnyNotOf", [](Scanned& s) { s.scan.readAnyNotOf(s.out, u" "); }},
    {"Scan_readAnyNotOfForeign", [](Scanned& s) { s.scan.readAnyNotOf(s.out, L" "); }},
    {"Scan_skipBool", [](Scanned& s) { s.scan.skipAnyNotOf(u"y").skipBool(); }},
    {"Scan_readBool", [](Scanned& s) { s.scan.skipAnyNotOf(u"y").readBool(s.flag); }},
    {"Scan_skipInt", [](Scanned& s) { s.scan.skipInt(10); }},
    {"Scan_skipFloat", [](Scanned& s) { s.scan.skipFloat(); }},
    {"Scan_readFloat", [](Scanned& s) { s.scan.readFloat(s.single); }},
    {"Scan_readDouble", [](Scanned& s) { s.scan.readFloat(s.number); }},
    {"Scan_skipLine", [](Scanned& s) { s.scan.skipLine(); }},
    {"Scan_readLine", [](Scanned& s) { s.scan.readLine(s.out); }},
    {"Scan_skipNewline", [](Scanned& s) { s.scan.skipAnyNotOf(u"\r").skipNewline(); }},
    {"Scan_skipNonWhitespace", [](Scanned& s) { s.scan.skipNonWhitespace(); }},
    {"Scan_readNonWhitespace", [](Scanned& s) { s.scan.readNonWhitespace(s.out); }},
    {"Scan_skipWhitespace", [](Scanned& s) { s.scan.skipNonWhitespace().skipWhitespace(); }},
    {"Scan_skipString", [](Scanned& s) { s.scan.skipString(20); }},
    {"Scan_readString", [](Scanned& s) { s.scan.readString(s.out, 60); }},
    {"Scan_skip", [](Scanned& s) { s.scan.skip(u"3.14"); }},
    {"Scan_skipForeign", [](Scanned& s) { s.scan.skip(QILSYS_FOREIGN("3.14159265358979323846 a_word_that_needs")); }},
    {"Scan_Missing", [](Scanned& s) { s.Missed([&] { s.scan.skipBool(); }); }, Failure},
    {"Scan_Exception_Clone",
     [](Scanned& s) {
       const Scan::Exception failure(s.text, TError::ErrorInfo::NoError());
       s.flag = std::unique_ptr<QuillonException>(failure.Clone()) != nullptr;
     },
     {Raises::Standard, Left::Unchanged, Failure.reason}},
};

}  // namespace

void AddScanning(std::vector<Operation>& operations) { AddRows<Scanned>(operations, Scanning); }

}  // namespace qilsys::test::sweep
