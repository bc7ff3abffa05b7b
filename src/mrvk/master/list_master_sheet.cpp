#include "mrvk/master/list_master_sheet.h"

#include "mrvk/frame/data_access.h"
#include "mrvk/frame/grid_layout.h"
#include "mrvk/frame/vb.h"
#include "mrvk/master/master_procedures.h"

namespace mrvk {

ListMasterSheet::ListMasterSheet(ListSheetDesign design) : design_(std::move(design)) {
  controls_.Add(Vs);
  Vs.AfterScroll = [this] {
    if (wheel_) wheel_->Position(Vs);
  };
}

bool ListMasterSheet::Init(IHostContext& context, int32_t progID, int32_t) {
  context_ = &context;
  grid_tool_ = std::make_unique<kvhost::GridTool>();
  convert_ = std::make_unique<kvhost::Convert>();
  TakeProgID(progID);
  find_row_ = 0;
  find_col_ = 0;
  InitVsControl(Vs, design_.format, /*hidden_ids=*/1);
  wheel_ = std::make_unique<WheelHook>(WheelRate(context));
  wheel_->SetFixedRows(Vs.FixedRows());
  return true;
}

bool ListMasterSheet::Refresh() {
  if (refreshing_) return false;
  refreshing_ = true;
  Message("正在加载数据");
  const int top_row = Vs.TopRow();
  IHostDatabase& db = context_->Database();
  {
    auto rs = db.CreateCommand(LoadSql(), 1)->OpenRecordset();
    const std::string error = db.Error().Description();
    if (!error.empty()) {
      ErrMessage(error, err_level::kDatabase, Word());
    } else {
      Vs.Redraw = false;
      // A table without rows empties the grid too, so a deleted last row does not stay.
      Vs.SetRows(Vs.FixedRows());
      if (!(rs->Eof() && rs->Bof())) Vs.LoadArray(rs->GetRows());
      NumberRows(Vs);
      if (top_row < Vs.Rows()) Vs.SetTopRow(top_row);
      Vs.Redraw = true;
      wheel_->Rate(Vs);
      RaiseEvent("FormRefreshed", event_id::kFormRefreshed);
    }
  }
  Message("");
  db.Release();
  refreshing_ = false;
  return true;
}

void ListMasterSheet::HearDialog(EntryDialog& form) {
  form.OnMessage = [this](const std::string& text) { moForm_Message(text); };
  form.OnErrMessage = [this](const std::string& text, int level, const std::string& title) {
    moForm_ErrMessage(text, level, title);
  };
  form.OnReturnData = [this](int32_t id, bool is_new) { moForm_ReturnData(id, is_new); };
}

int32_t ListMasterSheet::CurrentID() {
  const int row = Vs.Row();
  if (row < Vs.FixedRows() || row >= Vs.Rows() || Vs.IsSubtotal(row)) return 0;
  return convert_->ToLong(Variant(Vs.TextMatrix(row, Vs.Cols() - 1)));
}

bool ListMasterSheet::FileNew() {
  ShowEntry(0);
  return true;
}

bool ListMasterSheet::FileEdit() {
  const int32_t id = CurrentID();
  if (id <= 0) return false;
  ShowEntry(id);
  return true;
}

bool ListMasterSheet::FileDelete() {
  try {
    const int32_t id = CurrentID();
    if (id <= 0) return false;
    if (MsgBox("是否删除当前行记录", msgbox::kYesNoWarning, "提示:") != msgbox::kYes) return false;
    if (!IsCanDelete(id)) return false;
    const std::string error =
        DeleteRow(context_->Database(), design_.table, design_.key_column, id);
    if (!error.empty()) {
      ErrMessage("删除数据时出错：" + error, err_level::kDatabase, Word());
      return false;
    }
    RemoveGridRow(Vs, Vs.Row());
    NumberRows(Vs);
    wheel_->Rate(Vs);
    return true;
  } catch (const VbError& e) {
    ErrMessage(design_.delete_tag + e.Description(), err_level::kValidation, Word());
    return false;
  }
}

bool ListMasterSheet::IsCanDelete(int32_t id) {
  const std::string use_sql = design_.use_sql.empty()
                                  ? " select top 1 " + design_.key_column + " from " +
                                        design_.use_table + " where " + design_.key_column + "="
                                  : design_.use_sql;
  bool used = false;
  try {
    used = Val(ScalarText(context_->Database(), use_sql + std::to_string(id))) > 0;
  } catch (const VbError& e) {
    context_->Database().Release();
    if (design_.use_tag.empty()) throw;
    ErrMessage(design_.use_tag + e.Description(), err_level::kValidation, Word());
    return false;
  }
  context_->Database().Release();
  if (used) {
    ErrMessage("该[" + Word() + "]已启用,不能删除!", err_level::kValidation, Word());
    return false;
  }
  return true;
}

void ListMasterSheet::moForm_ReturnData(int32_t id, bool is_new) {
  try {
    if (is_new) {
      Vs.SetRows(Vs.Rows() + 1);
      Vs.SetRow(Vs.Rows() - 1);
    }
    const int row = Vs.Row();
    if (row < Vs.FixedRows()) return;
    IHostDatabase& db = context_->Database();
    {
      const std::string row_sql = design_.row_sql.empty() ? "select * from " + design_.table +
                                                                " where " + design_.key_column + "="
                                                          : design_.row_sql;
      auto rs = db.CreateCommand(row_sql + std::to_string(id), 1)->OpenRecordset();
      if (!(rs->Eof() && rs->Bof())) {
        for (size_t i = 0; i < design_.row_columns.size(); ++i)
          Vs.TextMatrix(row, static_cast<int>(i) + 1) =
              convert_->ToText(rs->Fields(design_.row_columns[i]).Value);
      }
    }
    db.Release();
    NumberRows(Vs);
    wheel_->Rate(Vs);
  } catch (const VbError& e) {
    ErrMessage("UpDataFrom:" + e.Description(), err_level::kValidation, Word());
  }
}

bool ListMasterSheet::Find(const Variant&) {
  return grid_tool_->Find(Vs, /*col_index=*/-1, /*flag=*/0, find_row_, find_col_);
}

bool ListMasterSheet::FindNext() {
  return grid_tool_->FindNext(Vs, /*col_index=*/-1, find_row_, find_col_);
}

bool ListMasterSheet::Filter(const Variant&) { return grid_tool_->Filter(Vs, Vs.Cols()); }

void ListMasterSheet::mcMouseEvent_Wheel(int step) {
  if (wheel_) wheel_->Wheel(Vs, step);
}

void ListMasterSheet::DoGetFormStatus() {
  sbGetFormStatus(LayoutPath(LayoutName(), *context_), /*pbOnlyColWidth=*/false, controls_,
                  *context_);
  Refresh();
}

void ListMasterSheet::DoSaveFormStatus() {
  sbSaveFormStatus(LayoutPath(LayoutName(), *context_), /*pbOnlyColWidth=*/false, controls_);
}

bool ListMasterSheet::Clear() {
  context_ = nullptr;
  grid_tool_.reset();
  convert_.reset();
  wheel_.reset();
  return true;
}

}  // namespace mrvk
