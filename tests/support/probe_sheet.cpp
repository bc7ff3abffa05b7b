#include "support/probe_sheet.h"

#include "kvhost/lib/dialog.h"
#include "kvhost/lib/kv_txt.h"
#include "kvhost/lib/simple_controls.h"
#include "mrvk/frame/data_access.h"
#include "mrvk/frame/vb.h"
#include "mrvk/registry.h"

namespace kvtest {
namespace {

using mrvk::Variant;

class ProbeSheet : public mrvk::ModuleObject, public mrvk::IFormUI, public mrvk::IDesignUI {
 public:
  // The screen: a code field, a date field, a closed list, a locked field, a check box and a
  // button that opens an entry dialog which saves a party.
  ProbeSheet() {
    kvTxt.Add(controls_, 0).Caption = "    编号";
    kvTxt.Add(controls_, 1).Caption = "登记日期";
    kvTxt[1].Kind = kvhost::FieldKind::Date;
    kvTxt.Add(controls_, 2).Caption = "计费方式";
    kvTxt[2].Config.ListText = "|按户|按面积|按用量";
    kvTxt.Add(controls_, 3).Caption = "制单人";
    kvTxt[3].Locked = true;
    for (auto& [i, field] : kvTxt) field->Change = [this] { dirty_ = true; };
    controls_.Add(Chk);
    Chk.Caption = "引用数据(&H)";
    controls_.Add(Cmd);
    Cmd.Caption = "新增(&N)";
    Cmd.Click = [this] { Cmd_Click(); };

    dlgTxt.Add(dialog_.Controls(), 0).Caption = "姓名";
    dlgCmd.Add(dialog_.Controls(), 0).Caption = "保存(&S)";
    dlgCmd.Add(dialog_.Controls(), 1).Caption = "关闭(&X)";
    dialog_.Caption = "业主";
    dlgCmd[0].Click = [this] { DialogSave(); };
    dlgCmd[1].Click = [this] { dialog_.Hide(); };
  }

  std::string ClassName() const override { return "ProbeSheet"; }
  kvhost::ControlList& Controls() override { return controls_; }

  kvhost::ControlArray<kvhost::KvTxt> kvTxt{"kvTxt"};
  kvhost::CheckBox Chk{"Chk"};
  kvhost::CommandButton Cmd{"Cmd"};

  bool Init(mrvk::IHostContext& context, int32_t progID, int32_t record_id) override {
    ctx_ = &context;
    prog_ = progID;
    id_ = record_id;
    calls_ += "Init ";
    return progID != 999;  // a progID of 999 is refused, to test a failed open
  }
  bool Clear() override { return true; }
  bool FileNew() override {
    std::string code;
    ctx_->BillCode(prog_, ctx_->Environment().LoginDate(), code, /*preview=*/true);
    RaiseEvent("Message", mrvk::event_id::kMessage, {Variant(code)});
    return true;
  }
  bool FileNewNext() override {
    RaiseEvent("Message", mrvk::event_id::kMessage, {Variant("无此功能！")});
    return false;
  }
  // Writes a party outside a bracket, then asks a question.
  bool FileEdit() override {
    auto& db = ctx_->Database();
    int32_t id = 0;
    if (!NewKey(id).empty()) return false;
    db.CreateCommand("insert into fwyz (业主ID,业主编号,业主名称,类型) values (" +
                         std::to_string(id) + ",'E" + std::to_string(id) + "','编辑',0)",
                     1)
        ->Execute();
    return mrvk::MsgBox("继续？", mrvk::msgbox::kYesNo, "编辑") == mrvk::msgbox::kYes;
  }
  // Asks before deleting; only yes deletes.
  bool FileDelete() override {
    if (mrvk::MsgBox("确实要删除吗？", mrvk::msgbox::kYesNoWarning, "删除") != mrvk::msgbox::kYes)
      return false;
    auto& db = ctx_->Database();
    db.CreateCommand("delete from fwyz where 业主ID=" + std::to_string(id_), 1)->Execute();
    return db.Error().Description().empty();
  }
  // Asks for a name, then saves a party under a new key.
  bool FileSave() override {
    const std::string name = mrvk::InputBox("名称:", "保存", "");
    if (name.empty()) return false;
    auto& db = ctx_->Database();
    int32_t id = 0;
    std::string why = NewKey(id);
    if (!why.empty()) {
      RaiseEvent("ErrMessage", mrvk::event_id::kErrMessage,
                 {Variant(why), Variant(8), Variant("探针")});
      return false;
    }
    db.CreateCommand("insert into fwyz (业主ID,业主编号,业主名称,类型) values (" +
                         std::to_string(id) + ",'P" + std::to_string(id) + "'," +
                         mrvk::SqlQuoted(name) + ",0)",
                     1)
        ->Execute();
    if (!db.Error().Description().empty()) return false;
    id_ = id;
    RaiseEvent("Message", mrvk::event_id::kMessage, {Variant("保存单据成功！")});
    return true;
  }
  bool FileCancel() override { return true; }
  // Parties by name, code, kind and the date of a contract of theirs.
  std::vector<mrvk::SearchField> SearchFields() override {
    return {{"名称", "A.业主名称", mrvk::SearchType::kText},
            {"编号", "A.业主编号", mrvk::SearchType::kText},
            {"类型", "A.类型", mrvk::SearchType::kNumber},
            {"合同日期", "B.合同日期", mrvk::SearchType::kDate}};
  }
  // Lists the names of the parties the conditions select, in a message.
  bool Find(const Variant& conditions) override { return FindParties(conditions, /*plane=*/1); }
  bool FindNext() override { return false; }
  bool Filter(const Variant& conditions) override { return FindParties(conditions, /*plane=*/0); }
  bool Refresh() override {
    calls_ += "Refresh ";
    RaiseEvent("FormRefreshed", mrvk::event_id::kFormRefreshed);
    return true;
  }
  bool RecordTop() override { return false; }
  bool RecordPrevious() override { return false; }
  bool RecordNext() override { return false; }
  bool RecordBottom() override { return false; }
  // A run-time failure escaping the module: the host must turn it into an error answer.
  bool Check() override {
    throw mrvk::VbError(mrvk::vb_error::kDivisionByZero, "Division by zero");
  }
  // Brackets left open, for the host's edge of a call: renaming party 1, then a run-time
  // failure that nothing catches (UnCheck), a question (PrintSetup), or a return after an
  // information box (Help).
  bool UnCheck() override {
    OpenBracket();
    throw mrvk::VbError(mrvk::vb_error::kTypeMismatch, "Type mismatch");
  }
  bool PrintPreview() override { return false; }
  bool DoPrint() override { return false; }
  bool PrintSetup() override {
    OpenBracket();
    return mrvk::MsgBox("改名吗？", mrvk::msgbox::kYesNo, "探针") == mrvk::msgbox::kYes;
  }
  bool Help() override {
    OpenBracket();
    mrvk::MsgBox("已改名", mrvk::msgbox::kInformation, "探针");
    return true;
  }
  bool DoSetStatus(const std::string&, bool) override { return false; }
  int32_t GetID() override { return id_; }
  bool CheckStatus(const std::string&) override { return false; }
  std::string ReturnPrintName() override { return calls_; }
  bool IsDirty() override { return dirty_; }
  void DoGetFormStatus() override { calls_ += "DoGetFormStatus "; }
  void DoSaveFormStatus() override {}
  std::string Attributes(int32_t key) override { return key == 98 ? "check" : ""; }
  void SetParameters(std::shared_ptr<mrvk::IParameters>) override {}

