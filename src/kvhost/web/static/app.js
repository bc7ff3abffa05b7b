// The browser client of mrvk serve. Plain script, no build step.
//
// It speaks the screen protocol through POST /api/protocol: every screen is drawn from the
// control list that "state" answers, every click or typed text goes back as a gesture, and
// the host's toolbar calls the screen's interface operations. Message boxes, input boxes,
// pickers and entry dialogs arrive as the "pending" part of an answer and are answered from
// modal layers. Requests of one browser go one at a time, in order.
'use strict';

const $ = (id) => document.getElementById(id);

function el(tag, props, ...children) {
  const e = document.createElement(tag);
  if (props) {
    for (const [k, v] of Object.entries(props)) {
      if (v === undefined || v === null || v === false) continue;
      if (k === 'class') e.className = v;
      else if (k === 'text') e.textContent = v;
      else if (k.startsWith('on')) e.addEventListener(k.slice(2), v);
      else if (k in e && typeof v !== 'string') e[k] = v;
      else e.setAttribute(k, v === true ? '' : v);
    }
  }
  for (const c of children.flat()) {
    if (c === null || c === undefined || c === false) continue;
    e.append(c instanceof Node ? c : document.createTextNode(String(c)));
  }
  return e;
}

// ---------------------------------------------------------------- server access

const session = { csrf: '', user: '', login_date: '', must_change: false };

class ApiError extends Error {
  constructor(status, message, body) {
    super(message);
    this.status = status;
    this.body = body;
  }
}

async function api(method, path, body) {
  const headers = {};
  if (method === 'POST') {
    headers['Content-Type'] = 'application/json';
    if (session.csrf) headers['X-CSRF-Token'] = session.csrf;
  }
  let res;
  try {
    res = await fetch(path, {
      method, headers, credentials: 'same-origin', cache: 'no-store',
      body: method === 'POST' ? JSON.stringify(body || {}) : undefined,
    });
  } catch (e) {
    throw new ApiError(0, '无法连接服务器：' + e.message, null);
  }
  let data = null;
  try { data = await res.json(); } catch (e) { data = null; }
  if (res.status === 401 && path !== '/api/signin' && path !== '/api/session') {
    signedOut((data && data.error) || '登录已过期，请重新登录');
  }
  if (!res.ok && !(res.status === 422 && data)) {
    throw new ApiError(res.status, (data && (data.message || data.error)) || ('HTTP ' + res.status), data);
  }
  return data;
}

// One protocol request at a time, in the order they were made. While any is on its way the
// page is marked busy (body.busy); the mark goes a task later, so that the request a handler
// sends on the answer of another (a leave after its type) keeps it.
let queue = Promise.resolve();
let inFlight = 0;
function protocol(request) {
  inFlight++;
  document.body.classList.add('busy');
  const run = queue.then(() => api('POST', '/api/protocol', request));
  queue = run.catch(() => {});
  run.catch(() => {}).finally(() => setTimeout(() => {
    if (--inFlight === 0) document.body.classList.remove('busy');
  }, 0));
  return run;
}

// Fields whose text is on its way (type, then leave). A button waits for them, so a save
// clicked straight from a field sees the field's text and its check.
const commits = new Set();
async function afterCommits() {
  // A grid cell still being edited gives its text first (Ctrl+S leaves no cell).
  if (cellEditorOpen) cellEditorOpen();
  while (commits.size) await Promise.allSettled([...commits]);
}
// The commit of the grid cell being edited (text taken, the editor stays where it is), or null.
let cellEditorOpen = null;

// ---------------------------------------------------------------- status line, alerts

// A text the clerk may read: the sheets' and the server's sentences are Chinese; anything
// else is a developer's detail (the server logs it) and shows as a sentence saying what to do.
const GENERIC_FAILURE = '操作未能完成，请刷新页面后重试；如仍不成功，请联系系统管理员。';
function clerkText(text) {
  const t = String(text ?? '');
  return !t || /[\u3000-\u9fff\uff00-\uffef]/.test(t) ? t : GENERIC_FAILURE;
}

// The clerk's sentence of a refused answer.
function failure(a, fallback) {
  return (a && a.message) || clerkText(a && a.error) || fallback || GENERIC_FAILURE;
}

function status(text) { $('statusline').textContent = clerkText(text); }

function alertLayer(message, title) {
  return new Promise((resolve) => {
    const ok = el('button', { type: 'button', text: '确定', onclick: () => { close(); resolve(); } });
    const { close } = openLayer({
      title: title || '提示', cls: 'alert',
      body: [el('div', { class: 'prompt' }, el('span', { class: 'icon', text: '⚠' }),
                el('span', { class: 'text', text: clerkText(message) }))],
      buttons: [ok], onClose: () => resolve(),
    });
    ok.focus();
  });
}

// The topmost open layer, which holds the keyboard.
function topLayer() {
  const b = $('layers').lastElementChild;
  return b ? b.querySelector('.layer') : null;
}

function focusables(root) {
  return [...root.querySelectorAll('button, input, select, textarea, a[href], [tabindex]')]
    .filter((e) => !e.disabled && e.tabIndex >= 0 && e.getClientRects().length > 0 &&
      !(e.type === 'radio' && !e.checked && root.querySelector(`input[type=radio][name="${CSS.escape(e.name)}"]:checked`)));
}

// While a layer is open, Tab cycles through its own controls and nothing behind it takes a
// key or the focus.
document.addEventListener('keydown', (e) => {
  const layer = topLayer();
  if (!layer) return;
  if (!layer.contains(e.target)) {
    e.preventDefault();
    e.stopImmediatePropagation();
    const back = layer.lastFocus && layer.lastFocus.isConnected ? layer.lastFocus : focusables(layer)[0];
    (back || layer).focus();
    return;
  }
  if (e.key !== 'Tab') return;
  const list = focusables(layer);
  if (!list.length) { e.preventDefault(); return; }
  const i = list.indexOf(document.activeElement);
  if (e.shiftKey && i <= 0) { e.preventDefault(); list[list.length - 1].focus(); }
  else if (!e.shiftKey && (i < 0 || i === list.length - 1)) { e.preventDefault(); list[0].focus(); }
}, true);
// The focus that goes behind the topmost layer comes back where it was in that layer.
document.addEventListener('focusin', (e) => {
  const layer = topLayer();
  if (!layer) return;
  if (layer.contains(e.target)) { layer.lastFocus = e.target; return; }
  const back = layer.lastFocus && layer.lastFocus.isConnected ? layer.lastFocus : focusables(layer)[0];
  (back || layer).focus();
});

// A modal layer over the page. Returns close().
// confirmClose, when given, is asked (async) before the close box or Esc closes the layer.
function openLayer({ title, cls, body, buttons, onClose, name, confirmClose }) {
  // The close box is for the mouse; Esc is its key.
  const closeBox = el('button', { type: 'button', title: '关闭 (Esc)', text: '×', class: 'close-box',
                                  tabindex: '-1' });
  const layer = el('div', { class: 'layer ' + (cls || ''), role: 'dialog', 'aria-modal': 'true',
                            tabindex: '-1', 'data-layer': name || cls || 'layer' },
    el('div', { class: 'title' }, el('span', { text: title || '' }), closeBox),
    el('div', { class: 'body' }, body),
    buttons && buttons.length ? el('div', { class: 'buttons' }, buttons) : null);
  const backdrop = el('div', { class: 'backdrop' }, layer);
  $('layers').append(backdrop);
  const close = () => backdrop.remove();
  const dismiss = async () => {
    if (!onClose || (confirmClose && !(await confirmClose()))) return;
    close();
    onClose();
  };
  closeBox.addEventListener('click', dismiss);
  layer.addEventListener('keydown', (e) => {
    if (e.key !== 'Escape') return;
    e.preventDefault();
    e.stopPropagation();
    dismiss();
  });
  return { close, layer };
}

// ---------------------------------------------------------------- answers of the protocol

// Handles the events and pending box of an answer, answering boxes until the operation ends.
// Resolves to the final answer (ok, result or error).
// An operation that showed an entry dialog carries dialogShown: its edit was made there.
async function settle(answer, tab) {
  let dialogShown = false;
  for (;;) {
    await showEvents(answer, tab);
    if (!answer.pending) {
      if (!dialogShown) return answer;
      for (const k of wrongFields) if (k.startsWith('dialog|')) wrongFields.delete(k);
      return Object.assign(answer, { dialogShown });
    }
    if (answer.pending.kind === 'dialog') dialogShown = true;
    const value = await askPending(answer.pending, tab, answer);
    // A gesture in a dialog that closed it already brought the next answer.
    if (value && value.__answer) { answer = value.__answer; continue; }
    answer = await protocol({ op: 'answer', value });
  }
}

async function showEvents(answer, tab) {
  for (const e of answer.events || []) {
    const a = e.args || [];
    if (e.name === 'Message') status(a[0]);
    else if (e.name === 'ErrMessage') await alertLayer(String(a[0] ?? ''), clerkText(a[2]) || '错误');
    else if (e.name === 'Detaile') setTimeout(() => openScreen(Number(a[0]), Number(a[1])), 0);
    else if (e.name === 'fileedit') {
      // The sheet opens on the record, in edit mode.
      setTimeout(async () => {
        const t = await openScreen(Number(a[0]), Number(a[1]));
        if (t && !t.editing) await toolbarCommand(t, 'FileEdit');
      }, 0);
    }
    else if (e.name === 'filenew') {
      setTimeout(async () => {
        const t = await openScreen(Number(a[0]), 0);
        if (t) await toolbarCommand(t, 'FileNew');
      }, 0);
    }
  }
  if (!answer.ok && answer.error && !answer.pending) {
    // A refused request (a gesture on a locked field, a bad call): shown, nothing changed.
    status(failure(answer));
  }
}

const MB_BUTTONS = {
  0: [['确定', 1]],
  1: [['确定', 1], ['取消', 2]],
  2: [['终止', 3], ['重试', 4], ['忽略', 5]],
  3: [['是', 6], ['否', 7], ['取消', 2]],
  4: [['是', 6], ['否', 7]],
  5: [['重试', 4], ['取消', 2]],
};
const MB_ICONS = { 16: '⛔', 32: '❓', 48: '⚠', 64: 'ℹ' };

// Fields whose typed text their check did not find ("scope|control", the scope a screen id or
// "dialog"): drawn as wrong until a text passes or the field is emptied. The field whose leave
// is on its way is `leaving`; a warning box that comes before its answer is that check's.
const wrongFields = new Set();
let leaving = null;
let selectWrong = null;

function askPending(p, tab, answer) {
  if (p.kind === 'msgbox') {
    const icon = (p.flags || 0) & 0x70;
    if (leaving && (icon === 16 || icon === 48)) {
      wrongFields.add(leaving);
      selectWrong = leaving;
      leaving = null;
    }
    return messageBox(p);
  }
  if (p.kind === 'inputbox') return inputBox(p);
  if (p.kind === 'picker') return pickerLayer(p, answer);
  if (p.kind === 'dialog') return dialogLayer(p, answer);
  return Promise.resolve(null);
}

function messageBox(p) {
  return new Promise((resolve) => {
    const flags = p.flags || 0;
    const set = MB_BUTTONS[flags & 7] || MB_BUTTONS[0];
    const icon = MB_ICONS[flags & 0x70];
    // Esc answers as the box's cancel, else its no, else its only button.
    const has = (x) => set.some(([, v]) => v === x);
    const cancelValue = has(2) ? 2 : has(7) ? 7 : (set.length === 1 ? set[0][1] : null);
    let close;
    const buttons = set.map(([label, value]) => el('button', {
      type: 'button', text: label, 'data-answer': String(value),
      onclick: () => { close(); resolve(value); },
    }));
    ({ close } = openLayer({
      title: p.title || '提示', name: 'msgbox',
      body: [el('div', { class: 'prompt' }, icon ? el('span', { class: 'icon', text: icon }) : null,
                el('span', { class: 'text', text: p.prompt }))],
      buttons,
      onClose: cancelValue === null ? null : () => resolve(cancelValue),
    }));
    // The default button is the first, as on the desktop (flags 256/512 move it); Enter
    // answers with the focused button.
    const def = (flags & 0x300) >> 8;
    (buttons[def] || buttons[0]).classList.add('default');
    (buttons[def] || buttons[0]).focus();
  });
}

