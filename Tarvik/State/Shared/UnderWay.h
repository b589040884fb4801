#pragma once

#include "Platform/Basics/Dialog.h"

#include <functional>
#include <memory>
#include <optional>
#include <utility>

namespace tarvik {

/// The one thing of the whole window that changes something on a disk, or is made ready to. UI thread only.
///
/// Whoever begins such a thing holds it here until it is over, wherever in the window it belongs: so no two of them
/// ever meet, and what the user is asked who closes the window in the middle is known in one place.
class UnderWay {
    struct End {
        void operator()(UnderWay* underWay) const { underWay->end(); }
    };
    struct EndBeside {
        void operator()(UnderWay* underWay) const { underWay->endBeside(); }
    };

public:
    /// What is held ends when this goes. Empty by default.
    using Hold = std::unique_ptr<UnderWay, End>;
    using HoldBeside = std::unique_ptr<UnderWay, EndBeside>;

    /// `onChange` is called after each change.
    explicit UnderWay(std::function<void()> onChange) : m_onChange(std::move(onChange)) {}

    bool isBusy() const { return m_isPreparing || m_closingQuestion; }
    bool isPreparing() const { return m_isPreparing; }
    /// What is asked before the window closes; nothing while that would cut nothing short.
    const std::optional<Dialog>& closingQuestion() const {
        return m_closingQuestion ? m_closingQuestion : m_questionBeside;
    }

    /// Begins what may be given up at any moment: measuring, asking. Nothing must be under way.
    [[nodiscard]] Hold prepare() {
        m_isPreparing = true;
        return begin();
    }
    /// Begins what must come to its end once it is begun. Nothing must be under way. The first button of the question
    /// leaves when it has.
    [[nodiscard]] Hold act(Dialog closingQuestion) {
        m_closingQuestion = std::move(closingQuestion);
        return begin();
    }

    /// The same for what may go on beside all else, and beside others of its kind.
    [[nodiscard]] HoldBeside actBeside(Dialog closingQuestion) {
        m_questionBeside = std::move(closingQuestion);
        ++m_actsBeside;
        return HoldBeside(this);
    }

private:
    Hold begin() {
        m_onChange();
        return Hold(this);
    }
    void end() {
        m_isPreparing = false;
        m_closingQuestion.reset();
        m_onChange();
    }

    void endBeside() {
        if (--m_actsBeside == 0) m_questionBeside.reset();
        m_onChange();
    }

    std::function<void()> m_onChange;
    bool m_isPreparing = false;
    std::optional<Dialog> m_closingQuestion;
    int m_actsBeside = 0;
    std::optional<Dialog> m_questionBeside;
};

}  // namespace tarvik
