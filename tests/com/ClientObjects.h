#pragma once

// What the Wine client programs share: an owned IDispatch with late-bound calls, the VARIANTs they
// pass, creation by ProgID, the component's message lines captured from standard error, and the
// fixture connection to the database the runner started.

#include <windows.h>

#include <oaidl.h>

#include <memory>
#include <string>
#include <vector>

#include "ClientCheck.h"
#include "engine/ConnectionSettings.h"
#include "odbc/OdbcConnection.h"

namespace client {

inline const wchar_t* const kLengthMessage = L"你输入的内容超过了允许长度，请检查";

// An owned IDispatch and its late-bound calls.
class Object {
 public:
  Object() = default;
  explicit Object(IDispatch* d) : d_(d) {}
  Object(const Object&) = delete;
  Object& operator=(const Object&) = delete;
  Object(Object&& o) noexcept : d_(o.d_) { o.d_ = nullptr; }
  ~Object() {
    if (d_) d_->Release();
  }
  IDispatch* get() const { return d_; }
  IDispatch** slot() { return &d_; }
  explicit operator bool() const { return d_ != nullptr; }

  DISPID id(const wchar_t* name) const {
    LPOLESTR n[] = {const_cast<LPOLESTR>(name)};
    DISPID dispid = DISPID_UNKNOWN;
    d_->GetIDsOfNames(IID_NULL, n, 1, 0, &dispid);
    return dispid;
  }
  // args in call order; answers the HRESULT, fills result.
  HRESULT call(const wchar_t* name, std::vector<VARIANT> args, VARIANT* result, WORD flags = DISPATCH_METHOD,
               std::string* error = nullptr) const {
    std::vector<VARIANT> reversed(args.rbegin(), args.rend());
    DISPPARAMS params{reversed.data(), nullptr, static_cast<UINT>(reversed.size()), 0};
    DISPID put = DISPID_PROPERTYPUT;
    if (flags & DISPATCH_PROPERTYPUT) {
      params.rgdispidNamedArgs = &put;
      params.cNamedArgs = 1;
    }
    EXCEPINFO info{};
    UINT argErr = 0;
    if (result) VariantInit(result);
    HRESULT hr = d_->Invoke(id(name), IID_NULL, 0, flags, &params, result, &info, &argErr);
    if (hr == DISP_E_EXCEPTION && error) *error = utf8(info.bstrDescription);
    SysFreeString(info.bstrDescription);
    SysFreeString(info.bstrSource);
    SysFreeString(info.bstrHelpFile);
    return hr;
  }
  void put(const wchar_t* name, VARIANT v) const {
    HRESULT hr = call(name, {v}, nullptr, DISPATCH_PROPERTYPUT);
    if (FAILED(hr)) fail(__FILE__, __LINE__, "put " + utf8(name) + " answered " + hex(hr));
    VariantClear(&v);
  }
  VARIANT get(const wchar_t* name) const {
    VARIANT v;
    // As VB reads a property or a method without arguments.
    HRESULT hr = call(name, {}, &v, DISPATCH_METHOD | DISPATCH_PROPERTYGET);
    if (FAILED(hr)) fail(__FILE__, __LINE__, "get " + utf8(name) + " answered " + hex(hr));
    return v;
  }
  double getDouble(const wchar_t* name) const {
    VARIANT v = get(name);
    VariantChangeType(&v, &v, 0, VT_R8);
    return v.vt == VT_R8 ? v.dblVal : -1e300;
  }
  std::string getString(const wchar_t* name) const {
    VARIANT v = get(name);
    std::string s =
        v.vt == VT_BSTR ? utf8(v.bstrVal, static_cast<int>(SysStringLen(v.bstrVal))) : "<not a string>";
    VariantClear(&v);
    return s;
  }

