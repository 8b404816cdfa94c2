#ifndef OVWPAINT_INKDOCUMENT_H
#define OVWPAINT_INKDOCUMENT_H

/// @file
/// An InkML file: its traces in the order drawn, each with the format of its samples.

#include "penformat.h"
#include "tracedecoder.h"

#include <cstdint>
#include <deque>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace ovwpaint {

/// One stroke as recorded. `text` belongs to the document.
struct Trace {
    std::string_view text;
    std::size_t format = 0;
    std::size_t number = 0; ///< from 1, in the file's order, pen-up traces included
    bool continues = false; ///< goes on where the trace before it ended
};

/// What a look at every sample tells.
struct InkSurvey {
    double left = 0.0;
    double top = 0.0;
    double right = 0.0;
    double bottom = 0.0;
    std::uint64_t sampleCount = 0;

    bool empty() const { return sampleCount == 0; }
};

/// Holds the file's text for as long as it lives; samples are decoded from it on demand, so that memory grows with the
/// file and not with its samples. Pen-up traces and traces that are only definitions are left out.
class InkDocument {
public:
    /// Throws Failure when the file cannot be read or is no InkML.
    explicit InkDocument(const std::string& path);
    ~InkDocument();
    InkDocument(const InkDocument&) = delete;
    InkDocument& operator=(const InkDocument&) = delete;

    const std::vector<Trace>& traces() const { return m_traces; }
    const TraceFormat& formatOf(const Trace& trace) const { return m_formats[trace.format]; }
    TraceDecoder decode(const Trace& trace) const;

    /// Reads every sample once: checks them all, finds the extent, and gives forces without a known maximum the largest
    /// one found. Throws Failure for a bad sample, Interrupted when the user stops it.
    InkSurvey survey();

private:
    friend class InkReader;
    struct Xml;

    std::string m_path;
    std::unique_ptr<Xml> m_xml;
    std::deque<std::string> m_joinedTexts; ///< of traces whose text comes in several pieces
    std::vector<TraceFormat> m_formats;
    std::vector<Trace> m_traces;
    std::size_t m_traceCount = 0; ///< pen-up traces included
};

} // namespace ovwpaint

#endif // OVWPAINT_INKDOCUMENT_H
