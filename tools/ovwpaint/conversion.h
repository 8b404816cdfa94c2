#ifndef OVWPAINT_CONVERSION_H
#define OVWPAINT_CONVERSION_H

/// @file
/// The work behind `ovwpaint convert`.

#include "colour.h"
#include "runoptions.h"

#include "ovwcmn/xcgeometry.h"

#include <optional>
#include <string>

namespace ovwpaint {

struct ConvertOptions {
    std::string input;
    std::string output;
    RunOptions run;
    std::optional<int> depth;
    std::optional<XCSize> size;
    std::optional<int> method; ///< of resizeMethodNames()
    int angle = 0;             ///< degrees, clockwise
    bool mirror = false;
    bool flip = false;
    bool grey = false;
    std::optional<int> mono; ///< of ditherNames()
    bool invert = false;
    std::optional<Colour> background;
    bool raw = false; ///< streams with uncompressed blocks
};

/// Throws Failure, Interrupted or XCException; the output file is as it was before then.
void convertImage(const ConvertOptions& options);

} // namespace ovwpaint

#endif // OVWPAINT_CONVERSION_H
