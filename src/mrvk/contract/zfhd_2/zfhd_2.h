// zfHd_2, the rental contract sheet: one contract (a row of fwhd with its unit in fwhdmx and
// its fee terms in fwhdfs) at a time, on two pages switched by Toolbar1: PicHT the contract
// (the unit, the lease, the payment mode, the fee terms) and PicZK the tenant and the
// remarks. It walks over the contracts of its function key dated within the last months
// (the option "befmonth"), or over the one contract it was opened on.
//
// From the document-sheet frame it takes navigation, find, filter and the selection text; it
// adds its fields and pages, the pickers behind the fields and what they fill in (the unit,
// the tenant, the payment mode, the room let), new, edit and cancel, the approved mark, the
// print data file, approval, un-approval and delete. Saving is not served yet: it answers
// false.
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
  // The save of a contract is the sheet's next step; until it is built it answers false
  // and changes nothing.
  bool FileSave() override { return false; }
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

  std::string print_file_name_;  // the parameter "printfilename"
};

std::unique_ptr<ModuleObject> NewzfHd_2();

}  // namespace mrvk
