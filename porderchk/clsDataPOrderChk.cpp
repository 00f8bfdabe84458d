#include "porderchk/clsDataPOrderChk.h"

#include <algorithm>
#include <chrono>
#include <cstdint>
#include <functional>
#include <random>
#include <string>

#include "frame/OpenForms.h"
#include "frame/Pause.h"
#include "frame/ServerError.h"
#include "vb/VbError.h"

namespace tovrand {

namespace {

// With serialize_allocation=1 AddRecord allocates inside one transaction that first writes the
// allocation's lock row. A write and not the server's named lock: a named lock lives on one server
// only, while two transactions that write the same row conflict on every server of a cluster, so that
// of two allocations made at the same moment on different servers the later fails at its commit
// (error 1213) and runs again from the start; on one server the row lock makes the others queue. The
// row lives in a table of the component's own, keyed by name because a cluster replicates only tables
// with a primary key. schema/tovrand.sql creates it; a database loaded before it had the table gets it
// on the first allocation that misses it. Every allocation adds one to the row's count, so that its
// write is never empty, which a cluster would not certify against another.
class SerializedAllocation {
 public:
  static constexpr const char* kBegin = "start transaction";
  static constexpr const char* kCommit = "commit";
  static constexpr const char* kRollback = "rollback";
  static constexpr const char* kCreateLockTable =
      "create table if not exists t_tovrand_lock (F_Name varchar(64) not null, F_Taken bigint not null "
      "default 0, primary key (F_Name)) engine=InnoDB default charset=utf8mb4 collate=utf8mb4_general_ci";

  static std::string takeLockRow(int lockWaitSeconds) {
    return "set statement innodb_lock_wait_timeout=" + std::to_string(lockWaitSeconds) +
           " for insert into t_tovrand_lock (F_Name, F_Taken) values ('production number', 1) on duplicate "
           "key update F_Taken=F_Taken+1";
  }

  static constexpr int kDuplicateRetries = 2;

  using NewRecordset = std::function<std::shared_ptr<Recordset>()>;
  SerializedAllocation(ConnectionPtr connection, NewRecordset newRecordset,
                       const clsDataPOrderChk::AllocationBound& bound)
      : connection_(std::move(connection)), newRecordset_(std::move(newRecordset)), bound_(bound) {}

  // Runs `allocate` inside the transaction until it commits; `attempts` counts the transactions begun.
  // A conflict with a concurrent allocation (deadlock, failed certification, a lock row waited for too
  // long) rolls the whole allocation back and runs it again after a random pause that grows with each
  // attempt, within the bound; any other error ends it as it ends without the option: what the lines before
  // it wrote stays, and the error is reported.
  template <class Allocate, class Renew>
  void run(Allocate&& allocate, Renew&& renew, int& attempts) {
    // Two holders of one shared session must not begin or end each other's transaction.
    const Hold hold(*connection_);
    const auto started = std::chrono::steady_clock::now();
    bool tableCreated = false;
    int duplicates = 0;
    for (;;) {
      ++attempts;
      bool lockRowTaken = false;
      try {
        send(kBegin);
        send(takeLockRow(bound_.lockWaitSeconds));
        lockRowTaken = true;
        allocate();
        send(kCommit);
        return;
      } catch (...) {
        // A lost session took its transaction with it; nothing more is sent on it.
        if (connection_->isLost()) throw;
        const unsigned int code = serverCodeOf(std::current_exception());
        // A cluster that aborts an allocation for a concurrent one on another server may report it
        // only at a later statement of the allocation, which then meets the other's number (a
        // duplicate) or its own statement gone: such an allocation runs again, a few times for a
        // duplicate, which a month whose numbers overflow into the next gives on every try.
        const bool conflict = code == servererr::kDeadlock || code == servererr::kLockWaitTimeout ||
                              code == servererr::kUnknownStatement ||
                              (code == servererr::kDuplicateKey && ++duplicates <= kDuplicateRetries);
        if (conflict) {
          sendQuietly(kRollback);
          const std::chrono::milliseconds pause = pauseBefore(attempts + 1);
          if (attempts >= bound_.attempts || std::chrono::steady_clock::now() - started + pause >=
                                                 std::chrono::seconds(bound_.totalSeconds)) {
            throw VbError(vberr::kProviderError, gaveUp(attempts));
          }
          pauseFor(pause);
        } else if (code == servererr::kNoSuchTable && !lockRowTaken && !tableCreated) {
          sendQuietly(kRollback);
          send(kCreateLockTable);
          tableCreated = true;
        } else {
          sendQuietly(lockRowTaken ? kCommit : kRollback);
          throw;
        }
      }
      renew();
    }
  }

