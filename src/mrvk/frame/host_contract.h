// The contract between the host and the module: the interfaces a class serves, the events it
// raises, and the host services it calls. The host implements the services (src/kvhost);
// the module implements the class interfaces (src/mrvk).
#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "mrvk/frame/variant.h"

namespace kvhost {
class ControlList;  // the controls of a screen, kvhost/lib/control_list.h
class KvTxt;        // the labelled field, kvhost/lib/kv_txt.h
}  // namespace kvhost

namespace mrvk {

// ---- Events ------------------------------------------------------------------------------

// One event a class raised to the host: its name, its id as the host's sink sees it, and its
// arguments in order.
struct Event {
  std::string name;
  int id = 0;
  std::vector<Variant> args;
};

using EventSink = std::function<void(const Event&)>;

// Event ids of sheets and reports.
namespace event_id {
inline constexpr int kMessage = 1;
inline constexpr int kErrMessage = 2;
inline constexpr int kFormRefreshed = 3;
inline constexpr int kProperty = 4;
inline constexpr int kReportProperty = 6;
inline constexpr int kReportDetaile = 3;
inline constexpr int kListDetaile = 8;
inline constexpr int kVsMouseDown = 4;
inline constexpr int kRefreshGetGridStatus = 5;
inline constexpr int kDoSelect = 1;
inline constexpr int kDoCancel = 2;
inline constexpr int kReturnData = 3;
inline constexpr int kFileNewEvent = 9;
inline constexpr int kFileEditEvent = 10;
}  // namespace event_id

// Levels of ErrMessage.
namespace err_level {
inline constexpr int kValidation = 2;  // a tested condition or a caught run-time failure
inline constexpr int kRefused = 4;     // a refused state change of a simple sheet
inline constexpr int kDatabase = 8;    // an error reported by the database
}  // namespace err_level

// ---- Data access -------------------------------------------------------------------------

class Field {
 public:
  std::string Name;
  Variant Value;
};

// The rows of a recordset in one array, column-major as VB's GetRows gives them:
// at(field, row).
struct RowsArray {
  size_t fields = 0;
  size_t rows = 0;
  std::vector<Variant> cells;
  const Variant& at(size_t field, size_t row) const { return cells[row * fields + field]; }
};

// What OpenRecordset gives: the rows of one SELECT, read forward.
class Recordset {
 public:
  virtual ~Recordset() = default;
  // EOF and BOF (named so because EOF is a C macro): both true when there is no row.
  virtual bool Eof() const = 0;
  virtual bool Bof() const = 0;
  virtual void MoveNext() = 0;
  virtual void MoveFirst() = 0;
  virtual int FieldCount() const = 0;
  // The field of the current row by position; out of range is a run-time failure (throws).
  virtual const Field& Fields(int index) const = 0;
  // The field of the current row by name, without regard to case; a name that the statement
  // did not select is a run-time failure (throws std::out_of_range with the name).
  virtual const Field& Fields(const std::string& name) const = 0;
  // All rows from the current one to the end; moves to EOF.
  virtual RowsArray GetRows() = 0;
  virtual int64_t RecordCount() const = 0;
  virtual void Close() = 0;
};

class IHostCommand {
 public:
  virtual ~IHostCommand() = default;
  // Runs an INSERT, UPDATE or DELETE. A failure stands in the database's Error.Description.
  virtual void Execute() = 0;
  // The first column of the first row; Empty when there is no row or the statement failed.
  virtual Variant ExecuteScalar() = 0;
  // The rows of a SELECT; an empty recordset (Eof and Bof) when the statement failed.
  virtual std::unique_ptr<Recordset> OpenRecordset() = 0;
};

class IHostError {
 public:
  virtual ~IHostError() = default;
  // "" when the last step succeeded: the only test of success.
  virtual std::string Description() const = 0;
};

struct IHostProperty {
  Variant Value;
};

class IHostProperties {
 public:
  virtual ~IHostProperties() = default;
  // The named connection property; an unknown name gives an Empty value.
  virtual IHostProperty Item(const std::string& name) const = 0;
};

class IHostDatabase {
 public:
  virtual ~IHostDatabase() = default;
  // Prepares one statement; command type is always 1 (text).
  virtual std::unique_ptr<IHostCommand> CreateCommand(const std::string& sql, int command_type) = 0;
  virtual bool Release() = 0;
  virtual void BeginTrans() = 0;
  virtual void CommitTrans() = 0;
  virtual void RollbackTrans() = 0;
  virtual bool InTransaction() const = 0;
  virtual const IHostError& Error() const = 0;
  virtual const IHostProperties& Properties() const = 0;
};

// Record navigation directions of IHostBillData::Navigate.
namespace navigate {
inline constexpr int kFirst = 0;
inline constexpr int kPrevious = 1;
inline constexpr int kNext = 2;
inline constexpr int kLast = 3;
}  // namespace navigate

class IHostBillData {
 public:
  virtual ~IHostBillData() = default;
  virtual void Database(IHostDatabase* db) = 0;
  // Writes a new unused key of table/key_column into id. Returns "" on success, the failure
  // text otherwise (id is then unchanged).
  virtual std::string NewID(const std::string& table, const std::string& key_column,
                            int32_t& id) = 0;
  // Opens into rs the record that lies in `direction` from current_id among the rows of
  // select_sql limited by filter, by ascending key_column. Returns Null when no record lies
  // there, "" on success, any other text is the failure. position gets "n/total".
  virtual Variant Navigate(std::string& position, std::unique_ptr<Recordset>& rs,
                           const std::string& select_sql, const std::string& filter, int direction,
                           int32_t current_id, const std::string& key_column, int flag) = 0;
  // Opens the first record (by ascending key) that find_text selects; result as Navigate.
  virtual Variant Locate(std::string& position, std::unique_ptr<Recordset>& rs,
                         const std::string& select_sql, const std::string& filter,
                         const std::string& find_text, const std::string& key_column) = 0;
  // The date as the date controls show it ("yyyy-mm-dd"); "" for a text that is no date.
  virtual std::string DateText(const std::string& date_text) = 0;
};

class IHostConvert {
 public:
  virtual ~IHostConvert() = default;
  virtual std::string ToText(const Variant& v) = 0;
  virtual std::string ToString(const Variant& v) = 0;
  virtual int32_t ToLong(const Variant& v) = 0;
  virtual Variant ToNumber(const Variant& v) = 0;
  virtual double ToDouble(const Variant& v, std::optional<int> digits = std::nullopt) = 0;
  virtual Date ToDate(const Variant& v, const std::string& format) = 0;
  virtual std::vector<std::string> Split(const Variant& text, const std::string& separator,
                                         std::optional<int> count = std::nullopt) = 0;
  virtual std::string Token(const Variant& text, int index, const std::string& separator) = 0;
};

// ---- Context -----------------------------------------------------------------------------

struct IHostOption {
  std::string Value;
};

class IHostEnvironment {
 public:
  virtual ~IHostEnvironment() = default;
  virtual std::string UserName() const = 0;
  virtual std::string AppPath() const = 0;
  virtual Date LoginDate() const = 0;
};

class IHostLastError {
 public:
  virtual ~IHostLastError() = default;
  virtual std::string Text() const = 0;
};

class IHostPicker;  // the lookup service of a key, mrvk/frame/picker_contract.h
class IHostPrintEngine;
class IHostDialogHost;

// The object given to every Init.
class IHostContext {
 public:
  virtual ~IHostContext() = default;
  virtual IHostDatabase& Database() = 0;
  virtual IHostEnvironment& Environment() = 0;
  virtual IHostLastError& LastError() = 0;
  virtual IHostOption GetOption(const Variant& key) = 0;
  virtual IHostOption GetSystemOption(const Variant& key) = 0;
  // Gives the next document number of progID on date into code. With preview the number is
  // only shown and not consumed. False when no number could be given (the host has reported).
  virtual bool BillCode(int32_t progID, Date date, std::string& code, bool preview) = 0;
  // Gives a number back before its document is deleted. False stops the delete.
  virtual bool ReleaseBillCode(int32_t progID, Date date, const std::string& code) = 0;
  // The default service of a field's picker request: the host opens the list bound to the
  // field's PickerKey and leaves the choice in text and value; a cancel leaves them as they
  // were.
  virtual void ShowPicker(kvhost::KvTxt& field, std::string& text, Variant& value) = 0;
  // The default service of a field's check request: the field's ValidateSql with every @
  // standing for the typed text. With a row, value takes its ValueColumn and text its
  // DisplayColumn; with none, the field's ErrorMessage is shown, value becomes 0 and text
  // stays as typed.
  virtual void CheckPicker(kvhost::KvTxt& field, const std::string& typed, Variant& value,
                           std::string& text) = 0;
  // The picker service of a key ("selpdm", "sel_id_j", ...; picker_contract.h), shared by
  // key; null for a key the host does not know.
  virtual IHostPicker* Picker(const std::string& key) = 0;
  // The host services of later parts; nullptr until the host provides them.
  virtual IHostPrintEngine* PrintEngine() = 0;
  virtual IHostDialogHost* DialogHost() = 0;
};

// ---- Parameters --------------------------------------------------------------------------

struct IParameter {
  Variant Value;
};

// A keyed collection; keys without regard to case.
class IParameters {
 public:
  void Add(const std::string& key, Variant value);
  bool Exists(const std::string& key) const;
  // The entry; an unknown key gives an entry with an Empty value.
  IParameter Item(const std::string& key) const;
  size_t Count() const { return entries_.size(); }

