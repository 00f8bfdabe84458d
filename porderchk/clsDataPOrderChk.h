#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "entities/Collection.h"
#include "entities/Entities.h"
#include "frame/DataObject.h"

namespace tovrand {

struct ClassInfo;

// Production order review (t_porderchk): the seven departments' sign-offs, the allocation of
// month-prefixed production numbers with the creation of review rows, and the review look-ups.
class clsDataPOrderChk : public DataObject {
 public:
  explicit clsDataPOrderChk(std::shared_ptr<Host> host) : DataObject(std::move(host)) {}

  // The member table, in interface order: what late-bound callers reach.
  static const ClassInfo& Members();

  std::int16_t QueryBOrderiBkQty(clsEntBOrderi& Entity);
  std::int16_t JudgeExits(const std::string& GoodsNo);
  std::int16_t UpdateRecord(clsEntPOrderChk& Entity, const std::string& stypeName);
  std::int16_t QueryAll(clsEntPOrderChk& Entity, double ProdNo);
  std::int16_t QueryProdNoView(clsEntPOrderChk& Entity);
  std::int16_t QueryMonthDate(Collection& objColl);
  std::int16_t QueryProdNo(Collection& objColl);
  std::int16_t AddRecord(Collection& objColl, const std::string& OrderNo, const std::string& CustNo,
                         const std::string& CorderNo, std::int16_t LenInt);
  std::int16_t QureyDatabase(const std::string& SQLStr, Collection& objColl);
  std::int16_t QuerySalerID(clsEntBOrderh& Entity);
};

}  // namespace tovrand
