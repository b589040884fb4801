#include "Support/TemporaryFolder.h"

#include <cstdlib>
#include <stdexcept>
#include <sys/stat.h>
#include <system_error>
#include <unistd.h>

namespace tarvik::test {

TemporaryFolder::TemporaryFolder() : TemporaryFolder(fs::temp_directory_path()) {}

TemporaryFolder::TemporaryFolder(const fs::path& parent) {
    std::string name = (fs::canonical(parent) / "tarvik-test-XXXXXX").native();
    if (!::mkdtemp(name.data())) throw std::runtime_error("no temporary folder in " + parent.native());
    m_path = name;
}

bool TemporaryFolder::takesNamesOfAnyBytes() const {
    return ::mkdir((m_path / "\xFF").c_str(), 0700) == 0;
}

TemporaryFolder::~TemporaryFolder() {
    std::error_code ignored;
    fs::remove_all(m_path, ignored);
}

}  // namespace tarvik::test
