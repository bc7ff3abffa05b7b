#include "kvhost/lib/ini_file.h"

#include <strings.h>
#include <sys/stat.h>

#include <cmath>
#include <fstream>
#include <limits>
#include <sstream>

#include "kvhost/lib/atomic_file.h"
#include "mrvk/frame/vb.h"

namespace kvhost {
namespace {

bool SameName(const std::string& a, const std::string& b) {
  return strcasecmp(a.c_str(), b.c_str()) == 0;
}

std::string Strip(const std::string& text) {
  const size_t b = text.find_first_not_of(" \t\r");
  if (b == std::string::npos) return "";
  const size_t e = text.find_last_not_of(" \t\r");
  return text.substr(b, e - b + 1);
}

}  // namespace

void IniFile::FileName(const std::string& path) {
  path_ = path;
  stamp_ = Stamp{};
  sections_.clear();
  Refresh();
}

bool IniFile::Exists() const {
  struct stat st {};
  return !path_.empty() && ::stat(path_.c_str(), &st) == 0;
}

IniFile::Stamp IniFile::CurrentStamp() const {
  struct stat st {};
  Stamp now;
  if (::stat(path_.c_str(), &st) == 0) {
    now.inode = st.st_ino;
    now.size = st.st_size;
    now.mtime_ns = static_cast<int64_t>(st.st_mtim.tv_sec) * 1000000000 + st.st_mtim.tv_nsec;
  }
  return now;
}

void IniFile::Refresh() {
  if (CurrentStamp() == stamp_) return;
  Load();
}

void IniFile::Load() {
  stamp_ = CurrentStamp();
  sections_.clear();
  std::ifstream in(path_, std::ios::binary);
  std::string line;
  bool first = true;
  while (std::getline(in, line)) {
    if (first && line.rfind("\xEF\xBB\xBF", 0) == 0) line.erase(0, 3);  // a UTF-8 mark
    first = false;
    const std::string text = Strip(line);
    if (text.empty() || text[0] == ';') continue;
    if (text.front() == '[' && text.back() == ']') {
      sections_.push_back(Section{Strip(text.substr(1, text.size() - 2)), {}});
      continue;
    }
    const size_t eq = text.find('=');
    if (eq == std::string::npos || sections_.empty()) continue;
    sections_.back().entries.emplace_back(Strip(text.substr(0, eq)), Strip(text.substr(eq + 1)));
  }
  for (const auto& w : held_) Set(w[0], w[1], w[2]);
}

const std::string* IniFile::Find(const std::string& section, const std::string& key) {
  Refresh();
  for (const Section& s : sections_) {
    if (!SameName(s.name, section)) continue;
    for (const auto& [k, v] : s.entries) {
      if (SameName(k, key)) return &v;
    }
  }
  return nullptr;
}

std::string IniFile::ReadString(const std::string& section, const std::string& key,
                                const std::string& default_value) {
  const std::string* value = Find(section, key);
  return value ? *value : default_value;
}

bool IniFile::ReadBool(const std::string& section, const std::string& key, bool default_value) {
  const std::string* value = Find(section, key);
  if (!value) return default_value;
  if (SameName(*value, "true")) return true;
  return mrvk::Val(*value) != 0;
}

int16_t IniFile::ReadInt(const std::string& section, const std::string& key,
                         int16_t default_value) {
  const std::string* value = Find(section, key);
  if (!value) return default_value;
  const double v = std::trunc(mrvk::Val(*value));
  if (v < std::numeric_limits<int16_t>::min() || v > std::numeric_limits<int16_t>::max())
    return default_value;
  return static_cast<int16_t>(v);
}

void IniFile::WriteString(const std::string& section, const std::string& key,
                          const std::string& value) {
  if (path_.empty()) return;
  // A line break would end the value early: it is kept as a blank.
  std::string one_line = value;
  for (char& ch : one_line) {
    if (ch == '\n' || ch == '\r') ch = ' ';
  }
  if (update_depth_ > 0) {
    Refresh();
    Set(section, key, one_line);
    held_.push_back({section, key, one_line});
    return;
  }
  // Read, change and write under the folder's lock, from the file as it is now: the stamp
  // alone could miss a write of another object in the same instant.
  FolderLock lock(path_);
  Load();
  Set(section, key, one_line);
  Save();
}

void IniFile::Set(const std::string& section, const std::string& key, const std::string& value) {
  Section* target = nullptr;
  for (Section& s : sections_) {
    if (SameName(s.name, section)) target = &s;
  }
  if (!target) {
    sections_.push_back(Section{section, {}});
    target = &sections_.back();
  }
  bool found = false;
  for (auto& [k, v] : target->entries) {
    if (SameName(k, key)) {
      v = value;
      found = true;
    }
  }
  if (!found) target->entries.emplace_back(key, value);
}

void IniFile::EndUpdate() {
  if (update_depth_ == 0 || --update_depth_ > 0 || held_.empty()) return;
  FolderLock lock(path_);
  Load();
  Save();
  held_.clear();
}

IniFile::~IniFile() {
  if (update_depth_ == 0) return;
  update_depth_ = 1;
  EndUpdate();
}

void IniFile::WriteBool(const std::string& section, const std::string& key, bool value) {
  WriteString(section, key, value ? "1" : "0");
}

void IniFile::WriteInt(const std::string& section, const std::string& key, int value) {
  WriteString(section, key, std::to_string(value));
}

void IniFile::Save() {
  std::ostringstream text;
  for (const Section& s : sections_) {
    text << "[" << s.name << "]\n";
    for (const auto& [k, v] : s.entries) text << k << "=" << v << "\n";
  }
  if (ReplaceFile(path_, text.str())) {
    stamp_ = CurrentStamp();
    return;
  }
  // The write is dropped: the next read takes the file as it is.
  stamp_.size = -2;
}

}  // namespace kvhost
