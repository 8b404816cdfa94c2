#ifndef OVWPAINT_PNGEXPORT_H
#define OVWPAINT_PNGEXPORT_H

/// @file
/// Pictures as PNG.

#include "canvas.h"
#include "outputfile.h"
#include "progress.h"

namespace ovwpaint {

/// Writes the picture in the PNG form that holds a depth without loss: 1 bit grey (ink is black), a palette of
/// transparent, white and black for 2 bits, 8 bits grey, 16 bits as grey with alpha, RGB, and RGBA. `depth` may be
/// another than the canvas' own: pixels are read as that depth. Does not commit the file. Throws Failure, Interrupted,
/// and XCException from the block store.
void writePng(Canvas& canvas, int depth, OutputFile& file, Progress& progress);

} // namespace ovwpaint

#endif // OVWPAINT_PNGEXPORT_H
