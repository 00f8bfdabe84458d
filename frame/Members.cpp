#include "frame/Members.h"

#include <stdexcept>
#include <string>

#include "frame/Invoke.h"
#include "vb/Text.h"

namespace tovrand {

const MemberInfo* ClassInfo::find(std::string_view member) const {
  for (const MemberInfo& m : members)
    if (equalsIgnoreCase(m.name, member)) return &m;
  return nullptr;
}

const MemberInfo* ClassInfo::findDispid(std::int32_t dispid) const {
  for (const MemberInfo& m : members)
    if (m.dispid == dispid) return &m;
  return nullptr;
}

bool ClassInfo::owns(const MemberInfo& member) const {
  for (const MemberInfo& m : members)
    if (&m == &member) return true;
  return false;
}

const MemberInfo& memberByInvoker(const ClassInfo& cls, Invoker invoker) {
  for (const MemberInfo& m : cls.members)
    if (m.invoke == invoker) return m;
  throw std::logic_error("a method of " + std::string(cls.name) + " without an entry in its member table");
}

}  // namespace tovrand
