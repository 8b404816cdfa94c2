#ifndef OVWPAINT_PENFORMATREADER_H
#define OVWPAINT_PENFORMATREADER_H

/// @file
/// From the XML of a trace format and of the pen's properties to the scale of every channel.

#include "penformat.h"

#include <pugixml.hpp>

namespace ovwpaint {

/// @param format a traceFormat element, or an empty node for the format that InkML implies: X and Y
/// @param source the inkSource element whose channelProperties tell the resolutions, or an empty node
TraceFormat readTraceFormat(pugi::xml_node format, pugi::xml_node source);

} // namespace ovwpaint

#endif // OVWPAINT_PENFORMATREADER_H
