'use strict';
// What the job does not use of the binding: node checks.js ENDPOINT USER CLIENT LOG-FILE
const vantry = require('./vantry');

const [endpoint, userName, , logFile] = process.argv.slice(2);
const connection = { endpoint, userName, password: process.env.VANTRY_PASSWORD };

/** Prints what the operation has thrown, or of a VantryError its status. */
async function failing(what, operation) {
    try {
        await operation();
        console.log(`${what}: nothing was thrown`);
    } catch (error) {
        console.log(`${what}: ${error instanceof vantry.VantryError ? error.status : error.message}`);
    }
}

function fail(text) {
    throw new Error(text);
}

async function checkLog() {
    const lines = [];
    await vantry.use({ ...connection, onLog: (...line) => lines.push(line), logLevel: 'trace' },
        (client) => client.session(() => {}));
    const levels = ['trace', 'debug', 'info', 'warn', 'error', 'fatal'];
    const known = lines.length > 0 && lines.every(([level]) => levels.includes(level));
    const secret = lines.some(([, line]) => line.includes(connection.password));
    console.log(`log: ${known ? 'lines' : 'no lines'}, ${secret ? 'some' : 'none'} with the password`);
    let calm = true;
    await vantry.use({ ...connection, onLog: () => calm || fail('Enough of the log.') }, async (client) => {
        calm = false;
        await failing('a log callback that fails', () => client.createSession());
        calm = true;
    });
}

async function checkProgress() {
    const file = Buffer.alloc(3000000, 'x');
    const calls = [];
    let answer = () => true;
    const onProgress = (progress) => {
        calls.push(progress);
        return answer();
    };
    await vantry.use({ ...connection, onProgress }, (client) => client.session(async () => {
        const note = await client.saveTechNote(await client.createTicket('42', vantry.CLIENT, 'S', 'D'), 'N', 1, true);
        await client.saveAttachment(note, 'file', file);
        const sentAll = calls.some(({ sent, toSend }) => sent === toSend && sent > file.length);
        console.log(`progress: ${sentAll ? '' : 'not '}all was sent`);
        answer = () => false;
        await failing('given up', () => client.saveAttachment(note, 'file', file));
        answer = () => fail('Enough of the progress.');
        calls.length = 0;
        await failing('a progress callback that fails', () => client.saveAttachment(note, 'file', file));
        console.log(`heard: ${calls.length < 10 ? 'at once' : 'late'}`);
        answer = () => true;
    }));
}

async function checkTexts(client) {
    for (const [what, text] of [['a zero in a text', 'a\0b'], ['half a surrogate pair', '\ud83d']]) {
        await client.createTicket('42', vantry.CLIENT, text, 'D').then(() => console.log(`${what}: accepted`),
            (error) => console.log(`${what}: ${error instanceof TypeError ? 'refused' : error.message}`));
    }
    await client.saveTechNote('9999', 'N').catch((error) =>
        console.log(`the server's failure: ${error.status} ${error.message}`));
}

async function main() {
    const onCertificate = (host, der) => {
        console.log(`certificate of ${host}: ${der.toString('hex')}`);
        return true;
    };
    await vantry.use({ ...connection, onCertificate, logFile, logLevel: 'trace' }, (client) => client.createSession());
    await checkLog();
    await checkProgress();
    await vantry.use({ ...connection, onCertificate: () => true }, async (client) => {
        await checkTexts(client);
        const [, tickets] = await Promise.all([ // they take turns
            client.createTicket('42', vantry.CLIENT, 'S', 'D'), client.requestTicketList('42', vantry.CLIENT)]);
        console.log(`in the background: ${tickets.length} tickets of ${tickets[0].clientName}`);
    });
    await vantry.use({ ...connection, onCertificate: () => false }, () => {});
    await vantry.use(connection, (client) => client.session(() => console.log('without callbacks: done')));
}

main();
