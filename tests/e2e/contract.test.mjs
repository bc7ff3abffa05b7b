// A clerk lets one room of a unit: the unit and its rooms registered on the housing sheet,
// then a contract entered for room A with a tenant typed new, the rent from the room and two
// metered fees; saved, approved (the unit becomes 部分出租), un-approved and deleted.
import { test } from 'node:test';
import assert from 'node:assert/strict';
import { session, shot } from './support.mjs';

let page;
session((s) => ({ page } = s), 'e2e-secret-7');

const HOUSING = 640002;
const CONTRACTS = 870201;
const housing = `.screen[data-prog="${HOUSING}"]:not([hidden])`;
const contract = `.screen[data-prog="${CONTRACTS}"]:not([hidden])`;
const tool = (cmd) => page.locator(`#toolbar button[data-cmd="${cmd}"]`);
const enabled = (cmd) => page.waitForSelector(`#toolbar button[data-cmd="${cmd}"]:not([disabled])`);
const input = (root, i) => page.locator(`${root} [data-control="kvTxt(${i})"] input:not(.cal)`);
const label = (root, name) => page.locator(`${root} [data-control="${name}"]`);
const cell = (root, grid, row, col) =>
  page.locator(`${root} [data-control="${grid}"] tr[data-row="${row}"] td[data-col="${col}"]`);

async function typeInto(root, i, text) {
  await input(root, i).click();
  await input(root, i).fill(text);
  await input(root, i).press('Tab');
}

async function valueIs(root, i, text) {
  await page.waitForFunction(([sel, t]) => document.querySelector(sel)?.value === t,
    [`${root} [data-control="kvTxt(${i})"] input`, text]);
}

async function editCell(root, grid, row, col, text) {
  await cell(root, grid, row, col).dblclick();
  await cell(root, grid, row, col).locator('input').fill(text);
  await cell(root, grid, row, col).locator('input').press('Enter');
  await page.waitForFunction(([sel, t]) => document.querySelector(sel)?.textContent === t,
    [`${root} [data-control="${grid}"] tr[data-row="${row}"] td[data-col="${col}"]`, text]);
}

async function labelIs(root, name, text) {
  await page.waitForFunction(([sel, t]) => document.querySelector(sel)?.textContent === t,
    [`${root} [data-control="${name}"]`, text]);
}