  static std::string gaveUp(int attempts) {
    return "The production number could not be allocated after " + std::to_string(attempts) +
           (attempts == 1 ? " attempt" : " attempts") +
           ": other clients were allocating production numbers at the same time. Nothing of this sales "
           "order was written; try again.";
  }

 private:
  class Hold {
   public:
    explicit Hold(Connection& connection) : connection_(connection) { connection_.beginTransactionHold(); }
    ~Hold() { connection_.endTransactionHold(); }
    Hold(const Hold&) = delete;
    Hold& operator=(const Hold&) = delete;

   private:
    Connection& connection_;
  };

  void send(const std::string& sql) { openRead(*newRecordset_(), sql, connection_); }
  void sendQuietly(const char* sql) {
    try {
      send(sql);
    } catch (...) {
      // The error being reported is the one that ended the attempt.
    }
  }

  // Random, and longer after each conflict, so that allocators that met once do not meet again.
  static std::chrono::milliseconds pauseBefore(int attempt) {
    thread_local std::mt19937 random(static_cast<std::mt19937::result_type>(
        std::random_device{}() ^
        static_cast<std::uint64_t>(std::chrono::steady_clock::now().time_since_epoch().count())));
    const int ceiling = std::min(2 << std::min(attempt, 10), 2000);
    return std::chrono::milliseconds(std::uniform_int_distribution<int>(1, ceiling)(random));
  }

