#include "pmrph/clsDataPMrphDispatch.h"

#include <array>

#include "frame/Arguments.h"

namespace tovrand {

namespace {

class clsDataPMrphDispatch final : public DispatchObject {
 public:
  clsDataPMrphDispatch(const ClassInfo& cls, std::unique_ptr<clsDataPMrph> object)
      : cls_(cls), object_(std::move(object)) {}

  const ClassInfo& classInfo() const override { return cls_; }

  Value invoke(const MemberInfo& member, std::span<Argument> args) override {
    clsDataPMrph& o = *object_;
    if (member.name == "QueryBOrderhRecordset") {
      auto entity = entityArg<clsEntBOrderh>(args[0]);
      return o.QueryBOrderhRecordset(entity, doubleArg(args[1]));
    }
    if (member.name == "QueryPMrphRecordset") {
      std::string SQLStr = stringArg(args[1]);
      std::int16_t result = o.QueryPMrphRecordset(collectionArg(args[0]), SQLStr);
      args[1] = Value(SQLStr);
      return result;
    }
    if (member.name == "QueryPMrphStatus") {
      auto entity = entityArg<clsEntPMrph>(args[0]);
      return o.QueryPMrphStatus(entity);
    }
    if (member.name == "QueryByItemNo") {
      auto entity = entityArg<clsEntPMrph>(args[0]);
      return o.QueryByItemNo(entity);
    }
    if (member.name == "UpdateRecord") {
      auto entity = entityArg<clsEntPMrph>(args[0]);
      return o.UpdateRecord(entity);
    }
    if (member.name == "QueryByIDForPur") {
      return o.QueryByIDForPur(collectionArg(args[0]), doubleArg(args[1]), doubleArg(args[2]),
                               integerArg(args[3]), stringArg(args[4]));
    }
    if (member.name == "QueryByDeliverDate") {
      return o.QueryByDeliverDate(collectionArg(args[0]), dateArg(args[1]), dateArg(args[2]),
                                  integerArg(args[3]));
    }
    if (member.name == "QueryMonthDate") return o.QueryMonthDate(collectionArg(args[0]));
    if (member.name == "QueryProdNo") return o.QueryProdNo(collectionArg(args[0]));
    if (member.name == "QueryStatus") {
      auto entity = entityArg<clsEntPOrder>(args[0]);
      return o.QueryStatus(entity);
    }
    if (member.name == "QueryProdNoRecord") {
      auto entity = entityArg<clsEntPMrph>(args[0]);
      return o.QueryProdNoRecord(entity);
    }
    if (member.name == "AddRecord1") {
      auto entity = entityArg<clsEntPMrph>(args[0]);
      return o.AddRecord1(entity, collectionArg(args[1]));
    }
    if (member.name == "AddRecord") {
      auto entity = entityArg<clsEntPMrph>(args[0]);
      return o.AddRecord(entity);
    }
    if (member.name == "AccountData") {
      auto entity = entityArg<clsEntPMrph>(args[0]);
      // C1, A, P, M, K, S, SQ, AT, BN, ATi: each read in and written back.
      std::array<double, 10> figures{};
      for (std::size_t i = 0; i < figures.size(); ++i) figures[i] = doubleArg(args[i + 1]);
      auto& [C1, A, P, M, K, S, SQ, AT, BN, ATi] = figures;
      std::int16_t result = o.AccountData(entity, C1, A, P, M, K, S, SQ, AT, BN, ATi);
      for (std::size_t i = 0; i < figures.size(); ++i) args[i + 1] = Value(figures[i]);
      return result;
    }
    throw NotImplemented();
  }

 private:
  const ClassInfo& cls_;
  std::unique_ptr<clsDataPMrph> object_;
};

}  // namespace

std::unique_ptr<DispatchObject> makeDispatch(const ClassInfo& cls, std::unique_ptr<clsDataPMrph> object) {
  return std::make_unique<clsDataPMrphDispatch>(cls, std::move(object));
}

}  // namespace tovrand
