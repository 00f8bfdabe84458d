#include "bench/DataSet.h"

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <sstream>

#include "vb/Value.h"

namespace tovrand::bench {

namespace {

std::string readFile(const std::string& path) {
  std::ifstream in(path, std::ios::binary);
  if (!in) fatal("cannot read " + path);
  std::ostringstream out;
  out << in.rdbuf();
  return out.str();
}

std::string n(long v) {
  return std::to_string(v);
}

// Order i's columns, computed from the sequence number `s.seq` of a sequence table.
struct OrderSql {
  std::string from;  // (SELECT seq, m, pset FROM seq_1_to_N) s
  std::string prod, product, customer, salesOrder, line;
};

OrderSql orderSql(long rows, long products, long customers) {
  OrderSql o;
  o.from =
      "(SELECT seq, DATE '2026-11-01' - INTERVAL ((seq - 1) MOD 24) MONTH AS m, "
      "((seq - 1) MOD 24 = 0 AND (seq - 1) DIV 24 < 20) AS pset FROM seq_1_to_" +
      n(rows) + ") s";
  o.prod = "((YEAR(s.m) * 100 + MONTH(s.m)) * 100000 + (s.seq - 1) DIV 24 + 1)";
  o.product = "CONCAT('FG-', LPAD((s.seq - 1) MOD " + n(products) + " + 1, 6, '0'))";
  o.customer = "CONCAT('C', LPAD((s.seq - 1) MOD " + n(customers) + ", 5, '0'))";
  o.salesOrder = "(600000 + (s.seq - 1) DIV 4 + 1)";
  o.line = "((s.seq - 1) MOD 4 + 1)";
  return o;
}

std::string materialSql(const std::string& product, const std::string& part, long materials) {
  return "CONCAT('M-', LPAD((((" + product + ") - 1) * 5 + (" + part + ") - 1) MOD " + n(materials) +
         " + 1, 7, '0'))";
}

void fillOrders(const DataSet& d, const OrderSql& o) {
  d.exec(
      "INSERT INTO t_porder (F_ProdNo, F_OrderMode, F_OrderNo, F_OrderOutNo, F_ItemNo, F_CustNo, F_COrderNo, "
      "F_InQty, F_InDate, F_OutQty, F_OutDate, F_OutBkQty, F_BalQty, F_OrdQty, F_DeliverDate, F_ProdQty, "
      "F_ProdDate, F_Status, F_SalerID, F_WoNo) SELECT " +
      o.prod + ", IF(s.seq MOD 10 = 0, '外发加工', '正常'), " + o.salesOrder +
      ", IF(s.seq MOD 10 = 0, 0, 700000 + s.seq), " + o.product + ", " + o.customer +
      ", CONCAT('PO-', s.seq), s.seq MOD 50, s.m + INTERVAL 3 DAY, s.seq MOD 7, s.m + INTERVAL 9 DAY, 0, "
      "40 + s.seq MOD 60, 100 + s.seq MOD 400, IF(s.pset, DATE '2027-06-15', s.m + INTERVAL 25 DAY), "
      "s.seq MOD 90, s.m + INTERVAL 12 DAY, IF(s.pset OR s.seq MOD 10 = 0, 0, 1 + s.seq MOD 2), '王伟', "
      "800000 + s.seq FROM " +
      o.from);
}

void fillReviews(const DataSet& d, const OrderSql& o) {
  d.exec(
      "INSERT INTO t_porderchk (F_ProdNo, F_OrderNo, F_ItemNo, F_CustNo, F_CorderNo, F_OrderCount, "
      "F_DeliverDate, F_CItemNo, F_BSChecker, F_Way, F_EGAdmit, F_Status) SELECT " +
      o.prod + ", " + o.salesOrder + ", " + o.product + ", " + o.customer + ", CONCAT('HM-', " +
      o.salesOrder + "), 100 + s.seq MOD 400, s.m + INTERVAL 25 DAY, CONCAT('HM-', " + o.product +
      "), '李娜', IF(s.seq MOD 3 = 0, '直接采购', '自制'), 1, 1 FROM " + o.from);
}

// Five lines per order for the first fifth of the orders and the purchasing set.
void fillLines(const DataSet& d, const OrderSql& o, long rows, long products, long materials) {
  std::string product = "(s.seq - 1) MOD " + n(products) + " + 1";
  d.exec(
      "INSERT INTO t_pmrpi (F_ProdNo, F_ItemNo, F_Dosage, F_Waste, F_SafeQty, F_RequestQty, F_LeadTime, "
      "F_Status) SELECT " +
      o.prod + ", " + materialSql(product, "j.seq", materials) +
      ", 1 + j.seq, 0.05, 5, IF(s.pset, 10 + j.seq, IF((s.seq + j.seq) MOD 2 = 0, 8, 0)), j.seq + 2, "
      "IF(s.pset, 1, (s.seq + j.seq) MOD 4) FROM " +
      o.from + " JOIN seq_1_to_5 j WHERE s.seq <= " + n(rows / 5) + " OR s.pset ORDER BY s.seq, j.seq");
}

void fillEverythingElse(const DataSet& d, const OrderSql& o, long rows, long products, long materials,
                        long customers) {
  d.exec(
      "INSERT INTO t_boutmakei (F_OrderOutNo, F_No, F_ProdNo, F_ItemNo, F_VendorNo, F_ordoutqty, F_OutDate) "
      "SELECT F_WoNo, '1', F_ProdNo, F_ItemNo, 'V001', IF(F_WoNo MOD 20 = 0, F_OrdQty, 1), F_InDate "
      "FROM t_porder WHERE F_OrderMode = '外发加工'");
  long salesOrders = (rows + 3) / 4;
  d.exec(
      "INSERT INTO t_borderh (F_OrderNo, F_OrderDate, F_CustNo, F_CorderNo, F_SalerID, F_Flags) SELECT "
      "600000 + seq, DATE '2026-10-01' + INTERVAL (seq MOD 50) DAY, CONCAT('C', LPAD(((seq - 1) * 4) MOD " +
      n(customers) + ", 5, '0')), CONCAT('HM-', 600000 + seq), '王伟', 1 FROM seq_1_to_" + n(salesOrders));
  d.exec(
      "INSERT INTO t_borderi (F_OrderNo, F_No, F_ItemNo, F_CItemNo, F_OrderQty, F_DeliverDate, F_BkQty, "
      "F_ProdNo, F_Status) SELECT " +
      o.salesOrder + ", " + o.line + ", " + o.product + ", CONCAT('HM-', " + o.product +
      "), 100 + s.seq MOD 400, s.m + INTERVAL 25 DAY, s.seq MOD 5, " + o.prod + ", 1 FROM " + o.from);
  std::string item = "IF(seq <= " + n(products) +
                     ", CONCAT('FG-', LPAD(seq, 6, '0')), CONCAT('M-', LPAD(seq - " + n(products) +
                     ", 7, '0')))";
  d.exec("INSERT INTO t_eitem (F_ItemNo, F_Type, F_ItemName, F_ItemDesc, F_Unit) SELECT " + item +
         ", IF(seq <= " + n(products) +
         ", '成品', '原料'), CONCAT('物料 ', seq), '规格 A', 'PCS' FROM seq_1_to_" + n(rows));
  d.exec("INSERT INTO t_wstockqtyh (F_ItemNo, F_SafeQty, F_NoPoStockQty) SELECT " + item +
         ", seq MOD 20, 100 + seq MOD 900 FROM seq_1_to_" + n(rows));
  d.exec("INSERT INTO t_wstockqtyi (F_ItemNo, F_WhNo, F_StockQty) SELECT " + item +
         ", 'W1', 50 + seq MOD 500 FROM seq_1_to_" + n(rows));
  d.exec(
      "INSERT INTO t_ebom (F_GoodsNo, F_PartNo, F_Dosage, F_Waste, F_LeadDay) SELECT CONCAT('FG-', "
      "LPAD((seq - 1) DIV 5 + 1, 6, '0')), " +
      materialSql("(seq - 1) DIV 5 + 1", "(seq - 1) MOD 5 + 1", materials) +
      ", 1 + (seq - 1) MOD 5, 0.05, 3 FROM seq_1_to_" + n(products * 5));
  d.exec(
      "INSERT INTO t_ebomcheck (F_GoodsNo, F_Approve, F_ApproveDate) SELECT CONCAT('FG-', LPAD(seq, 6, "
      "'0')), '张三', DATE '2026-01-05' FROM seq_1_to_" +
      n(products));
  d.exec(
      "INSERT INTO t_pmrph (F_ProdNo, F_ItemNo, F_OrderQty, F_SafeQty, F_NeedQty, F_PlanPurQty, F_Status) "
      "SELECT " +
      o.prod + ", " + o.product +
      ", 100 + s.seq MOD 400, s.seq MOD 20, 50 + s.seq MOD 100, IF(s.pset, 30, IF(s.seq MOD 3 = 0, 20, 0)), "
      "IF(s.pset, 1, s.seq MOD 4) FROM " +
      o.from);
  d.exec(
      "INSERT INTO t_wstockqtys (F_ProdNo, F_ItemNo, F_ReduceQty) SELECT F_ProdNo, F_ItemNo, 3 FROM t_pmrpi");
  d.exec(
      "INSERT INTO t_cpurh (F_PurNo, F_PurDate, F_VendorNo, F_Status) SELECT CONCAT('PO', LPAD(seq, 7, "
      "'0')), DATE '2026-10-15', 'V001', seq MOD 4 FROM seq_1_to_" +
      n((rows + 4) / 5));
  d.exec(
      "INSERT INTO t_cpuri (F_PurNo, F_ItemNo, F_ProdNo, F_PurQty, F_DeliverDate, F_Status) SELECT "
      "CONCAT('PO', LPAD((F_ID - 1) DIV 5 + 1, 7, '0')), F_ItemNo, F_ProdNo, 4, DATE '2026-12-01', F_ID MOD "
      "4 "
      "FROM t_pmrpi");
}

// Sales orders whose lines have no production number yet, for review creation.
void addReviewSalesOrders(const DataSet& d, int lines, int order) {
  d.exec("INSERT INTO t_borderh (F_OrderNo, F_OrderDate, F_CustNo, F_CorderNo, F_SalerID, F_Flags) VALUES (" +
         n(order) + ", '2026-11-20', 'C00001', 'HM-NEW-" + n(order) + "', '王伟', 0)");
  d.exec(
      "INSERT INTO t_borderi (F_OrderNo, F_No, F_ItemNo, F_CItemNo, F_OrderQty, F_DeliverDate, F_BkQty, "
      "F_ProdNo, F_Status) SELECT " +
      n(order) +
      ", seq, CONCAT('FG-', LPAD(seq, 6, '0')), CONCAT('HM-', seq), 100 + seq, "
      "'2027-01-08', 0, NULL, 1 FROM seq_1_to_" +
      n(lines));
}

// A production order reviewed and sold but not planned yet.
void addUnplannedOrder(const DataSet& d, double prodNo, const std::string& product) {
  std::string p = CStr(prodNo);
  d.exec(
      "INSERT INTO t_porder (F_ProdNo, F_OrderMode, F_OrderNo, F_ItemNo, F_CustNo, F_OrdQty, F_DeliverDate, "
      "F_Status) VALUES (" +
      p + ", '正常', 990900, '" + product + "', 'C00001', 500, '2027-02-01', 0)");
  d.exec("INSERT INTO t_porderchk (F_ProdNo, F_OrderNo, F_ItemNo, F_CustNo, F_OrderCount, F_Way) VALUES (" +
         p + ", 990900, '" + product + "', 'C00001', 500, '直接采购')");
  d.exec(
      "INSERT INTO t_borderi (F_OrderNo, F_No, F_ItemNo, F_OrderQty, F_BkQty, F_ProdNo, F_Status) VALUES "
      "(990900, '1', '" +
      product + "', 500, 10, " + p + ", 1)");
}

}  // namespace

int DataSet::products() const {
  return std::max(1, rows / 5);
}
int DataSet::materials() const {
  return std::max(5, rows - products());
}
int DataSet::customers() const {
  return std::max(1, rows / 100);
}

namespace {

// The year and month of order i: (i - 1) mod 24 months back from November 2026.
std::pair<int, int> yearMonthOf(int i) {
  int year = 2026, month = 11 - (i - 1) % 24;
  while (month < 1) {
    month += 12;
    --year;
  }
  return {year, month};
}

}  // namespace

VbDate DataSet::month(int i) const {
  auto [year, month] = yearMonthOf(i);
  return makeDate({year, month, 1, 0, 0, 0});
}

double DataSet::prodNo(int i) const {
  auto [year, month] = yearMonthOf(i);
  return (year * 100.0 + month) * 100000.0 + (i - 1) / 24 + 1;
}
std::string DataSet::prodNoText(int i) const {
  return CStr(prodNo(i));
}
std::string DataSet::productCode(int p) const {
  char buffer[32];
  std::snprintf(buffer, sizeof buffer, "FG-%06d", p);
  return buffer;
}
std::string DataSet::product(int i) const {
  return productCode((i - 1) % products() + 1);
}
std::string DataSet::material(int k) const {
  char buffer[32];
  std::snprintf(buffer, sizeof buffer, "M-%07d", k);
  return buffer;
}
std::string DataSet::customer(int i) const {
  char buffer[32];
  std::snprintf(buffer, sizeof buffer, "C%05d", (i - 1) % customers());
  return buffer;
}
double DataSet::salesOrder(int i) const {
  return 600000.0 + (i - 1) / 4 + 1;
}
int DataSet::middleOrder(int v) const {
  return 24 * (rows / 48) + 1 + 24 * v;
}
int DataSet::plannedOrder(int v) const {
  return 2 + v;
}
double DataSet::unplannedProdNo(int v) const {
  return 20261200100.0 + v;
}

Objects::Objects(const ConnectionSettings& settings)
    : host(std::make_shared<NativeHost>(settings, messages)),
      porder(std::make_unique<clsDataPOrder>(host)),
      porderchk(std::make_unique<clsDataPOrderChk>(host)),
      pmrph(std::make_unique<clsDataPMrph>(host)),
      pmrpi(std::make_unique<clsDataPMrpi>(host)) {}

std::unique_ptr<DataSet> makeDataSet(Server& server, int rows, bool appendTablesOnly) {
  auto start = std::chrono::steady_clock::now();
  auto d = std::make_unique<DataSet>();
  d->rows = rows;
  d->appendTablesOnly = appendTablesOnly;
  d->database = "tovrand_bench_" + std::to_string(rows);
  server.admin("DROP DATABASE IF EXISTS `" + d->database + "`");
  server.admin("CREATE DATABASE `" + d->database + "` CHARACTER SET utf8mb4");
  server.runSql(d->database, readFile(std::string(TOVRAND_SOURCE_DIR) + "/schema/tovrand.sql"));
  d->settings = server.settingsFor(d->database);
  d->settings.engine = "mariadb";
  d->settingsOdbc = d->settings;
  d->settingsOdbc.engine = "odbc";
  d->fixture = OdbcConnection::openPrivate(d->settings);

  long products = d->products(), materials = d->materials(), customers = d->customers();
  OrderSql o = orderSql(rows, products, customers);
  fillOrders(*d, o);
  fillReviews(*d, o);
  fillLines(*d, o, rows, products, materials);
  if (!appendTablesOnly) fillEverythingElse(*d, o, rows, products, materials, customers);

  for (int v = 1; v <= 4; ++v) addReviewSalesOrders(*d, 3, DataSet::kReviewSalesOrderBase + v);
  if (!appendTablesOnly) {
    addReviewSalesOrders(*d, 1000, DataSet::kLargeSalesOrder);
    for (int v = 0; v < 4; ++v) addUnplannedOrder(*d, d->unplannedProdNo(v), d->productCode(v + 1));
    // A product of 200 materials, and an order of it waiting for planning.
    addUnplannedOrder(*d, DataSet::kLargeBillProdNo, DataSet::kLargeBillProduct);
    d->exec("INSERT INTO t_wstockqtyh (F_ItemNo, F_SafeQty, F_NoPoStockQty) VALUES ('" +
            std::string(DataSet::kLargeBillProduct) + "', 5, 400)");
    // An order of 200 planning lines, each with its reservation, to be released.
    std::string release = CStr(DataSet::kLargeReleaseProdNo);
    d->exec(
        "INSERT INTO t_pmrpi (F_ProdNo, F_ItemNo, F_Dosage, F_Waste, F_SafeQty, F_RequestQty, F_LeadTime, "
        "F_Status) SELECT " +
        release + ", CONCAT('M-', LPAD(seq, 7, '0')), 1, 0.05, 5, 8, 3, 1 FROM seq_1_to_200");
    d->exec(
        "INSERT INTO t_wstockqtys (F_ProdNo, F_ItemNo, F_ReduceQty) SELECT F_ProdNo, F_ItemNo, 3 FROM "
        "t_pmrpi "
        "WHERE F_ProdNo = " +
        release);
    // What the writing members change, kept to be put back after each call.
    std::string released = release;
    for (int v = 0; v < 4; ++v) released += ", " + d->prodNoText(d->plannedOrder(v));
    d->exec("CREATE TABLE bench_keep_pmrpi AS SELECT * FROM t_pmrpi WHERE F_ProdNo IN (" + released + ")");
    d->exec("CREATE TABLE bench_keep_wstockqtys AS SELECT * FROM t_wstockqtys WHERE F_ProdNo IN (" +
            released + ")");
    d->exec("CREATE TABLE bench_keep_wstockqtyh AS SELECT * FROM t_wstockqtyh");
  }
  d->exec(
      "ANALYZE TABLE t_porder, t_porderchk, t_pmrpi, t_pmrph, t_borderi, t_borderh, t_wstockqtys, "
      "t_wstockqtyh, t_wstockqtyi, t_cpuri, t_cpurh, t_ebom, t_ebomcheck, t_eitem, t_boutmakei");

  d->objects = std::make_unique<Objects>(d->settings);
  d->objectsOdbc = std::make_unique<Objects>(d->settingsOdbc);
  d->odbc = odbcBaseline(d->settings);
  d->connectorC = connectorCBaseline(d->settings);
  if (std::getenv("TOVRAND_BENCH_NO_ENGINE") == nullptr) d->engine = engineBaseline(d->settingsOdbc);
  d->setupSeconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
  std::fprintf(stderr, "data set: %d rows%s in %s, ready in %.1f s\n", rows,
               appendTablesOnly ? " (the tables added to whole)" : "", d->database.c_str(), d->setupSeconds);
  return d;
}

void drop(Server& server, DataSet& d) {
  d.objects.reset();
  d.objectsOdbc.reset();
  d.odbc.reset();
  d.connectorC.reset();
  d.engine.reset();
  d.fixture.reset();
  server.admin("DROP DATABASE IF EXISTS `" + d.database + "`");
}

}  // namespace tovrand::bench
