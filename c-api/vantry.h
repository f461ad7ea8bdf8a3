/**
 * @file
 * Client library of the Vantry help-desk server for programs of any language: a C interface (C99) in one
 * file, `vantry.dll` on Windows and `libvantry.so` on Linux. 64-bit only.
 *
 * @code
 * vantry_set_endpoint("https://helpdesk.example.com/helpdesk/rest");
 * vantry_set_credentials("technician", "secret");
 *
 * vantry_new_ticket ticket = {sizeof(ticket), "42", VANTRY_CLIENT, "Printer", "It is on fire."};
 * vantry_result* created = vantry_create_ticket(&ticket);
 * if (vantry_result_succeeded(created)) {
 *     printf("Ticket %s\n", vantry_result_ticket_id(created));
 * } else {
 *     fprintf(stderr, "%d: %s\n", (int)vantry_result_status(created), vantry_result_message(created));
 * }
 * vantry_result_free(created);
 * @endcode
 *
 * Text. All text is UTF-8 and ends with a zero. Text that goes in is copied before a function returns, and is
 * refused if it is malformed. Text that comes out is well-formed; a zero or whatever is no text in what the
 * server sent is U+FFFD.
 *
 * Structs go by pointer. Their first member is their size, which the caller sets with `sizeof`; any other
 * size is refused.
 *
 * Errors. No function throws or ends the process: every failure is a status (see `vantry_status`),
 * that of the server included. A null pointer is a failure too, except where its documentation says what it
 * means.
 *
 * Threads. The process has one client. Every function may be called on any thread. Settings and operations
 * take turns: a call waits until the one before it is through. Functions that read or free a result, and
 * those that need nothing but their arguments, never wait.
 *
 * Callbacks run on the thread that called the function during which they run, never on another one, and only
 * until that function returns. A setting or an operation that is called from within a callback does nothing
 * and answers at once with `VANTRY_CALLED_FROM_CALLBACK`. A callback must return: no exception, `longjmp` or
 * the like may leave it. It should not wait for a thread that calls a setting or an operation, which itself
 * waits for the callback. What a callback answers goes into its last parameter, which holds "no" beforehand.
 *
 * User pointers are handed back as they are. What they point to, and the callback itself, must be there until
 * another callback has been set.
 *
 * Floating point. The library runs with the default floating-point state and gives the caller's back, to a
 * callback as well.
 *
 * Bounds. Each wait for the server may take 30 s, the body of an answer 10 minutes and 256 MiB; beyond that
 * the status is `VANTRY_REQUEST_FAILED`. Redirections are not followed. The progress callback can give an
 * operation up.
 */
#ifndef VANTRY_H
#define VANTRY_H

#include <stddef.h>
#include <stdint.h>

#if defined(_WIN32) && !defined(_WIN64)
#error "vantry.dll is a 64-bit library: build the program for x64."
#endif

/** Version of this header: major * 10000 + minor * 100 + patch. */
#define VANTRY_VERSION 10000

/** The calling convention of every function and callback, and what stands before every function. */
#ifdef _WIN32
#define VANTRY_CALL __cdecl
#ifdef VANTRY_BUILDING_LIBRARY
#define VANTRY_FUNCTION(type) type VANTRY_CALL
#else
#define VANTRY_FUNCTION(type) __declspec(dllimport) type VANTRY_CALL
#endif
#else
#define VANTRY_CALL
#define VANTRY_FUNCTION(type) __attribute__((visibility("default"))) type VANTRY_CALL
#endif