test('a room is let: the contract entered, saved, approved, taken back and deleted', async () => {
  // The unit with two rooms.
  await page.click(`#menu button[data-prog="${HOUSING}"]`);
  await enabled('FileNew');
  await tool('FileNew').click();
  await page.locator(`${housing} [data-control="kvTxt(0)"] input:focus`).waitFor();
  await typeInto(housing, 0, '阳光花园 1-101');
  await typeInto(housing, 1, '阳光花园');
  await typeInto(housing, 25, '3000');
  await page.locator(`${housing} [data-control="Toolbar1"] button`, { hasText: '辅助信息' }).click();
  for (const [row, room, area, rent] of [[1, 'A', '30', '1200'], [2, 'B', '25', '1000']]) {
    await page.locator(`${housing} [data-control="kvGridF"] button`, { hasText: '增行' }).click();
    await cell(housing, 'kvGridF', row, 1).waitFor();
    await editCell(housing, 'kvGridF', row, 1, room);
    await editCell(housing, 'kvGridF', row, 2, area);
    await editCell(housing, 'kvGridF', row, 3, rent);
  }
  await page.keyboard.press('Control+s');
  await enabled('FileNew');

  // The contract: the unit by its name, room A, the payment mode, the lease as months.
  await page.click(`#menu button[data-prog="${CONTRACTS}"]`);
  await enabled('FileNew');
  await tool('FileNew').click();
  await enabled('FileSave');
  const number = await input(contract, 2).inputValue();
  assert.match(number, /^HT\d{10}$/);
  await typeInto(contract, 18, '阳光花园 1-101');
  await valueIs(contract, 19, '阳光花园 1-101');
  assert.equal(await cell(contract, 'kvGrid', 2, 1).textContent(), '房租');
  await typeInto(contract, 45, 'A');
  await valueIs(contract, 22, '30');
  assert.equal(await cell(contract, 'kvGrid', 2, 2).textContent(), '1200');
  await typeInto(contract, 44, '押一付三');
  await valueIs(contract, 6, '3');
  await valueIs(contract, 34, '1200');
  await typeInto(contract, 8, '2026-12-01');
  await typeInto(contract, 0, '12');
  await valueIs(contract, 1, '2027-11-30');
  // Water and electricity by the meter: the reading at the start and the unit price.
  await editCell(contract, 'kvGrid', 3, 5, '100');
  await editCell(contract, 'kvGrid', 3, 6, '5');
  await editCell(contract, 'kvGrid', 4, 5, '2000');
  await editCell(contract, 'kvGrid', 4, 6, '1.2');
  assert.equal(await cell(contract, 'kvGrid', 3, 7).textContent(), '3');
  // The rent in arrears: a click ticks 后付 and clears 预收.
  await cell(contract, 'kvGrid', 2, 3).click();
  await page.waitForFunction((sel) => document.querySelector(sel)?.textContent === '√',
    `${contract} [data-control="kvGrid"] tr[data-row="2"] td[data-col="3"]`);
  await cell(contract, 'kvGrid', 2, 4).click();
  await page.waitForFunction((sel) => document.querySelector(sel)?.textContent === '√',
    `${contract} [data-control="kvGrid"] tr[data-row="2"] td[data-col="4"]`);
  assert.equal(await cell(contract, 'kvGrid', 2, 3).textContent(), '');
  // The tenant, typed new on the second page.
  await page.locator(`${contract} [data-control="Toolbar1"] button`, { hasText: '租客信息' }).click();
  await typeInto(contract, 4, '赵小明');
  await typeInto(contract, 28, '13800000001');
  await shot(page, '60-contract-entered');
  await page.keyboard.press('Control+s');
  await enabled('Check');
  await labelIs(contract, 'Lab_Status', '未生效');
  assert.equal(await input(contract, 2).inputValue(), number);

  // Approved: the mark and the state show, the unit is let in part.
  await tool('Check').click();
  await enabled('UnCheck');
  await labelIs(contract, 'Lab_Status', '生效');
  assert.equal(await label(contract, 'Lab_Succeed').textContent(), '已审核');
  await shot(page, '61-contract-approved');
  await page.click(`.tab[data-prog="${HOUSING}"]`);
  await tool('Refresh').click();
  await labelIs(housing, 'Lab_Status', '部分出租');
  await page.locator(`${housing} [data-control="Toolbar1"] button`, { hasText: '辅助信息' }).click();
  await page.waitForFunction((sel) => document.querySelector(sel)?.textContent === '是',
    `${housing} [data-control="kvGridF"] tr[data-row="1"] td[data-col="4"]`);
  assert.equal(await cell(housing, 'kvGridF', 2, 4).textContent(), '否');

  // Taken back, then deleted after the question; the unit is free again.
  await page.click(`.tab[data-prog="${CONTRACTS}"]`);
  await tool('UnCheck').click();
  await enabled('Check');
  await labelIs(contract, 'Lab_Status', '未生效');
  assert.equal(await label(contract, 'Lab_Succeed').count(), 0);
  await tool('FileDelete').click();
  const box = page.locator('[data-layer="msgbox"]');
  await box.waitFor();
  assert.equal(await box.locator('.text').textContent(), '是否删除当前记录:');
  await box.locator('button[data-answer="6"]').click();
  await labelIs(contract, 'lblRecord', '记录：0/0');
  await page.click(`.tab[data-prog="${HOUSING}"]`);
  await tool('Refresh').click();
  await labelIs(housing, 'Lab_Status', '未出租');
});
