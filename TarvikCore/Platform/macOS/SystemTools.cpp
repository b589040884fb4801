#include "Platform/Machine/ToolRules.h"

namespace tarvik {

ToolTable systemTools() {
    return ToolRules::ofMac();
}

}  // namespace tarvik
