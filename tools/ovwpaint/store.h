#ifndef OVWPAINT_STORE_H
#define OVWPAINT_STORE_H

/// @file
/// The block store under every picture.

#include "runoptions.h"

#include <string>

namespace ovwpaint {

/// The process-wide block store for as long as pictures are on it. Throws Failure and XCException.
class Store {
public:
    /// @param folder of the swap file; empty: the system's temporary folder
    Store(int memoryMiB, const std::string& folder);
    explicit Store(const RunOptions& options) : Store(options.memory, options.swapFolder) {}
    ~Store();
    Store(const Store&) = delete;
    Store& operator=(const Store&) = delete;
};

} // namespace ovwpaint

#endif // OVWPAINT_STORE_H
