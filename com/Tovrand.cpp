// Tovrand.dll: the four creatable classes as dual COM objects, with the early-bound methods of their
// interfaces.

#include <windows.h>

#include <oaidl.h>
#include <ocidl.h>

#include <array>
#include <memory>
#include <vector>

#include "Tovrand_h.h"
#include "com/ComHost.h"
#include "com/ComServer.h"
#include "com/ComponentDispatch.h"
#include "component/Component.h"
#include "frame/Invoke.h"
#include "pmrph/clsDataPMrph.h"
#include "pmrpi/clsDataPMrpi.h"
#include "porder/clsDataPOrder.h"
#include "porderchk/clsDataPOrderChk.h"

namespace tovrand::com {

namespace {

// The VARIANTARG for one argument of an early-bound call, pointing at the caller's own storage (every
// by-reference type keeps its pointer in the same place of the VARIANT).
template <class T>
VARIANTARG byRef(VARTYPE type, T* p) {
  VARIANTARG v{};
  v.vt = VT_BYREF | type;
  v.byref = p;
  return v;
}
VARIANTARG argOf(IDispatch** p) {
  return byRef(VT_DISPATCH, p);
}
VARIANTARG argOf(BSTR* p) {
  return byRef(VT_BSTR, p);
}
// DATE is a double: the member table tells a date from a double afterwards.
VARIANTARG argOf(double* p) {
  return byRef(VT_R8, p);
}
VARIANTARG argOf(short* p) {
  return byRef(VT_I2, p);
}
VARIANTARG argOf(SAFEARRAY** p) {
  return byRef(VT_ARRAY | VT_R8, p);
}
VARIANTARG argOf(BSTR p) {
  VARIANTARG v{};
  v.vt = VT_BSTR;
  v.bstrVal = p;
  return v;
}
VARIANTARG argOf(double p) {
  VARIANTARG v{};
  v.vt = VT_R8;
  v.dblVal = p;
  return v;
}

void storeResult(VARIANT& answer, short* out) {
  if (out) *out = answer.vt == VT_I2 ? answer.iVal : 0;
}
void storeResult(VARIANT& answer, VARIANT* out) {
  if (!out) return;
  *out = answer;
  VariantInit(&answer);
}

// One object of a class: the dual interface (IDispatch and the early-bound methods, both going
// through the same ComponentDispatch), ISupportErrorInfo and IProvideClassInfo.
template <class Iface>
class ComponentObject : public DualObject<Iface, IProvideClassInfo> {
 public:
  ComponentObject(const ClassInfo& cls, std::unique_ptr<DispatchObject> object)
      : DualObject<Iface, IProvideClassInfo>(guidOf(cls.iid)), dispatch_(cls, std::move(object)) {}

  HRESULT STDMETHODCALLTYPE GetIDsOfNames(REFIID, LPOLESTR* names, UINT count, LCID, DISPID* ids) override {
    return dispatch_.getIDsOfNames(names, count, ids);
  }
  HRESULT STDMETHODCALLTYPE Invoke(DISPID dispid, REFIID riid, LCID, WORD flags, DISPPARAMS* params,
                                   VARIANT* result, EXCEPINFO* excep, UINT* argErr) override {
    if (riid != IID_NULL) return DISP_E_UNKNOWNINTERFACE;
    return dispatch_.invoke(dispid, flags, params, result, excep, argErr);
  }

  HRESULT STDMETHODCALLTYPE GetClassInfo(ITypeInfo** out) override {
    if (!out) return E_POINTER;
    ComRef<ITypeInfo> info = moduleTypeInfo(dispatch_.clsid());
    *out = info.detach();
    return *out ? S_OK : TYPE_E_ELEMENTNOTFOUND;
  }

 protected:
  void* interfaceFor(REFIID riid) override {
    if (riid == IID_IProvideClassInfo) return static_cast<IProvideClassInfo*>(this);
    return DualObject<Iface, IProvideClassInfo>::interfaceFor(riid);
  }

