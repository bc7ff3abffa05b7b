// The host's pickers over one statement: "sel_id_j" and "sel_inner_j" (the statement comes in
// the parameters), "sel_pdmsjzd" (one type of the data dictionary), "sel_pdmgy" (the
// employees) and "selpdmkjkm" (the leaf accounts below one account code). Each runs its
// statement and offers the rows in the host's list window; a typed text is checked by the
// statement's condition on the text, every @ standing for the text with its quotes doubled.
#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "kvhost/pickers/host_list.h"
#include "mrvk/frame/picker_contract.h"

namespace kvhost {

// Every @ of sql replaced by the typed text with its single quotes doubled, so that nothing
// typed can change the statement. An @ outside single quotes would make the text SQL: such a
// statement is refused, nullopt with the reason in `refusal`, and must not run.
std::optional<std::string> SpliceTyped(const std::string& sql, const std::string& typed,
                                       std::string& refusal);

// What a host picker lists.
struct ListStatement {
  std::string caption;      // the window's caption
  std::string select;       // the statement up to and including its where clause
  std::string valid;        // the condition on a typed text, @ for the text
  std::string order;        // the columns after " order by" ("" for none)
  std::string text_column;  // the column whose text a choice gives; "" or unknown: the last
};

// The chosen row of a host list: its columns by name; the first column is the value.
class ChosenRow : public mrvk::IPickerObject {
 public:
  ChosenRow(std::vector<std::string> names, std::vector<mrvk::Variant> values, size_t value_col,
            size_t text_col)
      : names_(std::move(names)),
        values_(std::move(values)),
        value_col_(value_col),
        text_col_(text_col) {}
  mrvk::Variant Item(const std::string& name) const override;
  mrvk::Variant ChosenValue() const override { return values_[value_col_]; }
  std::string ChosenText() const override { return values_[text_col_].ToString(); }

 private:
  std::vector<std::string> names_;
  std::vector<mrvk::Variant> values_;
  size_t value_col_;
  size_t text_col_;
};

class StatementPicker : public mrvk::IHostPicker {
 public:
  using Builder = std::function<ListStatement(const mrvk::IHostPickerParameters&)>;
  StatementPicker(mrvk::IHostContext& context, Builder builder)
      : context_(context), builder_(std::move(builder)) {}

  // The host's pickers always exist.
  bool Init(int32_t) override { return true; }
  mrvk::IHostPickerParameters& Parameters() override { return parameters_; }
  // The statement with " and (" + the condition + ")" and its order: the first row found
  // gives the value (value_column, else the first column) and the text (text_column, else the
  // list's text column). No row: value 0 and text "", false. A failed statement is shown in a
  // message box, "错误：" and the database's text; false, value and text as they were.
  bool Validate(const std::string& key, const std::string& value_column,
                const std::string& text_column, const std::string& input, mrvk::Variant& value,
                std::string& text) override;
  // Lists all rows of the statement in order; the columns after the first show (the only
  // one when there is one). A failed statement: message box, false, value and text as they
  // were.
  bool Show(std::string& text, mrvk::Variant& value) override;
  mrvk::IPickerObject* Objects() override { return chosen_.get(); }

  // The window, for tests and front ends that look at what is offered.
  HostList* List() { return list_.get(); }

 private:
  // Runs sql; false (after the message box) when it failed.
  bool Run(const std::string& sql, std::vector<std::string>& names, mrvk::RowsArray& rows);

  mrvk::IHostContext& context_;
  Builder builder_;
  mrvk::IHostPickerParameters parameters_;
  std::unique_ptr<HostList> list_;
  std::unique_ptr<ChosenRow> chosen_;
};

// The builders of the host's keys: "sel_id_j", "sel_inner_j", "sel_pdmsjzd", "sel_pdmgy",
// "selpdmkjkm"; null for any other key.
StatementPicker::Builder StatementBuilder(const std::string& key);

// Index of the column called `name` (without regard to case), or `fallback` when none is.
size_t ColumnIndex(const std::vector<std::string>& names, const std::string& name, size_t fallback);

}  // namespace kvhost
