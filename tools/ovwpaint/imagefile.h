#ifndef OVWPAINT_IMAGEFILE_H
#define OVWPAINT_IMAGEFILE_H

/// @file
/// Tiled images in files: as PNG, or as the library's image stream, which keeps the resolution and the blocks.

#include "canvas.h"
#include "outputfile.h"
#include "progress.h"

#include "ovwcmn/xcvoffscreen.h"

#include <memory>
#include <string>

namespace ovwpaint {

using Image = std::unique_ptr<XCVOffscreen>;

enum class ImageForm { png, stream };

/// As the file's first bytes tell it: what is no PNG is taken for a stream. Throws Failure.
ImageForm formOfFile(const std::string& path);
/// As a name tells it: ".png" in letters of either case is PNG.
ImageForm formByName(const std::string& path);

/// What a file tells without its pixels.
struct ImageHeader {
    int width = 0;
    int height = 0;
    int depth = 0;
    double resolution = 0.0; ///< pixels an inch
};

// Both throw Failure, naming the file; loadImage also Interrupted.
ImageHeader readImageHeader(const std::string& path);
/// A new image on the process-wide store, in the depth of the file.
Image loadImage(const std::string& path, Progress& progress);

/// Saves the picture in a form and a depth, streams with their blocks compressed or not. Does not commit the file.
/// Throws Failure, Interrupted, and XCException from the block store.
void saveImage(Canvas& canvas, int depth, ImageForm form, bool compress, OutputFile& file, Progress& progress);
/// The same for an image that nothing was painted into, in the form of the file's name.
void saveImage(Image image, const std::string& name, OutputFile& file, Progress& progress);

} // namespace ovwpaint

#endif // OVWPAINT_IMAGEFILE_H
