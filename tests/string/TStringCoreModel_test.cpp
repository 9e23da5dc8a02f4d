// Random edits, with arguments from elsewhere and from the edited text itself, against a naive model.
#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <vector>

#include "qilsys/TStringCore.h"
#include "support/Random.h"
#include "support/StringText.h"
#include "support/TStringCoreForTest.h"
#include "support/TextModel.h"

using qilsys::test::Rounds;
using qilsys::test::SeededRandom;
using qilsys::test::TextModel;
using qilsys::test::UnitsOf;

namespace {

/// Few units, so that matches are common: letters, space, line ends, pairs and their halves, now and then a NUL.
char16_t RandomUnit(SeededRandom& random) {
  static const char16_t Alphabet[] = u"aaabbbc \r\n\u00E9\xD83D\xDE00\xD83D\xDE00";
  constexpr int Size = static_cast<int>(std::size(Alphabet)) - 1;
  return random.OneIn(40) ? u'\0' : Alphabet[random.Between(0, Size - 1)];
}

std::u16string RandomUnits(SeededRandom& random, int most) {
  std::u16string units;
  for (int n = random.Between(0, most); n > 0; --n) units += RandomUnit(random);
  return units;
}

/// A text argument: units of the caller's, or a piece of the edited text.
struct Argument {
  std::u16string units;
  std::basic_string<TCodeUnit> kept;
  const TCodeUnit* data;
  int own;  // The offset in the edited text, or -1.
  int length() const { return static_cast<int>(units.size()); }
};

void RandomArgument(SeededRandom& random, const TStringCore& text, Argument& argument) {
  argument.units = RandomUnits(random, 6);
  argument.kept.assign(argument.units.begin(), argument.units.end());
  argument.data = argument.kept.c_str();
  argument.own = -1;
  if (text.empty() || !random.OneIn(3)) return;
  argument.own = random.Between(0, text.length());
  const int n = random.Between(0, std::min(text.length() - argument.own, 20));
  argument.units = UnitsOf(text).substr(static_cast<std::size_t>(argument.own), static_cast<std::size_t>(n));
  argument.data = text.constData() + argument.own;
}

class Walk {
 public:
  void Step() {
    const auto& edits = Edits();
    m_edit = m_random.Between(0, static_cast<int>(edits.size()) - 1);
    RandomArgument(m_random, m_text, m_argument);
    RandomArgument(m_random, m_text, m_second);
    m_position = m_random.Between(-2, m_text.length() + 2);
    m_count = m_random.Between(-1, 8);
    m_unit = RandomUnit(m_random);
    if (m_random.OneIn(3)) {
      m_sharer = m_text;
      m_shared = m_model.units();
    }
    edits[static_cast<std::size_t>(m_edit)](*this);
    if (m_model.length() > 200) {
      m_text.truncate(30);
      m_model.Truncate(30);
    }
  }

  void Check() const {
    ASSERT_EQ(UnitsOf(m_text), m_model.units()) << "edit " << m_edit << " at " << m_position << ", count " << m_count;
    ASSERT_EQ(m_text.constData()[m_text.length()], 0);
    ASSERT_LT(m_text.length(), m_text.capacity());
    ASSERT_TRUE(!qilsys::test::TStringCoreForTest::IsInline(m_text) || m_text.length() <= 14);
    ASSERT_EQ(UnitsOf(m_sharer), m_shared) << "edit " << m_edit << " wrote to a shared block";
  }

 private:
  using Edit = std::function<void(Walk&)>;

  /// The argument as NUL-terminated text; own text of a given length may go on behind it.
  std::u16string Terminated(const Argument& a) const {
    const std::basic_string<TCodeUnit> units(a.data);
    return std::u16string(units.begin(), units.end());
  }