 private:
  std::string NewKey(int32_t& id);
  void OpenBracket() {
    ctx_->Database().BeginTrans();
    ctx_->Database()
        .CreateCommand("update fwyz set 业主名称='探针改名' where 业主ID=1", 1)
        ->Execute();
  }

  bool FindParties(const Variant& conditions, int plane) {
    calls_ += "Find ";
    auto& db = ctx_->Database();
    std::string refusal;
    auto where = mrvk::ConditionText(conditions, plane, mrvk::IsJet(db), SearchFields(), refusal);
    if (!refusal.empty()) {
      RaiseEvent("ErrMessage", mrvk::event_id::kErrMessage,
                 {Variant(refusal), Variant(2), Variant("探针")});
      return false;
    }
    if (!where || where->empty()) return true;
    auto rs = db.CreateCommand(
                    "select A.业主名称 from fwyz A left join fwhd B on B.客户ID=A.业主ID"
                    " where" +
                        *where + " order by A.业主名称",
                    1)
                  ->OpenRecordset();
    std::string names;
    for (; !rs->Eof(); rs->MoveNext()) names += rs->Fields(0).Value.ToString() + ";";
    RaiseEvent("Message", mrvk::event_id::kMessage, {Variant(names)});
    return db.Error().Description().empty();
  }

  // Opens the entry dialog; a saved party is announced by a message.
  void Cmd_Click() {
    dlgTxt[0].Text = "";
    dialog_.Show();
  }
  // Saves the typed name as a party and closes the dialog; an empty name is refused.
  void DialogSave() {
    const std::string name = mrvk::Trim(dlgTxt[0].Text);
    if (name.empty()) {
      mrvk::MsgBox("姓名不能为空！", mrvk::msgbox::kExclamation, "业主");
      return;
    }
    int32_t id = 0;
    if (!NewKey(id).empty()) return;
    ctx_->Database()
        .CreateCommand("insert into fwyz (业主ID,业主编号,业主名称,类型) values (" +
                           std::to_string(id) + ",'D" + std::to_string(id) + "'," +
                           mrvk::SqlQuoted(name) + ",0)",
                       1)
        ->Execute();
    RaiseEvent("Message", mrvk::event_id::kMessage, {Variant("保存成功！")});
    dialog_.Hide();
  }

  kvhost::ControlList controls_;
  kvhost::Dialog dialog_{"FrmProbe"};
  kvhost::ControlArray<kvhost::KvTxt> dlgTxt{"kvTxt"};
  kvhost::ControlArray<kvhost::CommandButton> dlgCmd{"Cmd"};
  bool dirty_ = false;
  mrvk::IHostContext* ctx_ = nullptr;
  int32_t prog_ = 0;
  int32_t id_ = 0;
  std::string calls_;
};

}  // namespace
}  // namespace kvtest

#include "kvhost/lib/bill_data.h"

namespace kvtest {
namespace {
std::string ProbeSheet::NewKey(int32_t& id) {
  kvhost::BillData bill;
  bill.Database(&ctx_->Database());
  return bill.NewID("fwyz", "业主ID", id);
}
}  // namespace

void RegisterProbeSheet() {
  mrvk::RegisterClass("ProbeSheet", [] { return std::make_unique<ProbeSheet>(); });
}

}  // namespace kvtest