// Asks before an edit is thrown away; true when the clerk agrees. The default is No.
async function confirmDiscard(what) {
  const answer = await messageBox({ prompt: (what || '当前界面') + '有未保存的修改，确定放弃这些修改吗？',
                                    flags: 4 + 48 + 256, title: '提示' });
  return answer === 6;
}

// A text typed into a field of root and not yet sent.
function typedUnsent(root) {
  return !!root && [...root.querySelectorAll('input[data-original], textarea[data-original]')]
    .some((i) => i.value !== i.dataset.original);
}

// A screen with an edit that a reload or a close would throw away.
function tabDirty(t) {
  return !!(t.state && (t.state.IsDirty || (t.editing && typedUnsent(t.node))));
}

function markDirty(t) {
  if (t.tabEl) t.tabEl.classList.toggle('dirty', tabDirty(t));
}

window.addEventListener('beforeunload', (e) => {
  if (!tabs.some(tabDirty) && !document.querySelector('[data-layer="dialog"].changed')) return;
  e.preventDefault();
  e.returnValue = '';
});

function inputBox(p) {
  return new Promise((resolve) => {
    const input = el('input', { type: 'text', value: p.default || '', class: 'inputbox-text' });
    let close;
    const ok = () => { close(); resolve(input.value); };
    const cancel = () => { close(); resolve(null); };
    input.addEventListener('keydown', (e) => { if (e.key === 'Enter') ok(); });
    ({ close } = openLayer({
      title: p.title || '输入', name: 'inputbox',
      body: [el('div', { class: 'prompt', text: p.prompt }), input],
      buttons: [el('button', { type: 'button', text: '确定', onclick: ok }),
                el('button', { type: 'button', text: '取消', onclick: cancel })],
      onClose: cancel,
    }));
    input.focus();
    input.select();
  });
}

// A picker's list: rows chosen by click (and Ctrl/Shift when it takes several), answered
// with their indexes; Cancel answers null.
function pickerLayer(p, answer) {
  return new Promise((resolve) => {
    let layerClose = null;
    let query = '';
    let searchTimer = null;
    let shownOnce = false;
    const render = (pending, lastAnswer) => {
      if (layerClose) layerClose();
      const d = pending.dialog || {};
      const chosen = new Set(d.current >= 0 ? [d.current] : []);
      const finish = (value) => { layerClose(); resolve(value); };
      const head = el('tr', null, (d.columns || []).map((c) => el('th', { text: c })));
      const body = el('tbody');
      for (const r of d.rows || []) {
        const tr = el('tr', { 'data-index': String(r.index) },
          r.cells.map((c) => el('td', { text: c })));
        if (chosen.has(r.index)) tr.classList.add('chosen');
        tr.addEventListener('click', (e) => {
          if (!d.multiple || !(e.ctrlKey || e.metaKey)) {
            chosen.clear();
            body.querySelectorAll('tr.chosen').forEach((x) => x.classList.remove('chosen'));
          }
          if (chosen.has(r.index)) { chosen.delete(r.index); tr.classList.remove('chosen'); }
          else { chosen.add(r.index); tr.classList.add('chosen'); }
        });
        tr.addEventListener('dblclick', () => finish([r.index]));
        body.append(tr);
      }
      const controls = el('div', { class: 'ctl-flow' });
      // The list's rows come as the table below, chosen by index; its own grid and the
      // buttons that choose, tick or close would not know that choice (the layer has its own
      // 确定 and 取消). Its other buttons (刷新) stay. Its find field is the search box above
      // the rows.
      const findBox = d.find_box || null;
      const isFindBox = (c) => findBox && c.name === findBox.name && c.index === findBox.index;
      const choosing = (c) => c.type === 'CommandButton' && /^(确定|确认|取消|全选|全清)/.test(caption(c.caption));
      const own = (d.controls || []).filter((c) =>
        c.type !== 'VsFlexGrid' && c.type !== 'kvGrid' && !choosing(c) && !isFindBox(c));
      const gesture = (g) => dialogGesture(g, render, resolve, () => layerClose(), 'picker');
      if (!shownOnce && findBox) query = ((d.controls || []).find(isFindBox) || {}).text || '';
      shownOnce = true;
      renderControls(controls, own, { gesture });
      const note = el('div', { class: 'hint', text:
        `共 ${d.count ?? (d.rows || []).length} 行` + (d.multiple ? '（按住 Ctrl 可多选）' : '') });
      // Search as you type over the picker's rows; Enter takes the chosen row shown, else the
      // first shown; arrows choose. The text goes to the list's own find field, or, for a
      // list longer than the rows shown here, to its grid's search; otherwise the rows here
      // are filtered.
      const search = el('input', { type: 'search', class: 'list-search', 'aria-label': '筛选',
        placeholder: '输入文字筛选（Enter 选定，↑↓ 选择）' });
      search.value = query;
      const listGrid = (d.controls || []).find((c) => c.type === 'VsFlexGrid');
      const hostSearch = findBox ? Object.assign({ gesture: 'type', control: findBox.name },
        findBox.index !== undefined ? { index: findBox.index } : {})
        : listGrid && (d.count ?? 0) > (d.rows || []).length
          ? Object.assign({ gesture: 'search' }, controlRef(listGrid)) : null;
      const shownRows = () => [...body.querySelectorAll('tr[data-index]:not([hidden])')];
      const choose = (tr) => {
        chosen.clear();
        body.querySelectorAll('tr.chosen').forEach((x) => x.classList.remove('chosen'));
        chosen.add(Number(tr.dataset.index));
        tr.classList.add('chosen');
        tr.scrollIntoView({ block: 'nearest' });
      };
      search.addEventListener('input', () => {
        query = search.value;
        if (!hostSearch) { filterRows(body.parentElement, query); return; }
        clearTimeout(searchTimer);
        searchTimer = setTimeout(() => gesture(Object.assign({ text: query }, hostSearch)),
                                 SEARCH_PAUSE_MS);
      });
      search.addEventListener('keydown', (e) => {
        const rows = shownRows();
        if (!rows.length) return;
        const at = rows.findIndex((tr) => tr.classList.contains('chosen'));
        if (e.key === 'ArrowDown' || e.key === 'ArrowUp') {
          e.preventDefault();
          choose(rows[Math.min(rows.length - 1, Math.max(0, at + (e.key === 'ArrowDown' ? 1 : -1)))]);
        } else if (e.key === 'Enter') {
          e.preventDefault();
          finish([Number(rows[at >= 0 ? at : 0].dataset.index)]);
        }
      });
      const err = lastAnswer && !lastAnswer.ok && lastAnswer.error
        ? el('div', { class: 'error', text: failure(lastAnswer) }) : null;
      ({ close: layerClose } = openLayer({
        title: d.caption || pending.title || '选择', name: 'picker',
        body: [controls, err, search, el('div', { class: 'grid-wrap' },
          el('table', { class: 'grid' }, el('thead', null, head), body)), note],
        buttons: [
          el('button', { type: 'button', text: '确定',
                         onclick: () => { if (chosen.size) finish([...chosen]); } }),
          el('button', { type: 'button', text: '取消', onclick: () => finish(null) }),
        ],
        onClose: () => resolve(null),
      }));
      if (!hostSearch) filterRows(body.parentElement, query);
      search.focus();
      search.setSelectionRange(query.length, query.length);
    };
    render(p, answer);
  });
}

// A gesture on the controls of the shown dialog or picker (kind); redraws it from the
// answer, or, when the gesture closed it (its handler hid the dialog) or showed a box or form
// of another kind (a picker from a dialog's field), hands the answer on: the operation
// answers that and shows the dialog again when it is back.
async function dialogGesture(g, render, resolve, closeLayer, kind) {
  const save = clickedSave && g.gesture === 'click';
  clickedSave = false;
  const a = await protocol(Object.assign({ op: 'gesture', dialog: true }, g));
  if (save && a.ok && !a.pending) dialogSaved = true;
  if (a.pending && a.pending.kind === kind) {
    await showEvents(Object.assign({}, a, { pending: undefined, error: undefined }), null);
    render(a.pending, a, a.ok ? movedFocus((a.pending.dialog || {}).controls, g) : null);
    return;
  }
  // The dialog went away: the operation that showed it goes on from this answer.
  closeLayer();
  resolve({ __answer: a });
}

// An entry dialog: its fields in a two-column form with aligned captions, its option
// buttons on one line, its command buttons in the footer. The layer stays while the dialog
// is shown; each answer redraws its content, keeping the focus and a text being typed.
// Enter in a field commits the field only; Esc is the close box (answered null); Alt and
// a button's access key clicks that button.
function dialogLayer(p, answer) {
  return new Promise((resolve) => {
    let layer = null;
    let closeLayer = null;
    let footer = null;
    let buttons = [];
    const typed = new Map();  // texts sent and not yet answered, by control
    // A gesture that changes a field makes the dialog's edit one that Esc asks about.
    const changes = new Set(['type', 'pick', 'toggle', 'cell_edit']);
    const render = (pending, lastAnswer, moved) => {
      const d = pending.dialog || {};
      const ctx = { gesture: (g) => {
        if (changes.has(g.gesture) || (g.gesture === 'click' && /^opt/i.test(g.control))) {
          layer.classList.add('changed');
        }
        return dialogGesture(g, render, resolve, () => closeLayer(), 'dialog');
      }, pending: typed, scope: 'dialog' };
      const focus = captureFocus(layer);
      const { form, commands } = dialogForm(d.controls || [], ctx);
      const err = lastAnswer && !lastAnswer.ok && lastAnswer.error
        ? el('div', { class: 'error', role: 'alert', text: failure(lastAnswer) }) : null;
      buttons = commands;
      if (!layer) {
        ({ close: closeLayer, layer } = openLayer({
          title: d.caption || pending.title || '', name: 'dialog', cls: 'entry-dialog',
          body: [err, form], onClose: () => resolve(null),
          confirmClose: () => (layer.classList.contains('changed') || typedUnsent(layer)
            ? confirmDiscard('录入框') : true),
        }));
        footer = el('div', { class: 'buttons' });
        layer.append(footer);
        layer.addEventListener('keydown', (e) => {
          if (!e.altKey || e.ctrlKey || e.metaKey || e.key.length !== 1) return;
          const hit = buttons.find((b) => b.dataset.accessKey === e.key.toUpperCase());
          if (!hit || hit.disabled) return;
          e.preventDefault();
          // The field being typed in gives up its text first, as a click would take it.
          if (document.activeElement && layer.contains(document.activeElement)) document.activeElement.blur();
          hit.click();
        });
      } else {
        layer.querySelector('.title span').textContent = d.caption || pending.title || '';
        const body = layer.querySelector('.body');
        body.textContent = '';
        body.append(...[err, form].filter(Boolean));
      }
      footer.textContent = '';
      footer.append(...commands);
      footer.hidden = commands.length === 0;
      if (!(moved && restoreFocus(layer, { key: moved })) && !restoreFocus(layer, focus)) {
        focusFirst(layer);
      }
      focusWrong(layer, 'dialog');
    };
    render(p, answer);
  });
}