 private:
  std::map<std::string, IParameter> entries_;
};

// ---- Class interfaces --------------------------------------------------------------------

// How a typed value of a searchable field is written into SQL (data_access.h, SqlValue).
enum class SearchType { kText, kNumber, kDate };

// A field a screen can be found and filtered by: the caption the clerk chooses, the column or
// expression of the screen's statement that goes into SQL (written by the screen, never typed)
// and the type of its values.
struct SearchField {
  std::string caption;
  std::string column;
  SearchType type = SearchType::kText;
};

// Every object the host creates by class name. Events go to the sink the host attaches.
class ModuleObject {
 public:
  virtual ~ModuleObject() = default;
  void AttachSink(EventSink sink) { sink_ = std::move(sink); }
  // The class name it was created under.
  virtual std::string ClassName() const = 0;

 protected:
  void RaiseEvent(std::string name, int id, std::vector<Variant> args = {}) const {
    if (sink_) sink_(Event{std::move(name), id, std::move(args)});
  }
  // The two reports of sheets and reports: a status line text, and a failure with its level
  // (err_level::...) and the title of the class.
  void Message(const std::string& text) const {
    RaiseEvent("Message", event_id::kMessage, {Variant(text)});
  }
  void ErrMessage(const std::string& text, int level, const std::string& title) const {
    RaiseEvent("ErrMessage", event_id::kErrMessage,
               {Variant(text), Variant(level), Variant(title)});
  }

