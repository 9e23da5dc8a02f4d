#include "qilsys/UnicodeFailure.h"

#include <cstring>
#include <string>

#include "qilsys/TStringCore.h"

namespace Unicode {

namespace {

[[noreturn]] void Throw(const std::string& text) { throw TStringCore::Exception(TStringCore::fromStdString(text)); }

}  // namespace

void RequireSource(const void* source, const char* function) {
  if (!source) Throw(std::string("String source is nullptr, encountered in ") + function);
}

void RequireLength(int length, const char* function) {
  if (length < 0) Throw("Nonsense string length: " + std::to_string(length) + " encountered in " + function);
}

void RequireSuccess(int status, const char* function, const char* interface) {
  if (status == 0) return;
  Throw("ICU error " + std::to_string(status) + " encountered while " + function + " was trying to use " + interface);
}

void ThrowTargetTooSmall(int capacity, const char* function) {
  Throw("Error insufficient destinationCapacity (" + std::to_string(capacity) + ") was passed into " + function + ".");
}

void ThrowSourceLeft(const char* function) {
  Throw(std::string("Error unable to process the entire source string in function ") + function);
}

int TerminatedLength(const char* text) {
  const size_t length = text ? std::strlen(text) : 0;
  if (length >= static_cast<size_t>(TStringCore::MaxStringCapacity)) throw TStringCore::CapacityException();
  return static_cast<int>(length);
}

int TerminatedLength(const char32_t* text) {
  int length = 0;
  if (!text) return length;
  while (text[length] != 0 && length < TStringCore::MaxStringCapacity) ++length;
  if (length == TStringCore::MaxStringCapacity) throw TStringCore::CapacityException();
  return length;
}

}  // namespace Unicode
