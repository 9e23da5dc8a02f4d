// Strings that are edited, copied and moved must hold what plain texts hold after the same steps, and no step may reach a
// string that it does not name. Input: steps of a byte each, with the bytes that they ask for behind them; see Step.
#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <iterator>
#include <string>
#include <utility>

#include "qilsys/TStringCore.h"
#include "string/OwnText.h"
#include "support/StringText.h"
#include "support/TStringCoreForTest.h"
#include "support/TextModel.h"

namespace {

using qilsys::test::TextModel;
using Inside = qilsys::test::TStringCoreForTest;

constexpr std::size_t MostBytes = 1024;
constexpr int MostUnits = 200;

void Require(bool condition) {
  if (!condition) std::abort();
}

class Input {
 public:
  Input(const std::uint8_t* data, std::size_t size) : m_data(data), m_size(size) {}
  bool IsAtEnd() const { return m_at >= m_size; }
  int Byte() { return IsAtEnd() ? 0 : m_data[m_at++]; }
  // From -2 on, so that places before the text occur.
  int Place() { return Byte() % 64 - 2; }
  // ASCII, or one of the units that are treated in a way of their own.
  TCodeUnit Unit() {
    static constexpr TCodeUnit Others[] = {0xD83D, 0xDE00, 0xE9, 0x2003, 0xD800, 0xDC00, 0x85, 0xFEFF};
    const int byte = Byte();
    return byte < 0x80 ? static_cast<TCodeUnit>(byte) : Others[static_cast<std::size_t>(byte) % std::size(Others)];
  }

 private:
  const std::uint8_t* m_data;
  std::size_t m_size;
  std::size_t m_at = 0;
};

struct Slot {
  TStringCore text;
  TextModel model{u""};

  void Put(TStringCore made, std::u16string wanted) {
    text = std::move(made);
    model.Assign(wanted);
  }
};

// A text that a step is given: units of its own, or a piece of any of the strings, the edited one too.
struct Argument {
  std::basic_string<TCodeUnit> kept;
  const TCodeUnit* data = nullptr;
  std::u16string units;

  int Length() const { return static_cast<int>(units.size()); }
  // What it is where no length is given: own text may go on behind it.
  std::u16string Terminated() const {
    const std::basic_string<TCodeUnit> whole(data);
    return {whole.begin(), whole.end()};
  }
  // Where it stands in the text, also by way of a block that both share; else -1.
  int PlaceIn(const TStringCore& text) const {
    return qilsys::string::InSelf(text, data) ? static_cast<int>(data - text.constData()) : -1;
  }
};

class Strings {
 public:
  explicit Strings(const Input& input) : m_input(input) {}

  void Run() {
    while (!m_input.IsAtEnd()) {
      Step();
      for (Slot& slot : m_slots) Check(slot);
    }
  }

 private:
  static constexpr int Steps = 36;

  Slot& AnySlot() { return m_slots[static_cast<std::size_t>(m_input.Byte()) % std::size(m_slots)]; }

  // A first byte below 8 says how many units follow, another one from which string the piece is.
  void Take(Argument& argument) {
    const int kind = m_input.Byte() % 16;
    if (kind < 8) {
      for (int i = 0; i < kind; ++i) argument.kept += m_input.Unit();
      argument.data = argument.kept.c_str();
      argument.units.assign(argument.kept.begin(), argument.kept.end());
      return;
    }
    const TStringCore& source = m_slots[static_cast<std::size_t>(kind) % std::size(m_slots)].text;
    const int at = m_input.Byte() % (source.length() + 1);
    const int length = m_input.Byte() % (source.length() - at + 1);
    argument.data = source.constData() + at;
    argument.units.assign(argument.data, argument.data + length);
  }

  void Step() {
    const int step = m_input.Byte() % Steps;
    Slot& slot = AnySlot();
    if (step < 7) {
      PutIn(step, slot);
    } else if (step < 12) {
      Replace(step, slot);
    } else if (step < 24) {
      TakeOut(step, slot);
    } else {
      PassOn(step, slot, AnySlot());
    }
    if (slot.model.length() > MostUnits) {
      slot.text.truncate(MostUnits / 4);
      slot.model.Truncate(MostUnits / 4);
    }
  }

  void PutIn(int step, Slot& slot) {
    TStringCore& text = slot.text;
    TextModel& model = slot.model;
    const int at = m_input.Place();
    const TCodeUnit unit = m_input.Unit();
    Argument a;
    Take(a);
    const int own = a.PlaceIn(text);
    switch (step) {
      case 0:
        return model.Append(a.units), static_cast<void>(text.append(a.data, a.Length()));
      case 1:
        return model.Append(std::u16string(1, static_cast<char16_t>(unit))), static_cast<void>(text.append(unit));
      case 2:
        return model.Append(model.units()), static_cast<void>(text.append(text));
      case 3:
        return model.Assign(a.units), text.assign(a.data, a.Length());
      case 4:
        return model.Insert(at, a.units, own), static_cast<void>(text.insert(at, a.data, a.Length()));
      case 5:
        return model.InsertUnit(at, static_cast<char16_t>(unit)), static_cast<void>(text.insert(at, unit));
      default: {
        const int count = std::max(at, 0);
        return model.Fill(static_cast<char16_t>(unit), count), static_cast<void>(text.fill(unit, count));
      }
    }
  }