  ConnectionPtr connection_;
  NewRecordset newRecordset_;
  const clsDataPOrderChk::AllocationBound& bound_;
};

// The production order a review is about, the first eight columns of the review, as QueryAll and
// QueryProdNoView both read them. A NULL F_ProdNo or F_OrderNo, read as "", fails the read.
void readOrderColumns(Recordset& rs, clsEntPOrderChk& Entity) {
  Entity.F_ProdNo(fieldOr(rs, "F_ProdNo", ""));
  Entity.F_OrderNo(fieldOr(rs, "F_OrderNo", ""));
  Entity.F_ItemNo(fieldOr(rs, "F_ItemNo", ""));
  Entity.F_CustNo(fieldOr(rs, "F_CustNo", ""));
  Entity.F_CorderNo(fieldOr(rs, "F_CorderNo", ""));
  Entity.F_OrderCount(fieldOr(rs, "F_OrderCount", "0"));
  Entity.F_DeliverDate(fieldOr(rs, "F_DeliverDate", "0:00:00"));
  Entity.F_CItemNo(fieldOr(rs, "F_CItemNo", ""));
}

// QueryMonthDate and QueryProdNo: a review holding only the row's F_ProdNo.
void readProdNoOnly(Recordset& rs, clsEntPOrderChk& Entity) {
  Entity.F_ProdNo(fieldOr(rs, "F_ProdNo", ""));
}

}  // namespace

std::int16_t clsDataPOrderChk::QueryBOrderiBkQty(clsEntBOrderi& Entity) {
  std::int16_t result = 0;
  try {
    Recordset& rs = recordset();
    openRead(rs, "Select F_BkQty From T_BOrderi Where F_ProdNo='" + CStr(Entity.F_ProdNo()) + "'",
             connection());
    if (noRows(rs)) {
      result = 0;
    } else {
      Entity.F_BkQty(fieldOr(rs, "F_BkQty", 0));
      rs.Close();
      // The material's stock over every warehouse line; no stock line sums to NULL, read as 0.
      openRead(
          rs, "Select Sum(F_StockQty) As SumQty From T_WStockQtyi Where F_ItemNo='" + Entity.F_ItemNo() + "'",
          connection());
      Entity.F_StockQty(fieldOr(rs, "SumQty", 0));
      result = 1;
    }
    rs.Close();
  } catch (...) {
    writeHandler(result, {.result = 0});
  }
  return result;
}

std::int16_t clsDataPOrderChk::JudgeExits(const std::string& GoodsNo) {
  std::int16_t result = 0;
  try {
    Recordset& rs = recordset();
    openStatement(rs, "Select * From T_EBom Where F_GoodsNo='" + GoodsNo + "'", connection(), adOpenKeyset,
                  adLockPessimistic, adCmdUnspecified);
    if (noRows(rs)) {
      result = 0;
    } else {
      result = 1;
    }
    dropRecordset();
  } catch (...) {
    writeHandler(result, {.result = 0});
  }
  return result;
}

std::int16_t clsDataPOrderChk::UpdateRecord(clsEntPOrderChk& Entity, const std::string& stypeName) {
  std::int16_t result = 0;
  try {
    renewRecordset();
    std::string department = stypeName;
    std::string sql;
    if (department == "业务") {
      // The alert note comes before the note here.
      sql = "update t_POrderChk set F_BStradCon=" + CStr(Entity.F_BStradCon()) + ",F_BSAlertNote='" +
            Entity.F_BSAlertNote() + "', F_BSNote='" + Entity.F_BSNote() + "' ,F_BSChecker='" +
            Entity.F_BSChecker() + "', F_BSCheckTime='" + CStr(Entity.F_BSCheckTime()) +
            "' where F_ProdNo=" + CStr(Entity.F_ProdNo());
    } else if (department == "工程") {
      sql = "update t_POrderChk set F_EGAdmit=" + CStr(Entity.F_EGAdmit()) + ",F_EGNote='" +
            Entity.F_EGNote() + "', F_EGModel=" + CStr(Entity.F_EGModel()) + " ,F_EGChecker='" +
            Entity.F_EGChecker() + "', F_EGCheckTime='" + CStr(Entity.F_EGCheckTime()) +
            "' where F_ProdNo=" + CStr(Entity.F_ProdNo());
    } else if (department == "仓库") {
      sql = "update t_POrderChk set F_WIFill=" + CStr(Entity.F_WIFill()) + ",F_WIEndtime='" +
            CStr(Entity.F_WIEndtime()) + "', F_WPStock=" + CStr(Entity.F_WPStock()) + ",F_WPEndTime='" +
            CStr(Entity.F_WPEndTime()) + "',F_WINote='" + Entity.F_WINote() + "' ,F_WIChecker='" +
            Entity.F_WIChecker() + "', F_wiCheckTime='" + CStr(Entity.F_WIChecktime()) +
            "' where F_ProdNo=" + CStr(Entity.F_ProdNo());
    } else if (department == "采购") {
      sql = "update t_POrderChk set F_PUprovider=" + CStr(Entity.F_PUprovider()) + ",F_PUNote='" +
            Entity.F_PUNote() + "' ,F_PUChecker='" + Entity.F_PUChecker() + "', F_PUCheckTime='" +
            CStr(Entity.F_PUCheckTime()) + "' where F_ProdNo=" + CStr(Entity.F_ProdNo());
    } else if (department == "品保") {
      sql = "update t_POrderChk set F_QCStd=" + CStr(Entity.F_QCStd()) + ",F_QCNote='" + Entity.F_QCNote() +
            "' ,F_QChecker='" + Entity.F_QChecker() + "', F_QCheckTime='" + CStr(Entity.F_QCheckTime()) +
            "' where F_ProdNo=" + CStr(Entity.F_ProdNo());
    } else if (department == "生管") {
      sql = "update t_POrderChk set F_MKDate=" + CStr(Entity.F_MKDate()) + ",F_MkNote='" + Entity.F_MKNote() +
            "' ,F_MKChecker='" + Entity.F_MKChecker() + "', F_MKCheckTime='" + CStr(Entity.F_MKCheckTime()) +
            "' where F_ProdNo=" + CStr(Entity.F_ProdNo());
    } else if (department == "终审") {
      sql = "update t_POrderChk set F_CSNote='" + Entity.F_CSNote() + "',F_Way='" + Entity.F_Way() +
            "' ,F_csChecker='" + Entity.F_CSChecker() + "', F_csCheckTime='" + CStr(Entity.F_CSCheckTime()) +
            "' where F_ProdNo=" + CStr(Entity.F_ProdNo());
    }
    // A name that is none of the seven departments runs nothing and still reports done.
    if (!sql.empty()) {
      openStatement(recordset(), sql, connection(), adOpenKeyset, adLockPessimistic, adCmdUnspecified);
    }
    dropRecordset();
    result = 1;
  } catch (...) {
    writeHandler(result, {.result = 0});
  }
  return result;
}

std::int16_t clsDataPOrderChk::QueryAll(clsEntPOrderChk& Entity, double ProdNo) {
  std::int16_t result = 0;
  try {
    std::string sql = "select distinct  *  from T_POrderChk  where F_ProdNo=" + CStr(ProdNo);
    Recordset& rs = recordset();
    openRead(rs, sql, connection());
    if (!noRows(rs)) {
      // A NULL read as "" cannot become a number or a date: such a column ends the load in the
      // handler, with the columns before it already copied.
      readOrderColumns(rs, Entity);
      Entity.F_BStradCon(fieldOr(rs, "F_BStradCon", "2"));
      Entity.F_BSNote(fieldOr(rs, "F_BSNote", ""));
      Entity.F_BSAlertNote(fieldOr(rs, "F_BSAlertNote", ""));
      Entity.F_BSChecker(fieldOr(rs, "F_BSChecker", ""));
      Entity.F_BSCheckTime(fieldOr(rs, "F_BSCheckTime", "0:00:00"));
      // The five flags are tested for NULL first: an undecided flag reads as 2.
      Entity.F_EGAdmit(fieldOr(rs, "F_EGAdmit", 2));
      Entity.F_EGModel(fieldOr(rs, "F_EGModel", 2));
      Entity.F_EGNote(fieldOr(rs, "F_EGNote", ""));
      Entity.F_EGChecker(fieldOr(rs, "F_EGChecker", ""));
      Entity.F_EGCheckTime(fieldOr(rs, "F_EGCheckTime", ""));
      Entity.F_WIFill(fieldOr(rs, "F_WIFill", ""));
      Entity.F_WIEndtime(fieldOr(rs, "F_WIEndtime", ""));
      Entity.F_WPStock(fieldOr(rs, "F_WPStock", ""));
      Entity.F_WPEndTime(fieldOr(rs, "F_WPEndTime", ""));
      Entity.F_WINote(fieldOr(rs, "F_WINote", ""));
      Entity.F_WIChecker(fieldOr(rs, "F_WIChecker", ""));
      Entity.F_WIChecktime(fieldOr(rs, "F_WIChecktime", ""));
      Entity.F_PUprovider(fieldOr(rs, "F_PUprovider", 2));
      Entity.F_PUNote(fieldOr(rs, "F_PUNote", ""));
      Entity.F_PUChecker(fieldOr(rs, "F_PUChecker", ""));
      Entity.F_PUCheckTime(fieldOr(rs, "F_PUCheckTime", ""));
      Entity.F_QCStd(fieldOr(rs, "F_QCStd", 2));
      Entity.F_QCNote(fieldOr(rs, "F_QCNote", ""));
      Entity.F_QChecker(fieldOr(rs, "F_QChecker", ""));
      Entity.F_QCheckTime(fieldOr(rs, "F_QCheckTime", ""));
      Entity.F_MKDate(fieldOr(rs, "F_MKDate", "0"));
      Entity.F_MKNote(fieldOr(rs, "F_MKNote", ""));
      Entity.F_MKChecker(fieldOr(rs, "F_MKChecker", ""));
      Entity.F_MKCheckTime(fieldOr(rs, "F_MKCheckTime", ""));
      Entity.F_Way(fieldOr(rs, "F_Way", ""));
      Entity.F_CSNote(fieldOr(rs, "F_CSNote", ""));
      Entity.F_CSChecker(fieldOr(rs, "F_CSChecker", ""));
      Entity.F_CSCheckTime(fieldOr(rs, "F_CSCheckTime", ""));
      Entity.F_AlerTime(fieldOr(rs, "F_AlerTime", ""));
      Entity.F_Status(fieldOr(rs, "F_Status", 2));
    }
    rs.Close();
    // No success value is ever stored: callers judge the load by the filled entity.
  } catch (...) {
    queryHandler(result);
  }
  return result;
}

std::int16_t clsDataPOrderChk::QueryProdNoView(clsEntPOrderChk& Entity) {
  std::int16_t result = 0;
  try {
    std::string sql =
        "select distinct "
        "F_ProdNo,F_OrderNo,F_ItemNo,F_CustNo,F_CorderNo,F_OrderCount,F_DeliverDate,F_CItemNo  "
        "from T_POrderChk  where F_ProdNo=" +
        CStr(Entity.F_ProdNo());
    Recordset& rs = recordset();
    openRead(rs, sql, connection());
    if (noRows(rs)) {
      // Not found is 2 here, not 0.
      result = 2;
    } else {
      readOrderColumns(rs, Entity);
      result = 1;
    }
    rs.Close();
  } catch (...) {
    queryHandler(result);
  }
  return result;
}

std::int16_t clsDataPOrderChk::QueryMonthDate(Collection& objColl) {
  std::int16_t result = 0;
  try {
    appendRows<clsEntPOrderChk>(
        "select distinct  left(F_ProdNo,6) as F_ProdNo  from T_POrderChk  order by F_ProdNo desc limit 0,12",
        objColl, readProdNoOnly);
    // No success value is ever stored: the filled collection is the answer.
  } catch (...) {
    writeHandler(result, {.result = 0});
  }
  return result;
}

std::int16_t clsDataPOrderChk::QueryProdNo(Collection& objColl) {
  std::int16_t result = 0;
  try {
    appendRows<clsEntPOrderChk>("select F_ProdNo  from T_POrderChk order by F_ProdNo desc", objColl,
                                readProdNoOnly);
    // No success value is ever stored: the filled collection is the answer.
  } catch (...) {
    queryHandler(result);
  }
  return result;
}

std::int16_t clsDataPOrderChk::AddRecord(Collection& objColl, const std::string& OrderNo,
                                         const std::string& CustNo, const std::string& CorderNo,
                                         std::int16_t LenInt) {
  std::int16_t result = 0;
  try {
    if (objColl.Count() < 1) return result;
    renewRecordset();
    ConnectionPtr cn = connection();
    // Held around the whole allocation, so that what follows a lost session fails too instead of
    // reaching a new session outside the allocation's transaction.
    const CallScope call(cn);
    lastAllocationAttempts_ = 0;
    auto allocate = [&] {
      // The month is the server's: the first six characters of the number against those of curdate().
      Recordset& rs = recordset();
      openStatement(rs,
                    "select * from t_porderchk where "
                    "left(cast(F_ProdNo as char),6)=left(cast(curdate()+0 as char),6)",
                    cn, adOpenKeyset, adLockPessimistic, adCmdUnspecified);
      double nextProdNo = 0;
      if (!noRows(rs)) {
        rs.Close();
        // The month goes on from its largest number, whatever LenInt says now.
        openStatement(rs,
                      "select max(F_ProdNo) as ProdNo from T_POrderChk where "
                      "left(cast(F_ProdNo as char),6)=left(cast(curdate()+0 as char),6)",
                      cn, adOpenKeyset, adLockPessimistic, adCmdUnspecified);
        nextProdNo = CDbl(rs.Fields("prodno").value()) + 1;
        rs.Close();
      } else {
        rs.Close();
        openStatement(rs, "select left(cast(curdate()+0 as char),6) as ProdNo", cn, adOpenKeyset,
                      adLockPessimistic, adCmdUnspecified);
        std::string month = CStr(rs.Fields("ProdNo").value());
        rs.Close();
        // Any other width leaves the number at 0: the month then starts from 0.
        switch (LenInt) {
          case 2:
            nextProdNo = CDbl(Value(month + "01"));
            break;
          case 3:
            nextProdNo = CDbl(Value(month + "001"));
            break;
          case 4:
            nextProdNo = CDbl(Value(month + "0001"));
            break;
          case 5:
            nextProdNo = CDbl(Value(month + "00001"));
            break;
          default:
            break;
        }
      }

      // The sequence part is not bounded: its width is the caller's business. The lines done before
      // an error stay done, with or without the allocation's transaction.
      double orderNo = Val(OrderNo);
      for (std::int32_t i = 1; i <= objColl.Count(); ++i) {
        clsEntBOrderi line(objColl.Item(i));
        auto review = newRecordset();
        openStatement(*review, "select * from  t_porderchk", cn, adOpenKeyset, adLockPessimistic,
                      adCmdUnspecified);
        review->AddNew();
        review->Fields("F_ProdNo") = nextProdNo;
        review->Fields("f_OrderNo") = line.F_OrderNo();
        review->Fields("f_CustNo") = CustNo;
        review->Fields("F_ItemNo") = line.F_ItemNo();
        review->Fields("f_CorderNo") = CorderNo;
        review->Fields("f_OrderCount") = line.F_OrderQty();
        review->Fields("f_DeliverDate") = line.F_DeliverDate();
        review->Fields("F_CItemNO") = line.F_CItemNo();
        review->Update();
        openStatement(recordset(),
                      "update T_BOrderi set F_ProdNo=" + CStr(nextProdNo) +
                          " where F_OrderNo=" + CStr(orderNo) + " and F_ItemNo='" + line.F_ItemNo() +
                          "' and f_No='" + line.F_No() + "'",
                      cn, adOpenKeyset, adLockPessimistic, adCmdUnspecified);
        // The header is flagged again for every line.
        openStatement(recordset(), "update T_BOrderh set F_Flags=1 where F_OrderNo=" + CStr(orderNo), cn,
                      adOpenKeyset, adLockPessimistic, adCmdUnspecified);
        renewRecordset();
        nextProdNo += 1.0;
      }
    };
    if (cn->serializesAllocation()) {
      SerializedAllocation serialized(
          cn, [this] { return newRecordset(); }, allocationBound_);
      serialized.run(
          allocate, [this] { renewRecordset(); }, lastAllocationAttempts_);
    } else {
      allocate();
    }
    result = 1;
  } catch (...) {
    writeHandler(result, {.result = 0});
  }
  return result;
}

std::int16_t clsDataPOrderChk::QureyDatabase(const std::string& SQLStr, Collection& objColl) {
  std::int16_t result = 0;
  try {
    // The caller's text runs as it stands; it must give the six columns read below.
    result = appendRows<clsEntBOrderh>(SQLStr, objColl, [](Recordset& row, clsEntBOrderh& entity) {
      entity.F_OrderNo(fieldOr(row, "F_OrderNo", 0));
      entity.F_OrderDate(fieldOr(row, "F_OrderDate", "0:00:00"));
      entity.F_CorderNo(fieldOr(row, "F_CorderNo", ""));
      entity.F_CustNo(fieldOr(row, "F_CustNo", ""));
      entity.F_ProdNo(fieldOr(row, "F_ProdNo", 0));
      entity.F_ItemNo(fieldOr(row, "F_ItemNo", ""));
    });
  } catch (...) {
    writeHandler(result, {.result = 0});
  }
  return result;
}

std::int16_t clsDataPOrderChk::QuerySalerID(clsEntBOrderh& Entity) {
  std::int16_t result = 0;
  try {
    std::string sql =
        "Select h.F_SalerID From T_BOrderh h,(Select F_OrderNo From T_BOrderi Where F_ProdNo='" +
        CStr(Entity.F_ProdNo()) + "' ) Bi Where Bi.F_OrderNo=h.F_OrderNo";
    Recordset& rs = recordset();
    openRead(rs, sql, connection());
    if (noRows(rs)) {
      result = 0;
    } else {
      Entity.F_SalerID(fieldOr(rs, "F_SalerID", ""));
      result = 1;
    }
    rs.Close();
  } catch (...) {
    writeHandler(result, {.result = 0});
  }
  return result;
}

}  // namespace tovrand
