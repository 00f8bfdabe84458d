#include "pmrpi/clsDataPMrpiDispatch.h"

#include "frame/Arguments.h"

namespace tovrand {

namespace {

class clsDataPMrpiDispatch final : public DispatchObject {
 public:
  clsDataPMrpiDispatch(const ClassInfo& cls, std::unique_ptr<clsDataPMrpi> object)
      : cls_(cls), object_(std::move(object)) {}

  const ClassInfo& classInfo() const override { return cls_; }

  Value invoke(const MemberInfo& member, std::span<Argument> args) override {
    clsDataPMrpi& o = *object_;
    if (member.name == "QueryPMrpiStatus")
      return o.QueryPMrpiStatus(collectionArg(args[0]), doubleArg(args[1]));
    if (member.name == "UpdatePMrpiStatus") {
      auto entity = entityArg<clsEntPMrpi>(args[0]);
      return o.UpdatePMrpiStatus(entity);
    }
    if (member.name == "UpdatePMrphStatus") {
      auto entity = entityArg<clsEntPMrph>(args[0]);
      return o.UpdatePMrphStatus(entity);
    }
    if (member.name == "UpdateRecord") {
      auto entity = entityArg<clsEntPMrpi>(args[0]);
      return o.UpdateRecord(entity);
    }
    if (member.name == "QueryByID") {
      auto entity = entityArg<clsEntPMrpi>(args[0]);
      return o.QueryByID(entity);
    }
    if (member.name == "QueryByIDForPur") {
      return o.QueryByIDForPur(collectionArg(args[0]), doubleArg(args[1]), doubleArg(args[2]),
                               integerArg(args[3]), stringArg(args[4]));
    }
    if (member.name == "QueryByDeliverDate") {
      return o.QueryByDeliverDate(collectionArg(args[0]), dateArg(args[1]), dateArg(args[2]),
                                  integerArg(args[3]));
    }
    if (member.name == "GetRecordByCondition") {
      auto item = entityArg<clsEntEItem>(args[0]);
      auto header = entityArg<clsEntPMrph>(args[1]);
      return o.GetRecordByCondition(item, header);
    }
    if (member.name == "GetItemNoByProdNo") {
      auto header = entityArg<clsEntPMrph>(args[1]);
      return o.GetItemNoByProdNo(collectionArg(args[0]), header);
    }
    if (member.name == "QueryItemNo") {
      return o.QueryItemNo(collectionArg(args[0]), stringArg(args[1]), stringArg(args[2]));
    }
    if (member.name == "QueryEItemNo") {
      auto entity = entityArg<clsEntEItem>(args[0]);
      return o.QueryEItemNo(entity);
    }
    if (member.name == "QueryItemNoRecord")
      return o.QueryItemNoRecord(collectionArg(args[0]), stringArg(args[1]));
    if (member.name == "DeleteAllPMrpiRecord") return o.DeleteAllPMrpiRecord(doubleArg(args[0]));
    if (member.name == "AddRecord") {
      auto entity = entityArg<clsEntPMrpi>(args[0]);
      return o.AddRecord(entity);
    }
    if (member.name == "getProdNoItemNo")
      return o.getProdNoItemNo(collectionArg(args[0]), stringArg(args[1]));
    if (member.name == "getProdNoItemNoByPMrpi") {
      return o.getProdNoItemNoByPMrpi(collectionArg(args[0]), stringArg(args[1]));
    }
    if (member.name == "QueryAllNullRecord") return o.QueryAllNullRecord(collectionArg(args[0]));
    throw NotImplemented();
  }

 private:
  const ClassInfo& cls_;
  std::unique_ptr<clsDataPMrpi> object_;
};

}  // namespace

std::unique_ptr<DispatchObject> makeDispatch(const ClassInfo& cls, std::unique_ptr<clsDataPMrpi> object) {
  return std::make_unique<clsDataPMrpiDispatch>(cls, std::move(object));
}

}  // namespace tovrand
