#pragma once

#include "Applications/AppRecord.h"
#include "Support/World.h"
#include "Uninstall/UninstallCandidate.h"

#include <string>
#include <vector>

namespace tarvik::test {

/// A machine with one application, `Editor.app` of `com.acme.editor`, and a receipt tool that knows what it is told.
class ScanWorld : public World {
public:
    ScanWorld();

    /// The tool prints this for every question, and notes its arguments in the file `asked`.
    void answerOfPkgutil(const std::string& output, int status = 0);
    std::string askedOfPkgutil() const;

    std::vector<UninstallCandidate> scan() const;
    /// The candidate at this place, which must be one.
    UninstallCandidate candidateAt(const fs::path& path) const;

    const fs::path applications = folder / "Applications";
    const fs::path library = home / "Library";
    const fs::path systemLibrary = folder / "Library";
    AppRecord app;
};

/// "category confidence path reason" with the flags that are set, of each candidate; paths below `root` are shown
/// without it.
std::vector<std::string> candidateLines(const std::vector<UninstallCandidate>& candidates, const fs::path& root);

}  // namespace tarvik::test
