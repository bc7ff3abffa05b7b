// A list longer than the rows the browser holds: the search goes to the server, so a row far
// down the list is found as the clerk types, and the pager counts the rows that show.
import { test } from 'node:test';
import assert from 'node:assert/strict';
import { session, shot } from './support.mjs';

let page;
// 600 demo units bring 300 owners, YZ000001 to YZ000300.
session((s) => ({ page } = s), 'e2e-secret-4', 600);

const OWNERS = 870004;
const list = `.screen[data-prog="${OWNERS}"]`;
const pager = () => page.locator(`${list} .pager span`);
const shownCodes = () => page.locator(`${list} tbody tr[data-row]:not([hidden]) td:nth-child(2)`)
  .allTextContents();
const idle = () => page.waitForSelector('#toolbar button[data-cmd="FileNew"]:not([disabled])');

test('a long list is searched on the server; Enter opens the row found; clearing brings all back', async () => {
  await page.click(`#menu button[data-prog="${OWNERS}"]`);
  await page.waitForSelector(`${list} .pager span:text("共 300 行")`);
  assert.equal(await pager().textContent(), '第 1–200 行，共 300 行');
  const search = page.locator(`${list} .list-search`);
  await search.click();
  // Rows 290 to 299 lie beyond the rows first sent.
  await page.keyboard.type('yz00029');
  await page.waitForFunction((sel) => document.querySelectorAll(sel).length === 10,
    `${list} tbody tr[data-row]`);
  assert.deepEqual(await shownCodes(), Array.from({ length: 10 }, (_, i) => `YZ00029${i}`));
  assert.equal(await page.locator(`${list} .pager`).count(), 0);
  await shot(page, '40-long-list-search');
  // A refresh reloads the list; the search of the box's text holds.
  await page.locator('#toolbar button[data-cmd="Refresh"]').click();
  await idle();
  assert.deepEqual(await shownCodes(), Array.from({ length: 10 }, (_, i) => `YZ00029${i}`));
  await search.click();
  await page.keyboard.press('ArrowDown');
  await page.keyboard.press('ArrowDown');
  await page.waitForSelector(`${list} tbody tr.current:has-text("YZ000291")`);
  await page.keyboard.press('Enter');
  const dialog = page.locator('[data-layer="dialog"]');
  await dialog.waitFor();
  await page.waitForFunction(() =>
    document.querySelector('[data-layer="dialog"] [data-control="kvTxt(0)"] input')?.value === 'YZ000291');
  await page.keyboard.press('Escape');
  await dialog.waitFor({ state: 'detached' });
  await idle();
  await search.fill('');
  await page.waitForSelector(`${list} .pager span:text("共 300 行")`);
  assert.equal(await pager().textContent(), '第 1–200 行，共 300 行');
});
