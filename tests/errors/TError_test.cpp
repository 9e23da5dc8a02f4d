#include "qilsys/TError.h"

#include <gtest/gtest.h>

#include <stdexcept>
#include <string>

#include "support/DefaultLocale.h"
#include "support/FailingNew.h"
#include "support/RowName.h"
#include "support/Utf8.h"

using qilsys::test::FailOneByOne;
using qilsys::test::Utf8;
using TError::ErrorInfo;
using TError::ErrorSource;

namespace {

using Attrs = std::map<TStringCore, TStringCore>;

ErrorInfo InfoOf(unsigned int code, ErrorSource source = TError::Client,
                 grpc::StatusCode status = grpc::StatusCode::UNKNOWN) {
  return ErrorInfo(QuillonError::MakeError(code, u"name"), source, status);
}

// ---- The two enumerations

struct SourceRow {
  const char* name;
  int value;
  const char* text;
};
void PrintTo(const SourceRow& row, std::ostream* out) { *out << row.name; }

class TErrorSource : public testing::TestWithParam<SourceRow> {};

TEST_P(TErrorSource, HasThisText) {
  EXPECT_EQ(Utf8(TError::GetErrorSourceAsString(static_cast<ErrorSource>(GetParam().value))), GetParam().text);
}

INSTANTIATE_TEST_SUITE_P(
    Table, TErrorSource,
    testing::Values(SourceRow{"Client", 1, "Client"}, SourceRow{"System", 2, "System"},
                    SourceRow{"NeedsClassification", 4, "NeedsClassification"}, SourceRow{"Content", 6, "Content"},
                    SourceRow{"DataSource", 7, "DataSource"}, SourceRow{"Configuration", 8, "Configuration"},
                    SourceRow{"Unnamed0", 0, "NeedsClassification"}, SourceRow{"Unnamed3", 3, "NeedsClassification"},
                    SourceRow{"Unnamed5", 5, "NeedsClassification"}, SourceRow{"Unnamed9", 9, "NeedsClassification"},
                    SourceRow{"Negative", -1, "NeedsClassification"}),
    qilsys::test::RowName<SourceRow>);

TEST(TErrorSourceValues, AreTheTabledOnes) {
  EXPECT_EQ(TError::ErrorSource::Client, 1);
  EXPECT_EQ(TError::ErrorSource::System, 2);
  EXPECT_EQ(TError::ErrorSource::NeedsClassification, 4);
  EXPECT_EQ(TError::ErrorSource::Content, 6);
  EXPECT_EQ(TError::ErrorSource::DataSource, 7);
  EXPECT_EQ(TError::ErrorSource::Configuration, 8);
  static_assert(sizeof(ErrorSource) == 4);
}

struct TextRow {
  const char* name;
  const char16_t* text;
  int value;
};
void PrintTo(const TextRow& row, std::ostream* out) { *out << row.name; }

class TErrorSourceText : public testing::TestWithParam<TextRow> {};

TEST_P(TErrorSourceText, MeansThisSource) {
  EXPECT_EQ(TError::GetErrorSourceFromString(GetParam().text), GetParam().value);
}

INSTANTIATE_TEST_SUITE_P(Table, TErrorSourceText,
                         testing::Values(TextRow{"Client", u"Client", 1}, TextRow{"System", u"System", 2},
                                         TextRow{"Content", u"Content", 6}, TextRow{"DataSource", u"DataSource", 7},
                                         TextRow{"Configuration", u"Configuration", 8},
                                         TextRow{"LowerCase", u"client", 1}, TextRow{"UpperCase", u"CLIENT", 1},
                                         TextRow{"MixedCase", u"dAtAsOuRcE", 7},
                                         TextRow{"NeedsClassification", u"NeedsClassification", 4},
                                         TextRow{"Unknown", u"Nobody", 4}, TextRow{"Empty", u"", 4},
                                         TextRow{"Beginning", u"Clien", 4}, TextRow{"Longer", u"Clients", 4}),
                         qilsys::test::RowName<TextRow>);

struct StatusRow {
  const char* name;
  int value;
};
void PrintTo(const StatusRow& row, std::ostream* out) { *out << row.name; }

class TErrorStatus : public testing::TestWithParam<StatusRow> {};

TEST_P(TErrorStatus, HasThisText) {
  EXPECT_EQ(Utf8(TError::GetStatusCodeAsString(static_cast<grpc::StatusCode>(GetParam().value))), GetParam().name);
}

TEST_P(TErrorStatus, IsFoundByItsText) {
  EXPECT_EQ(TError::GetStatusCodeFromString(GetParam().name), GetParam().value);
}

TEST_P(TErrorStatus, IsFoundByItsTextInLowerCase) {
  EXPECT_EQ(TError::GetStatusCodeFromString(TStringCore(GetParam().name).toLower()), GetParam().value);
}

INSTANTIATE_TEST_SUITE_P(Table, TErrorStatus,
                         testing::Values(StatusRow{"OK", 0}, StatusRow{"CANCELLED", 1}, StatusRow{"UNKNOWN", 2},
                                         StatusRow{"INVALID_ARGUMENT", 3}, StatusRow{"DEADLINE_EXCEEDED", 4},
                                         StatusRow{"NOT_FOUND", 5}, StatusRow{"ALREADY_EXISTS", 6},
                                         StatusRow{"PERMISSION_DENIED", 7}, StatusRow{"RESOURCE_EXHAUSTED", 8},
                                         StatusRow{"FAILED_PRECONDITION", 9}, StatusRow{"ABORTED", 10},
                                         StatusRow{"OUT_OF_RANGE", 11}, StatusRow{"UNIMPLEMENTED", 12},
                                         StatusRow{"INTERNAL", 13}, StatusRow{"UNAVAILABLE", 14},
                                         StatusRow{"DATA_LOSS", 15}, StatusRow{"UNAUTHENTICATED", 16},
                                         StatusRow{"DO_NOT_USE", -1}),
                         qilsys::test::RowName<StatusRow>);

TEST(TErrorStatusText, OutsideTheTableIsDoNotUse) {
  EXPECT_EQ(Utf8(TError::GetStatusCodeAsString(static_cast<grpc::StatusCode>(17))), "DO_NOT_USE");
  EXPECT_EQ(Utf8(TError::GetStatusCodeAsString(static_cast<grpc::StatusCode>(-2))), "DO_NOT_USE");
}

TEST(TErrorStatusText, UnknownTextIsMinusOne) {
  EXPECT_EQ(TError::GetStatusCodeFromString(u"FINE"), -1);
  EXPECT_EQ(TError::GetStatusCodeFromString(u""), -1);
}

// ---- The record

TEST(ErrorInfo, KeepsItsFields) {
  const ErrorInfo info = InfoOf(0xA2BCBC42, TError::Content, grpc::StatusCode::DATA_LOSS);
  EXPECT_EQ(info.GetQuillonError().GetCode(), 0xA2BCBC42u);
  EXPECT_EQ(Utf8(info.GetQuillonError().GetCodeName()), "name");
  EXPECT_EQ(info.GetErrorSource(), TError::Content);
  EXPECT_EQ(info.GetStatusCode(), grpc::StatusCode::DATA_LOSS);
  EXPECT_TRUE(info.GetAuxAttrs().empty());
}

struct FixedRow {
  const char* name;
  ErrorInfo info;
  unsigned int code;
  const char* codeName;
  int source;
  int status;
};
void PrintTo(const FixedRow& row, std::ostream* out) { *out << row.name; }

class FixedErrorInfo : public testing::TestWithParam<FixedRow> {};

TEST_P(FixedErrorInfo, HasTheTabledFields) {
  EXPECT_EQ(GetParam().info.GetQuillonError().GetCode(), GetParam().code);
  EXPECT_EQ(Utf8(GetParam().info.GetQuillonError().GetCodeName()), GetParam().codeName);
  EXPECT_EQ(GetParam().info.GetErrorSource(), GetParam().source);
  EXPECT_EQ(GetParam().info.GetStatusCode(), GetParam().status);
  EXPECT_TRUE(GetParam().info.GetAuxAttrs().empty());
}

INSTANTIATE_TEST_SUITE_P(Table, FixedErrorInfo,
                         testing::Values(FixedRow{"NoError", ErrorInfo::NoError(), 0, "", 4, 0},
                                         FixedRow{"InvalidErrorInfo", ErrorInfo::InvalidErrorInfo(), 0xBADBEEF5,
                                                  "QilsysInvalidErrorInfo_0xBADBEEF5", 2, 13},
                                         FixedRow{"TestError", ErrorInfo::TestError(), 0, "", 8, 13}),
                         qilsys::test::RowName<FixedRow>);

TEST(ErrorInfo, EqualityLooksAtStatusSourceAndCode) {
  const ErrorInfo info = InfoOf(1);
  EXPECT_TRUE(info == InfoOf(1));
  EXPECT_FALSE(info != InfoOf(1));
  EXPECT_TRUE(info != InfoOf(2));
  EXPECT_FALSE(info == InfoOf(2));
  EXPECT_TRUE(info != InfoOf(1, TError::System));
  EXPECT_TRUE(info != InfoOf(1, TError::Client, grpc::StatusCode::OK));
}

TEST(ErrorInfo, EqualityIgnoresNameAndAttributes) {
  const ErrorInfo a(QuillonError::MakeError(1, u"one"), TError::Client, grpc::StatusCode::OK);
  ErrorInfo b(QuillonError::MakeError(1, u"uno"), TError::Client, grpc::StatusCode::OK);
  b.SetAuxDatum(u"key", u"value");
  EXPECT_TRUE(a == b);
  EXPECT_FALSE(a != b);
}

TEST(ErrorInfo, TestErrorDiffersFromNoError) { EXPECT_TRUE(ErrorInfo::TestError() != ErrorInfo::NoError()); }

// ---- Attributes

TEST(ErrorInfoAttributes, AbsentKeyIsEmpty) { EXPECT_TRUE(InfoOf(1).GetAuxDatum(u"key").empty()); }

TEST(ErrorInfoAttributes, SetAndOverwrite) {
  ErrorInfo info = InfoOf(1);
  info.SetAuxDatum(u"key", u"one");
  info.SetAuxDatum(u"key", u"two");
  EXPECT_EQ(Utf8(info.GetAuxDatum(u"key")), "two");
  EXPECT_EQ(info.GetAuxAttrs().size(), 1u);
}

TEST(ErrorInfoAttributes, KeysAreCaseSensitiveAndOrderedByUnit) {
  ErrorInfo info = InfoOf(1);
  info.SetAuxDatum(u"a", u"1");
  info.SetAuxDatum(u"B", u"2");
  info.SetAuxDatum(u"A", u"3");
  std::string keys;
  for (const auto& [key, value] : info.GetAuxAttrs()) {
    keys += Utf8(key);
  }
  EXPECT_EQ(keys, "ABa");
}

TEST(ErrorInfoAttributes, SetAllReplacesTheMap) {
  ErrorInfo info = InfoOf(1);
  info.SetAuxDatum(u"old", u"1");
  info.SetAuxAttrs(Attrs{{u"new", u"2"}});
  EXPECT_EQ(info.GetAuxAttrs().size(), 1u);
  EXPECT_EQ(Utf8(info.GetAuxDatum(u"new")), "2");
}

TEST(ErrorInfoAttributes, GetAllGivesACopy) {
  ErrorInfo info = InfoOf(1);
  Attrs attrs = info.GetAuxAttrs();
  attrs[u"key"] = u"value";
  EXPECT_TRUE(info.GetAuxAttrs().empty());
}

TEST(ErrorInfoAttributes, CopiesOwnTheirMap) {
  ErrorInfo info = InfoOf(1);
  info.SetAuxDatum(u"key", u"value");
  ErrorInfo copy(info);
  ErrorInfo assigned = InfoOf(2);
  assigned = info;
  info.SetAuxDatum(u"key", u"changed");
  EXPECT_EQ(Utf8(copy.GetAuxDatum(u"key")), "value");
  EXPECT_EQ(Utf8(assigned.GetAuxDatum(u"key")), "value");
}

TEST(ErrorInfoAttributes, SelfAssignmentKeepsThem) {
  ErrorInfo info = InfoOf(1);
  info.SetAuxDatum(u"key", u"value");
  const ErrorInfo& same = info;
  info = same;
  EXPECT_EQ(Utf8(info.GetAuxDatum(u"key")), "value");
}

// ---- When memory runs out

ErrorInfo InfoWithAttributes(unsigned int code, const char16_t* value) {
  ErrorInfo info = InfoOf(code);
  info.SetAuxAttrs(Attrs{{u"one", value}, {u"two", value}, {u"three", value}});
  return info;
}

void ExpectSame(const ErrorInfo& info, const ErrorInfo& wanted) {
  EXPECT_TRUE(info == wanted);
  EXPECT_EQ(Utf8(info.GetQuillonError().GetCodeName()), Utf8(wanted.GetQuillonError().GetCodeName()));
  EXPECT_TRUE(info.GetAuxAttrs() == wanted.GetAuxAttrs());
}

TEST(ErrorInfoOutOfMemory, AssignmentLeavesTheRecordAsItWas) {
  const ErrorInfo before = InfoWithAttributes(1, u"before");
  const ErrorInfo after = InfoWithAttributes(2, u"after");
  ErrorInfo info(before);
  EXPECT_EQ(FailOneByOne([&] { info = after; }, [&] { ExpectSame(info, before); }), 3);
  ExpectSame(info, after);
}

TEST(ErrorInfoOutOfMemory, SettingAllAttributesLeavesThemAsTheyWere) {
  const ErrorInfo before = InfoWithAttributes(1, u"before");
  const Attrs attrs{{u"four", u"value"}, {u"five", u"value"}};
  ErrorInfo info(before);
  EXPECT_EQ(FailOneByOne([&] { info.SetAuxAttrs(attrs); }, [&] { ExpectSame(info, before); }), 2);
  EXPECT_TRUE(info.GetAuxAttrs() == attrs);
}

TEST(ErrorInfoOutOfMemory, SettingOneAttributeLeavesThemAsTheyWere) {
  const ErrorInfo before = InfoWithAttributes(1, u"before");
  ErrorInfo info(before);
  EXPECT_EQ(FailOneByOne([&] { info.SetAuxDatum(u"four", u"value"); }, [&] { ExpectSame(info, before); }), 1);
  EXPECT_EQ(Utf8(info.GetAuxDatum(u"four")), "value");
}

// ---- The marshalled form

struct Marshalled {
  std::string code;
  std::string source;
  std::string status;

