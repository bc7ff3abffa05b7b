// Starts `mrvk serve` on a fresh SQLite database and a headless Debian chromium for the
// browser tests. MRVK_BIN names the executable (default: build/mrvk of the project);
// MRVK_E2E_ARTIFACTS the folder of the screenshots (default: build/e2e-artifacts).
import { spawn, spawnSync } from 'node:child_process';
import { mkdtempSync, mkdirSync, rmSync } from 'node:fs';
import { tmpdir } from 'node:os';
import path from 'node:path';
import { fileURLToPath } from 'node:url';
import { after, before } from 'node:test';
import { chromium } from 'playwright-core';

const root = path.resolve(path.dirname(fileURLToPath(import.meta.url)), '..', '..');
export const binary = process.env.MRVK_BIN || path.join(root, 'build', 'mrvk');
export const artifacts = process.env.MRVK_E2E_ARTIFACTS || path.join(root, 'build', 'e2e-artifacts');
export const chromiumPath = process.env.MRVK_CHROMIUM || '/usr/bin/chromium';

// Runs `mrvk serve` on any free port, on a database that `mrvk demo` fills with demoUnits
// units (and their estates, owners and clients) when given; resolves to { url, password, stop }.
async function startServer(demoUnits) {
  const dir = mkdtempSync(path.join(tmpdir(), 'mrvk-e2e-'));
  const database = `sqlite://${dir}/e2e.sqlite3`;
  for (const args of demoUnits ? [['init-db'], ['demo', '--units', String(demoUnits)]] : []) {
    const run = spawnSync(binary, [...args, '--database', database], { encoding: 'utf8' });
    if (run.status !== 0) throw new Error(`mrvk ${args[0]} failed: ${run.stdout}${run.stderr}`);
  }
  const child = spawn(binary, ['serve', '--database', database, '--port', '0',
                               '--app-path', dir], { stdio: ['ignore', 'pipe', 'pipe'] });
  let out = '';
  let err = '';
  child.stderr.on('data', (d) => { err += d; });
  const ready = await new Promise((resolve, reject) => {
    const timer = setTimeout(() => reject(new Error('mrvk serve did not start: ' + out + err)), 20000);
    child.stdout.on('data', (d) => {
      out += d;
      const port = /listening on (http:\/\/[^/\s]+\/)/.exec(out);
      const pw = /one-time password: (\S+)/.exec(out);
      if (port && pw) { clearTimeout(timer); resolve({ url: port[1], password: pw[1] }); }
    });
    child.on('exit', (code) => reject(new Error(`mrvk serve ended (${code}): ${out}${err}`)));
  });
  const stop = async () => {
    if (child.exitCode === null) {
      child.kill('SIGTERM');
      await new Promise((r) => child.on('exit', r));
    }
    rmSync(dir, { recursive: true, force: true });
  };
  return { ...ready, stop };
}

async function startBrowser() {
  mkdirSync(artifacts, { recursive: true });
  const browser = await chromium.launch({
    executablePath: chromiumPath, headless: true,
    args: ['--no-sandbox', '--disable-gpu', '--disable-dev-shm-usage'],
  });
  const context = await browser.newContext({ viewport: { width: 1280, height: 800 }, locale: 'zh-CN' });
  // Generous for a busy machine; a passing step takes well under a second.
  context.setDefaultTimeout(20000);
  return { browser, context };
}

export async function shot(page, name) {
  await page.screenshot({ path: path.join(artifacts, name + '.png'), fullPage: true });
}

// Signs in; on the administrator's first sign-in changes the one-time password to `next`.
export async function signIn(page, url, user, password, next) {
  await page.goto(url);
  await page.fill('#signin-user', user);
  await page.fill('#signin-password', password);
  await page.click('#signin-submit');
  if (next) {
    await page.waitForSelector('#password:not([hidden])');
    await page.fill('#password-old', password);
    await page.fill('#password-new', next);
    await page.fill('#password-again', next);
    await page.click('#password-submit');
  }
  await page.waitForSelector('#app:not([hidden]) #menu button.entry');
}

// One server and one browser page for a test file: `use` receives { server, page } before the
// first test; with `next` the administrator is signed in and the password changed to it;
// with demoUnits the database holds that many demo units first.
export function session(use, next, demoUnits = 0) {
  let server;
  let browser;
  before(async () => {
    server = await startServer(demoUnits);
    let context;
    ({ browser, context } = await startBrowser());
    const page = await context.newPage();
    if (next) await signIn(page, server.url, 'admin', server.password, next);
    use({ server, page });
  });
  after(async () => {
    if (browser) await browser.close();
    if (server) await server.stop();
  });
}
