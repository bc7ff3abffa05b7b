// The web client in a real browser: sign-in, the buildings sheet from the menu, and every
// kind of modal layer it brings (alert, question, input box), with a screenshot of each.
import { test } from 'node:test';
import assert from 'node:assert/strict';
import { session, shot, signIn } from './support.mjs';

let server;
let page;
session((s) => ({ server, page } = s));

const field = (i) => page.locator(`.screen:not([hidden]) [data-control="kvTxt(${i})"] input`);
const tool = (cmd) => page.locator(`#toolbar button[data-cmd="${cmd}"]`);
const nodes = () => page.locator('.screen:not([hidden]) .tree .node .label').allTextContents();
const selectedIs = (text) => page.waitForFunction((t) =>
  document.querySelector('.tree .node.selected .label')?.textContent === t, text);

async function typeField(i, text) {
  await field(i).fill(text);
  await field(i).press('Tab');
}

async function newBuilding(code, name) {
  await tool('FileNew').click();
  await assert.doesNotReject(field(0).waitFor({ state: 'visible' }));
  await page.waitForSelector('.screen:not([hidden]) [data-control="kvTxt(0)"] input:not([disabled])');
  await typeField(0, code);
  await typeField(1, name);
  await page.waitForSelector('#toolbar button[data-cmd="FileSave"]:not([disabled])');
  await tool('FileSave').click();
}

test('a wrong password is refused on the sign-in page', async () => {
  await page.goto(server.url);
  await shot(page, '01-signin');
  await page.fill('#signin-user', 'admin');
  await page.fill('#signin-password', 'not-the-password');
  await page.click('#signin-submit');
  await page.waitForSelector('#signin-error:text("用户名或密码错误")');
});

test('the first sign-in changes the one-time password and shows the menu', async () => {
  await signIn(page, server.url, 'admin', server.password, 'e2e-secret-1');
  const groups = await page.locator('#menu summary').allTextContents();
  assert.ok(groups.includes('基础资料'), 'menu groups: ' + groups.join(','));
  assert.match(await page.locator('#who').textContent(), /admin · 登录日期 \d{4}-\d\d-\d\d/);
  await shot(page, '02-menu');
});

test('buildings: create, duplicate code, edit, delete, find, navigate', async () => {
  await page.click('#menu button[data-prog="870001"]');
  await page.waitForSelector('.screen:not([hidden]) .tree .node[data-key="ROOT"]');
  assert.deepEqual(await nodes(), ['全部楼宇']);
  // Viewing: new enabled, save disabled; the fields are not editable.
  assert.deepEqual([await tool('FileNew').isEnabled(), await tool('FileSave').isEnabled(),
    await field(0).isDisabled()], [true, false, true]);

  await newBuilding('B01', '一号楼');
  await page.waitForSelector('.tree .node .label:text("B01 一号楼")');
  await page.waitForSelector('#toolbar button[data-cmd="FileNew"]:not([disabled])');
  await newBuilding('B02', '二号楼');
  await page.waitForSelector('.tree .node .label:text("B02 二号楼")');
  // Only the bound fields (estate, type) offer the picker button.
  const pickers = await page.locator('.screen:not([hidden]) [data-control^="kvTxt"]:has(button.pick)')
    .evaluateAll((nodes) => nodes.map((n) => n.dataset.control));
  assert.deepEqual(pickers, ['kvTxt(2)', 'kvTxt(3)']);
  await shot(page, '03-tree-sheet');

  // A taken code: the sheet's error comes as an alert with its title; nothing is saved.
  await page.waitForSelector('#toolbar button[data-cmd="FileNew"]:not([disabled])');
  await newBuilding('B01', '重复楼');
  const alert = page.locator('.layer.alert');
  await alert.waitFor();
  assert.deepEqual([await alert.locator('.title span').textContent(),
    await alert.locator('.text').textContent()], ['楼宇', '编号重复,请检查!']);
  await shot(page, '04-alert');
  await alert.locator('button:text("确定")').click();
  // Still editing after the refused save: save and cancel stay, new waits.
  await page.waitForSelector('#toolbar button[data-cmd="FileCancel"]:not([disabled])');
  assert.deepEqual([await tool('FileSave').isEnabled(), await tool('FileNew').isEnabled()], [true, false]);
  await tool('FileCancel').click();
  await page.waitForSelector('#toolbar button[data-cmd="FileNew"]:not([disabled])');
  assert.deepEqual((await nodes()).filter((n) => n.startsWith('B01')), ['B01 一号楼']);

  // Edit the second building's name.
  await page.click('.tree .node .label:text("B02 二号楼")');
  await page.waitForFunction(() => document.querySelector('.screen:not([hidden]) [data-control="kvTxt(0)"] input').value === 'B02');
  await tool('FileEdit').click();
  await page.waitForSelector('.screen:not([hidden]) [data-control="kvTxt(1)"] input:not([disabled])');
  await typeField(1, '二号楼东座');
  await page.waitForSelector('#toolbar button[data-cmd="FileSave"]:not([disabled])');
  await tool('FileSave').click();
  await page.waitForSelector('.tree .node .label:text("B02 二号楼东座")');

  // Delete asks first; "否" keeps the building, "是" deletes it.
  await page.waitForSelector('#toolbar button[data-cmd="FileDelete"]:not([disabled])');
  await tool('FileDelete').click();
  const box = page.locator('[data-layer="msgbox"]');
  await box.waitFor();
  assert.deepEqual([await box.locator('.text').textContent(), await box.locator('.title span').textContent()],
    ['是否删除当前记录:B02 二号楼东座', '提示:']);
  await shot(page, '05-question');
  await box.locator('button[data-answer="7"]').click();
  await page.waitForSelector('#toolbar button[data-cmd="FileDelete"]:not([disabled])');
  assert.ok((await nodes()).includes('B02 二号楼东座'));
  await tool('FileDelete').click();
  await box.waitFor();
  await box.locator('button[data-answer="6"]').click();
  await page.waitForFunction(() => ![...document.querySelectorAll('.tree .node .label')]
    .some((n) => n.textContent.startsWith('B02')));

  // Find: the tree declares no search fields, so no find dialog; the sheet asks for a node
  // name in an input box.
  await newBuilding('C01', 'Tower East');
  await page.waitForSelector('.tree .node .label:text("C01 Tower East")');
  await page.click('.tree .node .label:text("B01 一号楼")');
  await page.waitForSelector('#toolbar button[data-cmd="Find"]:not([disabled])');
  await tool('Find').click();
  const input = page.locator('[data-layer="inputbox"]');
  await input.waitFor();
  assert.equal(await input.locator('.prompt').textContent(), '输入要查找的节点名称:');
  await input.locator('input').fill('tower');
  await shot(page, '06-inputbox');
  await input.locator('button:text("确定")').click();
  await selectedIs('C01 Tower East');

  // Navigation moves the selection and the fields follow.
  await tool('RecordPrevious').click();
  await selectedIs('B01 一号楼');
  assert.equal(await field(0).inputValue(), 'B01');
  await tool('RecordNext').click();
  await selectedIs('C01 Tower East');
});

