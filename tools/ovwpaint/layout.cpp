#include "layout.h"

#include "failure.h"

#include <algorithm>
#include <cmath>

namespace ovwpaint {

namespace {

/// Free pixels around everything painted.
constexpr double cnMargin = 4.0;

/// The largest scale at which `extent` and the margins fit into `pixels`.
double fittingScale(int pixels, double extent) { return std::max(pixels - 2.0 * cnMargin, 1.0) / extent; }

double scaleFor(const SizeWish& wish, double paintedWidth, double paintedHeight) {
    if (wish.scale)
        return *wish.scale;
    double scale = wish.width || wish.height ? cnMaxScale : 1.0;
    if (wish.width)
        scale = std::min(scale, fittingScale(*wish.width, paintedWidth));
    if (wish.height)
        scale = std::min(scale, fittingScale(*wish.height, paintedHeight));
    return scale;
}

double sideFor(const std::optional<int>& wish, double painted, double scale) {
    return wish ? *wish : std::ceil(painted * scale + 2.0 * cnMargin);
}

} // namespace

Layout layOut(const InkSurvey& survey, const Brush& brush, const SizeWish& wish) {
    if (survey.empty() && !(wish.width && wish.height))
        throw Failure("there is nothing in it to paint (give --width and --height for an empty picture)");
    const double reach = brush.reach();
    const double paintedWidth = survey.right - survey.left + 2.0 * reach;
    const double paintedHeight = survey.bottom - survey.top + 2.0 * reach;
    Layout layout;
    layout.scale = scaleFor(wish, paintedWidth, paintedHeight);
    const double width = sideFor(wish.width, paintedWidth, layout.scale);
    const double height = sideFor(wish.height, paintedHeight, layout.scale);
    if (!(width <= cnMaxSide && height <= cnMaxSide))
        throw Failure("the picture would be " + std::to_string(std::llround(width)) + " x " +
                      std::to_string(std::llround(height)) + " pixels, more than " + std::to_string(cnMaxSide) +
                      " (give a smaller --scale, or --width and --height)");
    layout.width = static_cast<int>(width);
    layout.height = static_cast<int>(height);
    layout.left = width / 2.0 - (survey.left + survey.right) / 2.0 * layout.scale;
    layout.top = height / 2.0 - (survey.top + survey.bottom) / 2.0 * layout.scale;
    return layout;
}

} // namespace ovwpaint
