#include "kvhost/lib/ini_file.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <sstream>
#include <thread>
#include <vector>

namespace kvhost {
namespace {

namespace fs = std::filesystem;

class IniFileTest : public ::testing::Test {
 protected:
  void SetUp() override {
    dir = fs::temp_directory_path() /
          ("mrvk_ini_" + std::to_string(::getpid()) + "_" +
           ::testing::UnitTest::GetInstance()->current_test_info()->name());
    fs::remove_all(dir);
    fs::create_directories(dir);
    path = (dir / "layout.txt").string();
  }
  void TearDown() override { fs::remove_all(dir); }
  std::string FileText() const {
    std::ifstream in(path, std::ios::binary);
    std::stringstream s;
    s << in.rdbuf();
    return s.str();
  }
  void WriteFile(const std::string& text) const { std::ofstream(path, std::ios::binary) << text; }

  fs::path dir;
  std::string path;
};

TEST_F(IniFileTest, AMissingFileGivesTheDefaultsUntilAWriteMakesIt) {
  IniFile ini;
  ini.FileName(path);
  EXPECT_FALSE(ini.Exists());
  EXPECT_EQ(ini.ReadString("Form", "TEXTBOX_Text1", "默认"), "默认");
  EXPECT_EQ(ini.ReadInt("VsColWidth", "VsCol1", 1234), 1234);
  EXPECT_TRUE(ini.ReadBool("Form", "CHECKBOX_Chk", /*default_value=*/true));
  EXPECT_FALSE(fs::exists(path));

  // Writes make the file in the profile form.
  ini.WriteInt("VsColWidth", "VsCol1", 1200);
  ini.WriteString("Form", "KVTXT_S_kvTxt_3_Text", "北区 A栋");
  ini.WriteBool("Form", "CHECKBOX_Chk", /*value=*/true);
  ini.WriteInt("VsColWidth", "vscol1", -15);  // the same key in another case
  EXPECT_EQ(FileText(),
            "[VsColWidth]\nVsCol1=-15\n[Form]\nKVTXT_S_kvTxt_3_Text=北区 A栋\nCHECKBOX_Chk=1\n");

  IniFile again;
  again.FileName(path);
  EXPECT_TRUE(again.Exists());
  EXPECT_EQ(again.ReadInt("vscolwidth", "VSCOL1", 0), -15);
  EXPECT_EQ(again.ReadString("FORM", "kvtxt_s_kvtxt_3_text", ""), "北区 A栋");
  EXPECT_TRUE(again.ReadBool("Form", "CHECKBOX_Chk", /*default_value=*/false));
}

TEST_F(IniFileTest, ReadsHandWrittenFiles) {
  WriteFile(
      "\xEF\xBB\xBF[Vs]\r\n; a remark\r\nVsWordWrap = true \r\nVsRowHeight=12abc\r\n"
      "VsFixedCols=abc\r\nVsGridColor=70000\r\nVsTotalSave=-5.7\r\nno equals sign\r\n"
      "VsEmpty=\r\n");
  IniFile ini;
  ini.FileName(path);
  EXPECT_TRUE(ini.ReadBool("Vs", "VsWordWrap", /*default_value=*/false));
  EXPECT_EQ(ini.ReadInt("Vs", "VsRowHeight", 0), 12);  // the number stops at the first letter
  EXPECT_EQ(ini.ReadInt("Vs", "VsFixedCols", 7), 0);   // no number reads as 0
  EXPECT_EQ(ini.ReadInt("Vs", "VsGridColor", 7), 7);   // beyond 16 bits
  EXPECT_EQ(ini.ReadInt("Vs", "VsTotalSave", 0), -5);
  EXPECT_EQ(ini.ReadString("Vs", "VsGridColor", ""), "70000");
  EXPECT_EQ(ini.ReadString("Vs", "VsEmpty", "x"), "");  // present but empty
  EXPECT_FALSE(ini.ReadBool("Vs", "VsFixedCols", /*default_value=*/true));
}

TEST_F(IniFileTest, ObjectsOnOneFileKeepEachOthersWrites) {
  IniFile walk, layout, reader;
  walk.FileName(path);
  layout.FileName(path);
  reader.FileName(path);
  layout.WriteInt("VsColWidth", "VsCol1", 900);
  walk.WriteString("Form", "TEXTBOX_Text1", "甲");
  layout.WriteInt("VsIsHidden", "VsCol1", 1);
  EXPECT_EQ(walk.ReadInt("VsIsHidden", "VsCol1", 0), 1);
  EXPECT_EQ(reader.ReadInt("VsColWidth", "VsCol1", 0), 900);
  EXPECT_EQ(reader.ReadString("Form", "TEXTBOX_Text1", ""), "甲");

  // Four threads (one person's sessions closing screens at once) each save 15 keys; two of
  // them hold their keys and write them together, as a layout save does.
  std::vector<std::thread> savers;
  for (int t = 0; t < 4; ++t) {
    savers.emplace_back([this, t] {
      IniFile ini;
      ini.FileName(path);
      if (t % 2 == 1) ini.BeginUpdate();
      for (int k = 0; k < 15; ++k)
        ini.WriteInt("VsColWidth" + std::to_string(t), "VsCol" + std::to_string(k), 100 + k);
      // Held keys read back before they reach the file.
      if (t % 2 == 1) {
        EXPECT_EQ(ini.ReadInt("VsColWidth" + std::to_string(t), "VsCol14", 0), 114);
      }
      if (t == 3) ini.EndUpdate();  // thread 1 leaves its keys to the object's end
    });
  }
  for (std::thread& saver : savers) saver.join();
  int kept = 0;
  for (int t = 0; t < 4; ++t) {
    for (int k = 0; k < 15; ++k)
      kept += reader.ReadInt("VsColWidth" + std::to_string(t), "VsCol" + std::to_string(k), 0) ==
              100 + k;
  }
  EXPECT_EQ(kept, 60);
  EXPECT_EQ(reader.ReadInt("VsColWidth", "VsCol1", 0), 900);
  // No temporary file is left behind.
  EXPECT_EQ(std::distance(fs::directory_iterator(dir), fs::directory_iterator()), 1);
}

TEST_F(IniFileTest, LineBreaksAndUnwritableFoldersDoNotBreakTheFile) {
  IniFile ini;
  ini.FileName(path);
  ini.WriteString("Form", "TEXTBOX_Memo", "第一行\r\n[Vs]\nx=1");
  EXPECT_EQ(ini.ReadString("Form", "TEXTBOX_Memo", ""), "第一行  [Vs] x=1");
  EXPECT_EQ(ini.ReadString("Vs", "x", "none"), "none");

  IniFile nowhere;
  nowhere.FileName((dir / "missing" / "layout.txt").string());
  nowhere.WriteInt("Vs", "VsFixedCols", 2);
  EXPECT_FALSE(nowhere.Exists());
  EXPECT_EQ(nowhere.ReadInt("Vs", "VsFixedCols", 0), 0);
}

}  // namespace
}  // namespace kvhost
