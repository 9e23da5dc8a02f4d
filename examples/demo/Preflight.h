/// What the demo has to know of the system it runs on.
#pragma once

namespace demo {

/// True if standard output is a terminal.
bool OutputIsTerminal();

/// The columns of the terminal at standard output, 80 if it does not tell.
int OutputWidth();

/// Its rows, 24 if it does not tell.
int OutputHeight();

/// A UDP port that nobody holds on the loopback. Throws std::runtime_error with a text for the user.
unsigned short FindFreePort();

/// Makes sure that a group can meet at `port`: nobody else holds it, and what is sent to the loopback's broadcast
/// address arrives. Throws std::runtime_error with a text for the user that says what is wrong.
void CheckPort(unsigned short port);

}  // namespace demo
