// A clerk's keyboard and mouse on the owners' list and the buildings sheet: boxes and dialogs
// hold the keyboard, Esc answers as cancel/no, nothing a developer wrote reaches the clerk,
// an edit is never thrown away without asking, and a field whose text was not found says so. Screenshots at desktop and phone width.
import { test } from 'node:test';
import assert from 'node:assert/strict';
import { session, shot } from './support.mjs';

let page;
session((s) => ({ page } = s), 'e2e-secret-3');

const OWNERS = 870004;
const BUILDINGS = 870001;
const screen = (prog) => `.screen[data-prog="${prog}"]`;
const tool = (cmd) => page.locator(`#toolbar button[data-cmd="${cmd}"]`);
const dialog = () => page.locator('[data-layer="dialog"]');
const box = () => page.locator('[data-layer="msgbox"]');
const input = (i) => dialog().locator(`[data-control="kvTxt(${i})"] input`);
const ownerRows = () => page.locator(`${screen(OWNERS)} [data-control="Vs"] tbody tr`);
const settled = () => page.waitForSelector('body:not(.busy)', { state: 'attached' });
const idle = () => page.waitForSelector('#toolbar button[data-cmd="FileNew"]:not([disabled])');
const statusText = () => page.locator('#statusline').textContent();

// The layer (data-layer) that holds the focus, or null.
const focusedLayer = () => page.evaluate(() =>
  document.activeElement?.closest('[data-layer]')?.dataset.layer ?? null);

async function tabAround(times) {
  const seen = new Set();
  for (let i = 0; i < times; i++) {
    await page.keyboard.press(i % 3 === 2 ? 'Shift+Tab' : 'Tab');
    seen.add(await focusedLayer());
  }
  return [...seen];
}

async function bothWidths(name) {
  await shot(page, name + '-desktop');
  await page.setViewportSize({ width: 390, height: 800 });
  await shot(page, name + '-phone');
  await page.setViewportSize({ width: 1280, height: 800 });
}

test('menu: an entry whose screen is not provided is greyed and does not open', async () => {
  const unready = page.locator('#menu button.entry.unready');
  assert.ok(await unready.count() > 0, 'the menu has entries not provided yet');
  assert.equal(await unready.first().isDisabled(), true);
  assert.match(await unready.first().getAttribute('title'), /（尚未提供）$/);
  await unready.first().click({ force: true });
  assert.equal(await page.locator('.tab').count(), 0);
  assert.equal(await page.locator('[data-layer]').count(), 0);
});

test('owners: the entry dialog and its question hold the keyboard; Esc asks, answers no', async () => {
  await page.click(`#menu button[data-prog="${OWNERS}"]`);
  await page.waitForSelector(`${screen(OWNERS)}:not([hidden]) [data-control="Vs"] table.grid`);
  // An empty list says so.
  assert.equal(await page.locator(`${screen(OWNERS)} .grid-empty`).textContent(), '没有记录');
  await tool('FileNew').click();
  await dialog().waitFor();
  assert.deepEqual(await tabAround(12), ['dialog']);
  await input(1).fill('王五');
  // Esc with a changed field asks first; the question's default is 否, Tab stays in it.
  await input(1).press('Escape');
  await box().waitFor();
  assert.equal(await box().locator('.text').textContent(),
    '录入框有未保存的修改，确定放弃这些修改吗？');
  assert.equal(await page.evaluate(() => document.activeElement.dataset.answer), '7');
  assert.deepEqual(await tabAround(5), ['msgbox']);
  // Typing with a box open reaches nothing behind it, and no protocol text shows.
  await page.keyboard.type('abc');
  await bothWidths('20-dialog-esc-question');
  await page.keyboard.press('Escape');
  await box().waitFor({ state: 'detached' });
  assert.equal(await input(1).inputValue(), '王五');
  assert.equal(await statusText(), '');
  // Asked again and answered 是: the dialog goes and nothing is saved.
  await input(1).press('Escape');
  await box().locator('button[data-answer="6"]').click();
  await dialog().waitFor({ state: 'detached' });
  await idle();
  assert.equal(await ownerRows().count(), 0);

  // A saved owner, then delete: Esc on its yes/no question answers no and keeps the row.
  await tool('FileNew').click();
  await dialog().waitFor();
  await input(0).fill('Y01');
  await input(1).fill('王五');
  await input(1).press('Tab');
  await settled();
  await dialog().locator('button:text("保存(S)")').click();
  await dialog().waitFor({ state: 'detached' });
  await page.locator(`${screen(OWNERS)} [data-control="Vs"] tbody tr td`, { hasText: '王五' }).click();
  await idle();
  await tool('FileDelete').click();
  await box().waitFor();
  assert.deepEqual(await tabAround(4), ['msgbox']);
  await page.keyboard.press('Escape');
  await box().waitFor({ state: 'detached' });
  await idle();
  assert.equal(await ownerRows().count(), 1);
});

