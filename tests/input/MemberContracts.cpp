// What every member of the four classes may answer, and a realistic call of each on the sample data
// (schema/sample.sql, curdate() on 2026-11-22).
#include "frame/Invoke.h"
#include "frame/Messages.h"
#include "pmrph/clsDataPMrph.h"
#include "pmrpi/clsDataPMrpi.h"
#include "porder/clsDataPOrder.h"
#include "porderchk/clsDataPOrderChk.h"
#include "tests/input/MemberCalls.h"

namespace tovrand::test {

namespace {

Value num(double v) {
  return Value(v);
}
Value small(int v) {
  return Value(static_cast<std::int16_t>(v));
}
Value day(int y, int m, int d, int h = 0, int mi = 0, int s = 0) {
  return Value(makeDate({y, m, d, h, mi, s}));
}
CollectionShape list(std::string elementClass, std::vector<EntityShape> elements = {}) {
  return CollectionShape{std::move(elementClass), std::move(elements)};
}

const MessageForm kWrite{vbInformation, kTitleQuenta, true};
const MessageForm kQuery{vbInformation, kTitleQuenta, false};
const MessageForm kCriticalQuenta{vbCritical, kTitleQuenta, false};
const MessageForm kCriticalNotice{vbCritical, kTitleErrorNotice, false};

using S = std::vector<std::int16_t>;

// A production order as the maintenance screen holds it, every property set.
EntityShape fullOrder(double prodNo) {
  return {"clsEntPOrder",
          {{"F_ProdNo", num(prodNo)},
           {"F_OrderMode", Value("外发加工")},
           {"F_OrderNo", num(2610004)},
           {"F_OrderOutNo", num(26110002)},
           {"F_ItemNo", Value("FG-1003")},
           {"F_CustNo", Value("C003")},
           {"F_COrderNo", Value("HT-1008-A")},
           {"F_InQty", num(120)},
           {"F_InDate", day(2026, 11, 20, 15, 30)},
           {"F_OutQty", num(100)},
           {"F_OutDate", day(2026, 11, 21, 9)},
           {"F_OutBkQty", num(2)},
           {"F_BalQty", num(500)},
           {"F_OrdQty", num(500)},
           {"F_DeliverDate", day(2026, 11, 30)},
           {"F_ProdQty", num(120)},
           {"F_ProdDate", day(2026, 11, 19)},
           {"F_Status", small(0)},
           {"F_SalerID", Value("王芳")},
           {"F_WoNo", num(26100002)}}};
}

// A review as the review screens hold it, every department's columns filled.
EntityShape fullReview() {
  return {"clsEntPOrderChk",
          {{"F_ProdNo", num(2026110003)},
           {"F_OrderNo", num(2611006)},
           {"F_ItemNo", Value("FG-1001")},
           {"F_CustNo", Value("C004")},
           {"F_CorderNo", Value("YJ-20261109")},
           {"F_OrderCount", num(1000)},
           {"F_DeliverDate", day(2026, 12, 28)},
           {"F_CItemNo", Value("YJ-BW-R")},
           {"F_BStradCon", small(1)},
           {"F_BSNote", Value("月结30天")},
           {"F_BSAlertNote", Value("红色款")},
           {"F_BSChecker", Value("刘洋")},
           {"F_BSCheckTime", day(2026, 11, 22, 9, 5)},
           {"F_EGAdmit", small(1)},
           {"F_EGModel", small(1)},
           {"F_EGNote", Value("沿用图纸")},
           {"F_EGChecker", Value("李明")},
           {"F_EGCheckTime", day(2026, 11, 22, 10)},
           {"F_WIFill", num(850)},
           {"F_WIEndtime", day(2026, 12, 10)},
           {"F_WPStock", num(150)},
           {"F_WPEndTime", day(2026, 12, 12)},
           {"F_WINote", Value("成品仓有库存")},
           {"F_WIChecker", Value("赵磊")},
           {"F_WIChecktime", day(2026, 11, 22, 11)},
           {"F_PUprovider", small(1)},
           {"F_PUNote", Value("")},
           {"F_PUChecker", Value("孙丽")},
           {"F_PUCheckTime", day(2026, 11, 22, 13, 30)},
           {"F_QCStd", small(1)},
           {"F_QCNote", Value("按企业标准")},
           {"F_QChecker", Value("周涛")},
           {"F_QCheckTime", day(2026, 11, 22, 14)},
           {"F_MKDate", small(1)},
           {"F_MKNote", Value("插单")},
           {"F_MKChecker", Value("吴强")},
           {"F_MKCheckTime", day(2026, 11, 22, 15)},
           {"F_Way", Value("自制")},
           {"F_CSNote", Value("同意")},
           {"F_CSChecker", Value("郑总")},
           {"F_CSCheckTime", day(2026, 11, 22, 17)},
           {"F_AlerTime", day(2026, 12, 20)},
           {"F_Status", small(1)}}};
}

EntityShape header(double prodNo, const char* item, double orderQty, double safeQty, double needQty,
                   double planPurQty, int status) {
  return {"clsEntPMrph",
          {{"F_ProdNo", num(prodNo)},
           {"F_ItemNo", Value(item)},
           {"F_OrderQty", num(orderQty)},
           {"F_SafeQty", num(safeQty)},
           {"F_NeedQty", num(needQty)},
           {"F_PlanPurQty", num(planPurQty)},
           {"F_Status", small(status)}}};
}

EntityShape line(double prodNo, const char* item, double dosage, double waste, double safeQty,
                 double requestQty, int leadTime, int status) {
  return {"clsEntPMrpi",
          {{"F_ProdNo", num(prodNo)},
           {"F_ItemNo", Value(item)},
           {"F_Dosage", num(dosage)},
           {"F_Waste", num(waste)},
           {"F_SafeQty", num(safeQty)},
           {"F_RequestQty", num(requestQty)},
           {"F_LeadTime", small(leadTime)},
           {"F_Status", small(status)}}};
}

std::vector<MemberContract> contracts() {
  std::vector<MemberContract> c;

  // clsDataPOrder
  c.push_back({&memberOf<&clsDataPOrder::QueryByStrSql>(),
               S{0, 1},
               S{0, 1},
               kCriticalQuenta,
               {},
               {{list("clsEntPOrder"), Value(" where F_CustNo='C003'")}}});
  c.push_back(
      {&memberOf<&clsDataPOrder::GetALLChkList>(), S{0, 1}, S{0, 1}, kQuery, {}, {{list("clsEntPOrder")}}});
  c.push_back({&memberOf<&clsDataPOrder::QueryItem>(),
               S{0, 1},
               S{0},
               kQuery,
               {},
               {{EntityShape{"clsEntPOrder", {{"F_ProdNo", num(2026100001)}}}}}});
  c.push_back({&memberOf<&clsDataPOrder::CheckCustProdNo>(),
               S{0, 1},
               S{0},
               kQuery,
               {},
               {{EntityShape{"clsEntPOrder", {}}, Value("C003"), num(2026100001)}}});
  c.push_back({&memberOf<&clsDataPOrder::AddRecord>(),
               S{0, 1},
               S{0},
               kWrite,
               {"t_porder", "t_borderi"},
               {{EntityShape{"clsEntPOrder",
                             {{"F_ProdNo", num(2026110002)},
                              {"F_CustNo", Value("C004")},
                              {"F_SalerID", Value("刘洋")},
                              {"F_ItemNo", Value("FG-1003")},
                              {"F_OrderMode", Value("自制")},
                              {"F_OrderNo", num(2611006)},
                              {"F_COrderNo", Value("YJ-20261109")},
                              {"F_BalQty", num(800)},
                              {"F_OrdQty", num(800)},
                              {"F_DeliverDate", day(2026, 12, 20)},
                              {"F_Status", small(2)}}}}}});
  c.push_back({&memberOf<&clsDataPOrder::UpdateRecord>(),
               S{0, 1},
               S{0},
               kWrite,
               {"t_porder"},
               {{fullOrder(2026100002)}}});
  c.push_back({&memberOf<&clsDataPOrder::UpdateOrderOutNo>(),
               S{0, 1},
               S{0},
               kWrite,
               {"t_porder"},
               {{EntityShape{"clsEntPOrder",
                             {{"F_ProdNo", num(2026100002)},
                              {"F_OrderOutNo", num(26110009)},
                              {"F_ProdDate", day(2026, 11, 20, 8, 30)},
                              {"F_ProdQty", num(100)}}}}}});
  c.push_back(
      {&memberOf<&clsDataPOrder::QueryAllProdNo>(), S{0, 1}, S{0, 1}, kQuery, {}, {{DoubleArrayShape{0.0}}}});

  // clsDataPOrderChk
  c.push_back(
      {&memberOf<&clsDataPOrderChk::QueryBOrderiBkQty>(),
       S{0, 1},
       S{0},
       kWrite,
       {},
       {{EntityShape{"clsEntBOrderi", {{"F_ProdNo", num(2026100001)}, {"F_ItemNo", Value("RM-2001")}}}}}});
  c.push_back({&memberOf<&clsDataPOrderChk::JudgeExits>(), S{0, 1}, S{0}, kWrite, {}, {{Value("FG-1001")}}});
  {
    MemberContract signOff{
        &memberOf<&clsDataPOrderChk::UpdateRecord>(), S{0, 1}, S{0}, kWrite, {"t_porderchk"}, {}};
    const char* departments[] = {"业务", "工程", "仓库", "采购", "品保", "生管", "终审"};
    for (const char* department : departments) signOff.starts.push_back({fullReview(), Value(department)});
    // Each department's statement reads its own columns; the production number is in every one.
    signOff.propertyStarts = {
        {"F_ProdNo", {0, 1, 2, 3, 4, 5, 6}},
        {"F_BStradCon", {0}},
        {"F_BSAlertNote", {0}},
        {"F_BSNote", {0}},
        {"F_BSChecker", {0}},
        {"F_BSCheckTime", {0}},
        {"F_EGAdmit", {1}},
        {"F_EGNote", {1}},
        {"F_EGModel", {1}},
        {"F_EGChecker", {1}},
        {"F_EGCheckTime", {1}},
        {"F_WIFill", {2}},
        {"F_WIEndtime", {2}},
        {"F_WPStock", {2}},
        {"F_WPEndTime", {2}},
        {"F_WINote", {2}},
        {"F_WIChecker", {2}},
        {"F_WIChecktime", {2}},
        {"F_PUprovider", {3}},
        {"F_PUNote", {3}},
        {"F_PUChecker", {3}},
        {"F_PUCheckTime", {3}},
        {"F_QCStd", {4}},
        {"F_QCNote", {4}},
        {"F_QChecker", {4}},
        {"F_QCheckTime", {4}},
        {"F_MKDate", {5}},
        {"F_MKNote", {5}},
        {"F_MKChecker", {5}},
        {"F_MKCheckTime", {5}},
        {"F_CSNote", {6}},
        {"F_Way", {6}},
        {"F_CSChecker", {6}},
        {"F_CSCheckTime", {6}},
    };
    c.push_back(std::move(signOff));
  }
  c.push_back({&memberOf<&clsDataPOrderChk::QueryAll>(),
               S{0},
               S{0},
               kQuery,
               {},
               {{EntityShape{"clsEntPOrderChk", {}}, num(2026110001)}}});
  c.push_back({&memberOf<&clsDataPOrderChk::QueryProdNoView>(),
               S{0, 1, 2},
               S{0},
               kQuery,
               {},
               {{EntityShape{"clsEntPOrderChk", {{"F_ProdNo", num(2026110001)}}}}}});
  c.push_back(
      {&memberOf<&clsDataPOrderChk::QueryMonthDate>(), S{0}, S{0}, kWrite, {}, {{list("clsEntPOrderChk")}}});
  c.push_back(
      {&memberOf<&clsDataPOrderChk::QueryProdNo>(), S{0}, S{0}, kQuery, {}, {{list("clsEntPOrderChk")}}});
  c.push_back({&memberOf<&clsDataPOrderChk::AddRecord>(),
               S{0, 1},
               S{0},
               kWrite,
               {"t_porderchk", "t_borderi", "t_borderh"},
               {{list("clsEntBOrderi", {EntityShape{"clsEntBOrderi",
                                                    {{"F_OrderNo", num(2611015)},
                                                     {"F_No", Value("1")},
                                                     {"F_ItemNo", Value("FG-1001")},
                                                     {"F_CItemNo", Value("HM-CUP500")},
                                                     {"F_OrderQty", num(2500)},
                                                     {"F_DeliverDate", day(2027, 1, 8)}}}}),
                 Value("2611015"), Value("C001"), Value("HM-PO-261118"), small(4)}}});
  c.push_back({&memberOf<&clsDataPOrderChk::QureyDatabase>(),
               S{0, 1},
               S{0},
               kWrite,
               {},
               {{Value("select h.F_OrderNo, h.F_OrderDate, h.F_CorderNo, h.F_CustNo, i.F_ProdNo, i.F_ItemNo "
                       "from T_BOrderh h, T_BOrderi i where h.F_OrderNo = i.F_OrderNo"),
                 list("clsEntBOrderh")}}});
  c.push_back({&memberOf<&clsDataPOrderChk::QuerySalerID>(),
               S{0, 1},
               S{0},
               kWrite,
               {},
               {{EntityShape{"clsEntBOrderh", {{"F_ProdNo", num(2026110001)}}}}}});

  // clsDataPMrph
  c.push_back({&memberOf<&clsDataPMrph::QueryBOrderhRecordset>(),
               S{0, 2},
               S{2},
               kCriticalNotice,
               {},
               {{EntityShape{"clsEntBOrderh", {}}, num(2026110001)}}});
  c.push_back({&memberOf<&clsDataPMrph::QueryPMrphRecordset>(),
               S{0, 1},
               S{0},
               kCriticalNotice,
               {},
               {{list("clsEntPMrph"), Value("select * from T_PMrph where F_Status = 1")}}});
  c.push_back({&memberOf<&clsDataPMrph::QueryPMrphStatus>(),
               S{0, 1},
               S{0},
               kWrite,
               {},
               {{EntityShape{"clsEntPMrph", {{"F_ProdNo", num(2026110001)}}}}}});
  c.push_back({&memberOf<&clsDataPMrph::QueryByItemNo>(),
               S{0, 1},
               S{0},
               kQuery,
               {},
               {{EntityShape{"clsEntPMrph", {{"F_ProdNo", num(2026110001)}}}}}});
  c.push_back({&memberOf<&clsDataPMrph::UpdateRecord>(),
               S{0, 1, 2},
               S{0},
               kWrite,
               {"t_pmrph"},
               {{header(2026100003, "FG-1002", 300, 20, 300, 280, 1)}}});
  c.push_back({&memberOf<&clsDataPMrph::QueryByIDForPur>(),
               S{0, 1},
               S{0},
               kQuery,
               {},
               {{list("clsEntPMrph"), num(2026090001), num(2026119999), small(1), Value("FG")}}});
  c.push_back({&memberOf<&clsDataPMrph::QueryByDeliverDate>(),
               S{0, 1},
               S{0},
               kQuery,
               {},
               {{list("clsEntPMrph"), day(2026, 11, 1), day(2027, 1, 31), small(1)}}});
  c.push_back(
      {&memberOf<&clsDataPMrph::QueryMonthDate>(), S{0, 1}, S{0}, kQuery, {}, {{list("clsEntPMrph")}}});
  c.push_back({&memberOf<&clsDataPMrph::QueryProdNo>(), S{0, 1}, S{0}, kQuery, {}, {{list("clsEntPMrph")}}});
  c.push_back({&memberOf<&clsDataPMrph::QueryStatus>(),
               S{0, 1},
               S{0},
               kQuery,
               {},
               {{EntityShape{"clsEntPOrder", {{"F_ProdNo", num(2026100003)}}}}}});
  c.push_back({&memberOf<&clsDataPMrph::QueryProdNoRecord>(),
               S{0, 1},
               S{0},
               kQuery,
               {},
               {{EntityShape{"clsEntPMrph", {{"F_ProdNo", num(2026100003)}}}}}});
  {
    // The computation and the reservation are private routines with handlers of their own: their
    // failure shows its message, and the planning goes on and answers 1.
    MemberContract plan{
        &memberOf<&clsDataPMrph::AddRecord1>(),
        S{0, 1},
        S{0, 1},
        kWrite,
        {"t_pmrph", "t_pmrpi", "t_wstockqtys", "t_wstockqtyh"},
        {{EntityShape{"clsEntPMrph", {{"F_ProdNo", num(2026100002)}, {"F_ItemNo", Value("FG-1003")}}},
          list("clsEntPMrpi", {line(2026100002, "RM-2010", 3.2, 0.03, 0, 0, 7, 0)})}}};
    plan.goesOnAfterError = true;
    c.push_back(std::move(plan));
  }
  c.push_back({&memberOf<&clsDataPMrph::AddRecord>(),
               S{0, 1},
               S{0},
               kWrite,
               {"t_pmrph"},
               {{header(2026110001, "FG-1001", 5200, 200, 5000, 100, 1)}}});
  c.push_back({&memberOf<&clsDataPMrph::AccountData>(),
               S{0, 1},
               S{0},
               kWrite,
               {},
               {{EntityShape{"clsEntPMrph", {{"F_ProdNo", num(2026110001)}, {"F_ItemNo", Value("RM-2001")}}},
                 num(0), num(0), num(0), num(0), num(0), num(0), num(0), num(0), num(0), num(0)}}});

  // clsDataPMrpi
  c.push_back({&memberOf<&clsDataPMrpi::QueryPMrpiStatus>(),
               S{0, 1},
               S{0},
               kWrite,
               {},
               {{list("clsEntPMrpi"), num(2026100001)}}});
  c.push_back({&memberOf<&clsDataPMrpi::UpdatePMrpiStatus>(),
               S{0},
               S{0},
               kWrite,
               {"t_pmrpi"},
               {{line(2026100001, "RM-2003", 1, 0.02, 200, 826, 3, 2)}}});
  c.push_back({&memberOf<&clsDataPMrpi::UpdatePMrphStatus>(),
               S{0, 1},
               S{0},
               kWrite,
               {"t_pmrph"},
               {{header(2026110001, "FG-1001", 5200, 200, 5200, 0, 2)}}});
  c.push_back({&memberOf<&clsDataPMrpi::UpdateRecord>(),
               S{0, 1},
               S{0},
               kWrite,
               {"t_pmrpi"},
               {{line(2026100001, "PK-2005", 0.0417, 0, 50, 10, 3, 1)}}});
  c.push_back(
      {&memberOf<&clsDataPMrpi::QueryByID>(),
       S{0, 1, 2},
       S{2},
       kQuery,
       {},
       {{EntityShape{"clsEntPMrpi", {{"F_ProdNo", num(2026110001)}, {"F_ItemNo", Value("RM-2002")}}}}}});
  c.push_back({&memberOf<&clsDataPMrpi::QueryByIDForPur>(),
               S{0, 1, 2},
               S{2},
               kQuery,
               {},
               {{list("clsEntPMrpi"), num(2026090001), num(2026119999), small(1), Value("RM")}}});
  c.push_back({&memberOf<&clsDataPMrpi::QueryByDeliverDate>(),
               S{0, 1, 2},
               S{2},
               kQuery,
               {},
               {{list("clsEntPMrpi"), day(2026, 11, 1), day(2027, 1, 31), small(1)}}});
  c.push_back(
      {&memberOf<&clsDataPMrpi::GetRecordByCondition>(),
       S{0, 1, 2},
       S{2},
       kQuery,
       {},
       {{EntityShape{"clsEntEItem", {}},
         EntityShape{"clsEntPMrph", {{"F_ProdNo", num(2026110001)}, {"F_ItemNo", Value("RM-2001")}}}}}});
  c.push_back({&memberOf<&clsDataPMrpi::GetItemNoByProdNo>(),
               S{0, 1},
               S{0, 1},
               kWrite,
               {},
               {{list("clsEntPMrpi"), EntityShape{"clsEntPMrph", {{"F_ProdNo", num(2026100003)}}}}}});
  c.push_back({&memberOf<&clsDataPMrpi::QueryItemNo>(),
               S{0, 1, 2},
               S{2},
               kQuery,
               {},
               {{list("clsEntEBom"), Value("FG-1001"), Value("1")},
                {list("clsEntEBom"), Value("2026110001"), Value("2")}}});
  c.push_back({&memberOf<&clsDataPMrpi::QueryEItemNo>(),
               S{0, 1, 2},
               S{2},
               kQuery,
               {},
               {{EntityShape{"clsEntEItem", {{"F_ItemNo", Value("RM-2001")}}}}}});
  c.push_back({&memberOf<&clsDataPMrpi::QueryItemNoRecord>(),
               S{0, 1, 2},
               S{2},
               kQuery,
               {},
               {{list("clsEntPMrpi"), Value("2026110001")}}});
  {
    // A failed release of one material shows its message and the loop goes on: 1 with messages.
    MemberContract release{&memberOf<&clsDataPMrpi::DeleteAllPMrpiRecord>(),
                           S{0, 1},
                           S{0, 1},
                           kWrite,
                           {"t_pmrpi", "t_wstockqtys", "t_wstockqtyh"},
                           {{num(2026100001)}}};
    release.goesOnAfterError = true;
    c.push_back(std::move(release));
  }
  c.push_back({&memberOf<&clsDataPMrpi::AddRecord>(),
               S{1, 2},
               S{2},
               kWrite,
               {"t_pmrpi"},
               {{line(2026100002, "RM-2010", 3.2, 0.03, 200, 100, 7, 0)}}});
  c.push_back({&memberOf<&clsDataPMrpi::getProdNoItemNo>(),
               S{},
               S{},
               kQuery,
               {},
               {{list("clsEntPMrph"), Value("202611")}}});
  c.push_back({&memberOf<&clsDataPMrpi::getProdNoItemNoByPMrpi>(),
               S{},
               S{},
               kQuery,
               {},
               {{list("clsEntPMrpi"), Value("2026110001")}}});
  c.push_back(
      {&memberOf<&clsDataPMrpi::QueryAllNullRecord>(), S{0, 1}, S{0}, kWrite, {}, {{list("clsEntPMrph")}}});
  return c;
}

}  // namespace

const std::vector<MemberContract>& memberContracts() {
  static const std::vector<MemberContract> all = contracts();
  return all;
}

const MemberInfo& memberInfo(const MemberContract& contract) {
  return *contract.member;
}

}  // namespace tovrand::test