test('several screens as tabs; a picker fills a bound field', async () => {
  // An estate, made on the estates sheet in a second tab.
  await page.click('#menu button[data-prog="870002"]');
  await page.waitForSelector('.tab[data-prog="870002"].active');
  await page.waitForSelector('.screen[data-prog="870002"] .tree .node[data-key="ROOT"]');
  assert.equal(await page.locator('.tab').count(), 2);
  await newBuilding('W01', '阳光花园');
  await page.waitForSelector('.screen[data-prog="870002"] .tree .node .label:text("W01 阳光花园")');

  // Back on the buildings: the estate field's picker lists it; a double click chooses it.
  await page.click('.tab[data-prog="870001"]');
  await page.waitForSelector('.screen[data-prog="870001"]:not([hidden])');
  await page.click('.tree .node .label:text("C01 Tower East")');
  await tool('FileEdit').click();
  await page.waitForSelector('.screen:not([hidden]) [data-control="kvTxt(2)"] button.pick:not([disabled])');
  await page.click('.screen:not([hidden]) [data-control="kvTxt(2)"] button.pick');
  const picker = page.locator('[data-layer="picker"]');
  await picker.waitFor();
  assert.equal(await picker.locator('.title span').textContent(), '物业');
  await picker.locator('tbody tr:has-text("阳光花园")').waitFor();
  await shot(page, '07-picker');
  await picker.locator('tbody tr:has-text("阳光花园")').dblclick();
  await page.waitForFunction(() =>
    document.querySelector('.screen:not([hidden]) [data-control="kvTxt(2)"] input')?.value === '阳光花园');
  await tool('FileSave').click();
  await page.waitForSelector('#toolbar button[data-cmd="FileNew"]:not([disabled])');

  await page.click('.tab[data-prog="870002"] .close');
  await page.waitForFunction(() => document.querySelectorAll('.tab').length === 1);
});

test('fee categories: the entry dialog and the list grid', async () => {
  await page.click('#menu button[data-prog="870003"]');
  await page.waitForSelector('.screen[data-prog="870003"]:not([hidden]) table.grid');
  await tool('FileNew').click();
  const dialog = page.locator('[data-layer="dialog"]');
  await dialog.waitFor();
  assert.equal(await dialog.locator('.title span').textContent(), '费用科目');
  for (const [i, text] of [[0, 'F01'], [1, '物业管理费']]) {
    await dialog.locator(`[data-control="kvTxt(${i})"] input`).fill(text);
    await dialog.locator(`[data-control="kvTxt(${i})"] input`).press('Tab');
  }
  // The billing mode is a closed list: a drop-down of its entries, no picker button.
  const mode = dialog.locator('[data-control="kvTxt(2)"]');
  assert.equal(await mode.locator('button.pick').count(), 0);
  assert.deepEqual(await mode.locator('option').allTextContents(), ['', '按户', '按面积', '按用量']);
  await mode.locator('select').selectOption('按面积');
  await page.waitForSelector('body:not(.busy)', { state: 'attached' });
  await shot(page, '08-dialog');
  // Saving closes the dialog and the list shows the new row.
  await dialog.locator('button:text("保存(S)")').click();
  await page.waitForSelector('[data-layer="dialog"]', { state: 'detached' });
  await page.waitForSelector('.screen[data-prog="870003"] table.grid td:text("物业管理费")');
  assert.equal(await page.locator('.screen[data-prog="870003"] tbody tr td:text("按面积")').count(), 1);
  await shot(page, '09-list-grid');
});
