#include "Packages/Distribution.h"

#include "Packages/PackageFailure.h"
#include "Packages/Xml.h"

#include <algorithm>
#include <charconv>
#include <functional>
#include <map>
#include <set>

namespace tarvik::packages {

namespace {

using Xml::Element;

std::string withoutBlanks(std::string_view text) {
    const auto first = text.find_first_not_of(" \t\r\n");
    if (first == std::string_view::npos) return {};
    return std::string(text.substr(first, text.find_last_not_of(" \t\r\n") - first + 1));
}

std::string percentRead(std::string_view text) {
    std::string result;
    for (std::size_t at = 0; at < text.size(); ++at) {
        unsigned value = 0;
        if (text[at] == '%' && at + 2 < text.size() &&
            std::from_chars(&text[at + 1], &text[at] + 3, value, 16).ptr == &text[at] + 3) {
            result += static_cast<char>(value);
            at += 2;
        } else {
            result += text[at];
        }
    }
    return result;
}

/// What an attribute decides that may hold a script.
bool decided(const Element& element, const std::string& key, bool otherwise) {
    const auto text = element.attribute(key);
    if (!text) return otherwise;
    if (*text == "true" || *text == "YES" || *text == "1") return true;
    if (*text == "false" || *text == "NO" || *text == "0") return false;
    failDamaged("The product decides by a script, which is not understood here: " + *text);
}

class ProductReader {
public:
    explicit ProductReader(const Element& document) {
        for (const Element& each : document.children) readTop(each);
        const Element* outline = document.child("choices-outline");
        if (outline)
            addLines(*outline);
        else
            for (const std::string& identifier : m_order) add(identifier);
        if (product.packages.empty()) failDamaged("The product holds no package.");
    }

    Distribution product;

private:
    void readTop(const Element& each) {
        if (each.name == "title") product.title = withoutBlanks(each.text);
        if (each.name == "choice") m_choices[each.attribute("id").value_or("")] = &each;
        if (each.name == "installation-check" || each.name == "volume-check")
            if (each.attribute("script") && !decided(each, "script", true))
                failDamaged("The product does not allow its installation.");
        if (each.name == "pkg-ref") readReference(each);
    }

    /// One package may be told of in several places: one of them has the file.
    void readReference(const Element& each) {
        const std::string identifier = each.attribute("id").value_or("");
        const std::string reference = withoutBlanks(each.text);
        if (identifier.empty() || reference.empty()) return;
        if (m_references.emplace(identifier, percentRead(reference)).second) m_order.push_back(identifier);
    }

    void addLines(const Element& outline) {
        for (const Element& line : outline.children) {
            if (line.name != "line") continue;
            const auto choice = m_choices.find(line.attribute("choice").value_or(""));
            if (choice == m_choices.end()) failDamaged("The product offers a choice that it does not have.");
            if (decided(*choice->second, "start_selected", true) && decided(*choice->second, "selected", true))
                for (const Element& each : choice->second->children)
                    if (each.name == "pkg-ref") {
                        readReference(each);
                        add(each.attribute("id").value_or(""));
                    }
            addLines(line);
        }
    }

    void add(const std::string& identifier) {
        if (!m_added.insert(identifier).second) return;
        const auto reference = m_references.find(identifier);
        if (reference == m_references.end()) failDamaged("The product names a package without a file: " + identifier);
        product.packages.push_back({identifier, reference->second});
    }

    std::map<std::string, const Element*> m_choices;
    std::map<std::string, std::string> m_references;
    std::vector<std::string> m_order;
    std::set<std::string> m_added;
};

}  // namespace

Distribution Distribution::parsed(std::string_view xml) {
    const Element document = Xml::tree(xml);
    if (document.name != "installer-gui-script" && document.name != "installer-script")
        failDamaged("The product does not tell what it is made of.");
    ProductReader reader(document);
    // A title that is looked up in a table of another file.
    if (reader.product.title.find('_') != std::string::npos && reader.product.title.find(' ') == std::string::npos)
        reader.product.title.clear();
    return std::move(reader.product);
}

}  // namespace tarvik::packages
