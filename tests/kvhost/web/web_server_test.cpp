// The web client's server over real HTTP (cpp-httplib's client against an in-process server
// on a free port), on both engines: sign-in, the first run, sessions, request tokens, and the
// screen protocol bound to each person's own session, and the files (pages and exports) a
// session's host made, which only that session can fetch.
#include "kvhost/web/web_server.h"

#include <gtest/gtest.h>
#include <httplib.h>
#include <unistd.h>

#include <chrono>
#include <filesystem>
#include <fstream>
#include <thread>

#include "kvhost/lib/print_data.h"
#include "kvhost/web/user_store.h"
#include "mrvk/frame/print_pipeline.h"
#include "mrvk/master/pdm_yz.h"
#include "mrvk/registry.h"
#include "support/engines.h"

namespace kvhost::web {
namespace {

using nlohmann::json;

constexpr int kFastHash = 1000;  // the slow hash's minimum: tests sign in many times
constexpr int kOwnersProgID = 870004;
constexpr int kPrintingProgID = 990004;
constexpr int kDocumentProgID = 990005;
constexpr int kAskingProgID = 990006;

// The owners' list with a print preview of its grid, as a report prints: the page it makes
// comes with the answer's "documents".
class PrintingOwners : public mrvk::PDMYz {
 public:
  bool PrintPreview() override {
    std::string error;
    return mrvk::PrintGrid(*context_, mrvk::ReportPrintSettings(*context_, kPrintingProgID),
                           "客户清单", "", Vs, /*direct=*/false, /*setup=*/false, "", error);
  }
};

// A sheet whose printed document names its clerk. It asks a question between writing its
// print data file and handing the file to the host, so another clerk can print meanwhile.
class DocumentPrintingOwners : public mrvk::PDMYz {
 public:
  bool PrintPreview() override {
    file_ = mrvk::PrintDataFile(*context_, kDocumentProgID);
    PrintData data;
    data.Section(mrvk::Variant(1)).SetField("经办人", context_->Environment().UserName());
    data.Save(file_);
    mrvk::MsgBox("预览吗？");
    return true;
  }
  std::string ReturnPrintName() override { return file_; }

 private:
  std::string file_;
};

// The owners' list asking a question while it closes.
class AskingOwners : public mrvk::PDMYz {
 public:
  void DoSaveFormStatus() override {
    mrvk::MsgBox("保存布局吗？");
    mrvk::PDMYz::DoSaveFormStatus();
  }
};

struct Reply {
  int status = 0;
  json body;
  std::string set_cookie;
};

// One browser: its cookie and its request token.
struct Browser {
  std::string cookie;
  std::string csrf;
};

class WebServerTest : public kvtest::EngineTest {
 protected:
  void SetUp() override {
    kvtest::EngineTest::SetUp();
    if (IsSkipped() || HasFatalFailure()) return;
    static const bool registered = [] {
      mrvk::RegisterClass("PrintingOwners", [] { return std::make_unique<PrintingOwners>(); });
      mrvk::RegisterClass("DocumentPrintingOwners",
                          [] { return std::make_unique<DocumentPrintingOwners>(); });
      mrvk::RegisterClass("AskingOwners", [] { return std::make_unique<AskingOwners>(); });
      return true;
    }();
    (void)registered;
    app_path_ = std::filesystem::temp_directory_path() /
                ("mrvk_web_" + std::to_string(::getpid()) + "_" +
                 ::testing::UnitTest::GetInstance()->current_test_info()->name());
    std::filesystem::remove_all(app_path_);
    std::filesystem::create_directories(app_path_);
    ServeOptions options;
    options.app.database = url();
    options.app.app_path = app_path_.string();
    options.app.extra_menu = {{kPrintingProgID, "客户清单", "测试", "PrintingOwners", 1},
                              {kDocumentProgID, "业主单据", "测试", "DocumentPrintingOwners", 2},
                              {kAskingProgID, "业主", "测试", "AskingOwners", 3}};
    options.app.hash_iterations = kFastHash;
    options.app.first_lock = std::chrono::seconds(1);
    options.app.recheck_user = std::chrono::seconds(0);
    options.port = 0;
    options.static_dir = MRVK_WEB_STATIC_DIR;
    options.threads = 8;
    server_ = std::make_unique<WebServer>(options);
    Status st = server_->Start(admin_password_);
    ASSERT_TRUE(st.ok()) << st.message();
    ASSERT_FALSE(admin_password_.empty());
    runner_ = std::thread([this] { server_->Run(); });
    client_ = std::make_unique<httplib::Client>("127.0.0.1", server_->port());
    client_->set_read_timeout(30, 0);
  }
  void TearDown() override {
    if (server_) server_->Stop();
    if (runner_.joinable()) runner_.join();
    server_.reset();
    std::error_code ignored;
    std::filesystem::remove_all(app_path_, ignored);
    kvtest::EngineTest::TearDown();
  }

