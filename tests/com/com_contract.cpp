// The registered Tovrand component against its contract: ProgIDs, the registered type library 27.0,
// every interface's IID and members (name, order, DISPID, parameters) as the member table gives them,
// the coclasses, the class factory's answer for an unknown class, and DllCanUnloadNow.
//   com_contract.exe PATH-OF-Tovrand.dll

#include <windows.h>

#include <oaidl.h>
#include <ocidl.h>

#include <string>
#include <vector>

#include "ClientCheck.h"
#include "component/Component.h"
#include "frame/Members.h"

using namespace tovrand;
using client::utf8;
using client::wide;

namespace {

GUID guid(std::string_view text) {
  GUID g{};
  std::wstring w = wide(std::string(text));
  CLSIDFromString(w.c_str(), &g);
  return g;
}

std::string nameOf(ITypeInfo* info, MEMBERID id) {
  BSTR name = nullptr;
  if (FAILED(info->GetDocumentation(id, &name, nullptr, nullptr, nullptr))) return {};
  std::string out = utf8(name);
  SysFreeString(name);
  return out;
}

// An object reference: VT_DISPATCH, or a pointer to the IDispatch interface referenced by type.
bool isDispatch(ITypeInfo* owner, const TYPEDESC* d) {
  if (d->vt == VT_DISPATCH) return true;
  if (d->vt != VT_PTR || d->lptdesc->vt != VT_USERDEFINED) return false;
  ITypeInfo* ref = nullptr;
  if (FAILED(owner->GetRefTypeInfo(d->lptdesc->hreftype, &ref))) return false;
  bool yes = nameOf(ref, MEMBERID_NIL) == "IDispatch";
  ref->Release();
  return yes;
}

// The type a parameter of the kind must have in the type library.
bool typeMatches(ITypeInfo* owner, const TYPEDESC& t, const ParamInfo& p) {
  const TYPEDESC* d = &t;
  if (p.byRef || p.kind == ParamKind::DoubleArray) {
    if (d->vt != VT_PTR) return false;
    d = d->lptdesc;
  }
  switch (p.kind) {
    case ParamKind::Entity:
    case ParamKind::Collection:
      return isDispatch(owner, d);
    case ParamKind::Double:
      return d->vt == VT_R8;
    case ParamKind::String:
      return d->vt == VT_BSTR;
    case ParamKind::Integer:
      return d->vt == VT_I2;
    case ParamKind::Date:
      return d->vt == VT_DATE;
    case ParamKind::DoubleArray:
      return d->vt == VT_SAFEARRAY && d->lptdesc->vt == VT_R8;
  }
  return false;
}

void checkInterface(ITypeLib* lib, const ClassInfo& cls) {
  ITypeInfo* info = nullptr;
  CHECK_HR(lib->GetTypeInfoOfGuid(guid(cls.iid), &info), S_OK);
  if (!info) return;
  CHECK_EQ(nameOf(info, MEMBERID_NIL), std::string(cls.interfaceName));
  TYPEATTR* attr = nullptr;
  info->GetTypeAttr(&attr);
  // A dual interface: its vtable interface lies behind the dispatch one.
  ITypeInfo* vtable = info;
  vtable->AddRef();
  if (attr->typekind == TKIND_DISPATCH) {
    CHECK(attr->wTypeFlags & TYPEFLAG_FDUAL);
    HREFTYPE ref = 0;
    if (SUCCEEDED(info->GetRefTypeOfImplType(static_cast<UINT>(-1), &ref))) {
      vtable->Release();
      vtable = nullptr;
      info->GetRefTypeInfo(ref, &vtable);
    }
  }
  info->ReleaseTypeAttr(attr);
  if (!vtable) {
    client::fail(__FILE__, __LINE__, "no vtable interface for " + std::string(cls.interfaceName));
    info->Release();
    return;
  }
  TYPEATTR* vattr = nullptr;
  vtable->GetTypeAttr(&vattr);
  CHECK_EQ(vattr->typekind, TKIND_INTERFACE);
  CHECK(vattr->wTypeFlags & TYPEFLAG_FDUAL);
  CHECK_EQ(static_cast<std::size_t>(vattr->cFuncs), cls.members.size());
  CHECK(IsEqualGUID(vattr->guid, guid(cls.iid)));
  for (UINT i = 0; i < vattr->cFuncs && i < cls.members.size(); ++i) {
    const MemberInfo& m = cls.members[i];
    FUNCDESC* f = nullptr;
    if (FAILED(vtable->GetFuncDesc(i, &f))) {
      client::fail(__FILE__, __LINE__, "no function " + std::to_string(i));
      continue;
    }
    std::string where = std::string(cls.interfaceName) + "." + std::string(m.name);
    if (f->memid != m.dispid) client::fail(__FILE__, __LINE__, where + ": DISPID " + client::hex(f->memid));
    if (f->invkind != INVOKE_FUNC) client::fail(__FILE__, __LINE__, where + ": not a method");
    if (static_cast<std::size_t>(f->cParams) != m.params.size() + 1)
      client::fail(__FILE__, __LINE__, where + ": " + std::to_string(f->cParams) + " parameters");
    std::vector<BSTR> names(m.params.size() + 2, nullptr);
    UINT got = 0;
    vtable->GetNames(f->memid, names.data(), static_cast<UINT>(names.size()), &got);
    if (utf8(names[0]) != m.name) client::fail(__FILE__, __LINE__, where + ": named " + utf8(names[0]));
    for (std::size_t k = 0; k < m.params.size() && k < static_cast<std::size_t>(f->cParams); ++k) {
      const ParamInfo& p = m.params[k];
      if (k + 1 >= got || utf8(names[k + 1]) != p.name)
        client::fail(__FILE__, __LINE__,
                     where + ": parameter " + std::to_string(k) + " is not " + std::string(p.name));
      const ELEMDESC& e = f->lprgelemdescParam[k];
      if (!typeMatches(vtable, e.tdesc, p))
        client::fail(__FILE__, __LINE__, where + ": type of " + std::string(p.name));
      bool out = (e.paramdesc.wParamFlags & PARAMFLAG_FOUT) != 0;
      if (out != p.byRef)
        client::fail(__FILE__, __LINE__, where + ": by-reference flag of " + std::string(p.name));
    }
    for (BSTR b : names) SysFreeString(b);
    if (static_cast<std::size_t>(f->cParams) == m.params.size() + 1) {
      const ELEMDESC& r = f->lprgelemdescParam[m.params.size()];
      CHECK(r.paramdesc.wParamFlags & PARAMFLAG_FRETVAL);
      VARTYPE expected = m.returns == ReturnKind::Variant ? VT_VARIANT : VT_I2;
      if (!(r.tdesc.vt == VT_PTR && r.tdesc.lptdesc->vt == expected))
        client::fail(__FILE__, __LINE__, where + ": result type");
    }
    // The dispatch side binds the name to the same DISPID.
    std::wstring w = wide(std::string(m.name));
    LPOLESTR n[] = {w.data()};
    DISPID id = 0;
    CHECK_HR(info->GetIDsOfNames(n, 1, &id), S_OK);
    if (id != m.dispid)
      client::fail(__FILE__, __LINE__, where + ": GetIDsOfNames answered " + client::hex(id));
    vtable->ReleaseFuncDesc(f);
  }
  vtable->ReleaseTypeAttr(vattr);
  vtable->Release();
  info->Release();
}

void checkCoclass(ITypeLib* lib, const ClassInfo& cls) {
  ITypeInfo* info = nullptr;
  CHECK_HR(lib->GetTypeInfoOfGuid(guid(cls.clsid), &info), S_OK);
  if (!info) return;
  CHECK_EQ(nameOf(info, MEMBERID_NIL), std::string(cls.name));
  TYPEATTR* attr = nullptr;
  info->GetTypeAttr(&attr);
  CHECK_EQ(attr->typekind, TKIND_COCLASS);
  CHECK(attr->wTypeFlags & TYPEFLAG_FCANCREATE);
  CHECK_EQ(attr->cImplTypes, 1);
  info->ReleaseTypeAttr(attr);
  INT flags = 0;
  info->GetImplTypeFlags(0, &flags);
  CHECK(flags & IMPLTYPEFLAG_FDEFAULT);
  HREFTYPE ref = 0;
  ITypeInfo* iface = nullptr;
  if (SUCCEEDED(info->GetRefTypeOfImplType(0, &ref)) && SUCCEEDED(info->GetRefTypeInfo(ref, &iface))) {
    CHECK_EQ(nameOf(iface, MEMBERID_NIL), std::string(cls.interfaceName));
    iface->Release();
  } else {
    client::fail(__FILE__, __LINE__, "no default interface for " + std::string(cls.name));
  }
  info->Release();
}

}  // namespace