// The controls of an entry dialog as a form, and its command buttons apart for the footer.
function dialogForm(controls, ctx) {
  const form = el('div', { class: 'dialog-form' });
  const commands = [];
  const groups = new Map();
  const rest = [];
  for (const c of controls.filter((x) => x.visible !== false)) {
    if (c.type === 'CommandButton' || c.type === 'Button') {
      commands.push(drawControl(c, ctx));
    } else if (c.type === 'OptionButton') {
      // The option buttons of one name are one group, on one line where the first stands.
      if (!groups.has(c.name)) {
        const line = el('div', { class: 'option-group', role: 'radiogroup' });
        groups.set(c.name, line);
        form.append(el('div', { class: 'field options' }, el('span', { class: 'caption' }), line));
      }
      groups.get(c.name).append(drawControl(c, ctx));
    } else if (c.type === 'Frame' || c.type === 'PictureBox' || c.type === 'SSTab' ||
               c.container) {
      rest.push(c);
    } else {
      const node = drawControl(c, ctx);
      if (!node) continue;
      const cap = node.querySelector(':scope > .caption');
      if (cap) cap.textContent = cap.textContent.trim();
      if (c.multiline || c.type === 'VsFlexGrid' || c.type === 'kvGrid' ||
          c.type === 'TreeView') node.classList.add('wide');
      form.append(node);
    }
  }
  if (rest.length) {
    const more = el('div', { class: 'ctl-flow wide' });
    renderControls(more, rest, ctx);
    form.append(more);
  }
  return { form, commands };
}

// The focused control of a layer or screen (by its data-control), with a text typed into it
// that was not sent yet.
function captureFocus(root) {
  const a = document.activeElement;
  if (!root || !a || !root.contains(a)) return null;
  const holder = a.closest('[data-control]');
  if (!holder) return null;
  return { key: holder.dataset.control, tag: a.tagName, value: a.value,
           original: a.dataset.original, start: a.selectionStart, end: a.selectionEnd };
}

// Puts the focus back on the same control after a redraw; a text typed but not yet sent
// stays when the control still shows what it showed before. True when it found the control.
function restoreFocus(root, f) {
  if (!root || !f) return false;
  const holder = root.querySelector(`[data-control="${CSS.escape(f.key)}"]`);
  if (!holder) return false;
  const target = holder.matches('input, select, textarea, button')
    ? holder : holder.querySelector('input, select, textarea, button, .grid-wrap[tabindex]');
  if (!target || target.disabled) return false;
  if (target.tagName === f.tag && f.original !== undefined && f.value !== f.original &&
      target.value === f.original) target.value = f.value;
  target.focus();
  try {
    if (f.start !== null && f.start !== undefined) target.setSelectionRange(f.start, f.end);
  } catch (e) { /* not a text control */ }
  return true;
}

// The control a gesture's handler moved the focus to: the one the state marks as focused
// when that is not the control of the gesture g (which takes the focus itself), else null.
// The redraw then puts the focus there instead of where the person left it.
function movedFocus(controls, g) {
  const f = (controls || []).find((c) => c.focus);
  if (!f) return null;
  const key = f.name + (f.index !== undefined ? '(' + f.index + ')' : '');
  const own = g.control + (g.index !== undefined ? '(' + g.index + ')' : '');
  return key.toLowerCase() === own.toLowerCase() ? null : key;
}

// After a check refused a field's text: the focus goes back to it with the text selected, so
// that typing replaces it.
function focusWrong(root, scope) {
  if (!selectWrong || !selectWrong.startsWith(scope + '|')) return;
  const key = selectWrong.slice(scope.length + 1);
  const input = root.querySelector(`[data-control="${CSS.escape(key)}"] input`);
  if (!input) return;
  selectWrong = null;
  input.focus();
  input.select();
}

// The control the state marks as focused, else the first that takes input.
function focusFirst(root) {
  const marked = root.querySelector('.focus-mark input:not([disabled]), .focus-mark select:not([disabled])');
  const first = marked ||
    root.querySelector('.body input:not([disabled]):not([readonly]), .body select:not([disabled])') ||
    root.querySelector('.buttons button:not([disabled])');
  if (first) first.focus();
}

// ---------------------------------------------------------------- controls

// Draws a control list into `root`: frames hold the controls that name them as container;
// a screen with a tree at the top puts it on the left of everything else.
function renderControls(root, controls, ctx) {
  const keyOf = (c) => c.name + (c.index !== undefined ? '(' + c.index + ')' : '');
  const isContainer = (c) => c.type === 'Frame' || c.type === 'PictureBox' || c.type === 'SSTab';
  // A control shows when it and every frame or page around it are visible (a page that is
  // not shown hides all it holds).
  const containers = new Map();
  for (const c of controls) if (isContainer(c)) containers.set(c.name, c), containers.set(keyOf(c), c);
  const shows = (c) => {
    for (let k = c, depth = 0; k && depth < 32; k = containers.get(k.container), depth++) {
      if (k.visible === false) return false;
      if (!k.container || containers.get(k.container) === k) break;
    }
    return true;
  };
  const visible = controls.filter(shows);
  const names = new Map();
  for (const c of visible) if (isContainer(c)) names.set(c.name, c), names.set(keyOf(c), c);
  const children = new Map();
  const top = [];
  for (const c of visible) {
    if (c.container && names.has(c.container) && c !== names.get(c.container)) {
      if (!children.has(c.container)) children.set(c.container, []);
      children.get(c.container).push(c);
    } else {
      top.push(c);
    }
  }
  const draw = (c, into) => {
    if (isContainer(c)) {
      const fs = el('fieldset', { class: 'ctl-frame', 'data-control': keyOf(c) },
        c.caption ? el('legend', { text: caption(c.caption) }) : null);
      const inner = el('div', { class: 'ctl-flow' });
      fs.append(inner);
      for (const k of children.get(keyOf(c)) || children.get(c.name) || []) draw(k, inner);
      into.append(fs);
      return;
    }
    const node = drawControl(c, ctx);
    if (node) into.append(node);
  };
  const tree = top.find((c) => c.type === 'TreeView');
  if (tree) {
    const left = el('div', { class: 'pane-left' });
    const right = el('div', { class: 'ctl-flow pane-right' });
    draw(tree, left);
    for (const c of top) if (c !== tree) draw(c, right);
    root.append(el('div', { class: 'split' }, left, right));
  } else {
    for (const c of top) draw(c, root);
  }
}

// A caption as shown: "&" marks the access key ("保存(&S)" shows "保存(S)"), "&&" is "&".
function caption(text) {
  return String(text || '').replace(/&&|&/g, (m) => (m === '&&' ? '&' : ''));
}

// A caption with its access key underlined; the key (upper case) or '' as well.
function captionNodes(text) {
  const nodes = [];
  let key = '';
  let plain = '';
  const t = String(text || '');
  for (let i = 0; i < t.length; i++) {
    if (t[i] === '&' && t[i + 1] === '&') { plain += '&'; i++; continue; }
    if (t[i] === '&' && i + 1 < t.length && !key) {
      if (plain) nodes.push(plain);
      plain = '';
      key = t[i + 1].toUpperCase();
      nodes.push(el('u', { class: 'access-key', text: t[i + 1] }));
      i++;
      continue;
    }
    if (t[i] !== '&') plain += t[i];
  }
  if (plain) nodes.push(plain);
  return { nodes, key };
}

function controlRef(c) {
  const g = { control: c.name };
  if (c.index !== undefined) g.index = c.index;
  return g;
}

// What a number field keeps of a typed or pasted text: digits, one decimal point and a
// leading minus; thousands separators and anything else go.
function numberText(text) {
  let t = String(text ?? '').trim();
  const negative = /^[-－]/.test(t);
  t = t.replace(/[０-９．]/g, (ch) => String.fromCharCode(ch.charCodeAt(0) - 0xfee0)).replace(/[^0-9.]/g, '');
  const dot = t.indexOf('.');
  if (dot >= 0) t = t.slice(0, dot + 1) + t.slice(dot + 1).replace(/\./g, '');
  return (negative ? '-' : '') + t;
}

function keepNumber(input) {
  input.inputMode = 'decimal';
  input.addEventListener('input', () => {
    const clean = numberText(input.value);
    if (clean === input.value) return;
    const fromEnd = input.value.length - (input.selectionEnd ?? input.value.length);
    input.value = clean;
    const at = Math.max(0, clean.length - fromEnd);
    input.setSelectionRange(at, at);
  });
}

// A calendar beside a date field: the browser's own date picker, whose choice is written
// into the field as typed text (yyyy-mm-dd) and sent as the field's change. The field
// itself still takes a typed date in any form the host reads.
function datePicker(input, off) {
  const cal = el('input', { type: 'date', class: 'cal', tabindex: '-1', 'aria-hidden': 'true' });
  cal.addEventListener('change', () => {
    if (!cal.value) return;
    input.value = cal.value;
    input.dispatchEvent(new Event('change'));
  });
  const open = () => {
    cal.value = /^\d{4}-\d\d-\d\d$/.test(input.value.trim()) ? input.value.trim() : '';
    try { cal.showPicker(); } catch (e) { cal.focus(); }
  };
  const button = el('button', { type: 'button', class: 'pick cal-btn', text: '▾', title: '选择日期',
    tabindex: '-1', disabled: off, onclick: open });
  return [cal, button];
}