 private:
  IDispatch* d_ = nullptr;
};

inline VARIANT dbl(double d) {
  VARIANT v;
  VariantInit(&v);
  v.vt = VT_R8;
  v.dblVal = d;
  return v;
}
inline VARIANT str(const std::wstring& s) {
  VARIANT v;
  VariantInit(&v);
  v.vt = VT_BSTR;
  v.bstrVal = SysAllocStringLen(s.data(), static_cast<UINT>(s.size()));
  return v;
}
inline VARIANT i2(short s) {
  VARIANT v;
  VariantInit(&v);
  v.vt = VT_I2;
  v.iVal = s;
  return v;
}
inline VARIANT date(WORD y, WORD m, WORD d) {
  SYSTEMTIME st{};
  st.wYear = y;
  st.wMonth = m;
  st.wDay = d;
  VARIANT v;
  VariantInit(&v);
  v.vt = VT_DATE;
  SystemTimeToVariantTime(&st, &v.date);
  return v;
}
inline VARIANT refDispatch(IDispatch** p) {
  VARIANT v;
  VariantInit(&v);
  v.vt = VT_BYREF | VT_DISPATCH;
  v.ppdispVal = p;
  return v;
}

inline Object create(const wchar_t* progId, HRESULT* failure = nullptr, std::string* description = nullptr) {
  CLSID clsid{};
  HRESULT hr = CLSIDFromProgID(progId, &clsid);
  IDispatch* d = nullptr;
  if (SUCCEEDED(hr))
    hr = CoCreateInstance(clsid, nullptr, CLSCTX_INPROC_SERVER, IID_IDispatch, reinterpret_cast<void**>(&d));
  if (failure) *failure = hr;
  if (FAILED(hr) && description) {
    IErrorInfo* info = nullptr;
    if (GetErrorInfo(0, &info) == S_OK && info) {
      BSTR text = nullptr;
      info->GetDescription(&text);
      *description = utf8(text);
      SysFreeString(text);
      info->Release();
    }
  }
  if (FAILED(hr) && !failure) fail(__FILE__, __LINE__, "creating " + utf8(progId) + " answered " + hex(hr));
  return Object(d);
}

// Standard error redirected into a file while it lives: the component writes its message lines there
// (TOVRAND_MESSAGES=stderr).
class CapturedMessages {
 public:
  CapturedMessages() {
    wchar_t dir[MAX_PATH], name[MAX_PATH];
    GetTempPathW(MAX_PATH, dir);
    GetTempFileNameW(dir, L"msg", 0, name);
    path_ = name;
    file_ = CreateFileW(name, GENERIC_READ | GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr,
                        CREATE_ALWAYS, FILE_ATTRIBUTE_TEMPORARY, nullptr);
    old_ = GetStdHandle(STD_ERROR_HANDLE);
    SetStdHandle(STD_ERROR_HANDLE, file_);
  }
  ~CapturedMessages() {
    SetStdHandle(STD_ERROR_HANDLE, old_);
    CloseHandle(file_);
    DeleteFileW(path_.c_str());
  }
  std::string text() {
    SetFilePointer(file_, 0, nullptr, FILE_BEGIN);
    std::string out;
    char buffer[4096];
    DWORD n = 0;
    while (ReadFile(file_, buffer, sizeof buffer, &n, nullptr) && n > 0) out.append(buffer, n);
    return out;
  }

 private:
  std::wstring path_;
  HANDLE file_;
  HANDLE old_;
};

inline std::shared_ptr<tovrand::OdbcConnection> fixtures() {
  char buffer[2048] = {};
  GetEnvironmentVariableA("TOVRAND_TEST_ODBC", buffer, sizeof buffer);
  return tovrand::OdbcConnection::openPrivate(
      tovrand::ConnectionSettings::parse(std::string("odbc:") + buffer));
}

inline double scalar(tovrand::OdbcConnection& db, const std::string& sql) {
  auto v = db.scalar(sql);
  return v && !v->isNull() ? tovrand::CDbl(*v) : -1;
}
inline std::string scalarText(tovrand::OdbcConnection& db, const std::string& sql) {
  auto v = db.scalar(sql);
  return v && !v->isNull() ? tovrand::CStr(*v) : "<null>";
}

inline short status(const VARIANT& v) {
  return v.vt == VT_I2 ? v.iVal : static_cast<short>(-999);
}

// By-reference arguments over the caller's own storage, as early-bound VB code passes its variables.
inline VARIANT refDouble(double* p) {
  VARIANT v;
  VariantInit(&v);
  v.vt = VT_BYREF | VT_R8;
  v.pdblVal = p;
  return v;
}
inline VARIANT refString(BSTR* p) {
  VARIANT v;
  VariantInit(&v);
  v.vt = VT_BYREF | VT_BSTR;
  v.pbstrVal = p;
  return v;
}
inline VARIANT refShort(short* p) {
  VARIANT v;
  VariantInit(&v);
  v.vt = VT_BYREF | VT_I2;
  v.piVal = p;
  return v;
}

// A Velmora Collection and its members, as VB code uses them.
inline Object newCollection() {
  return create(L"Velmora.Collection");
}
inline void add(const Object& collection, const Object& item) {
  VARIANT element;
  VariantInit(&element);
  element.vt = VT_DISPATCH;
  element.pdispVal = item.get();
  HRESULT hr = collection.call(L"Add", {element}, nullptr);
  if (FAILED(hr)) fail(__FILE__, __LINE__, "Collection.Add answered " + hex(hr));
}
inline int count(const Object& collection) {
  return static_cast<int>(collection.getDouble(L"Count"));
}
// Element `index` (1-based) of a Collection; an empty Object when it is not an object.
inline Object item(const Object& collection, int index) {
  VARIANT result;
  HRESULT hr = collection.call(L"Item", {i2(static_cast<short>(index))}, &result,
                               DISPATCH_METHOD | DISPATCH_PROPERTYGET);
  if (FAILED(hr) || result.vt != VT_DISPATCH) {
    fail(__FILE__, __LINE__, "Collection.Item(" + std::to_string(index) + ") answered " + hex(hr));
    VariantClear(&result);
    return Object();
  }
  return Object(result.pdispVal);
}

}  // namespace client
