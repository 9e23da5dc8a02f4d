#include "qilsys/TPathFilesystem.h"

#include "paths/PathParts.h"
#include "paths/TPathFilesystem_platform.h"
#include "search/Search.h"

using namespace qilsys::paths;

namespace {

constexpr bool BackslashSeparates = std::filesystem::path::preferred_separator == NativeSeparator;

/// Whether both kinds of paths can hold the text, and a path made of it has all of it.
bool IsHeldWhole(const TStringCore& text) {
  return text.indexOf(TCodeUnit{0}) < 0 && qilsys::search::isWellFormed(text.constData(), text.length()) &&
         TPathCore(text).GenericString().length() == text.length();
}

[[noreturn]] void FailToConvert(const char* message, unsigned int code, const char* codeName) {
  const QuillonError error = QuillonError::MakeError(code, codeName);
  throw TPathCore::Exception(message, {error, TError::Client, grpc::StatusCode::INVALID_ARGUMENT}, false);
}

}  // namespace

std::filesystem::path qilsys::ToFilesystemPath(const TPathCore& path) {
  const TStringCore text = path.GenericString();
  if (!IsHeldWhole(text) || text.contains(NativeSeparator)) {
    FailToConvert("A path of the C++ library can't hold this TPathCore whole.", 0x9C630146,
                  "QuillonException_AutoGen_0x9C630146");
  }
  return FilesystemPathOf(path);
}

TPathCore qilsys::FromFilesystemPath(const std::filesystem::path& path) {
  const std::optional<TStringCore> text = TextOfFilesystemPath(path);
  if (!text || !IsHeldWhole(*text) || (!BackslashSeparates && text->contains(NativeSeparator))) {
    FailToConvert("TPathCore can't hold this path of the C++ library whole.", 0x386A4114,
                  "QuillonException_AutoGen_0x386A4114");
  }
  return TPathCore(*text);
}