function drawControl(c, ctx) {
  const ref = controlRef(c);
  const key = c.name + (c.index !== undefined ? '(' + c.index + ')' : '');
  const disabled = c.enabled === false;
  const wrap = (node) => {
    node.dataset.control = key;
    if (c.focus) node.classList.add('focus-mark');
    if (c.tooltip) node.title = c.tooltip;
    return node;
  };
  // A text typed into a field goes back as type + leave when it was changed.
  const bindText = (input, original) => {
    input.dataset.original = original;
    const commit = async () => {
      // A redraw replaced a field being typed in: the new one carries the text on.
      if (!input.isConnected || input.value === original) return;
      original = input.value;
      input.dataset.original = original;
      // Until the host has the text, redraws show it as typed.
      if (ctx.pending) ctx.pending.set(key, original);
      const text = original;
      const scoped = ctx.scope + '|' + key;
      wrongFields.delete(scoped);
      const run = (async () => {
        try {
          await ctx.gesture(Object.assign({ gesture: 'type', text }, ref), true);
        } finally {
          if (ctx.pending && ctx.pending.get(key) === text) ctx.pending.delete(key);
        }
        leaving = text.trim() ? scoped : null;
        await ctx.gesture(Object.assign({ gesture: 'leave' }, ref));
      })();
      commits.add(run);
      try { await run; } finally { commits.delete(run); }
    };
    input.addEventListener('change', commit);
    input.addEventListener('blur', commit);
    if (wrongFields.has(ctx.scope + '|' + key)) input.setAttribute('aria-invalid', 'true');
    input.addEventListener('input', () => {
      if (!input.value) input.removeAttribute('aria-invalid');
    });
    // Enter takes the text and moves to the next field of the form.
    input.addEventListener('keydown', (e) => {
      if (e.key !== 'Enter' || input.tagName === 'TEXTAREA' || e.altKey || e.ctrlKey) return;
      e.preventDefault();
      const root = input.closest('.layer, .screen');
      const fields = root ? [...root.querySelectorAll('.field input:not(.cal):not([disabled]):not([readonly]), ' +
        '.field select:not([disabled]), .field textarea:not([disabled]):not([readonly])')] : [];
      const next = fields[fields.indexOf(input) + 1];
      commit();
      if (next) { next.focus(); if (next.select) next.select(); }
    });
  };
  switch (c.type) {
    case 'kvTxt_S':
    case 'TextBox':
    case 'SearchBox': {
      let input;
      if (c.list && c.list.length && !c.locked) {
        input = el('select', { disabled },
          (c.list.includes('') ? c.list : [''].concat(c.list))
            .map((v) => el('option', { value: v, text: v })));
        input.value = c.text || '';
      } else if (c.multiline) {
        input = el('textarea', { rows: 3, readOnly: !!c.locked, disabled });
        input.value = c.text || '';
      } else {
        input = el('input', { type: 'text', readOnly: !!c.locked, disabled,
                              placeholder: c.kind === 'date' ? 'yyyy-mm-dd' : null });
        input.value = c.text || '';
        if (c.maxlength) input.maxLength = c.maxlength;
        if (c.kind === 'number') { input.classList.add('num'); keepNumber(input); }
      }
      input.name = key;
      if (input.tagName === 'SELECT') {
        // A closed list takes its entry as a pick.
        input.addEventListener('change',
          () => ctx.gesture(Object.assign({ gesture: 'pick', text: input.value }, ref)));
      } else {
        const typed = ctx.pending ? ctx.pending.get(key) : undefined;
        if (typed !== undefined) input.value = typed;
        bindText(input, typed !== undefined ? typed : (c.text || ''));
      }
      const parts = [el('span', { class: 'caption', text: caption(c.caption) }), input];
      if (c.unit) parts.push(el('span', { class: 'unit', text: c.unit }));
      if (c.kind === 'date' && input.tagName === 'INPUT') parts.push(...datePicker(input, disabled || !!c.locked));
      // The button shows where the field's state says so; a closed list is its own drop-down.
      // Tab goes from the field to the next field (after the field's check), not to its
      // button: the list opens by the mouse, F4 or Alt+↓.
      if (c.button && input.tagName !== 'SELECT') {
        const pick = () => ctx.gesture(Object.assign({ gesture: 'pick' }, ref));
        parts.push(el('button', { type: 'button', class: 'pick', text: '…', title: '选择 (F4)',
          tabindex: '-1', disabled: disabled || !!c.locked, onclick: pick }));
        if (!disabled && !c.locked) {
          input.addEventListener('keydown', (e) => {
            if (e.key === 'F4' || (e.altKey && e.key === 'ArrowDown')) {
              e.preventDefault();
              afterCommits().then(pick);
            }
          });
        }
      }
      return wrap(el('label', { class: 'field' }, parts));
    }
    case 'ComboBox': {
      const sel = el('select', { disabled: disabled || !!c.locked, name: key },
        (c.list || []).map((v) => el('option', { value: v, text: v })));
      sel.value = c.text || '';
      sel.addEventListener('change',
        () => ctx.gesture(Object.assign({ gesture: 'pick', text: sel.value }, ref)));
      return wrap(el('label', { class: 'field' },
        el('span', { class: 'caption', text: caption(c.caption) }), sel));
    }
    case 'CheckBox': {
      const box = el('input', { type: 'checkbox', disabled: disabled || !!c.locked, name: key });
      box.checked = Number(c.value) === 1;
      box.addEventListener('click', (e) => {
        e.preventDefault();
        ctx.gesture(Object.assign({ gesture: 'toggle' }, ref));
      });
      return wrap(el('label', { class: 'ctl-check' }, box, caption(c.caption)));
    }
    case 'OptionButton': {
      const box = el('input', { type: 'radio', disabled: disabled || !!c.locked, name: key });
      box.checked = !!c.value && Number(c.value) !== 0;
      box.addEventListener('click', (e) => {
        e.preventDefault();
        ctx.gesture(Object.assign({ gesture: 'click' }, ref));
      });
      return wrap(el('label', { class: 'ctl-option' }, box, caption(c.caption)));
    }
    case 'CommandButton':
    case 'Button': {
      const { nodes, key: access } = captionNodes(c.caption);
      const isSave = caption(c.caption).startsWith('保存');
      const button = el('button', { type: 'button', class: 'ctl-button', disabled,
        onclick: () => afterCommits().then(() => {
          clickedSave = isSave;
          return ctx.gesture(Object.assign({ gesture: 'click' }, ref));
        }) },
        nodes.length ? nodes : c.name);
      if (access) { button.dataset.accessKey = access; button.title = 'Alt+' + access; }
      return wrap(button);
    }
    case 'Label':
      return c.caption ? wrap(el('span', { class: 'ctl-label', text: caption(c.caption) })) : null;
    case 'TreeView':
      return wrap(drawTree(c, ref, ctx));
    case 'Toolbar':
      return wrap(drawPageTabs(c, ref, ctx));
    case 'kvGrid':
    case 'VsFlexGrid':
      return wrap(drawGrid(c, ref, ctx));
    default:
      if (c.text !== undefined) {
        return wrap(el('label', { class: 'field' },
          el('span', { class: 'caption', text: caption(c.caption) }),
          el('input', { type: 'text', readOnly: true, value: c.text })));
      }
      return c.caption ? wrap(el('span', { class: 'ctl-label', text: caption(c.caption) })) : null;
  }
}

// A screen's own row of buttons switches its pages: drawn as the sheet's page tabs, the
// pressed button being the page shown. Buttons are numbered from 1; a button without a
// caption is a separator and not drawn.
function drawPageTabs(c, ref, ctx) {
  const bar = el('div', { class: 'page-tabs', role: 'tablist' });
  (c.buttons || []).forEach((b, i) => {
    if (!b.caption) return;
    const button = el('button', { type: 'button', role: 'tab', text: b.caption,
      class: b.pressed ? 'pressed' : '', 'aria-selected': b.pressed ? 'true' : 'false',
      title: b.tooltip || b.caption, disabled: c.enabled === false,
      onclick: () => {
        if (!b.pressed) afterCommits().then(() => ctx.gesture(Object.assign({ gesture: 'click', row: i + 1 }, ref)));
      } });
    bar.append(button);
  });
  return bar;
}

function drawTree(c, ref, ctx) {
  const box = el('div', { class: 'tree', role: 'tree', tabindex: '0' });
  for (const n of c.nodes || []) {
    const twist = el('span', { class: 'twist', text: n.children > 0 ? (n.expanded ? '▾' : '▸') : '' });
    const row = el('div', {
      class: 'node' + (n.selected ? ' selected' : '') + (n.bold ? ' bold' : '') + (n.cut ? ' cut' : ''),
      role: 'treeitem', 'data-key': n.id, 'aria-selected': n.selected ? 'true' : 'false',
    }, twist, el('span', { class: 'label', text: n.text }));
    row.style.paddingLeft = (6 + 16 * (n.depth || 0)) + 'px';
    twist.addEventListener('click', (e) => {
      e.stopPropagation();
      if (n.children > 0) ctx.gesture(Object.assign({ gesture: 'toggle', key: n.id }, ref));
    });
    row.addEventListener('click', () => {
      if (!n.selected) ctx.gesture(Object.assign({ gesture: 'select', key: n.id }, ref));
    });
    row.addEventListener('dblclick', () =>
      ctx.gesture(Object.assign({ gesture: 'dblclick', key: n.id }, ref)));
    box.append(row);
  }
  box.addEventListener('keydown', (e) => {
    const code = e.key === 'ArrowUp' ? 38 : e.key === 'ArrowDown' ? 40 : 0;
    if (code) {
      e.preventDefault();
      ctx.gesture(Object.assign({ gesture: 'keydown', row: code, col: 0 }, ref));
    }
  });
  const wrapper = el('div', { class: 'tree-wrap' }, box);
  if ((c.shown_count || 0) > (c.nodes || []).length) {
    const top = c.top_line || 0;
    const page = 100;
    wrapper.append(el('div', { class: 'pager' },
      el('button', { type: 'button', text: '上一页', disabled: top <= 0,
        onclick: () => ctx.gesture(Object.assign({ gesture: 'scroll', row: Math.max(0, top - page) }, ref)) }),
      el('span', { text: `${top + 1}–${top + (c.nodes || []).length} / ${c.shown_count}` }),
      el('button', { type: 'button', text: '下一页',
        disabled: top + (c.nodes || []).length >= c.shown_count,
        onclick: () => ctx.gesture(Object.assign({ gesture: 'scroll', row: top + page }, ref)) })));
  }
  return wrapper;
}

// Alignment codes of the grid: 0-2 left, 3-5 centre, 6-8 right, 9 general (numbers right).
function alignClass(code, kind) {
  if (code >= 6 && code <= 8) return 'num';
  if (code >= 3 && code <= 5) return 'center';
  if ((code === 9 || code === undefined || code < 0) && kind === 'number') return 'num';
  return '';
}

function colourCss(v) {
  if (v === undefined || v === null || v < 0) return '';
  const r = v & 255, g = (v >> 8) & 255, b = (v >> 16) & 255;  // BGR, as the desktop keeps it
  return `rgb(${r},${g},${b})`;
}

// A cell's text as a sort key: a number (thousands separators dropped), a date, or the text.
function sortKey(text) {
  const t = String(text ?? '').trim();
  if (t === '') return [2, ''];
  const n = t.replace(/,/g, '');
  if (/^[-+]?(\d+\.?\d*|\.\d+)%?$/.test(n)) return [0, parseFloat(n)];
  const d = /^(\d{4})[-/.](\d{1,2})[-/.](\d{1,2})(?:[ T](\d{1,2}):(\d{2})(?::(\d{2}))?)?$/.exec(t);
  if (d) return [0, Date.UTC(+d[1], d[2] - 1, +d[3], +(d[4] || 0), +(d[5] || 0), +(d[6] || 0))];
  return [1, t];
}

function compareKeys(a, b) {
  if (a[0] !== b[0]) return a[0] - b[0];
  if (a[0] === 1) return a[1].localeCompare(b[1], 'zh-Hans-CN');
  return a[1] - b[1];
}

// Rows per state window of a large grid (the host sends this many from the top row).
const GRID_WINDOW = 200;

