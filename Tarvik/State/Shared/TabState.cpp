#include "State/Shared/TabState.h"

#include "State/Shared/AppState.h"

#include <utility>

namespace tarvik {

TabState::TabState(AppState& app) : m_app(app) {}

TabState::~TabState() = default;

const Host& TabState::host() const {
    return m_app.host();
}

void TabState::follow(QCoro::Task<> flow) {
    m_app.follow(std::move(flow));
}

}  // namespace tarvik
