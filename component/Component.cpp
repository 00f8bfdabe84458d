#include "component/Component.h"

#include <array>
#include <stdexcept>

#include "pmrph/clsDataPMrph.h"
#include "pmrpi/clsDataPMrpi.h"
#include "porder/clsDataPOrder.h"
#include "porderchk/clsDataPOrderChk.h"

namespace tovrand {

namespace {

const std::array<const ClassInfo*, 4>& registered() {
  static const std::array<const ClassInfo*, 4> classes{&clsDataPOrder::Members(),
                                                       &clsDataPOrderChk::Members(), &clsDataPMrph::Members(),
                                                       &clsDataPMrpi::Members()};
  return classes;
}

}  // namespace

ClassList componentClasses() {
  return ClassList(registered());
}

const ClassInfo* findComponentClass(std::string_view name) {
  for (const ClassInfo& c : componentClasses())
    if (c.name == name || c.progId == name) return &c;
  return nullptr;
}

const ClassInfo& componentClassOf(const MemberInfo& member) {
  for (const ClassInfo& c : componentClasses())
    if (c.owns(member)) return c;
  throw std::logic_error("a member outside the four classes' tables");
}

std::unique_ptr<DispatchObject> createObject(const ClassInfo& cls, std::shared_ptr<Host> host) {
  return cls.create(std::move(host));
}

}  // namespace tovrand
