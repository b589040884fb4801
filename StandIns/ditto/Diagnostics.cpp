#include "ditto/Diagnostics.h"

#include "ditto/MessageText.h"

#include <cstdio>
#include <string>

namespace tarvik::ditto {

void Diagnostics::say(std::string_view text) {
    const std::string line = "ditto: " + MessageText::readable(text) + "\n";
    const std::lock_guard lock(m_mutex);
    m_hasSaid = true;
    std::fputs(line.c_str(), stderr);
}

}  // namespace tarvik::ditto
