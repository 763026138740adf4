// An SNMP client that shares no code with Net-SNMP. Reads one request a line: "get OID", "walk OID", "set OID integer NUMBER" or
// "set OID octets HEX"; prints the answer, "OID = TYPE VALUE" for each varbind or "status NUMBER" for a SET, and a line "end"
// after each answer. Usage: client.js ADDRESS PORT COMMUNITY
'use strict';
const readline = require('readline');
const snmp = require('net-snmp');

const [address, port, community] = process.argv.slice(2);
const session = snmp.createSession(address, community, {
  port: Number(port), version: snmp.Version2c, timeout: 200000, retries: 0,
});

const exceptions = {
  [snmp.ObjectType.NoSuchObject]: 'noSuchObject',
  [snmp.ObjectType.NoSuchInstance]: 'noSuchInstance',
  [snmp.ObjectType.EndOfMibView]: 'endOfMibView',
};
const numbers = {
  [snmp.ObjectType.Integer]: 'INTEGER',
  [snmp.ObjectType.Gauge]: 'Gauge32',
  [snmp.ObjectType.Counter]: 'Counter32',
};

function shown({ oid, type, value }) {
  if (exceptions[type]) return `${oid} = ${exceptions[type]}`;
  if (numbers[type]) return `${oid} = ${numbers[type]} ${value}`;
  if (type === snmp.ObjectType.OctetString)
    return [`${oid} = STRING`, ...[...value].map((octet) => octet.toString(16).padStart(2, '0'))].join(' ');
  return `${oid} = type ${type}`;
}

function print(lines) {
  process.stdout.write([...lines, 'end', ''].join('\n'));
}

function fail(error) {
  process.stderr.write(`client.js: ${error}\n`);
  process.exit(1);
}

const requests = {
  get: (oid) => new Promise((done) => session.get([oid], (error, varbinds) => {
    if (error) fail(error);
    done(varbinds.map(shown));
  })),
  walk: (oid) => new Promise((done) => {
    const found = [];
    session.subtree(oid, 20, (varbinds) => { found.push(...varbinds.map(shown)); }, (error) => {
      if (error) fail(error);
      done(found);
    });
  }),
  set: (oid, type, value) => new Promise((done) => {
    const varbind = type === 'integer' ?
      { oid, type: snmp.ObjectType.Integer, value: Number(value) } :
      { oid, type: snmp.ObjectType.OctetString, value: Buffer.from(value || '', 'hex') };
    session.set([varbind], (error) => {
      if (error && !error.status) fail(error);
      done([`status ${error ? error.status : 0}`]);
    });
  }),
};

async function answerAll() {
  for await (const line of readline.createInterface({ input: process.stdin })) {
    const [kind, ...words] = line.split(' ');
    print(await requests[kind](...words));
  }
  session.close();
}

answerAll().catch(fail);
