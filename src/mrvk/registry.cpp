#include "mrvk/registry.h"

#include <map>
#include <mutex>

namespace mrvk {

const std::vector<ClassInfo>& ClassTable() {
  using K = ClassKind;
  static const std::vector<ClassInfo> table = {
      {"mTreeView", K::Procedures}, {"cTreeView", K::Wrapper},   {"mPub", K::Procedures},
      {"PDMLy", K::Sheet},          {"selPdm", K::Picker},       {"clsPdm", K::Data},
      {"FrmFykm", K::Dialog},       {"Cx_YjSk", K::Report},      {"selPdmFy", K::Picker},
      {"clsFy", K::Data},           {"PDMWy", K::Sheet},         {"PDMFykm", K::Sheet},
      {"FrmYz", K::Dialog},         {"PDMYz", K::Sheet},         {"FrmFy", K::Dialog},
      {"PDMFy", K::Sheet},          {"YjSk_S", K::Sheet},        {"cFwHd_unfinish", K::Tool},
      {"cFwHd_finish", K::Tool},    {"ZfHd_S", K::Sheet},        {"frmSel_ZfHd", K::Dialog},
      {"FySk_S", K::Sheet},         {"Cx_ZfHd", K::Report},      {"ZjSk_S", K::Sheet},
      {"Cx_FySk", K::Report},       {"Cx_ZjSk", K::Report},      {"YjTx_Zj", K::Report},
      {"YjTx_Hd", K::Report},       {"zfhd_old", K::Sheet},      {"zfsk_old", K::Sheet},
      {"FY_List", K::Sheet},        {"FY_MX_old", K::Sheet},     {"Sel_FY", K::Picker},
      {"Sel_HT", K::Picker},        {"bMode", K::Procedures},    {"RPT_HT_List", K::Report},
      {"RPT_SK_List", K::Report},   {"RPT_HT_SKQK", K::Report},  {"RPT_SK_QD", K::Report},
      {"RPT_YJ_HD_DQ", K::Report},  {"RPT_YJ_HD_SK", K::Report}, {"zfHd_2", K::Sheet},
      {"zfsk_2", K::Sheet},         {"RPT_SK_QD1", K::Report},   {"FY_MX", K::Sheet},
      {"cFwFy_finish", K::Tool},    {"cFwFy_unfinish", K::Tool}, {"ToWordZFHD", K::Tool},
  };
  return table;
}

const ClassInfo* FindClass(std::string_view name) {
  for (const ClassInfo& c : ClassTable()) {
    if (c.name == name) return &c;
  }
  return nullptr;
}

namespace {

struct Factories {
  std::mutex mu;
  ClassFactories by_name;
};

Factories& Registered() {
  static Factories f;
  static std::once_flag once;
  std::call_once(once, [] {
    RegisterMasterClasses(f.by_name);
    RegisterHousingClasses(f.by_name);
    RegisterContractClasses(f.by_name);
  });
  return f;
}

}  // namespace

void RegisterClass(std::string name, ClassFactory factory) {
  Factories& f = Registered();
  std::lock_guard lock(f.mu);
  f.by_name[std::move(name)] = std::move(factory);
}

std::unique_ptr<ModuleObject> CreateObject(std::string_view name, std::string& error) {
  ClassFactory factory;
  {
    Factories& f = Registered();
    std::lock_guard lock(f.mu);
    auto it = f.by_name.find(name);
    if (it != f.by_name.end()) factory = it->second;
  }
  const ClassInfo* info = FindClass(name);
  if (!factory) {
    if (!info) {
      error = "unknown class \"" + std::string(name) + "\"";
    } else if (info->kind == ClassKind::Dialog) {
      error = "class \"" + std::string(name) +
              "\" is a dialog that its sheet opens, not a class the host creates";
    } else if (info->kind == ClassKind::Procedures || info->kind == ClassKind::Wrapper) {
      error = "\"" + std::string(name) + "\" is not a class the host creates";
    } else {
      error = "class \"" + std::string(name) + "\" is not built yet";
    }
    return nullptr;
  }
  auto obj = factory();
  if (!obj) error = "class \"" + std::string(name) + "\" could not be created";
  return obj;
}

}  // namespace mrvk
