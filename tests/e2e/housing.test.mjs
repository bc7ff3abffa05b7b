// A clerk registers a housing unit with three rooms on the housing sheet: fields typed with
// the keyboard, a new estate and owner typed by name, facilities ticked, the rooms entered in
// the grid of the second page; saved, shown again after a reload, moved to and from.
import { test } from 'node:test';
import assert from 'node:assert/strict';
import { session, shot } from './support.mjs';

let page;
session((s) => ({ page } = s), 'e2e-secret-5');

const HOUSING = 640002;
const sheet = `.screen[data-prog="${HOUSING}"]:not([hidden])`;
const tool = (cmd) => page.locator(`#toolbar button[data-cmd="${cmd}"]`);
const field = (i) => page.locator(`${sheet} [data-control="kvTxt(${i})"] input, ${sheet} [data-control="kvTxt(${i})"] select`).first();
const idle = () => page.waitForSelector('#toolbar button[data-cmd="FileNew"]:not([disabled])');
const pageTab = (text) => page.locator(`${sheet} [data-control="Toolbar1"] button`, { hasText: text });
const roomRows = () => page.locator(`${sheet} [data-control="kvGridF"] tbody tr`);

async function typeInto(i, text) {
  await field(i).click();
  await field(i).fill(text);
  await field(i).press('Tab');
}

async function addRoom(room, area, rent) {
  const before = await roomRows().count();
  await page.locator(`${sheet} [data-control="kvGridF"] button`, { hasText: '增行' }).click();
  await page.waitForFunction(([sel, n]) => document.querySelectorAll(sel).length === n,
    [`${sheet} [data-control="kvGridF"] tbody tr`, before + 1]);
  const row = roomRows().last();
  for (const [col, text] of [[1, room], [2, area], [3, rent]]) {
    await row.locator(`td[data-col="${col}"]`).dblclick();
    const input = row.locator(`td[data-col="${col}"] input`);
    await input.waitFor();
    await input.fill(text);
    await input.press('Enter');
    await page.waitForFunction(([sel, c, t]) => {
      const rows = document.querySelectorAll(sel);
      return rows.length && rows[rows.length - 1].querySelector(`td[data-col="${c}"]`)?.textContent === t;
    }, [`${sheet} [data-control="kvGridF"] tbody tr`, col, text]);
  }
}

test('a unit with three rooms is registered, saved, shown again and moved to', async () => {
  await page.click(`#menu button[data-prog="${HOUSING}"]`);
  await page.waitForSelector(`${sheet} [data-control="kvTxt(0)"]`);
  await tool('FileNew').click();
  await page.locator(`${sheet} [data-control="kvTxt(0)"] input:focus`).waitFor();
  const number = await field(2).inputValue();
  assert.ok(number.length > 0, 'a number is proposed');
  assert.equal(await field(28).inputValue(), '未出租');
  await typeInto(0, '阳光花园 1-101');
  await typeInto(1, '阳光花园');
  await typeInto(3, '东城区');
  await typeInto(8, '86.5');
  await typeInto(25, '3000');
  await typeInto(19, '王五');
  await typeInto(20, '13900000000');
  await page.locator(`${sheet} [data-control="chkJC(0)"] input`).click();
  await page.locator(`${sheet} [data-control="chkPT(6)"] input`).click();
  await pageTab('辅助信息').click();
  await page.waitForSelector(`${sheet} [data-control="kvGridF"]`);
  await addRoom('A', '30', '1200');
  await addRoom('B', '25', '1000');
  await addRoom('C', '20', '800');
  await shot(page, '50-housing-rooms');
  // A rent typed into a cell and saved with Ctrl+S at once, without leaving the cell.
  await roomRows().last().locator('td[data-col="3"]').dblclick();
  await roomRows().last().locator('td[data-col="3"] input').fill('850');
  await page.keyboard.press('Control+s');
  await page.waitForSelector('#statusline:text-is("已保存")');
  await idle();

  // Reloaded: the unit is shown again with its rooms and state.
  await page.reload();
  await page.waitForSelector('#app:not([hidden]) #menu button.entry');
  await page.click(`#menu button[data-prog="${HOUSING}"]`);
  await page.waitForSelector(`${sheet} [data-control="kvTxt(0)"]`);
  await tool('RecordBottom').click();
  await page.waitForFunction((sel) => document.querySelector(sel)?.value === '阳光花园 1-101',
    `${sheet} [data-control="kvTxt(0)"] input`);
  assert.equal(await field(2).inputValue(), number);
  assert.equal(await page.locator(`${sheet} [data-control="Lab_Status"]`).textContent(), '未出租');
  assert.equal(await page.locator(`${sheet} [data-control="chkJC(0)"] input`).isChecked(), true);
  await pageTab('辅助信息').click();
  await page.waitForFunction((sel) => document.querySelectorAll(sel).length === 3,
    `${sheet} [data-control="kvGridF"] tbody tr`);
  assert.deepEqual(await roomRows().locator('td[data-col="1"]').allTextContents(), ['A', 'B', 'C']);
  assert.deepEqual(await roomRows().locator('td[data-col="3"]').allTextContents(), ['1200', '1000', '850']);
  assert.deepEqual(await roomRows().locator('td[data-col="4"]').allTextContents(), ['否', '否', '否']);
  await shot(page, '51-housing-shown');

  // A second unit, then back to the first.
  await tool('FileNew').click();
  await page.locator(`${sheet} [data-control="kvTxt(0)"] input:focus`).waitFor();
  await typeInto(0, '阳光花园 1-102');
  await typeInto(1, '阳光花园');
  await page.keyboard.press('Control+s');
  await page.waitForSelector('#statusline:text-is("已保存")');
  await idle();
  await tool('RecordPrevious').click();
  await page.waitForFunction((sel) => document.querySelector(sel)?.value === '阳光花园 1-101',
    `${sheet} [data-control="kvTxt(0)"] input`);
  assert.equal(await page.locator(`${sheet} [data-control="lblRecord"]`).textContent(), '记录：1/2');
});
