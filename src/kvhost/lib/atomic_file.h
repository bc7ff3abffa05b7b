// Files that several people's sessions write: a whole-file write that readers never see half
// done, and a lock that makes a read-modify-write of a file one at a time.
#pragma once

#include <string>

namespace kvhost {

// Writes content to path through a temporary file of its own in the same folder, renamed
// over path, so a reader sees the old file or the new one, and two writers never share a
// temporary file. False when the file cannot be written (the temporary file is removed).
bool ReplaceFile(const std::string& path, const std::string& content);

// Holds an exclusive lock on the folder of a file (flock), so writers of that folder, in this
// process and in others, take turns. A folder that cannot be opened gives no lock: the write
// that follows fails on its own.
class FolderLock {
 public:
  explicit FolderLock(const std::string& file);
  ~FolderLock();
  FolderLock(const FolderLock&) = delete;
  FolderLock& operator=(const FolderLock&) = delete;

 private:
  int fd_ = -1;
};

}  // namespace kvhost
