#pragma once

#include "Platform/Basics/Dialog.h"

#include <QCoroTask>

namespace tarvik {

/// Asks the user. The window shows a modal alert; a test answers from a script. UI thread only.
class Dialogs {
public:
    virtual ~Dialogs() = default;

    /// Shows the question and gives the index of the button that was pressed. The first button goes ahead; every other
    /// answer, and a question that is taken away, is a no.
    virtual QCoro::Task<int> ask(Dialog dialog) = 0;

    /// Takes away every question that is open, as if its second button, which cancels, had been pressed.
    virtual void dismissAll() = 0;
};

}  // namespace tarvik
