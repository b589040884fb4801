#include "Installers/Inspection/ScriptSourceInspector.h"

#include "Installers/Inspection/ScriptTrustInspector.h"
#include "Installers/Inspection/SourceItem.h"

namespace tarvik::ScriptSourceInspector {

InstallerInspection inspect(const Host& host, const fs::path& script) {
    InstallerInspection inspection{.sourcePath = script,
                                   .kind = InstallerKind::script,
                                   .items = {SourceItem::of(host, script, InstallerKind::script)},
                                   .warnings = {"Shell script — runs arbitrary code with sudo."},
                                   .trust = ScriptTrustInspector::inspect(script)};
    if (inspection.trust.hasPrivilegedPayload)
        inspection.warnings.emplace_back("Script references system paths (/Applications, /Library, ~).");
    return inspection;
}

}  // namespace tarvik::ScriptSourceInspector
