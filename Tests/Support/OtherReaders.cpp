#include "Support/OtherReaders.h"

#include "Platform/Processes/CommandRunner.h"

#include <algorithm>
#include <stdexcept>
#include <vector>

namespace tarvik::test {

namespace {

std::string outputOf(const std::string& program, const std::vector<std::string>& arguments) {
    const auto result = CommandRunner::run("/usr/bin/" + program, arguments);
    if (!result.succeeded()) throw std::runtime_error(program + " says: " + result.stderr);
    return result.stdout;
}

}  // namespace

std::optional<std::string> OtherReaders::missing() {
    for (const std::string name : {"bsdtar", "plistutil", "python3", "sqlite3"})
        if (!fs::exists("/usr/bin/" + name)) return name + " is not installed";
    return std::nullopt;
}

std::string OtherReaders::tree(const fs::path& root) {
    std::string options = "mtree:!all";
    for (const std::string word : {"type", "mode", "size", "time", "link", "sha256"}) options += ",mtree:" + word;
    return outputOf("bsdtar", {"-cf", "-", "--format=mtree", "--options=" + options, "-C", root.native(), "."});
}

std::string OtherReaders::json(const fs::path& file) {
    return python(
        "import json, sys\n"
        "print(json.dumps(json.load(open(sys.argv[1], encoding='utf-8')), sort_keys=True, indent=1))",
        file);
}

std::string OtherReaders::propertyList(const fs::path& file) {
    return python(
        "import plistlib, sys\n"
        "for item in sorted(plistlib.load(open(sys.argv[1], 'rb')).items()): print(ascii(item[0]), ascii(item[1]))",
        file);
}

std::string OtherReaders::propertyListText(const fs::path& file, const std::string& key) {
    const std::string list = outputOf("plistutil", {"-i", file.native(), "-f", "xml"});
    const std::string begin = "<key>" + key + "</key>\n\t<string>";
    const auto found = list.find(begin);
    if (found == std::string::npos) return "no " + key;
    const auto at = found + begin.size();
    return list.substr(at, list.find("</string>", at) - at);
}

std::string OtherReaders::python(const std::string& script, const fs::path& argument) {
    return outputOf("python3", {"-c", script, argument.native()});
}

}  // namespace tarvik::test
