/// What every failure of the library carries: who is at fault, how a remote caller reads it, and free attributes.
#pragma once

#include <grpcpp/support/status_code_enum.h>

#include <map>

#include "qilsys/Export.h"
#include "qilsys/QuillonError.h"
#include "qilsys/TStringCore.h"

namespace TError {

/// Who is at fault. Other values than the named ones are legal and read as `NeedsClassification` in text.
enum ErrorSource : int {
  Client = 1,
  System = 2,
  NeedsClassification = 4,
  Content = 6,
  DataSource = 7,
  Configuration = 8,
};

/// The name of a source; "NeedsClassification" for any value without a name.
QILSYS_API TStringCore GetErrorSourceAsString(ErrorSource source);
/// The source of that name, ignoring case; `NeedsClassification` for any other text.
QILSYS_API ErrorSource GetErrorSourceFromString(const TStringCore& name);
/// The name of a status, such as "NOT_FOUND"; "DO_NOT_USE" for any value outside 0 to 16.
QILSYS_API TStringCore GetStatusCodeAsString(grpc::StatusCode status);
/// The status of that name, ignoring case; -1 for any other text, "DO_NOT_USE" included.
QILSYS_API grpc::StatusCode GetStatusCodeFromString(const TStringCore& name);

/// The record of one error. A plain value: many threads may read one record, writing needs the caller's exclusion.
class QILSYS_API ErrorInfo {
 public:
  /// A record without attributes.
  ErrorInfo(const QuillonError& error, ErrorSource source, grpc::StatusCode status);
  ErrorInfo(const ErrorInfo& other);
  ErrorInfo& operator=(const ErrorInfo& other);
  ~ErrorInfo();

  /// Compares status, source and numeric code. Names and attributes take no part, so a record that crossed a
  /// boundary equals the one that was written.
  bool operator==(const ErrorInfo& other) const;
  bool operator!=(const ErrorInfo& other) const;

  /// Code 0, `NeedsClassification`, "OK".
  static ErrorInfo NoError();
  /// What a caller puts in the place of a record that FromStringifiedMembers refused.
  static ErrorInfo InvalidErrorInfo();
  /// Code 0, `Configuration`, "INTERNAL"; differs from NoError() by source and status only.
  static ErrorInfo TestError();

  const QuillonError& GetQuillonError() const { return m_error; }
  ErrorSource GetErrorSource() const { return m_source; }
  grpc::StatusCode GetStatusCode() const { return m_status; }

  /// A copy of all attributes. The library never reads or writes them; they stay inside the process.
  std::map<TStringCore, TStringCore> GetAuxAttrs() const;
  /// Replaces all attributes. As with assignment, memory that runs out (std::bad_alloc) leaves the record as it was.
  void SetAuxAttrs(const std::map<TStringCore, TStringCore>& attrs);
  /// The value of a key, empty when the key is absent.
  TStringCore GetAuxDatum(const TStringCore& key) const;
  /// Adds the pair, or replaces the value of a key that exists.
  void SetAuxDatum(const TStringCore& key, const TStringCore& value);

  /// Writes the three strings by which a record crosses a boundary: "0x" and eight upper-case digits, the name of
  /// the source, the status in decimal. A status of -1 can be written but not read back.
  void GetMembersAsStrings(TStringCore& code, TStringCore& source, TStringCore& status) const;
  /// Reads those strings. The code name becomes "AutoGen_" and the code text.
  /// Throws std::invalid_argument, with the number of the failed check in its message.
  static ErrorInfo FromStringifiedMembers(const TStringCore& code, const TStringCore& source,
                                          const TStringCore& status);

 private:
  QuillonError m_error;
  ErrorSource m_source;
  grpc::StatusCode m_status;
  std::map<TStringCore, TStringCore> m_auxAttrs;
};

}  // namespace TError
