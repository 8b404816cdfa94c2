#ifndef OVWPAINT_RUNOPTIONS_H
#define OVWPAINT_RUNOPTIONS_H

/// @file
/// What every command that holds pictures lets the user choose.

#include <string>

namespace ovwpaint {

struct RunOptions {
    int memory = 256;       ///< MiB
    std::string swapFolder; ///< empty: the system's temporary folder
    bool quiet = false;
};

} // namespace ovwpaint

#endif // OVWPAINT_RUNOPTIONS_H
