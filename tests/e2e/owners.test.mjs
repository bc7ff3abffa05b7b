// The owners' list in a real browser: the entry dialog's form (new, a refused missing name
// and duplicate, Esc), editing by a double click on a row, the grid export downloaded as CSV and
// the print preview; screenshots of each step.
import { test } from 'node:test';
import assert from 'node:assert/strict';
import { readFile } from 'node:fs/promises';
import { session, shot } from './support.mjs';

let page;
session((s) => ({ page } = s), 'e2e-secret-2');

const OWNERS = 870004;
const screen = `.screen[data-prog="${OWNERS}"]`;
const tool = (cmd) => page.locator(`#toolbar button[data-cmd="${cmd}"]`);
const dialog = () => page.locator('[data-layer="dialog"]');
const input = (i) => dialog().locator(`[data-control="kvTxt(${i})"] input`);
const dataRows = () => page.locator(`${screen} [data-control="Vs"] tbody tr`);
const rowTexts = async () => (await dataRows().allTextContents()).map((t) => t.trim());

// Waits until no request of the page is on its way (the client marks the body busy).
const settled = () => page.waitForSelector('body:not(.busy)', { state: 'attached' });

async function typeIn(i, text) {
  await input(i).fill(text);
  await input(i).press('Tab');
  await settled();
}

// Waits until the toolbar is idle again after a command.
const idle = () => page.waitForSelector('#toolbar button[data-cmd="FileNew"]:not([disabled])');

test('owners: a new owner through the entry dialog', async () => {
  await page.click(`#menu button[data-prog="${OWNERS}"]`);
  await page.waitForSelector(`${screen}:not([hidden]) [data-control="Vs"] table.grid`);
  // The list is the screen: its grid takes the height below the toolbar.
  const box = await page.locator(`${screen} [data-control="Vs"]`).boundingBox();
  assert.ok(box.height > 500, 'grid height ' + box.height);

  await tool('FileNew').click();
  await dialog().waitFor();
  assert.equal(await dialog().locator('.title span').textContent(), '业主信息');
  // Two columns of fields with their captions trimmed; the fields here have no picker.
  assert.deepEqual([await dialog().locator('.dialog-form > .field').count(),
    await dialog().locator('[data-control="kvTxt(0)"] .caption').textContent(),
    await dialog().locator('button.pick').count()], [8, '编号', 0]);
  // The sex options on one line, "男" chosen; the commands in the footer, access keys underlined.
  const options = dialog().locator('.option-group [data-control^="optXB"]');
  assert.deepEqual(await options.allTextContents(), ['男', '女']);
  assert.equal(await dialog().locator('[data-control="optXB(0)"] input').isChecked(), true);
  assert.deepEqual(await dialog().locator('.buttons button').allTextContents(), ['保存(S)', '关闭(X)']);
  assert.deepEqual(await dialog().locator('.buttons u.access-key').allTextContents(), ['S', 'X']);

  await typeIn(0, 'Y01');
  await typeIn(1, '张三');
  await dialog().locator('[data-control="optXB(1)"] input').click();
  await settled();
  await page.waitForFunction(() =>
    document.querySelector('[data-layer="dialog"] [data-control="optXB(1)"] input')?.checked);
  // Enter in a field takes the text and keeps the dialog open.
  await input(2).fill('13800000000');
  await input(2).press('Enter');
  await settled();
  assert.deepEqual([await dialog().count(), await input(2).inputValue(), await input(1).inputValue()],
    [1, '13800000000', '张三']);
  await shot(page, '10-owner-dialog');

  await dialog().locator('button:text("保存(S)")').click();
  await dialog().waitFor({ state: 'detached' });
  await page.waitForFunction((sel) =>
    [...document.querySelectorAll(sel)].some((tr) => tr.textContent.includes('张三')),
  `${screen} [data-control="Vs"] tbody tr`);
  const [row] = await rowTexts();
  assert.match(row, /Y01\s*张三\s*女\s*13800000000/);
});

