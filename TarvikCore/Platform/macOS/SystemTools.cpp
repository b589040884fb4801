#include "Platform/ToolTable.h"

namespace tarvik {

ToolTable systemTools() {
    return {.ditto = "/usr/bin/ditto", .find = "/usr/bin/find"};
}

}  // namespace tarvik
