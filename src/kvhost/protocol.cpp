#include "kvhost/protocol.h"

#include <condition_variable>
#include <functional>
#include <mutex>
#include <optional>
#include <thread>

#include "kvhost/db/database.h"
#include "kvhost/host.h"
#include "kvhost/lib/control_list.h"
#include "kvhost/lib/dialog.h"
#include "kvhost/print_service.h"

namespace kvhost {

using nlohmann::json;

json VariantToJson(const mrvk::Variant& v) {
  using T = mrvk::Variant::Type;
  switch (v.type()) {
    case T::Empty:
    case T::Null:
      return nullptr;
    case T::Boolean:
      return v.AsBool();
    case T::Long:
      return v.AsLong();
    case T::Double:
      return v.AsDouble();
    case T::String:
      return v.AsString();
    case T::Date:
      return v.AsDate().ToText();
    case T::Array:
      break;
  }
  // Nested arrays, outermost dimension first.
  const mrvk::VariantArray& a = v.AsArray();
  std::function<json(std::vector<int>&)> build = [&](std::vector<int>& index) -> json {
    const int dim = static_cast<int>(index.size());
    json out = json::array();
    for (int i = 0; i <= a.UBound(dim + 1); ++i) {
      index.push_back(i);
      if (dim + 1 == a.Dimensions()) {
        const mrvk::Variant* cell = nullptr;
        if (a.Dimensions() == 1)
          cell = &a.at({index[0]});
        else if (a.Dimensions() == 2)
          cell = &a.at({index[0], index[1]});
        else
          cell = &a.at({index[0], index[1], index[2]});
        out.push_back(VariantToJson(*cell));
      } else {
        out.push_back(build(index));
      }
      index.pop_back();
    }
    return out;
  };
  std::vector<int> index;
  return build(index);
}

bool JsonToVariant(const json& j, mrvk::Variant& out, std::string& error) {
  switch (j.type()) {
    case json::value_t::null:
      out = mrvk::Variant::Null();
      return true;
    case json::value_t::boolean:
      out = mrvk::Variant(j.get<bool>());
      return true;
    case json::value_t::number_integer:
    case json::value_t::number_unsigned:
      out = mrvk::Variant(j.get<int64_t>());
      return true;
    case json::value_t::number_float:
      out = mrvk::Variant(j.get<double>());
      return true;
    case json::value_t::string:
      out = mrvk::Variant(j.get<std::string>());
      return true;
    case json::value_t::array:
      break;
    default:
      error = "objects cannot be passed as values";
      return false;
  }
  // The shape of a rectangular nested array, up to three dimensions.
  std::vector<int> sizes;
  const json* level = &j;
  while (level->is_array()) {
    sizes.push_back(static_cast<int>(level->size()));
    if (level->empty()) break;
    level = &(*level)[0];
  }
  if (sizes.size() > 3) {
    error = "arrays have at most three dimensions";
    return false;
  }
  auto array = std::make_shared<mrvk::VariantArray>(sizes);
  std::function<bool(const json&, std::vector<int>&)> fill = [&](const json& node,
                                                                 std::vector<int>& index) {
    const size_t dim = index.size();
    if (!node.is_array() || static_cast<int>(node.size()) != sizes[dim]) {
      error = "nested arrays must be rectangular";
      return false;
    }
    for (int i = 0; i < sizes[dim]; ++i) {
      index.push_back(i);
      const json& child = node[static_cast<size_t>(i)];
      if (dim + 1 == sizes.size()) {
        mrvk::Variant v;
        if (child.is_array() || !JsonToVariant(child, v, error)) {
          if (error.empty()) error = "nested arrays must be rectangular";
          return false;
        }
        if (sizes.size() == 1)
          array->at({index[0]}) = v;
        else if (sizes.size() == 2)
          array->at({index[0], index[1]}) = v;
        else
          array->at({index[0], index[1], index[2]}) = v;
      } else if (!fill(child, index)) {
        return false;
      }
      index.pop_back();
    }
    return true;
  };
  std::vector<int> index;
  if (!fill(j, index)) return false;
  out = mrvk::Variant(array);
  return true;
}

namespace {

json Fail(const std::string& error) { return {{"ok", false}, {"error", error}}; }

// True for the pending kinds of a modal form: an entry dialog or a picker's list.
bool IsForm(const std::string& kind) { return kind == "dialog" || kind == "picker"; }

// True when the request names the dialog that is shown ("dialog": true).
bool ForDialog(const json& req) {
  auto it = req.find("dialog");
  return it != req.end() && it->is_boolean() && it->get<bool>();
}

json EventsToJson(const std::vector<HostEvent>& events) {
  json out = json::array();
  for (const HostEvent& e : events) {
    json args = json::array();
    for (const auto& a : e.event.args) args.push_back(VariantToJson(a));
    out.push_back(
        {{"screen", e.screen}, {"name", e.event.name}, {"id", e.event.id}, {"args", args}});
  }
  return out;
}

// Reads a field of the request, with a clear error when it is missing or of the wrong kind.
template <typename T>
bool Field(const json& req, const char* name, T& out, std::string& error, bool required = true) {
  auto it = req.find(name);
  if (it == req.end() || it->is_null()) {
    if (required) error = std::string("missing field \"") + name + "\"";
    return !required;
  }
  try {
    if constexpr (std::is_same_v<T, std::string>) {
      if (!it->is_string()) throw std::invalid_argument("");
    } else if constexpr (std::is_same_v<T, bool>) {
      if (!it->is_boolean()) throw std::invalid_argument("");
    } else if constexpr (std::is_integral_v<T>) {
      if (!it->is_number_integer() && !it->is_number_unsigned()) throw std::invalid_argument("");
      const int64_t v = it->get<int64_t>();
      if (v < std::numeric_limits<T>::min() || v > std::numeric_limits<T>::max())
        throw std::invalid_argument("");
    }
    out = it->get<T>();
    return true;
  } catch (const std::exception&) {
    error = std::string("field \"") + name + "\" has the wrong type";
    return false;
  }
}

}  // namespace

class ProtocolDriver::Impl : public mrvk::IUiPort {
 public:
  Impl() : worker_([this] { WorkerLoop(); }) {}

