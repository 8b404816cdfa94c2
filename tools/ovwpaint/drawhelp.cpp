#include "drawhelp.h"

#include "names.h"
#include "tips.h"

namespace ovwpaint {

namespace {

// One constant a paragraph; lines are at most 120 characters.
constexpr const char* cnSize =
    R"(Size: without --width and --height the picture is the drawing at 96 pixels an inch with a margin around it. With
one or both, the drawing is fitted into the picture; with --scale as well, it is centred at that scale. The brush
grows with the drawing.

)";

constexpr const char* cnDepth =
    R"(Depth: pictures of 16 bits are painted in colour and turned grey at the end, since brushes do not paint into such
images. Brushes with lowDepthSoft dither at 1 and 2 bits, others paint solid.

)";

constexpr const char* cnBackground =
    R"(Background: white; for the eraser (and for brushes that erase) black ink, so that there is something to take
away. Where the eraser went the picture is transparent, or white at depths without transparency (1, 8, 24).
Colours are names such as white, black or transparent, #RGB, #RGBA, #RRGGBB or #RRGGBBAA.

)";

constexpr const char* cnComposition =
    R"(The composition and the cache may also be given by number, from 0. "replace" paints without a cache, so that every
stamp replaces what is there; all from "water" on need one. Only pictures of 8, 16, 24 and 32 bits can show them all;
of 8 bits those that follow colours follow the ink. Caches: with "over" each stamp covers some more of what is left,
with "over-capped" never beyond the stroke's opacity, with "maximum" the strongest stamp counts, with "sum" they add.

)";

constexpr const char* cnTipText =
    R"(Tips: a picture in black and white covers where it is black, a grey one by its darkness, both in the brush's
colour; one with colours or transparency is stamped as it is, with soft edges only under --no-cache. The longer side
of the picture becomes the size of the brush. Built-in tips, which need no file:
)";

constexpr const char* cnTexture =
    R"(Textures go by the brightness of the picture and repeat over the plane; bright texels hold paint off. "bias" and
"scale" weaken the paint (bias by the density less), "subtract" takes the texel from it, "limit" lets no more through;
the last two fill the grain under pressure. At 1 and 2 bits there is no texture.

)";

constexpr const char* cnPictures =
    R"(With a backdrop and neither --width nor --height the picture is as large as the backdrop. A brush that clones
paints without a cache and with any composition alike, and clears where the picture to clone has no pixels. Pictures
may be PNG of every kind, up to 2^28 pixels. With --onto the drawing is fitted into the picture, or centred in it at
the --scale; -o may be that file, and is an image stream unless it ends in .png.

)";

constexpr const char* cnPen =
    R"(Pen: the channel F is the pressure; the azimuth (OA, or from OTx and OTy) becomes angleA, the lean away from upright
(from OE, or OTx and OTy) angleB, both in degrees; auxScale is 1 for an upright pen and 0 for a lying one; speed is
that of the pen in pixels a millisecond, from T. Pen-up traces are not painted.

)";

constexpr const char* cnBrushFiles =
    R"(Brush files are JSON, one object with the fields of the brush by name; ovwpaint presets --json NAME prints one.

)";

constexpr const char* cnOutput =
    R"(The output appears when it is complete; until then, and after a failure, a file of that name stays as it was.
Exit status: 0 done, 1 failure, 2 wrong usage, 130 interrupted.)";

/// "Title: a, b, c.", with lines broken at 120 characters.
std::string paragraph(const std::string& title, std::span<const NamedValue> names) {
    constexpr std::size_t cnLineLength = 120;
    std::string text, line = title + ":";
    for (const NamedValue& named : names) {
        const std::string word = std::string(" ") + named.name + (&named == &names.back() ? "." : ",");
        if (line.size() + word.size() > cnLineLength) {
            text += line + "\n";
            line = word.substr(1);
        } else {
            line += word;
        }
    }
    return text + line + "\n";
}

/// The text with line breaks at blanks, so that no line is longer than 120 characters.
std::string broken(const std::string& text) {
    constexpr std::size_t cnLineLength = 120;
    std::string lines = text;
    for (std::size_t start = 0; start + cnLineLength < lines.size();) {
        const std::size_t blank = lines.rfind(' ', start + cnLineLength);
        lines[blank] = '\n';
        start = blank + 1;
    }
    return lines + ".\n";
}

} // namespace

std::string drawHelp() {
    const std::string parts[] = {cnSize,
                                 cnDepth,
                                 cnBackground,
                                 paragraph("Compositions", compositionNames()),
                                 paragraph("Caches", cacheNames()),
                                 cnComposition,
                                 paragraph("Tip orders", tipOrderNames()),
                                 cnTipText,
                                 broken(builtInTipNames()),
                                 paragraph("\nTexture modes", textureModeNames()),
                                 cnTexture,
                                 cnPictures,
                                 cnPen,
                                 cnBrushFiles,
                                 cnOutput};
    std::string help;
    for (const std::string& part : parts)
        help += part;
    return help;
}

} // namespace ovwpaint
