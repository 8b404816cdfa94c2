#include "conversion.h"

#include "failure.h"
#include "imageedits.h"
#include "imagefile.h"
#include "interrupt.h"
#include "store.h"

namespace ovwpaint {

namespace {

void checkOptions(const ConvertOptions& options) {
    if (options.method && !options.size && !hasOwnFactor(*options.method))
        throw Failure("--method " + std::string(nameOf(resizeMethodNames(), *options.method)) + " needs --resize");
    if (options.method && options.size && hasOwnFactor(*options.method))
        throw Failure("--method " + std::string(nameOf(resizeMethodNames(), *options.method)) +
                      " has a factor of its own, and takes no --resize");
    if (options.grey && options.mono)
        throw Failure("--grey and --mono exclude each other");
    if (options.invert && !options.grey && !options.mono)
        throw Failure("--invert needs --grey or --mono");
    if (options.mono && options.depth && *options.depth > 2)
        throw Failure("--mono makes pictures of 1 or 2 bits");
}

Image resizedAsAsked(Image image, const ConvertOptions& options) {
    if (!options.size && !options.method)
        return image;
    return resized(*image, options.method.value_or(0), options.size.value_or(XCSize()));
}

Image inInk(Image image, const ConvertOptions& options) {
    if (options.grey)
        return greyed(*image, options.invert);
    if (options.mono)
        return dithered(*image, *options.mono, options.depth.value_or(hasTransparency(image->GetDepth()) ? 2 : 1),
                        options.invert);
    return image;
}

Image inDepth(Image image, int depth) {
    return image->GetDepth() == depth ? std::move(image) : withDepth(*image, depth);
}

/// More bits come before the picture is resized, so that it has them then; fewer at the end.
Image converted(Image image, const ConvertOptions& options) {
    if (options.background && hasTransparency(image->GetDepth()))
        image = flattened(*image, *options.background);
    throwIfInterrupted();
    if (options.depth && *options.depth > image->GetDepth())
        image = inDepth(std::move(image), *options.depth);
    image = resizedAsAsked(std::move(image), options);
    throwIfInterrupted();
    if (options.angle != 0 || options.mirror || options.flip)
        image = turned(*image, options.angle, options.mirror, options.flip);
    throwIfInterrupted();
    image = inInk(std::move(image), options);
    throwIfInterrupted();
    return options.depth ? inDepth(std::move(image), *options.depth) : std::move(image);
}

} // namespace

void convertImage(const ConvertOptions& options) {
    checkOptions(options);
    Progress progress(options.run.quiet);
    const ImageForm form = formByName(options.output);
    formOfFile(options.input);         // a missing input and
    OutputFile output(options.output); // a bad path are known at once
    const Store store(options.run);
    Image image = converted(loadImage(options.input, progress), options);
    const int depth = image->GetDepth();
    Canvas canvas(std::move(image), cnTransparent, false);
    saveImage(canvas, depth, form, !options.raw, output, progress);
    output.commit();
}

} // namespace ovwpaint
