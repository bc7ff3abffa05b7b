// The tree control (type name "TreeView"): keyed nodes with text, tag and images in parent and
// child order, a selection, a view of VisibleCount() lines that starts at TopLine(), label
// editing and dragging. Coordinates are in the screen's unit; one line is ItemHeight high and
// line 0 is the top line of the view.
//
// Gestures (Apply). A gesture that names a node by `key` first brings it into view, as a person
// acts only on what they see; a node is named by its key, or by "#" and its Index when it has
// no key (the "id" of the state).
//   select    key                  selects the node and raises NodeClick, like a click
//   dblclick  key                  as select, then DblClick; a node with children opens or
//                                  closes
//   toggle    key                  opens or closes a node with children (its +/- button)
//   type      key, text            the label edit: the node's new label, as typed and ended
//                                  with Enter. Applies to the edit opened by StartLabelEdit;
//                                  without one, LabelEdit must be automatic and the node is
//                                  the key's (the selected node when key is empty).
//                                  AfterLabelEdit may change the text or cancel it
//   keydown   row = key code,      KeyDown, which may swallow the key by setting it to 0;
//             col = shift mask     then Up and Down move the selection and raise NodeClick
//   mousedown key, text = "right"  MouseDown over the node (empty key: below the last node)
//             or "left"
//   drag_over key = dragged node,  starts the drag when none runs (left button down and a
//             row = line in view   move over the dragged node), then DragOver at that line
//   drop      key = dragged node,  starts the drag when none runs, then DragOver and DragDrop
//             text = target key    over the target (empty text: below the last node)
//   scroll    row = top line       scrolls the view
// A disabled or hidden tree refuses every gesture and nothing changes.
#pragma once

#include <functional>
#include <memory>
#include <string>
#include <unordered_map>
#include <vector>

#include "kvhost/lib/control.h"
#include "mrvk/frame/variant.h"

namespace kvhost {

class TreeNodes;
class TreeView;

// Where Nodes.Add puts a node, relative to another node (numbered as the tree's constants).
enum class TreeRelationship { First = 0, Last = 1, Next = 2, Previous = 3, Child = 4 };

// LabelEdit: automatic lets a person edit a label; manual only after StartLabelEdit.
namespace label_edit {
inline constexpr int kAutomatic = 0;
inline constexpr int kManual = 1;
}  // namespace label_edit

// Mouse buttons and drag states as the control's events number them.
namespace mouse_button {
inline constexpr int kLeft = 1;
inline constexpr int kRight = 2;
}  // namespace mouse_button
namespace drag_state {
inline constexpr int kEnter = 0;
inline constexpr int kLeave = 1;
inline constexpr int kOver = 2;
}  // namespace drag_state

// Key codes the tree acts on itself.
namespace key_code {
inline constexpr int kUp = 38;
inline constexpr int kDown = 40;
}  // namespace key_code

// A node. The tree owns it; a weak reference (weak_from_this) expires when it is removed.
class TreeNode : public std::enable_shared_from_this<TreeNode> {
 public:
  std::string Text;
  mrvk::Variant Tag;
  // Keys of images in the tree's ImageList.
  std::string Image;
  std::string SelectedImage;
  std::string ExpandedImage;
  bool Expanded = false;
  bool Bold = false;
  bool Checked = false;
  // The cut look: a dimmed icon, as for a node cut to the clipboard.
  bool Cut = false;

  const std::string& Key() const { return key_; }
  // The 1-based position in the Nodes collection (order of adding); 0 once removed.
  int Index() const { return index_; }
  TreeNode* Parent() const { return parent_; }
  // The number of children.
  int Children() const { return static_cast<int>(children_.size()); }
  const std::vector<TreeNode*>& ChildNodes() const { return children_; }
  // The first child; null for a leaf.
  TreeNode* Child() const { return children_.empty() ? nullptr : children_.front(); }
  TreeNode* Next() const;
  TreeNode* Previous() const;
  TreeNode* FirstSibling() const;
  TreeNode* LastSibling() const;
  // The top node of the node's branch.
  TreeNode* Root();
  // The texts from the root down to the node, joined by "\".
  std::string FullPath() const;
  // Whether the node lies below `ancestor` (at any depth).
  bool IsBelow(const TreeNode& ancestor) const;
  // Number of ancestors: 0 for a root.
  int Depth() const;

 private:
  friend class TreeNodes;
  // The node's siblings (itself included), in order; null once removed.
  const std::vector<TreeNode*>* Siblings() const;

  std::string key_;
  int index_ = 0;
  TreeNode* parent_ = nullptr;
  std::vector<TreeNode*> children_;
  TreeNodes* nodes_ = nullptr;
};

// The nodes of a tree. A node stays where it was put; removing a node removes all below it.
class TreeNodes {
 public:
  TreeNodes() = default;
  TreeNodes(const TreeNodes&) = delete;
  TreeNodes& operator=(const TreeNodes&) = delete;