  bool operator==(const Marshalled&) const = default;
};
void PrintTo(const Marshalled& form, std::ostream* out) {
  *out << form.code << ' ' << form.source << ' ' << form.status;
}

Marshalled Write(const ErrorInfo& info) {
  TStringCore code(u"was full");
  TStringCore source(u"was full");
  TStringCore status(u"was full");
  info.GetMembersAsStrings(code, source, status);
  return {Utf8(code), Utf8(source), Utf8(status)};
}

TEST(ErrorInfoWriter, WritesUpperCaseDigitsBehindALowerCasePrefix) {
  EXPECT_EQ(Write(ErrorInfo::InvalidErrorInfo()), (Marshalled{"0xBADBEEF5", "System", "13"}));
}

TEST(ErrorInfoWriter, PadsTheCode) {
  EXPECT_EQ(Write(InfoOf(0xABCD, TError::DataSource, grpc::StatusCode::UNAUTHENTICATED)),
            (Marshalled{"0x0000ABCD", "DataSource", "16"}));
}

TEST(ErrorInfoWriter, WritesNoError) {
  EXPECT_EQ(Write(ErrorInfo::NoError()), (Marshalled{"0x00000000", "NeedsClassification", "0"}));
}

TEST(ErrorInfoWriter, WritesDoNotUseAsMinusOne) {
  EXPECT_EQ(Write(InfoOf(1, TError::Client, grpc::StatusCode::DO_NOT_USE)), (Marshalled{"0x00000001", "Client", "-1"}));
}

TEST(ErrorInfoWriter, AssignsTheCodeLast) {
  TStringCore all;
  ErrorInfo::InvalidErrorInfo().GetMembersAsStrings(all, all, all);
  EXPECT_EQ(Utf8(all), "0xBADBEEF5");
}

ErrorInfo Read(const Marshalled& form) {
  return ErrorInfo::FromStringifiedMembers(TStringCore::fromStdString(form.code),
                                           TStringCore::fromStdString(form.source),
                                           TStringCore::fromStdString(form.status));
}

TEST(ErrorInfoReader, NoErrorComesBackWithANameMadeOfItsCode) {
  const ErrorInfo info = Read(Write(ErrorInfo::NoError()));
  EXPECT_TRUE(info == ErrorInfo::NoError());
  EXPECT_EQ(Utf8(info.GetQuillonError().GetCodeName()), "AutoGen_0x00000000");
}

TEST(ErrorInfoReader, NeverGetsTheNameOfTheSender) {
  const ErrorInfo sent(QuillonError::MakeError(0xA2BCBC42, u"QuillonException_AutoGen_0xA2BCBC42"), TError::Client,
                       grpc::StatusCode::UNKNOWN);
  const ErrorInfo info = Read(Write(sent));
  EXPECT_TRUE(info == sent);
  EXPECT_EQ(Utf8(info.GetQuillonError().GetCodeName()), "AutoGen_0xA2BCBC42");
}

TEST(ErrorInfoReader, GetsNoAttributes) {
  ErrorInfo sent = InfoOf(5);
  sent.SetAuxDatum(u"key", u"value");
  const ErrorInfo info = Read(Write(sent));
  EXPECT_TRUE(info == sent);
  EXPECT_TRUE(info.GetAuxAttrs().empty());
}

TEST(ErrorInfoReader, KeepsTheCaseOfTheDigitsInTheName) {
  const ErrorInfo upper = Read({"0x0000ABCD", "Client", "2"});
  const ErrorInfo lower = Read({"0x0000abcd", "Client", "2"});
  EXPECT_TRUE(upper == lower);
  EXPECT_EQ(upper.GetQuillonError().GetCode(), 0xABCDu);
  EXPECT_EQ(Utf8(upper.GetQuillonError().GetCodeName()), "AutoGen_0x0000ABCD");
  EXPECT_EQ(Utf8(lower.GetQuillonError().GetCodeName()), "AutoGen_0x0000abcd");
}

TEST(ErrorInfoReader, TakesEveryStatusOfTheTable) {
  for (int status = 0; status <= 16; ++status) {
    EXPECT_EQ(Read({"0x00000001", "Client", std::to_string(status)}).GetStatusCode(), status);
  }
}

TEST(ErrorInfoReader, TakesALeadingZeroInTheStatus) {
  EXPECT_EQ(Read({"0x00000001", "Client", "07"}).GetStatusCode(), 7);
}

TEST(ErrorInfoReader, TakesSourcesInAnyCase) {
  EXPECT_EQ(Read({"0x00000001", "dATAsOURCE", "0"}).GetErrorSource(), TError::DataSource);
  EXPECT_EQ(Read({"0x00000001", "needsclassification", "0"}).GetErrorSource(), TError::NeedsClassification);
}

// Where "I" lowers to a dotless "i".
TEST(ErrorInfoReader, TakesSourcesInAnyCaseInATurkishEnvironment) {
  for (const char* name : {"tr_TR", "az"}) {
    const qilsys::test::DefaultLocale locale(name);
    EXPECT_TRUE(Read({"0x00000000", "NEEDSCLASSIFICATION", "0"}) == ErrorInfo::NoError()) << name;
    EXPECT_EQ(Read({"0x00000001", "CLIENT", "0"}).GetErrorSource(), TError::Client) << name;
    EXPECT_EQ(Write(InfoOf(0xABCDEF01)).code, "0xABCDEF01") << name;
  }
}

TEST(ErrorInfoReader, AnUnnamedSourceComesBackAsNeedsClassification) {
  const ErrorInfo sent = InfoOf(1, static_cast<ErrorSource>(3));
  EXPECT_EQ(Write(sent).source, "NeedsClassification");
  const ErrorInfo info = Read(Write(sent));
  EXPECT_EQ(info.GetErrorSource(), 4);
  EXPECT_TRUE(info != sent);
}

TEST(ErrorInfoReader, TakesTheLargestCode) {
  EXPECT_EQ(Read({"0xFFFFFFFF", "Client", "0"}).GetQuillonError().GetCode(), 0xFFFFFFFFu);
}

struct ProblemRow {
  const char* name;
  Marshalled form;
  int problem;
};
void PrintTo(const ProblemRow& row, std::ostream* out) { *out << row.name; }

class ErrorInfoReaderProblem : public testing::TestWithParam<ProblemRow> {};

TEST_P(ErrorInfoReaderProblem, IsToldByItsNumber) {
  try {
    Read(GetParam().form);
    ADD_FAILURE() << "was accepted";
  } catch (const std::invalid_argument& error) {
    EXPECT_EQ(error.what(), "Encountered a problem (" + std::to_string(GetParam().problem) +
                                ") during TError::ErrorInfo unmarshaling");
  }
}

const std::string GoodCode = "0x00000001";
const std::string GoodSource = "Client";

INSTANTIATE_TEST_SUITE_P(
    Table, ErrorInfoReaderProblem,
    testing::Values(
        ProblemRow{"StatusEmpty", {GoodCode, GoodSource, ""}, 1},
        ProblemRow{"StatusNegative", {GoodCode, GoodSource, "-1"}, 1},
        ProblemRow{"StatusOfThreeDigits", {GoodCode, GoodSource, "100"}, 1},
        ProblemRow{"StatusWithLineFeed", {GoodCode, GoodSource, "1\n"}, 1},
        ProblemRow{"StatusWithSpace", {GoodCode, GoodSource, " 1"}, 1},
        ProblemRow{"StatusArabicDigit", {GoodCode, GoodSource, "\xD9\xA1"}, 1},
        ProblemRow{"StatusName", {GoodCode, GoodSource, "OK"}, 1},
        ProblemRow{"StatusEmbeddedNul", {GoodCode, GoodSource, std::string("1\0", 2)}, 1},
        ProblemRow{"SourceEmpty", {GoodCode, "", "0"}, 2}, ProblemRow{"SourceWithDigit", {GoodCode, "Client1", "0"}, 2},
        ProblemRow{"SourceWithSpace", {GoodCode, "Data Source", "0"}, 2},
        ProblemRow{"SourceWithLineFeed", {GoodCode, "Client\n", "0"}, 2},
        ProblemRow{"SourceNotAscii", {GoodCode, "Cli\xC3\xA9nt", "0"}, 2},
        ProblemRow{"SourceEmbeddedNul", {GoodCode, std::string("Client\0x", 8), "0"}, 2},
        ProblemRow{"CodeEmpty", {"", GoodSource, "0"}, 3},
        ProblemRow{"CodeUpperCasePrefix", {"0X00000001", GoodSource, "0"}, 3},
        ProblemRow{"CodeWithoutPrefix", {"00000001", GoodSource, "0"}, 3},
        ProblemRow{"CodeTooShort", {"0x0000001", GoodSource, "0"}, 3},
        ProblemRow{"CodeTooLong", {"0x000000001", GoodSource, "0"}, 3},
        ProblemRow{"CodeNotHexadecimal", {"0x0000000G", GoodSource, "0"}, 3},
        ProblemRow{"CodeWithSign", {"0x-0000001", GoodSource, "0"}, 3},
        ProblemRow{"CodeWithLineFeed", {"0x00000001\n", GoodSource, "0"}, 3},
        ProblemRow{"CodeEmbeddedNul", {std::string("0x00000001\0", 11), GoodSource, "0"}, 3},
        ProblemRow{"Status17", {GoodCode, GoodSource, "17"}, 4},
        ProblemRow{"Status99", {GoodCode, GoodSource, "99"}, 4},
        ProblemRow{"SourceUnknown", {GoodCode, "Nobody", "0"}, 6},
        ProblemRow{"StatusBeforeSource", {GoodCode, "1", "x"}, 1}, ProblemRow{"SourceBeforeCode", {"x", "1", "0"}, 2},
        ProblemRow{"CodeBeforeStatusNumber", {"x", GoodSource, "17"}, 3},
        ProblemRow{"StatusNumberBeforeUnknownSource", {GoodCode, "Nobody", "17"}, 4},
        ProblemRow{"ZeroCodeIsNoProblemOfItsOwn", {"0x00000000", "Nobody", "0"}, 6},
        ProblemRow{"DoNotUseCanNotBeRead", Write(InfoOf(1, TError::Client, grpc::StatusCode::DO_NOT_USE)), 1}),
    qilsys::test::RowName<ProblemRow>);

TEST(ErrorInfoReader, LoneSurrogateFails) {
  const char16_t text[] = {u'C', 0xD800, 0};
  EXPECT_THROW(ErrorInfo::FromStringifiedMembers(u"0x00000001", TStringCore(text), u"0"), std::invalid_argument);
}

TEST(ErrorInfoReader, RefusesVeryLongTextsWithoutMuchStack) {
  const std::string letters(4'000'000, 'a');
  EXPECT_THROW(Read({GoodCode, letters, "0"}), std::invalid_argument);
  EXPECT_THROW(Read({letters, GoodSource, "0"}), std::invalid_argument);
  EXPECT_THROW(Read({GoodCode, GoodSource, std::string(4'000'000, '1')}), std::invalid_argument);
}

}  // namespace
