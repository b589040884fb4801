#pragma once

#include "Installers/Inspection/TrustSummary.h"
#include "Platform/Machine/Host.h"

/// Judges a package by what the system's tools tell of its signature and of its contents.
namespace tarvik::PackageTrustInspector {

/// Never fails: a tool that gives no answer in time leaves the package untrusted, and without flags. Blocks, for 45
/// seconds at most; any thread.
TrustSummary inspect(const Host& host, const fs::path& package);

}  // namespace tarvik::PackageTrustInspector