  // Adds a node: without relative as the last root; with one, as its first or last sibling,
  // right after or before it, or as its last child. An empty key is allowed (the node is then
  // not found by key). A key already used, or a relative of another tree, is the control's
  // run-time failure (throws mrvk::VbError 35602 or 35601), as in the real control.
  TreeNode& Add(TreeNode* relative, TreeRelationship relationship, const std::string& key,
                const std::string& text, const std::string& image = "");
  // The same with the relative named by key ("": no relative); a key that no node has is the
  // control's run-time failure 35601.
  TreeNode& Add(const std::string& relative_key, TreeRelationship relationship,
                const std::string& key, const std::string& text, const std::string& image = "");
  // Removes the node and everything below it.
  void Remove(TreeNode& node);
  void Clear();
  int Count() const { return static_cast<int>(items_.size()); }
  // By 1-based Index; null when out of range.
  TreeNode* Item(int index) const;
  // By key (exact); null when no node has it.
  TreeNode* Item(const std::string& key) const;
  const std::vector<TreeNode*>& Roots() const { return roots_; }
  // Makes the node the last child of new_parent (null: the last root). False, changing
  // nothing, when new_parent is the node or lies below it.
  bool SetParent(TreeNode& node, TreeNode* new_parent);
  // All nodes depth first: a node, then its children; with only_shown the children of closed
  // nodes are left out (the lines the view can show).
  std::vector<TreeNode*> InTreeOrder(bool only_shown) const;

 private:
  friend class TreeNode;
  std::vector<TreeNode*>& SiblingsOf(TreeNode* parent) {
    return parent ? parent->children_ : roots_;
  }
  void Renumber();

  std::vector<std::shared_ptr<TreeNode>> items_;  // in Index order
  std::vector<TreeNode*> roots_;
  std::unordered_map<std::string, TreeNode*> by_key_;
};

class TreeView : public Control {
 public:
  TreeView(std::string name, int index = -1);

  TreeNodes Nodes;
  int LabelEdit = label_edit::kAutomatic;
  // Drawing of the control on or off; front ends keep the last drawn state while it is off.
  bool Redraw = true;
  // Keys of the images that nodes can show, and the image shown while dragging.
  std::vector<std::string> ImageList;
  std::string DragIcon;
  // The height of one line in the screen's unit.
  int ItemHeight = 240;

  // The selected node; null for none. Selecting by program raises no event and brings the
  // node into view.
  TreeNode* SelectedItem() const { return selected_.lock().get(); }
  void SetSelectedItem(TreeNode* node);
  // The node marked as the drop target during a drag; null for none.
  TreeNode* DropHighlight() const { return drop_highlight_.lock().get(); }
  void SetDropHighlight(TreeNode* node);

  // The lines the view shows at once: the control's height in lines, at least 1.
  int VisibleCount() const;
  // The first shown line (0-based, in InTreeOrder(only_shown) order), kept within the lines
  // there are.
  int TopLine() const;
  void SetTopLine(int line);
  // The node on the top line; null for an empty tree.
  TreeNode* FirstVisible() const;
  // Opens every node above the node and scrolls it into the view.
  void EnsureVisible(TreeNode& node);
  // The node at a point of the view; null when no node is there.
  TreeNode* HitTest(float x, float y) const;
  // The vertical middle of a node's line in the view's coordinates (negative above the view).
  float LineY(const TreeNode& node) const;

  // Opens a label edit of the selected node; the next "type" gesture ends it.
  void StartLabelEdit();
  TreeNode* EditedNode() const { return edited_.lock().get(); }

  // The control's drag: begin (with DragIcon as its image), end, or cancel.
  enum class DragAction { Cancel = 0, Begin = 1, End = 2 };
  void Drag(DragAction action) { dragging_ = action == DragAction::Begin; }
  bool Dragging() const { return dragging_; }

  // Events, raised by gestures; the owning class wires them.
  std::function<void(TreeNode& node)> NodeClick;
  std::function<void(TreeNode& node, std::string& new_text, bool& cancel)> AfterLabelEdit;
  std::function<void(int& key_code, int shift)> KeyDown;
  std::function<void()> DblClick;
  std::function<void(int button, int shift, float x, float y)> MouseDown;
  std::function<void(int button, int shift, float x, float y)> MouseMove;
  std::function<void(float x, float y, int state)> DragOver;
  std::function<void(float x, float y)> DragDrop;

  std::string Apply(const Gesture& gesture) override;

  // The lines of the state, counted from the top line.
  static constexpr int kStateLines = 200;

 protected:
  // The node count, the view (top line, visible lines, shown lines) and at most kStateLines
  // shown nodes from the top line, each with id, key, text, depth, children, expanded and
  // selected.
  void WriteOwnState(nlohmann::json& out) const override;

 private:
  // The node a gesture names by key or "#Index"; null when none.
  TreeNode* FindNode(const std::string& id) const;
  std::string NoNode(const std::string& id) const;
  // A point on the node's line, or just below the last shown line for null.
  float PointerY(TreeNode* node) const;
  void Click(TreeNode& node);
  std::string EditLabel(const Gesture& gesture);
  std::string PressKey(const Gesture& gesture);
  std::string PressMouse(const Gesture& gesture);
  // Starts the drag of `dragged` as a person does when none runs: the left button down over
  // it and a move.
  void StartDrag(TreeNode& dragged);
  std::string DragOverLine(const Gesture& gesture);
  std::string Drop(const Gesture& gesture);

  std::weak_ptr<TreeNode> selected_;
  std::weak_ptr<TreeNode> drop_highlight_;
  std::weak_ptr<TreeNode> edited_;
  int top_line_ = 0;
  bool dragging_ = false;
};

// How a gesture and the state name a node: its key, or "#" and its Index when it has none.
std::string TreeNodeId(const TreeNode& node);

}  // namespace kvhost
