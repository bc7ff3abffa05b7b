// The host: opens a database, creates the module's classes by name, drives them through
// their interfaces in the documented call order, and collects the events they raise.
// Everything a front end does (the screen protocol, the web client, tests) goes through here.
#pragma once

#include <cstdint>
#include <deque>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "kvhost/db/database.h"
#include "kvhost/lib/dialog.h"
#include "kvhost/status.h"
#include "mrvk/frame/host_contract.h"
#include "mrvk/frame/vb.h"

namespace kvhost {

struct HostConfig {
  std::string database = "sqlite://";  // see db::OpenConnection
  std::string user = "admin";
  std::string login_date;  // "yyyy-mm-dd"; empty for today
  // The program folder: layouts, print settings and data, exports. The web client gives
  // each person a folder of their own (below shared_path).
  std::string app_path = ".";
  // The office's folder beside the people's own, where print templates not in app_path are
  // found; "" when app_path is the only one.
  std::string shared_path = "";
};

// A modal box the module showed.
struct ShownBox {
  std::string kind;  // "msgbox", "inputbox", "dialog" or "picker" (prompt and title: its caption)
  std::string prompt;
  int flags = 0;
  std::string title;
};

// Thrown by ScriptedUi when the module shows a box that the script did not answer: a test
// that meets it has a wrong expectation. No handler of the module catches it; the call ends
// with it as its error answer.
class UnscriptedBox : public mrvk::AbortSignal {
 public:
  using mrvk::AbortSignal::AbortSignal;
};

// The UI port of tests and batch jobs: answers come from queues filled in advance.
class ScriptedUi : public mrvk::IUiPort {
 public:
  std::deque<int> answers;                        // message box answers, in order
  std::deque<std::optional<std::string>> inputs;  // input box answers; nullopt = cancel
  std::vector<ShownBox> shown;                    // every box shown, in order
  // What the person does on each dialog shown, in order: gestures through Apply on the
  // dialog's controls. A dialog still shown when its script ends is an unscripted box.
  std::deque<std::function<void(Dialog&)>> dialogs;

  // Scripts for a picker's list (a dialog of kind "picker"), answered as a front end answers
  // it: the rows with these indexes chosen, or the list cancelled.
  static std::function<void(Dialog&)> ChooseRows(std::vector<int> rows);
  static std::function<void(Dialog&)> CancelPicker();

  int MsgBox(const std::string& prompt, int flags, const std::string& title) override;
  std::optional<std::string> InputBox(const std::string& prompt, const std::string& title,
                                      const std::string& default_text) override;
  void ShowModal(mrvk::IModalForm& form) override;
};

// One open screen: an object of the module created by class name.
struct Screen {
  int id = 0;
  std::string class_name;
  int32_t progID = 0;
  int32_t record = 0;
  std::unique_ptr<mrvk::ModuleObject> object;

  mrvk::IFormUI* form() const { return dynamic_cast<mrvk::IFormUI*>(object.get()); }
  mrvk::IReportUI* report() const { return dynamic_cast<mrvk::IReportUI*>(object.get()); }
  mrvk::IToolUI* tool() const { return dynamic_cast<mrvk::IToolUI*>(object.get()); }
  mrvk::IDesignUI* design() const { return dynamic_cast<mrvk::IDesignUI*>(object.get()); }
  mrvk::IFormToolUI* form_tool() const { return dynamic_cast<mrvk::IFormToolUI*>(object.get()); }
};

// An event with the screen that raised it.
struct HostEvent {
  int screen = 0;
  mrvk::Event event;
};

class HostContext;

// Where the host offers a tool that works on one record: the picker it asks a record with
// when the tool is run from the menu, and the classes of the sheets that offer the tool for
// the record they show. Null for a tool the host places nowhere in particular.
struct ToolPlace {
  std::string picker_key;
  std::vector<std::string> sheets;
};
const ToolPlace* ToolPlaceOf(const std::string& class_name);

class Host {
 public:
  // Opens the database of config. A failure is kept in status(): every later operation then
  // answers with it.
  explicit Host(HostConfig config);
  ~Host();
  Host(const Host&) = delete;
  Host& operator=(const Host&) = delete;

