#ifndef OVWPAINT_TRACEDECODER_H
#define OVWPAINT_TRACEDECODER_H

/// @file
/// Reads the samples of one trace, one by one, so that a long recording is never held as a list.

#include "penformat.h"

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace ovwpaint {

/// Walks the text of a trace: samples separated by commas, one value a channel. A value may carry the prefix ! (the
/// value itself), ' (difference to the value before) or " (difference of that difference), which stays in force for its
/// channel; * and ? keep the value before. The text and the format must outlive the decoder. Throws Failure, naming
/// `where` and the sample, for anything else and for values that are not finite.
class TraceDecoder {
public:
    TraceDecoder(const TraceFormat& format, std::string_view text, std::string where);

    /// Reads the next sample that has a position; false at the end of the trace.
    bool next(PenSample& sample);

private:
    enum class Coding { Value, Difference, SecondDifference };
    struct State {
        Coding coding = Coding::Value;
        double value = 0.0;
        double difference = 0.0;
        bool known = false;
    };

    bool readSample();
    void readValue(State& state);
    void readCoding(State& state);
    double readNumber();
    double readHexadecimal();
    void take(State& state, double number) const;
    bool positionKnown() const;
    void convert(PenSample& sample) const;
    void skipSpace();
    [[noreturn]] void fail(const std::string& what) const;
    std::string_view token() const;

    const TraceFormat& m_format;
    std::string m_where;
    const char* m_at;
    const char* m_end;
    std::vector<State> m_states;
    State m_surplus; ///< takes values beyond the declared channels
    std::uint64_t m_sampleNumber = 0;
};

} // namespace ovwpaint

#endif // OVWPAINT_TRACEDECODER_H
