#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "entities/Collection.h"
#include "entities/Entities.h"
#include "frame/DataObject.h"

namespace tovrand {

struct ClassInfo;

// Material planning lines (t_pmrpi): the lines purchasing works from, their status, writing them
// one by one and removing a production order's lines with their stock reservations, and the item
// and bill-of-material look-ups of the planning screens.
class clsDataPMrpi : public DataObject {
 public:
  explicit clsDataPMrpi(std::shared_ptr<Host> host) : DataObject(std::move(host)) {}

  // The member table, in interface order: what late-bound callers reach.
  static const ClassInfo& Members();

  std::int16_t QueryPMrpiStatus(Collection& objColl, double ProdNo);
  std::int16_t UpdatePMrpiStatus(clsEntPMrpi& Entity);
  std::int16_t UpdatePMrphStatus(clsEntPMrph& Entity);
  std::int16_t UpdateRecord(clsEntPMrpi& Entity);
  std::int16_t QueryByID(clsEntPMrpi& objEntPMrpi);
  std::int16_t QueryByIDForPur(Collection& colPMrpi, double dblStart, double dblEnd, std::int16_t intCnt,
                               const std::string& strItemNo);
  std::int16_t QueryByDeliverDate(Collection& colPMrpi, VbDate datStart, VbDate datEnd, std::int16_t intCnt);
  std::int16_t GetRecordByCondition(clsEntEItem& entity1, clsEntPMrph& entity2);
  std::int16_t GetItemNoByProdNo(Collection& objCollPMrpi, clsEntPMrph& Entity);
  std::int16_t QueryItemNo(Collection& objColl, const std::string& GoodsNo, const std::string& StrStatus);
  std::int16_t QueryEItemNo(clsEntEItem& Entity);
  std::int16_t QueryItemNoRecord(Collection& objColl, const std::string& ItemNo);
  std::int16_t DeleteAllPMrpiRecord(double ProdNo);

 private:
  // Releases the reservation of one material for one production order (DeleteAllPMrpiRecord's
  // helper; not part of the interface).
  std::int16_t DeleteReduceRecord(double ProdNo, const std::string& ItemNo);

 public:
  std::int16_t AddRecord(clsEntPMrpi& Entity);
  // The Variant result is never assigned: it is Empty; the collection is what callers read.
  Value getProdNoItemNo(Collection& objColl, const std::string& ProdNo);
  Value getProdNoItemNoByPMrpi(Collection& objColl, const std::string& ProdNo);
  std::int16_t QueryAllNullRecord(Collection& objColl);
};

}  // namespace tovrand
