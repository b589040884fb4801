#pragma once

#include "Platform/Basics/Path.h"
#include "Practice/TreeWriter.h"

#include <string>

namespace tarvik::Practice {

/// An application to write.
struct Bundle {
    /// How it describes itself.
    enum class Form { xml, binary, broken, none };

    fs::path path;
    /// Its list has none where this is empty.
    std::string identifier;
    std::string version = "1.0";
    /// The name in its list; the file's own without one.
    std::string displayName = {};
    std::string executable = {};
    std::string copyright = {};
    Form form = Form::xml;
    /// Without one its folder for programs is empty.
    bool hasProgram = true;
};

/// Writes a bundle that prints its name when it is run.
void write(TreeWriter& writer, const Bundle& bundle);

}  // namespace tarvik::Practice
