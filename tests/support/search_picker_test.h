// The fixture of the searching pickers (housing units, contracts): the host's service of a
// key with its parameter New, the list shown and worked on by a clerk's script, and the
// rows that show. On both engines, as EngineTest.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "kvhost/host_context.h"
#include "kvhost/pickers/module_picker.h"
#include "support/engines.h"

namespace kvtest {

class SearchPickerTest : public EngineTest {
 protected:
  using Rows = std::vector<std::string>;

  // The service of `key` on a host, made for `progID`, with New set as a sheet sets it
  // (nothing for -1).
  static mrvk::IHostPicker& Service(kvhost::Host& h, const char* key, int32_t progID,
                                    int new_mode) {
    mrvk::IHostPicker* p = h.context().Picker(key);
    EXPECT_NE(p, nullptr);
    EXPECT_TRUE(p->Init(progID));
    p->Parameters().Clear();
    if (new_mode >= 0) p->Parameters().Item("New").Value = new_mode;
    return *p;
  }
  // The module's picker class behind a service.
  template <class T>
  static T& Object(mrvk::IHostPicker& p) {
    return dynamic_cast<T&>(*dynamic_cast<kvhost::ModulePicker&>(p).Object());
  }
  // Shows the list and runs the clerk's script on it; "value|text" of the choice, or
  // "cancel:" and the text.
  static std::string ShowAnd(kvhost::Host& h, mrvk::IHostPicker& p,
                             std::function<void(kvhost::Dialog&)> script) {
    h.ui().dialogs.push_back(std::move(script));
    mrvk::Variant value;
    std::string text;
    bool chosen = false;
    kvhost::Status st = h.guarded("Show", [&] { chosen = p.Show(text, value); });
    EXPECT_TRUE(st.ok()) << st.message();
    return chosen ? value.ToString() + "|" + text : "cancel:" + text;
  }
  std::string ShowAnd(mrvk::IHostPicker& p, std::function<void(kvhost::Dialog&)> script) {
    return ShowAnd(host(), p, std::move(script));
  }
  // A gesture on a control of the shown list, which must take it.
  static void Do(kvhost::Dialog& d, const std::string& control, int index, kvhost::Gesture g) {
    kvhost::Control* c = d.Controls().Find(control, index);
    ASSERT_NE(c, nullptr) << control;
    ASSERT_EQ(c->Apply(g), "") << control << " " << g.kind;
  }
  // Types into a filter field and leaves it, as a clerk does.
  static void Type(kvhost::Dialog& d, int index, const std::string& text) {
    Do(d, "kvTxt", index, {"type", text});
    Do(d, "kvTxt", index, {"leave"});
  }
  // Column 1 (the number) of the rows that show.
  static Rows Shown(const kvhost::VsFlexGrid& grid) {
    Rows out;
    for (int r = grid.FixedRows(); r < grid.Rows(); ++r) {
      if (grid.RowHeight(r) != 0) out.push_back(grid.TextMatrix(r, 1));
    }
    return out;
  }
  // The number of the current row; "" for the header.
  static std::string Current(const kvhost::VsFlexGrid& grid) {
    return grid.Row() < grid.FixedRows() ? "" : grid.TextMatrix(grid.Row(), 1);
  }
};

}  // namespace kvtest