test('owners: a missing name and a taken code are refused with an alert; Esc closes the dialog after asking', async () => {
  await idle();
  await tool('FileNew').click();
  await dialog().waitFor();
  await typeIn(0, 'Y01');
  // Saving without a name: after the alert the focus is in the name, where the check put it.
  await dialog().locator('button:text("保存(S)")').click();
  const alert = page.locator('.layer.alert');
  await alert.waitFor();
  assert.equal(await alert.locator('.text').textContent(), '没有具体的姓名,请录入!');
  await alert.locator('button:text("确定")').click();
  await alert.waitFor({ state: 'detached' });
  await settled();
  await page.waitForFunction(() => document.activeElement?.closest('[data-control]')
    ?.dataset.control === 'kvTxt(1)');
  await typeIn(1, '李四');
  await dialog().locator('button:text("保存(S)")').click();
  await alert.waitFor();
  assert.deepEqual([await alert.locator('.text').textContent(), await alert.locator('.title span').textContent()],
    ['编号重复,请检查!', '提示：']);
  await shot(page, '11-owner-duplicate');
  await alert.locator('button:text("确定")').click();
  await alert.waitFor({ state: 'detached' });
  // The dialog stays with what was typed; Esc is its close box (after asking, as fields
  // were changed) and saves nothing.
  assert.equal(await input(1).inputValue(), '李四');
  await input(1).press('Escape');
  await page.locator('[data-layer="msgbox"] button[data-answer="6"]').click();
  await dialog().waitFor({ state: 'detached' });
  await idle();
  assert.equal(await dataRows().count(), 1);
});

test('owners: a double click on a row edits it; Alt+S saves', async () => {
  await page.locator(`${screen} [data-control="Vs"] tbody tr`, { hasText: '张三' }).dblclick();
  await dialog().waitFor();
  await page.waitForFunction(() =>
    document.querySelector('[data-layer="dialog"] [data-control="kvTxt(0)"] input')?.value === 'Y01');
  assert.deepEqual([await input(1).inputValue(),
    await dialog().locator('[data-control="optXB(1)"] input').isChecked()], ['张三', true]);
  // Alt+S straight from the field being typed in: the text goes before the save.
  await input(1).fill('张三丰');
  await page.keyboard.press('Alt+s');
  await dialog().waitFor({ state: 'detached' });
  await page.waitForFunction((sel) =>
    document.querySelector(sel)?.textContent.includes('张三丰'),
  `${screen} [data-control="Vs"] tbody tr.current`);
  assert.equal(await dataRows().count(), 1);
  await shot(page, '12-owner-list');
});

test('owners: the grid exports as CSV with its header row', async () => {
  await idle();
  await tool('Export').click();
  const layer = page.locator('[data-layer="export"]');
  await layer.waitFor();
  await layer.locator('input[value="csv"]').check();
  const [download] = await Promise.all([
    page.waitForEvent('download'),
    layer.locator('button:text("确定")').click(),
  ]);
  // Named after the screen and the day.
  assert.match(download.suggestedFilename(), /^业主信息-\d{4}-\d\d-\d\d\.csv$/);
  const bytes = await readFile(await download.path());
  assert.deepEqual([...bytes.subarray(0, 3)], [0xef, 0xbb, 0xbf], 'UTF-8 byte order mark');
  const lines = bytes.subarray(3).toString('utf8').split('\r\n');
  assert.equal(lines[0], '行号,编号,姓名,性别,电话,身份证号,籍贯,工作单位,备注');
  assert.equal(lines[1], '1,Y01,张三丰,女,13800000000,,,,');
  await page.waitForSelector('#statusline:text-matches("已导出 业主信息-")');
});

// The list sheet does not print itself: the host prints its grid, shown in a frame whose
// button prints that frame.
test('print preview: the list grid as a page in a frame with a print button', async () => {
  await idle();
  await tool('PrintPreview').click();
  const layer = page.locator('[data-layer="preview"]');
  await layer.waitFor();
  assert.equal(await layer.locator('.title span').textContent(), '打印预览 - 业主信息');
  assert.match(await layer.locator('a.open-tab').getAttribute('href'), /^\/api\/file\//);
  const frame = page.frameLocator('[data-layer="preview"] iframe');
  await frame.locator('td:text("张三丰")').waitFor();
  await frame.locator('th:text("身份证号")').waitFor();
  await shot(page, '14-print-preview');
  const inner = page.frames().find((f) => f.url().includes('/api/file/'));
  await inner.evaluate(() => { window.print = () => { window.printed = true; }; });
  await layer.locator('button.print').click();
  assert.equal(await inner.evaluate(() => window.printed === true), true);
  await layer.locator('button:text("关闭")').click();
  await layer.waitFor({ state: 'detached' });
});