  ~Impl() override {
    {
      std::lock_guard lock(mu_);
      stopping_ = true;
    }
    cv_.notify_all();
    worker_.join();
    host_.reset();
  }

  json Handle(const json& req) {
    if (!req.is_object()) return Fail("a request is a JSON object");
    std::string op;
    std::string error;
    if (!Field(req, "op", op, error)) return Fail(error);
    {
      std::unique_lock lock(mu_);
      if (pending_ && IsForm(pending_->kind) && (op == "gesture" || op == "state") &&
          ForDialog(req))
        return RunInDialog(lock, req, op);
      if (pending_ && op != "answer")
        return Fail("a " + pending_->kind + " is waiting for an answer: send {\"op\":\"answer\"}" +
                    (IsForm(pending_->kind)
                         ? ", or gestures and state requests with \"dialog\":true"
                         : ""));
    }
    if (ForDialog(req)) return Fail("no dialog is shown");
    if (op == "answer") return Answer(req);
    if (op == "session") return RunOnWorker([&] { return Session(req); });
    if (!host_) return Fail("no session: send {\"op\":\"session\",...} first");
    if (op == "open") return RunOnWorker([&] { return Open(req); });
    if (op == "call") return RunOnWorker([&] { return Call(req); });
    if (op == "gesture") return RunOnWorker([&] { return Gesture(req); });
    if (op == "state") return RunOnWorker([&] { return State(req); });
    if (op == "sql") return RunOnWorker([&] { return Sql(req); });
    if (op == "close") return RunOnWorker([&] { return Close(req); });
    if (op == "tool") return RunOnWorker([&] { return Tool(req); });
    if (op == "export") return RunOnWorker([&] { return Export(req); });
    if (op == "print_grid") return RunOnWorker([&] { return PrintGrid(req); });
    return Fail("unknown op \"" + op + "\"");
  }

  // IUiPort, on the worker thread: publish the box and wait for the caller's answer.
  int MsgBox(const std::string& prompt, int flags, const std::string& title) override {
    auto v = WaitForAnswer({"msgbox", prompt, flags, title, ""});
    return static_cast<int>(v.ToDouble());
  }
  std::optional<std::string> InputBox(const std::string& prompt, const std::string& title,
                                      const std::string& default_text) override {
    auto v = WaitForAnswer({"inputbox", prompt, 0, title, default_text});
    if (v.IsNull() || v.IsEmpty()) return std::nullopt;  // cancelled
    return v.ToString();
  }