  Reply Send(const std::string& method, const std::string& path, const std::string& body,
             const Browser* b, bool with_token = true,
             const std::string& content_type = "application/json") {
    httplib::Headers headers;
    if (b && !b->cookie.empty()) headers.emplace("Cookie", b->cookie);
    if (b && with_token) headers.emplace("X-CSRF-Token", b->csrf);
    httplib::Result r = method == "GET" ? client_->Get(path.c_str(), headers)
                                        : client_->Post(path.c_str(), headers, body, content_type);
    EXPECT_TRUE(r) << "no answer from " << path;
    if (!r) return {};
    Reply out{r->status, json(), r->get_header_value("Set-Cookie")};
    out.body = json::parse(r->body, nullptr, /*allow_exceptions=*/false);
    return out;
  }
  Reply Post(const std::string& path, const json& body, const Browser* b) {
    return Send("POST", path, body.dump(), b);
  }
  Reply Protocol(const Browser& b, const json& req) { return Post("/api/protocol", req, &b); }

  // Signs in and keeps the session cookie and token.
  Reply SignIn(const std::string& user, const std::string& password, Browser& b,
               const std::string& login_date = "") {
    json body = {{"user", user}, {"password", password}};
    if (!login_date.empty()) body["login_date"] = login_date;
    Reply r = Post("/api/signin", body, nullptr);
    if (r.status == 200) {
      b.cookie = r.set_cookie.substr(0, r.set_cookie.find(';'));
      b.csrf = r.body["csrf"].get<std::string>();
    }
    return r;
  }
  // A clerk with a password of their own, signed in.
  Browser Clerk(const std::string& name) {
    UserStore users(db(), kFastHash);
    EXPECT_TRUE(users.Add(name, "clerk-password").ok());
    Browser b;
    Reply r = SignIn(name, "clerk-password", b);
    EXPECT_EQ(r.status, 200) << r.body.dump();
    return b;
  }
  int Open(const Browser& b, int progID) {
    Reply r = Protocol(b, {{"op", "open"}, {"progID", progID}});
    EXPECT_EQ(r.status, 200) << r.body.dump();
    return r.body.value("result", 0);
  }
  std::string Error(const Reply& r) { return r.body.value("error", std::string("<none>")); }
  // The status and the error of a refusal: "403 请先修改初始密码".
  std::string Said(const Reply& r) { return std::to_string(r.status) + " " + Error(r); }

