/// The system's error numbers, by what they say. Tests of failures speak of these, so that they hold on every system.
#pragma once

namespace qilsys::test {

enum class SystemError { InvalidHandle, InvalidParameter, TooManyUnits, Refused };

int NumberOf(SystemError error);

/// The calling thread's last error, by the system's own number.
int LastErrorNumber();
void SetLastErrorNumber(int number);

}  // namespace qilsys::test
