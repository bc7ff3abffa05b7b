#include "mrvk/frame/tree_view.h"

#include <gtest/gtest.h>

#include "kvhost/host.h"
#include "mrvk/frame/vb.h"

namespace mrvk {
namespace {

using kvhost::Gesture;
using kvhost::TreeNode;
using R = kvhost::TreeRelationship;

Gesture Act(const std::string& kind, const std::string& key, const std::string& text = "",
            int row = -1) {
  Gesture g;
  g.kind = kind;
  g.key = key;
  g.text = text;
  g.row = row;
  return g;
}

// A sheet's tree: the root "ROOT" and rows keyed "K" + code, as the master sheets build it.
class TreeViewTest : public testing::Test {
 protected:
  void SetUp() override {
    SetCurrentUiPort(&ui);
    tv.Height = 10 * tv.ItemHeight;  // ten lines
    tree.HookCtrl(tv, {"DRAGICON", "leaf", "open"}, &screen);
    screen.Add(tv);
    tree.Selected = [this](TreeNode* n) { events += "Selected:" + (n ? n->Key() : "-") + " "; };
    TreeNodeAdd open;
    open.expanded = true;
    tree.NodeAdd(nullptr, R::Last, "ROOT", "全部楼宇", open);
  }
  void TearDown() override { SetCurrentUiPort(nullptr); }

  TreeNode* Row(const std::string& code, const std::string& name, int id,
                const std::string& under = "ROOT") {
    return tree.NodeAdd(under, R::Child, "K" + code, code + " " + name, Tagged(Variant(id)));
  }
  static TreeNodeAdd Tagged(Variant tag) {
    TreeNodeAdd options;
    options.tag = std::move(tag);
    return options;
  }
  TreeNode* Node(const std::string& key) const { return tv.Nodes.Item(key); }
  std::string SelectedKey() const { return tv.SelectedItem() ? tv.SelectedItem()->Key() : "-"; }
  std::string Texts(const TreeNode* parent) const {
    std::string out;
    for (const TreeNode* n : parent->ChildNodes()) out += (out.empty() ? "" : "|") + n->Text;
    return out;
  }

