// selPdmFy: the picker of housing units, under the key "selpdmfy". It is the code picker with
// a list of units in place of the codes, a combo box of buildings that narrows it, and
// always one row chosen; clsFy carries the chosen unit back.
#pragma once

#include <map>
#include <memory>
#include <string>

#include "mrvk/master/sel_pdm.h"

namespace mrvk {

// One chosen housing unit.
class clsFy : public ModuleObject, public IPickerObject {
 public:
  std::string ClassName() const override { return "clsFy"; }
  Variant Item(const std::string& name) const override;
  Variant ChosenValue() const override { return Variant(l房源ID); }
  std::string ChosenText() const override { return s房源名称; }

  int32_t l房源ID = 0;
  std::string s房源编号;
  std::string s房源名称;
  std::string s物业;
  std::string s楼宇;
  std::string s朝向;
  std::string s户型;
  std::string s楼层;
  std::string s结构;
  double d面积 = 0;
  std::string s出租状态;
  std::string s业主;
  std::string s备注;
};

class selPdmFy : public selPdm {
 public:
  selPdmFy();

  std::string ClassName() const override { return "selPdmFy"; }
  bool Init(IHostContext& context, int32_t progID, const std::string& name) override;
  bool Clear() override;
  IPickerObject* Objects() override { return fy_.get(); }
  // A unit by its code or name, within the parameters: see the definition.
  bool Validate(const std::string& key, const std::string& value_column,
                const std::string& text_column, const std::string& input, Variant& value,
                std::string& text) override;

  // The buildings: "全部" and the names of fwly in code order.
  kvhost::ComboBox Cmb{"Cmb"};

  static constexpr const char* kAll = "全部";

 protected:
  void ApplyMode() override;
  void LoadData() override;
  void Confirm() override;

 private:
  // The joins of the list and of the check, up to their conditions.
  static std::string Joined();
  // The clauses of 出租状态 and 合同ID.
  std::string StateClauses() const;
  // Fills the combo box of buildings, keeping the key of each by its text.
  void LoadBuildings();
  void Cmb_Click();

  std::map<std::string, int32_t> building_keys_;
  std::unique_ptr<clsFy> fy_;
};

std::unique_ptr<ModuleObject> NewSelPdmFy();
std::unique_ptr<ModuleObject> NewClsFy();

}  // namespace mrvk
