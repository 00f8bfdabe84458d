#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "entities/Collection.h"
#include "entities/Entities.h"
#include "frame/DataObject.h"

namespace tovrand {

struct ClassInfo;

// Material planning headers (t_pmrph): their queries, the requirement computation of one material
// and the writing of a production order's whole planning with its stock reservations.
class clsDataPMrph : public DataObject {
 public:
  explicit clsDataPMrph(std::shared_ptr<Host> host) : DataObject(std::move(host)) {}

  // The member table, in interface order: what late-bound callers reach.
  static const ClassInfo& Members();

  std::int16_t QueryBOrderhRecordset(clsEntBOrderh& Entity, double ProdNo);
  std::int16_t QueryPMrphRecordset(Collection& objColl, const std::string& SQLStr);
  std::int16_t QueryPMrphStatus(clsEntPMrph& Entity);
  std::int16_t QueryByItemNo(clsEntPMrph& objEntPMrph);
  std::int16_t UpdateRecord(clsEntPMrph& Entity);
  std::int16_t QueryByIDForPur(Collection& colPMrph, double dblStart, double dblEnd, std::int16_t intCnt,
                               const std::string& strItemNo);
  std::int16_t QueryByDeliverDate(Collection& colPMrph, VbDate datStart, VbDate datEnd, std::int16_t intCnt);
  std::int16_t QueryMonthDate(Collection& objColl);
  std::int16_t QueryProdNo(Collection& objColl);
  std::int16_t QueryStatus(clsEntPOrder& Entity);
  std::int16_t QueryProdNoRecord(clsEntPMrph& Entity);
  std::int16_t AddRecord1(clsEntPMrph& Entity, Collection& objCollD);
  std::int16_t AddRecord(clsEntPMrph& Entity);
  // The figures of an existing header's material, handed back through the references.
  std::int16_t AccountData(clsEntPMrph& Entity, double& C1, double& A, double& P, double& M, double& K,
                           double& S, double& SQ, double& AT, double& BN, double& ATi);

 private:
  // The figures of one material's requirement computation, named as the planning names them.
  struct Figures {
    double C1 = 0;  // open purchases
    double X = 0;   // free stock above safety stock
    double A = 0;   // stock to take
    double P = 0;   // requirement
    double M = 0;   // remaining requirement
    double K = 0;   // quantity to buy
    double S = 0;   // stock on hand
    double SQ = 0;  // safety stock
    double BN = 0;  // stock not committed to any production order
  };

  // The class's own two routines, not exposed; the interface skips the member identifier one of
  // them holds (0x6003000F).

  // The figures of a header that may not exist yet, for AddRecord1: C1, X, A, P, M, K, S and SQ
  // computed into `f`; what an error cuts short stays as far as it got.
  std::int16_t AccountNewData(clsEntPMrph& Entity, Figures& f);
  // Reserves F_ReduceQty of the material for the production order and lowers the stock not yet
  // committed accordingly.
  std::int16_t AddReduceRecord(clsEntWStockQtys& Entity);

  // The look-ups both computations run after the header, in this order: the review row with the
  // first sales-order line (requirement P, kept as passed without a review row), the stock header
  // (safety stock SQ, uncommitted stock BN, kept as passed without a header, and X, the free stock
  // above safety stock), the stock lines (stock on hand S). Returns the review's procurement way
  // ("" without a review row).
  std::string lookUpRequirement(const std::string& prodNo, const std::string& itemNo, Figures& f);
};

}  // namespace tovrand
