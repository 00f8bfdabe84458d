#include "com/ComponentDispatch.h"

#include <cstring>
#include <vector>

#include "com/ComServer.h"
#include "com/DispatchCollection.h"
#include "com/DispatchEntityStore.h"
#include "entities/Entities.h"
#include "vb/Text.h"

namespace tovrand::com {

namespace {

// The VARIANT an argument really is: through VT_BYREF|VT_VARIANT (VBScript, VB's Variants).
VARIANT& target(VARIANT& v) {
  if (v.vt == (VT_BYREF | VT_VARIANT) && v.pvarVal) return target(*v.pvarVal);
  return v;
}

class TypeMismatch {};

// The object an argument holds; null for Nothing, Empty and Null.
ComRef<IDispatch> objectArgument(const VARIANT& v) {
  switch (v.vt) {
    case VT_EMPTY:
    case VT_NULL:
      return nullptr;
    case VT_DISPATCH:
      return ComRef<IDispatch>::share(v.pdispVal);
    case VT_BYREF | VT_DISPATCH:
      return ComRef<IDispatch>::share(v.ppdispVal ? *v.ppdispVal : nullptr);
    case VT_UNKNOWN:
    case VT_BYREF | VT_UNKNOWN: {
      IUnknown* unknown = v.vt == VT_UNKNOWN ? v.punkVal : (v.ppunkVal ? *v.ppunkVal : nullptr);
      if (!unknown) return nullptr;
      ComRef<IDispatch> object;
      if (FAILED(unknown->QueryInterface(IID_IDispatch, reinterpret_cast<void**>(object.put()))))
        throw TypeMismatch();
      return object;
    }
    default:
      throw TypeMismatch();
  }
}

std::vector<double> arrayArgument(const VARIANT& v) {
  if (v.vt == VT_EMPTY) return {};
  if (!(v.vt & VT_ARRAY)) throw TypeMismatch();
  SAFEARRAY* sa = (v.vt & VT_BYREF) ? (v.pparray ? *v.pparray : nullptr) : v.parray;
  if (!sa) return {};
  if (SafeArrayGetDim(sa) != 1) throw TypeMismatch();
  LONG lower = 0, upper = -1;
  SafeArrayGetLBound(sa, 1, &lower);
  SafeArrayGetUBound(sa, 1, &upper);
  std::vector<double> out;
  VARTYPE type = v.vt & VT_TYPEMASK;
  for (LONG i = lower; i <= upper; ++i) {
    if (type == VT_R8) {
      double d = 0;
      SafeArrayGetElement(sa, &i, &d);
      out.push_back(d);
    } else if (type == VT_VARIANT) {
      Variant element;
      SafeArrayGetElement(sa, &i, element.get());
      out.push_back(CDbl(valueOf(*element.get())));
    } else {
      throw TypeMismatch();
    }
  }
  return out;
}

const EntityClass& entityClassOf(const ParamInfo& p) {
  const EntityClass* cls = findEntityClass(p.entityClass);
  if (!cls) throw VbError(vberr::kTypeMismatch, "unknown entity class " + std::string(p.entityClass));
  return *cls;
}

Argument toArgument(const ParamInfo& p, VARIANT& in) {
  VARIANT& v = target(in);
  switch (p.kind) {
    case ParamKind::Entity:
      return entityOf(objectArgument(v).get(), entityClassOf(p));
    case ParamKind::Collection: {
      ComRef<IDispatch> object = objectArgument(v);
      if (!object) return std::shared_ptr<Collection>(std::make_shared<NothingCollection>());
      return std::shared_ptr<Collection>(
          std::make_shared<DispatchCollection>(std::move(object), entityClassOf(p)));
    }
    case ParamKind::Double:
      return Value(CDbl(valueOf(v)));
    case ParamKind::String:
      return Value(CStr(valueOf(v)));
    case ParamKind::Integer:
      return Value(CInt(valueOf(v)));
    case ParamKind::Date:
      return Value(CDate(valueOf(v)));
    case ParamKind::DoubleArray:
      return arrayArgument(v);
  }
  throw TypeMismatch();
}

SAFEARRAY* newArray(const std::vector<double>& values, bool ofVariants) {
  SAFEARRAY* sa =
      SafeArrayCreateVector(ofVariants ? VT_VARIANT : VT_R8, 0, static_cast<ULONG>(values.size()));
  if (!sa) throw VbError(E_OUTOFMEMORY, "Out of memory");
  for (LONG i = 0; i < static_cast<LONG>(values.size()); ++i) {
    if (ofVariants) {
      VARIANT element;
      element.vt = VT_R8;
      element.dblVal = values[static_cast<std::size_t>(i)];
      SafeArrayPutElement(sa, &i, &element);
    } else {
      double d = values[static_cast<std::size_t>(i)];
      SafeArrayPutElement(sa, &i, &d);
    }
  }
  return sa;
}

// Stores a value into the caller's by-reference VARIANT, in the type the caller's variable has.
void writeValue(VARIANT& in, const Value& value) {
  VARIANT& v = target(in);
  if (!(v.vt & VT_BYREF)) {
    // A Variant variable (reached through VT_BYREF|VT_VARIANT) takes the value in its own type.
    VariantClear(&v);
    toVariant(value, &v);
    return;
  }
  Variant converted;
  toVariant(value, converted.get());
  VARTYPE type = v.vt & ~VT_BYREF;
  if (FAILED(VariantChangeType(converted.get(), converted.get(), 0, type))) return;
  switch (type) {
    case VT_BSTR:
      SysFreeString(*v.pbstrVal);
      *v.pbstrVal = converted->bstrVal;
      converted->vt = VT_EMPTY;
      break;
    case VT_R8:
      *v.pdblVal = converted->dblVal;
      break;
    case VT_DATE:
      *v.pdate = converted->date;
      break;
    case VT_I2:
      *v.piVal = converted->iVal;
      break;
    case VT_I4:
      *v.plVal = converted->lVal;
      break;
    case VT_R4:
      *v.pfltVal = converted->fltVal;
      break;
    case VT_BOOL:
      *v.pboolVal = converted->boolVal;
      break;
    case VT_UI1:
      *v.pbVal = converted->bVal;
      break;
    case VT_CY:
      *v.pcyVal = converted->cyVal;
      break;
    default:
      break;
  }
}

void writeObject(VARIANT& in, ComRef<IDispatch> object) {
  VARIANT& v = target(in);
  if (v.vt == (VT_BYREF | VT_DISPATCH)) {
    if (*v.ppdispVal) (*v.ppdispVal)->Release();
    *v.ppdispVal = object.detach();
  } else if (!(v.vt & VT_BYREF)) {
    VariantClear(&v);
    v.vt = VT_DISPATCH;
    v.pdispVal = object.detach();
  }
}

void writeArray(VARIANT& in, const std::vector<double>& values) {
  VARIANT& v = target(in);
  if (v.vt == (VT_BYREF | VT_ARRAY | VT_R8) || v.vt == (VT_BYREF | VT_ARRAY | VT_VARIANT)) {
    SAFEARRAY* sa = newArray(values, (v.vt & VT_TYPEMASK) == VT_VARIANT);
    if (*v.pparray) SafeArrayDestroy(*v.pparray);
    *v.pparray = sa;
  } else if (!(v.vt & VT_BYREF)) {
    // A Variant variable: VBScript indexes only arrays of Variants.
    bool ofVariants = v.vt != (VT_ARRAY | VT_R8);
    SAFEARRAY* sa = newArray(values, ofVariants);
    VariantClear(&v);
    v.vt = VT_ARRAY | (ofVariants ? VT_VARIANT : VT_R8);
    v.parray = sa;
  }
}

bool isByRef(const VARIANT& v) {
  return (v.vt & VT_BYREF) != 0;
}

void writeBack(const ParamInfo& p, VARIANT& v, const Argument& before, const Argument& after) {
  if (!p.byRef || !isByRef(v)) return;
  switch (p.kind) {
    case ParamKind::Entity: {
      const Entity& e = std::get<Entity>(after);
      if (e.store() != std::get<Entity>(before).store()) writeObject(v, dispatchOf(e));
      break;
    }
    case ParamKind::Collection: {
      const auto& c = std::get<std::shared_ptr<Collection>>(after);
      if (c != std::get<std::shared_ptr<Collection>>(before)) {
        auto* d = dynamic_cast<DispatchCollection*>(c.get());
        writeObject(v, d ? ComRef<IDispatch>::share(d->object()) : nullptr);
      }
      break;
    }
    case ParamKind::DoubleArray: {
      const auto& a = std::get<std::vector<double>>(after);
      if (a != std::get<std::vector<double>>(before)) writeArray(v, a);
      break;
    }
    default: {
      const Value& value = std::get<Value>(after);
      if (!(value == std::get<Value>(before))) writeValue(v, value);
      break;
    }
  }
}

HRESULT argumentError(const VbError& e) {
  return e.number() == vberr::kOverflow ? DISP_E_OVERFLOW : DISP_E_TYPEMISMATCH;
}

}  // namespace

ComponentDispatch::ComponentDispatch(const ClassInfo& cls, std::unique_ptr<DispatchObject> object)
    : cls_(cls),
      object_(std::move(object)),
      iid_(guidOf(cls.iid)),
      clsid_(guidOf(cls.clsid)),
      typeInfo_(moduleTypeInfo(iid_)) {}

HRESULT ComponentDispatch::getIDsOfNames(LPOLESTR* names, UINT count, DISPID* ids) {
  if (!names || !ids || count == 0) return E_INVALIDARG;
  if (typeInfo_) return typeInfo_->GetIDsOfNames(names, count, ids);
  // Without the type library the member table answers alike.
  HRESULT hr = S_OK;
  const MemberInfo* member = cls_.find(fromWide(names[0], wcslen(names[0])));
  ids[0] = member ? member->dispid : DISPID_UNKNOWN;
  if (!member) hr = DISP_E_UNKNOWNNAME;
  for (UINT i = 1; i < count; ++i) {
    ids[i] = DISPID_UNKNOWN;
    if (!member) continue;
    std::string name = fromWide(names[i], wcslen(names[i]));
    for (std::size_t k = 0; k < member->params.size(); ++k)
      if (equalsIgnoreCase(member->params[k].name, name)) ids[i] = static_cast<DISPID>(k);
    if (ids[i] == DISPID_UNKNOWN) hr = DISP_E_UNKNOWNNAME;
  }
  return hr;
}

HRESULT ComponentDispatch::invoke(DISPID dispid, WORD flags, DISPPARAMS* params, VARIANT* result,
                                  EXCEPINFO* excep, UINT* argErr) {
  const MemberInfo* member = cls_.findDispid(dispid);
  if (!member || !(flags & (DISPATCH_METHOD | DISPATCH_PROPERTYGET))) return DISP_E_MEMBERNOTFOUND;
  static DISPPARAMS none{};
  if (!params) params = &none;
  const std::size_t n = member->params.size();
  if (params->cArgs != n) return DISP_E_BADPARAMCOUNT;
  std::vector<VARIANTARG*> ordered(n, nullptr);
  std::vector<UINT> index(n, 0);
  const UINT positional = params->cArgs - params->cNamedArgs;
  for (UINT i = 0; i < positional; ++i) {
    ordered[i] = &params->rgvarg[params->cArgs - 1 - i];
    index[i] = params->cArgs - 1 - i;
  }
  for (UINT j = 0; j < params->cNamedArgs; ++j) {
    DISPID k = params->rgdispidNamedArgs[j];
    if (k < 0 || static_cast<std::size_t>(k) >= n || ordered[static_cast<std::size_t>(k)])
      return DISP_E_PARAMNOTFOUND;
    ordered[static_cast<std::size_t>(k)] = &params->rgvarg[j];
    index[static_cast<std::size_t>(k)] = j;
  }
  return call(*member, ordered.data(), index.data(), result, excep, argErr);
}

HRESULT ComponentDispatch::call(const MemberInfo& member, VARIANTARG* const* args, const UINT* argIndex,
                                VARIANT* result, EXCEPINFO* excep, UINT* argErr) {
  const std::size_t n = member.params.size();
  std::vector<Argument> values;
  values.reserve(n);
  for (std::size_t i = 0; i < n; ++i) {
    try {
      values.push_back(toArgument(member.params[i], *args[i]));
    } catch (const VbError& e) {
      if (argErr) *argErr = argIndex[i];
      return argumentError(e);
    } catch (const TypeMismatch&) {
      if (argErr) *argErr = argIndex[i];
      return DISP_E_TYPEMISMATCH;
    }
  }
  const std::vector<Argument> before = values;
  Value answer;
  try {
    answer = object_->invoke(member, values);
    for (std::size_t i = 0; i < n; ++i) writeBack(member.params[i], *args[i], before[i], values[i]);
  } catch (...) {
    VbError e = toVbError(std::current_exception());
    fillExcepInfo(excep, hresultOf(e.number()), e.description(), "Tovrand." + std::string(cls_.name));
    return DISP_E_EXCEPTION;
  }
  if (result) {
    VariantInit(result);
    if (member.returns == ReturnKind::Status) {
      result->vt = VT_I2;
      result->iVal = answer.isEmpty() ? 0 : CInt(answer);
    } else {
      toVariant(answer, result);
    }
  }
  return S_OK;
}

}  // namespace tovrand::com
