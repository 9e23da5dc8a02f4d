/// What the sweep runs: a table of named operations, each with the object that it works on.
#pragma once

#include <memory>
#include <span>
#include <string>
#include <vector>

namespace qilsys::test::sweep {

/// How the texts of a subject lie in memory.
enum class Shape { Inline, OwnBlock, SharedBlock };
inline constexpr Shape Shapes[] = {Shape::Inline, Shape::OwnBlock, Shape::SharedBlock};
const char* NameOf(Shape shape);

/// What an operation may raise where memory ends.
enum class Raises {
  Own,       ///< TStringCore::OutOfMemoryException.
  Standard,  ///< std::bad_alloc.
  Either,    ///< Both: it makes texts and what else comes from the operators.
  Nothing,
};

/// What may have become of the object then.
enum class Left {
  Unchanged,
  Begun,     ///< Changed, and fit to be gone on with: the operation may be run again.
  Unusable,  ///< Or gone, as the operation has it that ends its object.
};

/// What an operation that raises nothing may come to then.
enum class Result { Same, Another };

/// When an operation makes use of its leave: always, or as the first of its process and where things fall so.
enum class When { Always, Sometimes };

/// Leave to differ from the rule, which is a string's own exception and an object as it was.
struct Leave {
  Raises raises = Raises::Own;
  Left left = Left::Unchanged;
  const char* reason = "";
  Result result = Result::Same;
  When when = When::Always;
};

/// An operation together with an object that is made for one run of it.
class Subject {
 public:
  virtual ~Subject() = default;
  virtual void Run() = 0;
  /// Whatever a caller can see of the object, of those that share a block with it, and of results so far.
  virtual std::string Observe() const = 0;
};

struct Operation {
  std::string name;
  Leave leave;
  std::unique_ptr<Subject> (*make)(const void* row, Shape shape);
  const void* row;

  std::unique_ptr<Subject> Make(Shape shape) const { return make(row, shape); }
};

/// A row of a table of operations on a `State`, which is made of a Shape and has an Observe.
template <class State>
struct Row {
  const char* name;
  void (*run)(State& state);
  Leave leave{};
};

/// Adds the rows of a table, which must outlive the list.
template <class State>
void AddRows(std::vector<Operation>& operations, std::span<const Row<State>> rows) {
  class Running : public Subject {
   public:
    Running(const Row<State>& row, Shape shape) : m_row(row), m_state(shape) {}
    void Run() override { m_row.run(m_state); }
    std::string Observe() const override { return m_state.Observe(); }

   private:
    const Row<State>& m_row;
    State m_state;
  };
  for (const Row<State>& row : rows) {
    operations.push_back({row.name, row.leave,
                          [](const void* made, Shape shape) -> std::unique_ptr<Subject> {
                            return std::make_unique<Running>(*static_cast<const Row<State>*>(made), shape);
                          },
                          &row});
  }
}

// The tables, one a source.
void AddTextMaking(std::vector<Operation>& operations);
void AddTextReading(std::vector<Operation>& operations);
void AddTextSearching(std::vector<Operation>& operations);
void AddTextEditing(std::vector<Operation>& operations);
void AddTextCutting(std::vector<Operation>& operations);
void AddUnicode(std::vector<Operation>& operations);
void AddExceptions(std::vector<Operation>& operations);
void AddErrors(std::vector<Operation>& operations);
void AddFormats(std::vector<Operation>& operations);
void AddScanning(std::vector<Operation>& operations);
void AddHashing(std::vector<Operation>& operations);
void AddSynchronizing(std::vector<Operation>& operations);
void AddAskingTheSystem(std::vector<Operation>& operations);
void AddRepository(std::vector<Operation>& operations);
void AddDiagnosing(std::vector<Operation>& operations);
void AddMonitoring(std::vector<Operation>& operations);
void AddPaths(std::vector<Operation>& operations);
void AddTasking(std::vector<Operation>& operations);

/// All of them.
const std::vector<Operation>& AllOperations();

}  // namespace qilsys::test::sweep
