#include "mrvk/master/pdm_yz.h"

namespace mrvk {
namespace {

constexpr int32_t kOwnersProgID = 870004;

}  // namespace

PDMYz::PDMYz()
    : ListMasterSheet(
          {"PDMYz",
           "行号|编号      |姓名            |性别     |电话            |身份证号           "
           "|籍贯      |工作单位                   |备注                                "
           "|业主ID",
           "fwyz",
           "业主ID",
           {"业主编号", "业主名称", "性别", "电话", "身份证号", "籍贯", "工作单位", "备注",
            "业主ID"},
           "fwfy"}),
      form_(std::make_unique<FrmYz>()) {
  HearDialog(*form_);
}

void PDMYz::TakeProgID(int32_t progID) {
  const bool owners = progID == kOwnersProgID;
  word_ = owners ? "业主" : "客户";
  type_ = owners ? 0 : 1;
}

std::string PDMYz::LoadSql() const {
  return "select 业主编号,业主名称,性别,电话,身份证号,籍贯,工作单位,备注,业主ID from fwyz where "
         "类型=" +
         std::to_string(type_) + " order by 业主编号";
}

// Owners and clients keep their own column widths.
std::string PDMYz::LayoutName() const { return ClassName() + "-" + std::to_string(type_); }

void PDMYz::ShowEntry(int32_t id) { form_->py_Init(*context_, type_, id, /*view_only=*/false); }

std::unique_ptr<ModuleObject> NewPDMYz() { return std::make_unique<PDMYz>(); }

}  // namespace mrvk
