#pragma once

#include <memory>
#include <string>

#include "bench/Baseline.h"
#include "bench/Server.h"
#include "engine/ConnectionSettings.h"
#include "frame/MessageSink.h"
#include "host/NativeHost.h"
#include "odbc/OdbcConnection.h"
#include "pmrph/clsDataPMrph.h"
#include "pmrpi/clsDataPMrpi.h"
#include "porder/clsDataPOrder.h"
#include "porderchk/clsDataPOrderChk.h"

namespace tovrand::bench {

// The four classes' objects on one database, as a client program holds them.
struct Objects {
  std::shared_ptr<RecordingMessageSink> messages = std::make_shared<RecordingMessageSink>();
  std::shared_ptr<NativeHost> host;
  std::unique_ptr<clsDataPOrder> porder;
  std::unique_ptr<clsDataPOrderChk> porderchk;
  std::unique_ptr<clsDataPMrph> pmrph;
  std::unique_ptr<clsDataPMrpi> pmrpi;

  explicit Objects(const ConnectionSettings& settings);
};

// One database filled for one size: `rows` rows in every table the four classes read (the tables of
// the three members that add to a whole table only, where `appendTablesOnly`).
//
// The production orders are numbered yyyymm and a five-digit serial, spread over the 24 months up to
// the pinned date 2026-11-22: order i (1-based) falls in month (i-1) mod 24 back from November 2026,
// with serial (i-1) div 24 + 1. Every order has a review, a sales-order line, a planning header; one in
// five has five planning lines (its product's bill of material, one reservation and one purchase line
// each). The first 20 orders of November 2026 (the purchasing set) are open (status 0), due on
// 2027-06-15, and have quantities to buy, so that the purchasing lists return the same 20 headers and
// 100 lines at every size. Products are one in five items, materials the rest; customers hold 100
// orders each. Beside them stand the fixtures the writing members work on (see DataSet.cpp).
struct DataSet {
  int rows = 0;
  bool appendTablesOnly = false;
  std::string database;
  ConnectionSettings settings;      // the native engine (the default)
  ConnectionSettings settingsOdbc;  // the same database on the ODBC engine
  double setupSeconds = 0;
  std::shared_ptr<OdbcConnection> fixture;  // restores, outside the trace
  std::unique_ptr<Objects> objects;         // on the native engine
  std::unique_ptr<Objects> objectsOdbc;     // on the ODBC engine
  std::unique_ptr<Baseline> odbc;
  std::unique_ptr<Baseline> connectorC;
  std::unique_ptr<Baseline> engine;

  int products() const;
  int materials() const;
  int customers() const;
  // The production number of order i, and its parts.
  double prodNo(int i) const;
  VbDate month(int i) const;  // the first day of order i's month
  std::string prodNoText(int i) const;
  std::string product(int i) const;      // of order i
  std::string productCode(int p) const;  // product p (1-based)
  std::string material(int k) const;     // material k (1-based)
  std::string customer(int i) const;     // of order i
  double salesOrder(int i) const;        // of order i
  // Order i of the purchasing set (k = 0..19).
  int purchasingOrder(int k) const { return 1 + 24 * k; }
  // An order in the middle of the table, different for each variant v (November 2026, no lines).
  int middleOrder(int v) const;
  // An order with five planning lines, different for each variant v.
  int plannedOrder(int v) const;

  // Fixtures the writing members work on.
  static constexpr double kNewProdNoBase = 20291200000.0;    // porder.AddRecord's numbers
  static constexpr int kReviewSalesOrderBase = 990000;       // three lines each, not yet numbered
  static constexpr int kLargeSalesOrder = 999999;            // 1,000 lines, not yet numbered
  double unplannedProdNo(int v) const;                       // an order without planning
  static constexpr double kLargeBillProdNo = 20261299900.0;  // an order of a product with 200 materials
  static constexpr const char* kLargeBillProduct = "FG-LARGE";
  static constexpr double kLargeReleaseProdNo = 20261299901.0;  // an order with 200 reserved lines

  void exec(const std::string& sql) const { fixture->execute(sql); }
  // The objects a timed or counted run of `impl` calls.
  Objects& objectsOf(bool odbcEngine) { return odbcEngine ? *objectsOdbc : *objects; }
};

// Creates and fills the database of one size on `server`; drop() removes it.
std::unique_ptr<DataSet> makeDataSet(Server& server, int rows, bool appendTablesOnly);
void drop(Server& server, DataSet& d);

}  // namespace tovrand::bench