  // IUiPort, on the worker thread: while the dialog is shown, the caller's gestures and state
  // requests for it run here, one at a time; an answer closes the dialog's window.
  void ShowModal(mrvk::IModalForm& form) override {
    auto* dialog = dynamic_cast<Dialog*>(&form);
    if (!dialog) throw std::runtime_error("the screen protocol cannot show " + form.Title());
    dialogs_.push_back(dialog);
    struct PopOnExit {
      std::vector<Dialog*>& stack;
      ~PopOnExit() { stack.pop_back(); }
    } pop{dialogs_};
    while (dialog->IsShown()) {
      std::function<json()> task;
      {
        std::unique_lock lock(mu_);
        auto events = host_ ? host_->take_events() : std::vector<HostEvent>{};
        pending_events_.insert(pending_events_.end(), events.begin(), events.end());
        pending_ = Pending{dialog->Kind(), "", 0, dialog->Caption, ""};
        ++pending_seq_;
        cv_.notify_all();
        cv_.wait(lock,
                 [&] { return dialog_task_.has_value() || answer_.has_value() || stopping_; });
        if (stopping_) throw Aborted();
        pending_.reset();
        if (answer_) {
          // The form takes the answer: a dialog closes, a picker chooses rows or cancels.
          task = [dialog, value = std::move(*answer_)] {
            const std::string why = dialog->Answer(value);
            return why.empty() ? json{{"ok", true}, {"result", nullptr}} : Fail(why);
          };
          answer_.reset();
        } else {
          task = std::move(*dialog_task_);
          dialog_task_.reset();
        }
      }
      // An abort (mrvk::AbortSignal) passes on: it ends the call that showed the dialog.
      json outcome;
      try {
        outcome = task();
      } catch (const std::exception& e) {
        outcome = Fail(e.what());
      }
      std::lock_guard lock(mu_);
      dialog_outcome_ = std::move(outcome);
    }
    std::lock_guard lock(mu_);
    dialog_outcome_.reset();
  }

 private:
  struct Pending {
    std::string kind;
    std::string prompt;
    int flags = 0;
    std::string title;
    std::string default_text;
  };

  // Ends the module's call when the driver closes while a box waits: nothing of the call runs
  // on after the question nobody will answer.
  class Aborted : public mrvk::AbortSignal {
   public:
    Aborted() : mrvk::AbortSignal("the driver was closed while a box was waiting") {}
  };

  mrvk::Variant WaitForAnswer(Pending p) {
    std::unique_lock lock(mu_);
    pending_events_ = host_ ? host_->take_events() : std::vector<HostEvent>{};
    pending_ = std::move(p);
    ++pending_seq_;
    cv_.notify_all();
    cv_.wait(lock, [&] { return answer_.has_value() || stopping_; });
    if (!answer_) throw Aborted();
    mrvk::Variant v = std::move(*answer_);
    answer_.reset();
    pending_.reset();
    return v;
  }

  void WorkerLoop() {
    std::unique_lock lock(mu_);
    while (true) {
      cv_.wait(lock, [&] { return task_ || stopping_; });
      if (stopping_ && !task_) return;
      auto task = std::move(*task_);
      task_.reset();
      lock.unlock();
      json result;
      try {
        result = task();
      } catch (const std::exception& e) {
        result = Fail(e.what());
      } catch (const mrvk::AbortSignal& e) {
        result = Fail(e.Why());
      }
      lock.lock();
      result_ = std::move(result);
      cv_.notify_all();
    }
  }

  // Runs fn on the worker and waits until it ends or shows a box.
  json RunOnWorker(std::function<json()> fn) {
    std::unique_lock lock(mu_);
    task_ = std::move(fn);
    const uint64_t seq = pending_seq_;
    cv_.notify_all();
    return WaitForOutcome(lock, seq);
  }

  json WaitForOutcome(std::unique_lock<std::mutex>& lock, uint64_t seq) {
    cv_.wait(lock, [&] { return result_.has_value() || (pending_ && pending_seq_ != seq); });
    if (result_) {
      json r = std::move(*result_);
      result_.reset();
      return r;
    }
    json p = {{"kind", pending_->kind},
              {"prompt", pending_->prompt},
              {"flags", pending_->flags},
              {"title", pending_->title}};
    if (pending_->kind == "inputbox") p["default"] = pending_->default_text;
    json answer = {{"ok", true}};
    if (IsForm(pending_->kind)) {
      // The dialog's own state, and what the last request on it gave.
      json dialog = json::object();
      dialogs_.back()->WriteState(dialog);
      p["dialog"] = std::move(dialog);
      if (dialog_outcome_) {
        answer = std::move(*dialog_outcome_);
        dialog_outcome_.reset();
      }
    }
    answer["pending"] = std::move(p);
    answer["events"] = EventsToJson(pending_events_);
    pending_events_.clear();
    return answer;
  }