#ifdef __cplusplus
extern "C" {
#endif

/**
 * Outcome of a setting, an operation or an accessor. Of an operation it is the server's HTTP code or one of
 * these, whose texts `vantry_status_message` gives.
 */
typedef enum vantry_status
{
    VANTRY_OK = 0, /**< a setting or accessor has done what it was asked for */
    /** The server named a reason against an upload in an answer of 200. */
    VANTRY_UPLOAD_REFUSED = 417,
    VANTRY_REQUEST_FAILED = 600,      /**< the request failed on its way; the message says why */
    VANTRY_CERTIFICATE_REFUSED = 601, /**< the server's certificate was not accepted */
    VANTRY_GIVEN_UP = 602,            /**< the progress callback gave the operation up */
    /** A null pointer, malformed UTF-8, a struct of another size, an unknown value. */
    VANTRY_INVALID_ARGUMENT = 603,
    VANTRY_CALLED_FROM_CALLBACK = 604, /**< called from within a callback */
    VANTRY_OUT_OF_MEMORY = 605,
    VANTRY_NOT_THE_LAST_NOTE = 606, /**< the attachment's note is not the one that was saved last */
    VANTRY_NO_LOG_FILE = 607        /**< the log file cannot be opened for writing */
} vantry_status;

/** Kind of entity that a ticket belongs to. */
typedef enum vantry_entity_type
{
    VANTRY_ASSET = 0, /**< what the server calls an asset */
    VANTRY_CLIENT = 1 /**< a person who reports */
} vantry_entity_type;

/** Levels of log lines, the most talkative first. */
typedef enum vantry_log_level
{
    VANTRY_LOG_TRACE = 0,
    VANTRY_LOG_DEBUG = 1,
    VANTRY_LOG_INFO = 2,
    VANTRY_LOG_WARN = 3,
    VANTRY_LOG_ERROR = 4,
    VANTRY_LOG_FATAL = 5
} vantry_log_level;

/** Outcome of one operation. Owns all that its accessors give; nothing changes it. */
typedef struct vantry_result vantry_result;

/** Data of a new ticket. */
typedef struct vantry_new_ticket
{
    size_t size;           /**< `sizeof(vantry_new_ticket)` */
    const char* entity_id; /**< id of the client or asset */
    int32_t entity_type;   /**< a `vantry_entity_type` */
    const char* subject;   /**< its title */
    const char* detail;    /**< its text */
} vantry_new_ticket;

/** A note to add to a ticket. */
typedef struct vantry_tech_note
{
    size_t size;           /**< `sizeof(vantry_tech_note)` */
    const char* ticket_id; /**< the ticket, as `vantry_result_ticket_id` or `vantry_ticket` gives it */
    const char* text;      /**< the note's text */
    uint32_t work_time;    /**< booked work time, in the server's unit */
    int32_t is_visible;    /**< whether the note is visible: 0 or 1 */
} vantry_tech_note;

/** A file to attach to the tech note that was saved last. */
typedef struct vantry_attachment
{
    size_t size;         /**< `sizeof(vantry_attachment)` */
    const char* note_id; /**< the note, as `vantry_result_note_id` gives it */
    /**
     * The name, without folders. Sent in the thread's ANSI code page (UTF-8 on Linux); a character beyond it
     * becomes its default character. A line break is refused (`VANTRY_REQUEST_FAILED`).
     */
    const char* file_name;
    const void* data; /**< the content: any bytes, sent unchanged; may be null if `data_size` is 0 */
    size_t data_size; /**< number of bytes at `data` */
} vantry_attachment;

/** One ticket of a list. Its texts belong to the result; none is null. */
typedef struct vantry_ticket
{
    size_t size;             /**< `sizeof(vantry_ticket)`, set by the caller */
    const char* id;          /**< the server's id as plain text; empty if it gave none */
    const char* name;        /**< the short form of its title; empty if the server gave none */
    const char* detail;      /**< the short form of its text; empty if the server gave none */
    const char* client_name; /**< who reported; empty if the server gave none */
} vantry_ticket;

/**
 * Decides whether the server's certificate is trusted.
 * @param user as it was set
 * @param host the server's name as the endpoint has it, without port
 * @param der the certificate's DER bytes; valid during the call
 * @param der_size number of bytes at `der`
 * @param trust holds 0, "no"; set it to 1 to go on
 */
typedef void(VANTRY_CALL* vantry_certificate_callback)(void* user, const char* host, const uint8_t* der,
                                                       size_t der_size, int32_t* trust);

/**
 * Takes a line of the log. Lines that other threads of the library wrote are handed over as soon as the
 * calling thread has a moment, in the order in which they were written. The password is never in a line.
 * @param user as it was set
 * @param level a `vantry_log_level`
 * @param text the line without a line break at its end; valid during the call
 */
typedef void(VANTRY_CALL* vantry_log_callback)(void* user, int32_t level, const char* text);

/**
 * Takes the progress of an exchange: at least every 20 ms while an operation waits for the server, and at the
 * end of a transfer.
 * @param user as it was set
 * @param sent bytes of the request's body so far
 * @param to_send all bytes of the request's body
 * @param received bytes of the answer's body so far
 * @param to_receive all bytes of the answer's body; 0 while that is not known
 * @param give_up holds 0, "no"; set it to 1 to end the operation with `VANTRY_GIVEN_UP`
 */
typedef void(VANTRY_CALL* vantry_progress_callback)(void* user, uint64_t sent, uint64_t to_send,
                                                    uint64_t received, uint64_t to_receive, int32_t* give_up);

/* --- What needs nothing but its arguments --- */

/**
 * Version of the library, as `VANTRY_VERSION` is that of the header. A library of the same major version and
 * of no lower version than the header serves the program.
 */
VANTRY_FUNCTION(int32_t) vantry_version(void);

/**
 * English text of one of the library's own statuses (`vantry_status`).
 * @return never null; empty for every other number; valid while the library is loaded
 */
VANTRY_FUNCTION(const char*) vantry_status_message(int32_t status);

/* --- Settings --- */
/* Each gives VANTRY_OK, VANTRY_INVALID_ARGUMENT, VANTRY_CALLED_FROM_CALLBACK or VANTRY_OUT_OF_MEMORY. If it
   is not VANTRY_OK, the setting before it stays. */

/**
 * Sets the REST endpoint of the following operations: scheme (`http` or `https`, in small letters), host,
 * optional port and base path, without a slash at the end. Whether it is one is found out by the next
 * operation (`VANTRY_REQUEST_FAILED`).
 */
VANTRY_FUNCTION(int32_t) vantry_set_endpoint(const char* endpoint);

/** Sets the user name and password of the following operations. */
VANTRY_FUNCTION(int32_t) vantry_set_credentials(const char* user_name, const char* password);

/**
 * Sets the callback that is asked, in every operation on an https endpoint, whether to trust the server. A
 * certificate that does not pass the system's own validation is never shown: the operation ends with
 * `VANTRY_REQUEST_FAILED`.
 * @param callback null: every server is trusted whose certificate passes the system's own validation
 */
VANTRY_FUNCTION(int32_t) vantry_set_certificate_callback(vantry_certificate_callback callback, void* user);

/**
 * Sets the callback that takes the lines of the log.
 * @param callback null: none
 * @param level the lowest `vantry_log_level` of the lines that it takes
 */
VANTRY_FUNCTION(int32_t)
vantry_set_log_callback(vantry_log_callback callback, void* user, int32_t level);

/**
 * Sets the file that log lines are appended to, in UTF-8; the one before it is closed. Unloading the library
 * does not close it.
 * @param path null: none
 * @param level the lowest `vantry_log_level` of the lines in it
 * @return also `VANTRY_NO_LOG_FILE`
 */
VANTRY_FUNCTION(int32_t) vantry_set_log_file(const char* path, int32_t level);

/**
 * Sets the callback that takes the progress of every following operation and may give it up.
 * @param callback null: none
 */
VANTRY_FUNCTION(int32_t) vantry_set_progress_callback(vantry_progress_callback callback, void* user);

/* --- Operations --- */
/* Each runs on the calling thread and returns when it is through. Its result is never null, belongs to the
   caller and is freed with vantry_result_free. Beside what is said at each function, the status is the
   server's HTTP code, VANTRY_REQUEST_FAILED, VANTRY_CERTIFICATE_REFUSED, VANTRY_GIVEN_UP,
   VANTRY_INVALID_ARGUMENT, VANTRY_CALLED_FROM_CALLBACK or VANTRY_OUT_OF_MEMORY. */

/**
 * Opens a session with the credentials (success: 200). Only `vantry_save_attachment` and
 * `vantry_close_session` use it; the other operations send the credentials themselves.
 */
VANTRY_FUNCTION(vantry_result*) vantry_create_session(void);

/** Closes the session opened last (success: 200). */
VANTRY_FUNCTION(vantry_result*) vantry_close_session(void);

/** Creates a ticket (success: 201; `vantry_result_ticket_id`). */
VANTRY_FUNCTION(vantry_result*) vantry_create_ticket(const vantry_new_ticket* ticket);

/** Saves a note on a ticket (success: 201; `vantry_result_note_id`). */
VANTRY_FUNCTION(vantry_result*) vantry_save_tech_note(const vantry_tech_note* note);

/**
 * Uploads a file to the tech note that was saved last, within the session opened last (success: 201;
 * `VANTRY_UPLOAD_REFUSED`). Nothing is sent, and the status is `VANTRY_NOT_THE_LAST_NOTE`, if `note_id` is
 * empty or that of another note: when saving the note failed, or another thread has saved one since.
 */
VANTRY_FUNCTION(vantry_result*) vantry_save_attachment(const vantry_attachment* attachment);

/**
 * Fetches the tickets of a client or an asset (success: 200; `vantry_result_ticket_count`,
 * `vantry_result_ticket`). An answer that is no list gives no tickets.
 * @param entity_id goes into the address as it is; a character that an address cannot carry (a blank, say) is
 *                  `VANTRY_REQUEST_FAILED`
 * @param entity_type a `vantry_entity_type`
 */
VANTRY_FUNCTION(vantry_result*) vantry_request_ticket_list(const char* entity_id, int32_t entity_type);

/* --- Results --- */
/* A result and its texts are valid until it is freed, whatever runs next, and may be read on several threads
   at once. A null result reads as one of VANTRY_INVALID_ARGUMENT. */

/** Status of the operation: the server's HTTP code or a `vantry_status`. */
VANTRY_FUNCTION(int32_t) vantry_result_status(const vantry_result* result);

/** 1 if the status is that of the operation's success, otherwise 0. */
VANTRY_FUNCTION(int32_t) vantry_result_succeeded(const vantry_result* result);

/**
 * Text to show: the server's reason phrase or reason, or the library's.
 * @return never null; not empty if the operation failed
 */
VANTRY_FUNCTION(const char*) vantry_result_message(const vantry_result* result);

/**
 * Id of the ticket that `vantry_create_ticket` created, as plain text for `vantry_tech_note`.
 * @return never null; empty after a failure, after another operation, and if the server gave none
 */
VANTRY_FUNCTION(const char*) vantry_result_ticket_id(const vantry_result* result);

/**
 * Id of the note that `vantry_save_tech_note` saved, as plain text for `vantry_attachment`.
 * @return never null; empty after a failure, after another operation, and if the server gave none
 */
VANTRY_FUNCTION(const char*) vantry_result_note_id(const vantry_result* result);

/** Number of tickets that `vantry_request_ticket_list` fetched; 0 after a failure and another operation. */
VANTRY_FUNCTION(size_t) vantry_result_ticket_count(const vantry_result* result);

/**
 * Gives a ticket of the list.
 * @param index from 0 to `vantry_result_ticket_count` - 1
 * @param ticket its `size` is set by the caller; the other members are filled
 * @return `VANTRY_OK`; `VANTRY_INVALID_ARGUMENT` if there is no such ticket or `size` is another one, and
 * then `ticket` is as it was
 */
VANTRY_FUNCTION(int32_t)
vantry_result_ticket(const vantry_result* result, size_t index, vantry_ticket* ticket);

/** Frees a result and all of its texts. Null: nothing. */
VANTRY_FUNCTION(void) vantry_result_free(vantry_result* result);

#ifdef __cplusplus
}
#endif

#endif
