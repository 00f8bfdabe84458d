#include "porder/clsDataPOrder.h"

#include "frame/Messages.h"
#include "frame/OpenForms.h"
#include "vb/VbStrings.h"

namespace tovrand {

namespace {

// Every column but F_ProdNo, in the order and spelling QueryItem and CheckCustProdNo read them.
void readPOrderRow(Recordset& rs, clsEntPOrder& Entity) {
  Entity.F_CustNo(fieldOr(rs, "F_CustNo", ""));
  Entity.F_SalerID(fieldOr(rs, "F_SalerId", ""));
  Entity.F_ItemNo(fieldOr(rs, "F_ItemNO", ""));
  Entity.F_OrderMode(fieldOr(rs, "F_OrderMode", ""));
  Entity.F_OrderNo(fieldOr(rs, "F_OrderNO", 0));
  Entity.F_COrderNo(fieldOr(rs, "F_CorderNO", ""));
  Entity.F_InQty(fieldOr(rs, "F_Inqty", 0));
  Entity.F_InDate(fieldOr(rs, "F_Indate", 0));
  Entity.F_OutQty(fieldOr(rs, "F_Outqty", 0));
  Entity.F_OutDate(fieldOr(rs, "F_Outdate", 0));
  Entity.F_OutBkQty(fieldOr(rs, "F_Outbkqty", 0));
  Entity.F_BalQty(fieldOr(rs, "F_Balqty", 0));
  Entity.F_OrdQty(fieldOr(rs, "F_Ordqty", 0));
  Entity.F_DeliverDate(fieldOr(rs, "F_DeliverDate", 0));
  Entity.F_ProdQty(fieldOr(rs, "F_Prodqty", 0));
  Entity.F_ProdDate(fieldOr(rs, "F_ProdDate", 0));
  Entity.F_Status(fieldOr(rs, "F_Status", 0));
  Entity.F_OrderOutNo(fieldOr(rs, "F_OrderOutNo", 0));
  Entity.F_WoNo(fieldOr(rs, "F_Wono", 0));
}

}  // namespace

std::int16_t clsDataPOrder::QueryByStrSql(Collection& colPOrder, const std::string& strSql) {
  std::int16_t result = 0;
  try {
    // The caller's text follows unchanged: it brings its own leading blank and clause.
    std::string sql = "select * from t_porder" + strSql;
    Recordset& rs = recordset();
    openRead(rs, sql, connection());
    while (!rs.EOF_()) {
      clsEntPOrder entity = newEntity<clsEntPOrder>();
      entity.F_ProdNo(fieldOr(rs, "F_ProdNO", 0));
      entity.F_OrderMode(fieldOr(rs, "F_OrderMode", ""));
      entity.F_OrderNo(fieldOr(rs, "F_OrderNO", 0));
      entity.F_OrderOutNo(fieldOr(rs, "F_OrderOutNO", 0));
      entity.F_ItemNo(fieldOr(rs, "F_ItemNO", ""));
      entity.F_CustNo(fieldOr(rs, "F_CustNO", ""));
      entity.F_COrderNo(fieldOr(rs, "F_COrderNO", ""));
      entity.F_InQty(fieldOr(rs, "F_InQty", 0));
      entity.F_InDate(fieldOr(rs, "F_InDate", 0));
      entity.F_OutQty(fieldOr(rs, "F_OutQty", 0));
      entity.F_OutDate(fieldOr(rs, "F_OutDate", 0));
      entity.F_OutBkQty(fieldOr(rs, "F_OutBkQty", 0));
      entity.F_BalQty(fieldOr(rs, "F_BalQty", 0));
      entity.F_OrdQty(fieldOr(rs, "F_OrdQty", 0));
      entity.F_DeliverDate(fieldOr(rs, "F_DeliverDate", 0));
      entity.F_ProdQty(fieldOr(rs, "F_ProdQty", 0));
      entity.F_ProdDate(fieldOr(rs, "F_ProdDate", 0));
      entity.F_Status(fieldOr(rs, "F_Status", 0));
      entity.F_SalerID(fieldOr(rs, "F_SalerID", ""));
      entity.F_WoNo(fieldOr(rs, "F_WoNo", 0));
      rs.MoveNext();
      colPOrder.Add(entity);
      result = 1;
    }
    rs.Close();
  } catch (...) {
    criticalHandler(result, kTitleQuenta);
  }
  return result;
}

std::int16_t clsDataPOrder::GetALLChkList(Collection& collAllchklist) {
  std::int16_t result = 0;
  try {
    std::string sql =
        "select pi.* from t_porder pi where f_ordermode='外发加工' and (F_status is null or F_status=0) and "
        "((pi.F_Ordqty >(select sum(F_ordoutqty) as F_ordoutqty from t_boutmakei where "
        "F_ProdNo=pi.F_ProdNo)) or "
        "((select sum(t_boutmakei.F_ordoutqty) from t_boutmakei where t_boutmakei.F_ProdNo=pi.F_ProdNo) is "
        "null))";
    Recordset& rs = recordset();
    openRead(rs, sql, connection());
    while (!rs.EOF_()) {
      clsEntPOrder entity = newEntity<clsEntPOrder>();
      // The production number too is read with "": a NULL one fails the conversion and ends the list.
      entity.F_ProdNo(fieldOr(rs, "F_ProdNo", ""));
      entity.F_ItemNo(fieldOr(rs, "F_ItemNo", ""));
      entity.F_CustNo(fieldOr(rs, "F_CustNo", ""));
      entity.F_COrderNo(fieldOr(rs, "F_CorderNo", ""));
      rs.MoveNext();
      collAllchklist.Add(entity);
      result = 1;
    }
    rs.Close();
  } catch (...) {
    queryHandler(result);
  }
  return result;
}

std::int16_t clsDataPOrder::QueryItem(clsEntPOrder& Entity) {
  return readOneOrder(
      Entity, [&] { return "select * from t_porder where F_ProdNo ='" + CStr(Entity.F_ProdNo()) + "'"; });
}

std::int16_t clsDataPOrder::CheckCustProdNo(clsEntPOrder& Entity, const std::string& CustNo, double ProNo) {
  return readOneOrder(Entity, [&] {
    return "select * from t_porder where F_CustNo ='" + CustNo + "' and F_ProdNo='" + CStr(ProNo) + "'";
  });
}

std::int16_t clsDataPOrder::AddRecord(clsEntPOrder& Entity) {
  std::int16_t result = 0;
  try {
    renewRecordset();
    Recordset& rs = recordset();
    // The whole table is opened with a keyset cursor only to append through it.
    openInsert(rs, "select * from t_porder ", connection());
    rs.AddNew();
    rs.Fields("F_ProdNo") = Entity.F_ProdNo();
    rs.Fields("f_CustNo") = Entity.F_CustNo();
    rs.Fields("F_SalerId") = Entity.F_SalerID();
    rs.Fields("F_ItemNo") = Entity.F_ItemNo();
    rs.Fields("F_OrderMode") = Entity.F_OrderMode();
    rs.Fields("f_OrderNo") = Entity.F_OrderNo();
    rs.Fields("f_CorderNo") = Entity.F_COrderNo();
    rs.Fields("F_Balqty") = Entity.F_BalQty();
    rs.Fields("F_Ordqty") = Entity.F_OrdQty();
    rs.Fields("f_DeliverDate") = Entity.F_DeliverDate();
    rs.Fields("F_Status") = Entity.F_Status();
    rs.Update();
    rs.Close();
    if (Entity.F_Status() == 2) {
      openStatement(recordset(), "update t_borderi set f_status=2 where F_ProdNO=" + CStr(Entity.F_ProdNo()),
                    connection(), adOpenKeyset, adLockPessimistic, adCmdUnspecified);
    }
    dropRecordset();
    result = 1;
  } catch (...) {
    writeHandler(result, {.result = 0});
  }
  return result;
}

std::int16_t clsDataPOrder::UpdateRecord(clsEntPOrder& Entity) {
  std::int16_t result = 0;
  try {
    Recordset& rs = recordset();
    openStatement(rs, "select * from t_porder where F_ProdNo ='" + CStr(Entity.F_ProdNo()) + "'",
                  connection(), adOpenKeyset, adLockOptimistic, adCmdText);
    // No test for an empty result: an unknown production number fails at the first assignment.
    rs.Fields("f_CustNo") = Entity.F_CustNo();
    rs.Fields("F_SalerId") = Entity.F_SalerID();
    rs.Fields("F_ItemNo") = Entity.F_ItemNo();
    rs.Fields("F_OrderMode") = Entity.F_OrderMode();
    rs.Fields("f_OrderNo") = Entity.F_OrderNo();
    rs.Fields("f_CorderNo") = Entity.F_COrderNo();
    rs.Fields("F_Inqty") = Entity.F_InQty();
    rs.Fields("F_Indate") = Entity.F_InDate();
    rs.Fields("F_Outqty") = Entity.F_OutQty();
    rs.Fields("F_Outdate") = Entity.F_OutDate();
    rs.Fields("F_Outbkqty") = Entity.F_OutBkQty();
    rs.Fields("F_Balqty") = Entity.F_BalQty();
    rs.Fields("F_Ordqty") = Entity.F_OrdQty();
    rs.Fields("f_DeliverDate") = Entity.F_DeliverDate();
    rs.Fields("F_Prodqty") = Entity.F_ProdQty();
    rs.Fields("F_ProdDate") = Entity.F_ProdDate();
    rs.Fields("F_Status") = Entity.F_Status();
    rs.Fields("F_OrderOutNo") = Entity.F_OrderOutNo();
    rs.Fields("F_Wono") = Entity.F_WoNo();
    rs.Update();
    rs.Close();
    result = 1;
  } catch (...) {
    writeHandler(result, {.result = 0});
  }
  return result;
}

std::int16_t clsDataPOrder::UpdateOrderOutNo(clsEntPOrder& Entity) {
  std::int16_t result = 0;
  try {
    double orderOutNo = Entity.F_OrderOutNo();
    VbDate prodDate = Entity.F_ProdDate();
    double prodQty = Entity.F_ProdQty();
    double prodNo = Entity.F_ProdNo();
    // The produced quantity is added to the stored one (NULL counting as 0), not replaced.
    std::string sql = "update t_porder set F_OrderOutNo='" + CStr(orderOutNo) + "',F_ProdDate='" +
                      CStr(prodDate) + "',F_Prodqty=ifnull(F_Prodqty,0)+" + CStr(prodQty) +
                      " where F_ProdNo ='" + CStr(prodNo) + "'";
    openStatement(recordset(), sql, connection(), adOpenDynamic, adLockOptimistic, adCmdUnspecified);
    result = 1;
  } catch (...) {
    writeHandler(result, {.result = 0});
  }
  return result;
}

std::int16_t clsDataPOrder::QueryAllProdNo(std::vector<double>& dblProdNo) {
  std::int16_t result = 0;
  try {
    // The first element is never filled: callers get a leading 0 before the production numbers.
    dblProdNo.assign(1, 0.0);
    Recordset& rs = recordset();
    openRead(rs, "select curdate() as dd", connection());
    DateParts today = dateParts(CDate(rs.Fields("dd").value()));
    rs.Close();

    int startYear = today.year - 1;
    int startMonth = today.month + 1;
    if (today.month == 12) {
      startYear = today.year;
      startMonth = 1;
    }
    std::string periodStart =
        CStr(startYear) + "-" + (startMonth < 10 ? "0" : "") + CStr(startMonth) + "-" + "01";

    openRead(rs, "select F_ProdNo from T_POrder order by F_ProdNo desc", connection());
    const VbDate periodStartDate = CDate(periodStart);  // the same date for every row
    while (!rs.EOF_()) {
      std::string prodNo = CStr(rs.Fields("F_ProdNo").value());
      std::string prodMonth = Left(prodNo, 4) + "-" + Mid(prodNo, 5, 2) + "-" + "01";
      // Strictly later: the period start's own month is not returned.
      if (periodStartDate < CDate(prodMonth)) dblProdNo.push_back(CDbl(fieldOr(rs, "F_ProdNo", 0)));
      rs.MoveNext();
      result = 1;
    }
    rs.Close();
  } catch (...) {
    queryHandler(result);
  }
  return result;
}

std::int16_t clsDataPOrder::readOneOrder(clsEntPOrder& Entity, const std::function<std::string()>& buildSql) {
  std::int16_t result = 0;
  try {
    std::string sql = buildSql();
    Recordset& rs = recordset();
    openRead(rs, sql, connection());
    if (noRows(rs)) {
      result = 0;
    } else {
      readPOrderRow(rs, Entity);
      result = 1;
    }
    rs.Close();
  } catch (...) {
    queryHandler(result);
  }
  return result;
}

}  // namespace tovrand