  json Answer(const json& req) {
    std::unique_lock lock(mu_);
    if (!pending_) return Fail("nothing is waiting for an answer");
    auto it = req.find("value");
    if (it == req.end()) return Fail("missing field \"value\"");
    mrvk::Variant v;
    std::string error;
    if (!JsonToVariant(*it, v, error)) return Fail(error);
    if (pending_->kind == "msgbox" && !v.IsNumeric())
      return Fail("a message box is answered by a button number (6 yes, 7 no, 1 OK, 2 cancel)");
    answer_ = std::move(v);
    const uint64_t seq = pending_seq_;
    cv_.notify_all();
    return WaitForOutcome(lock, seq);
  }

  // Every answer of an operation carries the events raised since the last answer.
  // Pages that a print made carry "documents" (print_service.h).
  json Done(json result) {
    json answer = {{"ok", true},
                   {"result", std::move(result)},
                   {"events", EventsToJson(host_->take_events())}};
    if (json documents = TakeDocumentsJson(); !documents.empty())
      answer["documents"] = std::move(documents);
    return answer;
  }
  json Failed(const std::string& error) {
    json f = Fail(error);
    if (host_) f["events"] = EventsToJson(host_->take_events());
    return f;
  }

  json Session(const json& req) {
    HostConfig cfg;
    std::string error;
    if (!Field(req, "database", cfg.database, error) ||
        !Field(req, "user", cfg.user, error, /*required=*/false) ||
        !Field(req, "login_date", cfg.login_date, error, /*required=*/false) ||
        !Field(req, "app_path", cfg.app_path, error, /*required=*/false) ||
        !Field(req, "shared_path", cfg.shared_path, error, /*required=*/false))
      return Fail(error);
    auto host = std::make_unique<Host>(cfg);
    if (!host->status().ok()) return Fail(host->status().message());
    // A new database gets its schema; an existing one is used as it is.
    db::ResultSet probe;
    if (!host->database().Query("select count(*) from xt_menu", probe)) {
      Status s = host->create_schema();
      if (!s.ok()) return Fail("cannot create the schema: " + s.message());
    }
    host->set_ui_port(this);
    host_ = std::move(host);
    return {
        {"ok", true},
        {"result", {{"driver", host_->database().Properties().Item("driver").Value.ToString()}}},
        {"events", json::array()}};
  }

  Screen* FindScreen(const json& req, std::string& error) {
    int id = 0;
    if (!Field(req, "screen", id, error)) return nullptr;
    Screen* s = host_->screen(id);
    if (!s) error = "no open screen " + std::to_string(id);
    return s;
  }

  json Open(const json& req) {
    std::string cls, error;
    int32_t prog = 0, record = 0;
    if (!Field(req, "class", cls, error) || !Field(req, "progID", prog, error, false) ||
        !Field(req, "record", record, error, false))
      return Fail(error);
    Screen* s = host_->open(cls, prog, record);
    if (!s) return Failed(host_->last_error());
    return Done(s->id);
  }

  json Call(const json& req) {
    std::string method, error;
    Screen* s = FindScreen(req, error);
    if (!s || !Field(req, "method", method, error)) return Fail(error);
    std::vector<mrvk::Variant> args;
    if (auto it = req.find("args"); it != req.end() && !it->is_null()) {
      if (!it->is_array()) return Fail("field \"args\" must be an array");
      for (const json& a : *it) {
        mrvk::Variant v;
        if (!JsonToVariant(a, v, error)) return Fail("args: " + error);
        args.push_back(std::move(v));
      }
    }
    mrvk::Variant result;
    Status st = host_->invoke(*s, method, args, result);
    if (!st.ok()) return Failed(st.message());
    std::string print_error;
    RenderSheetPrint(*host_, *s, method, print_error);
    json answer = Done(VariantToJson(result));
    // The operation ran; a page that could not be made is told beside its result.
    if (!print_error.empty()) answer["print_error"] = print_error;
    return answer;
  }

  // {"op":"export","screen":S,"control":"Vs","index":-1,"format":"xlsx"|"csv"}: the file.
  json Export(const json& req) {
    std::string control, format, error, path;
    int index = -1;
    Screen* s = FindScreen(req, error);
    if (!s || !Field(req, "control", control, error) || !Field(req, "index", index, error, false) ||
        !Field(req, "format", format, error))
      return Fail(error);
    Status st = ExportScreenGrid(*host_, *s, control, index, format, path);
    if (!st.ok()) return Fail(st.message());
    return Done({{"path", path}, {"format", format}});
  }

