#include "support/DebugChannel.h"

#include <windows.h>

#include <utility>

namespace qilsys::test {
namespace {

std::string g_text;
void* g_handler = nullptr;

// A text for the debugger travels as an exception, whose arguments are its length with the NUL and its address. Going
// on from here is what a debugger makes of it.
LONG CALLBACK KeepText(EXCEPTION_POINTERS* pointers) {
  const EXCEPTION_RECORD& record = *pointers->ExceptionRecord;
  if (record.ExceptionCode != DBG_PRINTEXCEPTION_C) {
    return EXCEPTION_CONTINUE_SEARCH;
  }
  g_text += reinterpret_cast<const char*>(record.ExceptionInformation[1]);
  g_text += '\n';
  return EXCEPTION_CONTINUE_EXECUTION;
}

}  // namespace

DebugChannelCapture::DebugChannelCapture() {
  g_text.clear();
  g_handler = AddVectoredExceptionHandler(1, KeepText);
}

DebugChannelCapture::~DebugChannelCapture() {
  if (!m_isOver) {
    Take();
  }
}

std::string DebugChannelCapture::Take() {
  m_isOver = true;
  RemoveVectoredExceptionHandler(g_handler);
  return std::move(g_text);
}

}  // namespace qilsys::test
