#include "Support/ShellScript.h"

namespace tarvik::test {

std::string scriptOf(const std::string& lines) {
    // cp(1) has no T here; ditto(1) copies to the place itself.
    return "#!/bin/sh\ncp() { case $1 in -*T) /usr/bin/ditto \"$2\" \"$3\";; *) /bin/cp \"$@\";; esac; }\n" + lines +
           "\n";
}

}  // namespace tarvik::test