  // {"op":"print_grid","screen":S,"control":"Vs","index":-1,"title":T,"direct":false}: the
  // host's own page of a grid, in the answer's "documents".
  json PrintGrid(const json& req) {
    std::string control, title, error;
    int index = -1;
    bool direct = false;
    Screen* s = FindScreen(req, error);
    if (!s || !Field(req, "control", control, error) || !Field(req, "index", index, error, false) ||
        !Field(req, "title", title, error, false) || !Field(req, "direct", direct, error, false))
      return Fail(error);
    Status st = PrintScreenGrid(*host_, *s, control, index, title, direct);
    if (!st.ok()) return Fail(st.message());
    return Done(true);
  }

  // Reads the gesture of a request; false with the reason when it is malformed.
  static bool ReadGesture(const json& req, std::string& control, int& index, kvhost::Gesture& g,
                          std::string& error) {
    index = -1;
    return Field(req, "control", control, error) && Field(req, "index", index, error, false) &&
           Field(req, "gesture", g.kind, error) && Field(req, "text", g.text, error, false) &&
           Field(req, "row", g.row, error, false) && Field(req, "col", g.col, error, false) &&
           Field(req, "key", g.key, error, false);
  }

  json Gesture(const json& req) {
    std::string control, error;
    int index = -1;
    kvhost::Gesture g;
    Screen* s = FindScreen(req, error);
    if (!s || !ReadGesture(req, control, index, g, error)) return Fail(error);
    Status st = host_->gesture(*s, control, index, g);
    if (!st.ok()) return Failed(st.message());
    return Done(true);
  }

  json State(const json& req) {
    std::string error;
    Screen* s = FindScreen(req, error);
    if (!s) return Fail(error);
    json state = {{"screen", s->id},
                  {"class", s->class_name},
                  {"progID", s->progID},
                  {"controls", json::array()}};
    if (mrvk::IDesignUI* design = s->design())
      state["controls"] = ControlsState(design->Controls());
    if (auto* form = s->form()) {
      bool dirty = false;
      int32_t id = 0;
      std::vector<std::string> served;
      Status st = host_->guarded(s->class_name + ".state", [&] {
        dirty = form->IsDirty();
        id = form->GetID();
        served = form->ServedCommands();
      });
      if (!st.ok()) return Failed(st.message());
      state["IsDirty"] = dirty;
      state["GetID"] = id;
      // The toolbar offers only these when the sheet names them.
      if (!served.empty()) state["commands"] = served;
    }
    // What the find and filter dialog offers: the declared fields by caption and type, each
    // with its operators. Their columns stay with the screen.
    std::vector<mrvk::SearchField> fields;
    if (Status st = host_->search_fields(*s, fields); !st.ok()) return Failed(st.message());
    json search = json::array();
    for (const mrvk::SearchField& f : fields) {
      const char* type = f.type == mrvk::SearchType::kDate     ? "date"
                         : f.type == mrvk::SearchType::kNumber ? "number"
                                                               : "text";
      search.push_back(
          {{"caption", f.caption}, {"type", type}, {"operators", mrvk::SearchOperators(f.type)}});
    }
    state["search_fields"] = std::move(search);
    return Done(state);
  }

  // A gesture or state request for the dialog that is shown: runs on the class's thread
  // inside the dialog's modal loop. Called with mu_ held.
  json RunInDialog(std::unique_lock<std::mutex>& lock, const json& req, const std::string& op) {
    Dialog* dialog = dialogs_.back();
    dialog_task_ = [this, dialog, req, op]() -> json {
      if (op == "state") {
        json state = json::object();
        dialog->WriteState(state);
        return {{"ok", true}, {"result", std::move(state)}};
      }
      std::string control, error;
      int index = -1;
      kvhost::Gesture g;
      if (!ReadGesture(req, control, index, g, error)) return Fail(error);
      Status st = host_->gesture(dialog->Controls(), "dialog " + dialog->Name(), control, index, g);
      if (!st.ok()) return Fail(st.message());
      return {{"ok", true}, {"result", true}};
    };
    const uint64_t seq = pending_seq_;
    cv_.notify_all();
    return WaitForOutcome(lock, seq);
  }