  void Replace(int step, Slot& slot) {
    TStringCore& text = slot.text;
    TextModel& model = slot.model;
    const int at = m_input.Place();
    const TCodeUnit unit = m_input.Unit();
    Argument a;
    Take(a);
    const int own = a.PlaceIn(text);
    switch (step) {
      case 7: {
        const int count = m_input.Place();
        return model.Replace(at, count, a.units, own), static_cast<void>(text.replace(at, count, a.data, a.Length()));
      }
      case 8: {
        const int count = m_input.Place();
        return model.ReplaceByUnit(at, count, static_cast<char16_t>(unit)),
               static_cast<void>(text.replace(at, count, unit));
      }
      case 9: {
        Argument after;
        Take(after);
        const int wanted = model.ReplaceCount(a.units, after.units);
        return Require(text.replaceCount(a.data, a.Length(), after.data, after.Length()) == wanted);
      }
      case 10:
        return model.ReplaceUnit(static_cast<char16_t>(unit), u'z'), static_cast<void>(text.replace(unit, u'z'));
      default:
        return model.ReplaceAnyOf(a.Terminated(), static_cast<char16_t>(unit), at),
               static_cast<void>(text.replaceAnyOf(a.data, unit, at));
    }
  }

  void TakeOut(int step, Slot& slot) {
    TStringCore& text = slot.text;
    TextModel& model = slot.model;
    const int at = m_input.Place();
    switch (step) {
      case 12: {
        const int count = m_input.Place();
        return model.RemoveAt(at, count), static_cast<void>(text.removeAt(at, count));
      }
      case 13: {
        Argument a;
        Take(a);
        return model.RemoveAll(a.units), static_cast<void>(text.removeAll(a.data, a.Length()));
      }
      case 14: {
        const TCodeUnit unit = m_input.Unit();
        return model.RemoveUnit(static_cast<char16_t>(unit)), static_cast<void>(text.removeAll(unit));
      }
      case 15: {
        Argument a;
        Take(a);
        return model.RemoveAnyOf(a.Terminated(), at), static_cast<void>(text.removeAnyOf(a.data, at));
      }
      case 16:
        return model.Truncate(at), static_cast<void>(text.truncate(at));
      case 17:
        return model.TrimSpace(), static_cast<void>(text.trim());
      case 18: {
        const TCodeUnit unit = m_input.Unit();
        return model.TrimUnit(static_cast<char16_t>(unit)), static_cast<void>(text.trim(unit));
      }
      case 19:
        return model.Reverse(), text.reverse();
      case 20:
        return model.DosToUnix(), static_cast<void>(text.dosToUnix());
      case 21:
        return model.UnixToDos(), static_cast<void>(text.unixToDos());
      case 22: {
        const int length = std::clamp(at, 0, model.length());
        return model.Assign(model.units().substr(0, static_cast<std::size_t>(length))), text.resize(length);
      }
      default:
        return model.Assign(u""), text.clear();
    }
  }

  // Storage, and what goes from one string to another.
  void PassOn(int step, Slot& slot, Slot& other) {
    const std::u16string units = slot.model.units();
    const std::u16string others = other.model.units();
    switch (step) {
      case 24:
        return slot.text.squeeze();
      case 25:
        return slot.text.reserve(4 * m_input.Byte());
      case 26:
      case 27:
        return slot.model.Assign(others), static_cast<void>(slot.text = other.text);
      case 28:
        return Move(slot, other);
      case 29:
        slot.model.Assign(others), other.model.Assign(units);
        return slot.text.swap(other.text);
      case 30:
        return slot.Put(other.text, others);
      case 31:
        return slot.model.Append(others), static_cast<void>(slot.text += other.text);
      case 32:
        return slot.Put(slot.text + other.text, units + others);
      case 33: {
        const std::size_t n = static_cast<std::size_t>(m_input.Byte()) % (others.size() + 1);
        return slot.Put(other.text.left(static_cast<int>(n)), others.substr(0, n));
      }
      case 34: {
        const std::size_t n = static_cast<std::size_t>(m_input.Byte()) % (others.size() + 1);
        return slot.Put(other.text.right(static_cast<int>(n)), others.substr(others.size() - n));
      }
      default: {
        const std::size_t at = static_cast<std::size_t>(m_input.Byte()) % (others.size() + 1);
        const std::size_t n = static_cast<std::size_t>(m_input.Byte()) % (others.size() + 1);
        return slot.Put(other.text.mid(static_cast<int>(at), static_cast<int>(n)), others.substr(at, n));
      }
    }
  }

  // A string whose text lies inside the object keeps it.
  static void Move(Slot& slot, Slot& other) {
    if (&slot == &other) return static_cast<void>(slot.text = TStringCore(std::move(slot.text)));
    const bool keeps = Inside::IsInline(other.text);
    slot.model.Assign(other.model.units());
    slot.text = std::move(other.text);
    if (!keeps) other.model.Assign(u"");
  }

  static void Check(const Slot& slot) {
    Require(qilsys::test::UnitsOf(slot.text) == slot.model.units());
    Require(slot.text.constData()[slot.text.length()] == 0);
    Require(slot.text.length() < slot.text.capacity());
  }

  Input m_input;
  Slot m_slots[4];
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  if (size > MostBytes) return 0;
  Strings(Input(data, size)).Run();
  return 0;
}
