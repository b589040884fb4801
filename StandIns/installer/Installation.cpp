#include "installer/Installation.h"

#include "Packages/PackageFailure.h"
#include "installer/Receipt.h"
#include "installer/Scripts.h"

#include <algorithm>

namespace tarvik::installer {

namespace {

using namespace packages;

/// Scripts are small; what unpacks to more is none.
constexpr std::uint64_t mostScriptBytes = 256'000'000;

}  // namespace

Installation::Installation(const fs::path& root, const fs::path& package, const Product& product)
    : m_root(root), m_package(package), m_tree(root, BoundedTree::Links::followed) {
    std::uint64_t taken = 0;
    for (const Component& component : product.components) {
        Part part{&component, {}, Receipt::exists(m_tree, component.identifier)};
        const std::uint64_t space = m_tree.availableSpace(component.place);
        if (component.payload) part.measure = Payload::measured(component.payload(), space - std::min(space, taken));
        taken += part.measure.bytes;
        if (component.scripts) Payload::measured(component.scripts(), mostScriptBytes);
        m_parts.push_back(std::move(part));
    }
}

bool Installation::isUpgrade() const {
    return std::any_of(m_parts.begin(), m_parts.end(), [](const Part& part) { return part.isThereAlready; });
}

void Installation::run() {
    for (const Part& part : m_parts) {
        const Component& component = *part.component;
        Scripts scripts(m_root, m_package, component);
        const bool isUpgradeOfPart = part.isThereAlready;
        scripts.run(isUpgradeOfPart ? component.beforeUpgrade.value_or(component.before) : component.before);
        if (component.payload) {
            m_tree.makeFolder(component.place, {.mode = 0755});
            Payload::write(component.payload(), m_tree, component.place);
        }
        scripts.run(isUpgradeOfPart ? component.afterUpgrade.value_or(component.after) : component.after);
        Receipt::write(m_tree, component, m_package.filename().native(), part.measure.paths);
    }
}

}  // namespace tarvik::installer
