#include "Support/ShellScript.h"

namespace tarvik::test {

std::string scriptOf(const std::string& lines) {
    return "#!/bin/sh\n" + lines + "\n";
}

}  // namespace tarvik::test
