#ifndef OVWPAINT_NAMING_H
#define OVWPAINT_NAMING_H

/// @file
/// Failures of the library that tell which file they are about.

#include "failure.h"

#include "ovwcmn/xcexception.h"

#include <string>

namespace ovwpaint {

/// Runs an operation on a file; a failure of the library names the file.
template <class Operation>
decltype(auto) naming(const std::string& file, Operation operation) {
    try {
        return operation();
    } catch (const XCException& error) {
        throw Failure(file + ": " + error.what());
    }
}

} // namespace ovwpaint

#endif // OVWPAINT_NAMING_H
