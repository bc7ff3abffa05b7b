#include "mrvk/housing/fy_rooms.h"

#include "mrvk/frame/data_access.h"
#include "mrvk/frame/vb.h"

namespace mrvk {
namespace {

constexpr const char* kRoomsHeader =
    "行号|房间号    |面积     |月租金    |是否出租 |租房合同号  |起租日期  |止租日期   |付租方式  "
    "|AutoID";
constexpr const char* kWholeHeader =
    "行号|租房合同号            |起租日期     |止租日期     |付租方式      ";

// The read-only colours when the options do not name any: grey on the grid's light grey.
constexpr int32_t kDefaultReadOnlyBack = 0xEEEEEE;
constexpr int32_t kDefaultReadOnlyFore = 0x555555;

// A date cell that reads earlier than 1900-01-02 stands for a room without a contract.
std::string DateCell(const Variant& v) {
  if (v.IsNull() || v.IsEmpty()) return "";
  const auto date = ParseDate(Trim(v.ToString()));
  if (!date || date->serial() < Date::FromYmd(1900, 1, 2).serial()) return "";
  return date->ToText();
}

int32_t ColourOption(IHostContext& context, const char* key, int32_t fallback) {
  const std::string text = Trim(context.GetOption(Variant(key)).Value);
  return text.empty() ? fallback : static_cast<int32_t>(Val(text));
}

}  // namespace

void FyRooms::AddTo(kvhost::ControlList& controls, const std::string& page) {
  FraF.Caption = "分租房间设置及出租情况";
  FraZ.Caption = "整租情况";
  for (kvhost::Control* c :
       {static_cast<kvhost::Control*>(&FraF), static_cast<kvhost::Control*>(&FraZ)})
    c->Container = page;
  kvGridF.Container = "FraF";
  kvGridZ.Container = "FraZ";
  controls.Add(FraF);
  controls.Add(kvGridF);
  controls.Add(FraZ);
  controls.Add(kvGridZ);
  kvGridF.AfterRowColChange = [this](int, int, int row, int) { RowEntered(row); };
  kvGridF.BeforeDeleteRow = [this](int row, bool& cancel) { BeforeDelete(row, cancel); };
}

void FyRooms::InitVsControl(IHostContext& context,
                            const std::function<void(const std::string&)>& report) {
  try {
    const int32_t back = ColourOption(context, "readonlybackcolor", kDefaultReadOnlyBack);
    const int32_t fore = ColourOption(context, "readonlyforecolor", kDefaultReadOnlyFore);
    kvGridF.SetFormatString(kRoomsHeader);
    kvGridF.SetFixedRows(1);
    kvGridF.SetFixedCols(1);
    kvGridF.SetRows(1);
    kvGridF.Column(0).ReadOnly = true;
    kvGridF.Column(kColArea).Kind = kvhost::GridColumnKind::Number;
    kvGridF.Column(kColRent).Kind = kvhost::GridColumnKind::Number;
    for (int c = kColLet; c < kColAutoID; ++c) {
      kvhost::KvGridColumn& col = kvGridF.Column(c);
      col.ReadOnly = true;
      col.BackColor = back;
      col.ForeColor = fore;
    }
    kvGridF.ColHidden(kColAutoID) = true;
    kvGridZ.SetFormatString(kWholeHeader);
    kvGridZ.SetFixedRows(1);
    kvGridZ.SetFixedCols(1);
    kvGridZ.SetRows(1);
    kvGridZ.AllowUserAdd = false;
    kvGridZ.AllowUserDelete = false;
    for (int c = 0; c < kvGridZ.Cols(); ++c) {
      kvhost::KvGridColumn& col = kvGridZ.Column(c);
      col.ReadOnly = true;
      col.BackColor = back;
      col.ForeColor = fore;
    }
  } catch (const VbError& e) {
    report("加载VS时出错，原因：" + e.Description());
  }
}

void FyRooms::ClearGrids() {
  kvGridF.SetRows(kvGridF.FixedRows());
  kvGridZ.SetRows(kvGridZ.FixedRows());
}

void FyRooms::SetEditable(bool editing) {
  editing_ = editing;
  kvGridF.Editable = editing;
  kvGridZ.Editable = editing;
  if (kvGridF.Row() >= kvGridF.FixedRows()) RowEntered(kvGridF.Row());
}

void FyRooms::Load(IHostContext& context, int32_t unit_id,
                   const std::function<void(const std::string&)>& report) {
  IHostDatabase& db = context.Database();
  const std::string id = std::to_string(unit_id);
  {
    auto rs =
        db.CreateCommand(
              " select fwfy_fz.房间号,fwfy_fz.面积,fwfy_fz.月租金,fwfy_fz.是否出租,t.合同编号 As "
              "租房合同号,t.起租日期,t.止租日期,t.付租方式,fwfy_fz.AutoID"
              "    from FwFy_Fz left join ("
              "       select fwhdmx.房源ID,fwhd.分租房间,合同编号,起租日期,止租日期,付租方式"
              "         from FwHd INNER JOIN FwHdMx ON FwHd.合同ID = FwHdMx.合同ID where "
              "fwhd.状态='生效' ) t"
              "     on fwfy_fz.房源ID=t.房源ID and fwfy_fz.房间号=t.分租房间"
              "   where fwfy_fz.房源ID=" +
                  id,
              1)
            ->OpenRecordset();
    if (const std::string error = db.Error().Description(); !error.empty()) {
      report(error);
      return;
    }
    kvGridF.SetRows(kvGridF.FixedRows());
    for (int row = kvGridF.FixedRows(); !rs->Eof(); rs->MoveNext(), ++row) {
      kvGridF.SetRows(row + 1);
      kvGridF.TextMatrix(row, 0) = std::to_string(row);
      kvGridF.TextMatrix(row, kColRoom) = convert_.ToText(rs->Fields("房间号").Value);
      kvGridF.TextMatrix(row, kColArea) =
          NumberText(convert_.ToNumber(rs->Fields("面积").Value).ToDouble());
      kvGridF.TextMatrix(row, kColRent) =
          NumberText(convert_.ToNumber(rs->Fields("月租金").Value).ToDouble());
      kvGridF.TextMatrix(row, kColLet) =
          convert_.ToLong(rs->Fields("是否出租").Value) == 1 ? "是" : "否";
      kvGridF.TextMatrix(row, 5) = convert_.ToText(rs->Fields("租房合同号").Value);
      kvGridF.TextMatrix(row, 6) = DateCell(rs->Fields("起租日期").Value);
      kvGridF.TextMatrix(row, 7) = DateCell(rs->Fields("止租日期").Value);
      kvGridF.TextMatrix(row, 8) = convert_.ToText(rs->Fields("付租方式").Value);
      kvGridF.TextMatrix(row, kColAutoID) = convert_.ToText(rs->Fields("AutoID").Value);
    }
  }
  deleted_ids_.clear();
  {
    auto rs = db.CreateCommand(
                    " select fwhdmx.房源ID,fwhd.分租房间,合同编号,起租日期,止租日期,付租方式"
                    "    from FwHd INNER JOIN FwHdMx ON FwHd.合同ID = FwHdMx.合同ID"
                    "   where fwhd.状态='生效' and 分租房间='' and 房源ID=" +
                        id,
                    1)
                  ->OpenRecordset();
    if (const std::string error = db.Error().Description(); !error.empty()) {
      report(error);
      return;
    }
    kvGridZ.SetRows(kvGridZ.FixedRows());
    for (int row = kvGridZ.FixedRows(); !rs->Eof(); rs->MoveNext(), ++row) {
      kvGridZ.SetRows(row + 1);
      kvGridZ.TextMatrix(row, 0) = std::to_string(row);
      kvGridZ.TextMatrix(row, 1) = convert_.ToText(rs->Fields("合同编号").Value);
      kvGridZ.TextMatrix(row, 2) = DateCell(rs->Fields("起租日期").Value);
      kvGridZ.TextMatrix(row, 3) = DateCell(rs->Fields("止租日期").Value);
      kvGridZ.TextMatrix(row, 4) = convert_.ToText(rs->Fields("付租方式").Value);
    }
  }
}

bool FyRooms::IsLet(int row) const { return kvGridF.TextMatrix(row, kColLet) == "是"; }

void FyRooms::RowEntered(int row) {
  if (row < kvGridF.FixedRows() || row >= kvGridF.Rows()) return;
  kvGridF.RowLocked(row) = editing_ && IsLet(row);
}

void FyRooms::BeforeDelete(int row, bool& cancel) {
  if (Val(kvGridF.TextMatrix(row, kColAutoID)) <= 0) return;
  if (IsLet(row)) {
    MsgBox("不能删除已经出租的房间号！", msgbox::kExclamation, "操作提示");
    cancel = true;
    return;
  }
  deleted_ids_ += kvGridF.TextMatrix(row, kColAutoID) + ",";
}

bool FyRooms::Save(IHostContext& context, IHostBillData& bill, int32_t unit_id,
                   std::string& error) {
  IHostDatabase& db = context.Database();
  auto run = [&](const std::string& sql) {
    db.CreateCommand(sql, 1)->Execute();
    error = db.Error().Description();
    return error.empty();
  };
  if (!deleted_ids_.empty()) {
    const std::string ids = deleted_ids_.substr(0, deleted_ids_.size() - 1);
    if (!run("Delete from fwfy_fz Where AutoID in(" + ids + ")")) return false;
  }
  const std::string unit = std::to_string(unit_id);
  for (int row = kvGridF.FixedRows(); row < kvGridF.Rows(); ++row) {
    const std::string room = kvGridF.TextMatrix(row, kColRoom);
    if (room.empty()) continue;
    const std::string area = SqlNumber(kvGridF.TextMatrix(row, kColArea));
    const std::string rent = SqlNumber(kvGridF.TextMatrix(row, kColRent));
    const double auto_id = Val(kvGridF.TextMatrix(row, kColAutoID));
    if (auto_id <= 0) {
      int32_t id = 0;
      error = bill.NewID("fwfy_fz", "AutoID", id);
      if (!error.empty()) return false;
      if (!run(" insert into fwfy_fz   ( autoid,房源ID,房间号,面积,月租金,是否出租 ) values (" +
               std::to_string(id) + "," + unit + "," + SqlQuoted(room) + "," + area + "," + rent +
               ",0)"))
        return false;
    } else if (!run(" update fwfy_fz   set 房间号=" + SqlQuoted(room) + ",       面积=" + area +
                    ",       月租金=" + rent + "  where autoid=" + NumberText(auto_id))) {
      return false;
    }
  }
  deleted_ids_.clear();
  return true;
}

}  // namespace mrvk
