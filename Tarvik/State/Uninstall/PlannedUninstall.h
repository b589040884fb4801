#pragma once

#include "Applications/AppRecord.h"
#include "Platform/Basics/Path.h"
#include "State/Lists/FilePath.h"
#include "State/Lists/RecordListModel.h"
#include "State/Uninstall/UninstallPlanRow.h"
#include "Uninstall/AppUninstallPlan.h"
#include "Uninstall/UninstallCategory.h"

#include <QAbstractItemModel>
#include <QObject>
#include <QString>
#include <QStringList>
#include <QtQml/qqmlregistration.h>

#include <cstdint>
#include <optional>
#include <set>
#include <string>

namespace tarvik {

/// The application that is chosen in the Uninstall tab, what would go with it once that is known, and what of that is
/// ticked. UI thread only.
class PlannedUninstall : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("It belongs to UninstallState.")

    Q_PROPERTY(bool hasApp READ hasApp NOTIFY appChanged)
    Q_PROPERTY(QString appId READ appId NOTIFY appChanged)
    Q_PROPERTY(QString name READ name NOTIFY appChanged)
    Q_PROPERTY(QString iconSource READ iconSource NOTIFY appChanged)
    Q_PROPERTY(QString developer READ developer NOTIFY appChanged)
    /// "App Store" or "Developer ID".
    Q_PROPERTY(QString verification READ verification NOTIFY appChanged)
    Q_PROPERTY(QString version READ version NOTIFY appChanged)
    Q_PROPERTY(QString bundleId READ bundleId NOTIFY appChanged)
    Q_PROPERTY(QString kindText READ kindText NOTIFY appChanged)
    Q_PROPERTY(QString pathText READ pathText NOTIFY appChanged)

    Q_PROPERTY(bool hasPlan READ hasPlan NOTIFY planChanged)
    /// "3 items", all of the plan.
    Q_PROPERTY(QString itemsText READ itemsText NOTIFY planChanged)
    Q_PROPERTY(QStringList warnings READ warnings NOTIFY planChanged)
    /// Whether the system lets it be removed.
    Q_PROPERTY(bool isRemovable READ isRemovable NOTIFY planChanged)
    /// `UninstallPlanRow`.
    Q_PROPERTY(QAbstractItemModel* rows READ rowsModel CONSTANT)

    /// What is ticked takes that much, "1.2" and "GB"; and so many, "3" and "items".
    Q_PROPERTY(QString checkedSize READ checkedSize NOTIFY checkedChanged)
    Q_PROPERTY(QString checkedSizeUnit READ checkedSizeUnit NOTIFY checkedChanged)
    Q_PROPERTY(QString checkedCount READ checkedCountText NOTIFY checkedChanged)
    Q_PROPERTY(QString checkedCountUnit READ checkedCountUnit NOTIFY checkedChanged)

public:
    explicit PlannedUninstall(fs::path home, QObject* parent = nullptr);

    const std::optional<AppRecord>& app() const { return m_app; }
    const std::optional<AppUninstallPlan>& plan() const { return m_plan; }
    const std::set<std::string>& checked() const { return m_checked; }
    const std::set<UninstallCategory>& open() const { return m_open; }
    const std::vector<UninstallPlanRow>& rows() const { return m_rows.records(); }
    QAbstractItemModel* rowsModel() { return &m_rows; }

    bool hasApp() const { return m_app.has_value(); }
    QString appId() const;
    QString name() const;
    QString iconSource() const;
    QString developer() const;
    QString verification() const;
    QString version() const;
    QString bundleId() const;
    QString kindText() const;
    QString pathText() const;
    bool hasPlan() const { return m_plan.has_value(); }
    QString itemsText() const;
    QStringList warnings() const;
    bool isRemovable() const;
    /// What the ticked candidates take.
    std::int64_t checkedBytes() const;
    QString checkedSize() const;
    QString checkedSizeUnit() const;
    QString checkedCountText() const;
    QString checkedCountUnit() const;

    /// Another application, or none; there is no plan then, and nothing is ticked.
    void setApp(std::optional<AppRecord> app);
    /// Ticks what goes by default.
    void setPlan(AppUninstallPlan plan);
    void toggleChecked(const std::string& path);
    void toggleCategoryChecked(UninstallCategory category);
    void toggleSection(UninstallCategory category);

signals:
    void appChanged();
    void planChanged();
    void checkedChanged();

private:
    void updateRows();

    const fs::path m_home;
    std::optional<AppRecord> m_app;
    std::optional<AppUninstallPlan> m_plan;
    std::set<std::string> m_checked;
    /// The sections that are open; they stay so for the next application.
    std::set<UninstallCategory> m_open;
    RecordListModel<UninstallPlanRow> m_rows{UninstallPlanRow::roles(), UninstallPlanRow::key};
};

}  // namespace tarvik
