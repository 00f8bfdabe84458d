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

namespace {

// A class whose members have no core methods yet: the object is created (and opens its
// connection) as every object is; every call answers NotImplemented.
template <class T>
class UnboundObject final : public DispatchObject {
 public:
  UnboundObject(const ClassInfo& cls, std::shared_ptr<Host> host) : cls_(cls), object_(std::move(host)) {}
  const ClassInfo& classInfo() const override { return cls_; }
  Value invoke(const MemberInfo&, std::span<Argument>) override { throw NotImplemented(); }

 private:
  const ClassInfo& cls_;
  T object_;
};

}  // namespace

std::unique_ptr<DispatchObject> createObject(const ClassInfo& cls, std::shared_ptr<Host> host) {
  if (cls.name == "clsDataPOrder") return makeDispatch(cls, std::make_unique<clsDataPOrder>(std::move(host)));
  if (cls.name == "clsDataPOrderChk")
    return makeDispatch(cls, std::make_unique<clsDataPOrderChk>(std::move(host)));
  if (cls.name == "clsDataPMrph") return makeDispatch(cls, std::make_unique<clsDataPMrph>(std::move(host)));
  if (cls.name == "clsDataPMrpi") return makeDispatch(cls, std::make_unique<clsDataPMrpi>(std::move(host)));
  return nullptr;
}

}  // namespace tovrand
