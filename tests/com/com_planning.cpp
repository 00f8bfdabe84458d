// clsDataPMrph and clsDataPMrpi through the registered component: a header's figures handed back in
// the caller's by-reference doubles, a production order's planning written from a Velmora clsEntPMrph
// and a Collection of clsEntPMrpi, the purchasing lists, a line written and a planning released, the
// approved bill of material as clsEntEBom entities, and a Variant member answering VT_EMPTY.
//   com_planning.exe      (TOVRAND_TEST_ODBC: an ODBC connection string for the fixtures)
// It leaves production order 2611990001 in place for the script host's AccountData call.

#include <windows.h>

#include <oaidl.h>

#include <string>

#include "ClientObjects.h"
#include "Tovrand_h.h"

using namespace client;

namespace {

void prepare(tovrand::OdbcConnection& db) {
  for (const char* table : {"t_porderchk", "t_pmrph", "t_pmrpi", "t_porder", "t_wstockqtys"})
    db.execute(std::string("delete from ") + table + " where F_ProdNo between 2611990001 and 2611990009");
  db.execute("delete from t_wstockqtyh where F_ItemNo in ('CP-1','CP-2','M-1','M-2','M-9')");
  db.execute("delete from t_wstockqtyi where F_ItemNo in ('CP-1','CP-2')");
  db.execute("delete from t_ebom where F_GoodsNo='CP-1'");
  db.execute("delete from t_ebomcheck where F_GoodsNo='CP-1'");
  db.execute(
      "insert into t_porderchk (F_ProdNo, F_OrderCount, F_Way) values (2611990001, 100, '自制'), "
      "(2611990002, 200, '自制')");
  db.execute("insert into t_porder (F_ProdNo, F_Status) values (2611990001, 0), (2611990002, 0)");
  db.execute(
      "insert into t_wstockqtyh (F_ItemNo, F_SafeQty, F_NoPoStockQty) values ('CP-1', 10, 50), ('CP-2', 0, "
      "30)");
  db.execute("insert into t_wstockqtyi (F_ItemNo, F_WhNo, F_StockQty) values ('CP-1', 'W02', 70)");
  db.execute(
      "insert into t_pmrph (F_ProdNo, F_ItemNo, F_OrderQty, F_SafeQty, F_NeedQty, F_PlanPurQty) values "
      "(2611990001, 'CP-1', 100, 10, 60, 5)");
  db.execute(
      "insert into t_ebom (F_GoodsNo, F_PartNo, F_Dosage, F_Waste, F_LeadDay) values ('CP-1', 'M-1', 2, "
      "0.25, 5), "
      "('CP-1', 'M-2', 0.5, 0, 3)");
  db.execute("insert into t_ebomcheck (F_GoodsNo, F_Approve) values ('CP-1', '张建国')");
}

Object header(double prodNo, const wchar_t* item) {
  Object e = create(L"Velmora.clsEntPMrph");
  if (!e) return e;
  e.put(L"F_ProdNo", dbl(prodNo));
  e.put(L"F_ItemNo", str(item));
  return e;
}

void planning() {
  auto db = fixtures();
  prepare(*db);
  Object mrph = create(L"Tovrand.clsDataPMrph");
  Object mrpi = create(L"Tovrand.clsDataPMrpi");
  if (!mrph || !mrpi) return;

  // AccountData: the ten figures come back in the caller's doubles. Free stock 50 - 10 = 40 is taken
  // against the need of 100; the planned purchase of 5 stays below the remaining 60.
  {
    Object e = header(2611990001, L"CP-1");
    IDispatch* ref = e.get();
    ref->AddRef();
    double C1 = 7, A = 7, P = -1, M = 7, K = 7, S = 7, SQ = 7, AT = 7, BN = 123, ATi = 7;
    VARIANT result;
    CHECK_HR(mrph.call(L"AccountData",
                       {refDispatch(&ref), refDouble(&C1), refDouble(&A), refDouble(&P), refDouble(&M),
                        refDouble(&K), refDouble(&S), refDouble(&SQ), refDouble(&AT), refDouble(&BN),
                        refDouble(&ATi)},
                       &result),
             S_OK);
    CHECK_EQ(status(result), 1);
    ref->Release();
    CHECK_EQ(C1, 0.0);
    CHECK_EQ(A, 40.0);
    CHECK_EQ(P, 100.0);
    CHECK_EQ(M, 60.0);
    CHECK_EQ(K, 5.0);
    CHECK_EQ(S, 70.0);
    CHECK_EQ(SQ, 10.0);
    CHECK_EQ(AT, 40.0);
    CHECK_EQ(BN, 50.0);
    CHECK_EQ(ATi, 0.0);
  }

  // The same through the dual interface's vtable.
  {
    _clsDataPMrph* early = nullptr;
    CHECK_HR(mrph.get()->QueryInterface(__uuidof(_clsDataPMrph), reinterpret_cast<void**>(&early)), S_OK);
    if (early) {
      Object e = header(2611990001, L"CP-1");
      IDispatch* ref = e.get();
      ref->AddRef();
      double C1 = 0, A = 0, P = 0, M = 0, K = 0, S = 0, SQ = 0, AT = 0, BN = 0, ATi = 0;
      short result = -1;
      CHECK_HR(early->AccountData(&ref, &C1, &A, &P, &M, &K, &S, &SQ, &AT, &BN, &ATi, &result), S_OK);
      CHECK_EQ(result, 1);
      CHECK_EQ(M, 60.0);
      CHECK_EQ(AT, 40.0);
      CHECK_EQ(K, 5.0);
      ref->Release();
      early->Release();
    }
  }

  // QueryItemNo in mode "1": the approved bill of material as new clsEntEBom entities.
  Object bom = newCollection();
  {
    IDispatch* ref = bom.get();
    ref->AddRef();
    VARIANT goodsNo = str(L"CP-1");
    VARIANT mode = str(L"1");
    VARIANT result;
    CHECK_HR(mrpi.call(L"QueryItemNo", {refDispatch(&ref), goodsNo, mode}, &result), S_OK);
    CHECK_EQ(status(result), 1);
    ref->Release();
    VariantClear(&goodsNo);
    VariantClear(&mode);
    CHECK_EQ(count(bom), 2);
  }

  // AddRecord1: a new header from the review (200 to make, 30 free stock taken), one line per member
  // of the bill: (170 - 0) x dosage x (1 + waste).
  {
    Object lines = newCollection();
    for (int i = 1; i <= count(bom); ++i) {
      Object member = item(bom, i);
      if (!member) continue;
      Object line = create(L"Velmora.clsEntPMrpi");
      line.put(L"F_ItemNo", str(wide(member.getString(L"F_PartNo"))));
      line.put(L"F_Dosage", dbl(member.getDouble(L"F_Dosage")));
      line.put(L"F_Waste", dbl(member.getDouble(L"F_Waste")));
      line.put(L"F_LeadTime", i2(static_cast<short>(member.getDouble(L"F_LeadDay"))));
      add(lines, line);
    }
    Object e = header(2611990002, L"CP-2");
    IDispatch* ref = e.get();
    ref->AddRef();
    IDispatch* linesRef = lines.get();
    linesRef->AddRef();
    CapturedMessages messages;
    VARIANT result;
    CHECK_HR(mrph.call(L"AddRecord1", {refDispatch(&ref), refDispatch(&linesRef)}, &result), S_OK);
    CHECK_EQ(status(result), 1);
    CHECK_EQ(messages.text(), std::string());
    ref->Release();
    linesRef->Release();
    CHECK_EQ(e.getDouble(L"F_NeedQty"), 170.0);
    CHECK_EQ(e.getDouble(L"F_OrderQty"), 200.0);
    CHECK_EQ(scalarText(*db,
                        "select concat_ws('|', F_ItemNo, F_OrderQty, F_SafeQty, F_NeedQty, F_PlanPurQty, "
                        "F_Status) from t_pmrph where F_ProdNo=2611990002"),
             std::string("CP-2|200|0|170|0|1"));
    CHECK_EQ(scalarText(*db,
                        "select group_concat(concat_ws('|', F_ItemNo, F_Dosage, F_Waste, F_SafeQty, "
                        "F_RequestQty, F_LeadTime, F_Status) order by F_ItemNo separator ' / ') from t_pmrpi "
                        "where F_ProdNo=2611990002"),
             std::string("M-1|2|0.25|0|425|5|1 / M-2|0.5|0|0|85|3|1"));
    CHECK_EQ(
        scalar(*db, "select F_ReduceQty from t_wstockqtys where F_ProdNo=2611990002 and F_ItemNo='CP-2'"),
        30.0);
    CHECK_EQ(scalar(*db, "select F_NoPoStockQty from t_wstockqtyh where F_ItemNo='CP-2'"), 0.0);
  }

  // QueryByIDForPur: headers and lines still to buy in the production-number range.
  {
    Object headers = newCollection();
    IDispatch* ref = headers.get();
    ref->AddRef();
    double from = 2611990001, to = 2611990009;
    short range = 1;
    BSTR itemNo = SysAllocString(L"");
    VARIANT result;
    CHECK_HR(
        mrph.call(L"QueryByIDForPur",
                  {refDispatch(&ref), refDouble(&from), refDouble(&to), refShort(&range), refString(&itemNo)},
                  &result),
        S_OK);
    CHECK_EQ(status(result), 1);
    CHECK_EQ(count(headers), 1);
    if (Object first = item(headers, 1)) CHECK_EQ(first.getDouble(L"F_PlanPurQty"), 5.0);
    ref->Release();

    Object lines = newCollection();
    IDispatch* linesRef = lines.get();
    linesRef->AddRef();
    CHECK_HR(mrpi.call(L"QueryByIDForPur",
                       {refDispatch(&linesRef), refDouble(&from), refDouble(&to), refShort(&range),
                        refString(&itemNo)},
                       &result),
             S_OK);
    CHECK_EQ(status(result), 1);
    CHECK_EQ(count(lines), 2);
    linesRef->Release();
    SysFreeString(itemNo);
  }

  // clsDataPMrpi.AddRecord writes one line from a Velmora clsEntPMrpi.
  {
    Object line = create(L"Velmora.clsEntPMrpi");
    line.put(L"F_ProdNo", dbl(2611990001));
    line.put(L"F_ItemNo", str(L"M-9"));
    line.put(L"F_Dosage", dbl(3));
    line.put(L"F_RequestQty", dbl(12.5));
    line.put(L"F_LeadTime", i2(4));
    IDispatch* ref = line.get();
    ref->AddRef();
    VARIANT result;
    CHECK_HR(mrpi.call(L"AddRecord", {refDispatch(&ref)}, &result), S_OK);
    CHECK_EQ(status(result), 1);
    ref->Release();
    CHECK_EQ(scalarText(*db,
                        "select concat_ws('|', F_Dosage, F_RequestQty, F_LeadTime, ifnull(F_Status,'null')) "
                        "from t_pmrpi where F_ProdNo=2611990001 and F_ItemNo='M-9'"),
             std::string("3|12.5|4|null"));
  }

  // getProdNoItemNo: the Variant result is Empty; the Collection is the answer.
  {
    Object headers = newCollection();
    IDispatch* ref = headers.get();
    ref->AddRef();
    BSTR prodNo = SysAllocString(L"261199000");
    VARIANT result;
    CHECK_HR(mrpi.call(L"getProdNoItemNo", {refDispatch(&ref), refString(&prodNo)}, &result), S_OK);
    CHECK_EQ(result.vt, VT_EMPTY);
    CHECK_EQ(count(headers), 2);
    ref->Release();
    SysFreeString(prodNo);
  }

  // DeleteAllPMrpiRecord (a by-value double): the lines and their reservations go, the stock summary
  // keeps its figure, the header's own reservation stays.
  {
    VARIANT result;
    CHECK_HR(mrpi.call(L"DeleteAllPMrpiRecord", {dbl(2611990002)}, &result), S_OK);
    CHECK_EQ(status(result), 1);
    CHECK_EQ(scalar(*db, "select count(*) from t_pmrpi where F_ProdNo=2611990002"), 0.0);
    CHECK_EQ(
        scalar(*db, "select count(*) from t_wstockqtys where F_ProdNo=2611990002 and F_ItemNo like 'M-%'"),
        0.0);
    CHECK_EQ(scalar(*db, "select count(*) from t_wstockqtys where F_ProdNo=2611990002 and F_ItemNo='CP-2'"),
             1.0);
    CHECK_EQ(scalar(*db, "select F_NoPoStockQty from t_wstockqtyh where F_ItemNo='M-1'"), 0.0);
    CHECK_HR(mrpi.call(L"DeleteAllPMrpiRecord", {dbl(2611990002)}, &result), S_OK);
    CHECK_EQ(status(result), 0);
  }
}

}  // namespace

int main() {
  SetEnvironmentVariableW(L"TOVRAND_MESSAGES", L"stderr");
  CoInitialize(nullptr);
  try {
    planning();
  } catch (const std::exception& e) {
    fail(__FILE__, __LINE__, std::string("exception: ") + e.what());
  }
  CoUninitialize();
  return finish("com_planning");
}
