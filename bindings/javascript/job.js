'use strict';
// A whole help-desk job: node job.js ENDPOINT USER CLIENT, with VANTRY_PASSWORD set and VANTRY_TRUST=yes or no.
const vantry = require('./vantry');

// A program with a window shows the certificate here and asks.
function isTrusted(host, der) {
    console.log(`Certificate of ${host}: ${der.length} bytes, the last one ${der[der.length - 1]}`);
    if (process.env.VANTRY_TRUST === undefined) {
        throw new Error('Nobody has decided about the certificate.');
    }
    return process.env.VANTRY_TRUST === 'yes';
}

async function doJob(client, person) {
    const ticket = await client.createTicket(person, vantry.CLIENT, 'Größter Drucker € 🖨', 'It does not print.');
    const note = await client.saveTechNote(ticket, 'Refilled.', 15, true);
    await client.saveAttachment(note, 'counter.txt', Buffer.from('Pages: 4711'));
    console.log(`Created ticket ${ticket} with note ${note}`);
    for (const entry of await client.requestTicketList(person, vantry.CLIENT)) {
        console.log(entry.id, entry.name);
    }
}

async function main() {
    const [endpoint, userName, person] = process.argv.slice(2);
    const password = process.env.VANTRY_PASSWORD;
    if (person === undefined || password === undefined) {
        throw new Error('usage: node job.js ENDPOINT USER CLIENT, with VANTRY_PASSWORD set');
    }
    await vantry.use({ endpoint, userName, password, onCertificate: isTrusted }, (client) =>
        client.session(() => doJob(client, person)));
}

main().catch((error) => {
    console.log(error instanceof vantry.VantryError ? `Failed: ${error.status} ${error.message}`
        : `Ended by: ${error.message}`);
    process.exitCode = 1;
});
