#include "transcode/UnicodeFailure.h"

#include <string>

#include "units/TextLimits.h"

namespace qilsys::transcode {

namespace {

[[noreturn]] void Throw(const std::string& text) { units::ThrowTextFailure(text.c_str()); }

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

}  // namespace qilsys::transcode
