#include "kvhost/host.h"

#include <ctime>
#include <functional>
#include <map>

#include "kvhost/db/schema_builder.h"
#include "kvhost/host_context.h"
#include "mrvk/frame/picker_contract.h"
#include "mrvk/frame/vb.h"
#include "mrvk/registry.h"

namespace kvhost {
namespace {

mrvk::Date Today() {
  const std::time_t t = std::time(nullptr);
  std::tm tm{};
  localtime_r(&t, &tm);
  return mrvk::Date::FromYmd(tm.tm_year + 1900, tm.tm_mon + 1, tm.tm_mday);
}

// One call into the module: the thread's UI port is set, and the writes the call makes
// outside a bracket share one commit, which is made before any box waits for the user (so
// no lock is held while someone reads a question) and when the call ends. A call made while
// a box of another call waits (a gesture on a shown dialog) is nested: it shares the outer
// call's group.
//
// No box waits for an answer inside a bracket: the bracket's write lock would hold every
// other clerk's save for as long as the person reads. A message box with only an OK button
// has one answer, so inside a bracket it is answered OK at once and shown when the call has
// ended, its bracket committed or rolled back; a question, an input box or a dialog there is
// a run-time failure of the procedure, whose handler rolls the bracket back.
class CallScope : public mrvk::IUiPort {
 public:
  CallScope(mrvk::IUiPort* port, db::Database& db, bool outermost)
      : port_(port), db_(db), outermost_(outermost), saved_(mrvk::CurrentUiPort()) {
    mrvk::SetCurrentUiPort(this);
    if (outermost_) db_.connection().SetGroupCommit(true);
  }
  ~CallScope() override {
    if (outermost_) db_.connection().SetGroupCommit(false);
    mrvk::SetCurrentUiPort(saved_);
  }
  int MsgBox(const std::string& prompt, int flags, const std::string& title) override {
    if ((flags & kButtonsMask) == mrvk::msgbox::kOkOnly && db_.InTransaction()) {
      held_.push_back({prompt, flags, title});
      return mrvk::msgbox::kOk;
    }
    BeforeBox("message box", prompt);
    return port_->MsgBox(prompt, flags, title);
  }
  // Shows the message boxes held while a bracket was open, in their order.
  void ShowHeldBoxes() {
    while (!held_.empty()) {
      const HeldBox box = std::move(held_.front());
      held_.erase(held_.begin());
      port_->MsgBox(box.prompt, box.flags, box.title);
    }
  }
  std::optional<std::string> InputBox(const std::string& prompt, const std::string& title,
                                      const std::string& default_text) override {
    BeforeBox("input box", prompt);
    return port_->InputBox(prompt, title, default_text);
  }
  void ShowModal(mrvk::IModalForm& form) override {
    BeforeBox("dialog", form.Title());
    port_->ShowModal(form);
  }

 private:
  void BeforeBox(const char* kind, const std::string& prompt) {
    if (db_.InTransaction())
      throw mrvk::VbError(mrvk::vb_error::kInvalidProcedureCall,
                          std::string("a ") + kind +
                              " cannot wait for an answer inside a transaction (" + prompt + ")");
    if (Status s = db_.connection().Flush(); !s.ok())
      throw mrvk::VbError(mrvk::vb_error::kInvalidProcedureCall,
                          "the changes could not be committed: " + s.message());
  }

  static constexpr int kButtonsMask = 7;
  struct HeldBox {
    std::string prompt;
    int flags;
    std::string title;
  };

