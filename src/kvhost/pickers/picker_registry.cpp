#include "kvhost/pickers/picker_registry.h"

#include <strings.h>

#include <functional>

#include "kvhost/pickers/host_list.h"
#include "kvhost/pickers/module_picker.h"
#include "kvhost/pickers/statement_picker.h"
#include "mrvk/frame/vb.h"

namespace kvhost {
namespace {

std::string Lower(std::string s) {
  for (char& c : s) {
    if (c >= 'A' && c <= 'Z') c = static_cast<char>(c - 'A' + 'a');
  }
  return s;
}

struct ModuleKey {
  const char* key;
  const char* class_name;
  const char* caption;
};

// The keys whose pickers are classes of the module.
const std::vector<ModuleKey>& ModuleKeys() {
  static const std::vector<ModuleKey> keys = {
      {"selpdm", "selPdm", "代码选择"},
      {"selpdmfy", "selPdmFy", "房源选择"},
      {"sel_fy", "Sel_FY", "房源选择"},
      {"sel_ht", "Sel_HT", "合同选择"},
  };
  return keys;
}

const std::vector<FieldListDef>& FieldLists() {
  auto dictionary = [](const char* key, const char* type) {
    return FieldListDef{key, type, "pdmsjzd", "代码", "名称", std::string("类型='") + type + "'"};
  };
  static const std::vector<FieldListDef> lists = {
      {"gy_wy", "物业", "fwwy", "物业编号", "物业名称", ""},
      {"gy_ly", "楼宇", "fwly", "楼宇编号", "楼宇名称", ""},
      {"gy_yz", "业主", "fwyz", "业主编号", "业主名称", "类型=0"},
      {"gy_kh", "客户", "fwyz", "业主编号", "业主名称", "类型=1"},
      {"gy_fykm", "费用科目", "fwfykm", "费用编号", "费用名称", ""},
      {"hp_xsy", "业务员", "pdmxsy", "代码", "名称", "类型ID=1"},
      dictionary("gy_sjzd_lx", "楼宇类型"),
      dictionary("gy_sjzd_kfs", "开发商"),
      dictionary("gy_sjzd_qy", "所属区域"),
      dictionary("gy_sjzd_cx", "房屋朝向"),
      dictionary("gy_sjzd_hx", "户型"),
      dictionary("gy_sjzd_jg", "房屋结构"),
      dictionary("gy_sjzd_yt", "物业用途"),
      dictionary("gy_sjzd_zx", "装修程度"),
      dictionary("gy_sjzd_fymc", "费用名称"),
  };
  return lists;
}

// A column name as the sheets configure them: no blanks, quotes, commas or brackets.
bool IsPlainColumn(const std::string& name) {
  return !name.empty() && name.find_first_of(" \t'\",;()[]") == std::string::npos;
}

bool SameColumn(const std::string& a, const std::string& b) {
  return strcasecmp(a.c_str(), b.c_str()) == 0;
}

}  // namespace

PickerRegistry::PickerRegistry(mrvk::IHostContext& context) : context_(context) {}
PickerRegistry::~PickerRegistry() = default;

const std::vector<std::string>& PickerRegistry::ServiceKeys() {
  static const std::vector<std::string> keys = [] {
    std::vector<std::string> k;
    for (const ModuleKey& m : ModuleKeys()) k.push_back(m.key);
    for (const char* key : {"sel_id_j", "sel_inner_j", "sel_pdmsjzd", "sel_pdmgy", "selpdmkjkm"})
      k.push_back(key);
    return k;
  }();
  return keys;
}

const FieldListDef* PickerRegistry::FindFieldList(const std::string& key) {
  const std::string k = Lower(mrvk::Trim(key));
  for (const FieldListDef& def : FieldLists()) {
    if (def.key == k) return &def;
  }
  return nullptr;
}

mrvk::IHostPicker* PickerRegistry::Service(const std::string& key) {
  const std::string k = Lower(mrvk::Trim(key));
  if (auto it = services_.find(k); it != services_.end()) return it->second.get();
  std::unique_ptr<mrvk::IHostPicker> service;
  for (const ModuleKey& m : ModuleKeys()) {
    if (k == m.key) service = std::make_unique<ModulePicker>(context_, k, m.class_name, m.caption);
  }
  if (!service) {
    if (auto builder = StatementBuilder(k))
      service = std::make_unique<StatementPicker>(context_, std::move(builder));
  }
  if (!service) return nullptr;
  return services_.emplace(k, std::move(service)).first->second.get();
}

void PickerRegistry::ShowFieldPicker(KvTxt& field, std::string& text, mrvk::Variant& value) {
  const std::string& key = field.Config.PickerKey;
  const FieldListDef* def = FindFieldList(key);
  if (!def) {
    // A field may name a service of its own key.
    if (mrvk::IHostPicker* service = Service(key); service && service->Init(0)) {
      std::string chosen_text = text;
      mrvk::Variant chosen_value = value;
      if (service->Show(chosen_text, chosen_value)) {
        text = chosen_text;
        value = chosen_value;
      }
      return;
    }
    if (!Service(key)) mrvk::MsgBox("没有可用的选择列表：" + key, mrvk::msgbox::kInformation, "");
    return;
  }
  const std::string& value_column = field.Config.ValueColumn;
  const std::string& display_column = field.Config.DisplayColumn;
  if (!IsPlainColumn(value_column) || !IsPlainColumn(display_column)) {
    mrvk::MsgBox("选择列表的列设置有误：" + field.DisplayName(), mrvk::msgbox::kCritical, "");
    return;
  }
  // The code and name show; the value and display columns come with them, hidden.
  std::vector<std::string> columns = {def->code_column, def->name_column};
  for (const std::string& c : {value_column, display_column}) {
    bool known = false;
    for (const std::string& have : columns) known = known || SameColumn(have, c);
    if (!known) columns.push_back(c);
  }
  std::string sql = "select ";
  for (size_t i = 0; i < columns.size(); ++i) sql += (i ? "," : "") + columns[i];
  sql += " from " + def->table;
  if (!def->filter.empty()) sql += " where " + def->filter;
  sql += " order by " + def->code_column;

  mrvk::IHostDatabase& db = context_.Database();
  auto rs = db.CreateCommand(sql, 1)->OpenRecordset();
  if (const std::string error = db.Error().Description(); !error.empty()) {
    mrvk::MsgBox("错误：" + error, mrvk::msgbox::kCritical, "");
    return;
  }
  if (!field_list_) field_list_ = std::make_unique<HostList>();
  field_list_->Load(def->caption, columns, {{0, def->code_column}, {1, def->name_column}},
                    rs->GetRows());
  const std::optional<int> row = field_list_->Show();
  if (!row) return;
  value = field_list_->Value(*row, value_column);
  const mrvk::Variant shown = field_list_->Value(*row, display_column);
  text = shown.ToString();
}

}  // namespace kvhost
