#pragma once

// What both DLLs share at the COM edge: owning wrappers for interface pointers, BSTRs and VARIANTs,
// text and value conversion, error objects, late-bound calls and the process environment.

#include <windows.h>

#include <oleauto.h>

#include <cstdint>
#include <string>
#include <string_view>
#include <utility>

#include "vb/Value.h"
#include "vb/VbError.h"

namespace tovrand::com {

// An owned interface pointer (AddRef on copy, Release on destruction).
template <class T>
class ComRef {
 public:
  ComRef() = default;
  ComRef(std::nullptr_t) {}
  // Takes over a reference the caller already holds.
  static ComRef adopt(T* p) {
    ComRef r;
    r.p_ = p;
    return r;
  }
  // Adds a reference of its own.
  static ComRef share(T* p) {
    if (p) p->AddRef();
    return adopt(p);
  }
  ComRef(const ComRef& o) : p_(o.p_) {
    if (p_) p_->AddRef();
  }
  ComRef(ComRef&& o) noexcept : p_(std::exchange(o.p_, nullptr)) {}
  ComRef& operator=(ComRef o) noexcept {
    std::swap(p_, o.p_);
    return *this;
  }
  ~ComRef() {
    if (p_) p_->Release();
  }
  T* get() const { return p_; }
  T* operator->() const { return p_; }
  explicit operator bool() const { return p_ != nullptr; }
  // For out parameters: releases what is held first.
  T** put() {
    *this = nullptr;
    return &p_;
  }
  T* detach() { return std::exchange(p_, nullptr); }

 private:
  T* p_ = nullptr;
};

// An owned BSTR.
class Bstr {
 public:
  Bstr() = default;
  explicit Bstr(std::wstring_view text)
      : b_(SysAllocStringLen(text.data(), static_cast<UINT>(text.size()))) {}
  static Bstr fromUtf8(std::string_view utf8);
  Bstr(const Bstr&) = delete;
  Bstr& operator=(const Bstr&) = delete;
  Bstr(Bstr&& o) noexcept : b_(std::exchange(o.b_, nullptr)) {}
  Bstr& operator=(Bstr&& o) noexcept {
    std::swap(b_, o.b_);
    return *this;
  }
  ~Bstr() { SysFreeString(b_); }
  BSTR get() const { return b_; }
  BSTR detach() { return std::exchange(b_, nullptr); }

 private:
  BSTR b_ = nullptr;
};

// An owned VARIANT, cleared on destruction.
class Variant {
 public:
  Variant() { VariantInit(&v_); }
  Variant(const Variant&) = delete;
  Variant& operator=(const Variant&) = delete;
  ~Variant() { VariantClear(&v_); }
  VARIANT* get() { return &v_; }
  const VARIANT* get() const { return &v_; }
  VARIANT* operator->() { return &v_; }

 private:
  VARIANT v_;
};

std::wstring toWide(std::string_view utf8);
std::string fromWide(const wchar_t* text, std::size_t length);
std::string fromBstr(BSTR text);
std::wstring guidText(const GUID& guid);
// "{...}" as a GUID; E_INVALIDARG as a VbError when it is not one.
GUID guidOf(std::string_view text);

// The VARIANT an argument stands for, through VT_BYREF|VT_VARIANT (VBScript's and VB's Variants).
const VARIANT& referenced(const VARIANT& v);

// The value a VARIANT holds (through VT_BYREF), as a Variant of the core. Arrays and objects are not
// values: 13 "Type mismatch".
Value valueOf(const VARIANT& v);
// A Value as a fresh VARIANT.
void toVariant(const Value& value, VARIANT* out);

// A VB error number as the HRESULT a COM caller sees: HRESULTs as they are, VB's own numbers in
// FACILITY_CONTROL as the VB run time reports them.
HRESULT hresultOf(std::int32_t vbNumber);
// An HRESULT (with the error object the callee set, when there is one) as a VbError.
VbError errorOf(HRESULT hr, const EXCEPINFO* info = nullptr);
// Sets the thread's error object (IErrorInfo) and returns hr.
HRESULT reportError(HRESULT hr, std::string_view description, const GUID& iid = GUID_NULL,
                    std::string_view source = "Tovrand");
// Fills an EXCEPINFO for DISP_E_EXCEPTION.
void fillExcepInfo(EXCEPINFO* info, HRESULT hr, std::string_view description, std::string_view source);

// Calls a member of a caller's object by name (GetIDsOfNames, then Invoke); raises a VbError.
DISPID dispidOf(IDispatch* object, std::string_view name);
void invokeByDispid(IDispatch* object, DISPID dispid, WORD flags, VARIANTARG* args, UINT count,
                    VARIANT* result);
void invokeByName(IDispatch* object, std::string_view name, WORD flags, VARIANTARG* args, UINT count,
                  VARIANT* result);

// An environment variable of the process as UTF-8; "" when it is not set.
std::string environmentVariable(const wchar_t* name);

}  // namespace tovrand::com
