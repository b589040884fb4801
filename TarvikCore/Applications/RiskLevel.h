#pragma once

namespace tarvik {

/// How likely a move breaks an application.
enum class RiskLevel { low, medium, high };

}  // namespace tarvik
