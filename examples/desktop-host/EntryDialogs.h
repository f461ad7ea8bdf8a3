#pragma once

#include <windows.h>

#include "TAVIKVANTRYAPI.h"

#include <optional>
#include <string>

/// Lets the person enter subject and detail of a ticket; nothing if the person does not want to.
std::optional<TicketCreationInformation> enterTicket(HWND owner, const std::wstring& title);

/// Lets the person enter a note; nothing if the person does not want to.
std::optional<TechNote> enterNote(HWND owner, const std::wstring& title);
