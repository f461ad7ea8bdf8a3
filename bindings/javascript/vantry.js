'use strict';
/**
 * The Vantry help-desk client for Node and Electron (main process), 64-bit, over vantry.dll or libvantry.so and koffi.
 *
 *     await vantry.use({ endpoint: 'https://helpdesk.example.com/helpdesk/rest', userName: 'technician', password,
 *                        onCertificate: (host, der) => ask(host, new X509Certificate(der)) }, async (client) => {
 *         const ticket = await client.createTicket('42', vantry.CLIENT, 'Printer', 'It is on fire.');
 *     });
 *
 * A failure is a rejected promise: VantryError, or what a callback has thrown. The library is looked for beside this
 * file, then where the system looks.
 */
const fs = require('fs');
const path = require('path');
const koffi = require('koffi');

const ASSET = 0; // kinds of entity that a ticket belongs to
const CLIENT = 1;
const LOG_LEVELS = ['trace', 'debug', 'info', 'warn', 'error', 'fatal'];

/** An operation or a setting that failed: the server's HTTP code or a vantry_status, and a text to show. */
class VantryError extends Error {
    constructor(status, message) {
        super(message);
        this.name = 'VantryError';
        this.status = status;
    }
}

koffi.opaque('vantry_result');
koffi.struct('vantry_new_ticket',
    { size: 'size_t', entityId: 'str', entityType: 'int32_t', subject: 'str', detail: 'str' });
koffi.struct('vantry_tech_note',
    { size: 'size_t', ticketId: 'str', text: 'str', workTime: 'uint32_t', isVisible: 'int32_t' });
koffi.struct('vantry_attachment',
    { size: 'size_t', noteId: 'str', fileName: 'str', data: 'void *', dataSize: 'size_t' });
koffi.struct('vantry_ticket', { size: 'size_t', id: 'str', name: 'str', detail: 'str', clientName: 'str' });
const prototypes = {
    certificate: koffi.proto('void vantry_certificate_callback(void *user, const char *host, void *der, size_t size, ' +
        'int32_t *trust)'),
    log: koffi.proto('void vantry_log_callback(void *user, int32_t level, const char *text)'),
    progress: koffi.proto('void vantry_progress_callback(void *user, uint64_t sent, uint64_t to_send, ' +
        'uint64_t received, uint64_t to_receive, int32_t *give_up)'),
};

const fileName = process.platform === 'win32' ? 'vantry.dll' : 'libvantry.so';
const beside = path.join(__dirname, fileName);
const library = koffi.load(fs.existsSync(beside) ? beside : fileName);
const native = {
    statusMessage: library.func('const char *vantry_status_message(int32_t status)'),
    setEndpoint: library.func('int32_t vantry_set_endpoint(const char *endpoint)'),
    setCredentials: library.func('int32_t vantry_set_credentials(const char *user_name, const char *password)'),
    setCallback: {
        certificate: library.func(
            'int32_t vantry_set_certificate_callback(vantry_certificate_callback *callback, void *user)'),
        log: library.func('int32_t vantry_set_log_callback(vantry_log_callback *callback, void *user, int32_t level)'),
        progress: library.func('int32_t vantry_set_progress_callback(vantry_progress_callback *callback, void *user)'),
    },
    setLogFile: library.func('int32_t vantry_set_log_file(const char *path, int32_t level)'),
    createSession: library.func('vantry_result *vantry_create_session()'),
    closeSession: library.func('vantry_result *vantry_close_session()'),
    createTicket: library.func('vantry_result *vantry_create_ticket(const vantry_new_ticket *ticket)'),
    saveTechNote: library.func('vantry_result *vantry_save_tech_note(const vantry_tech_note *note)'),
    saveAttachment: library.func('vantry_result *vantry_save_attachment(const vantry_attachment *attachment)'),
    requestTicketList: library.func(
        'vantry_result *vantry_request_ticket_list(const char *entity_id, int32_t entity_type)'),
    status: library.func('int32_t vantry_result_status(const vantry_result *result)'),
    succeeded: library.func('int32_t vantry_result_succeeded(const vantry_result *result)'),
    message: library.func('const char *vantry_result_message(const vantry_result *result)'),
    ticketId: library.func('const char *vantry_result_ticket_id(const vantry_result *result)'),
    noteId: library.func('const char *vantry_result_note_id(const vantry_result *result)'),
    ticketCount: library.func('size_t vantry_result_ticket_count(const vantry_result *result)'),
    ticket: library.func(
        'int32_t vantry_result_ticket(const vantry_result *result, size_t index, _Inout_ vantry_ticket *ticket)'),
    free: library.func('void vantry_result_free(vantry_result *result)'),
};

const installed = {}; // the callbacks that the library knows
let last = Promise.resolve(); // calls take turns here: none waits on a thread of Node's pool
let thrown = null; // what a callback has thrown during the call that runs: { error }

/** Calls a function of the library on another thread; callbacks run on this one. */
function call(entry, ...values) {
    const next = last.then(() => new Promise((resolve, reject) => {
        thrown = null;
        entry.async(...values, (error, value) => {
            if (error) {
                reject(error);
            } else {
                resolve({ value, thrown });
            }
        });
    }));
    last = next.catch(() => {});
    return next;
}

async function setting(entry, ...values) {
    const outcome = await call(entry, ...values);
    if (outcome.thrown) {
        throw outcome.thrown.error;
    }
    if (outcome.value !== 0) {
        throw new VantryError(outcome.value, native.statusMessage(outcome.value));
    }
}

