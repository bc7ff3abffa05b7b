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
  EXPECT_EQ(root->Image + root->SelectedImage + root->ExpandedImage, "leafopenopen");
  TreeNodeAdd own;
  own.image = "own";
  own.selected = true;
  EXPECT_EQ(tree.NodeAdd("ROOT", R::Child, "KA", "A 一", own)->Image, "own");
  EXPECT_EQ(SelectedKey(), "KA");
  EXPECT_EQ(events, "");  // selecting while adding raises nothing
  EXPECT_THROW(tree.NodeAdd("KZ", R::Child, "KB", "B"), VbError);
}

TEST_F(TreeViewTest, FindAsksForAnEmptyTextAndMatchesAsciiLettersWithoutRegardToCase) {
  Row("a01", "Alpha 大厦", 1);
  Row("B02", "bravo 花园", 2);
  Row("Ｃ03", "全角", 3);
  TreeNode* found = nullptr;
  std::string text;
  ui.inputs.push_back(std::nullopt);  // a cancelled box changes nothing
  EXPECT_FALSE(tree.NodeFind(found, text, "", /*select=*/true));
  ASSERT_EQ(ui.shown.size(), 1u);
  EXPECT_EQ(ui.shown[0].prompt, "输入要查找的节点名称:");
  EXPECT_EQ(ui.shown[0].title, "查找记录");
  EXPECT_EQ(SelectedKey() + events, "-");
  ui.inputs.push_back("LPHA");
  EXPECT_TRUE(tree.NodeFind(found, text, "", /*select=*/true));
  EXPECT_EQ(text, "LPHA");  // the answer is kept for the next find
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

TEST_F(TreeViewTest, DeleteSelectsTheNextSiblingOrTheSelectedBranchsChild) {
  Row("01", "一", 1);
  Row("01A", "一甲", 2, "K01");
  Row("02", "二", 3);
  Row("03", "三", 4);
  tree.ReSelectItem(Node("K02"));
  events.clear();
  EXPECT_TRUE(tree.NodeDelete(Node("K02"), /*ask=*/false));
  EXPECT_EQ(events, "Selected:K03 ");
  events.clear();
  EXPECT_TRUE(tree.NodeDelete(Node("K03"), /*ask=*/false));  // the last node
  EXPECT_EQ(SelectedKey() + events, "-");
  EXPECT_EQ(Texts(Node("ROOT")), "01 一");
  // The selection in another branch moves to that branch's child.
  TreeNode* other = Row("04", "四", 5);
  tree.ReSelectItem(Node("K01"));
  events.clear();
  EXPECT_TRUE(tree.NodeDelete(other, /*ask=*/false));
  EXPECT_EQ(events, "Selected:K01A ");
  // The selected node's first child is the node that goes: the selection stays.
  tree.ReSelectItem(Node("ROOT"));
  events.clear();
  EXPECT_TRUE(tree.NodeDelete(Node("K01"), /*ask=*/false));
  EXPECT_EQ(SelectedKey() + events, "ROOT");
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

TEST_F(TreeViewTest, ClickReselectClearAndUnhook) {
  Row("01", "一号楼", 1);
  Row("0101", "一单元", 2, "K01");
  tree.CollapseAll();
  EXPECT_FALSE(Node("ROOT")->Expanded || Node("K01")->Expanded);
  EXPECT_TRUE(tv.Redraw);  // drawing is on again
  EXPECT_EQ(tv.Apply(Act("select", "K01")), "");
  tree.ReSelectItem();
  EXPECT_EQ(events, "Selected:K01 Selected:K01 ");
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

// Expand, move, copy, rename, find by tag, drag and the context menu: no built screen uses
// them yet.
TEST_F(TreeViewTest, TheFeaturesNoScreenUsesYet) {
  Row("01", "一", 1);
  Row("01A", "一甲", 2, "K01");
  Row("01B", "一乙", 3, "K01");
  Row("01A1", "一甲一", 4, "K01A");
  Row("02", "二", 5);
  tree.CollapseAll();
  tree.ExpandChildNodes(*Node("K01"));  // the branch's nodes with children, not the leaves
  EXPECT_EQ(std::to_string(Node("ROOT")->Expanded) + std::to_string(Node("K01A")->Expanded) +
                std::to_string(Node("K01A1")->Expanded),
            "010");
  EXPECT_EQ(tree.ParentNodeText(Node("K01A1")), "01A 一甲");
  TreeNode* found = nullptr;
  std::string key;
  EXPECT_TRUE(tree.NodeFindTag(found, "5", key));
  EXPECT_EQ(key, "K02");

  std::string copied;
  tree.NodeCopied = [&](TreeNode& copy, TreeNode& source) {
    copied += source.Key() + "->" + copy.Parent()->Text + " ";
    tree.CancelCopy = source.Key() == "K01B";
  };
  EXPECT_TRUE(tree.NodeCopy(Node("K01"), Node("K02"), /*with_children=*/true));
  EXPECT_EQ(copied, "K01->02 二 K01A->01 一 K01A1->01A 一甲 K01B->01 一 ");
  EXPECT_EQ(Texts(Node("K02")->Child()), "01A 一甲");  // the cancelled child is not there
  tree.NodeCopied = nullptr;
  EXPECT_FALSE(tree.NodeCopy(Node("K01"), Node("K01A"), /*with_children=*/true));  // into itself

  // A moved node first hands its children to its parent.
  EXPECT_TRUE(tree.NodeMove(Node("K01"), Node("K01A"), /*select=*/true));
  EXPECT_EQ(Texts(Node("K01A")), "01A1 一甲一|01 一");
  EXPECT_FALSE(tree.NodeRename(Node("K01"), "", /*select=*/true));

  std::string drag;
  tree.DragDropped = [&](TreeNode& target, TreeNode& dragged) {
    drag += target.Key() + "<" + dragged.Key();
  };
  EXPECT_EQ(tv.Apply(Act("drop", "K02", "K01B")), "");
  EXPECT_EQ(drag, "");  // DragEnabled is off
  tree.DragEnabled = true;
  EXPECT_EQ(tv.Apply(Act("drop", "K02", "K01B")), "");
  EXPECT_EQ(drag, "K01B<K02");

  std::string menu;
  tree.ContextMenu = [&](TreeNode* n, float&, float&) { menu += (n ? n->Key() : "-") + " "; };
  events.clear();
  EXPECT_EQ(tv.Apply(Act("mousedown", "K02", "right")), "");  // mode 0 selects first
  tree.ContextMenuMode = 1;
  EXPECT_EQ(tv.Apply(Act("mousedown", "", "right")), "");
  EXPECT_EQ(menu + events, "K02 - Selected:K02 ");
}

}  // namespace
}  // namespace mrvk