  // An early-bound call: the arguments become by-reference VARIANTs over the caller's storage and
  // take the late-bound path; a failure comes back as the HRESULT with the error object set.
  template <auto Method, class R, class... A>
  HRESULT forward(R* result, A... args) {
    constexpr std::size_t n = sizeof...(A);
    static_assert(n == invoke_detail::MethodTraits<decltype(Method)>::arity,
                  "the interface method and the class's method differ in their parameters");
    const MemberInfo* member = &memberOf<Method>();
    std::array<VARIANTARG, n + 1> vars{argOf(args)..., VARIANTARG{}};
    std::array<VARIANTARG*, n + 1> ordered{};
    std::array<UINT, n + 1> index{};
    for (std::size_t i = 0; i < n; ++i) {
      if (member->params[i].kind == ParamKind::Date) vars[i].vt = (vars[i].vt & VT_BYREF) | VT_DATE;
      ordered[i] = &vars[i];
      index[i] = static_cast<UINT>(i);
    }
    Variant answer;
    EXCEPINFO excep{};
    UINT argErr = 0;
    HRESULT hr = dispatch_.call(*member, ordered.data(), index.data(), answer.get(), &excep, &argErr);
    if (hr == DISP_E_EXCEPTION) {
      hr = excep.scode;
      reportError(hr, fromBstr(excep.bstrDescription), dispatch_.iid(), fromBstr(excep.bstrSource));
      SysFreeString(excep.bstrDescription);
      SysFreeString(excep.bstrSource);
      SysFreeString(excep.bstrHelpFile);
      return hr;
    }
    if (FAILED(hr)) return hr;
    storeResult(*answer.get(), result);
    return S_OK;
  }

 private:
  ComponentDispatch dispatch_;
};

class POrderObject final : public ComponentObject<_clsDataPOrder> {
 public:
  using ComponentObject::ComponentObject;

  HRESULT STDMETHODCALLTYPE QueryByStrSql(IDispatch** colPOrder, BSTR* strSql, short* Result) override {
    return forward<&clsDataPOrder::QueryByStrSql>(Result, colPOrder, strSql);
  }
  HRESULT STDMETHODCALLTYPE GetALLChkList(IDispatch** collAllchklist, short* Result) override {
    return forward<&clsDataPOrder::GetALLChkList>(Result, collAllchklist);
  }
  HRESULT STDMETHODCALLTYPE QueryItem(IDispatch** Entity, short* Result) override {
    return forward<&clsDataPOrder::QueryItem>(Result, Entity);
  }
  HRESULT STDMETHODCALLTYPE CheckCustProdNo(IDispatch** Entity, BSTR* CustNo, double* ProNo,
                                            short* Result) override {
    return forward<&clsDataPOrder::CheckCustProdNo>(Result, Entity, CustNo, ProNo);
  }
  HRESULT STDMETHODCALLTYPE AddRecord(IDispatch** Entity, short* Result) override {
    return forward<&clsDataPOrder::AddRecord>(Result, Entity);
  }
  HRESULT STDMETHODCALLTYPE UpdateRecord(IDispatch** Entity, short* Result) override {
    return forward<&clsDataPOrder::UpdateRecord>(Result, Entity);
  }
  HRESULT STDMETHODCALLTYPE UpdateOrderOutNo(IDispatch** Entity, short* Result) override {
    return forward<&clsDataPOrder::UpdateOrderOutNo>(Result, Entity);
  }
  HRESULT STDMETHODCALLTYPE QueryAllProdNo(SAFEARRAY** dblProdNo, short* Result) override {
    return forward<&clsDataPOrder::QueryAllProdNo>(Result, dblProdNo);
  }
};

class POrderChkObject final : public ComponentObject<_clsDataPOrderChk> {
 public:
  using ComponentObject::ComponentObject;

