/* Ids and texts of the module's string table. The resource compiler reads this file too: macros only. */
#ifndef TAVIKVANTRYAPI_STRING_TABLE_H
#define TAVIKVANTRYAPI_STRING_TABLE_H

#define IDS_REQUEST_FAILED 101
#define IDS_REQUEST_FAILED_TEXT                                                                              \
    "Error while sending a request to the Vantry server. See log files for more information."

#define IDS_CERTIFICATE_REFUSED 102
#define IDS_CERTIFICATE_REFUSED_TEXT "Could not verify the Vantry certificate."

#endif
