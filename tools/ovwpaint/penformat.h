#ifndef OVWPAINT_PENFORMAT_H
#define OVWPAINT_PENFORMAT_H

/// @file
/// What one sample of a recording holds, and how the values of a trace become it.

#include <cstddef>
#include <vector>

namespace ovwpaint {

/// One pen sample in the drawing's own units.
struct PenSample {
    double x = 0.0;       ///< pixels at 96 an inch, to the right
    double y = 0.0;       ///< the same, downwards
    double time = 0.0;    ///< milliseconds from any start; 0 without a time channel
    float force = 1.0f;   ///< 0 to 1, beyond it where the device goes beyond its maximum; 1 without a force channel
    float azimuth = 0.0f; ///< degrees from the right towards the bottom, 0 to 360; 0 when the pen's tilt is unknown
    float lean = 0.0f;    ///< degrees away from upright, 0 to 90; 0 when the pen's tilt is unknown
};

enum class ChannelKind { X, Y, Force, Time, Azimuth, Elevation, TiltX, TiltY, Other };

/// One channel of a trace. Its values become (value - offset) * scale: pixels, 0 to 1, milliseconds or degrees.
struct Channel {
    ChannelKind kind = ChannelKind::Other;
    double offset = 0.0;
    double scale = 1.0;
};

/// The channels of a trace in the order of its values. The first `regularCount` have a value in every sample, the rest
/// may be left out at a sample's end.
struct TraceFormat {
    std::vector<Channel> channels;
    std::size_t regularCount = 0;
    /// Whether the force's maximum is known; if not, its largest value in the drawing stands for it when beyond 1.
    bool forceMaximumKnown = false;

    bool has(ChannelKind kind) const {
        for (const Channel& channel : channels) {
            if (channel.kind == kind)
                return true;
        }
        return false;
    }

    /// Makes `largest` the force of 1 when the format does not tell its maximum.
    void calibrateForce(float largest) {
        for (Channel& channel : channels) {
            if (channel.kind == ChannelKind::Force && !forceMaximumKnown && largest > 1.0f)
                channel.scale = 1.0 / largest;
        }
    }
};

} // namespace ovwpaint

#endif // OVWPAINT_PENFORMAT_H
