// Runs the steps it reads from standard input, one JSON value, against a server, and prints what it
// saw as JSON: the driver's own reading of the wire.
'use strict';

const { Connection, Request, TYPES, ISOLATION_LEVEL } = require('tedious');

const [port, password] = process.argv.slice(2);

function plain(value) {
  if (value instanceof Date) return value.toISOString();
  if (Buffer.isBuffer(value)) return value.toString('hex');
  return value;
}

// Values that JSON has no form for, long ones by what they repeat, and what an earlier step gave out.
const given = {};

function parameterValue(p) {
  if (p.bytes !== undefined) return Buffer.from(p.bytes.repeat(p.times || 1), 'hex');
  if (p.date) return new Date(p.date);
  if (p.given) return given[p.given];
  return p.times ? p.value.repeat(p.times) : p.value;
}

function failure(error) {
  const errors = error.errors || [error];
  return errors.map((one) => ({ number: one.number, code: one.code, message: one.message }));
}

function connect() {
  return new Promise((resolve, reject) => {
    const connection = new Connection({
      server: '127.0.0.1',
      authentication: { type: 'default', options: { userName: 'sa', password } },
      options: {
        port: Number(port),
        encrypt: false,
        trustServerCertificate: true,
        tdsVersion: process.env.WIRE_TDS_VERSION || '7_4',
        connectTimeout: 10000,
        requestTimeout: 30000,
        rowCollectionOnRequestCompletion: false,
      },
    });
    connection.messages = [];
    connection.on('infoMessage', (info) => connection.messages.push({ number: info.number, message: info.message }));
    connection.on('errorMessage', (info) =>
      connection.messages.push({ number: info.number, message: info.message, line: info.lineNumber }));
    connection.connect((error) => (error ? reject(error) : resolve(connection)));
  });
}

// One request; resolves with everything that came back, an error among it.
function execute(connection, step) {
  return new Promise((resolve) => {
    const seen = { sets: [], counts: [], outputs: {}, messages: [] };
    connection.messages = seen.messages;
    const request = new Request(step.text, (error) => {
      if (error) seen.error = failure(error);
      resolve(seen);
    });
    request.on('columnMetadata', (columns) =>
      seen.sets.push({ columns: columns.map((c) => c.colName), types: columns.map((c) => c.type.name), rows: [] }));
    let rows = 0;
    request.on('row', (columns) => {
      rows += 1;
      const set = seen.sets[seen.sets.length - 1];
      if (set.rows.length < 10) set.rows.push(columns.map((c) => plain(c.value)));
      if (step.cancelAfter && rows === step.cancelAfter) connection.cancel();
    });
    for (const event of ['done', 'doneInProc', 'doneProc']) {
      request.on(event, (count, more, status) => {
        if (count !== undefined) seen.counts.push(count);
        if (event === 'doneProc' && status !== undefined) seen.status = status;
      });
    }
    request.on('returnValue', (name, value) => { given[name] = seen.outputs[name] = plain(value); });
    for (const p of step.parameters || []) {
      const value = parameterValue(p);
      const add = p.output ? 'addOutputParameter' : 'addParameter';
      request[add](p.name, TYPES[p.type], value, p.options);
    }
    if (step.cancelMilliseconds) setTimeout(() => connection.cancel(), step.cancelMilliseconds);
    if (step.kind === 'call') connection.callProcedure(request);
    else if (step.kind === 'parameters') connection.execSql(request);
    else if (step.kind === 'prepared') {
      request.once('prepared', () => runPrepared(connection, request, step, seen, resolve));
      connection.prepare(request);
    } else connection.execSqlBatch(request);
  });
}

// Runs a prepared request once for each set of values, then lets it go.
function runPrepared(connection, request, step, seen, resolve) {
  const left = step.values.slice();
  const next = (error) => {
    if (error) seen.error = failure(error);
    if (left.length > 0 && !error) return connection.execute(request, left.shift());
    request.callback = () => resolve(seen);
    return connection.unprepare(request);
  };
  request.callback = next;
  next();
}

function transaction(connection, action) {
  return new Promise((resolve) => {
    const finished = (error) => resolve(error ? { error: failure(error) } : {});
    if (action === 'begin') connection.beginTransaction(finished, 'prueba', ISOLATION_LEVEL.READ_COMMITTED);
    else if (action === 'commit') connection.commitTransaction(finished);
    else if (action === 'save') connection.saveTransaction(finished, 'punto');
    else connection.rollbackTransaction(finished, action === 'rollbackToSave' ? 'punto' : undefined);
  });
}

function reset(connection) {
  return new Promise((resolve) => connection.reset((error) => resolve(error ? { error: failure(error) } : {})));
}

async function main() {
  const steps = JSON.parse(require('fs').readFileSync(0, 'utf8'));
  let connection;
  try {
    connection = await connect();
  } catch (error) {
    console.log(JSON.stringify([{ error: failure(error) }]));
    return;
  }
  const results = [];
  for (const step of steps) {
    if (step.transaction) results.push(await transaction(connection, step.transaction));
    else if (step.reset) results.push(await reset(connection));
    else results.push(await execute(connection, step));
  }
  console.log(JSON.stringify(results));
  connection.close();
}

main();
