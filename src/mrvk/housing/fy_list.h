// FY_List, the housing list: the daily view of what is free and what is let. Condition fields
// and four state boxes on top, a read-only grid of the units below. It holds no record of its
// own: new and edit ask the host to open the housing sheet (640002), a double click asks it to
// show the unit; delete runs here on the row in hand. The list loads once its conditions are
// restored from the layout file, then on every Refresh; Find, FindNext and Filter work on the
// grid's rows through the host's grid tool. It prints the grid with a heading of the
// conditions.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "kvhost/lib/control_list.h"
#include "kvhost/lib/convert.h"
#include "kvhost/lib/grid_tool.h"
#include "kvhost/lib/kv_txt.h"
#include "kvhost/lib/simple_controls.h"
#include "kvhost/lib/vs_flex_grid.h"
#include "mrvk/frame/host_contract.h"
#include "mrvk/frame/list_grid.h"
#include "mrvk/frame/picker_contract.h"

namespace mrvk {

class FY_List : public ModuleObject, public IFormUI, public IDesignUI {
 public:
  FY_List();

  std::string ClassName() const override { return "FY_List"; }
  kvhost::ControlList& Controls() override { return controls_; }
  void SetParameters(std::shared_ptr<IParameters>) override {}

  bool Init(IHostContext& context, int32_t progID, int32_t record_id) override;
  bool Clear() override;
  // Loads the list: nothing before DoGetFormStatus has restored the conditions.
  bool Refresh() override;
  // Restores the conditions, the state boxes and the column widths, then loads the list.
  void DoGetFormStatus() override;
  void DoSaveFormStatus() override;
  bool DoSetStatus(const std::string& status, bool flag) override;
  // New and edit go to the housing sheet through the host (filenew, fileedit); the list
  // itself never enters a new or edit mode, so both answer false.
  bool FileNew() override;
  bool FileEdit() override;
  bool FileDelete() override;
  bool Find(const Variant& conditions) override;
  bool FindNext() override;
  bool Filter(const Variant& conditions) override;
  int32_t GetID() override;
  bool DoPrint() override { return PrintList(/*direct=*/true, /*setup=*/false); }
  bool PrintPreview() override { return PrintList(/*direct=*/false, /*setup=*/false); }
  bool PrintSetup() override { return PrintList(/*direct=*/false, /*setup=*/true); }
  std::string ReturnPrintName() override { return print_file_; }

  // Nothing to do on a list.
  bool FileNewNext() override { return false; }
  bool FileSave() override { return false; }
  bool FileCancel() override { return false; }
  bool RecordTop() override { return false; }
  bool RecordPrevious() override { return false; }
  bool RecordNext() override { return false; }
  bool RecordBottom() override { return false; }
  bool Check() override { return false; }
  bool UnCheck() override { return false; }
  bool Help() override { return false; }
  bool CheckStatus(const std::string&) override { return false; }
  bool IsDirty() override { return false; }
  std::string Attributes(int32_t) override { return ""; }
  std::vector<std::string> ServedCommands() override {
    return {"FileNew", "FileEdit",     "FileDelete", "Find",  "Filter",
            "Refresh", "PrintPreview", "DoPrint",    "Export"};
  }

  // The wheel turned to step n: the grid scrolls there.
  void mcMouseEvent_Wheel(int step);

  // The condition fields, by index: estate name, area, layout, use, building type, rent
  // from/to, area from/to, salesman.
  static constexpr int kArea = 0;
  static constexpr int kSalesman = 1;
  static constexpr int kEstate = 2;
  static constexpr int kRentFrom = 3;
  static constexpr int kRentTo = 4;
  static constexpr int kSizeFrom = 5;
  static constexpr int kSizeTo = 6;
  static constexpr int kLayout = 7;
  static constexpr int kUse = 8;
  static constexpr int kBuildingType = 9;
  // The state boxes.
  static constexpr int kFree = 0;
  static constexpr int kPartly = 1;
  static constexpr int kLet = 2;
  static constexpr int kExpired = 3;
  // The grid's columns that the list reads back.
  static constexpr int kColID = 1;
  static constexpr int kColNumber = 2;
  // The housing sheet, which new, edit and the double click ask the host to open.
  static constexpr int32_t kHousingSheet = 640002;

  // The screen.
  kvhost::ControlArray<kvhost::KvTxt> kvTxt{"kvTxt"};
  kvhost::ControlArray<kvhost::CheckBox> chkXS{"chkXS"};
  kvhost::VsFlexGrid Vs{"Vs"};

 private:
  // The statement's conditions from the fields, in their fixed order, then the state clause.
  std::string ConditionText() const;
  std::string StateClause() const;
  // The three lines of the print heading, each ended by a carriage return.
  std::string PrintHeading() const;
  // DoPrint, PrintPreview and PrintSetup.
  bool PrintList(bool direct, bool setup);
  // The picker service of a condition field, set up for it; null when the field has none or
  // the picker refuses to start.
  IHostPicker* FieldPicker(int index);
  void FieldPicked(int index, std::string& text, Variant& value);
  void FieldTyped(int index, const std::string& typed, Variant& value, std::string& text);
  // The 房源ID of the current row; 0 when it is no data row.
  int32_t CurrentID() const;
  // True when the current row is a data row (not a fixed row nor a total row).
  bool OnDataRow() const;
  void Vs_DblClick();

  kvhost::ControlList controls_;
  IHostContext* context_ = nullptr;
  int32_t prog_id_ = 0;
  // Set by DoGetFormStatus: the list loads only once its conditions are known.
  bool status_read_ = false;
  std::unique_ptr<kvhost::GridTool> grid_tool_;
  std::unique_ptr<kvhost::Convert> convert_;
  std::unique_ptr<WheelHook> wheel_;
  // Where the last find stopped, and the column it searched (-1: every shown column).
  int find_row_ = 0;
  int find_col_ = 0;
  int find_in_col_ = -1;
  std::string last_error_;
  std::string print_file_;
};

std::unique_ptr<ModuleObject> NewFY_List();

}  // namespace mrvk
