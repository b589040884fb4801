#pragma once

#include <QObject>

namespace tarvik {

class FoldersState;

/// Takes the folder that the system asks the program to open, which a Mac does when one is dropped on the program's
/// icon or opened with it, as if it had been chosen in the Folders tab, and lets that be shown.
class GivenFolder : public QObject {
public:
    /// `folders` must outlive `application`'s events.
    GivenFolder(QObject& application, FoldersState& folders);

    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    FoldersState& m_folders;
};

}  // namespace tarvik
