// Real calls into the registered Tovrand component, through IDispatch as VB's late binding makes
// them and through the dual interface's vtable as early-bound VB code does, with Velmora entities
// and a Velmora Collection, against the database the runner started.
//   com_calls.exe calls         (TOVRAND_TEST_ODBC: an ODBC connection string for the fixtures)
//   com_calls.exe unreachable   (the component's connection points at a closed port)

#include <windows.h>

#include <oaidl.h>

#include <memory>
#include <string>
#include <vector>

#include "ClientObjects.h"
#include "Tovrand_h.h"

using namespace client;

namespace {

Object newOrder(double prodNo, const std::wstring& custNo) {
  Object e = create(L"Velmora.clsEntPOrder");
  if (!e) return e;
  e.put(L"F_ProdNo", dbl(prodNo));
  e.put(L"F_CustNo", str(custNo));
  e.put(L"F_SalerID", str(L"S01"));
  e.put(L"F_ItemNo", str(L"ITEM-1"));
  e.put(L"F_OrderMode", str(L"外发加工"));
  e.put(L"F_OrderNo", dbl(5001));
  e.put(L"F_COrderNo", str(L"PO-9"));
  e.put(L"F_BalQty", dbl(3));
  e.put(L"F_OrdQty", dbl(10));
  e.put(L"F_DeliverDate", date(2008, 6, 1));
  e.put(L"F_Status", i2(1));
  return e;
}

void calls() {
  auto db = fixtures();
  db->execute("delete from t_porder where F_ProdNo between 2008050001 and 2008050099");

  Object porder = create(L"Tovrand.clsDataPOrder");
  if (!porder) return;

  // AddRecord: 1, and the row is in the table with the entity's values.
  {
    Object e = newOrder(2008050001, L"C001");
    IDispatch* ref = e.get();
    ref->AddRef();
    VARIANT result;
    HRESULT hr = porder.call(L"AddRecord", {refDispatch(&ref)}, &result);
    CHECK_HR(hr, S_OK);
    CHECK_EQ(status(result), 1);
    CHECK(ref == e.get());  // the caller's own object, not replaced
    ref->Release();
    CHECK_EQ(scalar(*db, "select count(*) from t_porder where F_ProdNo=2008050001"), 1.0);
    CHECK_EQ(scalarText(*db, "select F_CustNo from t_porder where F_ProdNo=2008050001"), std::string("C001"));
    CHECK_EQ(scalarText(*db, "select F_OrderMode from t_porder where F_ProdNo=2008050001"),
             std::string("外发加工"));
    CHECK_EQ(scalar(*db, "select F_OrdQty from t_porder where F_ProdNo=2008050001"), 10.0);
  }

  // QueryItem fills the caller's entity from the row.
  {
    Object e = create(L"Velmora.clsEntPOrder");
    e.put(L"F_ProdNo", dbl(2008050001));
    IDispatch* ref = e.get();
    ref->AddRef();
    VARIANT result;
    CHECK_HR(porder.call(L"QueryItem", {refDispatch(&ref)}, &result), S_OK);
    CHECK_EQ(status(result), 1);
    ref->Release();
    CHECK_EQ(e.getString(L"F_CustNo"), std::string("C001"));
    CHECK_EQ(e.getString(L"F_OrderMode"), std::string("外发加工"));
    CHECK_EQ(e.getString(L"F_SalerID"), std::string("S01"));
    CHECK_EQ(e.getDouble(L"F_OrdQty"), 10.0);
    CHECK_EQ(e.getDouble(L"F_OrderNo"), 5001.0);
    VARIANT deliver = e.get(L"F_DeliverDate");
    CHECK_EQ(deliver.vt, VT_DATE);
    CHECK_EQ(deliver.date, date(2008, 6, 1).date);
  }

  // QueryItem of an unknown production number: 0, entity unchanged, no message.
  {
    Object e = create(L"Velmora.clsEntPOrder");
    e.put(L"F_ProdNo", dbl(2008050077));
    e.put(L"F_CustNo", str(L"untouched"));
    IDispatch* ref = e.get();
    ref->AddRef();
    CapturedMessages messages;
    VARIANT result;
    CHECK_HR(porder.call(L"QueryItem", {refDispatch(&ref)}, &result), S_OK);
    CHECK_EQ(status(result), 0);
    ref->Release();
    CHECK_EQ(e.getString(L"F_CustNo"), std::string("untouched"));
    CHECK_EQ(messages.text(), std::string());
  }

  // UpdateRecord writes the entity's values into the row.
  {
    Object e = newOrder(2008050001, L"C002");
    e.put(L"F_OrdQty", dbl(12));
    IDispatch* ref = e.get();
    ref->AddRef();
    VARIANT result;
    CHECK_HR(porder.call(L"UpdateRecord", {refDispatch(&ref)}, &result), S_OK);
    CHECK_EQ(status(result), 1);
    ref->Release();
    CHECK_EQ(scalarText(*db, "select F_CustNo from t_porder where F_ProdNo=2008050001"), std::string("C002"));
    CHECK_EQ(scalar(*db, "select F_OrdQty from t_porder where F_ProdNo=2008050001"), 12.0);
  }

  // QueryByStrSql appends one new entity per row to the caller's Collection (not cleared first).
  {
    Object second = newOrder(2008050002, L"C003");
    IDispatch* ref = second.get();
    ref->AddRef();
    VARIANT result;
    CHECK_HR(porder.call(L"AddRecord", {refDispatch(&ref)}, &result), S_OK);
    CHECK_EQ(status(result), 1);
    ref->Release();

    Object coll = create(L"Velmora.Collection");
    IDispatch* collRef = coll.get();
    collRef->AddRef();
    BSTR sql = SysAllocString(L" where F_ProdNo=2008050001");
    VARIANT sqlArg;
    VariantInit(&sqlArg);
    sqlArg.vt = VT_BYREF | VT_BSTR;
    sqlArg.pbstrVal = &sql;
    CHECK_HR(porder.call(L"QueryByStrSql", {refDispatch(&collRef), sqlArg}, &result), S_OK);
    CHECK_EQ(status(result), 1);
    CHECK_EQ(coll.getDouble(L"Count"), 1.0);
    VARIANT first;
    VARIANT index = i2(1);
    CHECK_HR(coll.call(L"Item", {index}, &first, DISPATCH_METHOD | DISPATCH_PROPERTYGET), S_OK);
    CHECK_EQ(first.vt, VT_DISPATCH);
    if (first.vt == VT_DISPATCH) {
      Object item(first.pdispVal);
      CHECK_EQ(item.getString(L"F_CustNo"), std::string("C002"));
      CHECK_EQ(item.getDouble(L"F_ProdNo"), 2008050001.0);
      ITypeInfo* info = nullptr;
      if (SUCCEEDED(item.get()->GetTypeInfo(0, 0, &info)) && info) {
        BSTR name = nullptr;
        info->GetDocumentation(MEMBERID_NIL, &name, nullptr, nullptr, nullptr);
        CHECK_EQ(utf8(name), std::string("_clsEntPOrder"));
        SysFreeString(name);
        info->Release();
      }
    }
    SysFreeString(sql);
    sql = SysAllocString(L" where F_ProdNo between 2008050001 and 2008050099 order by F_ProdNo");
    CHECK_HR(porder.call(L"QueryByStrSql", {refDispatch(&collRef), sqlArg}, &result), S_OK);
    CHECK_EQ(status(result), 1);
    CHECK_EQ(coll.getDouble(L"Count"), 3.0);
    SysFreeString(sql);
    collRef->Release();
  }

  // Named arguments, in any order, bind by the interface's parameter names; the Collection
  // enumerates what the component added.
  {
    Object coll = create(L"Velmora.Collection");
    IDispatch* collRef = coll.get();
    collRef->AddRef();
    BSTR sql = SysAllocString(L" where F_ProdNo=2008050002");
    LPOLESTR names[] = {const_cast<LPOLESTR>(L"QueryByStrSql"), const_cast<LPOLESTR>(L"strSql"),
                        const_cast<LPOLESTR>(L"colPOrder")};
    DISPID ids[3] = {};
    CHECK_HR(porder.get()->GetIDsOfNames(IID_NULL, names, 3, 0, ids), S_OK);
    CHECK_EQ(ids[0], DISPID{0x60030002});
    CHECK_EQ(ids[1], DISPID{1});
    CHECK_EQ(ids[2], DISPID{0});
    VARIANT args[2];
    VariantInit(&args[0]);
    args[0].vt = VT_BYREF | VT_BSTR;
    args[0].pbstrVal = &sql;
    args[1] = refDispatch(&collRef);
    DISPID named[2] = {ids[1], ids[2]};
    DISPPARAMS params{args, named, 2, 2};
    VARIANT result;
    VariantInit(&result);
    CHECK_HR(porder.get()->Invoke(ids[0], IID_NULL, 0, DISPATCH_METHOD, &params, &result, nullptr, nullptr),
             S_OK);
    CHECK_EQ(status(result), 1);
    CHECK_EQ(coll.getDouble(L"Count"), 1.0);
    VARIANT enumerator;
    DISPPARAMS none{nullptr, nullptr, 0, 0};
    CHECK_HR(coll.get()->Invoke(DISPID_NEWENUM, IID_NULL, 0, DISPATCH_METHOD | DISPATCH_PROPERTYGET, &none,
                                &enumerator, nullptr, nullptr),
             S_OK);
    IEnumVARIANT* items = nullptr;
    if (enumerator.vt == VT_UNKNOWN || enumerator.vt == VT_DISPATCH)
      enumerator.punkVal->QueryInterface(IID_IEnumVARIANT, reinterpret_cast<void**>(&items));
    CHECK(items != nullptr);
    if (items) {
      VARIANT item;
      VariantInit(&item);
      ULONG fetched = 0;
      int count = 0;
      while (items->Next(1, &item, &fetched) == S_OK && fetched == 1) {
        ++count;
        if (item.vt == VT_DISPATCH)
          CHECK_EQ(Object(item.pdispVal).getString(L"F_CustNo"), std::string("C003"));
        else
          client::fail(__FILE__, __LINE__, "an element that is not an object");
        VariantInit(&item);
      }
      CHECK_EQ(count, 1);
      items->Release();
    }
    VariantClear(&enumerator);
    collRef->Release();
    SysFreeString(sql);
  }

  // A text longer than its column: the length message (style 64, "Quenta软件"), result 0, no row.
  {
    Object e = newOrder(2008050003, L"C-THIS-CUSTOMER-NUMBER-IS-FAR-TOO-LONG");
    IDispatch* ref = e.get();
    ref->AddRef();
    CapturedMessages messages;
    VARIANT result;
    CHECK_HR(porder.call(L"AddRecord", {refDispatch(&ref)}, &result), S_OK);
    CHECK_EQ(status(result), 0);
    ref->Release();
    std::string expected = "MESSAGE style=64 title=Quenta软件 text=" + utf8(kLengthMessage);
    std::string text = messages.text();
    if (text.find(expected) == std::string::npos)
      client::fail(__FILE__, __LINE__, "length message missing; got: " + text);
    std::printf("length message: %s", text.c_str());
    CHECK_EQ(scalar(*db, "select count(*) from t_porder where F_ProdNo=2008050003"), 0.0);
  }

  // The object stays usable after the handled error.
  {
    Object e = create(L"Velmora.clsEntPOrder");
    e.put(L"F_ProdNo", dbl(2008050002));
    IDispatch* ref = e.get();
    ref->AddRef();
    VARIANT result;
    CHECK_HR(porder.call(L"QueryItem", {refDispatch(&ref)}, &result), S_OK);
    CHECK_EQ(status(result), 1);
    ref->Release();
    CHECK_EQ(e.getString(L"F_CustNo"), std::string("C003"));
  }

  // QueryAllProdNo writes its array back into the caller's by-reference array: it always starts
  // with the 0 element (the rows here are older than twelve months).
  {
    SAFEARRAY* array = nullptr;
    VARIANT arg;
    VariantInit(&arg);
    arg.vt = VT_BYREF | VT_ARRAY | VT_R8;
    arg.pparray = &array;
    VARIANT result;
    CHECK_HR(porder.call(L"QueryAllProdNo", {arg}, &result), S_OK);
    CHECK_EQ(status(result), 1);
    CHECK(array != nullptr);
    if (array) {
      LONG lower = -1, upper = -1;
      SafeArrayGetLBound(array, 1, &lower);
      SafeArrayGetUBound(array, 1, &upper);
      CHECK_EQ(lower, 0);
      CHECK(upper >= 0);
      double first = -1;
      LONG zero = 0;
      SafeArrayGetElement(array, &zero, &first);
      CHECK_EQ(first, 0.0);
      SafeArrayDestroy(array);
    }
  }

  // Early binding: the same call through the dual interface's vtable.
  {
    _clsDataPOrder* early = nullptr;
    CHECK_HR(porder.get()->QueryInterface(__uuidof(_clsDataPOrder), reinterpret_cast<void**>(&early)), S_OK);
    if (early) {
      Object e = create(L"Velmora.clsEntPOrder");
      e.put(L"F_ProdNo", dbl(2008050001));
      IDispatch* ref = e.get();
      ref->AddRef();
      short result = -1;
      CHECK_HR(early->QueryItem(&ref, &result), S_OK);
      CHECK_EQ(result, 1);
      ref->Release();
      CHECK_EQ(e.getString(L"F_CustNo"), std::string("C002"));

      BSTR sql = SysAllocString(L" where F_ProdNo=2008050002");
      Object coll = create(L"Velmora.Collection");
      IDispatch* collRef = coll.get();
      collRef->AddRef();
      CHECK_HR(early->QueryByStrSql(&collRef, &sql, &result), S_OK);
      CHECK_EQ(result, 1);
      CHECK_EQ(coll.getDouble(L"Count"), 1.0);
      collRef->Release();
      SysFreeString(sql);
      early->Release();
    }
  }

  // Late binding by name with a wrong argument kind: a type mismatch for that argument.
  {
    VARIANT result;
    CHECK_HR(porder.call(L"QueryItem", {str(L"not an entity")}, &result), DISP_E_TYPEMISMATCH);
    CHECK_HR(porder.call(L"QueryItem", {}, &result), DISP_E_BADPARAMCOUNT);
  }

  // An entity of another class is refused as VB refuses it: run-time error 13, Type mismatch.
  {
    Object wrong = create(L"Velmora.clsEntPMrph");
    IDispatch* ref = wrong.get();
    ref->AddRef();
    VARIANT result;
    std::string description;
    CHECK_HR(porder.call(L"QueryItem", {refDispatch(&ref)}, &result, DISPATCH_METHOD, &description),
             DISP_E_EXCEPTION);
    CHECK_EQ(description, std::string("Type mismatch"));
    ref->Release();
  }

  // Every class's members are bound: a list member of another class answers its status.
  {
    Object mrph = create(L"Tovrand.clsDataPMrph");
    if (mrph) {
      Object coll = newCollection();
      IDispatch* collRef = coll.get();
      collRef->AddRef();
      VARIANT result;
      CHECK_HR(mrph.call(L"QueryProdNo", {refDispatch(&collRef)}, &result), S_OK);
      CHECK_EQ(result.vt, VT_I2);
      collRef->Release();
    }
  }
  db->execute("delete from t_porder where F_ProdNo between 2008050001 and 2008050099");
}

void unreachable() {
  CapturedMessages messages;
  HRESULT hr = S_OK;
  std::string description;
  Object porder = create(L"Tovrand.clsDataPOrder", &hr, &description);
  std::printf("creation answered %s: %s\n", client::hex(hr).c_str(), description.c_str());
  CHECK(FAILED(hr));
  CHECK(!porder);
  CHECK(!description.empty());
  // No message box: the failure goes to the creator only.
  CHECK_EQ(messages.text(), std::string());
  // The server is not left holding anything.
  HMODULE dll = GetModuleHandleW(L"Tovrand.dll");
  if (dll) {
    using CanUnloadNow = HRESULT(STDAPICALLTYPE*)();
    auto canUnloadNow =
        reinterpret_cast<CanUnloadNow>(reinterpret_cast<void*>(GetProcAddress(dll, "DllCanUnloadNow")));
    if (canUnloadNow) CHECK_HR(canUnloadNow(), S_OK);
  }
}

}  // namespace

int main(int argc, char** argv) {
  std::string mode = argc > 1 ? argv[1] : "calls";
  SetEnvironmentVariableW(L"TOVRAND_MESSAGES", L"stderr");
  CoInitialize(nullptr);
  try {
    if (mode == "unreachable")
      unreachable();
    else
      calls();
  } catch (const std::exception& e) {
    client::fail(__FILE__, __LINE__, std::string("exception: ") + e.what());
  }
  CoUninitialize();
  return client::finish(("com_calls " + mode).c_str());
}
