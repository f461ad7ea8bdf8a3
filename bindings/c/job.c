/* A whole help-desk job: job ENDPOINT USER CLIENT, with VANTRY_PASSWORD set and VANTRY_TRUST=yes or no. */
#include "vantry.h"

#include <stdio.h>
#include <stdlib.h>
#include <string.h>

/* A program with a window shows the certificate here and asks. Who does not set *trust refuses it. */
static void VANTRY_CALL show(void* user, const char* host, const uint8_t* der, size_t size, int32_t* trust)
{
    const char* answer = getenv("VANTRY_TRUST");
    (void)user;
    printf("Certificate of %s: %u bytes, the last one %d\n", host, (unsigned)size, der[size - 1]);
    *trust = answer != NULL && strcmp(answer, "yes") == 0;
}

/* Tells how an operation went, and whether it succeeded. */
static int report(const char* task, const vantry_result* result)
{
    printf("%s: %d %s\n", task, (int)vantry_result_status(result), vantry_result_message(result));
    return vantry_result_succeeded(result);
}

static int do_job(const char* client)
{
    static const char data[] = "Pages: 4711";
    vantry_new_ticket ticket = {sizeof(ticket), client, VANTRY_CLIENT, "Größter Drucker € 🖨",
                                "It does not print."};
    vantry_tech_note note = {sizeof(note), "", "Refilled.", 15, 1};
    vantry_attachment file = {sizeof(file), "", "counter.txt", data, sizeof(data) - 1};
    vantry_ticket entry = {sizeof(entry), NULL, NULL, NULL, NULL};
    vantry_result *session, *created = NULL, *saved = NULL, *attached = NULL, *list = NULL, *closed;
    int done = report("Session", session = vantry_create_session());
    const int is_open = done;
    done = done && report("Ticket", created = vantry_create_ticket(&ticket));
    note.ticket_id = vantry_result_ticket_id(created);
    done = done && report("Note", saved = vantry_save_tech_note(&note));
    file.note_id = vantry_result_note_id(saved);
    done = done && report("File", attached = vantry_save_attachment(&file));
    done = done && report("List", list = vantry_request_ticket_list(client, VANTRY_CLIENT));
    for (size_t i = 0; vantry_result_ticket(list, i, &entry) == VANTRY_OK; i++) {
        printf("%s %s\n", entry.id, entry.name);
    }
    if (is_open) {
        done = report("End", closed = vantry_close_session()) && done;
        vantry_result_free(closed);
    }
    vantry_result_free(list);
    vantry_result_free(attached);
    vantry_result_free(saved);
    vantry_result_free(created);
    vantry_result_free(session);
    return done;
}

int main(int argc, char** argv)
{
    const char* password = getenv("VANTRY_PASSWORD");
    if (argc != 4 || password == NULL) {
        fputs("usage: job ENDPOINT USER CLIENT, with VANTRY_PASSWORD set\n", stderr);
        return EXIT_FAILURE;
    }
    if (vantry_set_endpoint(argv[1]) != VANTRY_OK || vantry_set_credentials(argv[2], password) != VANTRY_OK ||
        vantry_set_certificate_callback(show, NULL) != VANTRY_OK) {
        fputs("The arguments are not UTF-8.\n", stderr);
        return EXIT_FAILURE;
    }
    return do_job(argv[3]) ? EXIT_SUCCESS : EXIT_FAILURE;
}
