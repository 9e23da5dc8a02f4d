#include "paths/NativePath.h"

namespace qilsys::paths {

namespace {

// Goes before every path, of whatever shape: with it the system takes the names as they are, and as many as there are.
constexpr TCodeUnit Prefix[] = {'\\', '\\', '?', '\\', 0};
constexpr int PrefixLength = 4;

struct FormOfPath {
  TStringCore text;
  bool isMissing;
};

// The file may go, or get a longer name, between the two questions; what has not been written then is empty.
FormOfPath FormOf(const TStringCore& native, const AskForForm& ask) {
  const TStringCore asked = Prefix + native;
  const NativeFormAnswer needed = ask(asked.constData(), nullptr, 0);
  if (needed.length == 0) return {{}, needed.isMissing};
  const unsigned int room = needed.length + 1;
  TStringCore text(TCodeUnit{0}, static_cast<int>(room));
  const NativeFormAnswer written = ask(asked.constData(), text.data(), room);
  text.truncateAtFirstNull();
  if (written.length != 0) text.removeAt(0, PrefixLength);
  return {text, false};
}

// A parent is what its path begins with, so the rest of the path can stand behind the form of the parent. A loop, since a
// path may have more parents than a stack has room for.
TStringCore Resolve(const TPathCore& path, const AskForForm& ask) {
  const TStringCore native = path.NativeString();
  TPathCore existing = path;
  do {
    const int length = existing.GenericString().length();
    const FormOfPath form = FormOf(native.left(length), ask);
    if (!form.isMissing) return form.text.empty() ? form.text : form.text + native.right(native.length() - length);
    existing = existing.Parent();
  } while (!existing.IsEmpty());
  return {};
}

}  // namespace

TStringCore NativePathByForm(const TPathCore& path, const AskForForm& ask) {
  const TStringCore resolved = Resolve(path, ask);
  return resolved.empty() ? path.NativeString() : resolved;
}

}  // namespace qilsys::paths