function drawGrid(c, ref, ctx) {
  const cols = c.columns || [];
  const shown = [];
  for (let i = 0; i < cols.length; i++) {
    if (!cols[i].hidden && cols[i].width !== 0) shown.push(i);
  }
  const fixedRows = c.fixed_rows || 0;
  const fixedCols = c.fixed_cols || 0;
  const cells = c.cells || [];
  const head = cells.filter((r) => r.row < fixedRows);
  const data = cells.filter((r) => r.row >= fixedRows);
  // A header click sorts the rows shown by that column (again: the other way); the order is
  // the client's own and stays over redraws of the same grid.
  const gridKey = ref.control + (ref.index !== undefined ? '(' + ref.index + ')' : '');
  const sorts = ctx.sorts || (ctx.sorts = new Map());
  const sort = sorts.get(gridKey);
  if (sort && cols[sort.col]) {
    const subtotal = data.some((r) => r.subtotal !== undefined);
    if (!subtotal) {
      data.sort((a, b) => sort.dir * compareKeys(sortKey(a.text[sort.col]), sortKey(b.text[sort.col])));
    }
  }
  const thead = el('thead');
  // Fixed rows: equal neighbours merge across (merged headers) and down (merged columns).
  const spanDown = new Map();
  for (let h = 0; h < head.length; h++) {
    const tr = el('tr');
    const texts = head[h].text;
    for (let k = 0; k < shown.length; k++) {
      const ci = shown[k];
      if (spanDown.get(h + ':' + ci)) continue;
      let colspan = 1;
      const canMergeAcross = (c.merge_cells || head[h].merge) && texts[ci] !== '';
      while (canMergeAcross && k + colspan < shown.length &&
             texts[shown[k + colspan]] === texts[ci]) colspan++;
      let rowspan = 1;
      if (colspan === 1 && (c.merge_cells || cols[ci].merge)) {
        while (h + rowspan < head.length && head[h + rowspan].text[ci] === texts[ci]) {
          spanDown.set((h + rowspan) + ':' + ci, true);
          rowspan++;
        }
      }
      const th = el('th', { text: texts[ci], colSpan: colspan, rowSpan: rowspan });
      if (cols[ci].width > 0) th.style.minWidth = Math.round(cols[ci].width / 15) + 'px';
      if (h + rowspan === head.length && colspan === 1 && data.length > 1) {
        th.classList.add('sortable');
        th.title = '点击按此列排序';
        if (sort && sort.col === ci) th.classList.add(sort.dir > 0 ? 'sorted-up' : 'sorted-down');
        th.addEventListener('click', () => {
          const dir = sort && sort.col === ci ? -sort.dir : 1;
          sorts.set(gridKey, { col: ci, dir });
          if (ctx.redraw) ctx.redraw();
        });
      }
      tr.append(th);
      k += colspan - 1;
    }
    thead.append(tr);
  }
  const tbody = el('tbody');
  const editable = c.type === 'kvGrid' && c.editable && !c.locked && c.enabled !== false;
  // The cells a clerk may edit, row by row in the order shown: locked rows (a let room) and
  // read-only columns take no edit.
  const editCols = editable ? shown.filter((ci) => ci >= fixedCols && !cols[ci].read_only) : [];
  const cellEditable = (r, ci) => editCols.includes(ci) && !r.locked;
  const grid = { key: gridKey, ref, ctx, cols, tbody, data, editCols, cellEditable };
  for (const r of data) {
    const tr = el('tr', { 'data-row': String(r.row) });
    if (r.locked) tr.classList.add('locked');
    if (r.row === c.row) tr.classList.add('current');
    if (r.subtotal !== undefined) tr.classList.add('subtotal');
    const styles = new Map((r.styles || []).map((s) => [s.col, s]));
    for (const ci of shown) {
      const col = cols[ci];
      const st = styles.get(ci) || {};
      const td = el('td', { text: r.text[ci], 'data-col': String(ci),
        class: [alignClass(st.alignment ?? col.alignment, col.kind || (col.data_type >= 2 && col.data_type <= 7 ? 'number' : '')),
                ci < fixedCols ? 'fixed-col' : '',
                r.row === c.row && ci === c.col ? 'current-cell' : ''].join(' ').trim() });
      if (st.back !== undefined || col.back !== undefined) td.style.background = colourCss(st.back ?? col.back);
      if (st.fore !== undefined || col.fore !== undefined) td.style.color = colourCss(st.fore ?? col.fore);
      if (st.bold) td.style.fontWeight = 'bold';
      td.addEventListener('click', (e) => {
        if (td.classList.contains('editing') || e.target.closest('input, select')) return;
        // A cell that takes input is edited by a double click; a single click on it only
        // marks it here (the edit tells the host where it is), so no redraw comes between
        // the two clicks.
        if (cellEditable(r, ci)) {
          tbody.querySelectorAll('td.current-cell').forEach((x) => x.classList.remove('current-cell'));
          td.classList.add('current-cell');
          return;
        }
        ctx.gesture(Object.assign({ gesture: 'cell_click', row: r.row, col: ci }, ref));
      });
      if (cellEditable(r, ci)) {
        td.classList.add('editable');
        td.edit = () => editCell(grid, td, r, ci);
        td.addEventListener('dblclick', td.edit);
      } else if (!ctx.delegatesDblclick) {
        td.addEventListener('dblclick', () =>
          ctx.gesture(Object.assign({ gesture: 'cell_dblclick', row: r.row, col: ci }, ref)));
      }
      tr.append(td);
    }
    tbody.append(tr);
  }
  const table = el('table', { class: 'grid' }, thead, tbody);
  // An empty list says so under its header.
  const empty = !data.length && c.type === 'VsFlexGrid' && (c.rows || 0) <= fixedRows
    ? el('div', { class: 'grid-empty', text: '没有记录' }) : null;
  const wrap = el('div', { class: 'grid-wrap', tabindex: '0' }, table, empty);
  // Up and down move the current row among the rows shown (not filtered out), Enter opens it
  // (or, from the search box, the first row shown when the current one is filtered out).
  // True when the key was taken.
  wrap.gridKey = (key, orFirst) => {
    const rows = [...tbody.querySelectorAll('tr[data-row]:not([hidden])')];
    if (!rows.length) return false;
    const at = rows.findIndex((tr) => tr.classList.contains('current'));
    const col = c.col >= fixedCols ? c.col : (shown.find((ci) => ci >= fixedCols) ?? 0);
    if (key === 'ArrowDown' || key === 'ArrowUp') {
      const next = rows[Math.min(rows.length - 1, Math.max(0, at + (key === 'ArrowDown' ? 1 : -1)))];
      if (at >= 0 && next === rows[at]) return true;
      rows.forEach((tr) => tr.classList.toggle('current', tr === next));
      next.scrollIntoView({ block: 'nearest' });
      ctx.gesture(Object.assign({ gesture: 'cell_click', row: Number(next.dataset.row), col }, ref));
      return true;
    }
    if (key === 'Enter' && (at >= 0 || orFirst)) {
      const row = Number(rows[at >= 0 ? at : 0].dataset.row);
      if (ctx.openRow) ctx.openRow(row, col, ref);
      else ctx.gesture(Object.assign({ gesture: 'cell_dblclick', row, col }, ref));
      return true;
    }
    return false;
  };
  wrap.addEventListener('keydown', (e) => {
    if (e.target === wrap && wrap.gridKey(e.key, false)) e.preventDefault();
  });
  const dataRows = (c.rows || 0) - fixedRows;
  const box = el('div', { class: 'grid-box' }, wrap);
  if (c.type === 'kvGrid' && editable && (c.can_add || c.can_delete)) {
    // The row to delete is the one the clerk last clicked, else the host's current row.
    const currentRow = () => {
      const marked = tbody.querySelector('td.current-cell');
      return marked ? Number(marked.closest('tr').dataset.row) : c.row;
    };
    box.prepend(gridRowButtons(c, ref, ctx, currentRow));
  }
  // An edit that moved on (Enter, Tab, arrows) continues in its next cell once the grid is
  // drawn again with what the host made of the last one.
  // An editor that a redraw took away (an answer to an earlier gesture came in while the
  // clerk typed) opens again on its cell with the text typed so far.
  const next = ctx.sorts && ctx.sorts.get('edit ' + gridKey);
  const open = ctx.sorts && ctx.sorts.get('open ' + gridKey);
  // Either waits for the redraw to end, and gives way to an editor the clerk opened since.
  // The screen runs it at once when its drawing is done (no key typed meanwhile goes astray).
  const seq = editorSeq;
  const later = (f) => (ctx.afterDraw ? ctx.afterDraw.push(f) : setTimeout(f, 0));
  if (open && !open.input.isConnected) {
    ctx.sorts.delete('open ' + gridKey);
    later(() => { if (editorSeq === seq) openCellEditor(grid, open.row, open.col, open.input.value); });
  } else if (next) {
    ctx.sorts.delete('edit ' + gridKey);
    later(() => { if (editorSeq === seq) openCellEditor(grid, next.row, next.col); });
  }
  // A find or a move that scrolled the grid so that its window starts mid-page: the window
  // goes back to the start of its page, so that a short list shows all its rows.
  // With rows filtered out (a search) the window counts only the rows that show.
  const win = c.window || {};
  const filtered = win.shown !== undefined;
  const first = c.top_row || fixedRows;
  const aligned = fixedRows + Math.floor((first - fixedRows) / GRID_WINDOW) * GRID_WINDOW;
  if (c.type === 'VsFlexGrid' && !filtered && dataRows > data.length && aligned < first &&
      sorts.get('aligned ' + gridKey) !== first) {
    sorts.set('aligned ' + gridKey, first);  // once for a top row, should the scroll be refused
    setTimeout(() => ctx.gesture(Object.assign({ gesture: 'scroll', row: aligned }, ref)), 0);
  }
  const total = filtered ? win.shown : dataRows;
  if (total > data.length && c.type === 'VsFlexGrid') {
    // Large grids come 200 rows at a time from the top row; the pager scrolls the grid.
    const top = c.top_row || fixedRows;
    const before = filtered ? win.above : top - fixedRows;
    const previous = filtered ? win.previous : Math.max(fixedRows, top - Math.max(data.length, 1));
    const next = data.length ? data[data.length - 1].row + 1 : c.rows;
    box.append(el('div', { class: 'pager' },
      el('button', { type: 'button', text: '上一页', disabled: !before || previous === undefined,
        onclick: () => ctx.gesture(Object.assign({ gesture: 'scroll', row: previous }, ref)) }),
      el('span', { text: `第 ${before + 1}–${before + data.length} 行，共 ${total} 行` }),
      el('button', { type: 'button', text: '下一页', disabled: before + data.length >= total,
        onclick: () => ctx.gesture(Object.assign({ gesture: 'scroll', row: next }, ref)) })));
  } else if (dataRows > data.length && !filtered) {
    box.append(el('div', { class: 'pager', text: `显示 ${data.length} 行，共 ${dataRows} 行` }));
  }
  return box;
}

// 增行 and 删行 above an editable grid: a new row at the end, or the current row removed
// (the grid asks first, and the sheet may refuse).
function gridRowButtons(c, ref, ctx, currentRow) {
  const hasRow = c.row >= (c.fixed_rows || 0) && c.row < (c.rows || 0);
  return el('div', { class: 'grid-tools' },
    c.can_add ? el('button', { type: 'button', text: '增行', title: '在末尾增加一行',
      onclick: () => afterCommits().then(() => {
        if (ctx.sorts) ctx.sorts.set('edit ' + controlKey(ref), { row: c.rows, col: -1 });
        return ctx.gesture(Object.assign({ gesture: 'row_add' }, ref));
      }) }) : null,
    c.can_delete ? el('button', { type: 'button', text: '删行', title: '删除当前行',
      disabled: !hasRow,
      onclick: () => afterCommits().then(() => ctx.gesture(Object.assign({ gesture: 'row_delete', row: currentRow() }, ref))) }) : null);
}

function controlKey(ref) {
  return ref.control + (ref.index !== undefined ? '(' + ref.index + ')' : '');
}

// The cell after (step 1) or before (step -1) a cell among the editable ones, row by row;
// null past either end.
function neighbourCell(grid, row, col, step) {
  const rows = grid.data;
  let ri = rows.findIndex((r) => r.row === row);
  let ci = grid.editCols.indexOf(col);
  for (let guard = 0; guard < rows.length * (grid.editCols.length + 1) + 1; guard++) {
    ci += step;
    if (ci < 0 || ci >= grid.editCols.length) {
      ri += step;
      if (ri < 0 || ri >= rows.length) return null;
      ci = step > 0 ? 0 : grid.editCols.length - 1;
    }
    if (grid.cellEditable(rows[ri], grid.editCols[ci])) return { row: rows[ri].row, col: grid.editCols[ci] };
  }
  return null;
}

// The same column in the row above or below that takes an edit; null when there is none.
function verticalCell(grid, row, col, step) {
  const rows = grid.data;
  for (let ri = rows.findIndex((r) => r.row === row) + step; ri >= 0 && ri < rows.length; ri += step) {
    if (grid.cellEditable(rows[ri], col)) return { row: rows[ri].row, col };
  }
  return null;
}

// Opens the editor on a cell of the grid as drawn now (col -1: the row's first editable
// cell), with `text` in it when given.
function openCellEditor(grid, row, col, text) {
  const r = grid.data.find((x) => x.row === row);
  if (!r) return;
  const ci = col >= 0 ? col : grid.editCols.find((k) => grid.cellEditable(r, k));
  if (ci === undefined || !grid.cellEditable(r, ci)) return;
  const td = grid.tbody.querySelector(`tr[data-row="${row}"] td[data-col="${ci}"]`);
  if (td && td.isConnected) editCell(grid, td, r, ci, text);
}

// Edits a cell in place: a closed list where the column has one, else a text box (numbers
// keep only a number). Enter and Tab take the text and go on to the next cell (Shift+Tab
// back), arrows up and down to the cell above or below, Esc gives the cell its text back.
// Counts the cell editors opened, so that an editor due to open again after a redraw does
// not take the place of one the clerk opened in the meantime.
let editorSeq = 0;

