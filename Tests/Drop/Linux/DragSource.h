#pragma once

/// A small program with a window in the corner of the screen, out of which something can be dragged: another program's
/// window for those that take drops. Its arguments are "--drag", "urls" or "text", and what is dragged. It prints
/// "ready" when the window is there, and after each drag how that ended: "copy", "move", "link" or "nothing".
namespace tarvik::test::DragSource {

inline constexpr const char* option = "--drag";
/// A point in the window.
inline constexpr int place = 40;

int run(int argc, char** argv);

}  // namespace tarvik::test::DragSource
