#include "State/Folders/FolderSource.h"

#include "MovePlan/MoveRefusal.h"
#include "MovePlan/WayBack.h"
#include "Platform/Basics/Failure.h"
#include "Platform/Files/Files.h"
#include "Platform/Files/WrittenPath.h"
#include "Platform/Storage/SizeCalculator.h"
#include "State/Lists/ScreenText.h"
#include "State/Threads/Background.h"

namespace tarvik {

FolderSource::FolderSource(Host host, QObject* parent) : QObject(parent), m_host(std::move(host)) {}

FolderSource::~FolderSource() {
    m_cancellation.cancel();
}

void FolderSource::setPath(const FilePath& path) {
    if (path == m_path) return;
    m_path = path;
    m_findings = {};
    m_sizeText.clear();
    refresh();
}

void FolderSource::setUrl(const QUrl& url) {
    if (!url.isLocalFile()) {
        refuse("Only folders of this machine can be moved.");
        return;
    }
    // Through the encoded bytes of the address, as a name need not be valid UTF-8.
    const QByteArray bytes = QByteArray::fromPercentEncoding(url.path(QUrl::FullyEncoded).toLatin1());
    try {
        setPath(FilePath(WrittenPath::meant(bytes.toStdString())));
    } catch (const Failure& failure) {
        refuse(failure.description());
    }
}

void FolderSource::refuse(const std::string& sentence) {
    clear();
    m_findings.problem = sentence;
    emit changed();
}

void FolderSource::clear() {
    setPath({});
}

QString FolderSource::targetText() const {
    return screenPath(m_findings.target);
}

QString FolderSource::problem() const {
    return screenText(m_findings.problem);
}

void FolderSource::refresh() {
    m_cancellation.cancel();
    m_cancellation = {};
    m_isMeasuring = !isEmpty();
    emit changed();
    if (!isEmpty()) measure(this, m_host, m_path.path, m_cancellation);
}

FolderSource::Findings FolderSource::look(const Host& host, const fs::path& path) {
    Findings findings;
    const auto info = Files::info(path);
    if (!info) {
        findings.problem = "Nothing stands at this path any more.";
    } else if (info->type == Files::ItemType::symbolicLink) {
        findings.isLink = true;
        try {
            findings.target = WayBack::plan(host, path).target;
        } catch (const Failure& failure) {
            findings.problem = failure.description();
        }
    } else if (info->type != Files::ItemType::folder) {
        findings.problem = MoveRefusal::notAFolder(path);
    }
    return findings;
}

QCoro::Task<> FolderSource::measure(QPointer<FolderSource> source, Host host, fs::path path,
                                    Cancellation cancellation) {
    const auto lookAtIt = [host, path] { return look(host, path); };
    const Findings findings = co_await inBackground(Priority::userInitiated, lookAtIt);
    if (!source || cancellation.isCancelled()) co_return;
    source->m_findings = findings;
    if (!findings.problem.empty()) {
        source->m_sizeText.clear();
        source->m_isMeasuring = false;
        emit source->changed();
        co_return;
    }
    emit source->changed();

    const fs::path measured = findings.isLink ? findings.target : path;
    const auto measureIt = [host, measured, cancellation] {
        return SizeCalculator::size(host, measured, cancellation);
    };
    const std::int64_t size = co_await inBackground(Priority::utility, measureIt);
    if (!source || cancellation.isCancelled()) co_return;
    source->m_sizeText = screenText(SizeCalculator::format(size));
    source->m_isMeasuring = false;
    emit source->changed();
}

}  // namespace tarvik