  static std::vector<Edit> EditsThatPutIn() {
    return {
        [](Walk& w) {
          w.m_model.Append(w.m_argument.units), w.m_text.append(w.m_argument.data, w.m_argument.length());
        },
        [](Walk& w) { w.m_model.Append(std::u16string(1, w.m_unit)), w.m_text.append(w.m_unit); },
        [](Walk& w) { w.m_model.Append(w.m_model.units()), w.m_text.append(w.m_text); },
        [](Walk& w) { w.m_model.Assign(w.m_argument.units), w.AssignArgument(); },
        [](Walk& w) {
          w.m_model.Insert(w.m_position, w.m_argument.units, w.m_argument.own);
          w.m_text.insert(w.m_position, w.m_argument.data, w.m_argument.length());
        },
        [](Walk& w) { w.m_model.InsertUnit(w.m_position, w.m_unit), w.m_text.insert(w.m_position, w.m_unit); },
        [](Walk& w) {
          w.m_model.Replace(w.m_position, w.m_count, w.m_argument.units, w.m_argument.own);
          w.m_text.replace(w.m_position, w.m_count, w.m_argument.data, w.m_argument.length());
        },
        [](Walk& w) {
          w.m_model.ReplaceByUnit(w.m_position, w.m_count, w.m_unit);
          w.m_text.replace(w.m_position, w.m_count, w.m_unit);
        },
        [](Walk& w) {
          const int wanted = w.m_model.ReplaceCount(w.m_argument.units, w.m_second.units);
          const int count =
              w.m_text.replaceCount(w.m_argument.data, w.m_argument.length(), w.m_second.data, w.m_second.length());
          ASSERT_EQ(count, wanted);
        },
        [](Walk& w) { w.m_model.ReplaceUnit(w.m_unit, u'z'), w.m_text.replace(w.m_unit, u'z'); },
    };
  }

  static std::vector<Edit> EditsThatTakeOut() {
    return {
        [](Walk& w) { w.m_model.RemoveAt(w.m_position, w.m_count), w.m_text.removeAt(w.m_position, w.m_count); },
        [](Walk& w) {
          w.m_model.RemoveAll(w.m_argument.units);
          w.m_text.removeAll(w.m_argument.data, w.m_argument.length());
        },
        [](Walk& w) { w.m_model.RemoveUnit(w.m_unit), w.m_text.removeAll(w.m_unit); },
        [](Walk& w) {
          w.m_model.RemoveAnyOf(w.Terminated(w.m_argument), w.m_position);
          w.m_text.removeAnyOf(w.m_argument.data, w.m_position);
        },
        [](Walk& w) {
          w.m_model.ReplaceAnyOf(w.Terminated(w.m_argument), w.m_unit, w.m_position);
          w.m_text.replaceAnyOf(w.m_argument.data, w.m_unit, w.m_position);
        },
        [](Walk& w) { w.m_model.Truncate(w.m_position), w.m_text.truncate(w.m_position); },
        [](Walk& w) { w.m_model.TrimSpace(), w.m_text.trim(); },
        [](Walk& w) { w.m_model.TrimUnit(w.m_unit), w.m_text.trim(w.m_unit); },
        [](Walk& w) {
          const int n = std::max(w.m_count, 0) * 3;
          w.m_model.Fill(w.m_unit, n), w.m_text.fill(w.m_unit, n);
        },
        [](Walk& w) { w.m_model.Reverse(), w.m_text.reverse(); },
        [](Walk& w) { w.m_model.DosToUnix(), w.m_text.dosToUnix(); },
        [](Walk& w) { w.m_model.UnixToDos(), w.m_text.unixToDos(); },
    };
  }

  static std::vector<Edit> EditsOfStorage() {
    return {
        [](Walk& w) { w.m_text.squeeze(); },
        [](Walk& w) { w.m_text.reserve(std::max(w.m_position, 0)); },
        [](Walk& w) { w.m_text = TStringCore(std::move(w.m_text)); },
        [](Walk& w) { w.m_text = w.m_sharer, w.m_model.Assign(w.m_shared); },
        [](Walk& w) {
          w.m_text.swap(w.m_sharer);
          const std::u16string kept = w.m_model.units();
          w.m_model.Assign(w.m_shared);
          w.m_shared = kept;
        },
    };
  }

  static const std::vector<Edit>& Edits() {
    static const std::vector<Edit> EditRows = [] {
      std::vector<Edit> all = EditsThatPutIn();
      for (const auto& more : {EditsThatTakeOut(), EditsOfStorage()}) all.insert(all.end(), more.begin(), more.end());
      return all;
    }();
    return EditRows;
  }

  void AssignArgument() { m_text.assign(m_argument.data, m_argument.length()); }

  SeededRandom m_random;
  TStringCore m_text;
  TextModel m_model{u""};
  TStringCore m_sharer;
  std::u16string m_shared;
  Argument m_argument;
  Argument m_second;
  int m_edit = 0;
  int m_position = 0;
  int m_count = 0;
  TCodeUnit m_unit = 0;
};

TEST(TStringCoreModel, RandomEditsAgree) {
  Walk walk;
  for (int round = Rounds(200000); round > 0; --round) {
    walk.Step();
    walk.Check();
    if (HasFatalFailure()) return;
  }
}

}  // namespace
