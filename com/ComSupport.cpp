#include "com/ComSupport.h"

#include <cmath>

#include "vb/Text.h"

namespace tovrand::com {

std::wstring toWide(std::string_view utf8) {
  std::u16string u = toUtf16(utf8);
  return std::wstring(u.begin(), u.end());
}

std::string fromWide(const wchar_t* text, std::size_t length) {
  if (!text) return {};
  return toUtf8(std::u16string_view(reinterpret_cast<const char16_t*>(text), length));
}

std::string fromBstr(BSTR text) {
  return text ? fromWide(text, SysStringLen(text)) : std::string();
}

Bstr Bstr::fromUtf8(std::string_view utf8) {
  return Bstr(toWide(utf8));
}

std::wstring guidText(const GUID& guid) {
  wchar_t buffer[40] = {};
  StringFromGUID2(guid, buffer, 40);
  return buffer;
}

GUID guidOf(std::string_view text) {
  GUID guid{};
  std::wstring wide = toWide(text);
  if (FAILED(CLSIDFromString(wide.c_str(), &guid)))
    throw VbError(E_INVALIDARG, "not a GUID: " + std::string(text));
  return guid;
}

const VARIANT& referenced(const VARIANT& v) {
  if (v.vt == (VT_BYREF | VT_VARIANT) && v.pvarVal) return referenced(*v.pvarVal);
  return v;
}

Value valueOf(const VARIANT& in) {
  const VARIANT& v = referenced(in);
  const bool ref = (v.vt & VT_BYREF) != 0;
  switch (v.vt & ~VT_BYREF) {
    case VT_EMPTY:
      return Value();
    case VT_NULL:
      return Value::null();
    case VT_I2:
      return Value(static_cast<std::int16_t>(ref ? *v.piVal : v.iVal));
    case VT_I4:
      return Value(static_cast<std::int32_t>(ref ? *v.plVal : v.lVal));
    case VT_R8:
      return Value(ref ? *v.pdblVal : v.dblVal);
    case VT_BSTR:
      return Value(fromBstr(ref ? *v.pbstrVal : v.bstrVal));
    case VT_DATE:
      return Value(VbDate{ref ? *v.pdate : v.date});
    case VT_BOOL:
      return Value((ref ? *v.pboolVal : v.boolVal) != VARIANT_FALSE);
    default:
      break;
  }
  // Other numeric types (Byte, Single, Currency, Decimal, 64-bit) read as Double.
  VARIANT copy;
  VariantInit(&copy);
  HRESULT hr = VariantChangeType(&copy, const_cast<VARIANT*>(&v), 0, VT_R8);
  if (FAILED(hr)) throw VbError::of(vberr::kTypeMismatch);
  double d = copy.dblVal;
  VariantClear(&copy);
  return Value(d);
}

void toVariant(const Value& value, VARIANT* out) {
  VariantInit(out);
  switch (value.type()) {
    case Value::Type::Empty:
      break;
    case Value::Type::Null:
      out->vt = VT_NULL;
      break;
    case Value::Type::Integer:
      out->vt = VT_I2;
      out->iVal = value.integer();
      break;
    case Value::Type::Long:
      out->vt = VT_I4;
      out->lVal = value.longValue();
      break;
    case Value::Type::Double:
      out->vt = VT_R8;
      out->dblVal = value.dbl();
      break;
    case Value::Type::String:
      out->vt = VT_BSTR;
      out->bstrVal = Bstr::fromUtf8(value.str()).detach();
      break;
    case Value::Type::Date:
      out->vt = VT_DATE;
      out->date = value.date().serial;
      break;
    case Value::Type::Boolean:
      out->vt = VT_BOOL;
      out->boolVal = value.boolean() ? VARIANT_TRUE : VARIANT_FALSE;
      break;
  }
}

HRESULT hresultOf(std::int32_t vbNumber) {
  if (vbNumber < 0) return static_cast<HRESULT>(vbNumber);
  if (vbNumber == 0) return E_FAIL;
  return MAKE_HRESULT(SEVERITY_ERROR, FACILITY_CONTROL, vbNumber & 0xFFFF);
}

VbError errorOf(HRESULT hr, const EXCEPINFO* info) {
  std::int32_t number = static_cast<std::int32_t>(hr);
  std::string description;
  if (info) {
    if (info->pfnDeferredFillIn) info->pfnDeferredFillIn(const_cast<EXCEPINFO*>(info));
    if (info->scode)
      number = static_cast<std::int32_t>(info->scode);
    else if (info->wCode)
      number = info->wCode;
    description = fromBstr(info->bstrDescription);
  } else {
    ComRef<IErrorInfo> error;
    if (GetErrorInfo(0, error.put()) == S_OK && error) {
      BSTR text = nullptr;
      if (SUCCEEDED(error->GetDescription(&text))) description = fromBstr(text);
      SysFreeString(text);
    }
  }
  // VB's own errors travel as FACILITY_CONTROL HRESULTs; the caller sees the plain number again.
  if (HRESULT_FACILITY(number) == FACILITY_CONTROL && (number & 0x80000000)) number &= 0xFFFF;
  if (description.empty()) {
    wchar_t* text = nullptr;
    DWORD n = FormatMessageW(
        FORMAT_MESSAGE_ALLOCATE_BUFFER | FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS, nullptr,
        static_cast<DWORD>(hr), 0, reinterpret_cast<wchar_t*>(&text), 0, nullptr);
    if (n && text) {
      description = fromWide(text, n);
      while (!description.empty() && (description.back() == '\n' || description.back() == '\r'))
        description.pop_back();
    }
    LocalFree(text);
  }
  if (description.empty()) {
    char buffer[32];
    snprintf(buffer, sizeof buffer, "error 0x%08lX", static_cast<unsigned long>(hr));
    description = buffer;
  }
  return VbError(number, description);
}

HRESULT reportError(HRESULT hr, std::string_view description, const GUID& iid, std::string_view source) {
  ComRef<ICreateErrorInfo> create;
  if (SUCCEEDED(CreateErrorInfo(create.put()))) {
    Bstr text = Bstr::fromUtf8(description);
    Bstr src = Bstr::fromUtf8(source);
    create->SetDescription(text.get());
    create->SetSource(src.get());
    create->SetGUID(iid);
    ComRef<IErrorInfo> info;
    if (SUCCEEDED(create->QueryInterface(IID_IErrorInfo, reinterpret_cast<void**>(info.put()))))
      SetErrorInfo(0, info.get());
  }
  return hr;
}

void fillExcepInfo(EXCEPINFO* info, HRESULT hr, std::string_view description, std::string_view source) {
  if (!info) return;
  *info = EXCEPINFO{};
  info->scode = hr;
  info->bstrDescription = Bstr::fromUtf8(description).detach();
  info->bstrSource = Bstr::fromUtf8(source).detach();
}

DISPID dispidOf(IDispatch* object, std::string_view name) {
  if (!object) throw VbError::of(vberr::kObjectNotSet);
  std::wstring wide = toWide(name);
  LPOLESTR names[] = {wide.data()};
  DISPID id = DISPID_UNKNOWN;
  HRESULT hr = object->GetIDsOfNames(IID_NULL, names, 1, LOCALE_USER_DEFAULT, &id);
  if (FAILED(hr)) throw VbError(438, "Object doesn't support this property or method");
  return id;
}

void invokeByDispid(IDispatch* object, DISPID dispid, WORD flags, VARIANTARG* args, UINT count,
                    VARIANT* result) {
  if (!object) throw VbError::of(vberr::kObjectNotSet);
  DISPID putId = DISPID_PROPERTYPUT;
  DISPPARAMS params{args, nullptr, count, 0};
  if (flags & (DISPATCH_PROPERTYPUT | DISPATCH_PROPERTYPUTREF)) {
    params.rgdispidNamedArgs = &putId;
    params.cNamedArgs = 1;
  }
  EXCEPINFO info{};
  UINT argErr = 0;
  HRESULT hr = object->Invoke(dispid, IID_NULL, LOCALE_USER_DEFAULT, flags, &params, result, &info, &argErr);
  if (hr == DISP_E_EXCEPTION) {
    VbError error = errorOf(hr, &info);
    SysFreeString(info.bstrDescription);
    SysFreeString(info.bstrSource);
    SysFreeString(info.bstrHelpFile);
    throw error;
  }
  if (FAILED(hr)) throw errorOf(hr);
}

void invokeByName(IDispatch* object, std::string_view name, WORD flags, VARIANTARG* args, UINT count,
                  VARIANT* result) {
  invokeByDispid(object, dispidOf(object, name), flags, args, count, result);
}

std::string environmentVariable(const wchar_t* name) {
  DWORD n = GetEnvironmentVariableW(name, nullptr, 0);
  if (n == 0) return {};
  std::wstring value(n, L'\0');
  n = GetEnvironmentVariableW(name, value.data(), n);
  return fromWide(value.data(), n);
}

}  // namespace tovrand::com
