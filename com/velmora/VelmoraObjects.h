#pragma once

#include <windows.h>

#include <oaidl.h>

#include <atomic>

#include "com/ComSupport.h"
#include "entities/Entity.h"

namespace tovrand::velmora {

using com::ComRef;

// IUnknown, IDispatch (answered from the module's type library through the object's own vtable:
// DispGetIDsOfNames and DispInvoke) and ISupportErrorInfo for an object with a dual interface.
template <class Iface>
class DualObject : public Iface, public ISupportErrorInfo {
 public:
  explicit DualObject(const IID& iid) : iid_(iid), typeInfo_(com::moduleTypeInfo(iid)) {
    com::Module::objectCreated();
  }
  virtual ~DualObject() { com::Module::objectDestroyed(); }
  DualObject(const DualObject&) = delete;
  DualObject& operator=(const DualObject&) = delete;

  HRESULT STDMETHODCALLTYPE QueryInterface(REFIID riid, void** out) override {
    if (!out) return E_POINTER;
    *out = nullptr;
    if (riid == IID_IUnknown || riid == IID_IDispatch || riid == iid_)
      *out = static_cast<Iface*>(this);
    else if (riid == IID_ISupportErrorInfo)
      *out = static_cast<ISupportErrorInfo*>(this);
    else
      return E_NOINTERFACE;
    AddRef();
    return S_OK;
  }
  ULONG STDMETHODCALLTYPE AddRef() override { return ++refs_; }
  ULONG STDMETHODCALLTYPE Release() override {
    ULONG n = --refs_;
    // A COM object ends its own life on the last Release.
    if (n == 0) delete this;
    return n;
  }
  HRESULT STDMETHODCALLTYPE GetTypeInfoCount(UINT* count) override {
    if (!count) return E_POINTER;
    *count = typeInfo_ ? 1 : 0;
    return S_OK;
  }
  HRESULT STDMETHODCALLTYPE GetTypeInfo(UINT index, LCID, ITypeInfo** out) override {
    if (!out) return E_POINTER;
    *out = nullptr;
    if (index != 0 || !typeInfo_) return DISP_E_BADINDEX;
    *out = typeInfo_.get();
    (*out)->AddRef();
    return S_OK;
  }
  HRESULT STDMETHODCALLTYPE GetIDsOfNames(REFIID, LPOLESTR* names, UINT count, LCID, DISPID* ids) override {
    if (!typeInfo_) return E_UNEXPECTED;
    return DispGetIDsOfNames(typeInfo_.get(), names, count, ids);
  }
  HRESULT STDMETHODCALLTYPE Invoke(DISPID dispid, REFIID riid, LCID, WORD flags, DISPPARAMS* params,
                                   VARIANT* result, EXCEPINFO* excep, UINT* argErr) override {
    if (riid != IID_NULL) return DISP_E_UNKNOWNINTERFACE;
    if (!typeInfo_) return E_UNEXPECTED;
    return DispInvoke(static_cast<Iface*>(this), typeInfo_.get(), dispid, flags, params, result, excep,
                      argErr);
  }
  HRESULT STDMETHODCALLTYPE InterfaceSupportsErrorInfo(REFIID riid) override {
    return riid == iid_ ? S_OK : S_FALSE;
  }

 protected:
  const IID& iid() const { return iid_; }

 private:
  std::atomic<ULONG> refs_{1};
  IID iid_;
  ComRef<ITypeInfo> typeInfo_;
};

// Object creation for the class factories; each answers the requested interface.
HRESULT createEntity(const EntityClass& cls, REFIID riid, void** out);
HRESULT createDbConnection(REFIID riid, void** out);
HRESULT createCollection(REFIID riid, void** out);

}  // namespace tovrand::velmora
