// The tree wrapper cTreeView and the procedures mTreeView. A tree sheet hooks its tree control
// to a cTreeView and works the tree through it: adding nodes with their images, moving the
// selection like a record navigator, finding by text, copying, moving and dragging nodes. The
// wrapper raises its events to the owner, which wires them as `tree_<event>` handlers.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "kvhost/lib/control_list.h"
#include "kvhost/lib/tree_view_control.h"
#include "mrvk/frame/variant.h"

namespace mrvk {

// The procedures on a node's look that the tree keeps for its control.
namespace mTreeView {
// The cut look of a node: 1 when it shows, else 0.
int16_t CutIconState(const kvhost::TreeNode& node);
// Any state but 0 shows the cut look.
void SetCutIconState(kvhost::TreeNode& node, int16_t state);
}  // namespace mTreeView

// The directions of ScrollView. A page is the number of visible lines less one.
namespace scroll_view {
inline constexpr int kFirstNode = 0;
inline constexpr int kPageUp = 1;
inline constexpr int kLineUp = 2;
inline constexpr int kLineDown = 3;
inline constexpr int kPageDown = 4;
inline constexpr int kLastNode = 5;
}  // namespace scroll_view

// The arguments of NodeAdd after key and text, in their order. A missing image falls back to
// the tree's default image of its kind when the image list has any.
struct TreeNodeAdd {
  std::string image;
  std::string selected_image;
  std::string expanded_image;
  Variant tag;
  bool bold = false;
  bool checked = false;
  bool ensure_visible = false;
  bool expanded = false;
  bool selected = false;
};

class cTreeView {
 public:
  using TreeNode = kvhost::TreeNode;

  cTreeView() = default;
  // Unhooks the control: declare the wrapper after its control, so that it goes first.
  ~cTreeView();
  cTreeView(const cTreeView&) = delete;
  cTreeView& operator=(const cTreeView&) = delete;

  // ---- Events, in their order (ids 1 to 6) ----
  // A left-button move over a node with DragEnabled on.
  std::function<void(TreeNode& dragged)> DragStarted;
  // During a drag, with the pointer in the middle of the view over a node.
  std::function<void(TreeNode& target, TreeNode& dragged)> DragOver;
  // A drop on a node other than the dragged one.
  std::function<void(TreeNode& target, TreeNode& dragged)> DragDropped;
  // The right button; node is the one under the pointer (null for none).
  std::function<void(TreeNode* node, float& x, float& y)> ContextMenu;
  // The selection changed; null when nothing is selected.
  std::function<void(TreeNode* node)> Selected;
  // During NodeCopy: the copy has been made; the handler may set CancelCopy.
  std::function<void(TreeNode& new_node, TreeNode& source)> NodeCopied;

  // ---- Members ----
  bool DragEnabled = false;
  // 0: a right click selects the node under the pointer before ContextMenu.
  int32_t ContextMenuMode = 0;
  // Set by a NodeCopied handler: the copy just made is taken back and its children are not
  // copied.
  bool CancelCopy = false;

