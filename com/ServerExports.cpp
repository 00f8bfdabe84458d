// DllMain and the four exports of an in-process server, compiled into each DLL: each serves the
// classes its own serverClasses() names.

#include <windows.h>

#include "com/ComServer.h"

using namespace tovrand::com;

extern "C" {

BOOL WINAPI DllMain(HINSTANCE instance, DWORD reason, LPVOID) {
  if (reason == DLL_PROCESS_ATTACH) {
    Module::setHandle(instance);
    DisableThreadLibraryCalls(instance);
  }
  return TRUE;
}

STDAPI DllGetClassObject(REFCLSID clsid, REFIID riid, LPVOID* out) {
  if (!out) return E_POINTER;
  *out = nullptr;
  try {
    for (const ServerClass& c : serverClasses())
      if (clsid == guidOf(c.clsid)) return createInstance<ClassFactory>(riid, out, c.create);
    return CLASS_E_CLASSNOTAVAILABLE;
  } catch (...) {
    return E_UNEXPECTED;
  }
}

STDAPI DllCanUnloadNow() {
  return Module::canUnload() ? S_OK : S_FALSE;
}

STDAPI DllRegisterServer() {
  return registerServer(serverClasses());
}

STDAPI DllUnregisterServer() {
  return unregisterServer(serverClasses());
}

}  // extern "C"
