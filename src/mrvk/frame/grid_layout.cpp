#include "mrvk/frame/grid_layout.h"

#include <algorithm>
#include <cctype>
#include <exception>
#include <filesystem>
#include <vector>

#include "kvhost/lib/display_format.h"
#include "kvhost/lib/ini_file.h"
#include "kvhost/lib/kv_grid.h"
#include "kvhost/lib/kv_txt.h"
#include "kvhost/lib/simple_controls.h"
#include "kvhost/lib/status_control.h"
#include "kvhost/lib/tree_view_control.h"
#include "mrvk/frame/vb.h"

namespace mrvk {
namespace {

using kvhost::IniFile;
using kvhost::VsFlexGrid;

// Runs one statement of a layout procedure; a failure skips it and the procedure goes on, as
// any run-time failure does there (the library's too). An abort is no std::exception and
// passes.
template <typename Statement>
void Step(Statement&& statement) {
  try {
    statement();
  } catch (const std::exception&) {
  }
}

std::string Upper(std::string text) {
  for (char& ch : text) ch = static_cast<char>(std::toupper(static_cast<unsigned char>(ch)));
  return text;
}

// The option keys of the decimals of "VsColValDataType" 1 to 8.
constexpr int kValueTypeOptions[] = {7, 8, 9, 12, 10, 13, 11, 14};
// The fore colour of group subtotal rows and the back colour of the grand total row.
constexpr int32_t kSubtotalForeColour = 128;
constexpr int32_t kGrandTotalBackColour = 0xFFFF80;
constexpr const char* kFormSection = "Form";

// A number format with n decimals on integer part p: p + "." + n "#", or p alone for 0.
// A negative count fails, as VB's String does.
std::string WithDecimals(const std::string& p, double decimals) {
  const int n = static_cast<int>(decimals);
  if (n < 0) throw VbError(vb_error::kSubscriptOutOfRange, "无效的小数位数");
  return n == 0 ? p : p + "." + std::string(static_cast<size_t>(n), '#');
}

// Step 1.4 of LoadGridLayout: the column's format.
void LoadColumnFormat(IniFile& ini, VsFlexGrid& grid, int c, const std::string& suffix,
                      const std::string& key, IHostContext& context) {
  const int type = grid.ColDataType(c);
  const std::string f = Trim(ini.ReadString("VsColFormat" + suffix, key, grid.ColFormat(c)));
  if (type != kvhost::grid_type::kEmpty && type != kvhost::grid_type::kDouble) {
    grid.ColFormat(c) = f.find("###") != std::string::npos ? "" : f;
    return;
  }
  if (f.empty()) return;
  std::string p = f;
  if (const size_t dot = f.find('.'); dot != std::string::npos) {
    // F up to two characters before the "."; a "." in front fails like VB's Left.
    if (dot == 0) throw VbError(vb_error::kSubscriptOutOfRange, "无效的格式: " + f);
    p = f.substr(0, dot - 1) + (grid.Version == 700 ? "#" : "0");
  }
  const std::string decimals = Trim(ini.ReadString("VsColFormat_Xs" + suffix, key, ""));
  if (!decimals.empty()) {
    grid.ColFormat(c) = WithDecimals(p, Val(decimals));
    return;
  }
  const int value_type = ini.ReadInt("VsColValDataType" + suffix, key, 0);
  if (value_type >= 1 && value_type <= 8) {
    const IHostOption option = context.GetOption(Variant(kValueTypeOptions[value_type - 1]));
    grid.ColFormat(c) = WithDecimals(p, Val(option.Value));
    return;
  }
  grid.ColFormat(c) = f;
}

// Step 4 of LoadGridLayout: the group subtotals and the grand total.
void LoadTotals(VsFlexGrid& grid, const std::vector<int>& groups, const std::vector<int>& totals) {
  // 4.1
  Step([&] { grid.Subtotal(kvhost::subtotal::kClear); });
  grid.SubtotalPosition = kvhost::subtotal_position::kBelow;
  // 4.2 The caption column: the first shown column from FixedCols on.
  int caption_col = grid.FixedCols();
  for (int c = grid.FixedCols(); c < grid.Cols(); ++c) {
    if (!grid.ColHidden(c) && grid.ColWidth(c) > 0) {
      caption_col = c;
      break;
    }
  }
  if (!groups.empty()) {
    // 4.3
    const bool one_group = groups.size() == 1;
    for (int g : groups) {
      for (int t : totals) {
        kvhost::SubtotalArgs args;
        args.group_on = g;
        args.total_on = t;
        args.fore_color = kSubtotalForeColour;
        args.caption = "小计%s";
        if (one_group) {
          args.match_from = g;
          args.total_only = true;
        }
        Step([&] { grid.Subtotal(kvhost::subtotal::kSum, args); });
      }
    }
    // 4.4 Tidy the subtotal rows.
    auto is_subtotal_at = [&](int r, int c) {
      return grid.Cell(kvhost::cell_property::kForeColor, r, c).ToLong() == kSubtotalForeColour;
    };
    if (one_group) {
      for (int r = grid.FixedRows(); r < grid.Rows(); ++r) {
        Step([&] {
          if (is_subtotal_at(r, groups[0]))
            grid.TextMatrix(r, caption_col) = grid.TextMatrix(r, grid.FixedCols());
        });
      }
    } else {
      for (int r = grid.FixedRows(); r < grid.Rows(); ++r) {
        bool done = false;
        for (int g : groups) {
          if (done) break;
          Step([&] {
            if (!is_subtotal_at(r, g)) return;
            for (int c = 0; c < g; ++c) grid.TextMatrix(r, c) = "";
            done = true;
          });
        }
      }
    }
  }
  // 4.5 The grand total.
  for (int t : totals) {
    kvhost::SubtotalArgs args;
    args.total_on = t;
    args.back_color = kGrandTotalBackColour;
    args.caption = "合计";
    Step([&] { grid.Subtotal(kvhost::subtotal::kSum, args); });
  }
  // 4.6 (the last row is the grand total; a grid without data rows has none, and its header
  // keeps its caption)
  if (caption_col != grid.FixedCols())
    Step([&] {
      const int last = grid.Rows() - 1;
      if (last >= grid.FixedRows() && grid.IsSubtotal(last))
        grid.TextMatrix(last, caption_col) = "合计";
    });
}

// The types whose state is one text of the control's own (status_control.h).
bool IsStatusType(const std::string& upper_type) {
  return upper_type == "SEARCHBOX" || upper_type == "DTPICKER" || upper_type == "GCDTP" ||
         upper_type == "LISTVIEW";
}

// The key of a control in the section "Form".
std::string FormKey(const kvhost::Control& control) {
  std::string key = Upper(control.TypeName()) + "_" + control.Name();
  if (GetIndex(control) != -1) key += "_" + std::to_string(GetIndex(control));
  return key;
}

// A saved Value comes back as a number when it was one.
Variant SavedValue(const std::string& text) {
  if (!kvhost::IsPlainNumber(text)) return Variant(text);
  if (text.find('.') == std::string::npos && text.size() < 16) return Variant(std::stoll(text));
  return Variant(Val(text));
}

// The first node of the tree, in the order of the Nodes collection, with the text.
kvhost::TreeNode* NodeWithText(const kvhost::TreeView& tree, const std::string& text) {
  const std::string wanted = Upper(text);
  for (int i = 1; i <= tree.Nodes.Count(); ++i) {
    kvhost::TreeNode* node = tree.Nodes.Item(i);
    if (node && Upper(node->Text) == wanted) return node;
  }
  return nullptr;
}

}  // namespace

int16_t GetIndex(const kvhost::Control& control) {
  return static_cast<int16_t>(control.Index() < 0 ? -1 : control.Index());
}

std::string LayoutPath(const std::string& name, IHostContext& context) {
  std::string folder = context.Environment().AppPath();
  if (folder.empty() || folder.back() != '/') folder += "/";
  folder += "selfbb";
  std::error_code ignored;
  std::filesystem::create_directories(folder, ignored);
  return folder + "/" + name + ".txt";
}

std::string GridSuffix(const kvhost::Control& grid) {
  std::string suffix;
  if (GetIndex(grid) != -1) suffix = "_" + std::to_string(GetIndex(grid));
  if (Upper(grid.Name()) != "VS") suffix = "_" + grid.Name() + suffix;
  return suffix;
}

void LoadGridLayout(const std::string& file, VsFlexGrid& grid, bool widthsOnly,
                    IHostContext& context) {
  IniFile ini;
  ini.FileName(file);
  // 1. The suffix, then each column.
  const std::string suffix = GridSuffix(grid);
  std::vector<int> groups;
  std::vector<int> totals;
  for (int c = 0; c < grid.Cols(); ++c) {
    const std::string key = "VsCol" + std::to_string(c);
    // 1.1
    Step([&] {
      if (ini.ReadInt("VsIsHidden" + suffix, key, grid.ColWidth(c) == 0 ? 1 : 0) == 1)
        grid.ColWidth(c) = 0;
      else
        grid.ColWidth(c) = ini.ReadInt("VsColWidth" + suffix, key, grid.ColWidth(c));
    });
    if (widthsOnly) continue;
    // 1.2
    Step([&] {
      if (grid.FixedRows() >= grid.Rows()) return;
      const int sort = ini.ReadInt("VsIsSort" + suffix, key, 0);
      grid.SetCol(c);
      grid.SetSort(sort);
    });
    // 1.3
    Step([&] {
      grid.MergeCol(c) = ini.ReadInt("VsIsColMerge" + suffix, key, grid.MergeCol(c) ? 1 : 0) == 1;
    });
    Step([&] {
      grid.ColDataType(c) = ini.ReadInt("VsColDataType" + suffix, key, grid.ColDataType(c));
    });
    // 1.4
    Step([&] { LoadColumnFormat(ini, grid, c, suffix, key, context); });
    // 1.5
    Step([&] {
      grid.ColAlignment(c) = ini.ReadInt("VsColAlignment" + suffix, key, grid.ColAlignment(c));
    });
    // 1.6 (the group list's caption is "小计"; the subtotal call below words it "小计%s")
    Step([&] {
      if (ini.ReadInt("VsIsGroupOn" + suffix, key, 0) == 1) groups.push_back(c);
    });
    Step([&] {
      if (ini.ReadInt("VsIsTotalOn" + suffix, key, 0) == 1) totals.push_back(c);
    });
  }
  // 2.
  if (widthsOnly) return;
  const std::string vs = "Vs" + suffix;
  // 3.
  Step([&] {
    if (ini.ReadInt(vs, "VsTotalSave", 0) != 1) return;
    grid.Subtotal(kvhost::subtotal::kClear);
    grid.SubtotalPosition = kvhost::subtotal_position::kBelow;
  });
  // 4.
  if (!totals.empty()) LoadTotals(grid, groups, totals);
  // 5.
  Step([&] {
    const int fallback = grid.Rows() > grid.FixedRows() ? grid.RowHeight(grid.FixedRows()) : 0;
    const int height = ini.ReadInt(vs, "VsRowHeight", static_cast<int16_t>(fallback));
    for (int r = grid.FixedRows(); r < grid.Rows(); ++r) grid.RowHeight(r) = height;
  });
  Step([&] {
    const int fallback = grid.FixedRows() > 0 ? grid.RowHeight(0) : 0;
    const int height = ini.ReadInt(vs, "VsFixedRowHeight", static_cast<int16_t>(fallback));
    for (int r = 0; r < grid.FixedRows(); ++r) grid.RowHeight(r) = height;
  });
  // 6.
  Step([&] {
    grid.FrozenCols = ini.ReadInt(vs, "VsFixedCols", static_cast<int16_t>(grid.FrozenCols));
  });
  // 7.
  Step([&] {
    double colour = Val(ini.ReadString(vs, "VsGridColor", std::to_string(grid.GridColor)));
    if (colour > 2147483647.0) colour = 30 - colour;
    int r = 0, g = 0, b = 0;
    if (SplitColour(static_cast<int32_t>(colour), r, g, b))
      grid.GridColor = r + g * 256 + b * 65536;
  });
  // 8.
  Step([&] { grid.WordWrap = ini.ReadBool(vs, "VsWordWrap", grid.WordWrap); });
  // 9. The first use of a screen writes its defaults.
  if (!ini.Exists()) SaveGridLayout(file, grid, /*widthsOnly=*/false);
}

void SaveGridLayout(const std::string& file, VsFlexGrid& grid, bool widthsOnly) {
  IniFile ini;
  ini.FileName(file);
  // The keys are written to the file together when the procedure ends.
  ini.BeginUpdate();
  const std::string suffix = GridSuffix(grid);
  for (int c = 0; c < grid.Cols(); ++c) {
    const std::string key = "VsCol" + std::to_string(c);
    Step([&] { ini.WriteInt("VsIsHidden" + suffix, key, grid.ColWidth(c) == 0 ? 1 : 0); });
    // A hidden column keeps its last width in the file.
    Step([&] {
      if (grid.ColWidth(c) > 0) ini.WriteInt("VsColWidth" + suffix, key, grid.ColWidth(c));
    });
    if (widthsOnly) continue;
    Step([&] { ini.WriteInt("VsIsColMerge" + suffix, key, grid.MergeCol(c) ? 1 : 0); });
    Step([&] { ini.WriteInt("VsColDataType" + suffix, key, grid.ColDataType(c)); });
    Step([&] { ini.WriteString("VsColFormat" + suffix, key, grid.ColFormat(c)); });
    Step([&] { ini.WriteInt("VsColAlignment" + suffix, key, grid.ColAlignment(c)); });
  }
  if (widthsOnly) return;
  const std::string vs = "Vs" + suffix;
  Step([&] {
    if (grid.Rows() > grid.FixedRows())
      ini.WriteInt(vs, "VsRowHeight", grid.RowHeight(grid.FixedRows()));
  });
  Step([&] {
    if (grid.FixedRows() > 0) ini.WriteInt(vs, "VsFixedRowHeight", grid.RowHeight(0));
  });
  Step([&] { ini.WriteInt(vs, "VsFixedCols", grid.FrozenCols); });
  Step([&] { ini.WriteString(vs, "VsGridColor", std::to_string(grid.GridColor)); });
  Step([&] { ini.WriteInt(vs, "VsWordWrap", grid.WordWrap ? 1 : 0); });
}

bool SplitColour(int32_t colour, int& r, int& g, int& b) {
  // The system colours by index, as a standard desktop shows them (0x00BBGGRR).
  static constexpr int32_t kSystemColours[] = {
      0xC8C8C8, 0x000000, 0xD1B499, 0xDBCDBF, 0xF0F0F0, 0xFFFFFF, 0x646464, 0x000000,
      0x000000, 0x000000, 0xB4B4B4, 0xFCF7F4, 0xABABAB, 0xFF9933, 0xFFFFFF, 0xF0F0F0,
      0xA0A0A0, 0x6D6D6D, 0x000000, 0x544E43, 0xFFFFFF, 0x696969, 0xE3E3E3, 0x000000,
      0xE1FFFF, -1,       0xCC6600, 0xEAD1B9, 0xF2E4D7, 0xFF9933, 0xF0F0F0};
  int32_t value = colour;
  if (colour < 0) {
    const uint32_t bits = static_cast<uint32_t>(colour);
    const uint32_t index = bits & 0xFFFFFF;
    if ((bits & 0x7F000000) != 0 || index >= std::size(kSystemColours)) return false;
    value = kSystemColours[index];
    if (value < 0) return false;
  } else if (colour > 0xFFFFFF) {
    return false;
  }
  r = value & 255;
  g = (value / 256) & 255;
  b = (value / 65536) & 255;
  return true;
}

void sbGetFormStatus(const std::string& pFile, bool pbOnlyColWidth,
                     const kvhost::ControlList& controls, IHostContext& context) {
  IniFile ini;
  ini.FileName(pFile);
  for (kvhost::Control* control : controls) {
    // A control of another class under a known type name is skipped like a failure.
    Step([&] {
      const std::string key = FormKey(*control);
      const std::string type = Upper(control->TypeName());
      if (type == "KVTXT_S") {
        auto& field = dynamic_cast<kvhost::KvTxt&>(*control);
        Step([&] {
          field.Value = SavedValue(
              Trim(ini.ReadString(kFormSection, key + "_Value", field.Value.ToString())));
        });
        Step([&] { field.Text = Trim(ini.ReadString(kFormSection, key + "_Text", field.Text)); });
      } else if (type == "CHECKBOX") {
        auto& box = dynamic_cast<kvhost::CheckBox&>(*control);
        Step([&] { box.Value = ini.ReadBool(kFormSection, key, box.Value != 0) ? 1 : 0; });
      } else if (type == "TEXTBOX") {
        auto& box = dynamic_cast<kvhost::TextBox&>(*control);
        Step([&] { box.Text = ini.ReadString(kFormSection, key, box.Text); });
      } else if (type == "COMBOBOX") {
        auto& box = dynamic_cast<kvhost::ComboBox&>(*control);
        Step([&] { box.Text = ini.ReadString(kFormSection, key, box.Text); });
      } else if (type == "OPTIONBUTTON") {
        auto& option = dynamic_cast<kvhost::OptionButton&>(*control);
        Step([&] {
          // Setting one button of a group clears the others, as a program's write does.
          if (ini.ReadInt(kFormSection, key, option.Value ? 1 : 0) != 0)
            option.Select();
          else
            option.Value = false;
        });
      } else if (type == "TREEVIEW") {
        auto& tree = dynamic_cast<kvhost::TreeView&>(*control);
        Step([&] {
          const std::string text = ini.ReadString(kFormSection, key, "");
          kvhost::TreeNode* node = text.empty() ? nullptr : NodeWithText(tree, text);
          if (!node) return;
          tree.SetSelectedItem(node);
          tree.EnsureVisible(*node);
        });
      } else if (type == "KVGRID") {
        auto& grid = dynamic_cast<kvhost::KvGrid&>(*control);
        for (int c = 0; c < grid.Cols(); ++c) {
          Step([&] {
            grid.ColWidth(c) =
                ini.ReadInt(kFormSection, key + "_Col" + std::to_string(c), grid.ColWidth(c));
          });
        }
      } else if (type == "VSFLEXGRID") {
        Step([&] {
          LoadGridLayout(pFile, dynamic_cast<VsFlexGrid&>(*control), pbOnlyColWidth, context);
        });
      } else if (IsStatusType(type)) {
        auto& status = dynamic_cast<kvhost::StatusControl&>(*control);
        Step([&] {
          const std::string text = ini.ReadString(kFormSection, key, status.SaveStatus());
          status.GetStatus(text);
        });
      }
    });
  }
}

void sbSaveFormStatus(const std::string& pFile, bool pbOnlyColWidth,
                      const kvhost::ControlList& controls) {
  IniFile ini;
  ini.FileName(pFile);
  // The keys are written to the file together when the procedure ends.
  ini.BeginUpdate();
  for (kvhost::Control* control : controls) {
    // A control of another class under a known type name is skipped like a failure.
    Step([&] {
      const std::string key = FormKey(*control);
      const std::string type = Upper(control->TypeName());
      if (type == "KVTXT_S") {
        auto& field = dynamic_cast<kvhost::KvTxt&>(*control);
        Step([&] { ini.WriteString(kFormSection, key + "_Value", field.Value.ToString()); });
        Step([&] { ini.WriteString(kFormSection, key + "_Text", field.Text); });
      } else if (type == "CHECKBOX") {
        Step([&] {
          ini.WriteBool(kFormSection, key, dynamic_cast<kvhost::CheckBox&>(*control).Value != 0);
        });
      } else if (type == "TEXTBOX") {
        Step([&] {
          ini.WriteString(kFormSection, key, dynamic_cast<kvhost::TextBox&>(*control).Text);
        });
      } else if (type == "COMBOBOX") {
        Step([&] {
          ini.WriteString(kFormSection, key, dynamic_cast<kvhost::ComboBox&>(*control).Text);
        });
      } else if (type == "OPTIONBUTTON") {
        Step([&] {
          ini.WriteInt(kFormSection, key,
                       dynamic_cast<kvhost::OptionButton&>(*control).Value ? 1 : 0);
        });
      } else if (type == "TREEVIEW") {
        Step([&] {
          const kvhost::TreeNode* node = dynamic_cast<kvhost::TreeView&>(*control).SelectedItem();
          if (node) ini.WriteString(kFormSection, key, node->Text);
        });
      } else if (type == "KVGRID") {
        auto& grid = dynamic_cast<kvhost::KvGrid&>(*control);
        for (int c = 0; c < grid.Cols(); ++c) {
          Step([&] {
            ini.WriteInt(kFormSection, key + "_Col" + std::to_string(c), grid.ColWidth(c));
          });
        }
      } else if (type == "VSFLEXGRID") {
        Step([&] { SaveGridLayout(pFile, dynamic_cast<VsFlexGrid&>(*control), pbOnlyColWidth); });
      } else if (IsStatusType(type)) {
        Step([&] {
          ini.WriteString(kFormSection, key,
                          dynamic_cast<kvhost::StatusControl&>(*control).SaveStatus());
        });
      }
    });
  }
}

int WheelRate(IHostContext& context) {
  const int rate =
      static_cast<int>(Val(context.GetSystemOption(Variant("mouseeventscrollrate")).Value));
  return rate == 0 ? 5 : rate;
}

int WheelSteps(int rows, int rate) { return (rows - 1) / rate; }

int WheelPosition(int top_row, int rate) { return top_row / rate; }

int WheelTopRow(int step, int rate, int rows) {
  if (step < rate) return step;
  return std::min((step - 1) * rate, rows - 1);
}

}  // namespace mrvk
