#pragma once

/// How long the check of everything that was moved takes.
namespace tarvik::HealthSpeed {

/// Prints its figures, of `rounds` rounds each, for a machine on a volume of its own. @throws std::exception
void measure(int rounds);

}  // namespace tarvik::HealthSpeed