  json Sql(const json& req) {
    std::string query, error;
    if (!Field(req, "query", query, error)) return Fail(error);
    db::Database& database = host_->database();
    // Diagnostics never change the database: on the server the statement runs in a
    // read-only transaction that is rolled back; SQLite only takes SELECTs. Without that
    // transaction the statement does not run.
    if (database.dialect() == db::Dialect::Postgres) {
      if (database.InTransaction()) return Fail("sql: a transaction is open on this session");
      if (Status s = database.connection().ExecuteRaw("BEGIN READ ONLY"); !s.ok())
        return Fail("sql: cannot open a read-only transaction: " + s.message());
    }
    db::ResultSet rs;
    const bool ok = database.Query(query, rs);
    const std::string failure = database.Error().Description();
    if (database.dialect() == db::Dialect::Postgres) {
      if (Status s = database.connection().ExecuteRaw("ROLLBACK"); !s.ok())
        return Fail("sql: cannot end the read-only transaction: " + s.message());
    }
    if (!ok) return Fail(failure);
    json rows = json::array();
    for (size_t r = 0; r < rs.rows(); ++r) {
      json row = json::array();
      for (size_t c = 0; c < rs.columns.size(); ++c)
        row.push_back(VariantToJson(rs.values[r * rs.columns.size() + c]));
      rows.push_back(std::move(row));
    }
    return Done({{"columns", rs.columns}, {"rows", rows}});
  }

  json Close(const json& req) {
    std::string error;
    Screen* s = FindScreen(req, error);
    if (!s) return Fail(error);
    Status st = host_->close(s->id);
    if (!st.ok()) return Failed(st.message());
    return Done(true);
  }

  json Tool(const json& req) {
    std::string cls, error;
    int32_t prog = 0, record = 0, action = 0;
    if (!Field(req, "class", cls, error) || !Field(req, "progID", prog, error, false) ||
        !Field(req, "record", record, error, false) || !Field(req, "action", action, error, false))
      return Fail(error);
    bool result = false;
    Status st = host_->run_tool(cls, prog, record, action, result);
    if (!st.ok()) return Failed(st.message());
    return Done(result);
  }

  std::mutex mu_;
  std::condition_variable cv_;
  std::optional<std::function<json()>> task_;
  std::optional<json> result_;
  std::optional<Pending> pending_;
  uint64_t pending_seq_ = 0;
  std::vector<HostEvent> pending_events_;
  std::optional<mrvk::Variant> answer_;
  // The dialogs shown, innermost last; only the worker changes it.
  std::vector<Dialog*> dialogs_;
  std::optional<std::function<json()>> dialog_task_;
  std::optional<json> dialog_outcome_;
  bool stopping_ = false;
  std::unique_ptr<Host> host_;
  std::thread worker_;
};

ProtocolDriver::ProtocolDriver() : impl_(std::make_unique<Impl>()) {}
ProtocolDriver::~ProtocolDriver() = default;

json ProtocolDriver::Handle(const json& request) {
  try {
    return impl_->Handle(request);
  } catch (const std::exception& e) {
    return Fail(std::string("internal error: ") + e.what());
  }
}

bool ParseRequest(const std::string& text, json& out, std::string& error) {
  if (text.size() > kMaxRequestBytes) {
    error = "the request is larger than " + std::to_string(kMaxRequestBytes) + " bytes";
    return false;
  }
  int depth = 0;
  bool in_string = false;
  for (size_t i = 0; i < text.size(); ++i) {
    const char ch = text[i];
    if (in_string) {
      if (ch == '\\')
        ++i;
      else if (ch == '"')
        in_string = false;
    } else if (ch == '"') {
      in_string = true;
    } else if (ch == '[' || ch == '{') {
      if (++depth > kMaxRequestDepth) {
        error = "the request nests arrays and objects deeper than " +
                std::to_string(kMaxRequestDepth) + " levels";
        return false;
      }
    } else if (ch == ']' || ch == '}') {
      --depth;
    }
  }
  try {
    out = json::parse(text);
  } catch (const json::parse_error& e) {
    error = std::string("the request is not JSON: ") + e.what();
    return false;
  }
  return true;
}

std::string ProtocolDriver::HandleLine(const std::string& line) {
  json req;
  std::string error;
  if (!ParseRequest(line, req, error)) return Fail(error).dump();
  return Handle(req).dump(-1, ' ', /*ensure_ascii=*/false, json::error_handler_t::replace);
}

}  // namespace kvhost
