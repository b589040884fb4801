#include "hdiutil/OpenItems.h"

namespace tarvik::hdiutil::OpenItems {

// proc_listpidspath, of <libproc.h>, asks for one path or a whole volume, and a folder is neither.
bool areBelow(const fs::path& /*volume*/) {
    return false;
}

}  // namespace tarvik::hdiutil::OpenItems
