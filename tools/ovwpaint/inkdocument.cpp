#include "inkdocument.h"

#include "failure.h"
#include "inkxml.h"
#include "interrupt.h"
#include "penformatreader.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <filesystem>
#include <limits>
#include <map>
#include <string>

namespace ovwpaint {

struct InkDocument::Xml {
    pugi::xml_document tree;
};

/// Collects the traces of a parsed file. References between elements are followed by their ids.
class InkReader {
public:
    InkReader(InkDocument& document, pugi::xml_node root) : m_document(document), m_root(root) {}

    void read() {
        indexIds();
        collectTraces();
    }

private:
    /// The context that holds below an element, and whether its traces are only definitions.
    struct Scope {
        pugi::xml_node context;
        bool definitions = false;
    };

    void indexIds();
    void collectTraces();
    void addTrace(pugi::xml_node trace, const Scope& scope);
    std::string_view traceText(pugi::xml_node trace);
    pugi::xml_node contextOf(pugi::xml_node element, pugi::xml_node inherited);
    pugi::xml_node implicitContext() const;
    pugi::xml_node resolve(std::string_view reference) const;
    pugi::xml_node part(pugi::xml_node context, const char* name, const char* attribute) const;
    std::size_t formatIndex(pugi::xml_node context);

    InkDocument& m_document;
    pugi::xml_node m_root;
    std::map<std::string_view, pugi::xml_node> m_ids;
    std::vector<pugi::xml_node> m_contexts;     ///< every context element
    std::vector<pugi::xml_node> m_traceFormats; ///< those outside contexts and ink sources
    std::map<pugi::xml_node, std::size_t> m_formatOfContext;
};

void InkReader::indexIds() {
    visitElements(m_root, [this](pugi::xml_node node, std::size_t) {
        if (isElement(node, "annotationXML"))
            return false;
        for (const char* name : {"xml:id", "id"}) {
            if (const std::string_view id = attributeText(node, name); !id.empty())
                m_ids.emplace(id, node);
        }
        if (isElement(node, "context"))
            m_contexts.push_back(node);
        if (isElement(node, "traceFormat") && !isElement(node.parent(), "context") &&
            !isElement(node.parent(), "inkSource"))
            m_traceFormats.push_back(node);
        return true;
    });
}

void InkReader::collectTraces() {
    std::vector<Scope> scopes = {{implicitContext(), false}};
    visitElements(m_root, [&](pugi::xml_node node, std::size_t depth) {
        scopes.resize(depth);
        Scope scope = scopes.back();
        if (isElement(node, "trace")) {
            addTrace(node, scope);
            return false;
        }
        // A context that stands among the traces holds for those that follow it.
        if (isElement(node, "context") && !scope.definitions)
            scopes.back().context = node;
        if (isElement(node, "traceGroup"))
            scope.context = contextOf(node, scope.context);
        scope.definitions = scope.definitions || isElement(node, "definitions");
        scopes.push_back(scope);
        return isElement(node, "traceGroup") || isElement(node, "definitions");
    });
}

void InkReader::addTrace(pugi::xml_node trace, const Scope& scope) {
    if (scope.definitions)
        return;
    const std::size_t number = ++m_document.m_traceCount;
    if (attributeText(trace, "type") == "penUp")
        return;
    try {
        const std::string_view continuation = attributeText(trace, "continuation");
        const bool continues = continuation == "middle" || continuation == "end";
        const std::size_t format = formatIndex(contextOf(trace, scope.context));
        m_document.m_traces.push_back({traceText(trace), format, number, continues});
    } catch (const Failure& failure) {
        throw Failure("trace " + std::to_string(number) + ": " + failure.what());
    }
}

/// The samples of a trace; a comment inside them leaves several pieces of text.
std::string_view InkReader::traceText(pugi::xml_node trace) {
    std::string_view only;
    std::string joined;
    for (pugi::xml_node child : trace.children()) {
        if (child.type() != pugi::node_pcdata && child.type() != pugi::node_cdata)
            continue;
        if (only.empty())
            only = child.value();
        else
            joined.append(joined.empty() ? only : std::string_view()).append(" ").append(child.value());
    }
    return joined.empty() ? only : m_document.m_joinedTexts.emplace_back(std::move(joined));
}

pugi::xml_node InkReader::contextOf(pugi::xml_node element, pugi::xml_node inherited) {
    const std::string_view reference = attributeText(element, "contextRef");
    return reference.empty() ? inherited : resolve(reference);
}

/// What traces without a reference follow: the file's only context or trace format, as some programs leave the
/// reference out when there is nothing to choose from.
pugi::xml_node InkReader::implicitContext() const {
    if (m_contexts.size() == 1)
        return m_contexts.front();
    return m_contexts.empty() && m_traceFormats.size() == 1 ? m_traceFormats.front() : pugi::xml_node();
}

/// The element of a "#id" reference; an empty node for the ids of what InkML itself defines.
pugi::xml_node InkReader::resolve(std::string_view reference) const {
    const std::string_view id = reference.starts_with('#') ? reference.substr(1) : reference;
    if (const auto found = m_ids.find(id); found != m_ids.end())
        return found->second;
    if (id.starts_with("Default"))
        return {};
    throw Failure("nothing in the file has the id of the reference \"" + std::string(reference) + "\"");
}

/// A part of a context: inside it, referred to, or taken from the context that it is based on.
pugi::xml_node InkReader::part(pugi::xml_node context, const char* name, const char* attribute) const {
    constexpr int cnMaxBases = 64;
    for (int bases = 0; context; ++bases) {
        if (bases == cnMaxBases)
            throw Failure("contexts refer to each other in a circle");
        if (const pugi::xml_node child = childElement(context, name))
            return child;
        if (const std::string_view reference = attributeText(context, attribute); !reference.empty())
            return resolve(reference);
        const std::string_view base = attributeText(context, "contextRef");
        context = base.empty() ? pugi::xml_node() : resolve(base);
    }
    return {};
}

std::size_t InkReader::formatIndex(pugi::xml_node context) {
    if (const auto found = m_formatOfContext.find(context); found != m_formatOfContext.end())
        return found->second;
    const pugi::xml_node source = part(context, "inkSource", "inkSourceRef");
    pugi::xml_node format =
        isElement(context, "traceFormat") ? context : part(context, "traceFormat", "traceFormatRef");
    if (!format)
        format = part(source, "traceFormat", "traceFormatRef");
    m_document.m_formats.push_back(readTraceFormat(format, source));
    const TraceFormat& read = m_document.m_formats.back();
    if (!read.has(ChannelKind::X) || !read.has(ChannelKind::Y))
        throw Failure("its trace format has no channels X and Y");
    return m_formatOfContext[context] = m_document.m_formats.size() - 1;
}

InkDocument::InkDocument(const std::string& path) : m_path(path), m_xml(std::make_unique<Xml>()) {
    if (std::filesystem::is_directory(path))
        throw Failure(path + ": " + std::strerror(EISDIR));
    errno = 0;
    const pugi::xml_parse_result result = m_xml->tree.load_file(path.c_str(), pugi::parse_default);
    if (result.status == pugi::status_file_not_found)
        throw Failure(path + ": " + std::strerror(errno != 0 ? errno : ENOENT));
    if (result.status == pugi::status_no_document_element)
        throw Failure(path + ": no XML in it");
    if (!result)
        throw Failure(path + ": " + result.description() + " (at byte " + std::to_string(result.offset) + ")");
    const pugi::xml_node root = m_xml->tree.document_element();
    if (!isElement(root, "ink"))
        throw Failure(path + ": no InkML: the root element is <" + root.name() + ">, not <ink>");
    try {
        InkReader(*this, root).read();
    } catch (const Failure& failure) {
        throw Failure(path + ": " + failure.what());
    }
}

InkDocument::~InkDocument() = default;

TraceDecoder InkDocument::decode(const Trace& trace) const {
    return TraceDecoder(formatOf(trace), trace.text, m_path + ": trace " + std::to_string(trace.number));
}

InkSurvey InkDocument::survey() {
    constexpr double cnInfinity = std::numeric_limits<double>::infinity();
    InkSurvey survey{cnInfinity, cnInfinity, -cnInfinity, -cnInfinity, 0};
    std::vector<float> largestForces(m_formats.size(), 1.0f);
    PenSample sample;
    for (const Trace& trace : m_traces) {
        TraceDecoder decoder = decode(trace);
        float& largestForce = largestForces[trace.format];
        while (decoder.next(sample)) {
            survey.left = std::min(survey.left, sample.x);
            survey.top = std::min(survey.top, sample.y);
            survey.right = std::max(survey.right, sample.x);
            survey.bottom = std::max(survey.bottom, sample.y);
            largestForce = std::max(largestForce, sample.force);
            if ((++survey.sampleCount & 0xFFFF) == 0)
                throwIfInterrupted();
        }
    }
    for (std::size_t i = 0; i < m_formats.size(); ++i)
        m_formats[i].calibrateForce(largestForces[i]);
    return survey.empty() ? InkSurvey() : survey;
}

} // namespace ovwpaint
