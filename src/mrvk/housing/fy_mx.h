// FY_MX, the housing sheet: one housing unit (a row of fwfy) with its owner, its facilities
// and its rooms, on two pages switched by Toolbar1 (PicJB basic information, PicFZ the rooms).
// A save also creates the estate, the area and the owner the unit names when the database
// does not know them yet (SavePDM), inside the save's bracket.
//
// From the document-sheet frame it takes navigation, find, filter, the selection text and
// the guard against another clerk's save in between; it adds its fields and pages, the
// pickers behind the fields, the facility boxes, new/edit/cancel/save/delete and the print
// data file. The rooms of the page PicFZ are FyRooms.
#pragma once

#include <memory>
#include <string>

#include "kvhost/lib/kv_txt.h"
#include "kvhost/lib/simple_controls.h"
#include "kvhost/lib/toolbar.h"
#include "mrvk/frame/document_sheet.h"
#include "mrvk/frame/picker_contract.h"
#include "mrvk/housing/fy_rooms.h"

namespace mrvk {

class FY_MX : public DocumentSheet {
 public:
  FY_MX() : FY_MX(/*with_rooms=*/true) {}

  std::string ClassName() const override { return "FY_MX"; }

  bool FileNew() override;
  bool FileEdit() override;
  bool FileSave() override;
  bool FileDelete() override;
  bool FileCancel() override;
  bool DoPrint() override;
  bool PrintPreview() override { return DoPrint(); }
  bool PrintSetup() override { return DoPrint(); }
  bool DoSetStatus(const std::string& status, bool flag) override;
  void DoGetFormStatus() override;
  void DoSaveFormStatus() override;
  std::vector<SearchField> SearchFields() override;

  // The screen.
  kvhost::Toolbar Toolbar1{"Toolbar1"};
  kvhost::Frame PicJB{"PicJB", -1, "PictureBox"};
  kvhost::Frame PicFZ{"PicFZ", -1, "PictureBox"};
  kvhost::Frame FraJC{"FraJC"};  // 基础设施
  kvhost::Frame FraPT{"FraPT"};  // 配套设施
  kvhost::Frame FraYZ{"FraYZ"};  // 业主详细信息(可直接输入)
  kvhost::Frame FraFY{"FraFY"};  // 房源详细信息, the one page of the sheet without rooms
  kvhost::ControlArray<kvhost::KvTxt> kvTxt{"kvTxt"};
  kvhost::ControlArray<kvhost::OptionButton> optXB{"optXB"};
  kvhost::ControlArray<kvhost::CheckBox> chkJC{"chkJC"};
  kvhost::ControlArray<kvhost::CheckBox> chkPT{"chkPT"};
  kvhost::CheckBox Chk{"Chk"};
  kvhost::Label lblRecord{"lblRecord"};
  kvhost::Label Lab_Status{"Lab_Status"};
  kvhost::Label LabFilter{"LabFilter"};
  FyRooms rooms;

 protected:
  // with_rooms false: the sheet of units let whole (FY_MX_old): one page, no rooms, no
  // 装修程度, a known owner's details not updated.
  explicit FY_MX(bool with_rooms);

  void InitForm() override;
  void ClearForm() override;
  void UpdateForm(Recordset& rs, const std::string& position) override;
  void FilterShown(bool in_force) override { LabFilter.Visible = in_force; }
  std::vector<std::string> RecordStatements(int32_t id) const override;

 private:
  void InitBaseValue();
  void SetEnabled(bool editing);
  bool IsCanSave();
  bool SavePDM();
  void GetSets(std::string& basic, std::string& furnishing) const;
  void SetSets(const std::string& basic, const std::string& furnishing);
  void GetYzMess(const Variant& owner_id);
  // Toolbar1: button 1 shows PicJB, button 3 PicFZ.
  void ShowPage(int button);
  // The picker of a field's index with its parameters set; null when the field has none or
  // the picker cannot be made.
  IHostPicker* FieldPicker(int index);
  void FieldPicked(int index, std::string& text, Variant& value);
  void FieldTyped(int index, const std::string& typed_text, Variant& value, std::string& text);
  // Runs a statement of SavePDM; false after its box when it failed.
  bool SavePdmStep(const std::string& sql);
  // Runs a statement of the save; false when it failed (the error is the last error).
  bool Run(const std::string& sql);
  // The record's SQL values of the fields.
  std::string TextOf(int index) const;
  std::string NumberOf(int index) const;
  std::string ValueOf(int index) const;

  const bool with_rooms_;
};

// FY_MX_old: the housing sheet for units let whole, on one page ("房源详细信息"), without
// rooms and 装修程度; it answers "check" to Attributes(98).
class FY_MX_old : public FY_MX {
 public:
  FY_MX_old() : FY_MX(/*with_rooms=*/false) {}
  std::string ClassName() const override { return "FY_MX_old"; }
  std::string Attributes(int32_t key) override { return key == 98 ? "check" : ""; }
};

std::unique_ptr<ModuleObject> NewFY_MX();
std::unique_ptr<ModuleObject> NewFY_MX_old();

}  // namespace mrvk
