// IniFile: the host's IHostIniFile, a sectioned key/value file in the private-profile form
// ("[section]" lines, "key=value" lines), UTF-8. Sections and keys are found without regard
// to case (ASCII); blanks around keys and values are dropped; lines starting with ";" and
// lines without "=" are ignored. A missing file or key gives the caller's default.
//
// Every write updates the file at once: under a lock on the file's folder it reads the file
// as it is, changes the key and writes the whole file through a temporary file of its own
// renamed over it. Reads pick up what another object wrote meanwhile, so several objects on
// one file (the form walk and the grid layout in it, or threads of one person's sessions)
// never undo each other's writes. Between BeginUpdate and EndUpdate the writes are kept and
// made in one go at EndUpdate, the same way: a layout of many keys writes the file once. A write
// that cannot be made (a folder that cannot be written) is dropped; the layout procedures that use
// the file go on without it.
#pragma once

#include <cstdint>
#include <string>
#include <utility>
#include <vector>

namespace kvhost {

class IniFile {
 public:
  IniFile() = default;
  IniFile(const IniFile&) = delete;
  IniFile& operator=(const IniFile&) = delete;
  // Writes still held by an update are made.
  ~IniFile();

  // Sets the file to work on.
  void FileName(const std::string& path);
  const std::string& FileName() const { return path_; }
  // Whether the file exists.
  bool Exists() const;

  std::string ReadString(const std::string& section, const std::string& key,
                         const std::string& default_value);
  // "1", any other number but 0, and "true" (any case) are true; "0", "false" and texts
  // that are no number are false.
  bool ReadBool(const std::string& section, const std::string& key, bool default_value);
  // The leading whole number of the value (Val, cut towards zero); a value that is no number
  // reads as 0, one beyond the 16-bit range gives the default.
  int16_t ReadInt(const std::string& section, const std::string& key, int16_t default_value);

  // Line breaks in the value are written as blanks.
  void WriteString(const std::string& section, const std::string& key, const std::string& value);
  void WriteBool(const std::string& section, const std::string& key, bool value);
  void WriteInt(const std::string& section, const std::string& key, int value);

  // Holds the writes that follow (reads see them) until the matching EndUpdate, which writes
  // them all at once; updates nest.
  void BeginUpdate() { ++update_depth_; }
  void EndUpdate();

 private:
  struct Section {
    std::string name;
    std::vector<std::pair<std::string, std::string>> entries;
  };
  // What identifies the file as it was read: inode, size, modification time.
  struct Stamp {
    uint64_t inode = 0;
    int64_t size = -1;
    int64_t mtime_ns = 0;
    bool operator==(const Stamp&) const = default;
  };
  Stamp CurrentStamp() const;
  // Reads the file again when it changed since it was read.
  void Refresh();
  // Reads the file, with the writes held by an update applied over it.
  void Load();
  void Set(const std::string& section, const std::string& key, const std::string& value);
  const std::string* Find(const std::string& section, const std::string& key);
  void Save();

  std::string path_;
  std::vector<Section> sections_;
  Stamp stamp_;
  // The writes held by an update: section, key, value.
  std::vector<std::vector<std::string>> held_;
  int update_depth_ = 0;
};

}  // namespace kvhost
