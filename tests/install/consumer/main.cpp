#include <cstdio>

#include "qilsys/qilsys.h"

int main() {
  TStackWalker::InitSym(true);
  if (TStackWalker walker; !walker.GenerateCallstack()) return 1;
  try {
    throw QuillonException(TFormatStringCore(u"the %1 works").arg(TStringCore(u"consumer")));
  } catch (const QuillonException& e) {
    std::puts(e.GetMessagesFront().toStdString().c_str());
  }
  return 0;
}