  std::filesystem::path app_path_;
  std::unique_ptr<WebServer> server_;
  std::thread runner_;
  std::unique_ptr<httplib::Client> client_;
  std::string admin_password_;
};

TEST_P(WebServerTest, FirstRunAdministratorMustChangeTheOneTimePassword) {
  Browser admin;
  Reply r = SignIn("admin", admin_password_, admin);
  ASSERT_EQ(r.status, 200) << r.body.dump();
  EXPECT_TRUE(r.body["must_change"].get<bool>());
  EXPECT_NE(r.set_cookie.find("HttpOnly"), std::string::npos) << r.set_cookie;
  EXPECT_NE(r.set_cookie.find("SameSite=Strict"), std::string::npos) << r.set_cookie;

  // Nothing but the password change until it is done.
  EXPECT_EQ(Said(Send("GET", "/api/menu", "", &admin)), "403 请先修改初始密码");
  r = Protocol(admin, {{"op", "open"}, {"progID", 870001}});
  EXPECT_EQ(r.status, 403);

  EXPECT_EQ(
      Said(Post("/api/password", {{"old", "wrong-password"}, {"new", "new-password-1"}}, &admin)),
      "403 原密码不正确");
  EXPECT_EQ(Said(Post("/api/password", {{"old", admin_password_}, {"new", "short"}}, &admin)),
            "400 新密码至少8个字符");
  r = Post("/api/password", {{"old", admin_password_}, {"new", "new-password-1"}}, &admin);
  ASSERT_EQ(r.status, 200) << r.body.dump();
  EXPECT_FALSE(r.body["must_change"].get<bool>());

  r = Send("GET", "/api/menu", "", &admin);
  ASSERT_EQ(r.status, 200) << r.body.dump();
  EXPECT_EQ(r.body["groups"][0]["entries"][0]["progID"], 870001);

  // The one-time password is gone; a second start creates no second administrator.
  Browser again;
  EXPECT_EQ(SignIn("admin", admin_password_, again).status, 401);
  EXPECT_EQ(SignIn("admin", "new-password-1", again).status, 200);
  WebApp second({.database = url(), .hash_iterations = kFastHash});
  std::string none;
  ASSERT_TRUE(second.Start(none).ok());
  EXPECT_EQ(none, "");
  EXPECT_EQ(Scalar("select count(*) from xt_user"), "1");
}

TEST_P(WebServerTest, SignInRefusalsAndTheWorkingDate) {
  Browser b;
  Reply r = SignIn("admin", "not-the-password", b);
  EXPECT_EQ(Said(r), "401 用户名或密码错误");
  EXPECT_EQ(r.set_cookie, "");
  // An unknown name gets the same answer as a wrong password.
  EXPECT_EQ(Said(SignIn("nobody", "not-the-password", b)), "401 用户名或密码错误");

  UserStore users(db(), kFastHash);
  ASSERT_TRUE(users.Add("李四", "clerk-password").ok());
  EXPECT_EQ(Said(SignIn("李四", "clerk-password", b, "2012-13-40")),
            "400 登录日期不是有效日期：2012-13-40");
  r = SignIn("李四", "clerk-password", b, "2012-3-5");
  ASSERT_EQ(r.status, 200) << r.body.dump();
  EXPECT_EQ(r.body["login_date"], "2012-03-05");
  EXPECT_EQ(r.body["user"], "李四");
  EXPECT_FALSE(r.body["must_change"].get<bool>());

  // Disabling ends the running session at its next request, and refuses a new sign-in.
  ASSERT_TRUE(users.SetDisabled("李四", /*disabled=*/true).ok());
  EXPECT_EQ(Said(Send("GET", "/api/session", "", &b)), "401 登录已失效，请重新登录");
  EXPECT_EQ(Said(SignIn("李四", "clerk-password", b)), "403 该用户已停用");

  EXPECT_EQ(Said(Post("/api/signin", {{"user", "李四"}}, nullptr)),
            "400 a sign-in names \"user\" and \"password\"");
}

TEST_P(WebServerTest, SignInIsThrottledByNameAndByAddress) {
  UserStore users(db(), kFastHash);
  for (const char* name : {"甲", "乙", "丙", "丁", "戊"})
    ASSERT_TRUE(users.Add(name, "clerk-password").ok());
  Browser b;
  for (int i = 0; i < 5; ++i) ASSERT_EQ(SignIn("甲", "wrong-password", b).status, 401);
  // Five failures lock the name, even for the right password; another name still signs in.
  Reply r = SignIn("甲", "clerk-password", b);
  EXPECT_EQ(Said(r), "429 登录尝试过多，请稍后再试");
  EXPECT_EQ(SignIn("乙", "clerk-password", b).status, 200);
  // Twenty failures from one address lock it for every name.
  for (const char* name : {"乙", "丙", "丁"}) {
    for (int i = 0; i < 5; ++i) ASSERT_EQ(SignIn(name, "wrong-password", b).status, 401);
  }
  EXPECT_EQ(Said(SignIn("戊", "clerk-password", b)), "429 登录尝试过多，请稍后再试");
  // The lock (one second in these tests) runs out; one more failure locks again at once.
  std::this_thread::sleep_for(std::chrono::milliseconds(1100));
  EXPECT_EQ(SignIn("戊", "clerk-password", b).status, 200);
  EXPECT_EQ(SignIn("甲", "wrong-password", b).status, 401);
  EXPECT_EQ(SignIn("甲", "clerk-password", b).status, 429);
}

TEST_P(WebServerTest, APersonKeepsAtMostEightSessions) {
  Browser first = Clerk("甲");
  Browser second;
  ASSERT_EQ(SignIn("甲", "clerk-password", second).status, 200);
  ASSERT_EQ(Send("GET", "/api/session", "", &first).status, 200);
  std::vector<Browser> later(7);
  for (Browser& b : later) ASSERT_EQ(SignIn("甲", "clerk-password", b).status, 200);
  EXPECT_EQ(server_->app().SessionCount(), 8u);
  // The least recently used session was closed; the others work on.
  EXPECT_EQ(Send("GET", "/api/session", "", &second).status, 401);
  EXPECT_EQ(Send("GET", "/api/session", "", &first).status, 200);
  for (const Browser& b : later) EXPECT_EQ(Send("GET", "/api/session", "", &b).status, 200);
}

TEST_P(WebServerTest, BadRequestsGetAClear4xxAndChangeNothing) {
  Browser clerk = Clerk("王五");
  const int screen = Open(clerk, 870001);
  ASSERT_GT(screen, 0);
  // A building typed in but not saved: no refused request below may save it.
  ASSERT_EQ(Protocol(clerk, {{"op", "call"}, {"screen", screen}, {"method", "FileNew"}}).status,
            200);
  for (const auto& [index, text] : {std::pair{0, "B01"}, std::pair{1, "一号楼"}}) {
    ASSERT_EQ(Protocol(clerk, {{"op", "gesture"},
                               {"screen", screen},
                               {"control", "kvTxt"},
                               {"index", index},
                               {"gesture", "type"},
                               {"text", text}})
                  .status,
              200);
  }
  const json save = {{"op", "call"}, {"screen", screen}, {"method", "FileSave"}};
  Browser no_session;
  Browser wrong_token = clerk;
  wrong_token.csrf = std::string(64, '0');
  Browser stale = clerk;
  stale.cookie = "mrvk_session=" + std::string(64, 'a');
  // 600 KB of nested arrays: walking them would overflow a thread's stack.
  const std::string deep = R"({"op":"call","screen":)" + std::to_string(screen) +
                           R"(,"method":"FileSave","args":)" + std::string(300000, '[') +
                           std::string(300000, ']') + "}";
  // Each refusal with its status and text; a text left open ("400 ") is the parser's own.
  const std::pair<Reply, std::string> cases[] = {
      {Post("/api/protocol", save, &no_session), "401 未登录或登录已过期，请重新登录"},
      {Protocol(stale, save), "401 未登录或登录已过期，请重新登录"},
      {Send("POST", "/api/protocol", save.dump(), &clerk, /*with_token=*/false),
       "403 the request token (X-CSRF-Token) is missing or wrong"},
      {Protocol(wrong_token, save), "403 the request token (X-CSRF-Token) is missing or wrong"},
      {Send("POST", "/api/protocol", save.dump(), &clerk, /*with_token=*/true, "text/plain"),
       "415 requests are JSON (Content-Type: application/json)"},
      {Send("POST", "/api/protocol", "{\"op\":\"call\",", &clerk), "400 "},
      {Send("POST", "/api/protocol", "[1,2]", &clerk), "400 a request is a JSON object"},
      {Send("POST", "/api/protocol", deep, &clerk),
       "400 the request nests arrays and objects deeper than 64 levels"},
      {Protocol(clerk, {{"screen", screen}}), "400 missing field \"op\""},
      {Protocol(clerk, {{"op", "explode"}}), "400 unknown op \"explode\""},
      {Protocol(clerk, {{"op", "sql"}, {"query", "delete from fwly"}}), "403 "},
      {Protocol(clerk, {{"op", "session"}, {"database", "sqlite://"}}), "403 "},
      {Protocol(clerk, {{"op", "call"}, {"screen", 77}, {"method", "FileSave"}}),
       "404 no screen 77 is open in this session"},
      {Protocol(clerk, {{"op", "state"}, {"screen", "1"}}), "400 \"state\" names a screen"},
      {Protocol(clerk, {{"op", "open"}, {"progID", 999}}), "404 no menu entry 999"},
      {Protocol(clerk, {{"op", "open"}, {"progID", 870001}, {"class", "zfHd_2"}}),
       "400 progID 870001 is served by PDMLy, not zfHd_2"},
      {Post("/api/nothing", json::object(), &clerk), "404 no such API: /api/nothing"},
      {Send("GET", "/api/protocol", "", &clerk), "405 use POST"},
  };
  for (const auto& [reply, said] : cases) {
    EXPECT_EQ(reply.body.value("ok", true), false) << said;
    EXPECT_NE(Error(reply), "<none>") << said;
    EXPECT_EQ(said.back() == ' ' ? Said(reply).substr(0, said.size()) : Said(reply), said);
  }
  // A request from another site's page is refused even with the right cookie and token.
  httplib::Headers foreign = {
      {"Cookie", clerk.cookie}, {"X-CSRF-Token", clerk.csrf}, {"Origin", "http://evil.example"}};
  auto r = client_->Post("/api/protocol", foreign, save.dump(), "application/json");
  ASSERT_TRUE(r);
  EXPECT_EQ(r->status, 403);
  EXPECT_NE(r->body.find("another origin"), std::string::npos) << r->body;

  EXPECT_EQ(Scalar("select count(*) from fwly"), "0");
  // The screen is still in its edit: the one good request saves it.
  Reply saved = Protocol(clerk, save);
  ASSERT_EQ(saved.status, 200) << saved.body.dump();
  EXPECT_EQ(saved.body["result"], true);
  EXPECT_EQ(Scalar("select 楼宇名称 from fwly where 楼宇编号='B01'"), "一号楼");
}

TEST_P(WebServerTest, AnotherPersonsScreenIsOutOfReach) {
  Browser a = Clerk("甲");
  Browser b = Clerk("乙");
  const int screen = Open(a, 870001);
  for (const json& req : {json{{"op", "state"}, {"screen", screen}},
                          json{{"op", "call"}, {"screen", screen}, {"method", "FileNew"}},
                          json{{"op", "close"}, {"screen", screen}},
                          json{{"op", "gesture"},
                               {"screen", screen},
                               {"control", "TV"},
                               {"gesture", "select"},
                               {"key", "ROOT"}}}) {
    Reply r = Protocol(b, req);
    EXPECT_EQ(r.status, 404) << req.dump();
    EXPECT_EQ(Error(r), "no screen " + std::to_string(screen) + " is open in this session");
  }
  // a's screen is untouched; only the bound fields (estate, type) show the picker button.
  Reply r = Protocol(a, {{"op", "state"}, {"screen", screen}});
  ASSERT_EQ(r.status, 200) << r.body.dump();
  EXPECT_EQ(r.body["result"]["class"], "PDMLy");
  std::vector<int> with_button;
  for (const json& c : r.body["result"]["controls"]) {
    if (c.value("type", "") == "kvTxt_S" && c.value("button", false))
      with_button.push_back(c.value("index", -1));
  }
  EXPECT_EQ(with_button, (std::vector<int>{2, 3}));
  // Signing out ends the session: its screen and cookie are gone.
  ASSERT_EQ(Post("/api/signout", json::object(), &a).status, 200);
  r = Protocol(a, {{"op", "state"}, {"screen", screen}});
  EXPECT_EQ(r.status, 401);
}

TEST_P(WebServerTest, AQuestionWaitingForOnePersonBlocksNoOneElse) {
  Exec("insert into fwly (楼宇ID,楼宇编号,楼宇名称) values (1,'B01','一号楼')");
  Browser a = Clerk("甲");
  Browser b = Clerk("乙");
  const int screen = Open(a, 870001);
  Reply r = Protocol(a, {{"op", "gesture"},
                         {"screen", screen},
                         {"control", "TV"},
                         {"gesture", "select"},
                         {"key", "KB01"}});
  ASSERT_EQ(r.status, 200) << r.body.dump();
  r = Protocol(a, {{"op", "call"}, {"screen", screen}, {"method", "FileDelete"}});
  ASSERT_EQ(r.status, 200) << r.body.dump();
  ASSERT_TRUE(r.body.contains("pending")) << r.body.dump();
  EXPECT_EQ(r.body["pending"]["prompt"], "是否删除当前记录:B01 一号楼");
  EXPECT_EQ(r.body["pending"]["flags"], 52);

  // While a's question waits, b opens and works at once.
  const auto start = std::chrono::steady_clock::now();
  const int b_screen = Open(b, 870001);
  r = Protocol(b, {{"op", "state"}, {"screen", b_screen}});
  EXPECT_EQ(r.status, 200) << r.body.dump();
  EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(5));
  // a's own requests wait for the answer.
  r = Protocol(a, {{"op", "state"}, {"screen", screen}});
  EXPECT_EQ(r.status, 422);
  EXPECT_NE(Error(r).find("a msgbox is waiting for an answer"), std::string::npos) << Error(r);

