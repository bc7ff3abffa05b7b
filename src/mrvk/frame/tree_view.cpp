#include "mrvk/frame/tree_view.h"

#include <algorithm>

#include "mrvk/frame/vb.h"

namespace mrvk {
namespace {

using kvhost::TreeNode;

// The node is still in its tree (a handler may have removed it).
TreeNode* Alive(const std::weak_ptr<TreeNode>& ref) {
  auto n = ref.lock();
  return n && n->Index() > 0 ? n.get() : nullptr;
}

// Where NodeFirstViewable hits the view: inside its first line.
constexpr float kHitX = 5;
constexpr float kHitY = 5;

}  // namespace

// ---- mTreeView -----------------------------------------------------------------------------

namespace mTreeView {

int16_t CutIconState(const kvhost::TreeNode& node) { return node.Cut ? 1 : 0; }

void SetCutIconState(kvhost::TreeNode& node, int16_t state) { node.Cut = state != 0; }

}  // namespace mTreeView

// ---- cTreeView -----------------------------------------------------------------------------

cTreeView::~cTreeView() { UnHookCtrl(); }

TreeNode* cTreeView::NodeAdd(TreeNode* relative, kvhost::TreeRelationship relationship,
                             const std::string& key, const std::string& text,
                             const TreeNodeAdd& options) {
  if (!ctrl_) return nullptr;
  return &Decorate(ctrl_->Nodes.Add(relative, relationship, key, text, options.image), options);
}

TreeNode* cTreeView::NodeAdd(const std::string& relative_key, kvhost::TreeRelationship relationship,
                             const std::string& key, const std::string& text,
                             const TreeNodeAdd& options) {
  if (!ctrl_) return nullptr;
  return &Decorate(ctrl_->Nodes.Add(relative_key, relationship, key, text, options.image), options);
}

TreeNode& cTreeView::Decorate(TreeNode& node, const TreeNodeAdd& options) {
  const auto defaults = DefaultImages();
  node.SelectedImage = options.selected_image;
  node.ExpandedImage = options.expanded_image;
  if (!defaults.empty()) {
    const std::string& first = defaults[0];
    const std::string& second = defaults.size() > 1 ? defaults[1] : first;
    const std::string& third = defaults.size() > 2 ? defaults[2] : second;
    if (node.Image.empty()) node.Image = first;
    if (node.SelectedImage.empty()) node.SelectedImage = second;
    if (node.ExpandedImage.empty()) node.ExpandedImage = third;
  }
  node.Tag = options.tag;
  node.Bold = options.bold;
  node.Checked = options.checked;
  node.Expanded = options.expanded;
  if (options.selected) ctrl_->SetSelectedItem(&node);
  if (options.selected || options.ensure_visible) ctrl_->EnsureVisible(node);
  return node;
}

void cTreeView::ClearTreeView() {
  if (!ctrl_) return;
  // All roots at once: the same as removing them one by one, without walking the tree again
  // for each.
  Redraw(/*on=*/false);
  ctrl_->Nodes.Clear();
  Redraw(/*on=*/true);
}

void cTreeView::Redraw(bool on) {
  if (ctrl_) ctrl_->Redraw = on;
}

void cTreeView::CollapseAll() {
  if (!ctrl_) return;
  Redraw(/*on=*/false);
  for (TreeNode* root : ctrl_->Nodes.Roots()) ExpandBranch(*root, /*expanded=*/false);
  Redraw(/*on=*/true);
}

void cTreeView::ExpandAll() {
  if (!ctrl_) return;
  Redraw(/*on=*/false);
  for (TreeNode* root : ctrl_->Nodes.Roots()) ExpandBranch(*root, /*expanded=*/true);
  Redraw(/*on=*/true);
}

void cTreeView::CollapseChildNodes(TreeNode& node) { ExpandBranch(node, /*expanded=*/false); }

void cTreeView::ExpandChildNodes(TreeNode& node) { ExpandBranch(node, /*expanded=*/true); }

void cTreeView::ExpandBranch(TreeNode& node, bool expanded) {
  if (node.Children() > 0) node.Expanded = expanded;
  for (TreeNode* child : node.ChildNodes()) ExpandBranch(*child, expanded);
}

int16_t cTreeView::CutIconState() const {
  const TreeNode* selected = ctrl_ ? ctrl_->SelectedItem() : nullptr;
  return selected ? mTreeView::CutIconState(*selected) : 0;
}

void cTreeView::SetCutIconState(int16_t state) {
  TreeNode* selected = ctrl_ ? ctrl_->SelectedItem() : nullptr;
  if (selected) mTreeView::SetCutIconState(*selected, state);
}

void cTreeView::HookCtrl(kvhost::TreeView& control, std::vector<std::string> image_list,
                         kvhost::ControlList* screen) {
  UnHookCtrl();
  ctrl_ = &control;
  screen_ = screen;
  control.ImageList = std::move(image_list);
  const auto& images = control.ImageList;
  if (std::find(images.begin(), images.end(), "DRAGICON") != images.end())
    control.DragIcon = "DRAGICON";
  line_height_ = static_cast<float>(control.Height) / static_cast<float>(control.VisibleCount());
  control.NodeClick = [this](TreeNode& node) { OnNodeClick(node); };
  control.MouseDown = [this](int button, int, float x, float y) { OnMouseDown(button, x, y); };
  control.MouseMove = [this](int button, int, float x, float y) { OnMouseMove(button, x, y); };
  control.DragOver = [this](float x, float y, int) { OnDragOver(x, y); };
  control.DragDrop = [this](float x, float y) { OnDragDrop(x, y); };
}

void cTreeView::UnHookCtrl() {
  if (!ctrl_) return;
  ctrl_->NodeClick = nullptr;
  ctrl_->MouseDown = nullptr;
  ctrl_->MouseMove = nullptr;
  ctrl_->DragOver = nullptr;
  ctrl_->DragDrop = nullptr;
  ctrl_ = nullptr;
  screen_ = nullptr;
  found_.reset();
  dragged_.reset();
}

std::string cTreeView::ParentNodeText(const TreeNode* node) const {
  return node && node->Parent() ? node->Parent()->Text : std::string();
}

bool cTreeView::IsChildNode(const TreeNode* node, const TreeNode* parent) const {
  return node && parent && node->IsBelow(*parent);
}

bool cTreeView::IsParentNode(const TreeNode* node, const TreeNode* child) const {
  if (!node || !child) return false;
  for (const TreeNode* c : node->ChildNodes()) {
    if (c == child || IsParentNode(c, child)) return true;
  }
  return false;
}

bool cTreeView::IsRootNode(const TreeNode* node) const { return node && !node->Parent(); }

bool cTreeView::NodeCopy(TreeNode* source, TreeNode* target, bool with_children) {
  if (!ctrl_ || !source || !target) return false;
  // A branch copied into itself would copy its own copies without end.
  if (with_children && (target == source || target->IsBelow(*source))) return false;
  return CopyBelow(*source, *target, with_children) != nullptr;
}

TreeNode* cTreeView::CopyBelow(TreeNode& source, TreeNode& target, bool with_children) {
  std::vector<std::weak_ptr<TreeNode>> children;
  for (TreeNode* c : source.ChildNodes()) children.push_back(c->weak_from_this());
  TreeNode& copy =
      ctrl_->Nodes.Add(&target, kvhost::TreeRelationship::Child, "", source.Text, source.Image);
  copy.SelectedImage = source.SelectedImage;
  copy.ExpandedImage = source.ExpandedImage;
  copy.Tag = source.Tag;
  copy.Bold = source.Bold;
  copy.Checked = source.Checked;
  const std::weak_ptr<TreeNode> copy_ref = copy.weak_from_this();
  CancelCopy = false;
  if (NodeCopied) NodeCopied(copy, source);
  TreeNode* made = Alive(copy_ref);
  if (CancelCopy) {
    CancelCopy = false;
    if (made) ctrl_->Nodes.Remove(*made);
    return nullptr;
  }
  if (!made || !with_children) return made;
  for (const auto& child : children) {
    TreeNode* c = Alive(child);
    if (c && Alive(copy_ref)) CopyBelow(*c, *made, with_children);
  }
  return made;
}

bool cTreeView::NodeDelete(TreeNode* node, bool ask) {
  if (!ctrl_ || !node) return false;
  if (ask &&
      MsgBox("是否删除当前记录:" + node->Text, msgbox::kYesNoWarning, "提示:") != msgbox::kYes)
    return false;
  const std::weak_ptr<TreeNode> doomed = node->weak_from_this();
  TreeNode* before = ctrl_->SelectedItem();
  TreeNode* next = node->Next();
  if (!next && before) {
    TreeNode* child = before->Child();
    // A child that goes with the node is no place for the selection.
    if (child && child != node && !child->IsBelow(*node)) next = child;
  }
  if (next && next != before) {
    ctrl_->SetSelectedItem(next);
    RaiseSelected(next);
  }
  if (TreeNode* n = Alive(doomed)) ctrl_->Nodes.Remove(*n);
  return true;
}

bool cTreeView::NodeFind(TreeNode*& node, std::string& text, const std::string& start_text,
                         bool select) {
  node = nullptr;
  if (!ctrl_) return false;
  if (text.empty()) {
    text = InputBox("输入要查找的节点名称:", "查找记录", start_text);
    if (text.empty()) return false;
  }
  return FindAfter(nullptr, node, text, select);
}

bool cTreeView::NodeFindNext(TreeNode*& node, const std::string& text, int from_index,
                             bool select) {
  node = nullptr;
  if (!ctrl_ || text.empty()) return false;
  const TreeNode* after = ctrl_->Nodes.Item(from_index);
  if (!after) after = Alive(found_);
  return FindAfter(after, node, text, select);
}

bool cTreeView::FindAfter(const TreeNode* after, TreeNode*& node, const std::string& text,
                          bool select) {
  const auto order = ctrl_->Nodes.InTreeOrder(/*only_shown=*/false);
  auto it = std::find(order.begin(), order.end(), after);
  it = it == order.end() ? order.begin() : it + 1;
  const std::string wanted = UCase(text);
  it = std::find_if(it, order.end(), [&](const TreeNode* n) {
    return UCase(n->Text).find(wanted) != std::string::npos;
  });
  if (it == order.end()) return false;
  node = *it;
  found_ = node->weak_from_this();
  if (!select) return true;
  ctrl_->SetSelectedItem(node);
  RaiseSelected(node);
  if (screen_) screen_->SetFocus(ctrl_);
  return true;
}

bool cTreeView::NodeFindTag(TreeNode*& node, const std::string& tag, std::string& key) const {
  node = nullptr;
  key.clear();
  if (!ctrl_) return false;
  const std::string wanted = UCase(tag);
  for (TreeNode* n : ctrl_->Nodes.InTreeOrder(/*only_shown=*/false)) {
    if (UCase(n->Tag.ToString()) != wanted) continue;
    node = n;
    key = n->Key();
    return true;
  }
  return false;
}

bool cTreeView::NodeMove(TreeNode* node, TreeNode* new_parent, bool select) {
  if (!ctrl_ || !node || !new_parent || node == new_parent) return false;
  if (new_parent->IsBelow(*node)) {
    // Into its own branch: a root stays where it is; any other node first hands its children
    // to its own parent, so that the new parent no longer lies below it.
    TreeNode* up = node->Parent();
    if (!up) return false;
    const std::vector<TreeNode*> children = node->ChildNodes();
    for (TreeNode* c : children) ctrl_->Nodes.SetParent(*c, up);
  }
  new_parent->Expanded = true;
  ctrl_->Nodes.SetParent(*node, new_parent);
  if (select) ctrl_->SetSelectedItem(node);
  return true;
}

bool cTreeView::NodeRename(TreeNode* node, const std::string& text, bool select) {
  if (!ctrl_ || !node || text.empty()) return false;
  node->Text = text;
  if (select && node->Parent()) ctrl_->SetSelectedItem(node);
  return true;
}

void cTreeView::ScrollView(int code) {
  if (!ctrl_) return;
  const int top = ctrl_->TopLine();
  const int page = ctrl_->VisibleCount() - 1;
  switch (code) {
    case scroll_view::kFirstNode:
      ctrl_->SetTopLine(0);
      break;
    case scroll_view::kPageUp:
      ctrl_->SetTopLine(top - page);
      break;
    case scroll_view::kLineUp:
      ctrl_->SetTopLine(top - 1);
      break;
    case scroll_view::kLineDown:
      ctrl_->SetTopLine(top + 1);
      break;
    case scroll_view::kPageDown:
      ctrl_->SetTopLine(top + page);
      break;
    case scroll_view::kLastNode:
      ctrl_->SetTopLine(ctrl_->Nodes.Count());
      break;
    default:
      break;
  }
}

TreeNode* cTreeView::NodeFirstViewable() const {
  return ctrl_ ? ctrl_->HitTest(kHitX, kHitY) : nullptr;
}

bool cTreeView::IsSelected() const {
  const TreeNode* selected = ctrl_ ? ctrl_->SelectedItem() : nullptr;
  return selected && selected->Parent();
}

TreeNode* cTreeView::NodeLastViewable() const {
  if (!ctrl_) return nullptr;
  const auto shown = ctrl_->Nodes.InTreeOrder(/*only_shown=*/true);
  const size_t end =
      std::min(shown.size(), static_cast<size_t>(ctrl_->TopLine() + ctrl_->VisibleCount()));
  return end > 0 ? shown[end - 1] : nullptr;
}

void cTreeView::MoveNodeNext() {
  TreeNode* selected = ctrl_ ? ctrl_->SelectedItem() : nullptr;
  if (!selected) return;
  TreeNode* next = selected->Next() ? selected->Next() : selected->Child();
  if (!next) return;
  ctrl_->SetSelectedItem(next);
  RaiseSelected(next);
}

void cTreeView::MoveNodePrevious() {
  TreeNode* selected = ctrl_ ? ctrl_->SelectedItem() : nullptr;
  if (!selected) return;
  TreeNode* previous = selected->Previous() ? selected->Previous() : selected->Parent();
  if (!previous) return;
  ctrl_->SetSelectedItem(previous);
  RaiseSelected(previous);
}

void cTreeView::ReSelectItem(TreeNode* node) {
  if (!ctrl_) return;
  if (!node) node = ctrl_->SelectedItem();
  if (node) ctrl_->SetSelectedItem(node);
  RaiseSelected(node);
}

void cTreeView::RaiseSelected(TreeNode* node) {
  if (Selected) Selected(node);
}

void cTreeView::OnNodeClick(TreeNode& node) { RaiseSelected(&node); }

void cTreeView::OnMouseDown(int button, float x, float y) {
  TreeNode* node = ctrl_->HitTest(x, y);
  if (button == kvhost::mouse_button::kLeft) {
    dragged_ = node ? node->weak_from_this() : std::weak_ptr<TreeNode>();
    return;
  }
  if (button != kvhost::mouse_button::kRight) return;
  if (ContextMenuMode == 0 && node && node != ctrl_->SelectedItem()) {
    ctrl_->SetSelectedItem(node);
    RaiseSelected(node);
  }
  if (ContextMenu) ContextMenu(node, x, y);
}

void cTreeView::OnMouseMove(int button, float x, float y) {
  if (button != kvhost::mouse_button::kLeft || !DragEnabled || ctrl_->Dragging()) return;
  TreeNode* dragged = Alive(dragged_);
  if (!dragged || !ctrl_->HitTest(x, y)) return;
  if (!dragged->Image.empty()) ctrl_->DragIcon = dragged->Image;
  ctrl_->Drag(kvhost::TreeView::DragAction::Begin);
  if (DragStarted) DragStarted(*dragged);
}

void cTreeView::OnDragOver(float x, float y) {
  TreeNode* dragged = Alive(dragged_);
  if (!DragEnabled || !dragged || !ctrl_->Dragging()) return;
  TreeNode* node = ctrl_->HitTest(x, y);
  ctrl_->SetDropHighlight(node);
  // The two lines at either edge of the view scroll it; the others take part in the drag.
  const float lines = static_cast<float>(ctrl_->VisibleCount());
  if (y > (lines - 2) * line_height_) {
    ScrollView(scroll_view::kLineDown);
  } else if (y >= 2 * line_height_) {
    if (node && DragOver) DragOver(*node, *dragged);
  } else {
    ScrollView(scroll_view::kLineUp);
  }
}

void cTreeView::OnDragDrop(float x, float y) {
  auto dragged = dragged_.lock();
  TreeNode* target = ctrl_->HitTest(x, y);
  ctrl_->SetDropHighlight(nullptr);
  dragged_.reset();
  if (!dragged || dragged->Index() == 0 || !target || target == dragged.get()) return;
  if (DragDropped) DragDropped(*target, *dragged);
}

std::vector<std::string> cTreeView::DefaultImages() const {
  std::vector<std::string> images = ctrl_->ImageList;
  std::erase(images, "DRAGICON");
  return images;
}

}  // namespace mrvk
