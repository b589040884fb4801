#pragma once

#include "Health/HealthIssue.h"
#include "Window/WindowUnderTest.h"

#include <QQuickItem>

#include <string>
#include <vector>

/// The Health tab as a user finds a way through it.
namespace tarvik::test::HealthRows {

/// The rows of findings that are made now, in no order.
std::vector<QQuickItem*> made(const WindowUnderTest& window);
/// Opens the tab, presses "Scan" and waits until what was found is seen.
void scan(WindowUnderTest& window);
/// Presses "Scan" again and waits for the end. False when it does not come.
bool rescan(WindowUnderTest& window);
/// Brings the first finding of a kind into sight.
void scrollTo(WindowUnderTest& window, HealthIssue::Kind kind);
void scrollToEnd(WindowUnderTest& window);
/// Brings the finding into sight and presses one of its buttons.
void repair(WindowUnderTest& window, HealthIssue::Kind kind, const std::string& name, int button = 0);

}  // namespace tarvik::test::HealthRows
