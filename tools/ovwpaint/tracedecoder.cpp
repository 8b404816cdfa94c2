#include "tracedecoder.h"

#include "failure.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstdlib>
#include <numbers>

namespace ovwpaint {

namespace {

/// Positions beyond this many pixels are no drawing: sums and products of them would leave the exact integers.
constexpr double cnMaxPosition = 1.0e9;

constexpr double cnDegreesPerRadian = 180.0 / std::numbers::pi;

bool isSpace(char c) { return c == ' ' || c == '\n' || c == '\r' || c == '\t'; }

/// What may stand inside one number; used only to quote a bad one as a whole.
bool isTokenCharacter(char c) { return !isSpace(c) && c != ',' && c != '!' && c != '\'' && c != '"'; }

/// Turns the tilts along both axes (degrees from upright) into a direction and a lean.
void setTilt(PenSample& sample, double tiltX, double tiltY) {
    const double limit = 89.9;
    const double x = std::tan(std::clamp(tiltX, -limit, limit) / cnDegreesPerRadian);
    const double y = std::tan(std::clamp(tiltY, -limit, limit) / cnDegreesPerRadian);
    const double azimuth = std::atan2(y, x) * cnDegreesPerRadian;
    sample.azimuth = static_cast<float>(azimuth < 0.0 ? azimuth + 360.0 : azimuth);
    sample.lean = static_cast<float>(std::atan(std::hypot(x, y)) * cnDegreesPerRadian);
}

} // namespace

TraceDecoder::TraceDecoder(const TraceFormat& format, std::string_view text, std::string where)
    : m_format(format), m_where(std::move(where)), m_at(text.data()), m_end(text.data() + text.size()),
      m_states(format.channels.size()) {}

bool TraceDecoder::next(PenSample& sample) {
    while (readSample()) {
        if (positionKnown()) {
            convert(sample);
            return true;
        }
    }
    return false;
}

/// Reads up to the next comma. Nothing between two commas, as some writers leave behind the last sample, is no sample.
bool TraceDecoder::readSample() {
    for (;;) {
        skipSpace();
        if (m_at == m_end)
            return false;
        if (*m_at != ',')
            break;
        ++m_at;
    }
    ++m_sampleNumber;
    std::size_t count = 0;
    for (; m_at != m_end && *m_at != ','; ++count) {
        readValue(count < m_states.size() ? m_states[count] : m_surplus);
        skipSpace();
    }
    if (count < m_format.regularCount)
        fail("too few values (" + std::to_string(count) + " for " + std::to_string(m_format.regularCount) +
             " channels)");
    return true;
}

void TraceDecoder::readValue(State& state) {
    readCoding(state);
    switch (m_at == m_end ? '\0' : *m_at) {
    case '*':
    case '?': ++m_at; return;
    case 'T': ++m_at; return take(state, 1.0);
    case 'F': ++m_at; return take(state, 0.0);
    case '#': ++m_at; return take(state, readHexadecimal());
    default: take(state, readNumber());
    }
}

void TraceDecoder::readCoding(State& state) {
    if (m_at == m_end)
        return;
    switch (*m_at) {
    case '!': state.coding = Coding::Value; break;
    case '\'': state.coding = Coding::Difference; break;
    case '"': state.coding = Coding::SecondDifference; break;
    default: return;
    }
    ++m_at;
    skipSpace();
}

double TraceDecoder::readNumber() {
    const char* start = m_at != m_end && *m_at == '+' ? m_at + 1 : m_at;
    const char* digit = start != m_end && *start == '-' ? start + 1 : start;
    // Keeps "nan" and "inf", which the conversion would take, out.
    if (digit == m_end || !(*digit == '.' || (*digit >= '0' && *digit <= '9')))
        fail("\"" + std::string(token()) + "\" is no number");
    double number = 0.0;
    const std::from_chars_result result = std::from_chars(start, m_end, number);
    if (result.ec == std::errc::result_out_of_range)
        number = std::strtod(std::string(start, result.ptr).c_str(), nullptr);
    else if (result.ec != std::errc())
        fail("\"" + std::string(token()) + "\" is no number");
    if (!std::isfinite(number))
        fail("\"" + std::string(token()) + "\" is no finite number");
    m_at = result.ptr;
    return number;
}

double TraceDecoder::readHexadecimal() {
    std::uint32_t number = 0;
    const std::from_chars_result result = std::from_chars(m_at, m_end, number, 16);
    if (result.ec != std::errc())
        fail("\"#" + std::string(token()) + "\" is no hexadecimal number");
    m_at = result.ptr;
    return number;
}

void TraceDecoder::take(State& state, double number) const {
    switch (state.coding) {
    case Coding::Value: state.value = number; break;
    case Coding::Difference:
        state.difference = number;
        state.value += number;
        break;
    case Coding::SecondDifference:
        state.difference += number;
        state.value += state.difference;
        break;
    }
    state.known = true;
    if (!std::isfinite(state.value) || !std::isfinite(state.difference))
        fail("the differences add up to no finite number");
}

bool TraceDecoder::positionKnown() const {
    for (std::size_t i = 0; i < m_states.size(); ++i) {
        const ChannelKind kind = m_format.channels[i].kind;
        if ((kind == ChannelKind::X || kind == ChannelKind::Y) && !m_states[i].known)
            return false;
    }
    return true;
}

void TraceDecoder::convert(PenSample& sample) const {
    sample = PenSample();
    double tiltX = 0.0;
    double tiltY = 0.0;
    bool axisTilt = false;
    for (std::size_t i = 0; i < m_states.size(); ++i) {
        const Channel& channel = m_format.channels[i];
        if (!m_states[i].known)
            continue;
        const double value = (m_states[i].value - channel.offset) * channel.scale;
        switch (channel.kind) {
        case ChannelKind::X: sample.x = value; break;
        case ChannelKind::Y: sample.y = value; break;
        case ChannelKind::Force: sample.force = static_cast<float>(std::max(value, 0.0)); break;
        case ChannelKind::Time: sample.time = value; break;
        case ChannelKind::Azimuth: sample.azimuth = static_cast<float>(std::fmod(value, 360.0)); break;
        case ChannelKind::Elevation: sample.lean = static_cast<float>(std::clamp(90.0 - value, 0.0, 90.0)); break;
        case ChannelKind::TiltX: tiltX = value, axisTilt = true; break;
        case ChannelKind::TiltY: tiltY = value, axisTilt = true; break;
        case ChannelKind::Other: break;
        }
    }
    if (axisTilt)
        setTilt(sample, tiltX, tiltY);
    if (!(std::abs(sample.x) <= cnMaxPosition && std::abs(sample.y) <= cnMaxPosition))
        fail("the position lies beyond " + std::to_string(static_cast<long>(cnMaxPosition)) + " pixels");
}

void TraceDecoder::skipSpace() {
    while (m_at != m_end && isSpace(*m_at))
        ++m_at;
}

/// The number, or what stands in its place, for a message.
std::string_view TraceDecoder::token() const {
    constexpr std::ptrdiff_t cnLongest = 40;
    const char* end = m_at;
    while (end != m_end && end - m_at < cnLongest && isTokenCharacter(*end))
        ++end;
    return end == m_at && end != m_end ? std::string_view(m_at, 1) : std::string_view(m_at, end - m_at);
}

void TraceDecoder::fail(const std::string& what) const {
    throw Failure(m_where + ", sample " + std::to_string(m_sampleNumber) + ": " + what);
}

} // namespace ovwpaint
