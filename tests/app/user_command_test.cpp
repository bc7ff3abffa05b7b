// `mrvk user`: adding people, setting passwords, disabling, on both engines.
#include <gtest/gtest.h>

#include <sstream>

#include "app/serve_command.h"
#include "kvhost/web/user_store.h"
#include "support/engines.h"

namespace {

class UserCommandTest : public kvtest::EngineTest {
 protected:
  int Run(std::vector<std::string> args, const std::string& input = "") {
    args.push_back("--database");
    args.push_back(url());
    std::istringstream in(input);
    out_.str("");
    err_.str("");
    return mrvk_app::RunUser(args, in, out_, err_);
  }
  kvhost::web::UserStore::Check SignIn(const std::string& name, const std::string& password) {
    kvhost::web::UserStore users(db());
    kvhost::web::UserRecord record;
    std::string error;
    auto check = users.SignIn(name, password, record, error);
    EXPECT_EQ(error, "");
    return check;
  }
  std::ostringstream out_, err_;
};

using Check = kvhost::web::UserStore::Check;

TEST_P(UserCommandTest, AddPasswdDisableEnableAndList) {
  ASSERT_EQ(Run({"add", "张三", "--password-stdin"}, "first-password\n"), 0) << err_.str();
  EXPECT_EQ(out_.str(), "user \"张三\" added\n");
  EXPECT_EQ(SignIn("张三", "first-password"), Check::Ok);

  EXPECT_EQ(Run({"add", "张三", "--password-stdin"}, "other-password\n"), 1);
  EXPECT_EQ(err_.str(), "mrvk user: the user \"张三\" exists already\n");
  EXPECT_EQ(Run({"add", "李四", "--password-stdin"}, "short\n"), 1);
  EXPECT_EQ(err_.str(), "mrvk user: a password has at least 8 characters\n");

  // Without --password-stdin a one-time password is made, shown once, and must be changed.
  ASSERT_EQ(Run({"passwd", "张三"}), 0) << err_.str();
  const std::string shown = out_.str();
  const std::string marker = "one-time password: ";
  const size_t at = shown.find(marker);
  ASSERT_NE(at, std::string::npos) << shown;
  const std::string password = shown.substr(at + marker.size(), 16);
  EXPECT_EQ(SignIn("张三", "first-password"), Check::Refused);
  EXPECT_EQ(SignIn("张三", password), Check::Ok);
  EXPECT_EQ(Scalar("select mustchange from xt_user where username='张三'"), "1");
  EXPECT_EQ(Scalar("select pwhash from xt_user where username='张三'").rfind("pbkdf2-sha256$", 0),
            0u);

  ASSERT_EQ(Run({"disable", "张三"}), 0);
  EXPECT_EQ(SignIn("张三", password), Check::Disabled);
  ASSERT_EQ(Run({"list"}), 0);
  EXPECT_EQ(out_.str(), "张三\tdisabled\tmust change password\n");
  ASSERT_EQ(Run({"enable", "张三"}), 0);
  EXPECT_EQ(SignIn("张三", password), Check::Ok);

  EXPECT_EQ(Run({"disable", "nobody"}), 1);
  EXPECT_EQ(err_.str(), "mrvk user: no user \"nobody\"\n");
}

TEST_P(UserCommandTest, BadUsageChangesNothing) {
  EXPECT_EQ(Run({}), 2);
  EXPECT_EQ(Run({"add"}), 2);
  EXPECT_EQ(Run({"remove", "张三"}), 2);
  EXPECT_EQ(Run({"disable", "张三", "--password-stdin"}), 2);
  EXPECT_EQ(err_.str(), "mrvk user: --password-stdin goes with add and passwd\n");
  EXPECT_EQ(Run({"add", " 张三", "--password-stdin"}, "first-password\n"), 1);
  EXPECT_EQ(err_.str(), "mrvk user: a user name has no blanks around it\n");
  EXPECT_EQ(Scalar("select count(*) from xt_user"), "0");
}

MRVK_ON_BOTH_ENGINES(UserCommandTest);

}  // namespace
