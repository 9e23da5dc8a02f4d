// Questions to the host, and arithmetic.
#include <functional>
#include <utility>
#include <vector>

#include "qilsys/TMath.h"
#include "qilsys/TSystem.h"
#include "sweep/Observed.h"
#include "sweep/Operation.h"

namespace qilsys::test::sweep {
namespace {

/// Results, of which those that the machine decides are only known to be there.
struct Answers {
  explicit Answers(Shape) {}
  std::string Observe() const { return Observed().Add(text).Add(flag).Add(number).Bytes(); }

  TStringCore text;
  bool flag = false;
  double number = 0;
  std::vector<double> row = std::vector<double>(10, 1.5);
};

constexpr Leave NoFigures{Raises::Nothing, Left::Unchanged, "what the system does not give counts as zero",
                          Result::Another, When::Sometimes};

constexpr Row<Answers> Asking[] = {
    {"ProcessID", [](Answers& a) { a.flag = TSystem::ProcessID() != 0; }},
    {"ThreadID", [](Answers& a) { a.flag = TSystem::ThreadID() != 0; }},
    {"Sleep", [](Answers&) { TSystem::Sleep(0); }},
    {"IsDesktopMainThread", [](Answers& a) { a.flag = TSystem::IsDesktopMainThread(); }},
    {"SetDesktopMainThreadFunc",
     [](Answers& a) {
       std::function<bool()> large = [room = std::vector<int>(10)] { return room.empty(); };
       TSystem::SetDesktopMainThreadFunc(TSystem::SetDesktopMainThreadFunc(std::move(large)));
       a.flag = true;
     },
     {Raises::Standard, Left::Unchanged, "the callback is a function of the standard library"}},
    {"Local8BitEncoding", [](Answers& a) { a.flag = *TSystem::Local8BitEncoding() != 0; }},
    {"Memory", [](Answers& a) { a.flag = TSystem::Memory().m_totalPhysical != 0; }, NoFigures},
    {"AppUpTime", [](Answers& a) { a.flag = TSystem::AppUpTime() < 0xFFFFFFFF; }},
    {"GetLastErrorString", [](Answers& a) { a.flag = TSystem::GetLastErrorString().length() > 0; }},
    {"unmangleClassName", [](Answers& a) { a.text = TSystem::unmangleClassName("N4some5class4nameE"); }},
};

constexpr Row<Answers> Calculating[] = {
    {"DegreesToRadians", [](Answers& a) { a.number = TMath::DegreesToRadians(90); }},
    {"RadiansToDegrees", [](Answers& a) { a.number = TMath::RadiansToDegrees(1); }},
    {"MulDiv", [](Answers& a) { a.number = TMath::MulDiv(7, 8, 9); }},
    {"round2", [](Answers& a) { a.number = TMath::round2(1.005, 2); }},
    {"identical", [](Answers& a) { a.flag = TMath::identical(a.row, a.row); }},
};

}  // namespace

void AddAskingTheSystem(std::vector<Operation>& operations) {
  AddRows<Answers>(operations, Asking);
  AddRows<Answers>(operations, Calculating);
}

}  // namespace qilsys::test::sweep
