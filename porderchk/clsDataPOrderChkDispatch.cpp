#include "porderchk/clsDataPOrderChkDispatch.h"

#include "frame/Arguments.h"

namespace tovrand {

namespace {

class clsDataPOrderChkDispatch final : public DispatchObject {
 public:
  clsDataPOrderChkDispatch(const ClassInfo& cls, std::unique_ptr<clsDataPOrderChk> object)
      : cls_(cls), object_(std::move(object)) {}

  const ClassInfo& classInfo() const override { return cls_; }

  Value invoke(const MemberInfo& member, std::span<Argument> args) override {
    clsDataPOrderChk& o = *object_;
    if (member.name == "QueryBOrderiBkQty") {
      auto entity = entityArg<clsEntBOrderi>(args[0]);
      return o.QueryBOrderiBkQty(entity);
    }
    if (member.name == "JudgeExits") return o.JudgeExits(stringArg(args[0]));
    if (member.name == "UpdateRecord") {
      auto entity = entityArg<clsEntPOrderChk>(args[0]);
      return o.UpdateRecord(entity, stringArg(args[1]));
    }
    if (member.name == "QueryAll") {
      auto entity = entityArg<clsEntPOrderChk>(args[0]);
      return o.QueryAll(entity, doubleArg(args[1]));
    }
    if (member.name == "QueryProdNoView") {
      auto entity = entityArg<clsEntPOrderChk>(args[0]);
      return o.QueryProdNoView(entity);
    }
    if (member.name == "QueryMonthDate") return o.QueryMonthDate(collectionArg(args[0]));
    if (member.name == "QueryProdNo") return o.QueryProdNo(collectionArg(args[0]));
    if (member.name == "AddRecord") {
      return o.AddRecord(collectionArg(args[0]), stringArg(args[1]), stringArg(args[2]), stringArg(args[3]),
                         integerArg(args[4]));
    }
    if (member.name == "QureyDatabase") return o.QureyDatabase(stringArg(args[0]), collectionArg(args[1]));
    if (member.name == "QuerySalerID") {
      auto entity = entityArg<clsEntBOrderh>(args[0]);
      return o.QuerySalerID(entity);
    }
    throw NotImplemented();
  }

 private:
  const ClassInfo& cls_;
  std::unique_ptr<clsDataPOrderChk> object_;
};

}  // namespace

std::unique_ptr<DispatchObject> makeDispatch(const ClassInfo& cls, std::unique_ptr<clsDataPOrderChk> object) {
  return std::make_unique<clsDataPOrderChkDispatch>(cls, std::move(object));
}

}  // namespace tovrand
