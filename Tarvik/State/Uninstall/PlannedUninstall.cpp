#include "State/Uninstall/PlannedUninstall.h"

#include "Applications/DataPathSize.h"
#include "Platform/Storage/SizeCalculator.h"
#include "Platform/Text/Text.h"
#include "State/Lists/AppIcons.h"
#include "State/Lists/ScreenText.h"

#include <algorithm>
#include <utility>

namespace tarvik {

namespace {

QString textOrNone(const std::optional<std::string>& text, const char* none) {
    return text && !text->empty() ? screenText(*text) : QString::fromLatin1(none);
}

QString wordsForKind(AppRecordKind kind) {
    switch (kind) {
        case AppRecordKind::normal:
            return QStringLiteral("Application");
        case AppRecordKind::userApplications:
            return QStringLiteral("Application of the user");
        case AppRecordKind::symlink:
            return QStringLiteral("Link to an application");
        case AppRecordKind::tarvikLauncher:
            return QStringLiteral("Tarvik launcher");
        case AppRecordKind::externalTarget:
            return QStringLiteral("Application on a drive");
        case AppRecordKind::macAppStore:
            return QStringLiteral("Mac App Store application");
        case AppRecordKind::systemRisky:
            return QStringLiteral("Application of the system");
    }
    return {};
}

/// The figure and the unit of a text like "1.2 MB".
std::pair<QString, QString> figureOf(std::int64_t bytes) {
    if (bytes == 0) return {QStringLiteral("0"), QStringLiteral("KB")};
    const QString text = screenText(SizeCalculator::format(bytes));
    const auto space = text.lastIndexOf(QLatin1Char(' '));
    return {text.left(space), text.mid(space + 1)};
}

}  // namespace

PlannedUninstall::PlannedUninstall(fs::path home, QObject* parent) : QObject(parent), m_home(std::move(home)) {}

QString PlannedUninstall::appId() const {
    return m_app ? uniqueText(m_app->id) : QString();
}

QString PlannedUninstall::name() const {
    return m_app ? screenText(m_app->displayName) : QString();
}

QString PlannedUninstall::iconSource() const {
    return m_app ? AppIcons::source(m_app->bundlePath) : QString();
}

QString PlannedUninstall::developer() const {
    return m_app ? textOrNone(m_app->developer, "Unknown") : QString();
}

QString PlannedUninstall::verification() const {
    if (!m_app) return {};
    return m_app->isMacAppStore ? QStringLiteral("App Store") : QStringLiteral("Developer ID");
}

QString PlannedUninstall::version() const {
    return m_app ? textOrNone(m_app->version, "(none)") : QString();
}

QString PlannedUninstall::bundleId() const {
    return m_app ? textOrNone(m_app->bundleIdentifier, "(none)") : QString();
}

QString PlannedUninstall::kindText() const {
    return m_app ? wordsForKind(m_app->kind) : QString();
}

QString PlannedUninstall::pathText() const {
    return m_app ? screenText(DataPathSize{m_app->bundlePath, 0}.displayPath(m_home)) : QString();
}

QString PlannedUninstall::itemsText() const {
    return m_plan ? screenText(Text::counted(static_cast<std::int64_t>(m_plan->candidates.size()), "item")) : QString();
}

QStringList PlannedUninstall::warnings() const {
    QStringList lines;
    if (m_plan)
        for (const std::string& warning : m_plan->warnings) lines.push_back(screenText(warning));
    return lines;
}

bool PlannedUninstall::isRemovable() const {
    return m_plan && m_plan->app.kind != AppRecordKind::systemRisky;
}

std::int64_t PlannedUninstall::checkedBytes() const {
    std::int64_t bytes = 0;
    if (m_plan)
        for (const UninstallCandidate& candidate : m_plan->candidates)
            if (m_checked.contains(candidate.path.native())) bytes += candidate.sizeBytes;
    return bytes;
}

QString PlannedUninstall::checkedSize() const {
    return figureOf(checkedBytes()).first;
}

QString PlannedUninstall::checkedSizeUnit() const {
    return figureOf(checkedBytes()).second;
}

QString PlannedUninstall::checkedCountText() const {
    return QString::number(m_checked.size());
}

QString PlannedUninstall::checkedCountUnit() const {
    return m_checked.size() == 1 ? QStringLiteral("item") : QStringLiteral("items");
}

void PlannedUninstall::setApp(std::optional<AppRecord> app) {
    m_app = std::move(app);
    m_plan.reset();
    m_checked.clear();
    updateRows();
    emit appChanged();
    emit planChanged();
}

void PlannedUninstall::setPlan(AppUninstallPlan plan) {
    m_checked.clear();
    for (const UninstallCandidate& candidate : plan.candidates)
        if (candidate.defaultSelected) m_checked.insert(candidate.path.native());
    m_plan = std::move(plan);
    updateRows();
    emit planChanged();
}

void PlannedUninstall::toggleChecked(const std::string& path) {
    if (m_checked.erase(path) == 0) m_checked.insert(path);
    updateRows();
}

void PlannedUninstall::toggleCategoryChecked(UninstallCategory category) {
    if (!m_plan) return;
    std::set<std::string> paths;
    for (const UninstallCandidate& candidate : m_plan->candidates)
        if (candidate.category == category) paths.insert(candidate.path.native());
    const bool areAllTicked = std::includes(m_checked.begin(), m_checked.end(), paths.begin(), paths.end());
    for (const std::string& path : paths) {
        if (areAllTicked) {
            m_checked.erase(path);
        } else {
            m_checked.insert(path);
        }
    }
    updateRows();
}

void PlannedUninstall::toggleSection(UninstallCategory category) {
    if (m_open.erase(category) == 0) m_open.insert(category);
    updateRows();
}

void PlannedUninstall::updateRows() {
    m_rows.replaceAll(m_plan ? UninstallPlanRow::list(*m_plan, m_checked, m_open, m_home)
                             : std::vector<UninstallPlanRow>());
    emit checkedChanged();
}

}  // namespace tarvik
