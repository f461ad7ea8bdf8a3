#pragma once

#include "Log.h"

/// The part of the window that shows the log: a read-only text field, so that lines can be selected and
/// copied.
namespace LogPane
{
/// Makes a text field of the dialog the pane.
void prepare(HWND pane);

/// Shows the queue's lines below those that are there, of which the oldest go when there are too many.
void show(HWND pane, LogQueue& queue);
} // namespace LogPane
