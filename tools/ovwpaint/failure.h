#ifndef OVWPAINT_FAILURE_H
#define OVWPAINT_FAILURE_H

/// @file
/// The two ways in which a command ends early.

#include <exception>
#include <stdexcept>

namespace ovwpaint {

/// The work cannot be done; the text is one clear line for the user that names the file concerned.
class Failure : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/// The user asked to stop (see interrupt.h).
class Interrupted : public std::exception {
public:
    const char* what() const noexcept override { return "interrupted"; }
};

} // namespace ovwpaint

#endif // OVWPAINT_FAILURE_H
