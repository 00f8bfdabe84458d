#include "pmrph/clsDataPMrph.h"

#include <utility>

#include "frame/Messages.h"
#include "frame/OpenForms.h"
#include "frame/PurchasingRange.h"
#include "vb/VbMath.h"

namespace tovrand {

namespace {

// The seven columns of a header row, as every reader of the whole row takes them.
void readPMrphRow(Recordset& rs, clsEntPMrph& entity) {
  entity.F_ProdNo(fieldOr(rs, "F_ProdNo", 0));
  entity.F_ItemNo(fieldOr(rs, "F_ItemNo", ""));
  entity.F_OrderQty(fieldOr(rs, "F_OrderQty", 0));
  entity.F_SafeQty(fieldOr(rs, "F_SafeQty", 0));
  entity.F_NeedQty(fieldOr(rs, "F_NeedQty", 0));
  entity.F_PlanPurQty(fieldOr(rs, "F_PlanPurQty", 0));
  entity.F_Status(fieldOr(rs, "F_Status", 0));
}

// Runs its action however the scope is left, by its end or by an error passing through.
template <class Action>
class ScopeExit {
 public:
  explicit ScopeExit(Action action) : action_(std::move(action)) {}
  ~ScopeExit() { action_(); }
  ScopeExit(const ScopeExit&) = delete;
  ScopeExit& operator=(const ScopeExit&) = delete;

