#pragma once

#include "Platform/Basics/Cancellation.h"
#include "Platform/Machine/Host.h"
#include "State/Lists/FilePath.h"

#include <QCoroTask>
#include <QObject>
#include <QPointer>
#include <QString>
#include <QUrl>
#include <QtQml/qqmlregistration.h>

namespace tarvik {

/// The folder that the user is about to move, and what is known of it. It looks and measures in the background; a newer
/// path ends the older measurement. UI thread only.
class FolderSource : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("It belongs to FoldersState.")
    Q_PROPERTY(tarvik::FilePath path READ path WRITE setPath NOTIFY changed)
    Q_PROPERTY(QString text READ text NOTIFY changed)
    Q_PROPERTY(QString name READ name NOTIFY changed)
    Q_PROPERTY(bool isEmpty READ isEmpty NOTIFY changed)
    /// "1.2 MB"; empty while it is not known. Of a link, the size of what it leads to.
    Q_PROPERTY(QString sizeText READ sizeText NOTIFY changed)
    Q_PROPERTY(bool isMeasuring READ isMeasuring NOTIFY changed)
    Q_PROPERTY(bool isLink READ isLink NOTIFY changed)
    /// Where the link leads.
    Q_PROPERTY(QString targetText READ targetText NOTIFY changed)
    /// Why the item can be neither moved nor moved back, in one sentence; else empty.
    Q_PROPERTY(QString problem READ problem NOTIFY changed)

public:
    explicit FolderSource(Host host, QObject* parent = nullptr);
    /// Ends the measurement without waiting for it.
    ~FolderSource() override;

    const FilePath& path() const { return m_path; }
    void setPath(const FilePath& path);
    QString text() const { return m_path.text(); }
    QString name() const { return m_path.name(); }
    bool isEmpty() const { return m_path.isEmpty(); }
    QString sizeText() const { return m_sizeText; }
    bool isMeasuring() const { return m_isMeasuring; }
    bool isLink() const { return m_findings.isLink; }
    QString targetText() const;
    QString problem() const;

    /// Takes the path of a `file:` address, as a panel or a drop gives it. Any other address is a problem, not a path.
    Q_INVOKABLE void setUrl(const QUrl& url);
    Q_INVOKABLE void clear();
    /// Looks and measures anew.
    Q_INVOKABLE void refresh();

signals:
    void changed();

private:
    struct Findings {
        bool isLink = false;
        fs::path target;
        std::string problem;
    };

    static Findings look(const Host& host, const fs::path& path);
    /// No member: the object may go while a slow drive is being measured.
    static QCoro::Task<> measure(QPointer<FolderSource> source, Host host, fs::path path, Cancellation cancellation);
    /// Shows why what the user has chosen is none.
    void refuse(const std::string& sentence);

    const Host m_host;
    FilePath m_path;
    Findings m_findings;
    QString m_sizeText;
    bool m_isMeasuring = false;
    /// Of the measurement that is under way.
    Cancellation m_cancellation;
};

}  // namespace tarvik
