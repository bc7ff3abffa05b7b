// zfHd_2, the rental contract sheet: one contract (a row of fwhd with its unit in fwhdmx and
// its fee terms in fwhdfs) at a time, on two pages switched by Toolbar1: PicHT the contract
// (the unit, the lease, the payment mode, the fee terms) and PicZK the tenant and the
// remarks. It walks over the contracts of its function key dated within the last months
// (the option "befmonth"), or over the one contract it was opened on.
//
// From the document-sheet frame it takes navigation, find, filter and the selection text; it
// adds its fields and pages, the pickers behind the fields and what they fill in (the unit,
// the tenant, the payment mode, the room let), new, edit, save and cancel, the fee grid's
// marks and periods, the lease arithmetic, the approved mark, the print data file, approval,
// un-approval and delete.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "kvhost/lib/kv_txt.h"
#include "kvhost/lib/simple_controls.h"
#include "kvhost/lib/toolbar.h"
#include "mrvk/contract/zfhd_2/contract_fees.h"
#include "mrvk/frame/document_sheet.h"
#include "mrvk/frame/picker_contract.h"

namespace mrvk {

class zfHd_2 : public DocumentSheet, public IFormToolUI {
 public:
  zfHd_2();

  std::string ClassName() const override { return "zfHd_2"; }

  void SetParameters(std::shared_ptr<IParameters> parameters) override;

  bool FileNew() override;
  bool FileEdit() override;
  bool FileCancel() override;
  // Writes the contract, its unit row, its fee terms and its tenant in one bracket
  // (zfhd_2_save.cpp).
  bool FileSave() override;
  // Approval, un-approval and delete (zfhd_2_check.cpp). Check refuses an incomplete
  // contract, marks it approved, rebuilds its schedule from the lease as shown and derives the
  // rental state anew, statement by statement without a bracket; UnCheck, refused once a
  // receipt names the contract, takes all of that back. FileDelete gives the number back,
  // asks, then deletes the contract with its unit row and fee terms in one bracket.
  bool Check() override;
  bool UnCheck() override;
  bool FileDelete() override;
  bool DoPrint() override;
  bool PrintPreview() override { return DoPrint(); }
  bool PrintSetup() override { return DoPrint(); }
  bool DoSetStatus(const std::string& status, bool approved) override;
  // Whether the contract shown is approved (Lab_Succeed shows).
  bool CheckStatus(const std::string&) override { return Lab_Succeed.Visible; }
  std::string Attributes(int32_t key) override { return key == 98 ? "check" : ""; }
  void DoGetFormStatus() override;
  void DoSaveFormStatus() override;
  std::vector<SearchField> SearchFields() override;
  // IFormToolUI: the tool "bomspread" has nothing to do on a contract.
  bool Action(const std::string&) override { return false; }

  // The screen.
  kvhost::Toolbar Toolbar1{"Toolbar1"};
  kvhost::Label lbl_Caption{"lbl_Caption"};
  kvhost::Label lblRecord{"lblRecord"};
  kvhost::Label Lab_Succeed{"Lab_Succeed"};
  kvhost::Label Lab_Status{"Lab_Status"};
  kvhost::Label LabFilter{"LabFilter"};
  kvhost::CheckBox Chk{"Chk"};
  kvhost::Frame PicHT{"PicHT", -1, "PictureBox"};
  kvhost::Frame PicZK{"PicZK", -1, "PictureBox"};
  kvhost::Frame FraZK{"FraZK"};  // 租客信息(可直接输入)
  kvhost::Frame FraBZ{"FraBZ"};  // 备注(最多255个字符)
  kvhost::ControlArray<kvhost::KvTxt> kvTxt{"kvTxt"};
  kvhost::ControlArray<kvhost::OptionButton> optXB{"optXB"};
  kvhost::TextBox txt{"txt"};
  ContractFees fees;

 protected:
  void InitForm() override;
  void ClearForm() override;
  void UpdateForm(Recordset& rs, const std::string& position) override;
  void FilterShown(bool in_force) override { LabFilter.Visible = in_force; }
  // GetFilter: "progid=" progID, then the span of months unless the sheet is fixed on one
  // contract (the frame adds that contract and the filter text).
  std::string BaseSelection() override;
  std::vector<std::string> RecordStatements(int32_t id) const override;

 private:
  void InitBaseValue();
  void SetControlStatus(bool editing);
  // Toolbar1: button 1 shows PicHT, button 3 PicZK.
  void ShowPage(int button);
  // The picker of a field with its parameters set; null when the field has none or the
  // picker cannot be made.
  IHostPicker* FieldPicker(int index);
  void FieldPicked(int index, std::string& text, Variant& value);
  void FieldTyped(int index, const std::string& typed, Variant& value, std::string& text);
  // The fills after a choice.
  void GetFYMess(int32_t unit_id);
  void GetKHMess(int32_t client_id);
  void GetFzMess(const std::string& mode);
  void GetFJMess(const std::string& room);
  // The monthly price of the first fee row, which counts as the rent row.
  void SetRentPrice(double price);
  double RentPrice() const;
  // The approval's preconditions, in order; the first that fails is said and ends it.
  bool IsCanCheck();

  // The save (zfhd_2_save.cpp). IsCanSave: the fields' own checks, then a tenant and a unit.
  bool IsCanSave();
  // The tenant by name and telephone (类型 1): updated when found, else created; kvTxt(4)
  // takes the ID. Inside the bracket; false when it failed (it has said why).
  bool SavePDM();
  bool SavePdmStep(const std::string& sql);
  // One statement of the save; false with the database's text in last_error_.
  bool Run(const std::string& sql);
  // The header's statement for a new (insert) or a stored contract.
  std::string HeaderStatement(int32_t id, bool is_new, const std::string& number) const;
  // The fee rows: new ones inserted under new keys, stored ones updated. False with the
  // reason in last_error_.
  bool SaveFeeTerms(int32_t contract_id);
  // The handlers of editing besides the plain fields: the lease arithmetic on leaving 起租日期,
  // 止租日期 or 租期, and the fee grid's clicks and edits.
  void InitEditHandlers();
  void LeaseDatesLeft();
  void LeaseMonthsLeft();
  void FeeCellClicked(int row, int col);
  void FeeCellEdited(int row, int col);

  std::string print_file_name_;  // the parameter "printfilename"
};

std::unique_ptr<ModuleObject> NewzfHd_2();

}  // namespace mrvk