function editCell(grid, td, r, ci, text) {
  if (td.classList.contains('editing')) return;
  editorSeq++;
  const col = grid.cols[ci] || {};
  const old = r.text[ci] ?? '';
  const memory = grid.ctx.sorts;
  let input;
  if (col.list) {
    const entries = String(col.list).split('|');
    if (!entries.includes('')) entries.unshift('');
    input = el('select', {}, entries.map((v) => el('option', { value: v, text: v })));
    input.value = text ?? old;
  } else {
    input = el('input', { type: 'text', value: text ?? old,
                          placeholder: col.kind === 'date' ? 'yyyy-mm-dd' : null });
    if (col.kind === 'number') { input.classList.add('num'); keepNumber(input); }
  }
  // The editor takes the cell's own size: the columns must not move under the pointer while
  // a cell is edited (a double click's second click would land on another cell).
  const width = td.getBoundingClientRect().width;
  td.style.width = td.style.minWidth = td.style.maxWidth = width + 'px';
  td.textContent = '';
  td.classList.add('editing');
  td.append(input);
  input.focus();
  if (input.select) input.select();
  const opened = { row: r.row, col: ci, input };
  if (memory) memory.set('open ' + grid.key, opened);
  let done = false;
  const commit = (save, move) => {
    if (done) return;
    done = true;
    if (cellEditorOpen === flush) cellEditorOpen = null;
    if (memory && memory.get('open ' + grid.key) === opened) memory.delete('open ' + grid.key);
    const text = input.value;
    if (save && text !== old) {
      if (move && grid.ctx.sorts) grid.ctx.sorts.set('edit ' + grid.key, move);
      const run = grid.ctx.gesture(Object.assign({ gesture: 'cell_edit', row: r.row, col: ci, text }, grid.ref));
      commits.add(run);
      run.finally(() => commits.delete(run));
      return;
    }
    td.classList.remove('editing');
    td.style.width = td.style.minWidth = td.style.maxWidth = '';
    td.textContent = old;
    if (move) openCellEditor(grid, move.row, move.col);
  };
  input.addEventListener('keydown', (e) => {
    let move;
    if (e.key === 'Enter' || e.key === 'Tab') {
      move = neighbourCell(grid, r.row, ci, e.shiftKey ? -1 : 1);
    } else if ((e.key === 'ArrowDown' || e.key === 'ArrowUp') && input.tagName !== 'SELECT') {
      move = verticalCell(grid, r.row, ci, e.key === 'ArrowDown' ? 1 : -1);
    } else if (e.key === 'Escape') {
      e.preventDefault();
      e.stopPropagation();
      commit(false, null);
      return;
    } else {
      return;
    }
    e.preventDefault();
    e.stopPropagation();
    commit(true, move || null);
  });
  if (input.tagName === 'SELECT') input.addEventListener('change', () => commit(true, null));
  const flush = () => commit(true, null);
  cellEditorOpen = flush;
  // Leaving the cell takes its text. A redraw that removed the editor is no leaving: the
  // browser tells the removal as a blur while the editor is still in the page, so the blur
  // is judged once the redraw is done, and the grid opens that editor again.
  input.addEventListener('blur', () => setTimeout(() => { if (input.isConnected) commit(true, null); }, 0));
}

// ---------------------------------------------------------------- tabs and screens

const tabs = [];
let active = null;
let menuEntries = new Map();

async function openScreen(progID, record) {
  const entry = menuEntries.get(progID);
  if (!entry || !entry.ready) {
    await alertLayer((entry ? entry.name : '该功能') + '尚未提供，请选择其他功能或联系系统管理员。', '提示');
    return null;
  }
  if (entry.kind === 'tool') {
    // From the menu a tool on one record asks for it (the host shows the records' picker).
    const a = await settle(await protocol({ op: 'tool', progID, record: record || 0 }), null);
    if (!a.ok) await alertLayer(failure(a, '执行失败'), entry.name);
    else status(entry.name + (a.result ? ' 完成' : ' 未执行'));
    // Sheets open on records of the tool show them as they now are.
    for (const t of tabs.filter((x) => (entry.sheets || []).includes((menuEntries.get(x.progID) || {}).class))) {
      if (t.editing || !(Number(t.state && t.state.GetID) > 0)) continue;
      await settle(await protocol({ op: 'call', screen: t.screen, method: 'DoSetStatus', args: ['change', false] }), t);
      await refreshState(t);
    }
    return null;
  }
  // A sheet already open on the same record comes to the front.
  const open = tabs.find((t) => t.progID === progID && (!record || t.record === record));
  if (open) { activate(open); return open; }
  status('正在打开 ' + entry.name + '…');
  let a;
  try {
    a = await settle(await protocol({ op: 'open', progID, record: record || 0 }), null);
  } catch (e) {
    await alertLayer(e.message, entry.name);
    status('');
    return null;
  }
  if (!a.ok) {
    await alertLayer(failure(a, '打开失败'), entry.name);
    status('');
    return null;
  }
  const tab = { screen: a.result, progID, record: record || 0, name: entry.name,
                kind: entry.kind, state: null, editing: false, node: null, tabEl: null };
  tabs.push(tab);
  tab.node = el('div', { class: 'screen', 'data-screen': String(tab.screen),
                         'data-prog': String(progID) });
  tab.node.addEventListener('dblclick', (e) => screenDblclick(tab, e));
  tab.node.addEventListener('input', () => markDirty(tab));
  $('screens').append(tab.node);
  tab.tabEl = el('div', { class: 'tab', role: 'tab', 'data-prog': String(progID) },
    el('span', { text: entry.name }),
    el('button', { type: 'button', class: 'close', title: '关闭', text: '×',
                   onclick: (e) => { e.stopPropagation(); closeTab(tab); } }));
  tab.tabEl.addEventListener('click', () => activate(tab));
  $('tabs').append(tab.tabEl);
  activate(tab);
  await refreshState(tab);
  if (!$('statusline').textContent.startsWith('正在打开')) return tab;
  status('');
  return tab;
}

function activate(tab) {
  active = tab;
  for (const t of tabs) {
    t.node.hidden = t !== tab;
    t.tabEl.classList.toggle('active', t === tab);
  }
  $('empty-hint').hidden = tabs.length > 0;
  drawToolbar();
}

async function closeTab(tab) {
  if (tabDirty(tab) && !(await confirmDiscard(tab.name))) return;
  const a = await settle(await protocol({ op: 'close', screen: tab.screen }), tab);
  if (!a.ok) { await alertLayer(failure(a, '关闭失败'), tab.name); return; }
  tab.node.remove();
  tab.tabEl.remove();
  tabs.splice(tabs.indexOf(tab), 1);
  if (active === tab) active = null;
  if (tabs.length) activate(tabs[tabs.length - 1]);
  else { $('empty-hint').hidden = false; drawToolbar(); }
}

async function refreshState(tab) {
  if (!tabs.includes(tab)) return;
  const a = await settle(await protocol({ op: 'state', screen: tab.screen }), tab);
  if (!a.ok) { status(failure(a)); return; }
  tab.state = a.result;
  drawScreen(tab);
  markDirty(tab);
  if (tab === active) drawToolbar();
}

function drawScreen(tab) {
  const scrollTop = $('screens').scrollTop;
  const focus = captureFocus(tab.node);
  // The scroll position of each grid, so a redraw after a click keeps the rows in place.
  const gridScroll = new Map([...tab.node.querySelectorAll('[data-control] > .grid-wrap')]
    .map((w) => [w.parentElement.dataset.control, [w.scrollTop, w.scrollLeft]]));
  tab.node.textContent = '';
  const controls = tab.state.controls || [];
  const shown = controls.filter((c) => c.visible !== false);
  const grids = shown.filter((c) => c.type === 'VsFlexGrid' || c.type === 'kvGrid');
  // A list sheet: one read-only grid is the screen; it fills the height, and a double click
  // on a row edits that row.
  const listSheet = 'IsDirty' in tab.state && grids.length === 1 &&
    !shown.some((c) => c.type === 'TreeView' || c.type === 'kvTxt_S' || c.type === 'TextBox');
  tab.node.classList.toggle('fill', grids.length === 1 && !shown.some((c) => c.type === 'TreeView'));
  if (!tab.typed) tab.typed = new Map();
  tab.listSheet = listSheet;
  if (!tab.sorts) tab.sorts = new Map();
  const afterDraw = [];
  renderControls(tab.node, controls, {
    afterDraw,
    pending: tab.typed,
    scope: String(tab.screen),
    sorts: tab.sorts,
    redraw: () => drawScreen(tab),
    openRow: listSheet ? (row, col, ref) => openRow(tab, row, col, ref) : null,
    gesture: (g, noRefresh) => screenGesture(tab, g, noRefresh),
    delegatesDblclick: true,  // screenDblclick
  });
  if (tab.node.classList.contains('fill')) {
    // Conditions above a list's grid flow in rows, so the grid keeps the height.
    const loose = [...tab.node.children].filter((n) => !n.classList.contains('grid-box'));
    if (loose.length) {
      const conditions = el('div', { class: 'ctl-flow conditions' });
      tab.node.insertBefore(conditions, loose[0]);
      conditions.append(...loose);
    }
  }
  if (listSheet) tab.node.prepend(searchBar(tab));
  for (const [key, [top, left]] of gridScroll) {
    const w = tab.node.querySelector(`[data-control="${CSS.escape(key)}"] > .grid-wrap`);
    if (w) { w.scrollTop = top; w.scrollLeft = left; }
  }
  $('screens').scrollTop = scrollTop;
  restoreFocus(tab.node, focus);
  for (const f of afterDraw) f();
}

// Search as you type above a list: the rows shown that do not hold the text are hidden;
// Enter opens the current row (the first one shown when that is hidden), arrows choose.
function filterRows(root, text) {
  const q = text.trim().toLowerCase();
  for (const tr of root.querySelectorAll('tbody tr[data-row], tbody tr[data-index]')) {
    tr.hidden = !!q && !tr.textContent.toLowerCase().includes(q);
  }
}

// A list longer than the rows the client holds is searched by the host: the grid's search
// gesture, sent once the typing pauses, hides the rows that do not hold the text.
function searchBar(tab) {
  const input = el('input', { type: 'search', class: 'list-search', 'aria-label': '筛选',
    placeholder: '输入文字筛选（Enter 打开，↑↓ 选择）' });
  input.value = tab.search || '';
  const grid = () => tab.node.querySelector('.grid-wrap');
  const list = (tab.state.controls || []).find((c) => c.type === 'VsFlexGrid' && c.visible !== false);
  tab.hostSearch = list && isLongList(list) ? Object.assign({ gesture: 'search' }, controlRef(list)) : null;
  const byHost = !!tab.hostSearch;
  input.addEventListener('input', () => {
    tab.search = input.value;
    if (!byHost) { filterRows(tab.node, input.value); return; }
    clearTimeout(tab.searchTimer);
    tab.searchTimer = setTimeout(() => screenGesture(tab, Object.assign(
      { text: input.value }, tab.hostSearch)), SEARCH_PAUSE_MS);
  });
  input.addEventListener('keydown', (e) => {
    const w = grid();
    if (!w || !['ArrowDown', 'ArrowUp', 'Enter'].includes(e.key)) return;
    if (w.gridKey(e.key, true)) e.preventDefault();
  });
  if (!byHost) queueMicrotask(() => filterRows(tab.node, input.value));
  return el('div', { class: 'search-bar', 'data-control': '#search' }, input);
}

// The pause in typing after which a search goes to the host.
const SEARCH_PAUSE_MS = 150;

// Whether the host holds more rows of a list grid than its state carries (or hides some).
function isLongList(c) {
  const win = c.window || {};
  return win.shown !== undefined || (c.rows || 0) - (c.fixed_rows || 0) > (win.count || 0);
}