 private:
  EventSink sink_;
};

class IFormUI {
 public:
  virtual ~IFormUI() = default;
  virtual bool Init(IHostContext& context, int32_t progID, int32_t record_id) = 0;
  virtual bool Clear() = 0;
  virtual bool FileNew() = 0;
  virtual bool FileNewNext() = 0;
  virtual bool FileEdit() = 0;
  virtual bool FileDelete() = 0;
  virtual bool FileSave() = 0;
  virtual bool FileCancel() = 0;
  virtual bool Find(const Variant& conditions) = 0;
  virtual bool FindNext() = 0;
  virtual bool Filter(const Variant& conditions) = 0;
  virtual bool Refresh() = 0;
  virtual bool RecordTop() = 0;
  virtual bool RecordPrevious() = 0;
  virtual bool RecordNext() = 0;
  virtual bool RecordBottom() = 0;
  virtual bool Check() = 0;
  virtual bool UnCheck() = 0;
  virtual bool PrintPreview() = 0;
  virtual bool DoPrint() = 0;
  virtual bool PrintSetup() = 0;
  virtual bool Help() = 0;
  virtual bool DoSetStatus(const std::string& status, bool flag) = 0;
  virtual int32_t GetID() = 0;
  virtual bool CheckStatus(const std::string& status) = 0;
  virtual std::string ReturnPrintName() = 0;
  virtual bool IsDirty() = 0;
  virtual void DoGetFormStatus() = 0;
  virtual void DoSaveFormStatus() = 0;
  virtual std::string Attributes(int32_t key) = 0;
  // The fields Find and Filter may name; none by default (the screen finds on its own).
  virtual std::vector<SearchField> SearchFields() { return {}; }
  // The toolbar commands the sheet serves, by operation name ("Export" for the host's export
  // of its grid); empty by default: every command.
  virtual std::vector<std::string> ServedCommands() { return {}; }
};

class IReportUI {
 public:
  virtual ~IReportUI() = default;
  virtual bool Init(IHostContext& context, int32_t progID) = 0;
  virtual bool Clear() = 0;
  virtual bool Find(const Variant& conditions) = 0;
  virtual bool FindNext() = 0;
  virtual bool Filter(const Variant& conditions) = 0;
  virtual bool Refresh() = 0;
  virtual bool RecordTop() = 0;
  virtual bool RecordPrevious() = 0;
  virtual bool RecordNext() = 0;
  virtual bool RecordBottom() = 0;
  virtual bool PrintPreview() = 0;
  virtual bool DoPrint() = 0;
  virtual bool PrintSetup() = 0;
  virtual bool Help() = 0;
  virtual std::string ReturnPrintName() = 0;
  virtual std::string DoGetFormStatus() = 0;
  virtual std::string DoSaveFormStatus() = 0;
  virtual std::string Attributes(int32_t key) = 0;
  virtual std::shared_ptr<IParameters> GetParameters() = 0;
  virtual void SetParameters(std::shared_ptr<IParameters> parameters) = 0;
  // The fields Find and Filter may name; none by default (the report finds on its grid).
  virtual std::vector<SearchField> SearchFields() { return {}; }
};

class IToolUI {
 public:
  virtual ~IToolUI() = default;
  virtual void SetParameters(std::shared_ptr<IParameters> parameters) = 0;
  virtual bool Init(IHostContext& context, int32_t& progID, int32_t& record_id) = 0;
  virtual bool Clear() = 0;
  virtual std::string Author() = 0;
  virtual std::string Version() = 0;
  virtual std::string FriendlyName() = 0;
  virtual std::string Description() = 0;
  virtual bool Action(int32_t action) = 0;
  virtual std::string Error() = 0;
};

class IDesignUI {
 public:
  virtual ~IDesignUI() = default;
  // Writing the parameters: "backcolor" and, on sheets with printing, "printfilename".
  // A null collection is ignored.
  virtual void SetParameters(std::shared_ptr<IParameters> parameters) = 0;
  // The screen's controls in screen order (view-models of kvhost/lib).
  virtual kvhost::ControlList& Controls() = 0;
};

class IFormToolUI {
 public:
  virtual ~IFormToolUI() = default;
  virtual bool Action(const std::string& key) = 0;
};

// The operators a condition on a field of the type may use: = <> > >= < <=, and like on texts.
const std::vector<std::string>& SearchOperators(SearchType type);

// The Find/Filter condition array turned into SQL: A(plane, row, column), plane 0 for Filter
// and 1 for Find; column 0 the typed value, 1 the caption of a declared search field, 2 the
// operator (SearchOperators of the field's type). Each row with a value adds
// " and " + column + operator + the value written by SqlValue; the leading " and" is dropped.
// Returns nullopt when the argument is Empty or Null (nothing happens then), and when the
// array is refused: a row naming an undeclared field or an unknown operator, a date value that
// is no date, a malformed array. Then `refusal` says why, for the clerk, and nothing may run.
std::optional<std::string> ConditionText(const Variant& conditions, int plane, bool jet,
                                         const std::vector<SearchField>& fields,
                                         std::string& refusal);

}  // namespace mrvk