 private:
  Action action_;
};

// A figure from the first row of a look-up ("0" when NULL), or 0 when the look-up found no row.
double figureOrZero(Recordset& rs, std::string_view column) {
  if (noRows(rs)) return 0;
  return CDbl(fieldOr(rs, column, "0"));
}

}  // namespace

std::int16_t clsDataPMrph::QueryBOrderhRecordset(clsEntBOrderh& Entity, double ProdNo) {
  std::int16_t result = 0;
  try {
    std::string sql =
        "Select Bh.* From T_BOrderh Bh,T_BOrderi Bi "
        " Where Bh.F_OrderNo=Bi.F_OrderNo And Bi.F_ProdNo='" +
        CStr(ProdNo) + "'";
    Recordset& rs = recordset();
    openRead(rs, sql, connection());
    if (!noRows(rs)) {
      Entity.F_OrderNo(fieldOr(rs, "F_OrderNo", 0));
      Entity.F_OrderDate(fieldOr(rs, "F_OrderDate", "0:00:00"));
      Entity.F_CustNo(fieldOr(rs, "F_CustNo", ""));
    }
    rs.Close();
    // No success value is stored: callers judge by the filled entity, and 0 is all they get.
  } catch (...) {
    criticalHandler(result, kTitleErrorNotice, {.result = 2});
  }
  return result;
}

std::int16_t clsDataPMrph::QueryPMrphRecordset(Collection& objColl, const std::string& SQLStr) {
  std::int16_t result = 0;
  try {
    // F_Status is not read here, unlike the other readers of the whole row: the entity keeps its own.
    result = appendRows<clsEntPMrph>(SQLStr, objColl, [](Recordset& row, clsEntPMrph& entity) {
      entity.F_ProdNo(fieldOr(row, "F_ProdNo", 0));
      entity.F_ItemNo(fieldOr(row, "F_ItemNo", ""));
      entity.F_OrderQty(fieldOr(row, "F_OrderQty", 0));
      entity.F_SafeQty(fieldOr(row, "F_SafeQty", 0));
      entity.F_NeedQty(fieldOr(row, "F_NeedQty", 0));
      entity.F_PlanPurQty(fieldOr(row, "F_PlanPurQty", 0));
    });
  } catch (...) {
    criticalHandler(result, kTitleErrorNotice, {.result = 0});
  }
  return result;
}

std::int16_t clsDataPMrph::QueryPMrphStatus(clsEntPMrph& Entity) {
  std::int16_t result = 0;
  try {
    std::string sql = "Select * From T_PMrph Where F_ProdNO='" + CStr(Entity.F_ProdNo()) + "'";
    Recordset& rs = recordset();
    openRead(rs, sql, connection());
    if (!noRows(rs)) {
      Entity.F_Status(fieldOr(rs, "F_Status", 0));
      Entity.F_PlanPurQty(fieldOr(rs, "F_PlanPurQty", 0));
      Entity.F_NeedQty(fieldOr(rs, "F_NeedQty", 0));
      result = 1;
    }
    rs.Close();
  } catch (...) {
    writeHandler(result, {.result = 0});
  }
  return result;
}

std::int16_t clsDataPMrph::QueryByItemNo(clsEntPMrph& objEntPMrph) {
  std::int16_t result = 0;
  try {
    // By production number, whatever the name says: callers look a header up this way.
    std::string sql = "select * from T_PMrph where F_ProdNo = '" + CStr(objEntPMrph.F_ProdNo()) + "'";
    Recordset& rs = recordset();
    openRead(rs, sql, connection());
    if (!noRows(rs)) {
      readPMrphRow(rs, objEntPMrph);
      result = 1;
    }
    rs.Close();
  } catch (...) {
    queryHandler(result, {.result = 0});
  }
  return result;
}

std::int16_t clsDataPMrph::UpdateRecord(clsEntPMrph& Entity) {
  std::int16_t result = 0;
  try {
    std::string sql = "select * from T_PMrph where F_ProdNo = '" + CStr(Entity.F_ProdNo()) + "'";
    Recordset& rs = recordset();
    openInsert(rs, sql, connection());
    if (noRows(rs)) {
      // 2, not 0: callers tell a missing header from a failed write.
      result = 2;
    } else {
      rs.Fields("F_ProdNo") = Entity.F_ProdNo();
      rs.Fields("F_ItemNo") = Entity.F_ItemNo();
      rs.Fields("F_OrderQty") = Entity.F_OrderQty();
      rs.Fields("F_SafeQty") = Entity.F_SafeQty();
      rs.Fields("F_NeedQty") = Entity.F_NeedQty();
      rs.Fields("F_PlanPurQty") = Entity.F_PlanPurQty();
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

std::int16_t clsDataPMrph::QueryByIDForPur(Collection& colPMrph, double dblStart, double dblEnd,
                                           std::int16_t intCnt, const std::string& strItemNo) {
  std::int16_t result = 0;
  try {
    std::string sql;
    if (strItemNo.empty()) {
      sql =
          "select * from T_PMrph where F_PlanPurQty > '0' and F_ProdNo in "
          "(select F_ProdNo from T_POrder where F_Status <> '1' and F_Status <> '2'";
    } else {
      sql = "select * from T_PMrph where F_ItemNo like '%" + strItemNo +
            "%' and F_PlanPurQty > '0' and F_ProdNo in (select F_ProdNo from T_POrder where F_Status <> '1' "
            "and F_Status <> '2'";
    }
    const std::optional<std::string> range = purchasingRange(intCnt, "F_ProdNo", dblStart, dblEnd);
    // Any other range choice runs no query.
    if (!range) return result;
    result = appendRows<clsEntPMrph>(sql + *range, colPMrph, readPMrphRow);
  } catch (...) {
    queryHandler(result, {.result = 0});
  }
  return result;
}

std::int16_t clsDataPMrph::QueryByDeliverDate(Collection& colPMrph, VbDate datStart, VbDate datEnd,
                                              std::int16_t intCnt) {
  std::int16_t result = 0;
  try {
    std::string sql =
        "select * from T_PMrph where F_PlanPurQty > '0' and F_ProdNo in (select F_ProdNo from T_POrder where "
        "F_Status <> '1' and F_Status <> '2'";
    const std::optional<std::string> range = purchasingRange(intCnt, "F_DeliverDate", datStart, datEnd);
    // Any other range choice runs no query.
    if (!range) return result;
    result = appendRows<clsEntPMrph>(sql + *range, colPMrph, readPMrphRow);
  } catch (...) {
    queryHandler(result, {.result = 0});
  }
  return result;
}

std::int16_t clsDataPMrph::QueryMonthDate(Collection& objColl) {
  std::int16_t result = 0;
  try {
    std::string sql =
        "SELECT DISTINCT  left(F_ProdNo,6) as F_ProdNo  from T_PMrph  order by F_ProdNo desc limit 0,12";
    result = appendRows<clsEntPMrph>(sql, objColl, [](Recordset& row, clsEntPMrph& entity) {
      // The year-month prefix as the database gives it, held as a number.
      entity.F_ProdNo(fieldOr(row, "F_ProdNo", 0));
    });
  } catch (...) {
    queryHandler(result, {.result = 0});
  }
  return result;
}

std::int16_t clsDataPMrph::QueryProdNo(Collection& objColl) {
  std::int16_t result = 0;
  try {
    std::string sql = "select *  from T_PMrph order by F_ProdNo Desc";
    result = appendRows<clsEntPMrph>(sql, objColl, [](Recordset& row, clsEntPMrph& entity) {
      entity.F_ProdNo(fieldOr(row, "F_ProdNo", 0));
      entity.F_ItemNo(fieldOr(row, "F_ItemNo", ""));
    });
  } catch (...) {
    queryHandler(result, {.result = 0});
  }
  return result;
}

std::int16_t clsDataPMrph::QueryStatus(clsEntPOrder& Entity) {
  std::int16_t result = 0;
  try {
    std::string sql = "select F_ProdNo,F_Status  from T_POrder where F_ProdNo=" + CStr(Entity.F_ProdNo());
    Recordset& rs = recordset();
    openRead(rs, sql, connection());
    if (!noRows(rs)) {
      Entity.F_Status(fieldOr(rs, "F_Status", 0));
      result = 1;
    }
    rs.Close();
  } catch (...) {
    queryHandler(result, {.result = 0});
  }
  return result;
}

std::int16_t clsDataPMrph::QueryProdNoRecord(clsEntPMrph& Entity) {
  std::int16_t result = 0;
  try {
    std::string sql = "select *  from T_PMrph WHERE F_ProdNo=" + CStr(Entity.F_ProdNo());
    Recordset& rs = recordset();
    openRead(rs, sql, connection());
    if (!noRows(rs)) {
      readPMrphRow(rs, Entity);
      result = 1;
    }
    rs.Close();
  } catch (...) {
    queryHandler(result, {.result = 0});
  }
  return result;
}

std::int16_t clsDataPMrph::AddRecord1(clsEntPMrph& Entity, Collection& objCollD) {
  std::int16_t result = 0;
  try {
    // AccountNewData and AddReduceRecord report their own errors and the planning goes on.
    const CallScope call(connection());
    const std::string prodNo = CStr(Entity.F_ProdNo());
    // One set of figures serves the header and every line, each computation starting from what the
    // last one left.
    Figures f;

    openRead(recordset(), "SELECT * FROM T_PMrph WHERE F_ProdNo=" + prodNo, connection());
    if (noRows(recordset())) {
      // The computation's status is not looked at: a failed computation has shown its message and
      // the header is written with the figures it reached.
      AccountNewData(Entity, f);
      Entity.F_PlanPurQty(f.K);
      Entity.F_NeedQty(f.M);
      Entity.F_SafeQty(f.SQ);
      Entity.F_OrderQty(f.P);

      renewRecordset();
      Recordset& header = recordset();
      openInsert(header, "SELECT * FROM T_PMrph WHERE F_ProdNo=" + prodNo, connection());
      header.AddNew();
      header.Fields("F_ProdNo") = Entity.F_ProdNo();
      header.Fields("F_ItemNo") = Entity.F_ItemNo();
      header.Fields("F_SafeQty") = Entity.F_SafeQty();
      header.Fields("F_NeedQty") = Entity.F_NeedQty();
      header.Fields("F_PlanPurQty") = Entity.F_PlanPurQty();
      header.Fields("F_OrderQty") = Entity.F_OrderQty();
      header.Fields("F_Status") = 1;
      header.Update();

      clsEntWStockQtys reservation = newEntity<clsEntWStockQtys>();
      reservation.F_ProdNo(Entity.F_ProdNo());
      reservation.F_ItemNo(Entity.F_ItemNo());
      // What is reserved is the stock the computation takes for the header.
      reservation.F_ReduceQty(f.A);
      AddReduceRecord(reservation);
    }

    std::shared_ptr<Recordset> lines = newRecordset();
    openInsert(*lines, "SELECT * FROM T_PMrpi WHERE F_ProdNo=" + prodNo, connection());
    for (std::int32_t i = 1; i <= objCollD.Count(); ++i) {
      clsEntPMrpi line(objCollD.Item(i));
      // The header's material on every line: C1, X and SQ are the header's figures, and the
      // header's F_NeedQty and F_PlanPurQty are as set above or as the caller put them.
      AccountNewData(Entity, f);
      // Dosage and waste go through their text form and back, on every use.
      double dosage = CDbl(Value(CStr(line.F_Dosage())));
      double waste = CDbl(Value(CStr(line.F_Waste())));
      // What is to be made (the remaining requirement not bought directly), at the material's
      // dosage per unit plus its waste rate, less purchases and free stock.
      double G =
          checkedDouble((Entity.F_NeedQty() - Entity.F_PlanPurQty()) * dosage * (waste + 1) - f.C1 - f.X);
      double lineTake = 0;
      double requestQty = 0;
      if (G > 0) {
        lineTake = f.X;
        requestQty = G;
      } else {
        double H = checkedDouble((Entity.F_NeedQty() - Entity.F_PlanPurQty()) * dosage * (waste + 1) - f.C1);
        lineTake = H < 0 ? 0 : H;
        requestQty = 0;
        if (lineTake < 0) lineTake = 0;
      }

      lines->AddNew();
      lines->Fields("F_ProdNo") = Entity.F_ProdNo();
      lines->Fields("F_ItemNo") = line.F_ItemNo();
      lines->Fields("F_Dosage") = dosage;
      lines->Fields("F_Waste") = waste;
      lines->Fields("F_SafeQty") = f.SQ;
      lines->Fields("F_RequestQty") = requestQty;
      lines->Fields("F_LeadTime") = line.F_LeadTime();
      lines->Fields("F_Status") = 1;
      lines->Update();

      clsEntWStockQtys reservation = newEntity<clsEntWStockQtys>();
      reservation.F_ProdNo(Entity.F_ProdNo());
      reservation.F_ItemNo(line.F_ItemNo());
      // What is reserved is the stock this line takes.
      reservation.F_ReduceQty(lineTake);
      AddReduceRecord(reservation);
    }

    lines.reset();
    dropRecordset();
    result = 1;
  } catch (...) {
    writeHandler(result, {.result = 0});
  }
  return result;
}

std::int16_t clsDataPMrph::AddRecord(clsEntPMrph& Entity) {
  std::int16_t result = 0;
  try {
    Recordset& rs = recordset();
    openInsert(rs, "SELECT * FROM T_PMrph WHERE F_ProdNo=" + CStr(Entity.F_ProdNo()), connection());
    if (noRows(rs)) {
      dropRecordset();
      result = 0;
    } else {
      rs.Update();  // nothing is pending yet; the call has no effect
      rs.Fields("F_OrderQty") = Entity.F_OrderQty();
      rs.Fields("F_SafeQty") = Entity.F_SafeQty();
      rs.Fields("F_NeedQty") = Entity.F_NeedQty();
      rs.Fields("F_PlanPurQty") = Entity.F_PlanPurQty();
      rs.Update();
      rs.Close();
      result = 1;
    }
  } catch (...) {
    writeHandler(result, {.result = 0});
  }
  return result;
}

std::int16_t clsDataPMrph::AccountData(clsEntPMrph& Entity, double& C1, double& A, double& P, double& M,
                                       double& K, double& S, double& SQ, double& AT, double& BN,
                                       double& ATi) {
  std::int16_t result = 0;
  try {
    // The computation starts from the caller's figures (X from 0), and they go back to the caller
    // however it ends: an error leaves them as far as it got.
    Figures f{.C1 = C1, .X = 0, .A = A, .P = P, .M = M, .K = K, .S = S, .SQ = SQ, .BN = BN};
    const ScopeExit writeBack([&] {
      C1 = f.C1;
      A = f.A;
      P = f.P;
      M = f.M;
      K = f.K;
      S = f.S;
      SQ = f.SQ;
      BN = f.BN;
    });
    const std::string prodNo = CStr(Entity.F_ProdNo());
    const std::string itemNo = Entity.F_ItemNo();

    // The header, on a new class recordset: keyset and optimistic, which the open keeps.
    renewRecordset();
    openInsert(recordset(), "SELECT * FROM T_PMrph WHERE F_ProdNo=" + prodNo, connection());
    if (noRows(recordset())) {
      // No header is no error: 0 without a message, every figure as the caller passed it.
      dropRecordset();
      return result;
    }
    // The planned purchase as it stands.
    f.K = CDbl(fieldOr(recordset(), "F_PlanPurQty", "0"));
    lookUpRequirement(prodNo, itemNo, f);
    // Open purchases of this production order and material, closed ones (status 3) left out.
    std::shared_ptr<Recordset> purchases = newRecordset();
    openStatement(*purchases,
                  "SELECT SUM(F_PurQty) as C1 FROM T_CPuri ,(select F_PurNo as PurNo from T_CPurh where   "
                  "F_Status<>3) h WHERE F_ItemNo='" +
                      itemNo + "' and F_Status<>3 and F_ProdNo=" + prodNo + " and F_PurNo=h.PurNo",
                  connection(), adOpenKeyset, adLockBatchOptimistic, adCmdUnspecified);
    f.C1 = figureOrZero(*purchases, "C1");
    // Stock already reserved for it.
    std::shared_ptr<Recordset> reserved = newRecordset();
    openStatement(
        *reserved,
        "SELECT F_ReduceQty FROM T_WStockQtys WHERE F_ItemNo='" + itemNo + "' and F_ProdNo=" + prodNo,
        connection(), adOpenKeyset, adLockBatchOptimistic, adCmdUnspecified);
    AT = figureOrZero(*reserved, "F_ReduceQty");
    ATi = AT;

    // What the order still lacks after purchases, free stock and the stock reserved already.
    double D = checkedDouble(f.P - f.C1 - f.X - AT);
    if (D >= 0) {
      // Stock and purchases do not cover the need: all the free stock is taken.
      f.A = f.X;
      if (f.A < 0) f.A = 0;
      AT = checkedDouble(AT + f.A);
      f.M = checkedDouble(f.P - f.C1 - AT);
    } else {
      // Covered: only what is still missing is taken.
      f.A = checkedDouble(f.P - f.C1 - AT);
      if (f.A < 0) f.A = 0;
      AT = checkedDouble(AT + f.A);
      f.M = 0;
    }
    if (f.K >= f.M) {
      f.K = f.M;
    } else if (f.K <= 0) {
      f.K = 0;
    }

    dropRecordset();
    result = 1;
  } catch (...) {
    writeHandler(result, {.result = 0});
  }
  return result;
}

std::int16_t clsDataPMrph::AccountNewData(clsEntPMrph& Entity, Figures& f) {
  std::int16_t result = 0;
  try {
    const std::string prodNo = CStr(Entity.F_ProdNo());
    const std::string itemNo = Entity.F_ItemNo();
    // The uncommitted stock is this computation's own: without a stock header it is 0, not what an
    // earlier computation found.
    f.BN = 0;

    renewRecordset();
    openInsert(recordset(), "SELECT * FROM T_PMrph WHERE F_ProdNo=" + prodNo, connection());
    // Tested for rows, and nothing depends on it: the header may not exist yet.
    (void)noRows(recordset());

    std::string way = lookUpRequirement(prodNo, itemNo, f);
    std::shared_ptr<Recordset> purchases = newRecordset();
    openStatement(*purchases,
                  "SELECT SUM(F_PurQty) as C1 FROM T_CPuri ,(select F_PurNo as PurNo from T_CPurh where  "
                  "F_Status<>3) h WHERE F_ItemNo='" +
                      itemNo + "' and F_Status<>3 and F_ProdNo=" + prodNo + " and F_PurNo=h.PurNo",
                  connection(), adOpenKeyset, adLockBatchOptimistic, adCmdUnspecified);
    f.C1 = figureOrZero(*purchases, "C1");

    f.X = checkedDouble(f.BN - f.SQ);
    if (f.X < 0) f.X = 0;
    double D = checkedDouble(f.P - f.C1 - f.X);
    if (D > 0) {
      f.A = f.X;
      f.M = checkedDouble(f.P - f.C1 - f.A);
    } else {
      // D is worked out and tested above zero once more here; at this point the test never holds.
      D = checkedDouble(f.P - f.C1 - f.X);
      f.A = checkedDouble(f.P - f.C1);
      f.M = 0;
    }
    if (f.A < 0) f.A = 0;
    // Only a direct-purchase order plans a purchase; any other way has its need made.
    f.K = (way == "直接采购" && f.M > 0) ? f.M : 0;

    dropRecordset();
    result = 1;
  } catch (...) {
    writeHandler(result, {.result = 0});
  }
  return result;
}

std::int16_t clsDataPMrph::AddReduceRecord(clsEntWStockQtys& Entity) {
  std::int16_t result = 0;
  try {
    const std::string prodNo = CStr(Entity.F_ProdNo());
    const std::string itemNo = Entity.F_ItemNo();
    const double Q = Entity.F_ReduceQty();

    renewRecordset();
    Recordset& reserved = recordset();
    openInsert(reserved,
               "SELECT * FROM T_WStockQtys WHERE F_ProdNo=" + prodNo + " and  F_ItemNo='" + itemNo + "'",
               connection());
    const bool reservedBefore = !noRows(reserved);
    // The reservation held so far is given back (none on a first reservation) and the new one taken.
    const double R = reservedBefore ? CDbl(fieldOr(reserved, "F_ReduceQty", 0)) : 0;

    std::shared_ptr<Recordset> stock = newRecordset();
    openInsert(*stock, "SELECT * FROM T_WStockQtyh WHERE F_ItemNo='" + itemNo + "'", connection());
    if (!noRows(*stock)) {
      double N = CDbl(fieldOr(*stock, "F_NoPostockQty", 0));
      stock->Update();  // nothing is pending yet; the call has no effect
      stock->Fields("F_ItemNo") = itemNo;
      double left = checkedDouble(N - Q + R);
      stock->Fields("F_NoPostockQty") = left >= 0 ? left : 0.0;
    } else {
      stock->AddNew();
      stock->Fields("F_ItemNo") = itemNo;
      stock->Fields("F_NoPostockQty") = 0;
    }
    stock->Update();

    if (!reservedBefore) {
      reserved.AddNew();
      reserved.Fields("F_ProdNo") = Entity.F_ProdNo();
      reserved.Fields("F_ItemNo") = itemNo;
    }
    reserved.Fields("F_ReduceQty") = Q;
    reserved.Update();

    stock.reset();
    dropRecordset();
    result = 1;
  } catch (...) {
    writeHandler(result, {.result = 0});
  }
  return result;
}

std::string clsDataPMrph::lookUpRequirement(const std::string& prodNo, const std::string& itemNo,
                                            Figures& f) {
  std::string way;
  // The review row and the sales-order line give the requirement; without a review row P stays.
  std::shared_ptr<Recordset> review = newRecordset();
  openStatement(*review, "SELECT * FROM T_POrderChk WHERE F_ProdNo='" + prodNo + "'", connection(),
                adOpenKeyset, adLockBatchOptimistic, adCmdUnspecified);
  // EOF is tested twice where BOF was meant: a test for a current row all the same.
  if (!(review->EOF_() && review->EOF_())) {
    std::shared_ptr<Recordset> salesLine = newRecordset();
    openStatement(*salesLine, "Select * From T_BOrderi Where F_ProdNo='" + prodNo + "'", connection(),
                  adOpenKeyset, adLockPessimistic, adCmdUnspecified);
    if (noRows(*salesLine)) {
      f.P = CDbl(fieldOr(*review, "F_OrderCount", 0));
    } else {
      f.P =
          checkedDouble(CDbl(fieldOr(*review, "F_OrderCount", 0)) + CDbl(fieldOr(*salesLine, "F_BkQty", 0)));
    }
    way = CStr(fieldOr(*review, "F_Way", ""));
  }
  review.reset();

  // The stock header: safety stock and the stock not committed; without one BN stays.
  std::shared_ptr<Recordset> stock = newRecordset();
  openStatement(*stock, "SELECT * FROM T_WStockQtyh WHERE F_ItemNo='" + itemNo + "'", connection(),
                adOpenKeyset, adLockBatchOptimistic, adCmdUnspecified);
  if (!noRows(*stock)) {
    f.SQ = CDbl(fieldOr(*stock, "F_SafeQty", "0"));
    f.BN = CDbl(fieldOr(*stock, "F_NoPoStockQty", "0"));
    f.X = checkedDouble(f.BN - f.SQ);
    if (f.X <= 0) f.X = 0;
  } else {
    f.X = 0;
    f.SQ = 0;
  }

  // The stock on hand, all warehouse lines together.
  std::shared_ptr<Recordset> stockLines = newRecordset();
  openStatement(
      *stockLines,
      "SELECT sum(F_StockQty) as S FROM T_WStockQtyi WHERE F_ItemNo='" + itemNo + "' group by F_ItemNo",
      connection(), adOpenKeyset, adLockBatchOptimistic, adCmdUnspecified);
  f.S = figureOrZero(*stockLines, "S");
  return way;
}

}  // namespace tovrand
