#pragma once

#include "Options.h"

/// The main job of a host: within a session, creates a ticket with a note and a file and lists the tickets.
/// Goes on until the first step that fails, and tells about each. An opened session is closed in any case.
/// @throws std::runtime_error if the file to attach cannot be read
bool doHelpDeskJob(const Options& options);
