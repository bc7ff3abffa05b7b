#include "kvhost/lib/atomic_file.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <filesystem>
#include <vector>

namespace kvhost {

bool ReplaceFile(const std::string& path, const std::string& content) {
  std::string pattern = path + ".XXXXXX";
  std::vector<char> name(pattern.begin(), pattern.end());
  name.push_back('\0');
  const int fd = ::mkstemp(name.data());
  if (fd < 0) return false;
  const std::string temp(name.data());
  bool written = ::fchmod(fd, 0644) == 0;
  for (size_t done = 0; written && done < content.size();) {
    const ssize_t n = ::write(fd, content.data() + done, content.size() - done);
    if (n < 0 && errno == EINTR) continue;
    if (n <= 0)
      written = false;
    else
      done += static_cast<size_t>(n);
  }
  written = ::close(fd) == 0 && written;
  if (written && std::rename(temp.c_str(), path.c_str()) == 0) return true;
  std::remove(temp.c_str());
  return false;
}

FolderLock::FolderLock(const std::string& file) {
  std::string folder = std::filesystem::path(file).parent_path().string();
  if (folder.empty()) folder = ".";
  fd_ = ::open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
  if (fd_ < 0) return;
  while (::flock(fd_, LOCK_EX) != 0) {
    if (errno != EINTR) {
      ::close(fd_);
      fd_ = -1;
      return;
    }
  }
}

FolderLock::~FolderLock() {
  if (fd_ >= 0) ::close(fd_);  // closing releases the lock
}

}  // namespace kvhost
