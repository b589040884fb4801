#include "Packages/Xml.h"

#include "Packages/PackageFailure.h"

#include <libxml/xmlreader.h>

#include <algorithm>
#include <climits>
#include <memory>

namespace tarvik::packages::Xml {

namespace {

constexpr std::size_t largestTree = 16'000'000;
constexpr std::size_t mostElements = 200'000;
constexpr int deepest = 250;
constexpr const char* notWellFormed = "The XML is not well formed.";

struct ReaderEnd {
    void operator()(xmlTextReader* reader) const { xmlFreeTextReader(reader); }
};
using Reader = std::unique_ptr<xmlTextReader, ReaderEnd>;

/// The library complains on standard error unless somebody listens.
void hearNothing(void*, const char*, xmlParserSeverities, xmlTextReaderLocatorPtr) {}

std::string textOf(const xmlChar* text) {
    if (!text) return {};
    const unsigned char* end = text;
    while (*end) ++end;
    return {text, end};
}

Attributes attributesOf(xmlTextReader* reader) {
    Attributes attributes;
    while (xmlTextReaderMoveToNextAttribute(reader) == 1)
        attributes[textOf(xmlTextReaderConstLocalName(reader))] = textOf(xmlTextReaderConstValue(reader));
    xmlTextReaderMoveToElement(reader);
    return attributes;
}

void tell(xmlTextReader* reader, const Events& events) {
    switch (xmlTextReaderNodeType(reader)) {
        case XML_READER_TYPE_ELEMENT: {
            if (xmlTextReaderDepth(reader) > deepest) failDamaged("The XML is nested too deep.");
            const bool isEmpty = xmlTextReaderIsEmptyElement(reader) == 1;
            const std::string name = textOf(xmlTextReaderConstLocalName(reader));
            events.begins(name, attributesOf(reader));
            if (isEmpty) events.ends();
            break;
        }
        case XML_READER_TYPE_END_ELEMENT:
            events.ends();
            break;
        case XML_READER_TYPE_TEXT:
        case XML_READER_TYPE_CDATA:
        case XML_READER_TYPE_SIGNIFICANT_WHITESPACE:
            events.holds(textOf(xmlTextReaderConstValue(reader)));
            break;
        case XML_READER_TYPE_DOCUMENT_TYPE:
        case XML_READER_TYPE_ENTITY_REFERENCE:
            failDamaged("The XML declares types or entities, which no package needs.");
        default:
            break;
    }
}

}  // namespace

void read(std::string_view text, const Events& events) {
    if (text.empty() || text.size() > INT_MAX) failDamaged(notWellFormed);
    const Reader reader(xmlReaderForMemory(text.data(), static_cast<int>(text.size()), nullptr, nullptr,
                                           XML_PARSE_NONET | XML_PARSE_NOERROR | XML_PARSE_NOWARNING));
    if (!reader) failDamaged(notWellFormed);
    xmlTextReaderSetErrorHandler(reader.get(), hearNothing, nullptr);
    int step = 0;
    while ((step = xmlTextReaderRead(reader.get())) == 1) tell(reader.get(), events);
    if (step != 0) failDamaged(notWellFormed);
}

std::optional<std::string> Element::attribute(const std::string& key) const {
    const auto found = attributes.find(key);
    return found == attributes.end() ? std::nullopt : std::optional(found->second);
}

const Element* Element::child(std::string_view childName) const {
    const auto found =
        std::find_if(children.begin(), children.end(), [&](const Element& each) { return each.name == childName; });
    return found == children.end() ? nullptr : &*found;
}

Element tree(std::string_view text) {
    if (text.size() > largestTree) failTooLarge("The XML is too large.");
    Element document;
    // An open element's children do not move: only the innermost one gets new ones.
    std::vector<Element*> open{&document};
    std::size_t count = 0;
    read(text, {.begins =
                    [&](const std::string& name, const Attributes& attributes) {
                        if (++count > mostElements) failTooLarge("The XML has too many elements.");
                        open.back()->children.push_back({name, attributes, {}, {}});
                        open.push_back(&open.back()->children.back());
                    },
                .holds = [&](std::string_view piece) { open.back()->text += piece; },
                .ends = [&] { open.pop_back(); }});
    if (document.children.size() != 1) failDamaged(notWellFormed);
    return std::move(document.children.front());
}

}  // namespace tarvik::packages::Xml