  mrvk::IUiPort* port_;
  db::Database& db_;
  bool outermost_;
  std::vector<HeldBox> held_;
  mrvk::IUiPort* saved_;
};

}  // namespace

int ScriptedUi::MsgBox(const std::string& prompt, int flags, const std::string& title) {
  shown.push_back({"msgbox", prompt, flags, title});
  if (answers.empty()) throw UnscriptedBox("unscripted message box: " + prompt);
  const int a = answers.front();
  answers.pop_front();
  return a;
}

std::optional<std::string> ScriptedUi::InputBox(const std::string& prompt, const std::string& title,
                                                const std::string& default_text) {
  shown.push_back({"inputbox", prompt, 0, title});
  (void)default_text;
  if (inputs.empty()) throw UnscriptedBox("unscripted input box: " + prompt);
  auto a = inputs.front();
  inputs.pop_front();
  return a;
}

void ScriptedUi::ShowModal(mrvk::IModalForm& form) {
  auto* dialog = dynamic_cast<Dialog*>(&form);
  shown.push_back({dialog ? dialog->Kind() : "dialog", form.Title(), 0, form.Title()});
  if (!dialog || dialogs.empty()) throw UnscriptedBox("unscripted dialog: " + form.Title());
  auto script = std::move(dialogs.front());
  dialogs.pop_front();
  script(*dialog);
  if (dialog->IsShown()) {
    dialog->Hide();
    throw UnscriptedBox("dialog left open by its script: " + form.Title());
  }
}

std::function<void(Dialog&)> ScriptedUi::ChooseRows(std::vector<int> rows) {
  return [rows = std::move(rows)](Dialog& d) {
    auto indexes =
        std::make_shared<mrvk::VariantArray>(std::vector<int>{static_cast<int>(rows.size())});
    for (size_t i = 0; i < rows.size(); ++i)
      indexes->at({static_cast<int>(i)}) = mrvk::Variant(rows[i]);
    const std::string why = d.Answer(mrvk::Variant(indexes));
    if (!why.empty()) throw UnscriptedBox("picker answer refused: " + why);
  };
}

std::function<void(Dialog&)> ScriptedUi::CancelPicker() {
  return [](Dialog& d) { d.Answer(mrvk::Variant::Null()); };
}

Host::Host(HostConfig config) : config_(std::move(config)), status_(Status::Ok()) {
  mrvk::Date login = Today();
  if (!config_.login_date.empty()) {
    auto d = mrvk::ParseDate(config_.login_date);
    if (!d) {
      status_ = Status::Error("login date is not a date: \"" + config_.login_date + "\"");
      return;
    }
    login = *d;
  }
  std::string error;
  database_ = db::OpenDatabase(config_.database, error);
  if (!database_) {
    status_ = Status::Error(error);
    return;
  }
  context_ =
      std::make_unique<HostContext>(*database_, options_, config_.user, config_.app_path, login);
}

Host::~Host() {
  // Screens still open are closed in the documented way. Their close has nobody left to
  // report a failure to; the screen goes all the same.
  while (!screens_.empty()) (void)close(screens_.begin()->first);
}

Status Host::create_schema() {
  if (!status_.ok()) return status_;
  return db::CreateSchema(database_->connection());
}

Status Host::guard_call(const std::string& what, const std::function<void()>& fn) {
  if (!database_) return status_;
  db::Database& db = *database_;
  // A bracket open before the call (only possible for a nested call) is not this call's.
  const bool open_before = db.InTransaction();
  ++call_depth_;
  struct Leave {
    int& depth;
    ~Leave() { --depth; }
  } leave{call_depth_};
  CallScope scope(ui_port_, db, /*outermost=*/call_depth_ == 1);
  std::string failure;
  try {
    fn();
  } catch (const mrvk::VbError& e) {
    failure = "run-time failure " + std::to_string(e.Number()) + ": " + e.Description();
  } catch (const mrvk::AbortSignal& e) {
    // A nested call hands the signal on: the whole outer call ends, not only this step.
    if (call_depth_ > 1) throw;
    failure = e.Why();
  } catch (const std::exception& e) {
    failure = e.what();
  }
  // The edge of the call: a bracket the module left open is rolled back here, so its write
  // lock never outlives the call, whatever way the call ended.
  if (!open_before && db.InTransaction()) {
    db.RollbackTrans();
    const std::string undone = db.Error().Description();
    failure = (failure.empty() ? "it ended with a transaction still open, which was rolled back"
                               : failure + ". The transaction it left open was rolled back") +
              ": none of its changes were saved" +
              (undone.empty() ? "" : " (the rollback said: " + undone + ")");
  }
  if (call_depth_ == 1) {
    if (Status s = db.connection().Flush(); !s.ok())
      failure += (failure.empty() ? "" : ". ") +
                 std::string("the changes could not be committed: ") + s.message();
  }
  // The boxes held inside a bracket are shown now that no lock is held.
  try {
    scope.ShowHeldBoxes();
  } catch (const mrvk::AbortSignal& e) {
    if (call_depth_ > 1) throw;
    failure += (failure.empty() ? "" : ". ") + e.Why();
  }
  if (failure.empty()) return Status::Ok();
  return Status::Error(what + ": " + failure);
}

Screen* Host::open(const std::string& class_name, int32_t progID, int32_t record) {
  last_error_.clear();
  if (!status_.ok()) {
    last_error_ = status_.message();
    return nullptr;
  }
  std::string error;
  auto object = mrvk::CreateObject(class_name, error);
  if (!object) {
    last_error_ = error;
    return nullptr;
  }
  auto screen = std::make_unique<Screen>();
  screen->id = ++next_screen_;
  screen->class_name = class_name;
  screen->progID = progID;
  screen->record = record;
  const int id = screen->id;
  object->AttachSink([this, id](const mrvk::Event& e) { events_.push_back({id, e}); });
  screen->object = std::move(object);
  bool initialised = false;
  Status s = guarded(class_name + ".Init", [&] {
    if (auto* form = screen->form()) {
      initialised = form->Init(*context_, progID, record);
      if (initialised) form->Refresh();
      if (initialised) form->DoGetFormStatus();
    } else if (auto* report = screen->report()) {
      initialised = report->Init(*context_, progID);
      if (initialised) report->Refresh();
      if (initialised) report->DoGetFormStatus();
    } else {
      error = "class \"" + class_name + "\" has no screen: run it as a tool";
    }
  });
  if (!s.ok() || !initialised) {
    last_error_ =
        !s.ok() ? s.message() : (!error.empty() ? error : class_name + ".Init refused to open");
    return nullptr;
  }
  Screen* raw = screen.get();
  screens_.emplace(id, std::move(screen));
  return raw;
}

Status Host::close(int screen_id) {
  auto it = screens_.find(screen_id);
  if (it == screens_.end()) return Status::Error("no open screen " + std::to_string(screen_id));
  Screen& sc = *it->second;
  Status s = guarded(sc.class_name + ".Clear", [&] {
    if (auto* form = sc.form()) {
      form->DoSaveFormStatus();
      form->Clear();
    } else if (auto* report = sc.report()) {
      report->DoSaveFormStatus();
      report->Clear();
    }
  });
  screens_.erase(it);
  return s;
}

Screen* Host::screen(int screen_id) {
  auto it = screens_.find(screen_id);
  return it == screens_.end() ? nullptr : it->second.get();
}

std::vector<int> Host::screen_ids() const {
  std::vector<int> ids;
  for (const auto& [id, s] : screens_) ids.push_back(id);
  return ids;
}

const ToolPlace* ToolPlaceOf(const std::string& class_name) {
  static const std::map<std::string, ToolPlace> places = {
      {"cFwFy_finish", {"sel_fy", {"FY_MX", "FY_MX_old"}}},
      {"cFwFy_unfinish", {"sel_fy", {"FY_MX", "FY_MX_old"}}},
      {"cFwHd_finish", {"sel_ht", {"zfHd_2"}}},
      {"cFwHd_unfinish", {"sel_ht", {"zfHd_2"}}},
  };
  auto it = places.find(class_name);
  return it == places.end() ? nullptr : &it->second;
}

Status Host::run_tool(const std::string& class_name, int32_t progID, int32_t record, int32_t action,
                      bool& result) {
  result = false;
  if (!status_.ok()) return status_;
  std::string error;
  auto object = mrvk::CreateObject(class_name, error);
  if (!object) return Status::Error(error);
  auto* tool = dynamic_cast<mrvk::IToolUI*>(object.get());
  if (!tool) return Status::Error("class \"" + class_name + "\" is not a tool");
  object->AttachSink([this](const mrvk::Event& e) { events_.push_back({0, e}); });
  const ToolPlace* place = ToolPlaceOf(class_name);
  return guarded(class_name + ".Action", [&] {
    int32_t p = progID, r = record;
    if (r == 0 && place && !place->picker_key.empty()) {
      // From the menu: the record comes from the picker of the tool's records, every one of
      // them listed (no parameter of an earlier use narrows the list).
      mrvk::IHostPicker* picker = context_->Picker(place->picker_key);
      if (!picker || !picker->Init(p)) return;
      picker->Parameters().Clear();
      std::string text;
      mrvk::Variant value;
      if (!picker->Show(text, value)) return;
      r = static_cast<int32_t>(mrvk::Val(value.ToString()));
      if (r <= 0) return;
    }
    if (tool->Init(*context_, p, r)) result = tool->Action(action);
    tool->Clear();
  });
}

std::vector<HostEvent> Host::take_events() {
  std::vector<HostEvent> out;
  out.swap(events_);
  return out;
}

namespace {

using Args = std::vector<mrvk::Variant>;

struct FormOp {
  size_t arity;
  std::function<mrvk::Variant(mrvk::IFormUI&, const Args&)> run;
};

const std::map<std::string, FormOp>& FormOps() {
  using F = mrvk::IFormUI;
  auto op0 = [](bool (F::*m)()) {
    return FormOp{0, [m](F& f, const Args&) { return mrvk::Variant((f.*m)()); }};
  };
  static const std::map<std::string, FormOp> ops = {
      {"FileNew", op0(&F::FileNew)},
      {"FileNewNext", op0(&F::FileNewNext)},
      {"FileEdit", op0(&F::FileEdit)},
      {"FileDelete", op0(&F::FileDelete)},
      {"FileSave", op0(&F::FileSave)},
      {"FileCancel", op0(&F::FileCancel)},
      {"FindNext", op0(&F::FindNext)},
      {"Refresh", op0(&F::Refresh)},
      {"RecordTop", op0(&F::RecordTop)},
      {"RecordPrevious", op0(&F::RecordPrevious)},
      {"RecordNext", op0(&F::RecordNext)},
      {"RecordBottom", op0(&F::RecordBottom)},
      {"Check", op0(&F::Check)},
      {"UnCheck", op0(&F::UnCheck)},
      {"PrintPreview", op0(&F::PrintPreview)},
      {"DoPrint", op0(&F::DoPrint)},
      {"PrintSetup", op0(&F::PrintSetup)},
      {"Help", op0(&F::Help)},
      {"IsDirty", op0(&F::IsDirty)},
      {"Find", {1, [](F& f, const Args& a) { return mrvk::Variant(f.Find(a[0])); }}},
      {"Filter", {1, [](F& f, const Args& a) { return mrvk::Variant(f.Filter(a[0])); }}},
      {"DoSetStatus",
       {2,
        [](F& f, const Args& a) {
          return mrvk::Variant(f.DoSetStatus(a[0].ToString(), a[1].ToDouble() != 0));
        }}},
      {"GetID", {0, [](F& f, const Args&) { return mrvk::Variant(f.GetID()); }}},
      {"CheckStatus",
       {1, [](F& f, const Args& a) { return mrvk::Variant(f.CheckStatus(a[0].ToString())); }}},
      {"ReturnPrintName",
       {0, [](F& f, const Args&) { return mrvk::Variant(f.ReturnPrintName()); }}},
      {"Attributes",
       {1, [](F& f, const Args& a) { return mrvk::Variant(f.Attributes(a[0].ToLong())); }}},
      {"DoGetFormStatus",
       {0,
        [](F& f, const Args&) {
          f.DoGetFormStatus();
          return mrvk::Variant();
        }}},
      {"DoSaveFormStatus",
       {0,
        [](F& f, const Args&) {
          f.DoSaveFormStatus();
          return mrvk::Variant();
        }}},
  };
  return ops;
}

struct ReportOp {
  size_t arity;
  std::function<mrvk::Variant(mrvk::IReportUI&, const Args&)> run;
};

const std::map<std::string, ReportOp>& ReportOps() {
  using R = mrvk::IReportUI;
  auto op0 = [](bool (R::*m)()) {
    return ReportOp{0, [m](R& r, const Args&) { return mrvk::Variant((r.*m)()); }};
  };
  static const std::map<std::string, ReportOp> ops = {
      {"FindNext", op0(&R::FindNext)},
      {"Refresh", op0(&R::Refresh)},
      {"RecordTop", op0(&R::RecordTop)},
      {"RecordPrevious", op0(&R::RecordPrevious)},
      {"RecordNext", op0(&R::RecordNext)},
      {"RecordBottom", op0(&R::RecordBottom)},
      {"PrintPreview", op0(&R::PrintPreview)},
      {"DoPrint", op0(&R::DoPrint)},
      {"PrintSetup", op0(&R::PrintSetup)},
      {"Help", op0(&R::Help)},
      {"Find", {1, [](R& r, const Args& a) { return mrvk::Variant(r.Find(a[0])); }}},
      {"Filter", {1, [](R& r, const Args& a) { return mrvk::Variant(r.Filter(a[0])); }}},
      {"ReturnPrintName",
       {0, [](R& r, const Args&) { return mrvk::Variant(r.ReturnPrintName()); }}},
      {"Attributes",
       {1, [](R& r, const Args& a) { return mrvk::Variant(r.Attributes(a[0].ToLong())); }}},
      {"DoGetFormStatus",
       {0, [](R& r, const Args&) { return mrvk::Variant(r.DoGetFormStatus()); }}},
      {"DoSaveFormStatus",
       {0, [](R& r, const Args&) { return mrvk::Variant(r.DoSaveFormStatus()); }}},
  };
  return ops;
}

}  // namespace

Status Host::gesture(Screen& screen, const std::string& name, int index, const Gesture& g) {
  const std::string owner = "screen " + std::to_string(screen.id) + " (" + screen.class_name + ")";
  mrvk::IDesignUI* design = screen.design();
  if (!design) return Status::Error(owner + " has no controls");
  return gesture(design->Controls(), owner, name, index, g);
}

Status Host::gesture(ControlList& controls, const std::string& owner, const std::string& name,
                     int index, const Gesture& g) {
  Control* c = controls.Find(name, index);
  if (!c)
    return Status::Error(owner + " has no control \"" + name +
                         (index >= 0 ? "(" + std::to_string(index) + ")" : std::string()) + "\"");
  // The control takes the focus before its events run, as a click or a key does, so a
  // handler that moves the focus elsewhere (a check sending the person to an empty field)
  // has the last word; a refused gesture leaves the focus where it was.
  Control* had_focus = controls.Focused();
  std::string refused;
  Status st = guarded(owner + "." + c->DisplayName() + "." + g.kind, [&] {
    controls.SetFocus(c);
    refused = c->Apply(g);
    if (!refused.empty()) controls.SetFocus(had_focus);
  });
  if (!st.ok()) return st;
  if (!refused.empty()) return Status::Error(refused);
  return Status::Ok();
}

Status Host::search_fields(Screen& screen, std::vector<mrvk::SearchField>& fields) {
  fields.clear();
  return guarded(screen.class_name + ".SearchFields", [&] {
    if (auto* form = screen.form()) fields = form->SearchFields();
    if (auto* report = screen.report()) fields = report->SearchFields();
  });
}

Status Host::invoke(Screen& screen, const std::string& method, const Args& args,
                    mrvk::Variant& result) {
  result = mrvk::Variant();
  if (method == "Init" || method == "Clear")
    return Status::Error(method + " is the host's own call: open and close the screen instead");
  if ((method == "Find" || method == "Filter") && args.size() == 1) {
    // A condition naming anything but a declared field and operator, or a date value that is
    // no date, never reaches the screen.
    std::vector<mrvk::SearchField> fields;
    if (Status st = search_fields(screen, fields); !st.ok()) return st;
    std::string refusal;
    for (int plane : {0, 1}) {
      mrvk::ConditionText(args[0], plane, /*jet=*/false, fields, refusal);
      if (!refusal.empty()) return Status::Error(refusal);
    }
  }
  auto arity_error = [&](size_t want) {
    return Status::Error(method + " takes " + std::to_string(want) + " argument" +
                         (want == 1 ? "" : "s") + ", not " + std::to_string(args.size()));
  };
  if (auto* form = screen.form()) {
    auto it = FormOps().find(method);
    if (it != FormOps().end()) {
      if (args.size() != it->second.arity) return arity_error(it->second.arity);
      return guarded(screen.class_name + "." + method,
                     [&] { result = it->second.run(*form, args); });
    }
  }
  if (auto* report = screen.report()) {
    auto it = ReportOps().find(method);
    if (it != ReportOps().end()) {
      if (args.size() != it->second.arity) return arity_error(it->second.arity);
      return guarded(screen.class_name + "." + method,
                     [&] { result = it->second.run(*report, args); });
    }
  }
  if (method == "Action") {
    auto* ft = screen.form_tool();
    if (!ft) return Status::Error(screen.class_name + " has no form tools");
    if (args.size() != 1) return arity_error(1);
    return guarded(screen.class_name + ".Action",
                   [&] { result = mrvk::Variant(ft->Action(args[0].ToString())); });
  }
  return Status::Error("unknown operation \"" + method + "\" for " + screen.class_name);
}

}  // namespace kvhost
