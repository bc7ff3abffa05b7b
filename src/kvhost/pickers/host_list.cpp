#include "kvhost/pickers/host_list.h"

#include <strings.h>

#include <algorithm>

#include "kvhost/lib/display_format.h"

namespace kvhost {
HostList::HostList() : form_("frmPicker", this) {
  ControlList& controls = form_.Controls();
  controls.Add(lblFind);
  lblFind.Caption = "查找(&F):";
  controls.Add(txtFind);
  txtFind.ToolTipText = "提示：输入编号或名称的一部分";
  txtFind.Change = [this] { FindChanged(); };
  controls.Add(Vs);
  Vs.ToolTipText = "提示：双击或按确定选择完毕！";
  Vs.DblClick = [this] { Confirm(); };
  Cmd.Add(controls, 0).Caption = "确定(&O)";
  Cmd[0].Click = [this] { Confirm(); };
  Cmd.Add(controls, 1).Caption = "取消(&C)";
  Cmd[1].Click = [this] { CancelChoice(); };
}

void HostList::Load(const std::string& caption, const std::vector<std::string>& names,
                    const std::vector<std::pair<int, std::string>>& shown, mrvk::RowsArray data) {
  form_.Caption = caption;
  names_ = names;
  data_ = std::move(data);
  txtFind.Text.clear();
  Vs.Redraw = false;
  Vs.SetFixedCols(0);
  Vs.SetRows(1);
  Vs.SetFixedRows(1);
  Vs.SetCols(static_cast<int>(std::max<size_t>(data_.fields, 1)));
  for (int c = 0; c < Vs.Cols(); ++c) {
    Vs.TextMatrix(0, c) = "";
    Vs.ColHidden(c) = true;
  }
  for (const auto& [field, title] : shown) {
    if (field < 0 || field >= Vs.Cols()) continue;
    Vs.TextMatrix(0, field) = title;
    Vs.ColHidden(field) = false;
    Vs.ColWidth(field) = std::max(CaptionWidth(title), GridControl::kDefaultColWidth * 2);
    Vs.ColAlignment(field) = grid_align::kLeftCenter;
  }
  Vs.LoadArray(data_);
  Vs.SetRow(Vs.Rows() > 1 ? 1 : 0);
  Vs.SetTopRow(1);
  Vs.Redraw = true;
}

std::optional<int> HostList::Show() {
  chosen_.reset();
  form_.Controls().SetFocus(&txtFind);
  form_.Show();
  return chosen_;
}

mrvk::Variant HostList::Value(int row, const std::string& name) const {
  if (row < 0 || static_cast<size_t>(row) >= data_.rows) return mrvk::Variant();
  for (size_t f = 0; f < names_.size() && f < data_.fields; ++f) {
    if (strcasecmp(names_[f].c_str(), name.c_str()) == 0)
      return data_.at(f, static_cast<size_t>(row));
  }
  return mrvk::Variant();
}

void HostList::ChooseRows(const std::vector<int>& rows) {
  if (rows.empty()) return;
  Vs.SetRow(Vs.FixedRows() + rows.front());
  chosen_ = rows.front();
  form_.Hide();
}

void HostList::CancelChoice() {
  chosen_.reset();
  form_.Hide();
}

void HostList::Confirm() {
  const int row = Vs.Row();
  if (row < Vs.FixedRows() || row >= Vs.Rows() || Vs.RowHeight(row) == 0) return;
  chosen_ = row - Vs.FixedRows();
  form_.Hide();
}

void HostList::FindChanged() { Vs.SetRow(Vs.ShowRowsHolding(txtFind.Text) > 0 ? Vs.TopRow() : 0); }

}  // namespace kvhost
