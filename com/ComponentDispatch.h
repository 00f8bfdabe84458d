#pragma once

#include <oaidl.h>

#include <memory>

#include "com/ComSupport.h"
#include "frame/Members.h"

namespace tovrand::com {

// The late-bound side of one object of the four classes: names and DISPIDs from the embedded type
// library, every call handed to the core object by the member table. Arguments are converted to the
// parameter kinds of the table; by-reference values are written back into the caller's VARIANTs, and
// entities and Collections stay the caller's own objects.
class ComponentDispatch {
 public:
  ComponentDispatch(const ClassInfo& cls, std::unique_ptr<DispatchObject> object);

  const ClassInfo& classInfo() const { return cls_; }
  const GUID& iid() const { return iid_; }
  const GUID& clsid() const { return clsid_; }

  HRESULT getIDsOfNames(LPOLESTR* names, UINT count, DISPID* ids);
  HRESULT invoke(DISPID dispid, WORD flags, DISPPARAMS* params, VARIANT* result, EXCEPINFO* excep,
                 UINT* argErr);
  // One call with the arguments in interface order (`args[i]` for parameter i). `argIndex` maps a
  // parameter to the index the caller knows it by (for puArgErr).
  HRESULT call(const MemberInfo& member, VARIANTARG* const* args, const UINT* argIndex, VARIANT* result,
               EXCEPINFO* excep, UINT* argErr);

 private:
  const ClassInfo& cls_;
  std::unique_ptr<DispatchObject> object_;
  GUID iid_;
  GUID clsid_;
  ComRef<ITypeInfo> typeInfo_;
};

}  // namespace tovrand::com