// A double click on a cell of a screen's grid (an editable one edits in place). It is taken
// on the screen, not the cell: the first click's redraw may have replaced the
// cell under the pointer, so the cell is found where the pointer is.
function screenDblclick(tab, e) {
  const hit = document.elementFromPoint(e.clientX, e.clientY);
  const td = hit && hit.closest('td[data-col]');
  const tr = td && td.closest('tr[data-row]');
  const holder = tr && tr.closest('[data-control]');
  if (!holder || !tab.node.contains(holder)) return;
  if (td.classList.contains('editable')) {
    // The cell under the pointer may be a new one drawn after the first click.
    if (td.edit) td.edit();
    return;
  }
  const [, name, index] = /^(.*?)(?:\((-?\d+)\))?$/.exec(holder.dataset.control);
  const ref = { control: name };
  if (index !== undefined) ref.index = Number(index);
  const row = Number(tr.dataset.row);
  const col = Number(td.dataset.col);
  if (tab.listSheet) openRow(tab, row, col, ref);
  else screenGesture(tab, Object.assign({ gesture: 'cell_dblclick', row, col }, ref));
}

// A double click on a row of a list sheet: the row becomes current, then the sheet edits it.
async function openRow(tab, row, col, ref) {
  if (toolbarBusy || !enabledCommands(tab).has('FileEdit')) return;
  await screenGesture(tab, Object.assign({ gesture: 'cell_click', row, col }, ref), true);
  await toolbarCommand(tab, 'FileEdit');
}

async function screenGesture(tab, g, noRefresh) {
  const a = await settle(await protocol(Object.assign({ op: 'gesture', screen: tab.screen }, g)), tab);
  if (!a.ok && a.error) status(failure(a));
  if (noRefresh) return;
  await refreshState(tab);
  const moved = a.ok && tab.state ? movedFocus(tab.state.controls, g) : null;
  if (moved) restoreFocus(tab.node, { key: moved });
  focusWrong(tab.node, String(tab.screen));
}

// ---------------------------------------------------------------- toolbar

let toolbarBusy = false;

// The keys of the toolbar's commands (named in their tooltips; taken by the page's keydown).
const SHORTCUTS = { FileNew: 'Alt+N', FileEdit: 'F2', FileSave: 'Ctrl+S', FileCancel: 'Esc',
                    Find: 'Ctrl+F', Refresh: 'F5', PrintPreview: 'Ctrl+P' };

const TOOLBAR = [
  ['新增', 'FileNew'], ['修改', 'FileEdit'], ['删除', 'FileDelete'], ['保存', 'FileSave'],
  ['取消', 'FileCancel'], null,
  ['首条', 'RecordTop'], ['上条', 'RecordPrevious'], ['下条', 'RecordNext'], ['末条', 'RecordBottom'],
  null, ['查找', 'Find'], ['过滤', 'Filter'], ['刷新', 'Refresh'], null,
  ['审核', 'Check'], ['弃审', 'UnCheck'], null, ['打印', 'DoPrint'], ['预览', 'PrintPreview'],
  ['导出', 'Export'],
];

// Which commands the screen allows now: a sheet by IsDirty (and the edit mode that FileNew
// and FileEdit entered), GetID, CheckStatus and Attributes(98); a report finds, filters,
// refreshes and prints.
function enabledCommands(tab) {
  const on = new Set();
  if (!tab || !tab.state) return on;
  const s = tab.state;
  if (!('IsDirty' in s)) {
    ['Find', 'Filter', 'Refresh', 'DoPrint', 'PrintPreview', 'Export'].forEach((x) => on.add(x));
    return on;
  }
  const editing = !!s.IsDirty || tab.editing;
  const id = Number(s.GetID) || 0;
  const approvable = s.Attributes98 === 'check';
  const approved = approvable && !!s.CheckStatus;
  if (editing) {
    on.add('FileSave');
    on.add('FileCancel');
    return on;
  }
  on.add('FileNew');
  // A document (a sheet with approval) is edited, deleted and printed only when a record is
  // shown; master sheets answer 0 from GetID and tell "no selection" themselves.
  const hasRecord = !approvable || id > 0;
  if (hasRecord && !approved) { on.add('FileEdit'); on.add('FileDelete'); }
  ['RecordTop', 'RecordPrevious', 'RecordNext', 'RecordBottom', 'Find', 'Filter', 'Refresh']
    .forEach((x) => on.add(x));
  if (approvable && id > 0) on.add(approved ? 'UnCheck' : 'Check');
  if (hasRecord) { on.add('DoPrint'); on.add('PrintPreview'); }
  on.add('Export');
  const served = servedCommands(tab);
  return served ? new Set([...on].filter((x) => served.has(x))) : on;
}

// The commands a screen serves: those its sheet names (state "commands"), else all.
function servedCommands(tab) {
  const named = tab && tab.state && tab.state.commands;
  return Array.isArray(named) && named.length ? new Set(named) : null;
}

function drawToolbar() {
  const bar = $('toolbar');
  bar.textContent = '';
  // While a command runs the toolbar waits for it.
  const on = toolbarBusy ? new Set() : enabledCommands(active);
  const served = servedCommands(active);
  for (const item of TOOLBAR) {
    if (!item) {
      if (bar.lastElementChild && !bar.lastElementChild.classList.contains('sep')) {
        bar.append(el('span', { class: 'sep' }));
      }
      continue;
    }
    const [label, cmd] = item;
    if (served && !served.has(cmd)) continue;
    bar.append(el('button', { type: 'button', text: label, 'data-cmd': cmd,
      title: label + (SHORTCUTS[cmd] ? ' (' + SHORTCUTS[cmd] + ')' : ''),
      disabled: !on.has(cmd), onclick: () => active && toolbarCommand(active, cmd) }));
  }
  // The tools of the record the sheet shows, while it shows one and is not being edited.
  const tools = sheetTools(active);
  if (tools.length) bar.append(el('span', { class: 'sep' }));
  const id = active && active.state ? Number(active.state.GetID) || 0 : 0;
  const idle = !toolbarBusy && active && !active.editing && !(active.state && active.state.IsDirty);
  for (const t of tools) {
    bar.append(el('button', { type: 'button', text: t.name, 'data-tool': String(t.progID),
      title: t.name + '（当前记录）', disabled: !(idle && id > 0),
      onclick: () => runSheetTool(active, t) }));
  }
}

// The tools the menu offers on the sheet's records (a tool entry names the sheets' classes).
function sheetTools(tab) {
  if (!tab) return [];
  const entry = menuEntries.get(tab.progID);
  if (!entry) return [];
  return [...menuEntries.values()].filter((e) => e.kind === 'tool' && e.ready &&
    (e.sheets || []).includes(entry.class));
}

// Runs a tool on the record the sheet shows, then the sheet shows that record as it now is.
async function runSheetTool(tab, tool) {
  if (toolbarBusy || !tab || !tab.state) return;
  const id = Number(tab.state.GetID) || 0;
  if (id <= 0) return;
  toolbarBusy = true;
  drawToolbar();
  try {
    await afterCommits();
    const a = await settle(await protocol({ op: 'tool', progID: tool.progID, record: id }), tab);
    if (!a.ok) { await alertLayer(failure(a, '执行失败'), tool.name); return; }
    const r = await settle(await protocol({ op: 'call', screen: tab.screen, method: 'DoSetStatus',
                                            args: ['change', false] }), tab);
    if (!r.ok) status(failure(r));
    await refreshState(tab);
  } finally {
    toolbarBusy = false;
    drawToolbar();
  }
}

// A click on an entry dialog's save button that ended the dialog: the save went through.
let dialogSaved = false;
let clickedSave = false;

async function toolbarCommand(tab, cmd) {
  if (toolbarBusy) return;
  leaving = null;
  dialogSaved = false;
  toolbarBusy = true;
  drawToolbar();
  try {
    await afterCommits();
    if (cmd === 'Export') {
      await exportGrid(tab);
      return;
    }
    let args = [];
    if (cmd === 'Find' || cmd === 'Filter') {
      const cond = await findLayer(cmd === 'Find' ? '查找' : '过滤',
                                   (tab.state && tab.state.search_fields) || []);
      if (cond === undefined) return;
      args = [cond];
    }
    const a = await settle(await protocol({ op: 'call', screen: tab.screen, method: cmd, args }), tab);
    // A command may have reloaded the list: the host's search for the box's text runs again.
    if (tab.hostSearch && tab.search) {
      await settle(await protocol(Object.assign({ op: 'gesture', screen: tab.screen, text: tab.search },
                                                tab.hostSearch)), tab);
    }
    if (a.ok && a.result !== false) {
      // A list sheet edits in its entry dialog, which is closed by now.
      if ((cmd === 'FileNew' || cmd === 'FileEdit') && !a.dialogShown) tab.editing = true;
      if (cmd === 'FileSave' || cmd === 'FileCancel' || cmd === 'FileDelete') tab.editing = false;
      if (cmd === 'FileSave' || (a.dialogShown && dialogSaved)) status('已保存');
      // An approval or its undoing changed the record under the sheet: the sheet shows it
      // again, with the approved mark as it now stands.
      if (cmd === 'Check' || cmd === 'UnCheck') {
        const r = await settle(await protocol({ op: 'call', screen: tab.screen, method: 'DoSetStatus',
                                                args: ['change', cmd === 'Check'] }), tab);
        if (!r.ok) status(failure(r));
        else status(cmd === 'Check' ? '已审核' : '已取消审核');
      }
    } else if (!a.ok) {
      await alertLayer(failure(a, '操作失败'), tab.name);
    }
    if (a.print_error) await alertLayer('打印页面未能生成，请重试；如仍不成功，请联系系统管理员。', tab.name);
    if (a.documents && a.documents.length) {
      showDocuments(a.documents);
    } else if ((cmd === 'DoPrint' || cmd === 'PrintPreview') && a.ok && !a.print_error) {
      // A screen that does not print itself: the host prints its list grid.
      if (!(await printListGrid(tab, cmd === 'DoPrint'))) status('没有可打印的页面');
    }
    await refreshState(tab);
    if (cmd === 'FileNew' && tab.editing) {
      // A new record starts on the sheet's first page.
      const pages = (tab.state.controls || []).find((c) => c.type === 'Toolbar' && c.visible !== false);
      const first = pages ? (pages.buttons || []).findIndex((b) => b.caption) : -1;
      if (first >= 0 && !pages.buttons[first].pressed) {
        await screenGesture(tab, Object.assign({ gesture: 'click', row: first + 1 }, controlRef(pages)));
      }
    }
    if ((cmd === 'FileNew' || cmd === 'FileEdit') && tab.editing && tab === active) {
      // The cursor goes to the first field that takes input.
      const first = tab.node.querySelector('.field input:not(.cal):not([disabled]):not([readonly]), ' +
        '.field select:not([disabled]), .field textarea:not([disabled]):not([readonly])');
      if (first) first.focus();
    }
  } finally {
    toolbarBusy = false;
    drawToolbar();
  }
}

