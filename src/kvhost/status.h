// The outcome of an engine operation: ok, or the failure text that the module will read in
// IHostDatabase::Error().Description(). A Status is never dropped unread: a caller handles it
// or discards it with (void) and says why.
#pragma once

#include <string>
#include <utility>

namespace kvhost {

class [[nodiscard]] Status {
 public:
  static Status Ok() { return Status(); }
  static Status Error(std::string message) { return Status(std::move(message)); }
  bool ok() const { return message_.empty(); }
  const std::string& message() const { return message_; }

 private:
  Status() = default;
  explicit Status(std::string message)
      : message_(message.empty() ? "unknown database error" : std::move(message)) {}
  std::string message_;
};

}  // namespace kvhost
