#pragma once

#include <string>

/// The locale by which the user's texts are sorted. Safe on every thread while nothing changes the environment.
namespace tarvik::UserLocale {

/// Its name, such as "sv_SE" or "sv_SE.UTF-8": what the environment names for sorting (LC_ALL, LC_COLLATE, LANG, in
/// this order), else what the system's settings name. Empty for the C locale, whose order is for machines and not for
/// users.
std::string name();

/// What the system's own settings name; empty where the environment is all that there is.
std::string inSystemSettings();

}  // namespace tarvik::UserLocale
