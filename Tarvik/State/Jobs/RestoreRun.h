#pragma once

#include "Copying/ByteProgress.h"
#include "MovePlan/WayBack.h"

#include <QObject>
#include <QString>
#include <QtQml/qqmlregistration.h>

#include <cstddef>
#include <cstdint>
#include <vector>

namespace tarvik {

/// Items that are moved back one after the other: how far that is, and how it ended.
class RestoreRun {
    Q_GADGET
    QML_VALUE_TYPE(restoreRun)

    /// Nothing has been moved back.
    Q_PROPERTY(bool isEmpty READ isEmpty)
    Q_PROPERTY(QString label READ label)
    Q_PROPERTY(QString from READ from)
    Q_PROPERTY(QString to READ to)
    Q_PROPERTY(QString bytes READ bytes)
    Q_PROPERTY(double fraction READ fraction)
    Q_PROPERTY(double allFraction READ allFraction)
    Q_PROPERTY(QString summary READ summary)
    Q_PROPERTY(QString outcome READ outcome)
    Q_PROPERTY(bool hasFailed READ hasFailed)

public:
    RestoreRun() = default;
    /// `sizes` are those of the items in bytes, as far as somebody has measured them.
    explicit RestoreRun(std::vector<WayBack::Plan> waysBack, std::vector<std::int64_t> sizes = {});

    bool isEmpty() const { return m_waysBack.empty(); }
    /// The item at the place is next.
    void begin(std::size_t index);
    /// The bytes of that item. Its total never shrinks.
    void report(const ByteProgress& progress);
    /// Nothing more comes; tells how it ended.
    void end(const QString& outcome, bool hasFailed);

    /// The item that is under way, or was last; all paths in full.
    QString label() const;
    QString from() const;
    QString to() const;
    /// "1.2 MB of 3 MB"; empty while nothing is known.
    QString bytes() const;
    /// 0 to 1. The last item that came back is whole, however quick it was.
    double fraction() const;

    /// All items together. Nothing is known when one of them has not been measured.
    ByteProgress all() const;
    double allFraction() const { return all().fraction(); }
    /// "1 of 3", or the outcome; empty when there is only one.
    QString summary() const;
    /// Empty until it has ended.
    QString outcome() const { return m_outcome; }
    bool hasFailed() const { return m_hasFailed; }

private:
    bool isDone() const { return !m_outcome.isEmpty() && !m_hasFailed; }
    const WayBack::Plan& current() const;

    std::vector<WayBack::Plan> m_waysBack;
    /// In bytes; as many, or none.
    std::vector<std::int64_t> m_sizes;
    std::size_t m_index = 0;
    ByteProgress m_progress;
    QString m_outcome;
    bool m_hasFailed = false;
};

}  // namespace tarvik
