#include "demo/Story.h"

#include <algorithm>
#include <memory>

#include "qilsys/TFormatStringCore.h"

namespace demo {

namespace {

constexpr unsigned int OverOwnLimitMiB = Limits::PerProcess / MiB + 12;

TStringCore PeerList(const Cast& cast) {
  TStringCore line = u"peers";
  for (const Actor* actor : cast.Present()) line.append(u' ').append(TStringCore::number(actor->Id()));
  return line;
}

/// True once each member that is present has made `passes` more passes than when the returned function was made.
std::function<bool(const Cast&)> EachPasses(unsigned int passes) {
  auto before = std::make_shared<std::vector<std::pair<Actor*, unsigned int>>>();
  return [before, passes](const Cast& cast) {
    if (before->empty()) {
      for (Actor* actor : cast.Present()) before->emplace_back(actor, actor->Count(Sign::Pass));
    }
    return std::all_of(before->begin(), before->end(),
                       [&](const auto& entry) { return entry.first->Count(Sign::Pass) >= entry.second + passes; });
  };
}

void Nothing(const Cast&) {}

Beat Gather() {
  return {u"A quiet group: six members start and hear each other", 15,
          [](const Cast& cast) {
            for (Actor* actor : cast.Present()) actor->Tell(PeerList(cast).toStdString());
          },
          [](const Cast& cast) {
            return std::ranges::all_of(cast.Present(), [](Actor* a) { return a->Count(Sign::HearsAll) > 0; });
          },
          u"Not every member heard all six."};
}

Beat Reclaim() {
  return {u"Cache goes over its own limit, is asked to reclaim, and stays", 15,
          [](const Cast& cast) { cast.Cache().Tell("cache " + std::to_string(OverOwnLimitMiB)); },
          [](const Cast& cast) { return cast.Cache().Count(Sign::MemoryReclaimed) > 0; },
          u"Cache did not come back below its limit."};
}

Beat Leak() {
  return {u"Leak goes over its own limit and has nothing to give back", 15,
          [](const Cast& cast) { cast.Leak().Tell("hold " + std::to_string(OverOwnLimitMiB)); },
          [](const Cast& cast) { return cast.Leak().ExitCode() == ExitCodes::Memory; },
          u"Leak did not end itself with the configured code."};
}

Beat Fill() {
  return {u"The group fills up; nobody is over its own limit", 12,
          [](const Cast& cast) {
            cast.Quiet().Tell("hold 40");
            cast.Large().Tell("hold 110");
            cast.Medium().Tell("hold 40");
          },
          [](const Cast& cast) { return cast.Large().Measure().m_bytes >= 108 * MiB; }, u"Large did not grow."};
}

// Before the group is tipped over, everybody has to have heard who holds the largest share.
Beat LetItBeHeard() { return {{}, 10, Nothing, EachPasses(2), u"A member stopped making passes."}; }

Beat Tip() {
  return {u"Medium tips the group over its limit; Large has the highest share and yields", 12,
          [](const Cast& cast) { cast.Medium().Tell("hold 96"); },
          [](const Cast& cast) { return cast.Large().ExitCode() == ExitCodes::Memory; }, u"Large did not yield."};
}

Beat OthersStay() {
  return {u"The others go on: with Large gone the group is below its limit", 10, Nothing, EachPasses(2),
          u"A member stopped making passes."};
}

Beat Burn() {
  return {u"Burner takes more CPU than the group may; asked to reclaim, it throttles itself",
          20,
          [](const Cast& cast) {
            cast.Burner().Tell("cooperate");
            cast.Burner().Tell("burn 70");
          },
          [](const Cast& cast) { return cast.Burner().Count(Sign::CpuReclaimed) > 0; },
          u"Burner did not go over the CPU limit and come back. Other work may leave it too little to burn.",
          true};
}

Beat Defy() {
  return {u"Burner burns again and no longer throttles",
          20,
          [](const Cast& cast) {
            cast.Burner().Tell("defy");
            cast.Burner().Tell("burn 70");
          },
          [](const Cast& cast) { return cast.Burner().ExitCode() == ExitCodes::Cpu; },
          u"Burner did not end itself with the configured code.",
          true};
}

Beat Leave() {
  return {u"The rest leave", 10,
          [](const Cast& cast) {
            for (Actor* actor : cast.Present()) actor->Dismiss();
          },
          [](const Cast& cast) { return cast.Present().empty(); }, u"A member did not leave when asked to."};
}

}  // namespace

std::vector<Actor*> Cast::Present() const {
  std::vector<Actor*> present;
  for (const auto& actor : m_actors) {
    if (!actor->ExitCode()) present.push_back(actor.get());
  }
  return present;
}

std::vector<Beat> TellStory() {
  return {Gather(), Reclaim(), Leak(), Fill(), LetItBeHeard(), Tip(), OthersStay(), Burn(), Defy(), Leave()};
}

int ToldExitCode(size_t member) {
  constexpr std::array<int, MemberNames.size()> Codes = {0, 0, ExitCodes::Memory, ExitCodes::Memory, 0, ExitCodes::Cpu};
  return Codes[member];
}

}  // namespace demo
