#pragma once

#include "Reports/InstallOutputFormat.h"

namespace tarvik::CommandLine {

/// How results are written to standard output.
using Format = InstallOutputFormat;

}  // namespace tarvik::CommandLine
