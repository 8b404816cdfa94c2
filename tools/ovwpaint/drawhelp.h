#ifndef OVWPAINT_DRAWHELP_H
#define OVWPAINT_DRAWHELP_H

/// @file
/// What `ovwpaint draw --help` says after the options.

#include <string>

namespace ovwpaint {

std::string drawHelp();

} // namespace ovwpaint

#endif // OVWPAINT_DRAWHELP_H
