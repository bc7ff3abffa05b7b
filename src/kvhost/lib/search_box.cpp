#include "kvhost/lib/search_box.h"

#include <nlohmann/json.hpp>

#include "kvhost/lib/grid_control.h"
#include "mrvk/frame/vb.h"

namespace kvhost {

void SearchBox::Bind(int delay, const GridControl& grid) {
  Delay = delay;
  Columns.clear();
  for (int c = 0; c < grid.Cols(); ++c) {
    const std::string caption = grid.FixedRows() > 0 ? mrvk::Trim(grid.TextMatrix(0, c)) : "";
    Columns.push_back({caption, /*searched=*/true});
  }
}

bool SearchBox::IsSearched(int col) const {
  return col >= 0 && col < static_cast<int>(Columns.size()) &&
         Columns[static_cast<size_t>(col)].searched;
}

std::string SearchBox::Apply(const Gesture& g) {
  if (g.kind == "type") {
    if (std::string why = RefusesInput(/*locked_counts=*/true); !why.empty()) return why;
    Text = g.text;
    if (Change) Change();
    return "";
  }
  if (g.kind == "clear") {
    if (std::string why = RefusesInput(/*locked_counts=*/true); !why.empty()) return why;
    Text.clear();
    if (Clear) Clear();
    return "";
  }
  if (g.kind == "toggle") {
    if (std::string why = RefusesInput(/*locked_counts=*/false); !why.empty()) return why;
    if (g.col < 0 || g.col >= static_cast<int>(Columns.size()))
      return DisplayName() + " has no column " + std::to_string(g.col);
    Column& column = Columns[static_cast<size_t>(g.col)];
    column.searched = !column.searched;
    if (!Text.empty() && Change) Change();
    return "";
  }
  return Unsupported(g);
}

void SearchBox::WriteOwnState(nlohmann::json& out) const {
  out["text"] = Text;
  out["delay"] = Delay;
  nlohmann::json columns = nlohmann::json::array();
  for (const Column& c : Columns)
    columns.push_back({{"caption", c.caption}, {"searched", c.searched}});
  out["columns"] = std::move(columns);
}

}  // namespace kvhost
