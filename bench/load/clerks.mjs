// Load of the web client: N simulated clerks, each signed in with a session of their own,
// doing a scripted round on the buildings sheet over HTTP, all at once. Reports the latency
// of the protocol requests (p50, p95, max) and the errors.
//
//   node bench/load/clerks.mjs [--clerks 20] [--rounds 5] [--database URL] [--bin build/mrvk]
//
// Without --database a fresh SQLite file is used; a postgresql:// URL should name an empty
// schema (e.g. options=-csearch_path=...). The clerks are added with `mrvk user add`.
import { spawn, spawnSync } from 'node:child_process';
import { mkdtempSync, rmSync } from 'node:fs';
import { tmpdir } from 'node:os';
import path from 'node:path';

const args = Object.fromEntries(process.argv.slice(2).reduce((acc, a, i, all) => {
  if (a.startsWith('--')) acc.push([a.slice(2), all[i + 1]]);
  return acc;
}, []));
const clerks = Number(args.clerks || 20);
const rounds = Number(args.rounds || 5);
const bin = args.bin || 'build/mrvk';
const dir = mkdtempSync(path.join(tmpdir(), 'mrvk-load-'));
const database = args.database || `sqlite://${dir}/load.sqlite3`;
const password = 'load-test-password';

for (let i = 0; i < clerks; i++) {
  const r = spawnSync(bin, ['user', 'add', `clerk${i}`, '--password-stdin', '--database', database],
                      { input: password + '\n' });
  if (r.status !== 0 && !String(r.stderr).includes('exists already')) {
    throw new Error('mrvk user add: ' + r.stderr);
  }
}

const server = spawn(bin, ['serve', '--database', database, '--port', '0', '--app-path', dir],
                     { stdio: ['ignore', 'pipe', 'inherit'] });
const base = await new Promise((resolve, reject) => {
  let out = '';
  server.stdout.on('data', (d) => {
    out += d;
    const m = /listening on (http:\/\/[^/\s]+)\//.exec(out);
    if (m) resolve(m[1]);
  });
  server.on('exit', (code) => reject(new Error('mrvk serve ended: ' + code + ' ' + out)));
});

const latencies = [];
const errors = [];

async function post(clerk, p, body) {
  const start = performance.now();
  const res = await fetch(base + p, {
    method: 'POST',
    headers: { 'Content-Type': 'application/json', 'X-CSRF-Token': clerk.csrf, Cookie: clerk.cookie },
    body: JSON.stringify(body),
  });
  const answer = await res.json();
  const ms = performance.now() - start;
  if (p === '/api/protocol') latencies.push(ms);
  if (!res.ok) errors.push(`${clerk.name} ${body.op} ${body.method || body.gesture || ''}: ${res.status} ${answer.error}`);
  return { res, answer };
}

async function call(clerk, req) {
  let { answer } = await post(clerk, '/api/protocol', req);
  // A box the round did not expect is answered "no" and counted as an error.
  while (answer.pending) {
    errors.push(`${clerk.name}: unexpected ${answer.pending.kind} "${answer.pending.prompt}"`);
    ({ answer } = await post(clerk, '/api/protocol', { op: 'answer', value: 7 }));
  }
  return answer;
}

async function round(clerk, n) {
  const open = await call(clerk, { op: 'open', progID: 870001 });
  const screen = open.result;
  const s = { op: 'state', screen };
  await call(clerk, s);
  await call(clerk, { op: 'call', screen, method: 'FileNew' });
  const code = `${clerk.name}-${n}`;
  for (const [index, text] of [[0, code], [1, '楼 ' + code], [6, '位置 ' + n]]) {
    await call(clerk, { op: 'gesture', screen, control: 'kvTxt', index, gesture: 'type', text });
    await call(clerk, { op: 'gesture', screen, control: 'kvTxt', index, gesture: 'leave' });
  }
  const saved = await call(clerk, { op: 'call', screen, method: 'FileSave' });
  if (saved.result !== true) errors.push(`${clerk.name}: save of ${code} failed: ${JSON.stringify(saved.events)}`);
  await call(clerk, s);
  await call(clerk, { op: 'call', screen, method: 'RecordTop' });
  await call(clerk, { op: 'call', screen, method: 'RecordNext' });
  await call(clerk, s);
  await call(clerk, { op: 'close', screen });
}

async function clerkRun(i) {
  const r = await fetch(base + '/api/signin', {
    method: 'POST', headers: { 'Content-Type': 'application/json' },
    body: JSON.stringify({ user: `clerk${i}`, password }),
  });
  const body = await r.json();
  if (!r.ok) { errors.push(`clerk${i}: sign-in ${r.status} ${body.error}`); return; }
  const clerk = { name: `c${i}`, csrf: body.csrf, cookie: r.headers.get('set-cookie').split(';')[0] };
  for (let n = 0; n < rounds; n++) await round(clerk, n);
}

const started = performance.now();
await Promise.all(Array.from({ length: clerks }, (_, i) => clerkRun(i)));
const seconds = (performance.now() - started) / 1000;
server.kill('SIGTERM');
await new Promise((r) => server.on('exit', r));
rmSync(dir, { recursive: true, force: true });

latencies.sort((a, b) => a - b);
const pct = (p) => latencies[Math.min(latencies.length - 1, Math.floor(p / 100 * latencies.length))];
const engine = database.startsWith('postgresql') ? 'PostgreSQL' : 'SQLite';
console.log(`${engine}: ${clerks} clerks x ${rounds} rounds, ${latencies.length} protocol requests ` +
            `in ${seconds.toFixed(1)} s`);
console.log(`p50 ${pct(50).toFixed(1)} ms  p95 ${pct(95).toFixed(1)} ms  ` +
            `max ${latencies[latencies.length - 1].toFixed(1)} ms  errors ${errors.length}`);
for (const e of errors.slice(0, 10)) console.log('  ' + e);
process.exit(errors.length ? 1 : 0);
