#include "Installers/Tracking/FilesystemEventRecorder.h"

#include "Platform/Files/Files.h"

#include <algorithm>
#include <iterator>
#include <utility>

namespace tarvik {

namespace {

/// A system mostly tells standardized paths, and there are many of them: those that surely are need no second look.
std::string standardizedText(const std::string& path) {
    const bool surelyIs = path.starts_with('/') && path.size() > 1 && path.back() != '/' &&
                          path.find("//") == path.npos && path.find("/.") == path.npos;
    return surelyIs ? path : Files::standardized(path).native();
}

}  // namespace

FilesystemEventRecorder::FilesystemEventRecorder(const Host& host, const std::vector<fs::path>& roots)
    : m_source(host.fileEvents) {
    std::transform(roots.begin(), roots.end(), std::back_inserter(m_roots), Files::standardized);
}

FilesystemEventRecorder::~FilesystemEventRecorder() {
    m_stream.reset();  // While what it tells still has a place to go.
}

void FilesystemEventRecorder::start() {
    if (m_stream || m_roots.empty() || !m_source) return;
    m_stream = m_source->begin(m_roots, {.happened = [this](const std::vector<std::string>& paths) { record(paths); },
                                         .missed = [this](const std::string& sentence) { warn(sentence); }});
}

std::vector<std::string> FilesystemEventRecorder::stop() {
    m_stream.reset();
    const std::lock_guard guard(m_lock);
    std::vector<std::string> paths(m_paths.begin(), m_paths.end());
    std::sort(paths.begin(), paths.end());
    return paths;
}

std::vector<std::string> FilesystemEventRecorder::warnings() const {
    const std::lock_guard guard(m_lock);
    return m_warnings;
}

void FilesystemEventRecorder::record(const std::vector<std::string>& paths) {
    std::vector<std::string> standardized;
    standardized.reserve(paths.size());
    for (const std::string& path : paths) standardized.push_back(standardizedText(path));
    const std::lock_guard guard(m_lock);
    m_paths.insert(std::make_move_iterator(standardized.begin()), std::make_move_iterator(standardized.end()));
}

void FilesystemEventRecorder::warn(const std::string& sentence) {
    const std::lock_guard guard(m_lock);
    if (std::find(m_warnings.begin(), m_warnings.end(), sentence) == m_warnings.end()) m_warnings.push_back(sentence);
}

}  // namespace tarvik
