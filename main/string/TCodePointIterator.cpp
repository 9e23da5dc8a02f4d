#include "qilsys/TCodePointIterator.h"

#include <stdexcept>
#include <string>

namespace CodePoint::detail {

// The first text names operator++ as well, and "begining" is spelt so on purpose: hosts look for these texts as they are.
void ThrowPositionOutOfRange(int position) {
  throw std::runtime_error("CodePointIterator<>::operator++: m_position[" + std::to_string(position) +
                           "] is out of range.");
}

void ThrowIncrementPastEnd() {
  throw std::runtime_error(
      "CodePointIterator<>::operator++: attempted to increment the iterator past the end of the string.");
}

void ThrowDecrementPastBegin() {
  throw std::runtime_error(
      "CodePointIterator<>::operator--: attempted to decrement iterator past the begining of the string.");
}

void ThrowOtherString(const char* operation) {
  throw std::runtime_error(std::string("TConstCodePointIterator<class TStringCore>::operator ") + operation +
                           " iterators do not reference the same underlying string.");
}

}  // namespace CodePoint::detail
