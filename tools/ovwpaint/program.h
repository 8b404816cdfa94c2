#ifndef OVWPAINT_PROGRAM_H
#define OVWPAINT_PROGRAM_H

/// @file
/// The command line.

namespace ovwpaint {

/// What the program answers to the shell.
enum ExitCode : int {
    cnExitDone = 0,
    cnExitFailure = 1,
    cnExitUsage = 2,
    cnExitInterrupted = 130 ///< as the shell reports SIGINT
};

/// Runs the command that the arguments ask for. Throws nothing: what goes wrong is one line on standard error.
int runProgram(int argc, const char* const* argv) noexcept;

} // namespace ovwpaint

#endif // OVWPAINT_PROGRAM_H
