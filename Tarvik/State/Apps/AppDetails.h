#pragma once

#include "Applications/AppEntry.h"
#include "Platform/Basics/Cancellation.h"
#include "Platform/Machine/Host.h"
#include "State/Apps/AppsState.h"
#include "State/Apps/DataRow.h"
#include "State/Apps/DataTree.h"
#include "State/Lists/FilePath.h"
#include "State/Lists/RecordListModel.h"

#include <QAbstractItemModel>
#include <QCoroTask>
#include <QObject>
#include <QPointer>
#include <QString>
#include <QtQml/qqmlregistration.h>

#include <chrono>
#include <string>
#include <vector>

namespace tarvik {

/// What an opened row of the Apps tab shows of its application: who signed it, and the tree of its data with what is
/// ticked there. Signatures and folders are read in the background. The ticks are those of `AppsState`. UI thread only.
class AppDetails : public QObject {
    Q_OBJECT
    QML_ELEMENT
    Q_PROPERTY(tarvik::AppsState* state READ state WRITE setState NOTIFY sourceChanged)
    Q_PROPERTY(tarvik::FilePath bundle READ bundle WRITE setBundle NOTIFY sourceChanged)

    /// "(none)" where the bundle has none.
    Q_PROPERTY(QString bundleIdText READ bundleIdText NOTIFY entryChanged)
    Q_PROPERTY(bool isMacAppStore READ isMacAppStore NOTIFY entryChanged)
    Q_PROPERTY(bool isAlreadySymlinked READ isAlreadySymlinked NOTIFY entryChanged)
    /// "3 items", the data paths.
    Q_PROPERTY(QString itemsText READ itemsText NOTIFY rowsChanged)
    Q_PROPERTY(bool hasData READ hasData NOTIFY rowsChanged)
    /// Both empty until they are known; "Unknown" when a tool does not answer.
    Q_PROPERTY(QString developer READ developer NOTIFY verificationChanged)
    Q_PROPERTY(QString notarization READ notarization NOTIFY verificationChanged)
    Q_PROPERTY(bool isVerifying READ isVerifying NOTIFY verificationChanged)

    /// The lines of the tree, `DataRow`.
    Q_PROPERTY(QAbstractItemModel* rows READ rowsModel CONSTANT)
    /// What is ticked in it: "2 items selected", and the bytes of that.
    Q_PROPERTY(int checkedCount READ checkedCount NOTIFY rowsChanged)
    Q_PROPERTY(QString checkedText READ checkedText NOTIFY rowsChanged)
    Q_PROPERTY(QString checkedSizeText READ checkedSizeText NOTIFY rowsChanged)

public:
    explicit AppDetails(QObject* parent = nullptr);
    /// Ends what it reads without waiting for it.
    ~AppDetails() override;

    AppsState* state() const { return m_state; }
    void setState(AppsState* state);
    FilePath bundle() const { return m_bundle; }
    void setBundle(const FilePath& bundle);
    /// How long each tool may take to tell of a signature, from the next bundle on. The program waits for them at its
    /// end.
    void setToolLimit(std::chrono::duration<double> limit) { m_toolLimit = limit; }
    QString bundleIdText() const;
    bool isMacAppStore() const { return m_entry.isMacAppStore; }
    bool isAlreadySymlinked() const { return m_entry.isAlreadySymlinked; }
    QString itemsText() const;
    bool hasData() const { return m_tree.count() > 0; }
    QString developer() const { return m_verification.developer; }
    QString notarization() const { return m_verification.notarization; }
    bool isVerifying() const { return m_isVerifying; }
    QAbstractItemModel* rowsModel() { return &m_rows; }
    const std::vector<DataRow>& rows() const { return m_rows.records(); }
    int checkedCount() const { return m_checkedCount; }
    QString checkedText() const;
    QString checkedSizeText() const { return m_checkedSizeText; }

    /// Ticks the line, or takes its tick away when all of it is ticked; of a category, every data path.
    Q_INVOKABLE void toggleChecked(int row);
    /// Opens or closes the line. The contents of a folder are read the first time.
    Q_INVOKABLE void setOpen(int row, bool isOpen);
    Q_INVOKABLE void clearChecked();
    /// Moves what is ticked to the Trash once the user has agreed.
    Q_INVOKABLE void moveToTrash();

signals:
    void sourceChanged();
    void entryChanged();
    void rowsChanged();
    void verificationChanged();

private:
    struct Verification {
        QString developer;
        QString notarization;
    };

    void restart();
    void takeEntry();
    void takeEntryAgain();
    void lookAgain();
    void readFolder(const fs::path& folder);
    void updateRows();
    const DataRow* rowAt(int row) const;

    // No members: the object may go while a slow drive is read.
    static QCoro::Task<> verify(QPointer<AppDetails> details, Host host, fs::path bundle,
                                std::chrono::duration<double> toolLimit, Cancellation cancellation);
    static QCoro::Task<> look(QPointer<AppDetails> details, Host host, std::vector<fs::path> paths,
                              Cancellation cancellation);
    static QCoro::Task<> list(QPointer<AppDetails> details, Host host, fs::path folder, Cancellation cancellation);

    QPointer<AppsState> m_state;
    FilePath m_bundle;
    AppEntry m_entry;
    DataTree m_tree;
    RecordListModel<DataRow> m_rows{DataRow::roles(), DataRow::keyOf};
    int m_checkedCount = 0;
    QString m_checkedSizeText;
    Verification m_verification;
    bool m_isVerifying = false;
    std::chrono::duration<double> m_toolLimit = std::chrono::seconds(10);
    /// Of all that is read of this bundle.
    Cancellation m_cancellation;
};

}  // namespace tarvik