  HRESULT STDMETHODCALLTYPE QueryBOrderiBkQty(IDispatch** Entity, short* Result) override {
    return forward<&clsDataPOrderChk::QueryBOrderiBkQty>(Result, Entity);
  }
  HRESULT STDMETHODCALLTYPE JudgeExits(BSTR* GoodsNo, short* Result) override {
    return forward<&clsDataPOrderChk::JudgeExits>(Result, GoodsNo);
  }
  HRESULT STDMETHODCALLTYPE UpdateRecord(IDispatch** Entity, BSTR* stypeName, short* Result) override {
    return forward<&clsDataPOrderChk::UpdateRecord>(Result, Entity, stypeName);
  }
  HRESULT STDMETHODCALLTYPE QueryAll(IDispatch** Entity, double* ProdNo, short* Result) override {
    return forward<&clsDataPOrderChk::QueryAll>(Result, Entity, ProdNo);
  }
  HRESULT STDMETHODCALLTYPE QueryProdNoView(IDispatch** Entity, short* Result) override {
    return forward<&clsDataPOrderChk::QueryProdNoView>(Result, Entity);
  }
  HRESULT STDMETHODCALLTYPE QueryMonthDate(IDispatch** objColl, short* Result) override {
    return forward<&clsDataPOrderChk::QueryMonthDate>(Result, objColl);
  }
  HRESULT STDMETHODCALLTYPE QueryProdNo(IDispatch** objColl, short* Result) override {
    return forward<&clsDataPOrderChk::QueryProdNo>(Result, objColl);
  }
  HRESULT STDMETHODCALLTYPE AddRecord(IDispatch** objColl, BSTR* OrderNo, BSTR* CustNo, BSTR* CorderNo,
                                      short* LenInt, short* Result) override {
    return forward<&clsDataPOrderChk::AddRecord>(Result, objColl, OrderNo, CustNo, CorderNo, LenInt);
  }
  HRESULT STDMETHODCALLTYPE QureyDatabase(BSTR* SQLStr, IDispatch** objColl, short* Result) override {
    return forward<&clsDataPOrderChk::QureyDatabase>(Result, SQLStr, objColl);
  }
  HRESULT STDMETHODCALLTYPE QuerySalerID(IDispatch** Entity, short* Result) override {
    return forward<&clsDataPOrderChk::QuerySalerID>(Result, Entity);
  }
};

class PMrphObject final : public ComponentObject<_clsDataPMrph> {
 public:
  using ComponentObject::ComponentObject;

