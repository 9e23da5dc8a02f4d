// Objects made once for the process.
#include <boost/any.hpp>

#include "qilsys/StaticRepository.h"
#include "sweep/Observed.h"
#include "sweep/Operation.h"

namespace qilsys::test::sweep {
namespace {

/// A repository of its own, with one object.
struct Repository {
  explicit Repository(Shape) {
    InitializeStaticRepository();
    InitOnce(&known, &Make, this, &Look);
  }
  Repository(const Repository&) = delete;
  Repository& operator=(const Repository&) = delete;
  ~Repository() { DeinitializeStaticRepository(); }
  std::string Observe() const {
    return Observed().Add(known != nullptr).Add(slot != nullptr).Add(inner != nullptr).Bytes();
  }

  static boost::any* Make(void*) { return new boost::any(1); }
  static boost::any* MakeAfterAnother(void* self) {
    InitOnce(&static_cast<Repository*>(self)->inner, &Make, self, &Look);
    return Make(self);
  }
  static void* Look(boost::any* object) { return boost::any_cast<int>(object); }

  void* known = nullptr;
  void* slot = nullptr;
  void* inner = nullptr;
};

constexpr Leave Tables{Raises::Standard, Left::Unchanged, "its tables are containers of the standard library"};
constexpr Leave Nested{Raises::Standard, Left::Begun, "the inner object stays where the outer one fails"};

constexpr Row<Repository> Keeping[] = {
    {"InitializeStaticRepository", [](Repository&) { InitializeStaticRepository(); }},
    {"InitializeStaticRepository_Again",
     [](Repository&) {
       DeinitializeStaticRepository();
       InitializeStaticRepository();
     },
     Tables},
    {"DeinitializeStaticRepository", [](Repository&) { DeinitializeStaticRepository(); }},
    {"InitOnce", [](Repository& r) { InitOnce(&r.slot, &Repository::Make, &r, &Repository::Look); }, Tables},
    {"InitOnce_Known",
     [](Repository& r) {
       r.known = nullptr;
       InitOnce(&r.known, &Repository::Make, &r, &Repository::Look);
     }},
    {"InitOnce_Nested", [](Repository& r) { InitOnce(&r.slot, &Repository::MakeAfterAnother, &r, &Repository::Look); },
     Nested},
};

}  // namespace

void AddRepository(std::vector<Operation>& operations) { AddRows<Repository>(operations, Keeping); }

}  // namespace qilsys::test::sweep
