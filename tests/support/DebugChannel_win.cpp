#include "support/DebugChannel.h"

#ifndef _WIN32
#error "This file is for Windows."
#endif

#include <windows.h>

#include <utility>

namespace qilsys::test {
namespace {

std::string g_text;
void* g_handler = nullptr;

std::string ToUtf8(const wchar_t* units) {
  std::string text(static_cast<std::size_t>(WideCharToMultiByte(CP_UTF8, 0, units, -1, nullptr, 0, nullptr, nullptr)),
                   0);
  WideCharToMultiByte(CP_UTF8, 0, units, -1, text.data(), static_cast<int>(text.size()), nullptr, nullptr);
  text.pop_back();  // The terminator.
  return text;
}

// A text for the debugger travels as an exception, whose first arguments are its length with the NUL and its address.
// Going on from here is what a debugger makes of it, and keeps the system from offering the text in 8 bits as well. Wine
// offers it in 8 bits alone.
LONG CALLBACK KeepText(EXCEPTION_POINTERS* pointers) {
  const EXCEPTION_RECORD& record = *pointers->ExceptionRecord;
  if (record.ExceptionCode == DBG_PRINTEXCEPTION_WIDE_C) {
    g_text += ToUtf8(reinterpret_cast<const wchar_t*>(record.ExceptionInformation[1]));
  } else if (record.ExceptionCode == DBG_PRINTEXCEPTION_C) {
    g_text += reinterpret_cast<const char*>(record.ExceptionInformation[1]);
  } else {
    return EXCEPTION_CONTINUE_SEARCH;
  }
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