  kvhost::ScriptedUi ui;
  kvhost::ControlList screen;
  kvhost::TreeView tv{"TV"};
  cTreeView tree;
  std::string events;
};

TEST_F(TreeViewTest, HookMeasuresTheLineHeightAndNodeAddFillsInTheImages) {
  EXPECT_FLOAT_EQ(tree.LineHeight(), static_cast<float>(tv.ItemHeight));
  EXPECT_EQ(tv.DragIcon, "DRAGICON");
  TreeNode* root = Node("ROOT");
  EXPECT_EQ(root->Image, "leaf");
  EXPECT_EQ(root->SelectedImage, "open");
  EXPECT_EQ(root->ExpandedImage, "open");
  TreeNodeAdd own;
  own.image = "own";
  own.selected = true;
  TreeNode* row = tree.NodeAdd("ROOT", R::Child, "KA", "A 一", own);
  EXPECT_EQ(row->Image, "own");
  EXPECT_EQ(SelectedKey(), "KA");
  EXPECT_EQ(events, "");  // selecting while adding raises nothing
  EXPECT_THROW(tree.NodeAdd("KZ", R::Child, "KB", "B"), VbError);
}

TEST_F(TreeViewTest, FindMatchesSubstringsWithoutRegardToAsciiCaseOnly) {
  Row("a01", "Alpha 大厦", 1);
  Row("B02", "bravo 花园", 2);
  Row("Ｃ03", "全角", 3);
  TreeNode* found = nullptr;
  std::string text = "LPHA";
  EXPECT_TRUE(tree.NodeFind(found, text, "", /*select=*/true));
  EXPECT_EQ(found, Node("Ka01"));
  EXPECT_EQ(events, "Selected:Ka01 ");
  EXPECT_EQ(screen.Focused(), &tv);
  text = "花园";
  EXPECT_TRUE(tree.NodeFind(found, text, "", /*select=*/false));
  EXPECT_EQ(found, Node("KB02"));
  EXPECT_EQ(SelectedKey(), "Ka01");  // without the select flag the selection stays
  text = "ｃ";                       // full-width letters have no case here
  EXPECT_FALSE(tree.NodeFind(found, text, "", /*select=*/true));
  EXPECT_EQ(found, nullptr);
  EXPECT_EQ(SelectedKey(), "Ka01");
}

TEST_F(TreeViewTest, FindAsksForAnEmptyTextAndACancelledBoxChangesNothing) {
  Row("01", "东楼", 1);
  tree.ReSelectItem(Node("ROOT"));
  events.clear();
  ui.inputs.push_back(std::nullopt);
  TreeNode* found = nullptr;
  std::string text;
  EXPECT_FALSE(tree.NodeFind(found, text, "东", /*select=*/true));
  ASSERT_EQ(ui.shown.size(), 1u);
  EXPECT_EQ(ui.shown[0].prompt, "输入要查找的节点名称:");
  EXPECT_EQ(ui.shown[0].title, "查找记录");
  EXPECT_EQ(text, "");
  EXPECT_EQ(SelectedKey(), "ROOT");
  EXPECT_EQ(events, "");

  ui.inputs.push_back("东楼");
  EXPECT_TRUE(tree.NodeFind(found, text, "", /*select=*/true));
  EXPECT_EQ(text, "东楼");  // the answer is kept for the next find
  EXPECT_EQ(SelectedKey(), "K01");
}

TEST_F(TreeViewTest, FindNextGoesOnAfterTheStartAndStopsAtTheEnd) {
  TreeNode* east = Row("01", "东楼", 1);
  Row("01A", "东楼一单元", 2, "K01");  // a child comes before the next sibling
  Row("02", "西楼", 3);
  Row("03", "东楼二", 4);
  TreeNode* found = nullptr;
  EXPECT_TRUE(tree.NodeFindNext(found, "东楼", east->Index(), /*select=*/true));
  EXPECT_EQ(found, Node("K01A"));
  EXPECT_TRUE(tree.NodeFindNext(found, "东楼", tv.SelectedItem()->Index(), /*select=*/true));
  EXPECT_EQ(found, Node("K03"));
  events.clear();
  EXPECT_FALSE(tree.NodeFindNext(found, "东楼", tv.SelectedItem()->Index(), /*select=*/true));
  EXPECT_EQ(SelectedKey(), "K03");
  EXPECT_EQ(events, "");
  // Without a start index it goes on after the last hit; an empty text finds nothing.
  std::string text = "楼";
  EXPECT_TRUE(tree.NodeFind(found, text, "", /*select=*/false));
  EXPECT_EQ(found, Node("ROOT"));
  EXPECT_TRUE(tree.NodeFindNext(found, "楼", 0, /*select=*/false));
  EXPECT_EQ(found, Node("K01"));
  EXPECT_FALSE(tree.NodeFindNext(found, "", 0, /*select=*/false));
  EXPECT_TRUE(ui.shown.empty());
}

TEST_F(TreeViewTest, FindTagComparesTheTagAsUpperCasedText) {
  Row("01", "东楼", 7);
  tree.NodeAdd("ROOT", R::Child, "KX", "X", Tagged(Variant("ab-1")));
  TreeNode* found = nullptr;
  std::string key;
  EXPECT_TRUE(tree.NodeFindTag(found, "7", key));
  EXPECT_EQ(key, "K01");
  EXPECT_TRUE(tree.NodeFindTag(found, "AB-1", key));
  EXPECT_EQ(found, Node("KX"));
  EXPECT_FALSE(tree.NodeFindTag(found, "8", key));
  EXPECT_EQ(found, nullptr);
  EXPECT_EQ(key, "");
}

TEST_F(TreeViewTest, DeleteSelectsTheNextSiblingOrLeavesNoSelection) {
  Row("01", "一", 1);
  Row("02", "二", 2);
  Row("03", "三", 3);
  tree.ReSelectItem(Node("K02"));
  events.clear();
  EXPECT_TRUE(tree.NodeDelete(Node("K02"), /*ask=*/false));
  EXPECT_EQ(events, "Selected:K03 ");
  EXPECT_EQ(Node("K02"), nullptr);
  events.clear();
  EXPECT_TRUE(tree.NodeDelete(Node("K03"), /*ask=*/false));  // the last node
  EXPECT_EQ(events, "");
  EXPECT_EQ(SelectedKey(), "-");
  EXPECT_EQ(Texts(Node("ROOT")), "01 一");

  // The selected node's first child is the node that goes: the selection stays.
  tree.ReSelectItem(Node("ROOT"));
  events.clear();
  EXPECT_TRUE(tree.NodeDelete(Node("K01"), /*ask=*/false));
  EXPECT_EQ(SelectedKey(), "ROOT");
  EXPECT_EQ(events, "");
}

TEST_F(TreeViewTest, DeleteWithTheSelectionInAnotherBranchMovesItToThatBranchsChild) {
  Row("01", "一", 1);
  Row("01A", "一甲", 2, "K01");
  TreeNode* second = Row("02", "二", 3);
  tree.ReSelectItem(Node("K01"));
  events.clear();
  EXPECT_TRUE(tree.NodeDelete(second, /*ask=*/false));
  EXPECT_EQ(events, "Selected:K01A ");
}

TEST_F(TreeViewTest, MoveIntoTheNodesOwnBranch) {
  Row("01", "一", 1);
  Row("01A", "一甲", 2, "K01");
  Row("01B", "一乙", 3, "K01");
  Row("01A1", "一甲一", 4, "K01A");
  // A root is never moved below itself.
  EXPECT_FALSE(tree.NodeMove(Node("ROOT"), Node("K01A"), /*select=*/true));
  EXPECT_EQ(Node("ROOT")->Parent(), nullptr);
  EXPECT_FALSE(tree.NodeMove(Node("K01"), Node("K01"), /*select=*/true));
  // Any other node first hands its children to its parent.
  EXPECT_TRUE(tree.NodeMove(Node("K01"), Node("K01A"), /*select=*/true));
  EXPECT_EQ(Texts(Node("ROOT")), "01A 一甲|01B 一乙");
  EXPECT_EQ(Texts(Node("K01A")), "01A1 一甲一|01 一");
  EXPECT_EQ(Node("K01")->Children(), 0);
  EXPECT_TRUE(Node("K01A")->Expanded);
  EXPECT_EQ(SelectedKey(), "K01");
  EXPECT_EQ(events, "");
}

TEST_F(TreeViewTest, CopyRaisesTheEventPerNodeAndACancelledCopyLeavesNoTrace) {
  Row("01", "一", 1);
  Row("01A", "一甲", 2, "K01");
  Row("01B", "一乙", 3, "K01");
  Row("02", "二", 4);
  std::string copied;
  tree.NodeCopied = [&](TreeNode& copy, TreeNode& source) {
    copied += source.Key() + "->" + copy.Parent()->Text + " ";
    tree.CancelCopy = source.Key() == "K01B";
  };
  EXPECT_TRUE(tree.NodeCopy(Node("K01"), Node("K02"), /*with_children=*/true));
  EXPECT_EQ(copied, "K01->02 二 K01A->01 一 K01B->01 一 ");
  TreeNode* copy = Node("K02")->Child();
  EXPECT_EQ(copy->Key(), "");
  EXPECT_EQ(copy->Tag.ToLong(), 1);
  EXPECT_EQ(Texts(copy), "01A 一甲");  // the cancelled child is not there

  const int count = tv.Nodes.Count();
  tree.NodeCopied = [&](TreeNode&, TreeNode&) { tree.CancelCopy = true; };
  EXPECT_FALSE(tree.NodeCopy(Node("K01"), Node("K02"), /*with_children=*/true));
  EXPECT_EQ(tv.Nodes.Count(), count);
  EXPECT_EQ(Node("K02")->Children(), 1);
  // A branch is not copied into itself.
  tree.NodeCopied = nullptr;
  EXPECT_FALSE(tree.NodeCopy(Node("K01"), Node("K01A"), /*with_children=*/true));
  EXPECT_EQ(tv.Nodes.Count(), count);
  EXPECT_TRUE(tree.NodeCopy(Node("K01"), Node("K01A"), /*with_children=*/false));
  EXPECT_EQ(Texts(Node("K01A")), "01 一");
}

TEST_F(TreeViewTest, RenameNeedsATextAndSelectsOnlyBelowTheRoot) {
  Row("01", "一", 1);
  EXPECT_FALSE(tree.NodeRename(Node("K01"), "", /*select=*/true));
  EXPECT_EQ(Node("K01")->Text, "01 一");
  EXPECT_TRUE(tree.NodeRename(Node("ROOT"), "所有楼宇", /*select=*/true));
  EXPECT_EQ(SelectedKey(), "-");
  EXPECT_TRUE(tree.NodeRename(Node("K01"), "01 壹", /*select=*/true));
  EXPECT_EQ(SelectedKey(), "K01");
  EXPECT_EQ(tree.ParentNodeText(Node("K01")), "所有楼宇");
}

TEST_F(TreeViewTest, NextAndPreviousWalkLikeARecordNavigator) {
  Row("01", "一", 1);
  Row("02", "二", 2);
  tree.ReSelectItem(Node("ROOT"));
  EXPECT_FALSE(tree.IsSelected());
  tree.MoveNodeNext();  // no sibling: the first child
  tree.MoveNodeNext();
  EXPECT_TRUE(tree.IsSelected());
  events.clear();
  tree.MoveNodeNext();  // the last leaf stays
  EXPECT_EQ(events, "");
  tree.MoveNodePrevious();
  tree.MoveNodePrevious();  // no sibling before: the parent
  EXPECT_EQ(events, "Selected:K01 Selected:ROOT ");
}

TEST_F(TreeViewTest, ScrollViewMovesTheViewByLinesAndPagesOnly) {
  for (int i = 10; i < 40; ++i) Row(std::to_string(i), "楼", i);  // 31 lines, 10 in view
  tree.ReSelectItem(Node("K12"));
  tree.ScrollView(scroll_view::kPageDown);
  EXPECT_EQ(tree.NodeFirstViewable()->Key(), "K18");  // a page is nine lines
  tree.ScrollView(scroll_view::kLineDown);
  tree.ScrollView(scroll_view::kLineDown);
  tree.ScrollView(scroll_view::kLineUp);
  EXPECT_EQ(tv.TopLine(), 10);
  tree.ScrollView(scroll_view::kLastNode);
  EXPECT_EQ(tree.NodeFirstViewable()->Key(), "K30");
  EXPECT_EQ(tree.NodeLastViewable()->Key(), "K39");
  tree.ScrollView(scroll_view::kPageDown);  // nothing further down
  EXPECT_EQ(tv.TopLine(), 21);
  tree.ScrollView(scroll_view::kPageUp);
  EXPECT_EQ(tv.TopLine(), 12);
  tree.ScrollView(scroll_view::kFirstNode);
  EXPECT_EQ(tree.NodeFirstViewable()->Key(), "ROOT");
  EXPECT_EQ(SelectedKey(), "K12");
  EXPECT_EQ(events, "Selected:K12 ");
}

TEST_F(TreeViewTest, DragOverScrollsAtTheTwoEdgeLinesAndRaisesInTheMiddle) {
  for (int i = 10; i < 40; ++i) Row(std::to_string(i), "楼", i);
  std::string drag;
  tree.DragStarted = [&](TreeNode& n) { drag += "start:" + n.Key() + " "; };
  tree.DragOver = [&](TreeNode& target, TreeNode& dragged) {
    drag += "over:" + target.Key() + "<" + dragged.Key() + " ";
  };
  tree.DragDropped = [&](TreeNode& target, TreeNode& dragged) {
    drag += "drop:" + target.Key() + "<" + dragged.Key() + " ";
  };
  auto act = [&](const std::string& kind, const std::string& key, const std::string& text,
                 int row) { return tv.Apply(Act(kind, key, text, row)); };
  EXPECT_EQ(act("drag_over", "K12", "", 5), "");
  EXPECT_EQ(drag, "");  // DragEnabled is off
  EXPECT_FALSE(tv.Dragging());

  tree.DragEnabled = true;
  EXPECT_EQ(act("drag_over", "K12", "", 5), "");  // the middle of the view: line 5 is K14
  EXPECT_EQ(act("drag_over", "K12", "", 2), "");
  EXPECT_EQ(drag, "start:K12 over:K14<K12 over:K11<K12 ");
  EXPECT_EQ(tv.DropHighlight(), Node("K11"));
  EXPECT_EQ(act("drag_over", "K12", "", 8), "");  // the two lines at the bottom scroll down
  EXPECT_EQ(act("drag_over", "K12", "", 9), "");
  EXPECT_EQ(tv.TopLine(), 2);
  EXPECT_EQ(act("drag_over", "K12", "", 1), "");  // and the two at the top up
  EXPECT_EQ(tv.TopLine(), 1);
  EXPECT_EQ(drag, "start:K12 over:K14<K12 over:K11<K12 ");

  drag.clear();
  EXPECT_EQ(act("drop", "K12", "K12", -1), "");  // on itself: no drop
  EXPECT_EQ(drag, "over:K12<K12 ");
  EXPECT_EQ(tv.DropHighlight(), nullptr);
  EXPECT_FALSE(tv.Dragging());
  // A new drag onto a node below the view: the view scrolls and the drop still hits it.
  drag.clear();
  EXPECT_EQ(act("drop", "K12", "K20", -1), "");
  EXPECT_EQ(drag, "start:K12 drop:K20<K12 ");
  EXPECT_EQ(tv.TopLine(), 3);
}

TEST_F(TreeViewTest, RightClickSelectsBeforeTheMenuOnlyInModeZero) {
  Row("01", "一", 1);
  Row("02", "二", 2);
  std::string menu;
  tree.ContextMenu = [&](TreeNode* n, float&, float&) { menu += (n ? n->Key() : "-") + " "; };
  auto right_click = [&](std::string key) { return tv.Apply(Act("mousedown", key, "right")); };
  EXPECT_EQ(right_click("K02"), "");
  EXPECT_EQ(events, "Selected:K02 ");
  tree.ContextMenuMode = 1;
  EXPECT_EQ(right_click("K01"), "");
  EXPECT_EQ(right_click(""), "");  // below the last node
  EXPECT_EQ(menu, "K02 K01 - ");
  EXPECT_EQ(SelectedKey(), "K02");
  EXPECT_EQ(events, "Selected:K02 ");
}

TEST_F(TreeViewTest, ClickReselectAndUnhook) {
  Row("01", "一", 1);
  EXPECT_EQ(tv.Apply(Act("select", "K01")), "");
  tree.ReSelectItem();
  EXPECT_EQ(events, "Selected:K01 Selected:K01 ");
  tree.SetCutIconState(1);
  EXPECT_EQ(tree.CutIconState(), 1);
  EXPECT_TRUE(Node("K01")->Cut);
  tree.CollapseAll();
  EXPECT_FALSE(Node("ROOT")->Expanded);
  EXPECT_TRUE(tree.IsChildNode(Node("K01"), Node("ROOT")));
  EXPECT_TRUE(tree.IsParentNode(Node("ROOT"), Node("K01")));
  EXPECT_FALSE(tree.IsParentNode(Node("K01"), Node("ROOT")));

  tree.ClearTreeView();
  EXPECT_EQ(tv.Nodes.Count(), 0);
  events.clear();
  tree.ReSelectItem();
  EXPECT_EQ(events, "Selected:- ");

  tree.UnHookCtrl();
  tv.Nodes.Add(nullptr, R::Last, "K9", "9");
  EXPECT_EQ(tv.Apply(Act("select", "K9")), "");
  EXPECT_EQ(events, "Selected:- ");
  EXPECT_EQ(tree.NodeAdd(nullptr, R::Last, "K8", "8"), nullptr);
}

TEST_F(TreeViewTest, ExpandAndCollapseTouchOnlyNodesWithChildrenOfTheBranch) {
  Row("01", "一号楼", 1);
  Row("02", "二号楼", 2);
  Row("0201", "二号楼一单元", 3, "K02");
  Row("020101", "一层", 4, "K0201");
  tree.CollapseAll();
  EXPECT_FALSE(Node("ROOT")->Expanded);
  EXPECT_FALSE(Node("K0201")->Expanded);
  // Down from one node: that node and what lies below it, leaves stay closed.
  tree.ExpandChildNodes(*Node("K02"));
  EXPECT_TRUE(Node("K02")->Expanded);
  EXPECT_TRUE(Node("K0201")->Expanded);
  EXPECT_FALSE(Node("K020101")->Expanded);
  EXPECT_FALSE(Node("ROOT")->Expanded);
  EXPECT_FALSE(Node("K01")->Expanded);
  tree.ExpandAll();
  EXPECT_TRUE(Node("ROOT")->Expanded);
  EXPECT_FALSE(Node("K01")->Expanded);
  tree.CollapseChildNodes(*Node("K02"));
  EXPECT_FALSE(Node("K0201")->Expanded);
  EXPECT_TRUE(Node("ROOT")->Expanded);
  EXPECT_TRUE(tv.Redraw);  // drawing is on again

  EXPECT_TRUE(tree.IsRootNode(Node("ROOT")));
  EXPECT_FALSE(tree.IsRootNode(Node("K0201")));
  EXPECT_EQ(tree.ParentNodeText(Node("K020101")), "0201 二号楼一单元");
  EXPECT_EQ(tree.ParentNodeText(Node("ROOT")), "");
  EXPECT_TRUE(tree.IsChildNode(Node("K020101"), Node("K02")));
  EXPECT_FALSE(tree.IsChildNode(Node("K01"), Node("K02")));
}

}  // namespace
}  // namespace mrvk
