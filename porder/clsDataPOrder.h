#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "entities/Collection.h"
#include "entities/Entities.h"
#include "frame/DataObject.h"

namespace tovrand {

struct ClassInfo;

// Production orders (t_porder): maintenance and look-ups.
class clsDataPOrder : public DataObject {
 public:
  explicit clsDataPOrder(std::shared_ptr<Host> host) : DataObject(std::move(host)) {}

  // The member table, in interface order: what late-bound callers reach.
  static const ClassInfo& Members();

  std::int16_t QueryByStrSql(Collection& colPOrder, const std::string& strSql);
  std::int16_t GetALLChkList(Collection& collAllchklist);
  std::int16_t QueryItem(clsEntPOrder& Entity);
  std::int16_t CheckCustProdNo(clsEntPOrder& Entity, const std::string& CustNo, double ProNo);
  std::int16_t AddRecord(clsEntPOrder& Entity);
  std::int16_t UpdateRecord(clsEntPOrder& Entity);
  std::int16_t UpdateOrderOutNo(clsEntPOrder& Entity);
  std::int16_t QueryAllProdNo(std::vector<double>& dblProdNo);

 private:
  // QueryItem and CheckCustProdNo: the same single-row read, each with its own condition.
  std::int16_t readOneOrder(clsEntPOrder& Entity, const std::function<std::string()>& buildSql);
};

}  // namespace tovrand
