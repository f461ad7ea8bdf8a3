/// @file
/// The dialogs that the window opens, and how they and the window use their controls.
#pragma once

#include <windows.h>

#include "CertificateInfo.h"
#include "TAVIKVANTRYAPI.h"

#include <optional>
#include <string>

/// The text of a control, by its number.
std::wstring controlText(HWND parent, int id);

void enableControl(HWND parent, int id, bool isEnabled);

/// Lets the person enter subject and detail of a ticket; nothing if the person does not want to.
std::optional<TicketCreationInformation> enterTicket(HWND owner, const std::wstring& title);

/// Lets the person enter a note; nothing if the person does not want to.
std::optional<TechNote> enterNote(HWND owner, const std::wstring& title);

/// Shows the certificate of a server and tells whether the person trusts it. Closing the dialog in any other
/// way is a refusal.
bool askAboutCertificate(HWND owner, const std::wstring& server, const CertificateInfo& certificate);
