#include "pmrpi/clsDataPMrpi.h"

#include "frame/OpenForms.h"
#include "frame/PurchasingRange.h"
#include "vb/VbError.h"

namespace tovrand {

namespace {

// The eight columns of a planning line, with their NULL defaults (QueryByID and the purchasing lists).
void readLine(Recordset& rs, clsEntPMrpi& line) {
  line.F_ProdNo(fieldOr(rs, "F_ProdNo", 0));
  line.F_ItemNo(fieldOr(rs, "F_ItemNo", ""));
  line.F_Dosage(fieldOr(rs, "F_Dosage", 0));
  line.F_Waste(fieldOr(rs, "F_Waste", 0));
  line.F_SafeQty(fieldOr(rs, "F_SafeQty", 0));
  line.F_RequestQty(fieldOr(rs, "F_RequestQty", 0));
  line.F_LeadTime(fieldOr(rs, "F_LeadTime", 0));
  line.F_Status(fieldOr(rs, "F_Status", 0));
}

}  // namespace

std::int16_t clsDataPMrpi::QueryPMrpiStatus(Collection& objColl, double ProdNo) {
  std::int16_t result = 0;
  try {
    Recordset& rs = recordset();
    openStatement(
        rs, "Select * From T_PMrpi Where F_ProdNO='" + CStr(ProdNo) + "' And (F_Status = 3 Or F_Status = 2)",
        connection(), adOpenKeyset, adLockPessimistic, adCmdUnspecified);
    result = appendRows<clsEntPMrpi>(rs, objColl, [](Recordset& row, clsEntPMrpi& line) {
      line.F_ItemNo(fieldOr(row, "F_ItemNo", ""));
      line.F_Status(fieldOr(row, "F_Status", 0));
      line.F_RequestQty(fieldOr(row, "F_RequestQty", 0));
    });
    rs.Close();
  } catch (...) {
    writeHandler(result, {.result = 0});
  }
  return result;
}

std::int16_t clsDataPMrpi::UpdatePMrpiStatus(clsEntPMrpi& Entity) {
  std::int16_t result = 0;
  try {
    Recordset& rs = recordset();
    openStatement(rs,
                  "Select * From T_PMrpi Where F_ProdNO='" + CStr(Entity.F_ProdNo()) + "' And F_ItemNo='" +
                      Entity.F_ItemNo() + "'",
                  connection(), adOpenKeyset, adLockPessimistic, adCmdUnspecified);
    if (!noRows(rs)) {
      // The first Update has nothing pending and stores nothing.
      rs.Update();
      rs.Fields("F_Status") = Entity.F_Status();
      rs.Update();
    }
    dropRecordset();
    // No success value is ever stored: callers get 0 whether or not the status was written.
  } catch (...) {
    writeHandler(result, {.result = 0});
  }
  return result;
}

std::int16_t clsDataPMrpi::UpdatePMrphStatus(clsEntPMrph& Entity) {
  std::int16_t result = 0;
  try {
    Recordset& rs = recordset();
    openStatement(rs, "Select * From T_PMrph Where F_ProdNO='" + CStr(Entity.F_ProdNo()) + "'", connection(),
                  adOpenKeyset, adLockPessimistic, adCmdUnspecified);
    if (!noRows(rs)) {
      // The first Update has nothing pending and stores nothing.
      rs.Update();
      rs.Fields("F_Status") = Entity.F_Status();
      rs.Update();
      result = 1;
    }
    rs.Close();
  } catch (...) {
    writeHandler(result, {.result = 0});
  }
  return result;
}

std::int16_t clsDataPMrpi::UpdateRecord(clsEntPMrpi& Entity) {
  std::int16_t result = 0;
  try {
    Recordset& rs = recordset();
    // Keyset cursor and optimistic lock set on the recordset first, then kept by the open.
    openInsert(rs,
               "select * from T_PMrpi where F_ProdNo = '" + CStr(Entity.F_ProdNo()) + "' and F_ItemNo = '" +
                   Entity.F_ItemNo() + "'",
               connection());
    if (!noRows(rs)) {
      rs.Fields("F_ProdNo") = Entity.F_ProdNo();
      rs.Fields("F_ItemNo") = Entity.F_ItemNo();
      rs.Fields("F_Dosage") = Entity.F_Dosage();
      rs.Fields("F_Waste") = Entity.F_Waste();
      rs.Fields("F_SafeQty") = Entity.F_SafeQty();
      rs.Fields("F_RequestQty") = Entity.F_RequestQty();
      rs.Fields("F_LeadTime") = Entity.F_LeadTime();
      rs.Fields("F_Status") = Entity.F_Status();
      rs.Update();
      result = 1;
    }
    rs.Close();
  } catch (...) {
    writeHandler(result, {.result = 0});
  }
  return result;
}

std::int16_t clsDataPMrpi::QueryByID(clsEntPMrpi& objEntPMrpi) {
  std::int16_t result = 0;
  try {
    Recordset& rs = recordset();
    openRead(rs,
             "select * from T_PMrpi where F_ProdNo = '" + CStr(objEntPMrpi.F_ProdNo()) +
                 "' and F_ItemNo = '" + objEntPMrpi.F_ItemNo() + "'",
             connection());
    if (noRows(rs)) {
      result = 0;
    } else {
      readLine(rs, objEntPMrpi);
      result = 1;
    }
    rs.Close();
  } catch (...) {
    // 2 tells a failed look-up from a line that does not exist.
    queryHandler(result, {.result = 2});
  }
  return result;
}

std::int16_t clsDataPMrpi::QueryByIDForPur(Collection& colPMrpi, double dblStart, double dblEnd,
                                           std::int16_t intCnt, const std::string& strItemNo) {
  std::int16_t result = 0;
  try {
    std::string sql;
    if (strItemNo.empty()) {
      sql =
          "select * from T_PMrpi where F_RequestQty > '0' and F_ProdNo in (select F_ProdNo from T_POrder "
          "where F_Status <> '1' and F_Status <> '2'";
    } else {
      sql = "select * from T_PMrpi where F_ItemNo like '%" + strItemNo +
            "%' and F_RequestQty > '0' and F_ProdNo in (select F_ProdNo from T_POrder where F_Status <> '1' "
            "and F_Status <> '2'";
    }
    const std::optional<std::string> range = purchasingRange(intCnt, "F_ProdNo", dblStart, dblEnd);
    // No such range: nothing is run and the collection stays as it was.
    if (!range) return result;
    result = appendRows<clsEntPMrpi>(sql + *range, colPMrpi, readLine);
  } catch (...) {
    queryHandler(result, {.result = 2});
  }
  return result;
}

std::int16_t clsDataPMrpi::QueryByDeliverDate(Collection& colPMrpi, VbDate datStart, VbDate datEnd,
                                              std::int16_t intCnt) {
  std::int16_t result = 0;
  try {
    std::string sql =
        "select * from T_PMrpi where F_RequestQty > '0' and F_ProdNo in (select F_ProdNo from T_POrder where "
        "F_Status <> '1' and F_Status <> '2'";
    const std::optional<std::string> range = purchasingRange(intCnt, "F_DeliverDate", datStart, datEnd);
    // No such range: nothing is run and the collection stays as it was.
    if (!range) return result;
    result = appendRows<clsEntPMrpi>(sql + *range, colPMrpi, readLine);
  } catch (...) {
    queryHandler(result, {.result = 2});
  }
  return result;
}

std::int16_t clsDataPMrpi::GetRecordByCondition(clsEntEItem& entity1, clsEntPMrph& entity2) {
  std::int16_t result = 0;
  try {
    bool found = false;
    Recordset& rs = recordset();
    openRead(rs,
             "select * from T_PMrph where F_ProdNo='" + CStr(entity2.F_ProdNo()) + "' and F_ItemNo = '" +
                 entity2.F_ItemNo() + "' and F_PlanPurQty > '" + CStr(0) + "'",
             connection());
    if (!noRows(rs)) {
      entity2.F_PlanPurQty(fieldOr(rs, "F_PlanPurQty", 0));
      result = 1;
      found = true;
    }
    rs.Close();
    if (!found) {
      openRead(rs,
               "select * from T_PMrpi where F_ProdNo='" + CStr(entity2.F_ProdNo()) + "' and F_ItemNo = '" +
                   entity2.F_ItemNo() + "' and F_RequestQty > '" + CStr(0) + "'",
               connection());
      if (!noRows(rs)) {
        // The line's requirement comes back in the header's planned-purchase property.
        entity2.F_PlanPurQty(fieldOr(rs, "F_RequestQty", 0));
        result = 1;
        found = true;
      }
      rs.Close();
    }
    if (found) {
      openRead(rs, "select * from T_EItem where F_ItemNo = '" + entity2.F_ItemNo() + "'", connection());
      if (!noRows(rs)) {
        // The item number itself is left as the caller's entity holds it.
        entity1.F_Type(fieldOr(rs, "F_Type", ""));
        entity1.F_ItemName(fieldOr(rs, "F_ItemName", ""));
        entity1.F_ItemDesc(fieldOr(rs, "F_ItemDesc", ""));
        entity1.F_Unit(fieldOr(rs, "F_Unit", ""));
      }
      rs.Close();
    }
  } catch (...) {
    queryHandler(result, {.result = 2});
  }
  return result;
}

std::int16_t clsDataPMrpi::GetItemNoByProdNo(Collection& objCollPMrpi, clsEntPMrph& Entity) {
  std::int16_t result = 0;
  try {
    Recordset& rs = recordset();
    openRead(rs,
             "select * from T_PMrph where F_ProdNo='" + CStr(Entity.F_ProdNo()) + "' and F_PlanPurQty > '" +
                 CStr(0) + "'",
             connection());
    if (!noRows(rs)) {
      Entity.F_ItemNo(fieldOr(rs, "F_ItemNo", ""));
      result = 1;
    }
    rs.Close();
    openRead(rs,
             "select * from T_PMrpi where F_ProdNo='" + CStr(Entity.F_ProdNo()) + "' and F_RequestQty > '" +
                 CStr(0) + "'",
             connection());
    while (!rs.EOF_()) {
      clsEntPMrpi line = newEntity<clsEntPMrpi>();
      line.F_ItemNo(fieldOr(rs, "F_ItemNo", ""));
      rs.MoveNext();
      objCollPMrpi.Add(line);
      result = 1;
    }
    rs.Close();
  } catch (...) {
    // The result stays as it stood: a header found before the error still answers 1.
    writeHandler(result);
  }
  return result;
}

std::int16_t clsDataPMrpi::QueryItemNo(Collection& objColl, const std::string& GoodsNo,
                                       const std::string& StrStatus) {
  std::int16_t result = 0;
  try {
    renewRecordset();
    Recordset& rs = recordset();
    if (StrStatus == "1") {
      // The approved bill of material of the product.
      openStatement(rs,
                    "SELECT B.*  FROM T_EBom B,T_EBomCheck BC WHERE BC.F_GoodsNo= '" + GoodsNo +
                        "' And BC.F_GoodsNo=B.F_GoodsNo AND BC.F_Approve<>''",
                    connection(), adOpenKeyset, adLockBatchOptimistic, adCmdUnspecified);
      result = noRows(rs) ? 0 : 1;
      while (!rs.EOF_()) {
        clsEntEBom bom = newEntity<clsEntEBom>();
        bom.F_GoodsNo(fieldOr(rs, "F_GoodsNo", ""));
        bom.F_PartNo(fieldOr(rs, "F_PartNo", ""));
        bom.F_Dosage(fieldOr(rs, "F_Dosage", "0"));
        bom.F_Waste(fieldOr(rs, "F_Waste", "0"));
        bom.F_LeadDay(fieldOr(rs, "F_LeadDay", 0));
        rs.MoveNext();
        objColl.Add(bom);
      }
    } else if (StrStatus == "2") {
      // The planning lines of a production order, whose number is the text's leading number.
      double prodNo = Val(GoodsNo);
      openStatement(rs, "SELECT *  FROM T_PMrpi   WHERE F_ProdNo= '" + CStr(prodNo) + "' ", connection(),
                    adOpenKeyset, adLockBatchOptimistic, adCmdUnspecified);
      result = noRows(rs) ? 0 : 1;
      while (!rs.EOF_()) {
        // The bill-of-material entity carries the line's figures: its F_GoodsNo holds the safety stock.
        clsEntEBom bom = newEntity<clsEntEBom>();
        bom.F_GoodsNo(fieldOr(rs, "F_SafeQty", "0"));
        bom.F_PartNo(fieldOr(rs, "F_ItemNo", ""));
        bom.F_RequestQty(fieldOr(rs, "F_ReQuestQty", "0"));
        bom.F_Dosage(fieldOr(rs, "F_Dosage", "0"));
        bom.F_Waste(fieldOr(rs, "F_Waste", "0"));
        bom.F_LeadDay(fieldOr(rs, "F_LeadTime", "0"));
        rs.MoveNext();
        objColl.Add(bom);
      }
    } else {
      // Any other mode reads nothing and still answers 1.
      result = 1;
    }
    dropRecordset();
  } catch (...) {
    queryHandler(result, {.result = 2});
  }
  return result;
}

std::int16_t clsDataPMrpi::QueryEItemNo(clsEntEItem& Entity) {
  std::int16_t result = 0;
  try {
    renewRecordset();
    Recordset& rs = recordset();
    openStatement(rs,
                  "SELECT F_ItemNo,F_ItemName,F_ItemDesc,F_Unit  FROM T_EItem WHERE F_ItemNo='" +
                      Entity.F_ItemNo() + "'",
                  connection(), adOpenKeyset, adLockBatchOptimistic, adCmdUnspecified);
    if (noRows(rs)) {
      // An unknown item leaves m_Recordset open: a later method that opens it without renewing it
      // first fails once with "Operation is not allowed when the object is open".
      result = 0;
    } else {
      Entity.F_ItemNo(fieldOr(rs, "F_ItemNo", ""));
      Entity.F_ItemName(fieldOr(rs, "F_ItemName", ""));
      Entity.F_ItemDesc(fieldOr(rs, "F_ItemDesc", ""));
      Entity.F_Unit(fieldOr(rs, "F_Unit", ""));
      result = 1;
      dropRecordset();
    }
  } catch (...) {
    queryHandler(result, {.result = 2});
  }
  return result;
}

std::int16_t clsDataPMrpi::QueryItemNoRecord(Collection& objColl, const std::string& ItemNo) {
  std::int16_t result = 0;
  try {
    Recordset& rs = recordset();
    // ItemNo is compared with the production number: callers pass a production number in it.
    openStatement(rs, "SELECT * From T_PMrpi WHERE F_ProdNo='" + ItemNo + "'", connection(), adOpenKeyset,
                  adLockBatchOptimistic, adCmdUnspecified);
    result = appendRows<clsEntPMrpi>(rs, objColl, [](Recordset& row, clsEntPMrpi& line) {
      line.F_ProdNo(fieldOr(row, "F_ProdNo", "0"));
      line.F_ItemNo(fieldOr(row, "F_ItemNo", ""));
      line.F_Dosage(fieldOr(row, "F_Dosage", "0"));
      line.F_Waste(fieldOr(row, "F_Waste", "0"));
      line.F_SafeQty(fieldOr(row, "F_SafeQty", "0"));
      line.F_RequestQty(fieldOr(row, "F_RequestQty", "0"));
      line.F_LeadTime(fieldOr(row, "F_LeadTime", "0"));
    });
    rs.Close();
  } catch (...) {
    queryHandler(result, {.result = 2});
  }
  return result;
}

std::int16_t clsDataPMrpi::DeleteAllPMrpiRecord(double ProdNo) {
  std::int16_t result = 0;
  try {
    // DeleteReduceRecord reports its own errors and the release goes on with the next line.
    const CallScope call(connection());
    std::shared_ptr<Recordset> lines = newRecordset();
    openStatement(*lines, "Select * From T_PMrpi Where F_ProdNo='" + CStr(ProdNo) + "'", connection(),
                  adOpenKeyset, adLockPessimistic, adCmdUnspecified);
    if (noRows(*lines)) {
      lines.reset();
      return result;
    }
    while (!lines->EOF_()) {
      // A line without a material releases material "0". A failed release has shown its own message
      // and the remaining lines are still released.
      DeleteReduceRecord(ProdNo, CStr(fieldOr(*lines, "F_ItemNo", "0")));
      lines->MoveNext();
    }
    lines = newRecordset();
    openStatement(*lines, "Delete From T_PMrpi Where F_ProdNo='" + CStr(ProdNo) + "'", connection(),
                  adOpenKeyset, adLockPessimistic, adCmdUnspecified);
    lines.reset();
    result = 1;
  } catch (...) {
    // What was released or deleted before the error stays so, and the result stays 0.
    writeHandler(result);
  }
  return result;
}

std::int16_t clsDataPMrpi::DeleteReduceRecord(double ProdNo, const std::string& ItemNo) {
  std::int16_t result = 0;
  try {
    std::shared_ptr<Recordset> stock = newRecordset();
    renewRecordset();
    openStatement(
        recordset(),
        "SELECT * FROM T_WStockQtys WHERE F_ProdNo=" + CStr(ProdNo) + " and  F_ItemNo='" + ItemNo + "'",
        connection(), adOpenUnspecified, adLockUnspecified, adCmdText);
    if (noRows(recordset())) {
      dropRecordset();
      return result;
    }
    double quantity = CDbl(fieldOr(recordset(), "F_ReduceQty", "0"));

    dropRecordset();
    renewRecordset();
    // Every reservation row of the pair goes, not only the first.
    openStatement(
        recordset(),
        "Delete FROM T_WStockQtys WHERE F_ProdNo=" + CStr(ProdNo) + " and  F_ItemNo='" + ItemNo + "'",
        connection(), adOpenKeyset, adLockPessimistic, adCmdUnspecified);
    dropRecordset();

    openStatement(*stock, "SELECT * FROM T_WStockQtyh WHERE F_ItemNo='" + ItemNo + "'", connection(),
                  adOpenKeyset, adLockPessimistic, adCmdUnspecified);
    if (noRows(*stock)) {
      stock->AddNew();
      // The new summary row takes its item number from an item object that is never set, so the
      // assignment fails with Object required: a material without a summary row never gets one, and
      // the pending row goes with its recordset.
      throw VbError::of(vberr::kObjectRequired);
    }
    // The summary's uncommitted stock takes the place of the reserved quantity, and the amount to add
    // to it is never assigned: the figure is written back unchanged (a NULL as 0) and the released
    // quantity is not given back.
    quantity = CDbl(fieldOr(*stock, "F_NoPostockQty", 0));
    double adjust = 0;
    stock->Update();
    stock->Fields("F_NoPostockQty") = quantity + adjust;
    stock->Update();
    stock.reset();
    result = 1;
  } catch (...) {
    // This routine shows every error's own description, the length error included.
    queryHandler(result, {.result = 0});
  }
  return result;
}

std::int16_t clsDataPMrpi::AddRecord(clsEntPMrpi& Entity) {
  std::int16_t result = 0;
  try {
    renewRecordset();
    double prodNo = Entity.F_ProdNo();
    std::string itemNo = Entity.F_ItemNo();
    openStatement(recordset(),
                  "SELECT * From T_PMrpi WHERE F_ProdNo='" + CStr(prodNo) + "' and F_ItemNo='" + itemNo + "'",
                  connection(), adOpenKeyset, adLockPessimistic, adCmdUnspecified);
    if (noRows(recordset())) {
      dropRecordset();
      renewRecordset();
      // The whole table is opened with a keyset cursor only to append the line through it.
      Recordset& rs = recordset();
      openStatement(rs, "SELECT * From T_PMrpi ", connection(), adOpenKeyset, adLockPessimistic,
                    adCmdUnspecified);
      rs.AddNew();
      rs.Fields("F_ProdNo") = Entity.F_ProdNo();
      rs.Fields("F_ItemNo") = Entity.F_ItemNo();
    } else {
      dropRecordset();
      renewRecordset();
      prodNo = Entity.F_ProdNo();
      itemNo = Entity.F_ItemNo();
      Recordset& rs = recordset();
      openStatement(
          rs, "SELECT * From T_PMrpi WHERE F_ProdNo='" + CStr(prodNo) + "' and F_ItemNo='" + itemNo + "'",
          connection(), adOpenKeyset, adLockPessimistic, adCmdUnspecified);
      // Nothing is pending yet, so this stores nothing.
      rs.Update();
    }
    // F_Status is never written: a new line keeps the column's default, an existing one its status.
    Recordset& rs = recordset();
    rs.Fields("F_Dosage") = Entity.F_Dosage();
    rs.Fields("F_Waste") = Entity.F_Waste();
    rs.Fields("F_SafeQty") = Entity.F_SafeQty();
    rs.Fields("F_RequestQty") = Entity.F_RequestQty();
    rs.Fields("F_LeadTime") = Entity.F_LeadTime();
    rs.Update();
    result = 1;
    dropRecordset();
  } catch (...) {
    // 2, not 0, after a handled error.
    writeHandler(result, {.result = 2});
  }
  return result;
}

Value clsDataPMrpi::getProdNoItemNo(Collection& objColl, const std::string& ProdNo) {
  Value result;
  try {
    std::string sql = "SELECT * From T_PMrph WHERE F_ProdNo like '%" + ProdNo +
                      "%' And IFNull(F_Status,0)<>3 And IFNull(F_Status,0)<>2";
    appendRows<clsEntPMrph>(sql, objColl, [](Recordset& row, clsEntPMrph& header) {
      header.F_ProdNo(fieldOr(row, "F_ProdNo", 0));
      header.F_ItemNo(fieldOr(row, "F_ItemNo", ""));
      header.F_PlanPurQty(fieldOr(row, "F_PlanPurQty", 0));
      header.F_NeedQty(fieldOr(row, "F_NeedQty", 0));
    });
  } catch (...) {
    std::int16_t unassigned = 0;  // the handler stores no result for this member
    queryHandler(unassigned);
  }
  return result;
}

Value clsDataPMrpi::getProdNoItemNoByPMrpi(Collection& objColl, const std::string& ProdNo) {
  Value result;
  try {
    std::string sql = "SELECT * From T_PMrpi WHERE F_ProdNo = '" + ProdNo +
                      "' And IFNull(F_Status,0)<>3 And IFNull(F_Status,0)<>2";
    appendRows<clsEntPMrpi>(sql, objColl, [](Recordset& row, clsEntPMrpi& line) {
      line.F_ProdNo(fieldOr(row, "F_ProdNo", 0));
      line.F_ItemNo(fieldOr(row, "F_ItemNo", ""));
      line.F_RequestQty(fieldOr(row, "F_RequestQty", 0));
    });
  } catch (...) {
    std::int16_t unassigned = 0;  // the handler stores no result for this member
    queryHandler(unassigned);
  }
  return result;
}

std::int16_t clsDataPMrpi::QueryAllNullRecord(Collection& objColl) {
  std::int16_t result = 0;
  try {
    std::string sql =
        "Select ih.F_ProdNo From (Select i.F_ProdNo From  "
        "(Select F_ProdNo From T_PMrpi Where F_Status = 3 OR F_Status = 2 ) i Union "
        "select h.F_ProdNo From (Select F_ProdNo From T_PMrph Where F_Status = 3 Or F_Status = 2 ) h) ih "
        " Order By ih.F_ProdNo Desc  limit 1000";
    result = appendRows<clsEntPMrph>(sql, objColl, [](Recordset& row, clsEntPMrph& header) {
      header.F_ProdNo(fieldOr(row, "F_ProdNo", 0));
    });
  } catch (...) {
    writeHandler(result, {.result = 0});
  }
  return result;
}

}  // namespace tovrand
