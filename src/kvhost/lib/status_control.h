// A control whose state the screen's layout walk keeps as one text: a search box gives its
// SaveStatus and takes it back through GetStatus; a date picker or a list view (type names
// "DTPicker", "gcDTP", "ListView") gives its value or the index of its selected item the same
// way. A control of those type names that does not implement this is left alone by the walk.
#pragma once

#include <string>

namespace kvhost {

class StatusControl {
 public:
  virtual ~StatusControl() = default;
  virtual std::string SaveStatus() const = 0;
  // Restores what SaveStatus gave; a text it does not understand changes nothing.
  virtual void GetStatus(const std::string& status) = 0;
};

}  // namespace kvhost
