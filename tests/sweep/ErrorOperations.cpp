// Errors and their records.
#include <stdexcept>
#include <utility>

#include "qilsys/QuillonError.h"
#include "qilsys/TError.h"
#include "sweep/Observed.h"
#include "sweep/Operation.h"

namespace qilsys::test::sweep {
namespace {

using Text = TStringCore;
using TError::ErrorInfo;

constexpr Leave Attributes{Raises::Standard, Left::Unchanged, "attributes are a container of the standard library"};
constexpr Leave AttributesAndTexts{Raises::Either, Left::Unchanged, Attributes.reason};

/// Two records with attributes.
struct Errors {
  explicit Errors(Shape shape)
      : name(shape == Shape::Inline ? u"Name" : u"A_Name_That_Needs_A_Block"),
        error(QuillonError::MakeError(7, name)),
        info(error, TError::NeedsClassification, grpc::StatusCode::NOT_FOUND),
        other(QuillonError::MakeError(8, u"Another_Name_That_Needs_A_Block"), TError::Client,
              grpc::StatusCode::ABORTED) {
    if (shape != Shape::SharedBlock) name = TStringCore(name.constData(), name.length());
    info.SetAuxDatum(u"a key that needs a block", name);
    info.SetAuxDatum(u"key", u"a value that needs a block");
    other.SetAuxDatum(u"one", u"1");
    other.SetAuxDatum(u"two, which needs a block too", u"2");
    other.SetAuxDatum(u"three", u"3");
    attributes = other.GetAuxAttrs();
  }
  std::string Observe() const {
    Observed seen;
    AddInfo(seen, info);
    AddInfo(seen, other);
    AddAttributes(seen, attributes);
    seen.Add(name).Add(error.GetCode()).Add(error.GetCodeName());
    return seen.Add(one).Add(two).Add(three).Add(flag).Add(number).Bytes();
  }
  static void AddAttributes(Observed& seen, const std::map<Text, Text>& attributes) {
    for (const auto& [key, value] : attributes) seen.Add(key).Add(value);
  }
  static void AddInfo(Observed& seen, const ErrorInfo& info) {
    seen.Add(info.GetQuillonError().GetCode()).Add(info.GetQuillonError().GetCodeName());
    seen.Add(info.GetErrorSource()).Add(info.GetStatusCode());
    AddAttributes(seen, info.GetAuxAttrs());
  }

  Text name;
  QuillonError error;
  ErrorInfo info;
  ErrorInfo other;
  std::map<Text, Text> attributes;
  Text one;
  Text two;
  Text three;
  int number = 0;
  bool flag = false;
};

constexpr Row<Errors> Identity[] = {
    {"MakeError", [](Errors& e) { e.one = QuillonError::MakeError(1, u"A_Name_That_Needs_A_Block").GetCodeName(); }},
    {"QuillonError_NoError", [](Errors& e) { e.one = QuillonError::NoError().GetCodeName(); }},
    {"QuillonError_Copy", [](Errors& e) { e.one = QuillonError(e.error).GetCodeName(); }},
    {"QuillonError_Assign", [](Errors& e) { e.error = e.other.GetQuillonError(); }},
    {"GetErrorSourceAsString", [](Errors& e) { e.one = TError::GetErrorSourceAsString(TError::NeedsClassification); }},
    {"GetErrorSourceFromString", [](Errors& e) { e.number = TError::GetErrorSourceFromString(u"CONFIGURATION"); }},
    {"GetStatusCodeAsString",
     [](Errors& e) { e.one = TError::GetStatusCodeAsString(grpc::StatusCode::FAILED_PRECONDITION); }},
    {"GetStatusCodeFromString", [](Errors& e) { e.number = TError::GetStatusCodeFromString(u"failed_precondition"); }},
};

constexpr Row<Errors> Records[] = {
    {"ErrorInfo", [](Errors& e) { e.flag = ErrorInfo(e.error, TError::System, grpc::StatusCode::OK) == e.info; }},
    {"ErrorInfo_Copy", [](Errors& e) { e.flag = ErrorInfo(e.info) == e.info; }, Attributes},
    {"ErrorInfo_Assign", [](Errors& e) { e.info = e.other; }, Attributes},
    {"ErrorInfo_Equal", [](Errors& e) { e.flag = e.info == e.other; }},
    {"ErrorInfo_NoError", [](Errors& e) { e.number = ErrorInfo::NoError().GetStatusCode(); }},
    {"ErrorInfo_InvalidErrorInfo", [](Errors& e) { e.number = ErrorInfo::InvalidErrorInfo().GetStatusCode(); }},
    {"ErrorInfo_TestError", [](Errors& e) { e.number = ErrorInfo::TestError().GetStatusCode(); }},
    {"GetAuxAttrs", [](Errors& e) { e.attributes = e.info.GetAuxAttrs(); }, Attributes},
    {"SetAuxAttrs", [](Errors& e) { e.info.SetAuxAttrs(e.attributes); }, Attributes},
    {"GetAuxDatum", [](Errors& e) { e.one = e.info.GetAuxDatum(u"key"); }},
    {"SetAuxDatum_New",
     [](Errors& e) { e.info.SetAuxDatum(u"a new key that needs a block", u"a value that needs a block"); },
     AttributesAndTexts},
    {"SetAuxDatum_Known", [](Errors& e) { e.info.SetAuxDatum(u"key", u"another value that needs a block"); }},
    {"GetMembersAsStrings", [](Errors& e) { e.info.GetMembersAsStrings(e.one, e.two, e.three); }},
    {"FromStringifiedMembers",
     [](Errors& e) {
       const ErrorInfo read = ErrorInfo::FromStringifiedMembers(u"0x000000FF", u"NeedsClassification", u"5");
       e.number = static_cast<int>(read.GetQuillonError().GetCode());
       e.one = read.GetQuillonError().GetCodeName();
     },
     {Raises::Either, Left::Unchanged, "the three texts are read as std::string"}},
    {"FromStringifiedMembers_Refused",
     [](Errors& e) {
       try {
         ErrorInfo::FromStringifiedMembers(u"0x000000FF and more than that", u"Nobody", u"5");
       } catch (const std::invalid_argument&) {
         e.flag = true;
       }
     },
     {Raises::Either, Left::Unchanged, "the three texts are read as std::string"}},
};

}  // namespace

void AddErrors(std::vector<Operation>& operations) {
  AddRows<Errors>(operations, Identity);
  AddRows<Errors>(operations, Records);
}

}  // namespace qilsys::test::sweep
