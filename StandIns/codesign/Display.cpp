#include "codesign/Display.h"

#include "Signatures/BundleLayout.h"
#include "Signatures/CodeDirectory.h"
#include "Signatures/Digest.h"
#include "Signatures/SignatureFailure.h"
#include "codesign/ResourceRules.h"
#include "codesign/SignatureFiles.h"

#include <fmt/format.h>

namespace tarvik::codesign::Display {

namespace {

using namespace signatures;

std::string resourcesLine(const BundleLayout& layout, const CodeDirectory& directory) {
    try {
        const auto seal = SignatureFiles::sealOf(layout, directory);
        const auto rules = ResourceRules::standard().propertyList();
        return fmt::format("Sealed Resources version=2 rules={} files={}\n",
                           rules.as<PropertyList::Dictionary>()->size(), seal.items.size());
    } catch (const SignatureFailure&) {
        return "Sealed Resources=none\n";
    }
}

std::string requirementsLine(const BundleLayout& layout) {
    const auto requirements = SignatureFiles::requirementsOf(layout);
    return fmt::format("Internal requirements count=0 size={}\n", requirements ? requirements->size() : 0);
}

}  // namespace

std::string describe(const fs::path& bundle, int verbosity) {
    const auto layout = BundleLayout::at(bundle);
    const auto directory = CodeDirectory::ofBundle(layout);
    std::string text = "Executable=" + layout.executable.native() + "\n";
    if (verbosity < 1) return text;
    text += "Identifier=" + directory.identifier + "\n";
    text += fmt::format("Format={} with generic\n", layout.isApplication ? "app bundle" : "bundle");
    text += fmt::format("CodeDirectory v=20400 size={} flags=0x{:x}(adhoc) hashes=1+3 location=embedded\n",
                        directory.bytes().size(), CodeDirectory::adHoc);
    if (verbosity >= 3) {
        const std::string hash = Digest::hexadecimal(directory.hash());
        text += fmt::format("Hash type=sha256 size=32\nCandidateCDHash sha256={0}\nHash choices=sha256\nCDHash={0}\n",
                            hash);
    }
    text += fmt::format("Signature=adhoc\nInfo.plist entries={}\nTeamIdentifier=not set\n", layout.infoEntries);
    return text + resourcesLine(layout, directory) + requirementsLine(layout);
}

}  // namespace tarvik::codesign::Display