  const Status& status() const { return status_; }
  const HostConfig& config() const { return config_; }

  // All tables, indexes, functions, key sources and seed rows; idempotent.
  Status create_schema();

  // Opens a screen by class name: Parameters, Init, Refresh, layout. Null on failure, with
  // the reason in last_error() (unknown class, Init refused, a run-time failure).
  Screen* open(const std::string& class_name, int32_t progID, int32_t record);
  // Saves the layout and calls Clear; the screen is gone afterwards.
  Status close(int screen_id);
  Screen* screen(int screen_id);
  std::vector<int> screen_ids() const;

  // Runs a tool: Init with the record, Action, Clear. result gets Action's answer. A tool
  // run without a record (record 0) whose records have a picker (ToolPlaceOf) first asks
  // for one with that picker; a cancelled choice runs nothing and leaves result false.
  Status run_tool(const std::string& class_name, int32_t progID, int32_t record, int32_t action,
                  bool& result);

  // Calls an interface operation by name (FileNew, Find, Refresh, Attributes, ...).
  // An unknown operation, a wrong argument count or type, or an operation the screen's
  // interfaces do not have is an error answer; nothing runs then.
  Status invoke(Screen& screen, const std::string& method, const std::vector<mrvk::Variant>& args,
                mrvk::Variant& result);

  // The fields a screen's Find and Filter may name (none for a screen that is neither a
  // sheet nor a report). Find and Filter through invoke refuse any other condition.
  Status search_fields(Screen& screen, std::vector<mrvk::SearchField>& fields);

  // A person's gesture on control `name`(index) of a screen (index -1 outside an array), as
  // a call into the module. An error status when the screen has no such control, the control
  // refuses the gesture (nothing changed then), or a run-time failure escapes.
  Status gesture(Screen& screen, const std::string& name, int index, const Gesture& g);
  // The same on the controls of a dialog; `owner` names it in messages.
  Status gesture(ControlList& controls, const std::string& owner, const std::string& name,
                 int index, const Gesture& g);

  // Runs fn as a call into the module: the UI port is set for the thread and the call's
  // writes outside a bracket are grouped. A run-time failure or an abort that escapes the
  // module becomes an error status; a bracket the call left open is rolled back, and the
  // status says so.
  template <typename Fn>
  Status guarded(const std::string& what, Fn&& fn);

  std::map<std::string, std::string>& options() { return options_; }
  ScriptedUi& ui() { return scripted_ui_; }
  // The UI port the module's boxes go to; null restores the scripted one.
  void set_ui_port(mrvk::IUiPort* port) { ui_port_ = port ? port : &scripted_ui_; }

  db::Database& database() { return *database_; }
  HostContext& context() { return *context_; }
  // The events raised since the last call.
  std::vector<HostEvent> take_events();
  const std::string& last_error() const { return last_error_; }

 private:
  Status guard_call(const std::string& what, const std::function<void()>& fn);

  HostConfig config_;
  Status status_;
  std::unique_ptr<db::Database> database_;
  std::unique_ptr<HostContext> context_;
  std::map<std::string, std::string> options_;
  ScriptedUi scripted_ui_;
  mrvk::IUiPort* ui_port_ = &scripted_ui_;
  std::map<int, std::unique_ptr<Screen>> screens_;
  int next_screen_ = 0;
  std::vector<HostEvent> events_;
  std::string last_error_;
  int call_depth_ = 0;  // calls into the module under way on this host (nested ones by a box)
};

template <typename Fn>
Status Host::guarded(const std::string& what, Fn&& fn) {
  return guard_call(what, std::function<void()>(std::forward<Fn>(fn)));
}

}  // namespace kvhost
