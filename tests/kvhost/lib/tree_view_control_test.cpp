#include "kvhost/lib/tree_view_control.h"

#include <gtest/gtest.h>

#include <nlohmann/json.hpp>

#include "mrvk/frame/vb.h"

namespace kvhost {
namespace {

using R = TreeRelationship;

// The texts of nodes in tree order, joined by blanks.
std::string Order(const TreeView& tv, bool only_shown) {
  std::string out;
  for (const TreeNode* n : tv.Nodes.InTreeOrder(only_shown))
    out += (out.empty() ? "" : " ") + n->Text;
  return out;
}

Gesture Act(const std::string& kind, const std::string& key, const std::string& text = "",
            int row = -1) {
  return {.kind = kind, .text = text, .row = row, .key = key};
}

TEST(TreeNodes, RelationshipsPlaceNodesAndIndexFollowsRemoval) {
  TreeView tv("TV");
  TreeNode& a = tv.Nodes.Add(nullptr, R::Last, "A", "a");
  tv.Nodes.Add(&a, R::Child, "A2", "a2");
  tv.Nodes.Add(&a, R::Child, "A3", "a3");
  tv.Nodes.Add("A2", R::Previous, "A1", "a1");
  tv.Nodes.Add("A3", R::First, "A0", "a0");
  tv.Nodes.Add("A", R::Next, "B", "b");
  tv.Nodes.Add("B", R::Previous, "AB", "ab");
  EXPECT_EQ(Order(tv, /*only_shown=*/false), "a a0 a1 a2 a3 ab b");
  EXPECT_EQ(Order(tv, /*only_shown=*/true), "a ab b");

  TreeNode* a3 = tv.Nodes.Item("A3");
  EXPECT_EQ(a3->FullPath(), "a\\a3");
  EXPECT_EQ(a3->Root(), &a);
  EXPECT_EQ(a3->FirstSibling()->Key(), "A0");
  EXPECT_EQ(a3->Previous()->Key(), "A2");
  EXPECT_EQ(a3->Next(), nullptr);
  EXPECT_EQ(a.Next()->Key(), "AB");

  // A taken key is the control's failure and adds nothing.
  try {
    tv.Nodes.Add(&a, R::Child, "A1", "again");
    ADD_FAILURE() << "a second node with key A1 was added";
  } catch (const mrvk::VbError& e) {
    EXPECT_EQ(e.Number(), 35602);
  }
  EXPECT_THROW(tv.Nodes.Add("NONE", R::Child, "X", "x"), mrvk::VbError);
  EXPECT_EQ(tv.Nodes.Count(), 7);

  // Removing a branch frees its keys and renumbers the rest in the order of adding.
  tv.SetSelectedItem(tv.Nodes.Item("A1"));
  tv.Nodes.Remove(a);
  EXPECT_EQ(tv.SelectedItem(), nullptr);
  EXPECT_EQ(tv.Nodes.Count(), 2);
  EXPECT_EQ(tv.Nodes.Item("A1"), nullptr);
  EXPECT_EQ(tv.Nodes.Item(1)->Key(), "B");
  EXPECT_EQ(tv.Nodes.Item("AB")->Index(), 2);
  EXPECT_EQ(tv.Nodes.Add(nullptr, R::Last, "A1", "reused").Index(), 3);
}

class TreeViewGestures : public testing::Test {
 protected:
  void SetUp() override {
    tv.Height = 5 * tv.ItemHeight;  // five lines
    TreeNode& root = tv.Nodes.Add(nullptr, R::Last, "ROOT", "全部");
    for (int i = 1; i <= 12; ++i) {
      std::string code = (i < 10 ? "0" : "") + std::to_string(i);
      tv.Nodes.Add(&root, R::Child, "K" + code, code);
    }
    tv.NodeClick = [this](TreeNode& n) { events += "click:" + n.Key() + " "; };
    tv.DblClick = [this] { events += "dblclick "; };
  }
  TreeView tv{"TV"};
  std::string events;
};

TEST_F(TreeViewGestures, SelectBringsTheNodeIntoViewAndRaisesNodeClick) {
  EXPECT_EQ(tv.Apply(Act("select", "K09")), "");
  EXPECT_EQ(events, "click:K09 ");
  EXPECT_EQ(tv.SelectedItem()->Key(), "K09");
  EXPECT_TRUE(tv.Nodes.Item("ROOT")->Expanded);
  // Line 9 of the shown lines is the last of a view of five lines starting at line 5.
  EXPECT_EQ(tv.TopLine(), 5);
  EXPECT_EQ(tv.FirstVisible()->Key(), "K05");
  EXPECT_EQ(tv.HitTest(0, 4.5f * tv.ItemHeight), tv.SelectedItem());
  EXPECT_EQ(tv.HitTest(0, 5.5f * tv.ItemHeight), nullptr);  // below the view

  EXPECT_EQ(tv.Apply(Act("select", "K99")), "TV has no node \"K99\"");
  EXPECT_EQ(tv.Apply(Act("dblclick", "ROOT")), "");
  EXPECT_EQ(events, "click:K09 click:ROOT dblclick ");
  EXPECT_FALSE(tv.Nodes.Item("ROOT")->Expanded);
  EXPECT_EQ(tv.TopLine(), 0);  // one line is left to show
}

TEST_F(TreeViewGestures, ADisabledTreeRefusesEveryGestureAndChangesNothing) {
  tv.SetSelectedItem(tv.Nodes.Item("K02"));
  tv.Enabled = false;
  for (const Gesture& g : {Act("select", "K03"), Act("dblclick", "K03"), Act("toggle", "ROOT"),
                           Act("type", "K02", "new"), Act("keydown", "", "", key_code::kDown),
                           Act("drop", "K02", "K03"), Act("scroll", "", "", 4)}) {
    EXPECT_EQ(tv.Apply(g), "TV is disabled") << g.kind;
  }
  EXPECT_EQ(events, "");
  EXPECT_EQ(tv.SelectedItem()->Key(), "K02");
  EXPECT_EQ(tv.SelectedItem()->Text, "02");
  EXPECT_TRUE(tv.Nodes.Item("ROOT")->Expanded);
  EXPECT_EQ(tv.TopLine(), 0);
}

TEST_F(TreeViewGestures, TypeEndsALabelEditThatTheHandlerMayCancel) {
  tv.AfterLabelEdit = [](TreeNode& n, std::string& text, bool& cancel) {
    cancel = text.empty();
    if (n.Key() == "K01") text += "!";
  };
  EXPECT_EQ(tv.Apply(Act("type", "K01", "一号")), "");
  EXPECT_EQ(tv.Nodes.Item("K01")->Text, "一号!");
  EXPECT_EQ(tv.Apply(Act("type", "K02", "")), "");
  EXPECT_EQ(tv.Nodes.Item("K02")->Text, "02");

  // Manual editing: only an edit the program opened takes the text, on its own node.
  tv.LabelEdit = label_edit::kManual;
  EXPECT_EQ(tv.Apply(Act("type", "K03", "x")), "TV has no label edit open");
  tv.SetSelectedItem(tv.Nodes.Item("K04"));
  tv.StartLabelEdit();
  EXPECT_EQ(tv.Apply(Act("type", "K03", "四")), "");
  EXPECT_EQ(tv.Nodes.Item("K03")->Text, "03");
  EXPECT_EQ(tv.Nodes.Item("K04")->Text, "四");
  EXPECT_EQ(tv.EditedNode(), nullptr);
}

TEST_F(TreeViewGestures, ArrowKeysMoveTheSelectionUnlessKeyDownSwallowsThem) {
  tv.SetSelectedItem(tv.Nodes.Item("K12"));
  EXPECT_EQ(tv.Apply(Act("keydown", "", "", key_code::kDown)), "");  // the last line
  EXPECT_EQ(tv.Apply(Act("keydown", "", "", key_code::kUp)), "");
  EXPECT_EQ(events, "click:K11 ");
  tv.KeyDown = [](int& code, int) { code = 0; };
  EXPECT_EQ(tv.Apply(Act("keydown", "", "", key_code::kUp)), "");
  EXPECT_EQ(tv.SelectedItem()->Key(), "K11");
  EXPECT_EQ(tv.Apply(Act("keydown", "", "")), "TV: keydown needs the key code in row");
}

TEST_F(TreeViewGestures, DropRaisesTheDragEventsOnlyOnceTheOwnerBeganADrag) {
  std::vector<TreeNode*> dropped_on;
  tv.DragDrop = [&](float x, float y) { dropped_on.push_back(tv.HitTest(x, y)); };
  EXPECT_EQ(tv.Apply(Act("drop", "K01", "K12")), "");
  EXPECT_TRUE(dropped_on.empty());

  tv.MouseMove = [&](int button, int, float, float) {
    if (button == mouse_button::kLeft) tv.Drag(TreeView::DragAction::Begin);
  };
  // The target lies below the view: the drop still lands on it.
  EXPECT_EQ(tv.Apply(Act("drop", "K01", "K12")), "");
  ASSERT_EQ(dropped_on.size(), 1u);
  EXPECT_EQ(dropped_on[0], tv.Nodes.Item("K12"));
  EXPECT_FALSE(tv.Dragging());
  EXPECT_EQ(tv.Apply(Act("drop", "K01", "")), "");  // below the last node
  EXPECT_EQ(dropped_on.back(), nullptr);
  EXPECT_EQ(tv.Apply(Act("drop", "K01", "K77")), "TV has no node \"K77\"");
  EXPECT_EQ(tv.Apply(Act("drag_over", "K01", "", 5)), "TV: line 5 is outside the view");
}

TEST(TreeViewState, WritesTheShownLinesFromTheTopLineAndTheTotals) {
  TreeView tv("TV");
  TreeNode& root = tv.Nodes.Add(nullptr, R::Last, "ROOT", "全部");
  root.Expanded = true;
  for (int i = 0; i < TreeView::kStateLines + 50; ++i)
    tv.Nodes.Add(&root, R::Child, "K" + std::to_string(i), "n" + std::to_string(i));
  TreeNode& hidden = tv.Nodes.Add("K0", R::Child, "", "below a closed node");
  tv.Nodes.Add(&root, R::Child, "", "keyless");
  tv.SetTopLine(10);
  tv.SetSelectedItem(tv.Nodes.Item("K12"));

  nlohmann::json state;
  tv.WriteState(state);
  EXPECT_EQ(state["type"], "TreeView");
  EXPECT_EQ(state["node_count"], TreeView::kStateLines + 53);
  EXPECT_EQ(state["shown_count"], TreeView::kStateLines + 52);
  EXPECT_EQ(state["top_line"], 10);
  EXPECT_EQ(state["selected"], "K12");
  ASSERT_EQ(state["nodes"].size(), static_cast<size_t>(TreeView::kStateLines));
  const auto& first = state["nodes"][0];
  EXPECT_EQ(first["key"], "K9");
  EXPECT_EQ(first["depth"], 1);
  EXPECT_EQ(first["children"], 0);
  EXPECT_EQ(state["nodes"][3]["selected"], true);
  EXPECT_EQ(hidden.Index(), TreeView::kStateLines + 52);

  // A node without a key is named by its Index.
  TreeNode* keyless = tv.Nodes.Item(TreeView::kStateLines + 53);
  const std::string id = TreeNodeId(*keyless);
  EXPECT_EQ(id, "#" + std::to_string(TreeView::kStateLines + 53));
  EXPECT_EQ(tv.Apply(Act("select", id)), "");
  EXPECT_EQ(tv.SelectedItem(), keyless);
  tv.WriteState(state);
  EXPECT_EQ(state["nodes"].back()["id"], id);
  EXPECT_EQ(state["nodes"].back()["selected"], true);
}

}  // namespace
}  // namespace kvhost
