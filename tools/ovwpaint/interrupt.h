#ifndef OVWPAINT_INTERRUPT_H
#define OVWPAINT_INTERRUPT_H

/// @file
/// The user's wish to stop (SIGINT, SIGTERM): a flag that long work looks at.

#include <cstdint>

namespace ovwpaint {

/// From now on the signals set the flag instead of ending the process; a second one ends it at once.
void watchInterrupts();
bool isInterrupted();
/// Throws Interrupted once the flag is set.
void throwIfInterrupted();
/// The flag itself, for the drawing engine: not 0 once a stop is wanted.
std::int32_t* interruptFlag();

} // namespace ovwpaint

#endif // OVWPAINT_INTERRUPT_H
