// The order in which a program finds its connection setting: its own, TOVRAND_DSN, the configuration
// file (README, "Settings").
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <optional>
#include <string>

#include <gtest/gtest.h>

#include "tests/support/ScopedEnv.h"
#include "tooling/Dsn.h"
#include "vb/VbError.h"

namespace tovrand::tooling {
namespace {

using test::ScopedEnv;

TEST(DsnResolution, TheProgramsOwnSettingWinsOverTheEnvironment) {
  ScopedEnv env("TOVRAND_DSN", "mysql://env:p@envhost/envdb");
  EXPECT_EQ(resolveDsn("mysql://arg:p@arghost/argdb"), "mysql://arg:p@arghost/argdb");
  EXPECT_EQ(resolveDsn(), "mysql://env:p@envhost/envdb");
  EXPECT_EQ(resolveDsn(""), "mysql://env:p@envhost/envdb");
}

TEST(DsnResolution, WithoutTovrandDsnTheConfigurationFileIsRead) {
  ScopedEnv env("TOVRAND_DSN", nullptr);
  const std::string path = ::testing::TempDir() + "/tovrand-dsn-resolution-test.conf";
  {
    std::ofstream out(path);
    out << "# the production database\n\nlog=verbose\ndsn = mysql://cfg:p@cfghost/cfgdb\n";
  }
  ScopedEnv config("TOVRAND_CONFIG", path.c_str());
  EXPECT_EQ(resolveDsn(), "mysql://cfg:p@cfghost/cfgdb");
  {
    std::ofstream out(path);
    out << "; comment\nmysql://first:p@firsthost/db\n";
  }
  EXPECT_EQ(resolveDsn(), "mysql://first:p@firsthost/db");
  std::remove(path.c_str());
}

TEST(DsnResolution, TheDefaultConfigurationFileLivesUnderXdgConfigHome) {
  ScopedEnv env("TOVRAND_DSN", nullptr);
  ScopedEnv config("TOVRAND_CONFIG", nullptr);
  const std::string home = ::testing::TempDir() + "/tovrand-dsn-resolution-xdg";
  ScopedEnv xdg("XDG_CONFIG_HOME", home.c_str());
  std::remove((home + "/tovrand/tovrand.conf").c_str());
  // No file where the setting would be: no setting at all, which asks for a private database.
  EXPECT_EQ(resolveDsn(), std::nullopt);
  ASSERT_EQ(std::system(("mkdir -p '" + home + "/tovrand'").c_str()), 0);
  {
    std::ofstream out(home + "/tovrand/tovrand.conf");
    out << "dsn=mysql://xdg:p@xdghost/db\n";
  }
  EXPECT_EQ(resolveDsn(), "mysql://xdg:p@xdghost/db");
  std::remove((home + "/tovrand/tovrand.conf").c_str());
}

TEST(DsnResolution, AConfigurationFileNamedOnPurposeMustBeThere) {
  ScopedEnv env("TOVRAND_DSN", nullptr);
  ScopedEnv config("TOVRAND_CONFIG", "/nonexistent/tovrand.conf");
  try {
    resolveDsn();
    ADD_FAILURE() << "resolved a setting from a file that does not exist";
  } catch (const VbError& e) {
    EXPECT_EQ(e.number(), -2147467259);
    EXPECT_NE(e.description().find("TOVRAND_DSN"), std::string::npos) << e.description();
    EXPECT_NE(e.description().find("/nonexistent/tovrand.conf"), std::string::npos) << e.description();
  }
}

}  // namespace
}  // namespace tovrand::tooling
