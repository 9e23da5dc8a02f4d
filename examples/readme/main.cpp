#include <iostream>
#include <thread>

#include "qilsys/qilsys.h"

static void Show(const TStringCore& line) { std::cout << line.toStdString() << '\n'; }

static int PageNumber(const TStringCore& name) {
  bool ok = false;
  const int number = name.mid(name.indexOf(u' ') + 1).toInt(&ok);
  if (ok) return number;
  const QuillonError error = QuillonError::MakeError(0x5A17E001, u"QuillonException_AutoGen_0x5A17E001");
  throw QuillonException(TFormatStringCore(u"\"%1\" has no page number").arg(name),
                         TError::ErrorInfo(error, TError::Client, grpc::StatusCode::INVALID_ARGUMENT));
}

static void Open(const TStringCore& name) {
  try {
    Show(TFormatStringCore(u"page %1 of \"%2\"").arg(PageNumber(name), 3, 10, u'0').arg(name.toUpper()));
  } catch (...) {
    StackExceptionAndRethrow(TFormatStringCore(u"while opening \"%1\"").arg(name));
  }
}

int main() {
  try {
    Open(u"Straße 7");
    Open(u"Straße x");
  } catch (const QuillonException& e) {
    Show(TFormatStringCore(u"%1: %2").arg(e.GetErrorName()).arg(TStringCore::join(e.GetMessagesVector(), u" < ")));
  }

  const MonitoredProcess self;
  TEvent measured;
  measured.AddOnSignalCallback(&measured, [] { Show(u"measured"); });
  std::thread meter([&] { measured.Signal(); });
  const bool inTime = measured.Wait(std::chrono::seconds(10));
  meter.join();
  Show(inTime && self.IsRunning() && self.GetMemoryUsage() > 0 ? u"this process runs, and holds memory"
                                                               : u"no figures");
}
