#include "sweep/Operation.h"

namespace qilsys::test::sweep {

const std::vector<Operation>& AllOperations() {
  static const std::vector<Operation> Operations = [] {
    std::vector<Operation> all;
    for (const auto add :
         {&AddTextMaking, &AddTextReading, &AddTextSearching, &AddTextEditing, &AddTextCutting, &AddUnicode,
          &AddFormats, &AddScanning, &AddErrors, &AddExceptions, &AddHashing, &AddSynchronizing, &AddAskingTheSystem,
          &AddRepository, &AddDiagnosing, &AddPaths, &AddTasking, &AddMonitoring}) {
      add(all);
    }
    return all;
  }();
  return Operations;
}

}  // namespace qilsys::test::sweep
