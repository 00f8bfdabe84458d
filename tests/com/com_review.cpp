// clsDataPOrderChk through the registered component: a sales order's lines receive production numbers
// from a Velmora Collection of clsEntBOrderi, a department signs the review off, and the whole review
// is loaded into a Velmora clsEntPOrderChk; through IDispatch and through the dual interface.
//   com_review.exe      (TOVRAND_TEST_ODBC: an ODBC connection string for the fixtures)

#include <windows.h>

#include <oaidl.h>

#include <string>

#include "ClientObjects.h"
#include "Tovrand_h.h"

using namespace client;

namespace {

constexpr double kOrderNo = 2611901;

Object salesLine(const wchar_t* no, const wchar_t* item, const wchar_t* customerItem, double quantity) {
  Object line = create(L"Velmora.clsEntBOrderi");
  if (!line) return line;
  line.put(L"F_OrderNo", dbl(kOrderNo));
  line.put(L"F_No", str(no));
  line.put(L"F_ItemNo", str(item));
  line.put(L"F_CItemNo", str(customerItem));
  line.put(L"F_OrderQty", dbl(quantity));
  line.put(L"F_DeliverDate", date(2027, 1, 8));
  return line;
}

void review() {
  auto db = fixtures();
  db->execute("delete from t_porderchk where F_OrderNo=2611901");
  db->execute("delete from t_borderi where F_OrderNo=2611901");
  db->execute("delete from t_borderh where F_OrderNo=2611901");
  db->execute(
      "insert into t_borderh (F_OrderNo, F_CustNo, F_CorderNo, F_SalerID, F_Flags) values (2611901, 'C001', "
      "'HM-PO-261118', '王芳', 0)");
  db->execute(
      "insert into t_borderi (F_OrderNo, F_No, F_ItemNo, F_CItemNo, F_OrderQty, F_DeliverDate, F_BkQty) "
      "values "
      "(2611901, '1', 'FG-1001', 'HM-CUP500', 2500, '2027-01-08', 0), "
      "(2611901, '2', 'FG-1002', 'HM-KT17', 400, '2027-01-08', 0)");
  // The month's first number, or the one after its largest: the server's date decides the month.
  const std::string month = scalarText(*db, "select left(cast(curdate()+0 as char),6)");
  const double largest = scalar(*db,
                                "select ifnull(max(F_ProdNo),0) from t_porderchk where "
                                "left(cast(F_ProdNo as char),6)=left(cast(curdate()+0 as char),6)");
  const double first = largest > 0 ? largest + 1 : std::stod(month + "0001");

  Object chk = create(L"Tovrand.clsDataPOrderChk");
  if (!chk) return;

  // AddRecord: the caller's Collection of sales-order lines, the order number as text.
  {
    Object lines = newCollection();
    Object one = salesLine(L"1", L"FG-1001", L"HM-CUP500", 2500);
    Object two = salesLine(L"2", L"FG-1002", L"HM-KT17", 400);
    add(lines, one);
    add(lines, two);
    CHECK_EQ(count(lines), 2);
    IDispatch* linesRef = lines.get();
    linesRef->AddRef();
    BSTR orderNo = SysAllocString(L"2611901");
    BSTR custNo = SysAllocString(L"C001");
    BSTR corderNo = SysAllocString(L"HM-PO-261118");
    short lenInt = 4;
    VARIANT result;
    CapturedMessages messages;
    CHECK_HR(chk.call(L"AddRecord",
                      {refDispatch(&linesRef), refString(&orderNo), refString(&custNo), refString(&corderNo),
                       refShort(&lenInt)},
                      &result),
             S_OK);
    CHECK_EQ(status(result), 1);
    CHECK_EQ(messages.text(), std::string());
    CHECK(linesRef == lines.get());
    linesRef->Release();
    SysFreeString(orderNo);
    SysFreeString(custNo);
    SysFreeString(corderNo);

    CHECK_EQ(scalar(*db, "select count(*) from t_porderchk where F_OrderNo=2611901"), 2.0);
    CHECK_EQ(scalar(*db, "select F_ProdNo from t_borderi where F_OrderNo=2611901 and F_No='1'"), first);
    CHECK_EQ(scalar(*db, "select F_ProdNo from t_borderi where F_OrderNo=2611901 and F_No='2'"), first + 1);
    CHECK_EQ(scalarText(*db,
                        "select concat_ws('|', F_CustNo, F_ItemNo, F_CorderNo, F_OrderCount, F_CItemNo) "
                        "from t_porderchk where F_ProdNo=" +
                            tovrand::CStr(first)),
             std::string("C001|FG-1001|HM-PO-261118|2500|HM-CUP500"));
    CHECK_EQ(scalar(*db, "select F_Flags from t_borderh where F_OrderNo=2611901"), 1.0);
  }

  // UpdateRecord: engineering signs the first review off; the department is named in Chinese.
  {
    Object e = create(L"Velmora.clsEntPOrderChk");
    e.put(L"F_ProdNo", dbl(first));
    e.put(L"F_EGAdmit", i2(1));
    e.put(L"F_EGModel", i2(0));
    e.put(L"F_EGNote", str(L"需开英文彩盒新版"));
    e.put(L"F_EGChecker", str(L"李明"));
    e.put(L"F_EGCheckTime", date(2026, 11, 23));
    IDispatch* ref = e.get();
    ref->AddRef();
    BSTR department = SysAllocString(L"工程");
    VARIANT result;
    CHECK_HR(chk.call(L"UpdateRecord", {refDispatch(&ref), refString(&department)}, &result), S_OK);
    CHECK_EQ(status(result), 1);
    ref->Release();
    SysFreeString(department);
    CHECK_EQ(scalarText(*db,
                        "select concat_ws('|', F_EGAdmit, F_EGModel, F_EGNote, F_EGChecker, F_EGCheckTime) "
                        "from t_porderchk where F_ProdNo=" +
                            tovrand::CStr(first)),
             std::string("1|0|需开英文彩盒新版|李明|2026-11-23 00:00:00"));
  }

  // QueryAll: 0 even when found; the caller's entity holds the whole review, undecided flags as 2.
  {
    Object e = create(L"Velmora.clsEntPOrderChk");
    IDispatch* ref = e.get();
    ref->AddRef();
    double prodNo = first;
    VARIANT result;
    CHECK_HR(chk.call(L"QueryAll", {refDispatch(&ref), refDouble(&prodNo)}, &result), S_OK);
    CHECK_EQ(status(result), 0);
    ref->Release();
    CHECK_EQ(e.getDouble(L"F_ProdNo"), first);
    CHECK_EQ(e.getDouble(L"F_OrderNo"), kOrderNo);
    CHECK_EQ(e.getString(L"F_ItemNo"), std::string("FG-1001"));
    CHECK_EQ(e.getDouble(L"F_OrderCount"), 2500.0);
    CHECK_EQ(e.getString(L"F_EGNote"), std::string("需开英文彩盒新版"));
    CHECK_EQ(e.getString(L"F_EGChecker"), std::string("李明"));
    CHECK_EQ(e.getDouble(L"F_EGModel"), 0.0);
    CHECK_EQ(e.getDouble(L"F_PUprovider"), 2.0);
    CHECK_EQ(e.getDouble(L"F_Status"), 2.0);
    VARIANT checked = e.get(L"F_EGCheckTime");
    CHECK_EQ(checked.vt, VT_DATE);
    CHECK_EQ(checked.date, date(2026, 11, 23).date);
  }

  // The dual interface's vtable: QueryProdNoView answers 2 for a number without a review.
  {
    _clsDataPOrderChk* early = nullptr;
    CHECK_HR(chk.get()->QueryInterface(__uuidof(_clsDataPOrderChk), reinterpret_cast<void**>(&early)), S_OK);
    if (early) {
      Object e = create(L"Velmora.clsEntPOrderChk");
      e.put(L"F_ProdNo", dbl(1999010001));
      IDispatch* ref = e.get();
      ref->AddRef();
      short result = -1;
      CHECK_HR(early->QueryProdNoView(&ref, &result), S_OK);
      CHECK_EQ(result, 2);
      e.put(L"F_ProdNo", dbl(first + 1));
      CHECK_HR(early->QueryProdNoView(&ref, &result), S_OK);
      CHECK_EQ(result, 1);
      CHECK_EQ(e.getString(L"F_ItemNo"), std::string("FG-1002"));
      ref->Release();
      early->Release();
    }
  }
}

}  // namespace

int main() {
  SetEnvironmentVariableW(L"TOVRAND_MESSAGES", L"stderr");
  CoInitialize(nullptr);
  try {
    review();
  } catch (const std::exception& e) {
    fail(__FILE__, __LINE__, std::string("exception: ") + e.what());
  }
  CoUninitialize();
  return finish("com_review");
}