// The toolbar's keys on the page (no layer open): a command runs when the screen allows it;
// Esc cancels an edit, asking first when something was changed. In an entry dialog Ctrl+S
// is its save button.
document.addEventListener('keydown', (e) => {
  if (!$('app') || $('app').hidden) return;
  const ctrl = (e.ctrlKey || e.metaKey) && !e.altKey && !e.shiftKey;
  const layer = topLayer();
  if (layer) {
    if (ctrl && e.key.toLowerCase() === 's') {
      e.preventDefault();
      const save = [...layer.querySelectorAll('.buttons button[data-access-key="S"]')].find((b) => !b.disabled);
      if (!save) return;
      if (document.activeElement && layer.contains(document.activeElement)) document.activeElement.blur();
      save.click();
    }
    return;
  }
  let cmd = null;
  const key = e.key.toLowerCase();
  if (ctrl && key === 's') cmd = 'FileSave';
  else if (ctrl && key === 'f') cmd = 'Find';
  else if (ctrl && key === 'p') cmd = 'PrintPreview';
  else if (e.altKey && !e.ctrlKey && key === 'n') cmd = 'FileNew';
  else if (e.key === 'F2' && !ctrl) cmd = 'FileEdit';
  else if (e.key === 'F5' && !ctrl) cmd = 'Refresh';
  else if (e.key === 'Escape') cmd = 'FileCancel';
  if (!cmd || !active) return;
  e.preventDefault();
  if (toolbarBusy || !enabledCommands(active).has(cmd)) return;
  const tab = active;
  (async () => {
    // The field being typed in gives up its text first.
    if (document.activeElement && tab.node.contains(document.activeElement)) document.activeElement.blur();
    await afterCommits();
    if (cmd === 'FileCancel' && tabDirty(tab) && !(await confirmDiscard(tab.name))) return;
    await toolbarCommand(tab, cmd);
  })();
});

// ---------------------------------------------------------------- printing and export

// The pages a print made, in a layer: the page in a frame, a print button, and a link that
// opens it in a tab of its own. A direct print opens the browser's print dialogue at once.
function showDocuments(docs) {
  let current = docs[0];
  const frame = el('iframe', { class: 'preview-frame', title: '打印预览' });
  const open = el('a', { class: 'open-tab', target: '_blank', rel: 'noopener', text: '在新标签页打开' });
  const show = (doc) => {
    current = doc;
    frame.src = doc.url;
    open.href = doc.url;
    pages.querySelectorAll('button').forEach((b) => b.classList.toggle('active', b.dataset.url === doc.url));
  };
  const pages = el('div', { class: 'preview-pages' }, docs.length > 1
    ? docs.map((d, i) => el('button', { type: 'button', 'data-url': d.url,
        text: d.title || ('第 ' + (i + 1) + ' 页'), onclick: () => show(d) }))
    : null);
  const print = () => { try { frame.contentWindow.focus(); frame.contentWindow.print(); } catch (e) { status(e.message); } };
  let close;
  ({ close } = openLayer({
    title: '打印预览 - ' + (current.title || ''), name: 'preview', cls: 'preview',
    body: [pages, frame],
    buttons: [open, el('button', { type: 'button', text: '打印', class: 'print', onclick: print }),
              el('button', { type: 'button', text: '关闭', onclick: () => close() })],
    onClose: () => {},
  }));
  if (current.direct) frame.addEventListener('load', print, { once: true });
  show(current);
}

// The host's page of the screen's first list grid, shown as a preview (or printed at once
// with direct). False when the screen has no list grid or no page came.
async function printListGrid(tab, direct) {
  const grid = ((tab.state && tab.state.controls) || []).find((c) =>
    c.visible !== false && c.type === 'VsFlexGrid');
  if (!grid) return false;
  const req = { op: 'print_grid', screen: tab.screen, control: grid.name, title: tab.name, direct };
  if (grid.index !== undefined) req.index = grid.index;
  const a = await settle(await protocol(req), tab);
  if (!a.ok) { await alertLayer(failure(a, '打印失败'), tab.name); return true; }
  if (!a.documents || !a.documents.length) return false;
  showDocuments(a.documents);
  return true;
}

// Export of a grid of the screen to a spreadsheet or CSV, downloaded by the browser.
async function exportGrid(tab) {
  const grids = ((tab.state && tab.state.controls) || []).filter((c) =>
    c.visible !== false && (c.type === 'VsFlexGrid' || c.type === 'kvGrid'));
  if (!grids.length) { await alertLayer('当前界面没有可导出的表格', tab.name); return; }
  const choice = await exportLayer(grids);
  if (!choice) return;
  // The file is named after the screen and the day.
  const req = { op: 'export', screen: tab.screen, control: choice.grid.name, format: choice.format,
                title: tab.name };
  if (choice.grid.index !== undefined) req.index = choice.grid.index;
  const a = await settle(await protocol(req), tab);
  if (!a.ok || !a.result || !a.result.url) {
    await alertLayer(failure(a, '导出失败'), tab.name);
    return;
  }
  const link = el('a', { href: a.result.url, download: a.result.name, hidden: true });
  document.body.append(link);
  link.click();
  link.remove();
  status('已导出 ' + a.result.name);
}

function exportLayer(grids) {
  return new Promise((resolve) => {
    const keyOf = (c) => c.name + (c.index !== undefined ? '(' + c.index + ')' : '');
    const which = grids.length > 1
      ? el('select', { class: 'export-grid' }, grids.map((g, i) => el('option', { value: String(i), text: keyOf(g) })))
      : null;
    const format = (value, label, checked) => el('label', { class: 'ctl-option' },
      el('input', { type: 'radio', name: 'export-format', value, checked }), label);
    const formats = el('div', { class: 'option-group' },
      format('xlsx', 'Excel 工作簿 (.xlsx)', true), format('csv', 'CSV 文本 (.csv)', false));
    let close;
    const ok = () => {
      const f = formats.querySelector('input:checked').value;
      close();
      resolve({ grid: grids[which ? Number(which.value) : 0], format: f });
    };
    ({ close } = openLayer({
      title: '导出', name: 'export',
      body: [which ? el('label', { class: 'field' }, el('span', { class: 'caption', text: '表格' }), which) : null,
             formats],
      buttons: [el('button', { type: 'button', text: '确定', onclick: ok }),
                el('button', { type: 'button', text: '取消', onclick: () => { close(); resolve(null); } })],
      onClose: () => resolve(null),
    }));
    formats.querySelector('input:checked').focus();
  });
}

// The host's find and filter dialog: rows of field, operator and value, as the condition
// array the sheets take (plane 0 filter, plane 1 find). Without a field the screen asks
// for itself (a tree sheet's find asks for a node name).
// The find and filter dialog: rows of a field the screen declared (by caption), one of that
// field's operators and a value. A screen that declares no fields finds on its own (a tree
// asks for a node name), so it gets no dialog. Resolves to the condition array (value,
// caption, operator on both planes), null for no conditions, undefined when cancelled.
function findLayer(title, fields) {
  if (!fields.length) return Promise.resolve(null);
  return new Promise((resolve) => {
    const rows = el('div', { class: 'find-rows' });
    const addRow = () => {
      const field = el('select', { class: 'find-field', 'aria-label': '字段' },
        fields.map((f, i) => el('option', { value: String(i), text: f.caption })));
      const op = el('select', { class: 'find-op', 'aria-label': '条件' });
      const value = el('input', { type: 'text', placeholder: '值', class: 'find-value' });
      const offer = () => {
        const f = fields[Number(field.value)];
        const kept = op.value;
        op.replaceChildren(...f.operators.map((o) => el('option', { value: o, text: o })));
        if (f.operators.includes(kept)) op.value = kept;
        value.placeholder = f.type === 'date' ? '日期，如 2012-01-31' : f.type === 'number' ? '数值' : '值';
      };
      field.addEventListener('change', offer);
      offer();
      rows.append(el('div', { class: 'find-row' }, field, op, value));
    };
    addRow();
    let close;
    const ok = () => {
      const conds = [];
      for (const r of rows.children) {
        const v = r.querySelector('.find-value').value;
        if (!v.trim()) continue;
        const f = fields[Number(r.querySelector('.find-field').value)];
        conds.push([v, f.caption, r.querySelector('.find-op').value]);
      }
      close();
      resolve(conds.length ? [conds, conds] : null);
    };
    ({ close } = openLayer({
      title, name: 'find',
      body: [rows, el('button', { type: 'button', text: '添加条件', onclick: addRow })],
      buttons: [el('button', { type: 'button', text: '确定', onclick: ok }),
                el('button', { type: 'button', text: '取消', onclick: () => { close(); resolve(undefined); } })],
      onClose: () => resolve(undefined),
    }));
    rows.querySelector('.find-value').focus();
  });
}

// ---------------------------------------------------------------- menu, sign-in

async function loadMenu() {
  const a = await api('GET', '/api/menu');
  const nav = $('menu');
  nav.textContent = '';
  menuEntries = new Map();
  for (const g of a.groups) {
    const d = el('details', { open: true }, el('summary', { text: g.name || '其他' }));
    for (const e of g.entries) {
      menuEntries.set(e.progID, e);
      // An entry whose screen is not provided yet cannot be opened: it shows, greyed.
      d.append(el('button', { type: 'button', class: 'entry' + (e.ready ? '' : ' unready'),
        text: e.name, 'data-prog': String(e.progID), disabled: !e.ready,
        title: e.ready ? '打开' + e.name : e.name + '（尚未提供）',
        onclick: () => openScreen(e.progID, 0) }));
    }
    nav.append(d);
  }
}

function showPage(id) {
  for (const p of ['signin', 'password', 'app']) $(p).hidden = p !== id;
}

function today() {
  const d = new Date();
  const p = (n) => String(n).padStart(2, '0');
  return `${d.getFullYear()}-${p(d.getMonth() + 1)}-${p(d.getDate())}`;
}

function signedOut(message) {
  session.csrf = '';
  for (const t of tabs.splice(0)) { t.node.remove(); t.tabEl.remove(); }
  active = null;
  $('layers').textContent = '';
  $('signin-error').textContent = message || '';
  $('signin-date').value = today();
  showPage('signin');
  $('signin-user').focus();
}

async function enter(s) {
  Object.assign(session, s);
  if (s.must_change) {
    $('password-note').hidden = false;
    $('password-back').hidden = true;
    showPage('password');
    $('password-old').focus();
    return;
  }
  $('who').textContent = `${s.user} · 登录日期 ${s.login_date}`;
  showPage('app');
  drawToolbar();
  try { await loadMenu(); } catch (e) { status(e.message); }
}

$('signin-form').addEventListener('submit', async (e) => {
  e.preventDefault();
  $('signin-error').textContent = '';
  try {
    const s = await api('POST', '/api/signin', {
      user: $('signin-user').value, password: $('signin-password').value,
      login_date: $('signin-date').value || null,
    });
    $('signin-password').value = '';
    await enter(s);
  } catch (err) {
    $('signin-error').textContent = err.message;
  }
});

$('password-form').addEventListener('submit', async (e) => {
  e.preventDefault();
  $('password-error').textContent = '';
  if ($('password-new').value !== $('password-again').value) {
    $('password-error').textContent = '两次输入的新密码不一致';
    return;
  }
  try {
    const s = await api('POST', '/api/password',
      { old: $('password-old').value, new: $('password-new').value });
    for (const id of ['password-old', 'password-new', 'password-again']) $(id).value = '';
    await enter(s);
    status('密码已修改');
  } catch (err) {
    $('password-error').textContent = err.message;
  }
});

// On a narrow screen the menu stands behind a button and goes away once an entry is chosen.
function showMenu(open) {
  document.body.classList.toggle('menu-open', open);
  $('menu-toggle').setAttribute('aria-expanded', String(open));
}
$('menu-toggle').addEventListener('click', () =>
  showMenu(!document.body.classList.contains('menu-open')));
$('menu').addEventListener('click', (e) => { if (e.target.closest('button.entry')) showMenu(false); });

$('password-back').addEventListener('click', () => showPage('app'));
$('change-password').addEventListener('click', () => {
  $('password-note').hidden = true;
  $('password-back').hidden = false;
  showPage('password');
  $('password-old').focus();
});
$('signout').addEventListener('click', async () => {
  try { await api('POST', '/api/signout', {}); } catch (e) { /* signed out either way */ }
  signedOut('已退出');
});

(async function start() {
  $('signin-date').value = today();
  try {
    const s = await api('GET', '/api/session');
    await enter(s);
  } catch (e) {
    signedOut('');
  }
})();
