#pragma once

#include <cstddef>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

/// Reads the XML of packages: UTF-8 or what its head names, without a document type and so without entities of its
/// own, and never deeper than 250 levels. Pure.
namespace tarvik::packages::Xml {

using Attributes = std::map<std::string, std::string>;

/// What is told of a document, in its order. Names are without a prefix.
struct Events {
    std::function<void(const std::string& name, const Attributes& attributes)> begins;
    std::function<void(std::string_view text)> holds;
    std::function<void()> ends;
};

/// @throws PackageFailure when the text is not well formed, and what the events throw.
void read(std::string_view text, const Events& events);

/// One element with all that is in it.
struct Element {
    std::string name;
    Attributes attributes;
    /// All text directly in it, joined.
    std::string text;
    std::vector<Element> children;

    std::optional<std::string> attribute(const std::string& key) const;
    const Element* child(std::string_view childName) const;
};

/// The outermost element of a document of 16 MB and 200,000 elements at most. @throws PackageFailure.
Element tree(std::string_view text);

}  // namespace tarvik::packages::Xml