async function newOwner(code, name, phone) {
  await idle();
  await tool('FileNew').click();
  await dialog().waitFor();
  await input(0).fill(code);
  await input(1).fill(name);
  await input(2).fill(phone);
  await input(2).press('Tab');
  await settled();
  await dialog().locator('button:text("保存(S)")').click();
  await dialog().waitFor({ state: 'detached' });
  await page.waitForSelector(`${screen(OWNERS)} tbody tr:has-text("${name}")`);
}

const names = async () => (await page.locator(`${screen(OWNERS)} tbody tr td:nth-child(3)`).allTextContents());

test('owners: a find keeps the whole short list; header sort; arrow keys and Enter', async () => {
  await newOwner('Y10', '赵六', '9');
  await page.waitForSelector('#statusline:text-is("已保存")');
  await newOwner('Y02', '钱七', '100');
  // A list sheet serves no record navigation; the toolbar does not offer it.
  assert.equal(await tool('RecordTop').count(), 0);
  assert.equal(await tool('Export').count(), 1);
  await tool('Find').click();
  const find = page.locator('[data-layer="inputbox"]');
  await find.waitFor();
  await find.locator('input').fill('钱七');
  await find.locator('input').press('Enter');
  await find.waitFor({ state: 'detached' });
  await idle();
  await page.waitForSelector(`${screen(OWNERS)} tbody tr.current:has-text("钱七")`);
  await settled();
  assert.equal(await ownerRows().count(), 3);
  assert.equal(await page.locator(`${screen(OWNERS)} .pager`).count(), 0);
  // The phone column sorts as numbers (9 before 100), the empty last; again: the other way.
  const phone = page.locator(`${screen(OWNERS)} thead th:text-is("电话")`);
  await phone.click();
  assert.deepEqual(await names(), ['赵六', '钱七', '王五']);
  await phone.click();
  assert.deepEqual((await names()).slice(1), ['钱七', '赵六']);
  await phone.click();
  await bothWidths('23-owners-sorted');
  // Arrow keys move the current row in the order shown; Enter edits it.
  await page.locator(`${screen(OWNERS)} tbody tr td`, { hasText: '赵六' }).click();
  await settled();
  await page.keyboard.press('ArrowDown');
  await page.waitForSelector(`${screen(OWNERS)} tbody tr.current:has-text("钱七")`);
  await settled();
  await page.keyboard.press('Enter');
  await dialog().waitFor();
  await page.waitForFunction(() =>
    document.querySelector('[data-layer="dialog"] [data-control="kvTxt(1)"] input')?.value === '钱七');
  await page.keyboard.press('Escape');
  await dialog().waitFor({ state: 'detached' });
  await idle();
  // Search as you type: the rows without the text hide; Enter opens the first one shown.
  const search = page.locator(`${screen(OWNERS)} .list-search`);
  await search.click();
  await page.keyboard.type('y1');
  assert.deepEqual(await page.locator(`${screen(OWNERS)} tbody tr[data-row]:not([hidden]) td:nth-child(3)`)
    .allTextContents(), ['赵六']);
  await bothWidths('25-owners-search');
  await page.keyboard.press('Enter');
  await dialog().waitFor();
  await page.waitForFunction(() =>
    document.querySelector('[data-layer="dialog"] [data-control="kvTxt(1)"] input')?.value === '赵六');
  await page.keyboard.press('Escape');
  await dialog().waitFor({ state: 'detached' });
  await idle();
  await search.fill('');
  assert.equal(await page.locator(`${screen(OWNERS)} tbody tr[data-row]:not([hidden])`).count(), 3);
});

test('a refused request shows a Chinese sentence, never the developer text', async () => {
  await idle();
  // A gesture on a control the screen does not have: the host refuses it in English.
  await page.evaluate(() => screenGesture(active, { gesture: 'cell_click', control: 'NoSuchGrid', row: 1, col: 1 }));
  const text = await statusText();
  assert.equal(text, '操作未能完成，请刷新页面后重试；如仍不成功，请联系系统管理员。');
});