  // ---- Operations, in their order ----
  // Adds a node under, before or after `relative` (null or "": a root); see
  // kvhost::TreeNodes::Add. With `selected` the node is selected (no event); with `selected`
  // or `ensure_visible` it comes into view. Null when no control is hooked.
  TreeNode* NodeAdd(TreeNode* relative, kvhost::TreeRelationship relationship,
                    const std::string& key, const std::string& text,
                    const TreeNodeAdd& options = {});
  TreeNode* NodeAdd(const std::string& relative_key, kvhost::TreeRelationship relationship,
                    const std::string& key, const std::string& text,
                    const TreeNodeAdd& options = {});
  // Removes all nodes, with drawing off.
  void ClearTreeView();
  // Switches drawing of the control on or off.
  void Redraw(bool on);
  void CollapseAll();
  void ExpandAll();
  // The node and everything below it.
  void CollapseChildNodes(TreeNode& node);
  void ExpandChildNodes(TreeNode& node);
  kvhost::TreeView* ctrl() const { return ctrl_; }
  // The cut look of the selected node (0 without a selection).
  int16_t CutIconState() const;
  void SetCutIconState(int16_t state);
  // Takes the control: sets its image list and, when the list has the image "DRAGICON", its
  // drag icon; measures the line height; takes over its NodeClick, MouseDown, MouseMove,
  // DragOver and DragDrop events. `screen` is where a find puts the input focus (optional).
  void HookCtrl(kvhost::TreeView& control, std::vector<std::string> image_list,
                kvhost::ControlList* screen = nullptr);
  // Drops the control, releasing its events.
  void UnHookCtrl();
  // The parent's text; "" for a root or no node.
  std::string ParentNodeText(const TreeNode* node) const;
  // Whether node lies below parent (walking up from node).
  bool IsChildNode(const TreeNode* node, const TreeNode* parent) const;
  // Whether child lies below node (walking down through node's children).
  bool IsParentNode(const TreeNode* node, const TreeNode* child) const;
  bool IsRootNode(const TreeNode* node) const;
  // Copies source as the last child of target and raises NodeCopied; with_children then
  // copies the children the same way unless the handler set CancelCopy. False when nothing
  // was copied: no control, a cancelled copy, or a copy with children into source's own
  // branch.
  bool NodeCopy(TreeNode* source, TreeNode* target, bool with_children);
  // Selects the next node first (next sibling, else the first child of the selected node,
  // else the selection stays), raising Selected when the selection changed, then removes the
  // node. With `ask` a yes-no question comes first and only yes deletes.
  bool NodeDelete(TreeNode* node, bool ask);
  // Finds the first node whose text holds `text`, case of letters aside. An empty text is
  // asked for by an input box that starts with start_text; the answer is left in text, and
  // a cancelled or empty answer ends the find with false. With `select` a hit is selected,
  // made visible, raises Selected and takes the focus.
  bool NodeFind(TreeNode*& node, std::string& text, const std::string& start_text, bool select);
  // As NodeFind, accepting only a node after the node of Index from_index, or, when no node
  // has that index, after the last hit. It stops at the end of the tree (false) and does not
  // ask for an empty text.
  bool NodeFindNext(TreeNode*& node, const std::string& text, int from_index, bool select);
  // The first node whose Tag equals tag, case of letters aside, and its key.
  bool NodeFindTag(TreeNode*& node, const std::string& tag, std::string& key) const;
  // Makes node the last child of new_parent, which is opened; with `select` the node is
  // selected (no event). Nothing when both are one. When new_parent lies below the node, a
  // root is not moved at all and any other node first hands its children to its own parent.
  bool NodeMove(TreeNode* node, TreeNode* new_parent, bool select);
  // A non-empty text replaces the node's text; a node that is not a root is selected when
  // asked.
  bool NodeRename(TreeNode* node, const std::string& text, bool select);
  // Scrolls the view (scroll_view::...); the selection stays.
  void ScrollView(int code);
  TreeNode* NodeFirstViewable() const;
  // A node is selected and it is not a root.
  bool IsSelected() const;
  TreeNode* NodeLastViewable() const;
  // Selection to the next sibling, else the first child, else it stays.
  void MoveNodeNext();
  // Selection to the previous sibling, else the parent, else it stays.
  void MoveNodePrevious();
  // Selects the node (the selected one when null), brings it into view and raises Selected
  // for it.
  void ReSelectItem(TreeNode* node = nullptr);

  // The height of one line, measured at HookCtrl.
  float LineHeight() const { return line_height_; }

 private:
  // Sets the properties NodeAdd gives a new node.
  TreeNode& Decorate(TreeNode& node, const TreeNodeAdd& options);
  void RaiseSelected(TreeNode* node);
  bool FindAfter(const TreeNode* after, TreeNode*& node, const std::string& text, bool select);
  TreeNode* CopyBelow(TreeNode& source, TreeNode& target, bool with_children);
  void ExpandBranch(TreeNode& node, bool expanded);
  void OnNodeClick(TreeNode& node);
  void OnMouseDown(int button, float x, float y);
  void OnMouseMove(int button, float x, float y);
  void OnDragOver(float x, float y);
  void OnDragDrop(float x, float y);
  // The image list's images but the drag icon: the defaults of image, selected and expanded
  // image in this order.
  std::vector<std::string> DefaultImages() const;

  kvhost::TreeView* ctrl_ = nullptr;
  kvhost::ControlList* screen_ = nullptr;
  std::weak_ptr<TreeNode> found_;
  std::weak_ptr<TreeNode> dragged_;
  float line_height_ = 0;
};

}  // namespace mrvk
