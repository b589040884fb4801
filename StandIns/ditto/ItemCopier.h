#pragma once

#include "ditto/FileContent.h"
#include "ditto/Folder.h"
#include "ditto/HardLinks.h"

#include <atomic>
#include <sys/stat.h>

namespace tarvik::ditto {

/// Copies single items: everything but folders. Belongs to one thread; several may work side by side.
class ItemCopier {
public:
    ItemCopier(HardLinks& links, const std::atomic<bool>& stop) : m_links(links), m_content(stop) {}

    /// Copies `item`, whose kind is told by `type`, one of the system's DT_ values.
    /// @throws ItemError; Vanished; Stopped
    void copy(const Item& item, unsigned char type);

private:
    void copyFile(const Item& item);
    void copyOther(const Item& item);
    void makeOther(const Item& item, const struct stat& status);

    HardLinks& m_links;
    FileContent m_content;
};

/// One that works in `folder` is done with it. The last one gives a new copy its permissions, times and the rest, which
/// can only be right when nothing is made in it any more. A folder that stood there before keeps its own.
/// @throws ItemError
void leave(const OpenFolder& folder);

}  // namespace tarvik::ditto
