// The housing list and the validity tools as a clerk uses them: units registered on the
// housing sheet, one withdrawn from its sheet and one from the menu through the housing
// picker, the list narrowed by estate and state, a double click opening a unit in a tab of
// its own, where it is brought back.
import { test } from 'node:test';
import assert from 'node:assert/strict';
import { session, shot } from './support.mjs';

let page;
session((s) => ({ page } = s), 'e2e-secret-6');

const HOUSING = 640002;
const LIST = 870102;
const WITHDRAW = 870503;
const BRING_BACK = 870504;
const sheet = `.screen[data-prog="${HOUSING}"]:not([hidden])`;
const list = `.screen[data-prog="${LIST}"]:not([hidden])`;
const tool = (cmd) => page.locator(`#toolbar button[data-cmd="${cmd}"]`);
const sheetTool = (prog) => page.locator(`#toolbar button[data-tool="${prog}"]`);
const idle = () => page.waitForSelector('#toolbar button[data-cmd="FileNew"]:not([disabled])');
const box = () => page.locator('[data-layer="msgbox"]');
const state = () => page.locator(`${sheet} [data-control="Lab_Status"]`);
const listNames = () => page.locator(`${list} tbody tr[data-row] td[data-col="4"]`).allTextContents();

async function typeInto(root, i, text) {
  const input = page.locator(`${root} [data-control="kvTxt(${i})"] input`);
  await input.click();
  await input.fill(text);
  await input.press('Tab');
}

// Answers the box that says `text` under `title` with its OK button.
async function boxSays(text, title) {
  await box().waitFor();
  assert.deepEqual([await box().locator('.text').textContent(),
                    await box().locator('.title span').textContent()], [text, title]);
  await box().locator('button[data-answer="1"]').click();
  await box().waitFor({ state: 'detached' });
}

async function registerUnit(name, estate) {
  await idle();
  await tool('FileNew').click();
  await page.locator(`${sheet} [data-control="kvTxt(0)"] input:focus`).waitFor();
  await typeInto(sheet, 0, name);
  await typeInto(sheet, 1, estate);
  await page.keyboard.press('Control+s');
  await page.waitForSelector('#statusline:text-is("已保存")');
}

async function refreshList(names) {
  await tool('Refresh').click();
  await page.waitForFunction(([sel, want]) =>
    JSON.stringify([...document.querySelectorAll(sel)].map((td) => td.textContent).sort()) === want,
  [`${list} tbody tr[data-row] td[data-col="4"]`, JSON.stringify([...names].sort())]);
}

test('units withdrawn from their sheet and from the menu, listed by estate and state, brought back from the list', async () => {
  await page.click(`#menu button[data-prog="${HOUSING}"]`);
  await page.waitForSelector(`${sheet} [data-control="kvTxt(0)"]`);
  await registerUnit('阳光花园 1-101', '阳光花园');
  await registerUnit('阳光花园 1-102', '阳光花园');
  await registerUnit("碧水苑 2'201", '碧水苑');

  // Withdrawn from its sheet: the tool runs on the unit shown, which then shows its state.
  await idle();
  await tool('RecordPrevious').click();
  await page.waitForFunction((sel) => document.querySelector(sel)?.value === '阳光花园 1-102',
    `${sheet} [data-control="kvTxt(0)"] input`);
  await sheetTool(WITHDRAW).click();
  await boxSays('该房源已设置为[已失效]状态！', '提示：');
  await page.waitForFunction((sel) => document.querySelector(sel)?.textContent === '已失效',
    `${sheet} [data-control="Lab_Status"]`);
  // Twice is refused, and nothing changes.
  await sheetTool(WITHDRAW).click();
  await boxSays('该房源已设置失效,不能再次设置!', '操作提示');
  assert.equal(await state().textContent(), '已失效');

  // From the menu: the unit is chosen with the housing picker.
  await page.click(`#menu button[data-prog="${WITHDRAW}"]`);
  const picker = page.locator('[data-layer="picker"]');
  await picker.waitFor();
  await picker.locator('tbody tr:has-text("碧水苑")').waitFor();
  await picker.locator('tbody tr:has-text("碧水苑")').dblclick();
  await boxSays('该房源已设置为[已失效]状态！', '提示：');

  // The list: only the estate's units, only the states ticked.
  await page.click(`#menu button[data-prog="${LIST}"]`);
  await page.waitForSelector(`${list} tbody tr[data-row]`);
  assert.deepEqual((await listNames()).sort(), ["碧水苑 2'201", '阳光花园 1-101', '阳光花园 1-102'].sort());
  await typeInto(list, 2, '阳光花园');
  await refreshList(['阳光花园 1-101', '阳光花园 1-102']);
  await page.locator(`${list} [data-control="chkXS(3)"] input`).click();
  await refreshList(['阳光花园 1-101']);
  await page.locator(`${list} [data-control="chkXS(3)"] input`).click();
  await page.locator(`${list} [data-control="chkXS(0)"] input`).click();
  await refreshList(['阳光花园 1-102']);
  await shot(page, '52-housing-list');

  // A double click opens the unit in a tab of its own, where it is brought back.
  await page.locator(`${list} tbody tr[data-row] td[data-col="4"]`, { hasText: '阳光花园 1-102' }).dblclick();
  await page.waitForFunction(() => document.querySelectorAll(`.tab[data-prog="${640002}"]`).length === 2);
  await page.waitForFunction((sel) => document.querySelector(sel)?.value === '阳光花园 1-102',
    `${sheet} [data-control="kvTxt(0)"] input`);
  assert.equal(await state().textContent(), '已失效');
  await sheetTool(BRING_BACK).click();
  await boxSays('该房源已设置为[未出租]状态！', '提示：');
  await page.waitForFunction((sel) => document.querySelector(sel)?.textContent === '未出租',
    `${sheet} [data-control="Lab_Status"]`);
  await shot(page, '53-housing-brought-back');

  // Back on the list, a refresh shows it among the units not let.
  await page.click(`.tab[data-prog="${LIST}"]`);
  await page.locator(`${list} [data-control="chkXS(0)"] input`).click();
  await page.locator(`${list} [data-control="chkXS(3)"] input`).click();
  await refreshList(['阳光花园 1-101', '阳光花园 1-102']);
});