  r = Protocol(a, {{"op", "answer"}, {"value", 7}});
  ASSERT_EQ(r.status, 200) << r.body.dump();
  EXPECT_EQ(r.body["result"], false);
  EXPECT_EQ(Scalar("select count(*) from fwly"), "1");

  // A close held up by a question: the screen is gone once the answer ends the close.
  const int asking = Open(a, kAskingProgID);
  r = Protocol(a, {{"op", "close"}, {"screen", asking}});
  ASSERT_TRUE(r.body.contains("pending")) << r.body.dump();
  ASSERT_EQ(Protocol(a, {{"op", "answer"}, {"value", "yes"}}).status, 422);  // refused
  ASSERT_EQ(Protocol(a, {{"op", "answer"}, {"value", 1}}).status, 200);
  EXPECT_EQ(Said(Protocol(a, {{"op", "state"}, {"screen", asking}})),
            "404 no screen " + std::to_string(asking) + " is open in this session");
}

TEST_P(WebServerTest, ServesTheClientWithStrictHeaders) {
  auto r = client_->Get("/");
  ASSERT_TRUE(r);
  EXPECT_NE(r->body.find("<script src=\"app.js\""), std::string::npos);
  EXPECT_NE(r->get_header_value("Content-Security-Policy").find("script-src 'self'"),
            std::string::npos);
  EXPECT_EQ(r->get_header_value("X-Frame-Options"), "DENY");
  r = client_->Get("/app.js");
  ASSERT_TRUE(r);
  EXPECT_NE(r->get_header_value("Content-Type").find("javascript"), std::string::npos);
  r = client_->Get("/api/session");
  ASSERT_TRUE(r);
  EXPECT_EQ(r->status, 401);
  EXPECT_EQ(r->get_header_value("Cache-Control"), "no-store");
}

TEST_P(WebServerTest, BeyondTheLoopbackItServesTlsWithASecureCookie) {
  UserStore users(db(), kFastHash);
  ASSERT_TRUE(users.Add("甲", "clerk-password").ok());
  ServeOptions options;
  options.app.database = url();
  options.app.app_path = (app_path_ / "office").string();
  options.app.hash_iterations = kFastHash;
  options.bind = "0.0.0.0";
  options.port = 0;
  options.static_dir = MRVK_WEB_STATIC_DIR;
  options.threads = 2;
  WebServer server(options);
  std::string none;
  ASSERT_TRUE(server.Start(none).ok());
  std::thread run([&server] { server.Run(); });
  // Its own certificate, made at the first start; the key is the owner's alone.
  const auto key = app_path_ / "office" / "tls" / "server.key";
  ASSERT_TRUE(std::filesystem::is_regular_file(app_path_ / "office" / "tls" / "server.crt"));
  EXPECT_EQ(std::filesystem::status(key).permissions() & std::filesystem::perms::all,
            std::filesystem::perms::owner_read | std::filesystem::perms::owner_write);

  httplib::SSLClient tls("127.0.0.1", server.port());
  tls.enable_server_certificate_verification(false);
  auto r = tls.Post("/api/signin", json({{"user", "甲"}, {"password", "clerk-password"}}).dump(),
                    "application/json");
  ASSERT_TRUE(r);
  EXPECT_EQ(r->status, 200);
  EXPECT_NE(r->get_header_value("Set-Cookie").find("; Secure"), std::string::npos);
  httplib::Client plain("127.0.0.1", server.port());
  plain.set_read_timeout(5, 0);
  auto refused = plain.Get("/api/session");
  EXPECT_TRUE(!refused || refused->status != 401) << "plain HTTP was answered";
  server.Stop();
  run.join();
}

TEST_P(WebServerTest, FilesReachOnlyTheSessionWhoseHostMadeThem) {
  Exec("insert into fwyz (业主ID,业主编号,业主名称,性别,类型) values (1,'Y01','张三','男',0)");
  Exec("insert into fwyz (业主ID,业主编号,业主名称,性别,类型) values (2,'K01','李四','女',1)");
  Browser a = Clerk("甲");
  Browser b = Clerk("乙");
  const int owners = Open(a, kOwnersProgID);
  ASSERT_GT(owners, 0);
  const json export_csv = {
      {"op", "export"}, {"screen", owners}, {"control", "Vs"}, {"format", "csv"}};

  // The export names a URL of the session, never the server's path.
  Reply r = Protocol(a, export_csv);
  ASSERT_EQ(r.status, 200) << r.body.dump();
  const json& file = r.body["result"];
  EXPECT_FALSE(file.contains("path")) << file.dump();
  const std::string url = file.value("url", "");
  ASSERT_EQ(url.rfind("/api/file/", 0), 0u) << file.dump();

  httplib::Headers cookie_a = {{"Cookie", a.cookie}};
  auto got = client_->Get(url.c_str(), cookie_a);
  ASSERT_TRUE(got);
  EXPECT_EQ(got->get_header_value("Content-Type"), "text/csv; charset=utf-8");
  EXPECT_EQ(got->get_header_value("Content-Disposition").rfind("attachment; filename*=UTF-8''", 0),
            0u);
  EXPECT_NE(got->body.find("Y01,张三,男"), std::string::npos) << got->body;

  // Another session, no session, and IDs this session was never given.
  struct Case {
    const char* what;
    std::string path;
    httplib::Headers headers;
    int status;
  };
  const std::vector<Case> cases = {
      {"another session", url, {{"Cookie", b.cookie}}, 404},
      {"no session", url, {}, 401},
      {"unknown ID", "/api/file/0123456789abcdef0123456789abcdef", cookie_a, 404},
      {"a path for an ID", "/api/file/..%2F..%2Fetc%2Fpasswd", cookie_a, 404},
      {"empty ID", "/api/file/", cookie_a, 404},
  };
  for (const Case& c : cases) {
    auto res = client_->Get(c.path.c_str(), c.headers);
    ASSERT_TRUE(res) << c.what;
    EXPECT_EQ(res->status, c.status) << c.what << ": " << res->body;
    EXPECT_EQ(res->body.find("Y01"), std::string::npos) << c.what;
  }
  // Nor can another session export a screen of this one.
  EXPECT_EQ(Said(Protocol(b, export_csv)),
            "404 no screen " + std::to_string(owners) + " is open in this session");
  EXPECT_EQ(Said(Protocol(
                a, {{"op", "export"}, {"screen", owners}, {"control", "Vs"}, {"format", "pdf"}})),
            "422 unknown export format \"pdf\" (xlsx or csv)");

  // XLSX comes as a spreadsheet download.
  r = Protocol(a, {{"op", "export"}, {"screen", owners}, {"control", "Vs"}, {"format", "xlsx"}});
  ASSERT_EQ(r.status, 200) << r.body.dump();
  got = client_->Get(r.body["result"].value("url", "").c_str(), cookie_a);
  ASSERT_TRUE(got);
  EXPECT_EQ(got->get_header_value("Content-Type"),
            "application/vnd.openxmlformats-officedocument.spreadsheetml.sheet");
  EXPECT_EQ(got->body.substr(0, 2), "PK");

  // A print's page comes as a document URL; it may show in the client's own frame, once.
  const int printing = Open(a, kPrintingProgID);
  r = Protocol(a, {{"op", "call"}, {"screen", printing}, {"method", "PrintPreview"}});
  ASSERT_EQ(r.status, 200) << r.body.dump();
  ASSERT_EQ(r.body["documents"].size(), 1u) << r.body.dump();
  const json& doc = r.body["documents"][0];
  EXPECT_FALSE(doc.contains("path")) << doc.dump();
  EXPECT_EQ(doc["title"], "客户清单");
  got = client_->Get(doc.value("url", "").c_str(), cookie_a);
  ASSERT_TRUE(got);
  EXPECT_EQ(got->get_header_value("Content-Type"), "text/html; charset=utf-8");
  EXPECT_NE(got->body.find("李四"), std::string::npos);
  EXPECT_EQ(got->get_header_value_count("X-Frame-Options"), 1u);
  EXPECT_EQ(got->get_header_value("X-Frame-Options"), "SAMEORIGIN");
  EXPECT_EQ(got->get_header_value_count("Content-Security-Policy"), 1u);
  EXPECT_NE(got->get_header_value("Content-Security-Policy").find("frame-ancestors 'self'"),
            std::string::npos);
  EXPECT_EQ(client_->Get(doc.value("url", "").c_str(), {{"Cookie", b.cookie}})->status, 404);

  // Signing out forgets the session's files.
  ASSERT_EQ(Post("/api/signout", json::object(), &a).status, 200);
  EXPECT_EQ(client_->Get(url.c_str(), cookie_a)->status, 401);
}

TEST_P(WebServerTest, APrintedDocumentShowsOnlyItsOwnClerksData) {
  // A name that would reach outside the people's folders as a path.
  const std::string other = "../乙";
  Browser a = Clerk("甲");
  Browser b = Clerk(other);
  const int a_screen = Open(a, kDocumentProgID);
  const int b_screen = Open(b, kDocumentProgID);
  const json preview = {{"op", "call"}, {"method", "PrintPreview"}};
  json req = preview;
  req["screen"] = a_screen;
  ASSERT_TRUE(Protocol(a, req).body.contains("pending"));
  // While a's question waits, b prints a document of the same kind.
  req["screen"] = b_screen;
  ASSERT_TRUE(Protocol(b, req).body.contains("pending"));
  Reply r = Protocol(b, {{"op", "answer"}, {"value", 1}});
  ASSERT_EQ(r.status, 200) << r.body.dump();
  auto page = client_->Get(r.body["documents"][0].value("url", "").c_str(), {{"Cookie", b.cookie}});
  ASSERT_TRUE(page);
  EXPECT_NE(page->body.find("../乙"), std::string::npos);

  r = Protocol(a, {{"op", "answer"}, {"value", 1}});
  ASSERT_EQ(r.status, 200) << r.body.dump();
  ASSERT_EQ(r.body["documents"].size(), 1u) << r.body.dump();
  page = client_->Get(r.body["documents"][0].value("url", "").c_str(), {{"Cookie", a.cookie}});
  ASSERT_TRUE(page);
  EXPECT_NE(page->body.find("甲"), std::string::npos) << page->body;
  EXPECT_EQ(page->body.find("乙"), std::string::npos) << page->body;
  // b's files stay below the people's folders.
  EXPECT_TRUE(std::filesystem::is_regular_file(app_path_ / "users" / "%2E%2E%2F乙" / "selfPrint" /
                                               (std::to_string(kDocumentProgID) + ".txt")));
}

TEST_P(WebServerTest, OldExportsAndPrintFilesAreSweptAtTheStart) {
  namespace fs = std::filesystem;
  const fs::path mine = app_path_ / "users" / "甲";
  const auto day_ago = fs::file_time_type::clock::now() - std::chrono::hours(25);
  auto make = [](const fs::path& file, bool old, fs::file_time_type when) {
    fs::create_directories(file.parent_path());
    std::ofstream(file) << "x";
    if (old) fs::last_write_time(file, when);
    return file;
  };
  const std::vector<fs::path> gone = {
      make(mine / "selfExport" / "PDMYz-Vs-1.xlsx", true, day_ago),
      make(mine / "selfPrint" / "870201.txt", true, day_ago),
      make(mine / "selfPrint" / "preview" / "870201-1.html", true, day_ago)};
  const std::vector<fs::path> kept = {
      make(mine / "selfExport" / "PDMYz-Vs-2.xlsx", false, day_ago),
      make(app_path_ / "selfPrint" / "870201.layout.html", true, day_ago),
      make(mine / "selfbb" / "PDMYz.txt", true, day_ago)};
  WebConfig config;
  config.database = url();
  config.app_path = app_path_.string();
  config.hash_iterations = kFastHash;
  WebApp second(config);
  std::string none;
  ASSERT_TRUE(second.Start(none).ok());
  for (const fs::path& f : gone) EXPECT_FALSE(fs::exists(f)) << f;
  for (const fs::path& f : kept) EXPECT_TRUE(fs::exists(f)) << f;
}

MRVK_ON_BOTH_ENGINES(WebServerTest);

}  // namespace
}  // namespace kvhost::web
