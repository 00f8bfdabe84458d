#include "porder/clsDataPOrderDispatch.h"

#include "frame/Arguments.h"

namespace tovrand {

namespace {

class clsDataPOrderDispatch final : public DispatchObject {
 public:
  clsDataPOrderDispatch(const ClassInfo& cls, std::unique_ptr<clsDataPOrder> object)
      : cls_(cls), object_(std::move(object)) {}

  const ClassInfo& classInfo() const override { return cls_; }

  Value invoke(const MemberInfo& member, std::span<Argument> args) override {
    clsDataPOrder& o = *object_;
    if (member.name == "QueryByStrSql") {
      std::string strSql = stringArg(args[1]);
      std::int16_t result = o.QueryByStrSql(collectionArg(args[0]), strSql);
      args[1] = Value(strSql);
      return result;
    }
    if (member.name == "GetALLChkList") return o.GetALLChkList(collectionArg(args[0]));
    if (member.name == "QueryItem") {
      auto entity = entityArg<clsEntPOrder>(args[0]);
      return o.QueryItem(entity);
    }
    if (member.name == "CheckCustProdNo") {
      auto entity = entityArg<clsEntPOrder>(args[0]);
      return o.CheckCustProdNo(entity, stringArg(args[1]), doubleArg(args[2]));
    }
    if (member.name == "AddRecord") {
      auto entity = entityArg<clsEntPOrder>(args[0]);
      return o.AddRecord(entity);
    }
    if (member.name == "UpdateRecord") {
      auto entity = entityArg<clsEntPOrder>(args[0]);
      return o.UpdateRecord(entity);
    }
    if (member.name == "UpdateOrderOutNo") {
      auto entity = entityArg<clsEntPOrder>(args[0]);
      return o.UpdateOrderOutNo(entity);
    }
    if (member.name == "QueryAllProdNo") return o.QueryAllProdNo(doubleArrayArg(args[0]));
    throw NotImplemented();
  }

 private:
  const ClassInfo& cls_;
  std::unique_ptr<clsDataPOrder> object_;
};

}  // namespace

std::unique_ptr<DispatchObject> makeDispatch(const ClassInfo& cls, std::unique_ptr<clsDataPOrder> object) {
  return std::make_unique<clsDataPOrderDispatch>(cls, std::move(object));
}

}  // namespace tovrand
