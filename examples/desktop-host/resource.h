/// @file
/// Numbers of the controls, commands and dialogs. A command has one number for its button, its menu entry and
/// its key.
#pragma once

#ifndef IDC_STATIC
#define IDC_STATIC (-1) // a control that nobody asks for
#endif

#define IDI_APPLICATION_ICON 1
#define IDR_ACCELERATORS 2
#define IDR_MENU 3
#define IDD_MAIN 4
#define IDD_CERTIFICATE 5
#define IDD_NEW_TICKET 6
#define IDD_NOTE 7

#define IDC_ENDPOINT 101
#define IDC_USER 102
#define IDC_PASSWORD_LABEL 103
#define IDC_PASSWORD 104
#define IDC_OPEN_SESSION 105
#define IDC_CLOSE_SESSION 106
#define IDC_ENDPOINT_HINT 107
#define IDC_SEPARATOR 108
#define IDC_CLIENT 109
#define IDC_ASSET 110
#define IDC_ENTITY_ID 111
#define IDC_SHOW_TICKETS 112
#define IDC_TICKETS 113
#define IDC_NEW_TICKET 114
#define IDC_ADD_NOTE 115
#define IDC_ATTACH_FILE 116
#define IDC_FILE_HINT 117
#define IDC_PROGRESS 118
#define IDC_LOG_LABEL 119
#define IDC_LOG 120
#define IDC_STATUS_BAR 121

#define IDC_EXIT 151
#define IDC_SHOW_LOG 152
#define IDC_SORT_TICKET 161 // in the order of the list's columns
#define IDC_SORT_SUBJECT 162
#define IDC_SORT_CLIENT 163
#define IDC_SORT_DETAIL 164

#define IDC_CERTIFICATE_ICON 201
#define IDC_SERVER 202
#define IDC_SUBJECT 203
#define IDC_ISSUER 204
#define IDC_VALIDITY 205
#define IDC_FINGERPRINT 206

#define IDC_TICKET_SUBJECT 301
#define IDC_TICKET_DETAIL 302

#define IDC_NOTE_TEXT 401
#define IDC_WORK_TIME 402
#define IDC_VISIBLE 403
