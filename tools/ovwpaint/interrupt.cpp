#include "interrupt.h"

#include "failure.h"

#include <csignal>

namespace ovwpaint {

namespace {

// The engine reads the flag as a plain 32-bit number, which is what a signal handler may write.
std::int32_t s_interrupted = 0;
static_assert(sizeof(std::sig_atomic_t) == sizeof(std::int32_t));

extern "C" void noteSignal(int signal) {
    *const_cast<volatile std::int32_t*>(&s_interrupted) = 1;
    std::signal(signal, SIG_DFL);
}

} // namespace

void watchInterrupts() {
    std::signal(SIGINT, noteSignal);
    std::signal(SIGTERM, noteSignal);
}

bool isInterrupted() { return *const_cast<volatile std::int32_t*>(&s_interrupted) != 0; }

void throwIfInterrupted() {
    if (isInterrupted())
        throw Interrupted();
}

std::int32_t* interruptFlag() { return &s_interrupted; }

} // namespace ovwpaint