  HRESULT STDMETHODCALLTYPE QueryBOrderhRecordset(IDispatch** Entity, double* ProdNo,
                                                  short* Result) override {
    return forward<&clsDataPMrph::QueryBOrderhRecordset>(Result, Entity, ProdNo);
  }
  HRESULT STDMETHODCALLTYPE QueryPMrphRecordset(IDispatch** objColl, BSTR* SQLStr, short* Result) override {
    return forward<&clsDataPMrph::QueryPMrphRecordset>(Result, objColl, SQLStr);
  }
  HRESULT STDMETHODCALLTYPE QueryPMrphStatus(IDispatch** Entity, short* Result) override {
    return forward<&clsDataPMrph::QueryPMrphStatus>(Result, Entity);
  }
  HRESULT STDMETHODCALLTYPE QueryByItemNo(IDispatch** objEntPMrph, short* Result) override {
    return forward<&clsDataPMrph::QueryByItemNo>(Result, objEntPMrph);
  }
  HRESULT STDMETHODCALLTYPE UpdateRecord(IDispatch** Entity, short* Result) override {
    return forward<&clsDataPMrph::UpdateRecord>(Result, Entity);
  }
  HRESULT STDMETHODCALLTYPE QueryByIDForPur(IDispatch** colPMrph, double* dblStart, double* dblEnd,
                                            short* intCnt, BSTR* strItemNo, short* Result) override {
    return forward<&clsDataPMrph::QueryByIDForPur>(Result, colPMrph, dblStart, dblEnd, intCnt, strItemNo);
  }
  HRESULT STDMETHODCALLTYPE QueryByDeliverDate(IDispatch** colPMrph, DATE* datStart, DATE* datEnd,
                                               short* intCnt, short* Result) override {
    return forward<&clsDataPMrph::QueryByDeliverDate>(Result, colPMrph, datStart, datEnd, intCnt);
  }
  HRESULT STDMETHODCALLTYPE QueryMonthDate(IDispatch** objColl, short* Result) override {
    return forward<&clsDataPMrph::QueryMonthDate>(Result, objColl);
  }
  HRESULT STDMETHODCALLTYPE QueryProdNo(IDispatch** objColl, short* Result) override {
    return forward<&clsDataPMrph::QueryProdNo>(Result, objColl);
  }
  HRESULT STDMETHODCALLTYPE QueryStatus(IDispatch** Entity, short* Result) override {
    return forward<&clsDataPMrph::QueryStatus>(Result, Entity);
  }
  HRESULT STDMETHODCALLTYPE QueryProdNoRecord(IDispatch** Entity, short* Result) override {
    return forward<&clsDataPMrph::QueryProdNoRecord>(Result, Entity);
  }
  HRESULT STDMETHODCALLTYPE AddRecord1(IDispatch** Entity, IDispatch** objCollD, short* Result) override {
    return forward<&clsDataPMrph::AddRecord1>(Result, Entity, objCollD);
  }
  HRESULT STDMETHODCALLTYPE AddRecord(IDispatch** Entity, short* Result) override {
    return forward<&clsDataPMrph::AddRecord>(Result, Entity);
  }
  HRESULT STDMETHODCALLTYPE AccountData(IDispatch** Entity, double* C1, double* A, double* P, double* M,
                                        double* K, double* S, double* SQ, double* AT, double* BN, double* ATi,
                                        short* Result) override {
    return forward<&clsDataPMrph::AccountData>(Result, Entity, C1, A, P, M, K, S, SQ, AT, BN, ATi);
  }
};

class PMrpiObject final : public ComponentObject<_clsDataPMrpi> {
 public:
  using ComponentObject::ComponentObject;

