#include "component/Component.h"

#include "pmrph/clsDataPMrph.h"
#include "pmrph/clsDataPMrphDispatch.h"
#include "pmrpi/clsDataPMrpi.h"
#include "pmrpi/clsDataPMrpiDispatch.h"
#include "porder/clsDataPOrder.h"
#include "porder/clsDataPOrderDispatch.h"
#include "porderchk/clsDataPOrderChk.h"
#include "porderchk/clsDataPOrderChkDispatch.h"

namespace tovrand {

std::unique_ptr<DispatchObject> createObject(const ClassInfo& cls, std::shared_ptr<Host> host) {
  if (cls.name == "clsDataPOrder") return makeDispatch(cls, std::make_unique<clsDataPOrder>(std::move(host)));
  if (cls.name == "clsDataPOrderChk")
    return makeDispatch(cls, std::make_unique<clsDataPOrderChk>(std::move(host)));
  if (cls.name == "clsDataPMrph") return makeDispatch(cls, std::make_unique<clsDataPMrph>(std::move(host)));
  if (cls.name == "clsDataPMrpi") return makeDispatch(cls, std::make_unique<clsDataPMrpi>(std::move(host)));
  return nullptr;
}

}  // namespace tovrand
