#include "kvhost/lib/search_box.h"

#include <gtest/gtest.h>

#include <nlohmann/json.hpp>

#include "kvhost/lib/vs_flex_grid.h"

namespace kvhost {
namespace {

TEST(SearchBox, BindsToTheGridsColumnsAndRaisesItsEventsForEachGesture) {
  VsFlexGrid grid("Vs");
  grid.SetFormatString("编号   |名称      |面积");
  SearchBox box("SearchBox1");
  box.Text = "kept";
  box.Bind(/*delay=*/500, grid);
  std::string events;
  box.Change = [&] { events += "change(" + box.Text + ")"; };
  box.Clear = [&] { events += "clear(" + box.Text + ")"; };

  EXPECT_EQ(box.Apply({"type", "A'1"}), "");
  EXPECT_EQ(box.Apply({.kind = "toggle", .col = 1}), "");
  EXPECT_EQ(box.Apply({"clear"}), "");
  // Without a text a column's flag changes quietly.
  EXPECT_EQ(box.Apply({.kind = "toggle", .col = 2}), "");
  EXPECT_EQ(events, "change(A'1)change(A'1)clear()");
  EXPECT_TRUE(box.IsSearched(0));
  EXPECT_FALSE(box.IsSearched(1));
  EXPECT_FALSE(box.IsSearched(3));

  nlohmann::json state;
  box.WriteState(state);
  EXPECT_EQ(state["type"], "SearchBox");
  EXPECT_EQ(state["delay"], 500);
  EXPECT_EQ(state["columns"].dump(),
            R"([{"caption":"编号","searched":true},{"caption":"名称","searched":false},)"
            R"({"caption":"面积","searched":false}])");

  // Refused gestures change nothing.
  events.clear();
  EXPECT_EQ(box.Apply({.kind = "toggle", .col = 3}), "SearchBox1 has no column 3");
  EXPECT_EQ(box.Apply({"cell_edit"}), "SearchBox1 (SearchBox) has no gesture \"cell_edit\"");
  box.Enabled = false;
  EXPECT_EQ(box.Apply({"type", "x"}), "SearchBox1 is disabled");
  EXPECT_EQ(box.Text + events, "");

  // The layout walk keeps the text; putting it back raises nothing.
  box.GetStatus("F1");
  EXPECT_EQ(box.SaveStatus() + events, "F1");
}

}  // namespace
}  // namespace kvhost
