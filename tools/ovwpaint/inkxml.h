#ifndef OVWPAINT_INKXML_H
#define OVWPAINT_INKXML_H

/// @file
/// Small helpers over the XML tree of an InkML file. Names count without their namespace prefix, as programs write
/// ink:trace, inkml:trace or trace.

#include "failure.h"

#include <pugixml.hpp>

#include <string_view>

namespace ovwpaint {

inline std::string_view localName(const char* name) {
    const std::string_view whole = name;
    const std::size_t colon = whole.rfind(':');
    return colon == std::string_view::npos ? whole : whole.substr(colon + 1);
}

inline bool isElement(pugi::xml_node node, std::string_view name) {
    return node.type() == pugi::node_element && localName(node.name()) == name;
}

/// The first child element of that name, or an empty node.
inline pugi::xml_node childElement(pugi::xml_node parent, std::string_view name) {
    for (pugi::xml_node child : parent.children()) {
        if (isElement(child, name))
            return child;
    }
    return {};
}

/// The value of an attribute, empty when it is missing.
inline std::string_view attributeText(pugi::xml_node node, const char* name) {
    return node.attribute(name).as_string();
}

inline pugi::xml_node firstElement(pugi::xml_node node) {
    while (node && node.type() != pugi::node_element)
        node = node.next_sibling();
    return node;
}

/// No program nests its groups this deep; a file that does wants to exhaust someone's stack.
inline constexpr std::size_t cnMaxElementDepth = 256;

/// Visits the elements below `root` in document order, without recursion. visit(node, depth) is told the depth below
/// the root, from 1, and answers whether to go into the element. Throws Failure beyond cnMaxElementDepth.
template <class Visitor>
void visitElements(pugi::xml_node root, Visitor&& visit) {
    pugi::xml_node node = firstElement(root.first_child());
    std::size_t depth = 1;
    while (node) {
        const pugi::xml_node inner = visit(node, depth) ? firstElement(node.first_child()) : pugi::xml_node();
        if (inner) {
            if (++depth > cnMaxElementDepth)
                throw Failure("elements nested deeper than " + std::to_string(cnMaxElementDepth));
            node = inner;
            continue;
        }
        pugi::xml_node next = firstElement(node.next_sibling());
        while (!next && depth > 1) {
            node = node.parent();
            --depth;
            next = firstElement(node.next_sibling());
        }
        node = next;
    }
}

} // namespace ovwpaint

#endif // OVWPAINT_INKXML_H
