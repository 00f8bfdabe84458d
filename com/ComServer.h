#pragma once

// The in-process server both DLLs are built on: the module's object and lock counts, the base of
// their COM objects (IUnknown, and for a dual interface IDispatch and ISupportErrorInfo), the class
// factory, the registry entries, and the classes a module serves through the exports of
// ServerExports.cpp.

#include <windows.h>

#include <oaidl.h>

#include <atomic>
#include <functional>
#include <memory>
#include <span>
#include <string_view>
#include <utility>

#include "com/ComSupport.h"

namespace tovrand::com {

// The module these sources are linked into: its handle, path, object and lock counts.
struct Module {
  static HINSTANCE handle();
  static void setHandle(HINSTANCE instance);
  static std::wstring path();
  static void objectCreated();
  static void objectDestroyed();
  static void lock(bool on);
  static bool canUnload();
};

// One live object of the module for as long as it exists, so that DllCanUnloadNow keeps the DLL.
class ObjectCount {
 public:
  ObjectCount() { Module::objectCreated(); }
  ~ObjectCount() { Module::objectDestroyed(); }
  ObjectCount(const ObjectCount&) = delete;
  ObjectCount& operator=(const ObjectCount&) = delete;
};

// The module's embedded type library (resource 1 TYPELIB), loaded once.
ITypeLib* moduleTypeLib();
ComRef<ITypeInfo> moduleTypeInfo(const GUID& guid);

// IUnknown of an object implementing Ifaces: the reference count, and QueryInterface answering the
// pointer `interfaceFor` gives.
template <class... Ifaces>
class ComObject : public Ifaces... {
 public:
  ComObject() = default;
  virtual ~ComObject() = default;
  ComObject(const ComObject&) = delete;
  ComObject& operator=(const ComObject&) = delete;

  HRESULT STDMETHODCALLTYPE QueryInterface(REFIID riid, void** out) override {
    if (!out) return E_POINTER;
    *out = interfaceFor(riid);
    if (!*out) return E_NOINTERFACE;
    AddRef();
    return S_OK;
  }
  ULONG STDMETHODCALLTYPE AddRef() override { return ++refs_; }
  ULONG STDMETHODCALLTYPE Release() override {
    ULONG n = --refs_;
    // A COM object ends its own life on the last Release: no owner outlives its callers' references
    // (for one of the four classes this closes the connection holder).
    if (n == 0) delete this;
    return n;
  }

 protected:
  // The pointer of the interface `riid` names, or null when the object does not implement it.
  virtual void* interfaceFor(REFIID riid) = 0;

 private:
  std::atomic<ULONG> refs_{1};
  ObjectCount count_;
};

// Whether `riid` names the dual interface `iid` or one it derives from.
inline bool isDualInterface(REFIID riid, const IID& iid) {
  return riid == IID_IUnknown || riid == IID_IDispatch || riid == iid;
}

// IDispatch answered from the interface's type information (null when the module has none); `object`
// is the interface pointer DispInvoke calls through.
HRESULT typeInfoCount(ITypeInfo* info, UINT* count);
HRESULT typeInfoAt(ITypeInfo* info, UINT index, ITypeInfo** out);
HRESULT idsOfNames(ITypeInfo* info, LPOLESTR* names, UINT count, DISPID* ids);
HRESULT invokeThrough(void* object, ITypeInfo* info, DISPID dispid, REFIID riid, WORD flags,
                      DISPPARAMS* params, VARIANT* result, EXCEPINFO* excep, UINT* argErr);

// An object with the dual interface Iface (and the further interfaces Extra): IDispatch answered from
// the module's type library through the object's own vtable, ISupportErrorInfo for Iface. An object
// whose late-bound calls go elsewhere overrides GetIDsOfNames and Invoke.
template <class Iface, class... Extra>
class DualObject : public ComObject<Iface, ISupportErrorInfo, Extra...> {
 public:
  explicit DualObject(const IID& iid) : iid_(iid), typeInfo_(moduleTypeInfo(iid)) {}

  HRESULT STDMETHODCALLTYPE GetTypeInfoCount(UINT* count) override {
    return typeInfoCount(typeInfo_.get(), count);
  }
  HRESULT STDMETHODCALLTYPE GetTypeInfo(UINT index, LCID, ITypeInfo** out) override {
    return typeInfoAt(typeInfo_.get(), index, out);
  }
  HRESULT STDMETHODCALLTYPE GetIDsOfNames(REFIID, LPOLESTR* names, UINT count, LCID, DISPID* ids) override {
    return idsOfNames(typeInfo_.get(), names, count, ids);
  }
  HRESULT STDMETHODCALLTYPE Invoke(DISPID dispid, REFIID riid, LCID, WORD flags, DISPPARAMS* params,
                                   VARIANT* result, EXCEPINFO* excep, UINT* argErr) override {
    return invokeThrough(static_cast<Iface*>(this), typeInfo_.get(), dispid, riid, flags, params, result,
                         excep, argErr);
  }
  HRESULT STDMETHODCALLTYPE InterfaceSupportsErrorInfo(REFIID riid) override {
    return riid == iid_ ? S_OK : S_FALSE;
  }

 protected:
  const IID& iid() const { return iid_; }

  void* interfaceFor(REFIID riid) override {
    if (isDualInterface(riid, iid_)) return static_cast<Iface*>(this);
    if (riid == IID_ISupportErrorInfo) return static_cast<ISupportErrorInfo*>(this);
    return nullptr;
  }

 private:
  IID iid_;
  ComRef<ITypeInfo> typeInfo_;
};

// A new object handed to a caller as the interface `riid`: the object's own reference from its
// construction is dropped once QueryInterface has added the caller's, so a failed query ends it.
template <class T, class... Args>
HRESULT createInstance(REFIID riid, void** out, Args&&... args) {
  auto object = std::make_unique<T>(std::forward<Args>(args)...);
  HRESULT hr = object->QueryInterface(riid, out);
  object.release()->Release();
  return hr;
}

// The class factory of one class: `create` makes the object and answers its interface.
class ClassFactory final : public ComObject<IClassFactory> {
 public:
  using Creator = std::function<HRESULT(REFIID, void**)>;
  explicit ClassFactory(Creator create) : create_(std::move(create)) {}

  HRESULT STDMETHODCALLTYPE CreateInstance(IUnknown* outer, REFIID riid, void** out) override;
  HRESULT STDMETHODCALLTYPE LockServer(BOOL lock) override;

 protected:
  void* interfaceFor(REFIID riid) override;

 private:
  Creator create_;
};

// One creatable class of a module: registered under its CLSID and ProgID (the ProgID also describes
// it), made by `create` for its class factory.
struct ServerClass {
  std::string_view clsid;
  std::string_view progId;
  ClassFactory::Creator create;
};

// The classes of the module being linked: each DLL defines it, the exports serve it.
std::span<const ServerClass> serverClasses();

// The registry entries of the classes (CLSID with InprocServer32, ThreadingModel, ProgID and VERSION;
// the ProgID with its CLSID) and of the type library; and their removal.
HRESULT registerServer(std::span<const ServerClass> classes);
HRESULT unregisterServer(std::span<const ServerClass> classes);

}  // namespace tovrand::com