int main(int argc, char** argv) {
  if (argc < 2) {
    std::printf("usage: com_contract PATH-OF-Tovrand.dll\n");
    return 2;
  }
  CoInitialize(nullptr);
  std::printf("classes: %zu\n", componentClasses().size());
  CHECK_EQ(componentClasses().size(), std::size_t{4});

  // ProgID -> CLSID, CLSID -> ProgID
  for (const ClassInfo& cls : componentClasses()) {
    CLSID clsid{};
    std::wstring progId = wide(std::string(cls.progId));
    CHECK_HR(CLSIDFromProgID(progId.c_str(), &clsid), S_OK);
    if (!IsEqualGUID(clsid, guid(cls.clsid)))
      client::fail(__FILE__, __LINE__, "CLSID of " + std::string(cls.progId));
    LPOLESTR back = nullptr;
    CHECK_HR(ProgIDFromCLSID(guid(cls.clsid), &back), S_OK);
    CHECK_EQ(utf8(back), std::string(cls.progId));
    CoTaskMemFree(back);
  }

  // The registered type library, version 27.0, locale neutral.
  ITypeLib* lib = nullptr;
  CHECK_HR(LoadRegTypeLib(guid(kTypeLibraryId), kTypeLibraryMajor, kTypeLibraryMinor, 0, &lib), S_OK);
  if (lib) {
    TLIBATTR* attr = nullptr;
    lib->GetLibAttr(&attr);
    CHECK_EQ(attr->wMajorVerNum, 27);
    CHECK_EQ(attr->wMinorVerNum, 0);
    CHECK_EQ(attr->lcid, LCID{0});
    lib->ReleaseTLibAttr(attr);
    BSTR name = nullptr;
    lib->GetDocumentation(-1, &name, nullptr, nullptr, nullptr);
    CHECK_EQ(utf8(name), std::string("Tovrand"));
    SysFreeString(name);
    // Exactly the four interfaces and the four classes.
    CHECK_EQ(lib->GetTypeInfoCount(), 8u);
    for (const ClassInfo& cls : componentClasses()) {
      checkInterface(lib, cls);
      checkCoclass(lib, cls);
    }
    lib->Release();
  }

  // The DLL's own entry points.
  std::wstring path = wide(argv[1]);
  HMODULE dll = LoadLibraryW(path.c_str());
  CHECK(dll != nullptr);
  if (dll) {
    using GetClassObject = HRESULT(STDAPICALLTYPE*)(REFCLSID, REFIID, void**);
    using CanUnloadNow = HRESULT(STDAPICALLTYPE*)();
    auto getClassObject =
        reinterpret_cast<GetClassObject>(reinterpret_cast<void*>(GetProcAddress(dll, "DllGetClassObject")));
    auto canUnloadNow =
        reinterpret_cast<CanUnloadNow>(reinterpret_cast<void*>(GetProcAddress(dll, "DllCanUnloadNow")));
    CHECK(getClassObject && canUnloadNow);
    CHECK(GetProcAddress(dll, "DllRegisterServer") != nullptr);
    CHECK(GetProcAddress(dll, "DllUnregisterServer") != nullptr);
    if (getClassObject && canUnloadNow) {
      void* object = nullptr;
      GUID unknown = guid("{01234567-89AB-4CDE-8F01-23456789ABCD}");
      CHECK_HR(getClassObject(unknown, IID_IClassFactory, &object), CLASS_E_CLASSNOTAVAILABLE);
      CHECK(object == nullptr);
      CHECK_HR(canUnloadNow(), S_OK);

      // A factory and its lock keep the DLL loaded.
      IClassFactory* factory = nullptr;
      CHECK_HR(getClassObject(guid(componentClasses()[2].clsid), IID_IClassFactory,
                              reinterpret_cast<void**>(&factory)),
               S_OK);
      if (factory) {
        CHECK_HR(canUnloadNow(), S_FALSE);
        CHECK_HR(factory->LockServer(TRUE), S_OK);
        IClassFactory* again = factory;
        again->AddRef();
        factory->Release();
        CHECK_HR(canUnloadNow(), S_FALSE);
        CHECK_HR(again->LockServer(FALSE), S_OK);
        again->Release();
        CHECK_HR(canUnloadNow(), S_OK);
      }

      // A live object keeps it loaded; after its release the DLL may go.
      for (const ClassInfo& cls : componentClasses()) {
        IDispatch* live = nullptr;
        HRESULT hr = CoCreateInstance(guid(cls.clsid), nullptr, CLSCTX_INPROC_SERVER, IID_IDispatch,
                                      reinterpret_cast<void**>(&live));
        if (FAILED(hr) || !live) {
          client::fail(__FILE__, __LINE__,
                       "CoCreateInstance " + std::string(cls.progId) + " answered " + client::hex(hr));
          continue;
        }
        CHECK_HR(canUnloadNow(), S_FALSE);
        // The object's own IDispatch binds every member name to its DISPID and names its interface.
        for (const MemberInfo& m : cls.members) {
          std::wstring w = wide(std::string(m.name));
          LPOLESTR n[] = {w.data()};
          DISPID id = 0;
          CHECK_HR(live->GetIDsOfNames(IID_NULL, n, 1, 0, &id), S_OK);
          if (id != m.dispid)
            client::fail(__FILE__, __LINE__, std::string(m.name) + ": object's DISPID " + client::hex(id));
        }
        ITypeInfo* info = nullptr;
        CHECK_HR(live->GetTypeInfo(0, 0, &info), S_OK);
        if (info) {
          CHECK_EQ(nameOf(info, MEMBERID_NIL), std::string(cls.interfaceName));
          info->Release();
        }
        IUnknown* dual = nullptr;
        CHECK_HR(live->QueryInterface(guid(cls.iid), reinterpret_cast<void**>(&dual)), S_OK);
        if (dual) dual->Release();
        live->Release();
        CHECK_HR(canUnloadNow(), S_OK);
      }
    }
  }
  CoUninitialize();
  return client::finish("com_contract");
}
