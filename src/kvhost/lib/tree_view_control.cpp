#include "kvhost/lib/tree_view_control.h"

#include <algorithm>
#include <nlohmann/json.hpp>
#include <unordered_set>

#include "mrvk/frame/vb.h"

namespace kvhost {
namespace {

// The control's run-time failures, numbered as the real control numbers them.
constexpr int kElementNotFound = 35601;
constexpr int kKeyNotUnique = 35602;

// Where gestures put the pointer across a line.
constexpr float kPointerX = 5;

}  // namespace

// ---- TreeNode ------------------------------------------------------------------------------

const std::vector<TreeNode*>* TreeNode::Siblings() const {
  if (!nodes_) return nullptr;
  return parent_ ? &parent_->children_ : &nodes_->roots_;
}

TreeNode* TreeNode::Next() const {
  const auto* s = Siblings();
  if (!s) return nullptr;
  auto it = std::find(s->begin(), s->end(), this);
  return it + 1 < s->end() ? *(it + 1) : nullptr;
}

TreeNode* TreeNode::Previous() const {
  const auto* s = Siblings();
  if (!s) return nullptr;
  auto it = std::find(s->begin(), s->end(), this);
  return it != s->begin() ? *(it - 1) : nullptr;
}

TreeNode* TreeNode::FirstSibling() const {
  const auto* s = Siblings();
  return s ? s->front() : nullptr;
}

TreeNode* TreeNode::LastSibling() const {
  const auto* s = Siblings();
  return s ? s->back() : nullptr;
}

TreeNode* TreeNode::Root() {
  TreeNode* n = this;
  while (n->parent_) n = n->parent_;
  return n;
}

std::string TreeNode::FullPath() const {
  std::string path = Text;
  for (const TreeNode* p = parent_; p; p = p->parent_) path = p->Text + "\\" + path;
  return path;
}

bool TreeNode::IsBelow(const TreeNode& ancestor) const {
  for (const TreeNode* p = parent_; p; p = p->parent_) {
    if (p == &ancestor) return true;
  }
  return false;
}

int TreeNode::Depth() const {
  int depth = 0;
  for (const TreeNode* p = parent_; p; p = p->parent_) ++depth;
  return depth;
}

// ---- TreeNodes -----------------------------------------------------------------------------

TreeNode& TreeNodes::Add(TreeNode* relative, TreeRelationship relationship, const std::string& key,
                         const std::string& text, const std::string& image) {
  if (relative && relative->nodes_ != this)
    throw mrvk::VbError(kElementNotFound, "Element not found");
  if (!key.empty() && by_key_.count(key))
    throw mrvk::VbError(kKeyNotUnique, "Key is not unique in collection");
  auto node = std::make_shared<TreeNode>();
  node->key_ = key;
  node->Text = text;
  node->Image = image;
  node->nodes_ = this;

  TreeNode* parent = nullptr;
  size_t at = roots_.size();
  if (relative) {
    if (relationship == TreeRelationship::Child) {
      parent = relative;
      at = relative->children_.size();
    } else {
      parent = relative->parent_;
      auto& siblings = SiblingsOf(parent);
      const size_t pos = std::find(siblings.begin(), siblings.end(), relative) - siblings.begin();
      switch (relationship) {
        case TreeRelationship::First:
          at = 0;
          break;
        case TreeRelationship::Next:
          at = pos + 1;
          break;
        case TreeRelationship::Previous:
          at = pos;
          break;
        default:
          at = siblings.size();
          break;
      }
    }
  }
  node->parent_ = parent;
  auto& siblings = SiblingsOf(parent);
  siblings.insert(siblings.begin() + static_cast<std::ptrdiff_t>(at), node.get());
  if (!key.empty()) by_key_[key] = node.get();
  items_.push_back(node);
  node->index_ = static_cast<int>(items_.size());
  return *node;
}

TreeNode& TreeNodes::Add(const std::string& relative_key, TreeRelationship relationship,
                         const std::string& key, const std::string& text,
                         const std::string& image) {
  TreeNode* relative = nullptr;
  if (!relative_key.empty()) {
    relative = Item(relative_key);
    if (!relative) throw mrvk::VbError(kElementNotFound, "Element not found");
  }
  return Add(relative, relationship, key, text, image);
}

void TreeNodes::Remove(TreeNode& node) {
  if (node.nodes_ != this) return;
  auto& siblings = SiblingsOf(node.parent_);
  siblings.erase(std::find(siblings.begin(), siblings.end(), &node));

  std::unordered_set<TreeNode*> gone;
  std::vector<TreeNode*> pending = {&node};
  while (!pending.empty()) {
    TreeNode* n = pending.back();
    pending.pop_back();
    gone.insert(n);
    pending.insert(pending.end(), n->children_.begin(), n->children_.end());
  }
  for (TreeNode* n : gone) {
    if (!n->key_.empty()) by_key_.erase(n->key_);
    n->parent_ = nullptr;
    n->children_.clear();
    n->nodes_ = nullptr;
    n->index_ = 0;
  }
  std::erase_if(items_, [&](const auto& item) { return gone.count(item.get()) > 0; });
  Renumber();
}

void TreeNodes::Clear() {
  for (auto& n : items_) {
    n->parent_ = nullptr;
    n->children_.clear();
    n->nodes_ = nullptr;
    n->index_ = 0;
  }
  items_.clear();
  roots_.clear();
  by_key_.clear();
}

TreeNode* TreeNodes::Item(int index) const {
  if (index < 1 || index > Count()) return nullptr;
  return items_[static_cast<size_t>(index - 1)].get();
}

TreeNode* TreeNodes::Item(const std::string& key) const {
  auto it = by_key_.find(key);
  return it == by_key_.end() ? nullptr : it->second;
}

bool TreeNodes::SetParent(TreeNode& node, TreeNode* new_parent) {
  if (node.nodes_ != this) return false;
  if (new_parent && (new_parent == &node || new_parent->IsBelow(node))) return false;
  auto& old_siblings = SiblingsOf(node.parent_);
  old_siblings.erase(std::find(old_siblings.begin(), old_siblings.end(), &node));
  node.parent_ = new_parent;
  SiblingsOf(new_parent).push_back(&node);
  return true;
}

std::vector<TreeNode*> TreeNodes::InTreeOrder(bool only_shown) const {
  std::vector<TreeNode*> out;
  out.reserve(items_.size());
  std::vector<TreeNode*> pending(roots_.rbegin(), roots_.rend());
  while (!pending.empty()) {
    TreeNode* n = pending.back();
    pending.pop_back();
    out.push_back(n);
    if (only_shown && !n->Expanded) continue;
    pending.insert(pending.end(), n->children_.rbegin(), n->children_.rend());
  }
  return out;
}

void TreeNodes::Renumber() {
  for (size_t i = 0; i < items_.size(); ++i) items_[i]->index_ = static_cast<int>(i + 1);
}

std::string TreeNodeId(const TreeNode& node) {
  return node.Key().empty() ? "#" + std::to_string(node.Index()) : node.Key();
}

// ---- TreeView ------------------------------------------------------------------------------

TreeView::TreeView(std::string name, int index) : Control("TreeView", std::move(name), index) {
  // Twenty lines until the screen's layout gives the real height.
  Height = 20 * ItemHeight;
}

void TreeView::SetSelectedItem(TreeNode* node) {
  if (!node) {
    selected_.reset();
    return;
  }
  selected_ = node->weak_from_this();
  EnsureVisible(*node);
}

void TreeView::SetDropHighlight(TreeNode* node) {
  drop_highlight_ = node ? node->weak_from_this() : std::weak_ptr<TreeNode>();
}

int TreeView::VisibleCount() const { return ItemHeight > 0 ? std::max(1, Height / ItemHeight) : 1; }

int TreeView::TopLine() const {
  const int lines = static_cast<int>(Nodes.InTreeOrder(/*only_shown=*/true).size());
  return std::clamp(top_line_, 0, std::max(0, lines - VisibleCount()));
}

void TreeView::SetTopLine(int line) {
  top_line_ = line;
  top_line_ = TopLine();
}

TreeNode* TreeView::FirstVisible() const {
  const auto shown = Nodes.InTreeOrder(/*only_shown=*/true);
  return shown.empty() ? nullptr : shown[static_cast<size_t>(TopLine())];
}

void TreeView::EnsureVisible(TreeNode& node) {
  for (TreeNode* p = node.Parent(); p; p = p->Parent()) p->Expanded = true;
  const auto shown = Nodes.InTreeOrder(/*only_shown=*/true);
  const int line = static_cast<int>(std::find(shown.begin(), shown.end(), &node) - shown.begin());
  if (line >= static_cast<int>(shown.size())) return;
  const int top = TopLine();
  if (line < top) SetTopLine(line);
  if (line >= top + VisibleCount()) SetTopLine(line - VisibleCount() + 1);
}

TreeNode* TreeView::HitTest(float, float y) const {
  if (y < 0 || ItemHeight <= 0) return nullptr;
  const int in_view = static_cast<int>(y / static_cast<float>(ItemHeight));
  if (in_view >= VisibleCount()) return nullptr;
  const auto shown = Nodes.InTreeOrder(/*only_shown=*/true);
  const size_t line = static_cast<size_t>(TopLine() + in_view);
  return line < shown.size() ? shown[line] : nullptr;
}

float TreeView::LineY(const TreeNode& node) const {
  const auto shown = Nodes.InTreeOrder(/*only_shown=*/true);
  const int line = static_cast<int>(std::find(shown.begin(), shown.end(), &node) - shown.begin());
  return (static_cast<float>(line - TopLine()) + 0.5f) * static_cast<float>(ItemHeight);
}

void TreeView::StartLabelEdit() {
  if (TreeNode* n = SelectedItem()) edited_ = n->weak_from_this();
}

TreeNode* TreeView::FindNode(const std::string& id) const {
  if (TreeNode* n = Nodes.Item(id)) return n;
  if (id.size() < 2 || id[0] != '#') return nullptr;
  TreeNode* n = Nodes.Item(static_cast<int>(mrvk::Val(id.substr(1))));
  return n && n->Key().empty() ? n : nullptr;
}

std::string TreeView::NoNode(const std::string& id) const {
  return DisplayName() + " has no node \"" + id + "\"";
}

float TreeView::PointerY(TreeNode* node) const {
  if (node) return LineY(*node);
  const int lines = static_cast<int>(Nodes.InTreeOrder(/*only_shown=*/true).size());
  return (static_cast<float>(lines - TopLine()) + 0.5f) * static_cast<float>(ItemHeight);
}

void TreeView::Click(TreeNode& node) {
  SetSelectedItem(&node);
  if (NodeClick) NodeClick(node);
}

std::string TreeView::Apply(const Gesture& gesture) {
  std::string refused = RefusesInput(/*locked_counts=*/false);
  if (!refused.empty()) return refused;
  const std::string& kind = gesture.kind;
  if (kind == "type") return EditLabel(gesture);
  if (kind == "keydown") return PressKey(gesture);
  if (kind == "mousedown") return PressMouse(gesture);
  if (kind == "drag_over") return DragOverLine(gesture);
  if (kind == "drop") return Drop(gesture);
  if (kind == "scroll") {
    SetTopLine(gesture.row);
    return "";
  }
  if (kind != "select" && kind != "dblclick" && kind != "toggle") return Unsupported(gesture);

  TreeNode* node = FindNode(gesture.key);
  if (!node) return NoNode(gesture.key);
  EnsureVisible(*node);
  if (kind == "toggle") {
    if (node->Children() == 0)
      return DisplayName() + ": node \"" + gesture.key + "\" has no children";
    node->Expanded = !node->Expanded;
    return "";
  }
  const std::weak_ptr<TreeNode> clicked = node->weak_from_this();
  Click(*node);
  if (kind == "select") return "";
  if (DblClick) DblClick();
  // A double click also opens or closes the node, unless a handler removed it.
  if (auto n = clicked.lock(); n && n->Index() > 0 && n->Children() > 0) n->Expanded = !n->Expanded;
  return "";
}

std::string TreeView::EditLabel(const Gesture& gesture) {
  TreeNode* node = EditedNode();
  if (!node) {
    if (LabelEdit != label_edit::kAutomatic) return DisplayName() + " has no label edit open";
    node = gesture.key.empty() ? SelectedItem() : FindNode(gesture.key);
    if (!node)
      return gesture.key.empty() ? DisplayName() + " has no selected node" : NoNode(gesture.key);
  }
  edited_.reset();
  const std::weak_ptr<TreeNode> edited = node->weak_from_this();
  std::string text = gesture.text;
  bool cancel = false;
  if (AfterLabelEdit) AfterLabelEdit(*node, text, cancel);
  if (cancel) return "";
  if (auto n = edited.lock(); n && n->Index() > 0) n->Text = text;
  return "";
}

std::string TreeView::PressKey(const Gesture& gesture) {
  if (gesture.row < 0) return DisplayName() + ": keydown needs the key code in row";
  int code = gesture.row;
  if (KeyDown) KeyDown(code, std::max(0, gesture.col));
  if (code != key_code::kUp && code != key_code::kDown) return "";
  const auto shown = Nodes.InTreeOrder(/*only_shown=*/true);
  if (shown.empty()) return "";
  auto it = std::find(shown.begin(), shown.end(), SelectedItem());
  TreeNode* target = nullptr;
  if (it == shown.end()) {
    target = shown.front();
  } else if (code == key_code::kUp) {
    target = it == shown.begin() ? nullptr : *(it - 1);
  } else {
    target = it + 1 == shown.end() ? nullptr : *(it + 1);
  }
  if (target) Click(*target);
  return "";
}

std::string TreeView::PressMouse(const Gesture& gesture) {
  int button = mouse_button::kLeft;
  if (gesture.text == "right") {
    button = mouse_button::kRight;
  } else if (!gesture.text.empty() && gesture.text != "left") {
    return DisplayName() + ": no mouse button \"" + gesture.text + "\"";
  }
  TreeNode* node = nullptr;
  if (!gesture.key.empty()) {
    node = FindNode(gesture.key);
    if (!node) return NoNode(gesture.key);
    EnsureVisible(*node);
  }
  if (MouseDown) MouseDown(button, 0, kPointerX, PointerY(node));
  return "";
}

void TreeView::StartDrag(TreeNode& dragged) {
  EnsureVisible(dragged);
  const float y = LineY(dragged);
  if (MouseDown) MouseDown(mouse_button::kLeft, 0, kPointerX, y);
  if (MouseMove) MouseMove(mouse_button::kLeft, 0, kPointerX, y);
}

std::string TreeView::DragOverLine(const Gesture& gesture) {
  TreeNode* dragged = FindNode(gesture.key);
  if (!dragged) return NoNode(gesture.key);
  if (gesture.row < 0 || gesture.row >= VisibleCount())
    return DisplayName() + ": line " + std::to_string(gesture.row) + " is outside the view";
  if (!dragging_) StartDrag(*dragged);
  // Without a drag begun by the owner the move is only a move.
  if (!dragging_) return "";
  const float y = (static_cast<float>(gesture.row) + 0.5f) * static_cast<float>(ItemHeight);
  if (DragOver) DragOver(kPointerX, y, drag_state::kOver);
  return "";
}

std::string TreeView::Drop(const Gesture& gesture) {
  TreeNode* dragged = FindNode(gesture.key);
  if (!dragged) return NoNode(gesture.key);
  TreeNode* target = nullptr;
  if (!gesture.text.empty()) {
    target = FindNode(gesture.text);
    if (!target) return NoNode(gesture.text);
  }
  const std::weak_ptr<TreeNode> target_ref =
      target ? target->weak_from_this() : std::weak_ptr<TreeNode>();
  if (!dragging_) StartDrag(*dragged);
  if (!dragging_) return "";
  if (auto t = target_ref.lock()) {
    EnsureVisible(*t);
    if (DragOver) DragOver(kPointerX, LineY(*t), drag_state::kOver);
  }
  // The pointer stays on the target, also when the view scrolled under it.
  auto t = target_ref.lock();
  const float y = PointerY(t && t->Index() > 0 ? t.get() : nullptr);
  dragging_ = false;
  if (DragDrop) DragDrop(kPointerX, y);
  return "";
}

void TreeView::WriteOwnState(nlohmann::json& out) const {
  const auto shown = Nodes.InTreeOrder(/*only_shown=*/true);
  const TreeNode* selected = SelectedItem();
  const int top = TopLine();
  out["node_count"] = Nodes.Count();
  out["shown_count"] = shown.size();
  out["top_line"] = top;
  out["visible_lines"] = VisibleCount();
  out["selected"] = selected ? nlohmann::json(TreeNodeId(*selected)) : nlohmann::json();
  out["label_edit"] = LabelEdit;
  out["dragging"] = dragging_;
  if (const TreeNode* e = EditedNode()) out["editing"] = TreeNodeId(*e);
  if (const TreeNode* d = DropHighlight()) out["drop_highlight"] = TreeNodeId(*d);
  nlohmann::json nodes = nlohmann::json::array();
  const size_t end = std::min(shown.size(), static_cast<size_t>(top + kStateLines));
  for (size_t i = static_cast<size_t>(top); i < end; ++i) {
    const TreeNode& n = *shown[i];
    nlohmann::json j = {
        {"id", TreeNodeId(n)},       {"key", n.Key()},           {"text", n.Text},
        {"depth", n.Depth()},        {"children", n.Children()}, {"expanded", n.Expanded},
        {"selected", &n == selected}};
    std::string image = n.Image;
    if (&n == selected && !n.SelectedImage.empty()) {
      image = n.SelectedImage;
    } else if (n.Expanded && n.Children() > 0 && !n.ExpandedImage.empty()) {
      image = n.ExpandedImage;
    }
    if (!image.empty()) j["image"] = image;
    if (n.Bold) j["bold"] = true;
    if (n.Checked) j["checked"] = true;
    if (n.Cut) j["cut"] = true;
    nodes.push_back(std::move(j));
  }
  out["nodes"] = std::move(nodes);
}

}  // namespace kvhost