test('buildings: FileNew puts the cursor in the first field, Enter moves on, number fields, Ctrl+S saves, Esc asks then cancels', async () => {
  await page.click(`#menu button[data-prog="${BUILDINGS}"]`);
  const b = `${screen(BUILDINGS)}:not([hidden])`;
  await page.waitForSelector(`${b} .tree .node[data-key="ROOT"]`);
  await idle();
  assert.equal(await tool('FileSave').getAttribute('title'), '保存 (Ctrl+S)');
  assert.equal(await tool('FileCancel').getAttribute('title'), '取消 (Esc)');
  assert.equal(await page.locator(`#menu button[data-prog="${BUILDINGS}"]`).getAttribute('title'), '打开楼宇信息');
  await tool('FileNew').click();
  await page.waitForSelector(`${b} [data-control="kvTxt(0)"] input:focus`);
  await page.keyboard.type('B20');
  await page.keyboard.press('Enter');
  await page.waitForSelector(`${b} [data-control="kvTxt(1)"] input:focus`);
  await page.keyboard.type('二十号楼');
  // Tab leaves a field with a picker for the next field, not for its button.
  await page.locator(`${b} [data-control="kvTxt(2)"] input`).focus();
  await page.keyboard.press('Tab');
  await page.waitForSelector(`${b} [data-control="kvTxt(3)"] input:focus`);
  await settled();
  // A number field keeps digits, one point and a leading minus; separators typed or pasted go.
  const area = page.locator(`${b} [data-control="kvTxt(4)"] input`);
  await area.click();
  await settled();
  await page.waitForSelector(`${b} [data-control="kvTxt(4)"] input:focus`);
  await page.keyboard.type('1,200.5abc');
  assert.equal(await area.inputValue(), '1200.5');
  await area.fill('-3,000.2.5');
  assert.equal(await area.inputValue(), '-3000.25');
  assert.equal(await area.evaluate((i) => getComputedStyle(i).textAlign), 'right');
  await area.fill('1,200.5');
  await page.keyboard.press('Control+s');
  await page.waitForSelector(`${b} .tree .node .label:text("B20 二十号楼")`);
  await page.waitForSelector('#statusline:text-is("已保存")');
  await idle();
  await bothWidths('24-saved-by-keyboard');
  await page.click(`${b} .tree .node .label:text("B20 二十号楼")`);
  await settled();
  await page.keyboard.press('F2');
  const name = page.locator(`${b} [data-control="kvTxt(1)"] input:not([disabled])`);
  await name.waitFor();
  await name.fill('改过的名字');
  await page.keyboard.press('Escape');
  await box().waitFor();
  await box().locator('button[data-answer="7"]').click();
  await box().waitFor({ state: 'detached' });
  assert.equal(await name.inputValue(), '改过的名字');
  await page.keyboard.press('Escape');
  await box().locator('button[data-answer="6"]').click();
  await idle();
  assert.equal(await page.locator(`${b} [data-control="kvTxt(1)"] input`).inputValue(), '二十号楼');
});

test('buildings: a dirty screen is marked; closing it or reloading asks first', async () => {
  await page.click(`#menu button[data-prog="${BUILDINGS}"]`);
  const buildings = `${screen(BUILDINGS)}:not([hidden])`;
  await page.waitForSelector(`${buildings} .tree .node[data-key="ROOT"]`);
  await idle();
  // A tree sheet prints no page and has no list grid to export: neither is offered.
  assert.equal(await tool('PrintPreview').count(), 0);
  assert.equal(await tool('Export').count(), 0);
  const tab = page.locator(`.tab[data-prog="${BUILDINGS}"]`);
  const unload = () => page.evaluate(() => {
    const e = new Event('beforeunload', { cancelable: true });
    window.dispatchEvent(e);
    return e.defaultPrevented;
  });
  assert.equal(await unload(), false);
  await tool('FileNew').click();
  const code = page.locator(`${buildings} [data-control="kvTxt(0)"] input:not([disabled])`);
  await code.waitFor();
  await code.fill('B09');
  await code.press('Tab');
  await settled();
  await page.waitForSelector(`.tab.dirty[data-prog="${BUILDINGS}"]`);
  assert.equal(await unload(), true);

  // An estate that is not there: after its message the field is marked wrong, holds the
  // focus with its text selected, and the next key replaces the text; emptied, it is not wrong.
  const estate = page.locator(`${buildings} [data-control="kvTxt(2)"] input`);
  await estate.fill('没有这个物业');
  await estate.press('Tab');
  await box().waitFor();
  assert.match(await box().locator('.text').textContent(), /输入有误/);
  await page.keyboard.press('Enter');
  await box().waitFor({ state: 'detached' });
  await page.waitForSelector(`${buildings} [data-control="kvTxt(2)"] input[aria-invalid="true"]:focus`);
  assert.equal(await estate.evaluate((i) => i.value.slice(i.selectionStart, i.selectionEnd)), '没有这个物业');
  await bothWidths('22-field-not-found');
  await page.keyboard.type('Q');
  assert.equal(await estate.inputValue(), 'Q');
  await estate.fill('');
  await estate.press('Tab');
  await settled();
  assert.equal(await estate.getAttribute('aria-invalid'), null);
  await tab.locator('button.close').click();
  await box().waitFor();
  assert.match(await box().locator('.text').textContent(), /^楼宇.*有未保存的修改/);
  await bothWidths('21-close-dirty-tab');
  await box().locator('button[data-answer="7"]').click();
  await box().waitFor({ state: 'detached' });
  assert.equal(await tab.count(), 1);
  assert.equal(await code.inputValue(), 'B09');
  await tab.locator('button.close').click();
  await box().locator('button[data-answer="6"]').click();
  await tab.waitFor({ state: 'detached' });
  assert.equal(await unload(), false);
});

