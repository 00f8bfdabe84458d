// Quick timings of the two engines on the same member, run on demand:
//   build/tests/test_mariadb --gtest_also_run_disabled_tests --gtest_filter='*Timing*'
#include <chrono>
#include <cstdio>

#include "host/NativeHost.h"
#include "porder/clsDataPOrder.h"
#include "tests/mariadb/MariaDbTestSupport.h"

namespace tovrand::test {
namespace {

class EngineTiming : public DatabaseTest {
 protected:
  // Seconds `count` clsDataPOrder.QueryItem calls of one row take on the engine.
  double queryItems(const std::string& engine, int count) {
    auto h = std::make_shared<NativeHost>(ConnectionSettings::parse(dsn("engine=" + engine)), nullptr);
    clsDataPOrder porder(h);
    auto once = [&] {
      clsEntPOrder order;
      order.F_ProdNo(2026110001.0);
      EXPECT_EQ(porder.QueryItem(order), 1);
    };
    once();  // the session opened, the shapes learned
    auto start = std::chrono::steady_clock::now();
    for (int i = 0; i < count; ++i) once();
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
  }
  // Seconds `count` reads of `rows` rows take on the engine, every field read.
  double reads(const std::string& engine, int count, int rows) {
    auto h = std::make_shared<NativeHost>(ConnectionSettings::parse(dsn("engine=" + engine)), nullptr);
    auto holder = h->newDbConnection();
    holder->OpenConnection();
    auto start = std::chrono::steady_clock::now();
    for (int i = 0; i < count; ++i) {
      auto rs = h->newRecordset();
      rs->Open("select * from t_timing where F_ID <= " + std::to_string(rows), holder->Connection(), -1, -1,
               -1);
      while (!rs->EOF_()) {
        rs->Fields("F_ID").value();
        rs->Fields("F_Name").value();
        rs->Fields("F_Qty").value();
        rs->Fields("F_Date").value();
        rs->MoveNext();
      }
      rs->Close();
    }
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
  }
};

TEST_F(EngineTiming, DISABLED_QueryItemAndReadsOnBothEngines) {
  exec(
      "insert into t_porder (F_ProdNo, F_CustNo, F_ProdQty) values (2026110001, 'C001', 10);"
      "create table t_timing (F_ID int primary key, F_Name varchar(40), F_Qty double, F_Date datetime);"
      "insert into t_timing select seq, concat('row ', seq), seq / 3, '2026-11-01' + interval seq hour "
      "from seq_1_to_100");
  for (const char* engine : {"odbc", "mariadb", "odbc", "mariadb"}) {
    std::printf("%-8s 1000 QueryItem %.3f s, 1000 reads of 1 row %.3f s, 200 reads of 100 rows %.3f s\n",
                engine, queryItems(engine, 1000), reads(engine, 1000, 1), reads(engine, 200, 100));
  }
}

}  // namespace
}  // namespace tovrand::test
