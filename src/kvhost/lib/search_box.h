// The search box of lists and pickers ("SearchBox"): a search text and the list's columns,
// each flagged as searched or not. The box itself searches nothing: its screen handles the
// change of the text (and the clear of it) and reads the flags to search its list.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "kvhost/lib/control.h"
#include "kvhost/lib/status_control.h"

namespace kvhost {

class GridControl;

class SearchBox : public Control, public StatusControl {
 public:
  struct Column {
    std::string caption;
    bool searched = true;
  };

  SearchBox(std::string name, int index = -1) : Control("SearchBox", std::move(name), index) {}

  std::string Text;
  // The list's columns in grid order.
  std::vector<Column> Columns;
  // The pause in milliseconds after the last key before a front end sends the typed text;
  // the screen sets it when it binds the box.
  int Delay = 0;

  // The text changed: typed, or the searched columns changed under a text.
  std::function<void()> Change;
  // The text was cleared by the box's clear button.
  std::function<void()> Clear;

  // Takes the columns of a grid, by the captions of its first fixed row (blanks around them
  // dropped), every column searched; the text stays.
  void Bind(int delay, const GridControl& grid);
  // Whether column col is searched; false for a column the box does not have.
  bool IsSearched(int col) const;

  // type (text): Text, then Change. clear: Text emptied, then Clear. toggle (col): the
  // column's searched flag flips, then Change when there is a text to search for.
  std::string Apply(const Gesture& gesture) override;

  // The text, as the layout walk keeps it; GetStatus puts it back and raises nothing.
  std::string SaveStatus() const override { return Text; }
  void GetStatus(const std::string& status) override { Text = status; }

 protected:
  // "text", "delay" and "columns": [{"caption", "searched"}].
  void WriteOwnState(nlohmann::json& out) const override;
};

}  // namespace kvhost