async function operation(entry, values, read) {
    const outcome = await call(entry, ...values);
    const result = outcome.value;
    try {
        if (outcome.thrown) {
            throw outcome.thrown.error;
        }
        if (!native.succeeded(result)) {
            throw new VantryError(native.status(result), native.message(result));
        }
        return read && read(result);
    } finally {
        native.free(result);
    }
}

/** Installs a callback, or none, and forgets the one before it when no call can run it any more. */
async function install(name, callback, ...level) {
    const registered = callback ? koffi.register(callback, koffi.pointer(prototypes[name])) : null;
    await setting(native.setCallback[name], registered, null, ...level);
    if (installed[name]) {
        koffi.unregister(installed[name]);
    }
    installed[name] = registered;
}

/** No exception may leave a callback. */
function guard(body) {
    try {
        return body();
    } catch (error) {
        thrown = thrown || { error };
        return undefined;
    }
}

/** What would reach the library as another text, for a zero in it or half a surrogate pair, is refused. */
function text(value) {
    if (typeof value !== 'string' || value.includes('\0') || Buffer.from(value).toString() !== value) {
        throw new TypeError('This is no text that can be sent.');
    }
    return value;
}

const sized = (type, members) => ({ size: koffi.sizeof(type), ...members });

/** The process's one client, for as long as `use` runs. Operations take turns; a callback must not wait for one. */
class Client {
    createSession() {
        return operation(native.createSession, []);
    }

    closeSession() {
        return operation(native.closeSession, []);
    }

    /** Gives the id of the new ticket. */
    async createTicket(entityId, entityType, subject, detail) {
        const ticket = { entityId: text(entityId), entityType, subject: text(subject), detail: text(detail) };
        return operation(native.createTicket, [sized('vantry_new_ticket', ticket)], native.ticketId);
    }

    /** Gives the id of the new note; workTime is in the server's unit. */
    async saveTechNote(ticketId, noteText, workTime = 0, isVisible = false) {
        const note = { ticketId: text(ticketId), text: text(noteText), workTime, isVisible: isVisible ? 1 : 0 };
        return operation(native.saveTechNote, [sized('vantry_tech_note', note)], native.noteId);
    }

    /** Attaches a file with these bytes (a Buffer) to the note that was saved last. */
    async saveAttachment(noteId, name, data) {
        const attachment = { noteId: text(noteId), fileName: text(name), data, dataSize: data.length };
        return operation(native.saveAttachment, [sized('vantry_attachment', attachment)]);
    }

    /** Gives [{ id, name, detail, clientName }]. */
    async requestTicketList(entityId, entityType) {
        return operation(native.requestTicketList, [text(entityId), entityType], (result) => {
            const tickets = [];
            for (let index = 0; index < native.ticketCount(result); ++index) {
                const entry = sized('vantry_ticket', { id: null, name: null, detail: null, clientName: null });
                native.ticket(result, index, entry);
                const { id, name, detail, clientName } = entry;
                tickets.push({ id, name, detail, clientName });
            }
            return tickets;
        });
    }

    /** Opens a session, awaits work() and closes the session. */
    async session(work) {
        await this.createSession();
        try {
            return await work();
        } finally {
            await this.closeSession();
        }
    }
}

async function configure(settings) {
    const { endpoint, userName, password, onCertificate, onProgress, onLog, logFile, logLevel = 'info' } = settings;
    const level = LOG_LEVELS.indexOf(logLevel);
    await install('log', onLog && ((_user, lineLevel, line) => guard(() => onLog(LOG_LEVELS[lineLevel], line))), level);
    await setting(native.setLogFile, logFile === undefined ? null : text(logFile), level);
    await setting(native.setEndpoint, text(endpoint));
    await setting(native.setCredentials, text(userName), text(password));
    await install('certificate', onCertificate && ((_user, host, der, size, trust) => {
        const trusted = guard(() => onCertificate(host, Buffer.from(koffi.decode(der, 'uint8_t', Number(size)))));
        koffi.encode(trust, 'int32_t', trusted === true ? 1 : 0);
    }));
    await install('progress', onProgress && ((_user, sent, toSend, received, toReceive, giveUp) => {
        const goOn = guard(() => onProgress({ sent, toSend, received, toReceive }) !== false);
        koffi.encode(giveUp, 'int32_t', goOn ? 0 : 1);
    }));
}

/**
 * Awaits work(client) with these settings; then the library forgets the callbacks and closes the log file.
 *
 * onCertificate(host, der) tells whether that certificate is trusted: true, and no promise. Without it every server is
 * whose certificate passes the system's own validation. onProgress({ sent, toSend, received, toReceive }), in bytes, is
 * called every some 20 ms while an operation waits; if it returns false the operation is given up. onLog(level, line)
 * takes the lines of logLevel ('trace' to 'fatal') and above; logFile is a file to which they are appended. What a
 * callback throws rejects the operation.
 */
async function use(settings, work) {
    try {
        await configure(settings);
        return await work(new Client());
    } finally {
        await install('certificate', null);
        await install('progress', null);
        await install('log', null, LOG_LEVELS.length - 1);
        await setting(native.setLogFile, null, LOG_LEVELS.length - 1);
    }
}

module.exports = { use, VantryError, ASSET, CLIENT };