  HRESULT STDMETHODCALLTYPE QueryPMrpiStatus(IDispatch** objColl, double* ProdNo, short* Result) override {
    return forward<&clsDataPMrpi::QueryPMrpiStatus>(Result, objColl, ProdNo);
  }
  HRESULT STDMETHODCALLTYPE UpdatePMrpiStatus(IDispatch** Entity, short* Result) override {
    return forward<&clsDataPMrpi::UpdatePMrpiStatus>(Result, Entity);
  }
  HRESULT STDMETHODCALLTYPE UpdatePMrphStatus(IDispatch** Entity, short* Result) override {
    return forward<&clsDataPMrpi::UpdatePMrphStatus>(Result, Entity);
  }
  HRESULT STDMETHODCALLTYPE UpdateRecord(IDispatch** Entity, short* Result) override {
    return forward<&clsDataPMrpi::UpdateRecord>(Result, Entity);
  }
  HRESULT STDMETHODCALLTYPE QueryByID(IDispatch** objEntPMrpi, short* Result) override {
    return forward<&clsDataPMrpi::QueryByID>(Result, objEntPMrpi);
  }
  HRESULT STDMETHODCALLTYPE QueryByIDForPur(IDispatch** colPMrpi, double* dblStart, double* dblEnd,
                                            short* intCnt, BSTR* strItemNo, short* Result) override {
    return forward<&clsDataPMrpi::QueryByIDForPur>(Result, colPMrpi, dblStart, dblEnd, intCnt, strItemNo);
  }
  HRESULT STDMETHODCALLTYPE QueryByDeliverDate(IDispatch** colPMrpi, DATE* datStart, DATE* datEnd,
                                               short* intCnt, short* Result) override {
    return forward<&clsDataPMrpi::QueryByDeliverDate>(Result, colPMrpi, datStart, datEnd, intCnt);
  }
  HRESULT STDMETHODCALLTYPE GetRecordByCondition(IDispatch** entity1, IDispatch** entity2,
                                                 short* Result) override {
    return forward<&clsDataPMrpi::GetRecordByCondition>(Result, entity1, entity2);
  }
  HRESULT STDMETHODCALLTYPE GetItemNoByProdNo(IDispatch** objCollPMrpi, IDispatch** Entity,
                                              short* Result) override {
    return forward<&clsDataPMrpi::GetItemNoByProdNo>(Result, objCollPMrpi, Entity);
  }
  HRESULT STDMETHODCALLTYPE QueryItemNo(IDispatch** objColl, BSTR GoodsNo, BSTR StrStatus,
                                        short* Result) override {
    return forward<&clsDataPMrpi::QueryItemNo>(Result, objColl, GoodsNo, StrStatus);
  }
  HRESULT STDMETHODCALLTYPE QueryEItemNo(IDispatch** Entity, short* Result) override {
    return forward<&clsDataPMrpi::QueryEItemNo>(Result, Entity);
  }
  HRESULT STDMETHODCALLTYPE QueryItemNoRecord(IDispatch** objColl, BSTR* ItemNo, short* Result) override {
    return forward<&clsDataPMrpi::QueryItemNoRecord>(Result, objColl, ItemNo);
  }
  HRESULT STDMETHODCALLTYPE DeleteAllPMrpiRecord(double ProdNo, short* Result) override {
    return forward<&clsDataPMrpi::DeleteAllPMrpiRecord>(Result, ProdNo);
  }
  HRESULT STDMETHODCALLTYPE AddRecord(IDispatch** Entity, short* Result) override {
    return forward<&clsDataPMrpi::AddRecord>(Result, Entity);
  }
  HRESULT STDMETHODCALLTYPE getProdNoItemNo(IDispatch** objColl, BSTR* ProdNo, VARIANT* Result) override {
    return forward<&clsDataPMrpi::getProdNoItemNo>(Result, objColl, ProdNo);
  }
  HRESULT STDMETHODCALLTYPE getProdNoItemNoByPMrpi(IDispatch** objColl, BSTR* ProdNo,
                                                   VARIANT* Result) override {
    return forward<&clsDataPMrpi::getProdNoItemNoByPMrpi>(Result, objColl, ProdNo);
  }
  HRESULT STDMETHODCALLTYPE QueryAllNullRecord(IDispatch** objColl, short* Result) override {
    return forward<&clsDataPMrpi::QueryAllNullRecord>(Result, objColl);
  }
};

template <class T>
HRESULT createComponent(const ClassInfo& cls, REFIID riid, void** out) {
  std::unique_ptr<DispatchObject> core;
  try {
    core = createObject(cls, std::make_shared<ComHost>());
  } catch (...) {
    // Creation fails with the connection holder's error, raised to the creator as VB raises it.
    VbError e = toVbError(std::current_exception());
    return reportError(hresultOf(e.number()), e.description(), guidOf(cls.iid),
                       "Tovrand." + std::string(cls.name));
  }
  if (!core) return CLASS_E_CLASSNOTAVAILABLE;
  try {
    return createInstance<T>(riid, out, cls, std::move(core));
  } catch (const VbError& e) {
    return reportError(hresultOf(e.number()), e.description(), GUID_NULL);
  }
}

ClassFactory::Creator creatorOf(const ClassInfo& cls) {
  return [&cls](REFIID iid, void** object) -> HRESULT {
    if (&cls == &clsDataPOrder::Members()) return createComponent<POrderObject>(cls, iid, object);
    if (&cls == &clsDataPOrderChk::Members()) return createComponent<POrderChkObject>(cls, iid, object);
    if (&cls == &clsDataPMrph::Members()) return createComponent<PMrphObject>(cls, iid, object);
    return createComponent<PMrpiObject>(cls, iid, object);
  };
}

}  // namespace

// The four classes of the member table.
std::span<const ServerClass> serverClasses() {
  static const std::vector<ServerClass> classes = [] {
    std::vector<ServerClass> out;
    for (const ClassInfo& cls : componentClasses()) out.push_back({cls.clsid, cls.progId, creatorOf(cls)});
    return out;
  }();
  return classes;
}

}  // namespace tovrand::com
