#pragma once

#include "State/Shared/Desktop.h"

#include <vector>

namespace tarvik::test {

/// A desktop that does nothing but note what it is asked for.
class RecordedDesktop : public Desktop {
public:
    explicit RecordedDesktop(bool hasMenus) : Desktop(nullptr), m_hasMenus(hasMenus) {}

    bool hasMenuBar() const override { return m_hasMenus; }
    QString revealText() const override { return QStringLiteral("Show in File Manager"); }
    void reveal(const FilePath& item) override { revealed.push_back(item.path); }
    void copyPath(const FilePath& item) override { copied.push_back(item.path); }
    void openSettings(const QString& page) override { openedPages.push_back(page); }

    std::vector<fs::path> revealed;
    std::vector<fs::path> copied;
    std::vector<QString> openedPages;

private:
    bool m_hasMenus;
};

}  // namespace tarvik::test
