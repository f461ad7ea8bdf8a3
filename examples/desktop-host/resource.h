/// @file
/// Numbers of the controls, commands and dialogs. A command has the number of its button, so that an
/// accelerator and its button are one command.
#pragma once

#ifndef IDC_STATIC
#define IDC_STATIC (-1) // a control that nobody asks for
#endif

#define IDI_APPLICATION_ICON 1
#define IDR_ACCELERATORS 2
#define IDD_CERTIFICATE 3
#define IDD_NEW_TICKET 4
#define IDD_NOTE 5

#define IDC_ENDPOINT 101
#define IDC_USER 102
#define IDC_PASSWORD 103
#define IDC_OPEN_SESSION 104
#define IDC_CLOSE_SESSION 105
#define IDC_CLIENT 106
#define IDC_ASSET 107
#define IDC_ENTITY_ID 108
#define IDC_SHOW_TICKETS 109
#define IDC_TICKETS 110
#define IDC_NEW_TICKET 111
#define IDC_ADD_NOTE 112
#define IDC_ATTACH_FILE 113
#define IDC_LOG 114
#define IDC_STATUS_BAR 115
#define IDC_PROGRESS 116

#define IDC_ENDPOINT_LABEL 121
#define IDC_USER_LABEL 122
#define IDC_PASSWORD_LABEL 123
#define IDC_SEPARATOR 124
#define IDC_TICKETS_LABEL 125
#define IDC_ENTITY_ID_LABEL 126
#define IDC_LOG_LABEL 127
#define IDC_DROP_HINT 128

#define IDC_CERTIFICATE_ICON 201
#define IDC_SUBJECT 202
#define IDC_ISSUER 203
#define IDC_VALIDITY 204
#define IDC_FINGERPRINT 205
#define IDC_REMEMBER 206

#define IDC_TICKET_SUBJECT 301
#define IDC_TICKET_DETAIL 302

#define IDC_NOTE_TEXT 401
#define IDC_WORK_TIME 402
#define IDC_VISIBLE 403