test('a phone: the menu behind a button, the top bar on one line, the toolbar one row, fields in one column', async () => {
  await page.setViewportSize({ width: 390, height: 800 });
  try {
    assert.equal(await page.locator('#menu').isVisible(), false);
    await page.click('#menu-toggle');
    await page.locator(`#menu button[data-prog="${BUILDINGS}"]`).click();
    const b = `${screen(BUILDINGS)}:not([hidden])`;
    await page.waitForSelector(`${b} .tree .node[data-key="ROOT"]`);
    assert.equal(await page.locator('#menu').isVisible(), false);
    await idle();
    assert.ok((await page.locator('#topbar').evaluate((t) => t.scrollHeight)) <= 34, 'top bar on one line');
    const tops = await page.locator('#toolbar button').evaluateAll((bs) =>
      [...new Set(bs.map((x) => Math.round(x.getBoundingClientRect().top)))]);
    assert.equal(tops.length, 1, 'toolbar rows: ' + tops.join(','));
    assert.equal(await page.locator('#toolbar').evaluate((t) => getComputedStyle(t).overflowX), 'auto');
    const left = (i) => page.locator(`${b} [data-control="kvTxt(${i})"]`).evaluate((f) => f.getBoundingClientRect().left);
    assert.equal(await left(0), await left(1));
    await shot(page, '26-phone-buildings');
    await page.click('#menu-toggle');
    assert.equal(await page.locator('#menu').isVisible(), true);
    await shot(page, '27-phone-menu');
    await page.click('#menu-toggle');
  } finally {
    await page.setViewportSize({ width: 1280, height: 800 });
  }
});

test('a picker: its find field is the search box; arrows choose, Enter takes the row', async () => {
  const ESTATES = 870002;
  await page.click(`#menu button[data-prog="${ESTATES}"]`);
  const e = `${screen(ESTATES)}:not([hidden])`;
  await page.waitForSelector(`${e} .tree .node[data-key="ROOT"]`);
  for (const [code, name] of [['W01', '阳光花园'], ['W02', '碧水苑'], ['W03', '碧桂园']]) {
    await idle();
    await tool('FileNew').click();
    const first = page.locator(`${e} [data-control="kvTxt(0)"] input:focus`);
    await first.waitFor();
    await page.keyboard.type(code);
    await page.keyboard.press('Enter');
    await page.keyboard.type(name);
    await page.keyboard.press('Control+s');
    await page.waitForSelector(`${e} .tree .node .label:text("${code} ${name}")`);
  }
  await idle();
  await page.click(`.tab[data-prog="${BUILDINGS}"]`);
  const b = `${screen(BUILDINGS)}:not([hidden])`;
  await idle();
  await tool('FileNew').click();
  await page.locator(`${b} [data-control="kvTxt(0)"] input:focus`).waitFor();
  await page.click(`${b} [data-control="kvTxt(2)"] button.pick`);
  const picker = page.locator('[data-layer="picker"]');
  await picker.waitFor();
  await picker.locator('tbody tr:has-text("阳光花园")').waitFor();
  assert.equal(await focusedLayer(), 'picker');
  // The search box is the picker's own find field (one box, not two): the code typed
  // narrows the rows; arrows choose among them.
  assert.equal(await picker.locator('input[type="text"], input[type="search"]').count(), 1);
  const rows = picker.locator('tbody tr');
  await page.keyboard.type('w03');
  await page.waitForFunction(() => document.querySelectorAll('[data-layer="picker"] tbody tr').length === 1);
  assert.match(await rows.textContent(), /碧桂园/);
  await page.keyboard.press('Backspace');
  await page.waitForFunction(() => document.querySelectorAll('[data-layer="picker"] tbody tr').length === 3);
  await page.keyboard.press('ArrowDown');
  await page.keyboard.press('ArrowDown');
  assert.match(await picker.locator('tbody tr.chosen').textContent(), /碧桂园/);
  await bothWidths('28-picker-search');
  await page.keyboard.press('Enter');
  await picker.waitFor({ state: 'detached' });
  await page.waitForFunction((sel) => document.querySelector(sel)?.value === '碧桂园',
    `${b} [data-control="kvTxt(2)"] input`);
  // Still editing: the toolbar offers cancel once the pick's answer is in.
  await page.waitForSelector('#toolbar button[data-cmd="FileCancel"]:not([disabled])');
  await page.keyboard.press('Escape');
  await box().locator('button[data-answer="6"]').click();
  await idle();
});
