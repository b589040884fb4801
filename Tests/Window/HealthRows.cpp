#include "Window/HealthRows.h"

#include "State/Health/HealthState.h"

#include <QMetaObject>

#include <stdexcept>

namespace tarvik::test::HealthRows {

namespace {

QString rawValue(HealthIssue::Kind kind) {
    const auto name = HealthIssueKind::rawValue(kind);
    return QString::fromUtf8(name.data(), static_cast<qsizetype>(name.size()));
}

/// As `ListView.Beginning` and `ListView.End` are written in C++.
enum Position { beginning = 0 };

void scrollToRow(WindowUnderTest& window, int row) {
    QMetaObject::invokeMethod(&window.item("healthList"), "positionViewAtIndex", Q_ARG(int, row),
                              Q_ARG(int, int{beginning}));
}

/// The place of the first finding that `isMeant` takes among all. @throws std::runtime_error when there is none.
template <typename Test>
int rowOf(WindowUnderTest& window, Test isMeant) {
    const QAbstractItemModel& problems = *window.state().tab<HealthState>().problemsModel();
    const int kindRole = problems.roleNames().key("kind");
    const int nameRole = problems.roleNames().key("name");
    for (int row = 0; row < problems.rowCount(); ++row)
        if (isMeant(problems.index(row, 0).data(kindRole).toString(), problems.index(row, 0).data(nameRole).toString()))
            return row;
    throw std::runtime_error("There is no such finding.");
}

}  // namespace

std::vector<QQuickItem*> made(const WindowUnderTest& window) {
    std::vector<QQuickItem*> rows;
    const auto items = window.item("healthList").property("contentItem").value<QQuickItem*>()->childItems();
    for (QQuickItem* item : items)
        if (item->isVisible() && item->objectName().startsWith(QLatin1String("issue-"))) rows.push_back(item);
    return rows;
}

void scan(WindowUnderTest& window) {
    window.openTab("health");
    window.click("scanButton");
    (void)window.item("healthSummary");
    // The rows come with the next frame.
    if (!window.waitUntil([&] { return window.isShown("allHealthy") || !made(window).empty(); }))
        throw std::runtime_error("What was found does not come into sight.");
}

bool rescan(WindowUnderTest& window) {
    window.click("scanButton");
    return window.waitUntil([&] { return !window.state().tab<HealthState>().isScanningHealth(); });
}

void scrollTo(WindowUnderTest& window, HealthIssue::Kind kind) {
    scrollToRow(window, rowOf(window, [&](const QString& some, const QString&) { return some == rawValue(kind); }));
}

void scrollToEnd(WindowUnderTest& window) {
    QQuickItem& list = window.item("healthList");
    QMetaObject::invokeMethod(&list, "positionViewAtEnd");
    // A user comes to what lies below the last row, too.
    const auto end = list.property("originY").toDouble() + list.property("contentHeight").toDouble();
    list.setProperty("contentY", end + list.property("bottomMargin").toDouble() - list.height());
}

void repair(WindowUnderTest& window, HealthIssue::Kind kind, const std::string& name, int button) {
    const QString shownName = QString::fromStdString(name);
    scrollToRow(window, rowOf(window, [&](const QString& someKind, const QString& someName) {
                    return someKind == rawValue(kind) && someName == shownName;
                }));
    window.click("issue-" + rawValue(kind) + "-" + shownName + "/repairButton-" + QString::number(button));
}

}  // namespace tarvik::test::HealthRows
