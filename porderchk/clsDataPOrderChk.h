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

  // How long AddRecord keeps trying on a connection with serialize_allocation=1 when other clients
  // allocate at the same moment: at most `attempts` tries, none begun after `totalSeconds`, each
  // waiting at most `lockWaitSeconds` for the allocation's lock row. Not part of the interface that
  // late-bound callers reach; the defaults suit every site.
  struct AllocationBound {
    int attempts = 40;
    int totalSeconds = 60;
    int lockWaitSeconds = 10;
  };
  void setAllocationBound(const AllocationBound& bound) { allocationBound_ = bound; }
  // What the last AddRecord's allocation took: how many times it started the allocation's transaction
  // (0 without serialize_allocation), for the figures of the site's monitoring and the tests.
  int lastAllocationAttempts() const { return lastAllocationAttempts_; }

 private:
  AllocationBound allocationBound_;
  int lastAllocationAttempts_ = 0;
};

}  // namespace tovrand
