#include "com/ComServer.h"

#include <string>

namespace tovrand::com {

namespace {

HINSTANCE gInstance = nullptr;
std::atomic<long> gObjects{0};
std::atomic<long> gLocks{0};

}  // namespace

HINSTANCE Module::handle() {
  return gInstance;
}
void Module::setHandle(HINSTANCE instance) {
  gInstance = instance;
}

std::wstring Module::path() {
  std::wstring buffer(MAX_PATH, L'\0');
  for (;;) {
    DWORD n = GetModuleFileNameW(gInstance, buffer.data(), static_cast<DWORD>(buffer.size()));
    if (n < buffer.size()) {
      buffer.resize(n);
      return buffer;
    }
    buffer.resize(buffer.size() * 2);
  }
}

void Module::objectCreated() {
  ++gObjects;
}
void Module::objectDestroyed() {
  --gObjects;
}
void Module::lock(bool on) {
  if (on)
    ++gLocks;
  else
    --gLocks;
}
bool Module::canUnload() {
  return gObjects == 0 && gLocks == 0;
}

ITypeLib* moduleTypeLib() {
  // Loaded once and kept for the life of the module: every object's IDispatch answers from it.
  static ITypeLib* lib = [] {
    ITypeLib* loaded = nullptr;
    if (FAILED(LoadTypeLibEx(Module::path().c_str(), REGKIND_NONE, &loaded))) loaded = nullptr;
    return loaded;
  }();
  return lib;
}

ComRef<ITypeInfo> moduleTypeInfo(const GUID& guid) {
  ComRef<ITypeInfo> info;
  if (ITypeLib* lib = moduleTypeLib()) lib->GetTypeInfoOfGuid(guid, info.put());
  return info;
}

HRESULT typeInfoCount(ITypeInfo* info, UINT* count) {
  if (!count) return E_POINTER;
  *count = info ? 1 : 0;
  return S_OK;
}

HRESULT typeInfoAt(ITypeInfo* info, UINT index, ITypeInfo** out) {
  if (!out) return E_POINTER;
  *out = nullptr;
  if (index != 0 || !info) return DISP_E_BADINDEX;
  info->AddRef();
  *out = info;
  return S_OK;
}

HRESULT idsOfNames(ITypeInfo* info, LPOLESTR* names, UINT count, DISPID* ids) {
  if (!info) return E_UNEXPECTED;
  return DispGetIDsOfNames(info, names, count, ids);
}

HRESULT invokeThrough(void* object, ITypeInfo* info, DISPID dispid, REFIID riid, WORD flags,
                      DISPPARAMS* params, VARIANT* result, EXCEPINFO* excep, UINT* argErr) {
  if (riid != IID_NULL) return DISP_E_UNKNOWNINTERFACE;
  if (!info) return E_UNEXPECTED;
  return DispInvoke(object, info, dispid, flags, params, result, excep, argErr);
}

HRESULT STDMETHODCALLTYPE ClassFactory::CreateInstance(IUnknown* outer, REFIID riid, void** out) {
  if (!out) return E_POINTER;
  *out = nullptr;
  if (outer) return CLASS_E_NOAGGREGATION;
  return create_(riid, out);
}

HRESULT STDMETHODCALLTYPE ClassFactory::LockServer(BOOL lock) {
  Module::lock(lock != FALSE);
  return S_OK;
}

void* ClassFactory::interfaceFor(REFIID riid) {
  if (riid == IID_IUnknown || riid == IID_IClassFactory) return static_cast<IClassFactory*>(this);
  return nullptr;
}

namespace {

LONG setKey(HKEY root, const std::wstring& path, const wchar_t* name, const std::wstring& value) {
  HKEY key = nullptr;
  LONG rc = RegCreateKeyExW(root, path.c_str(), 0, nullptr, 0, KEY_WRITE, nullptr, &key, nullptr);
  if (rc != ERROR_SUCCESS) return rc;
  rc = RegSetValueExW(key, name, 0, REG_SZ, reinterpret_cast<const BYTE*>(value.c_str()),
                      static_cast<DWORD>((value.size() + 1) * sizeof(wchar_t)));
  RegCloseKey(key);
  return rc;
}

void deleteTree(HKEY root, const std::wstring& path) {
  RegDeleteTreeW(root, path.c_str());
}

}  // namespace

HRESULT registerServer(std::span<const ServerClass> classes) {
  ITypeLib* lib = moduleTypeLib();
  if (!lib) return TYPE_E_CANTLOADLIBRARY;
  std::wstring path = Module::path();
  HRESULT hr = RegisterTypeLib(lib, path.data(), nullptr);
  if (FAILED(hr)) return hr;
  for (const ServerClass& c : classes) {
    std::wstring clsid = toWide(c.clsid);
    std::wstring progId = toWide(c.progId);
    std::wstring key = L"CLSID\\" + clsid;
    LONG rc = setKey(HKEY_CLASSES_ROOT, key, nullptr, progId);
    if (rc == ERROR_SUCCESS) rc = setKey(HKEY_CLASSES_ROOT, key + L"\\InprocServer32", nullptr, path);
    if (rc == ERROR_SUCCESS)
      rc = setKey(HKEY_CLASSES_ROOT, key + L"\\InprocServer32", L"ThreadingModel", L"Apartment");
    if (rc == ERROR_SUCCESS) rc = setKey(HKEY_CLASSES_ROOT, key + L"\\ProgID", nullptr, progId);
    if (rc == ERROR_SUCCESS) rc = setKey(HKEY_CLASSES_ROOT, key + L"\\VERSION", nullptr, L"27.0");
    if (rc == ERROR_SUCCESS) rc = setKey(HKEY_CLASSES_ROOT, progId, nullptr, progId);
    if (rc == ERROR_SUCCESS) rc = setKey(HKEY_CLASSES_ROOT, progId + L"\\CLSID", nullptr, clsid);
    if (rc != ERROR_SUCCESS) return HRESULT_FROM_WIN32(rc);
  }
  return S_OK;
}

HRESULT unregisterServer(std::span<const ServerClass> classes) {
  for (const ServerClass& c : classes) {
    deleteTree(HKEY_CLASSES_ROOT, L"CLSID\\" + toWide(c.clsid));
    deleteTree(HKEY_CLASSES_ROOT, toWide(c.progId));
  }
  if (ITypeLib* lib = moduleTypeLib()) {
    TLIBATTR* attr = nullptr;
    if (SUCCEEDED(lib->GetLibAttr(&attr))) {
      UnRegisterTypeLib(attr->guid, attr->wMajorVerNum, attr->wMinorVerNum, attr->lcid, attr->syskind);
      lib->ReleaseTLibAttr(attr);
    }
  }
  return S_OK;
}

}  // namespace tovrand::com
