#include "bench/Cases.h"

#include <algorithm>
#include <cctype>
#include <stdexcept>
#include <string_view>

#include "component/Component.h"
#include "entities/Collection.h"
#include "entities/Entities.h"
#include "frame/Invoke.h"

namespace tovrand::bench {

namespace {

VbDate date(int y, int m, int d, int h = 0, int mi = 0) {
  return makeDate({y, m, d, h, mi, 0});
}

std::string lowerCase(std::string_view text) {
  std::string out(text);
  for (char& c : out) c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
  return out;
}

Outcome listed(int status, const Collection& c) {
  return {status, static_cast<std::size_t>(c.Count())};
}

// Material j (1..5) of the bill of order i's product, as the data set's planning lines hold it.
std::string lineMaterial(const DataSet& d, int i, int j) {
  int p = (i - 1) % d.products() + 1;
  return d.material(((p - 1) * 5 + j - 1) % d.materials() + 1);
}

// The planning line j of order i as the data set holds it.
clsEntPMrpi storedLine(const DataSet& d, int i, int j) {
  clsEntPMrpi e;
  e.F_ProdNo(d.prodNo(i));
  e.F_ItemNo(lineMaterial(d, i, j));
  e.F_Dosage(1.0 + j);
  e.F_Waste(0.05);
  e.F_SafeQty(5.0);
  e.F_RequestQty((i + j) % 2 == 0 ? 8.0 : 0.0);
  e.F_LeadTime(static_cast<std::int16_t>(j + 2));
  e.F_Status(static_cast<std::int16_t>((i + j) % 4));
  return e;
}

// The planning header of order i with the figures the data set gave it.
clsEntPMrph storedHeader(const DataSet& d, int i) {
  clsEntPMrph e;
  e.F_ProdNo(d.prodNo(i));
  e.F_ItemNo(d.product(i));
  e.F_OrderQty(100.0 + i % 400);
  e.F_SafeQty(static_cast<double>(i % 20));
  e.F_NeedQty(50.0 + i % 100);
  e.F_PlanPurQty(i % 3 == 0 ? 20.0 : 0.0);
  e.F_Status(static_cast<std::int16_t>(i % 4));
  return e;
}

// Lines of a bill for planning creation: materials first..first+count-1 of the data set.
void billLines(Collection& lines, const std::vector<std::string>& materials) {
  int j = 0;
  for (const std::string& m : materials) {
    clsEntPMrpi line;
    line.F_ItemNo(m);
    line.F_Dosage(1.0 + j % 5);
    line.F_Waste(0.05);
    line.F_LeadTime(static_cast<std::int16_t>(3 + j % 4));
    lines.Add(line);
    ++j;
  }
}

// The lines of a sales order waiting for its review, as the sales screens pass them.
void salesLines(Collection& lines, int order, int count) {
  for (int k = 1; k <= count; ++k) {
    clsEntBOrderi line;
    line.F_OrderNo(static_cast<double>(order));
    line.F_No(CStr(k));
    char item[32];
    std::snprintf(item, sizeof item, "FG-%06d", k);
    line.F_ItemNo(std::string(item));
    line.F_CItemNo("HM-" + CStr(k));
    line.F_OrderQty(100.0 + k);
    line.F_DeliverDate(date(2027, 1, 8));
    lines.Add(line);
  }
}

void restoreReviews(DataSet& d, int order) {
  d.exec("DELETE FROM t_porderchk WHERE F_OrderNo = " + CStr(order));
  d.exec("UPDATE t_borderi SET F_ProdNo = NULL WHERE F_OrderNo = " + CStr(order));
  d.exec("UPDATE t_borderh SET F_Flags = 0 WHERE F_OrderNo = " + CStr(order));
}

void restorePlanning(DataSet& d, double prodNo, const std::vector<std::string>& items) {
  std::string p = CStr(prodNo);
  d.exec("DELETE FROM t_pmrph WHERE F_ProdNo = " + p);
  d.exec("DELETE FROM t_pmrpi WHERE F_ProdNo = " + p);
  d.exec("DELETE FROM t_wstockqtys WHERE F_ProdNo = " + p);
  std::string in;
  for (const std::string& item : items) in += (in.empty() ? "'" : ", '") + item + "'";
  d.exec(
      "UPDATE t_wstockqtyh h JOIN bench_keep_wstockqtyh k ON h.F_ItemNo = k.F_ItemNo SET h.F_SafeQty = "
      "k.F_SafeQty, h.F_NoPoStockQty = k.F_NoPoStockQty WHERE h.F_ItemNo IN (" +
      in + ")");
}

void restoreRelease(DataSet& d, double prodNo) {
  std::string p = CStr(prodNo);
  d.exec("INSERT INTO t_pmrpi SELECT * FROM bench_keep_pmrpi WHERE F_ProdNo = " + p);
  d.exec("INSERT INTO t_wstockqtys SELECT * FROM bench_keep_wstockqtys WHERE F_ProdNo = " + p);
}

std::vector<std::string> smallBill(const DataSet& d, int v) {
  // Product v+1's first three materials.
  std::vector<std::string> m;
  for (int j = 1; j <= 3; ++j) m.push_back(d.material((v * 5 + j - 1) % d.materials() + 1));
  return m;
}

std::vector<std::string> largeBill(const DataSet& d) {
  std::vector<std::string> m;
  for (int k = 1; k <= 200; ++k) m.push_back(d.material(k));
  return m;
}

using Call = std::function<Outcome(DataSet&, Objects&, int)>;

// A member that fills one entity found by the production number of an order in the middle of the table.
template <class Cls, class Ent>
Call oneByProdNo(std::unique_ptr<Cls> Objects::*object, std::int16_t (Cls::*member)(Ent&)) {
  return [object, member](DataSet& d, Objects& o, int v) {
    Ent e;
    e.F_ProdNo(d.prodNo(d.middleOrder(v)));
    return Outcome{((*(o.*object)).*member)(e)};
  };
}

std::vector<Case> makeCases() {
  std::vector<Case> all;
  using Restore = std::function<void(DataSet&, int)>;
  // `detail`: what the member's variants have in common where that needs saying; `keySuffix` tells
  // apart two cases of one member.
  auto add = [&](const MemberInfo& member, std::string detail, std::string keySuffix, int expected,
                 int appendOnlyOpens, bool addsToWholeTable, std::string grows, Call call,
                 Restore restore = {}) {
    const ClassInfo& cls = componentClassOf(member);
    std::string label(member.name);
    if (!detail.empty()) label += " (" + detail + ")";
    std::string key = lowerCase(cls.name.substr(std::string_view("clsData").size())) + "." +
                      std::string(member.name) + keySuffix;
    all.push_back({std::string(cls.name), std::move(label), std::move(key), expected, appendOnlyOpens,
                   addsToWholeTable, std::move(grows), std::move(call), std::move(restore), &member});
  };
  const std::string lists = "its answer lists the table";

  // clsDataPOrder
  add(memberOf<&clsDataPOrder::QueryByStrSql>(), "1 row", ".1", 1, 0, false, "",
      [](DataSet& d, Objects& o, int v) {
        Collection c;
        std::string condition = " where F_ProdNo ='" + d.prodNoText(d.middleOrder(v)) + "'";
        return listed(o.porder->QueryByStrSql(c, condition), c);
      });
  add(memberOf<&clsDataPOrder::QueryByStrSql>(), "100 rows", ".100", 1, 0, false, "",
      [](DataSet& d, Objects& o, int v) {
        Collection c;
        std::string condition = " where F_CustNo ='" + d.customer(d.middleOrder(v)) + "'";
        return listed(o.porder->QueryByStrSql(c, condition), c);
      });
  add(memberOf<&clsDataPOrder::GetALLChkList>(), "", "", 1, 0, false, lists, [](DataSet&, Objects& o, int) {
    Collection c;
    return listed(o.porder->GetALLChkList(c), c);
  });
  add(memberOf<&clsDataPOrder::QueryItem>(), "", "", 1, 0, false, "",
      oneByProdNo(&Objects::porder, &clsDataPOrder::QueryItem));
  add(memberOf<&clsDataPOrder::CheckCustProdNo>(), "", "", 1, 0, false, "",
      [](DataSet& d, Objects& o, int v) {
        clsEntPOrder e;
        int i = d.middleOrder(v);
        return Outcome{o.porder->CheckCustProdNo(e, d.customer(i), d.prodNo(i))};
      });
  add(
      memberOf<&clsDataPOrder::AddRecord>(), "", "", 1, 1, true, "",
      [](DataSet&, Objects& o, int v) {
        clsEntPOrder e;
        e.F_ProdNo(DataSet::kNewProdNoBase + v + 1);
        e.F_CustNo("C00001");
        e.F_SalerID("李娜");
        e.F_ItemNo("FG-000200");
        e.F_OrderMode("正常");
        e.F_OrderNo(601001.0);
        e.F_COrderNo("客户单-1");
        e.F_BalQty(50.0);
        e.F_OrdQty(50.0);
        e.F_DeliverDate(date(2027, 1, 10));
        e.F_Status(1);
        return Outcome{o.porder->AddRecord(e)};
      },
      [](DataSet& d, int v) {
        d.exec("DELETE FROM t_porder WHERE F_ProdNo = " + CStr(DataSet::kNewProdNoBase + v + 1));
      });
  add(memberOf<&clsDataPOrder::UpdateRecord>(), "", "", 1, 0, false, "", [](DataSet& d, Objects& o, int v) {
    // The row's own values: every call stores what the data set holds, so nothing drifts.
    int i = d.middleOrder(v) + 1;
    VbDate month = d.month(i);
    bool outsourced = i % 10 == 0;
    clsEntPOrder e;
    e.F_ProdNo(d.prodNo(i));
    e.F_CustNo(d.customer(i));
    e.F_SalerID("王伟");
    e.F_ItemNo(d.product(i));
    e.F_OrderMode(outsourced ? "外发加工" : "正常");
    e.F_OrderNo(d.salesOrder(i));
    e.F_COrderNo("PO-" + CStr(i));
    e.F_InQty(static_cast<double>(i % 50));
    e.F_InDate(VbDate{month.serial + 3});
    e.F_OutQty(static_cast<double>(i % 7));
    e.F_OutDate(VbDate{month.serial + 9});
    e.F_OutBkQty(0.0);
    e.F_BalQty(40.0 + i % 60);
    e.F_OrdQty(100.0 + i % 400);
    e.F_DeliverDate(VbDate{month.serial + 25});
    e.F_ProdQty(static_cast<double>(i % 90));
    e.F_ProdDate(VbDate{month.serial + 12});
    e.F_Status(static_cast<std::int16_t>(outsourced ? 0 : 1 + i % 2));
    e.F_OrderOutNo(outsourced ? 0.0 : 700000.0 + i);
    e.F_WoNo(800000.0 + i);
    return Outcome{o.porder->UpdateRecord(e)};
  });
  add(memberOf<&clsDataPOrder::UpdateOrderOutNo>(), "", "", 1, 0, false, "",
      [](DataSet& d, Objects& o, int v) {
        clsEntPOrder e;
        e.F_ProdNo(d.prodNo(d.middleOrder(v) + 2));
        e.F_OrderOutNo(990001.0);
        e.F_ProdDate(date(2026, 11, 20));
        e.F_ProdQty(1.0);
        return Outcome{o.porder->UpdateOrderOutNo(e)};
      });
  add(memberOf<&clsDataPOrder::QueryAllProdNo>(), "", "", 1, 0, false, lists, [](DataSet&, Objects& o, int) {
    std::vector<double> numbers;
    int status = o.porder->QueryAllProdNo(numbers);
    return Outcome{status, numbers.size() - 1};
  });

  // clsDataPOrderChk
  add(memberOf<&clsDataPOrderChk::QueryBOrderiBkQty>(), "", "", 1, 0, false, "",
      [](DataSet& d, Objects& o, int v) {
        int i = d.middleOrder(v);
        clsEntBOrderi e;
        e.F_ProdNo(d.prodNo(i));
        e.F_ItemNo(d.product(i));
        return Outcome{o.porderchk->QueryBOrderiBkQty(e)};
      });
  add(memberOf<&clsDataPOrderChk::JudgeExits>(), "", "", 1, 0, false, "", [](DataSet& d, Objects& o, int v) {
    return Outcome{o.porderchk->JudgeExits(d.product(d.middleOrder(v)))};
  });
  add(memberOf<&clsDataPOrderChk::UpdateRecord>(), "", "", 1, 0, false, "",
      [](DataSet& d, Objects& o, int v) {
        clsEntPOrderChk e;
        e.F_ProdNo(d.prodNo(d.middleOrder(v)));
        e.F_BStradCon(1);
        e.F_BSNote("交期确认");
        e.F_BSChecker("李娜");
        e.F_BSCheckTime(date(2026, 11, 21, 9, 30));
        return Outcome{o.porderchk->UpdateRecord(e, "业务")};
      });
  add(memberOf<&clsDataPOrderChk::QueryAll>(), "", "", 0, 0, false, "", [](DataSet& d, Objects& o, int v) {
    clsEntPOrderChk e;
    return Outcome{o.porderchk->QueryAll(e, d.prodNo(d.middleOrder(v)))};
  });
  add(memberOf<&clsDataPOrderChk::QueryProdNoView>(), "", "", 1, 0, false, "",
      oneByProdNo(&Objects::porderchk, &clsDataPOrderChk::QueryProdNoView));
  add(memberOf<&clsDataPOrderChk::QueryMonthDate>(), "", "", 0, 0, false,
      "its statement reads the whole table for the months", [](DataSet&, Objects& o, int) {
        Collection c;
        return listed(o.porderchk->QueryMonthDate(c), c);
      });
  add(memberOf<&clsDataPOrderChk::QueryProdNo>(), "", "", 0, 0, false, lists, [](DataSet&, Objects& o, int) {
    Collection c;
    return listed(o.porderchk->QueryProdNo(c), c);
  });
  add(
      memberOf<&clsDataPOrderChk::AddRecord>(), "3 lines", "", 1, 3, true,
      "its statements read the month's reviews, a 24th of the table",
      [](DataSet&, Objects& o, int v) {
        int order = DataSet::kReviewSalesOrderBase + v + 1;
        Collection lines;
        salesLines(lines, order, 3);
        return Outcome{o.porderchk->AddRecord(lines, CStr(order), "C00001", "HM-NEW-" + CStr(order), 5)};
      },
      [](DataSet& d, int v) { restoreReviews(d, DataSet::kReviewSalesOrderBase + v + 1); });
  add(memberOf<&clsDataPOrderChk::QureyDatabase>(), "", "", 1, 0, false, "",
      [](DataSet& d, Objects& o, int v) {
        Collection c;
        std::string sql =
            "select h.F_OrderNo, h.F_OrderDate, h.F_CorderNo, h.F_CustNo, i.F_ProdNo, i.F_ItemNo from "
            "T_BOrderh "
            "h, T_BOrderi i where h.F_OrderNo = i.F_OrderNo and h.F_OrderNo = " +
            CStr(d.salesOrder(d.middleOrder(v)));
        return listed(o.porderchk->QureyDatabase(sql, c), c);
      });
  add(memberOf<&clsDataPOrderChk::QuerySalerID>(), "", "", 1, 0, false, "",
      oneByProdNo(&Objects::porderchk, &clsDataPOrderChk::QuerySalerID));

  // clsDataPMrph
  add(memberOf<&clsDataPMrph::QueryBOrderhRecordset>(), "", "", 0, 0, false, "",
      [](DataSet& d, Objects& o, int v) {
        clsEntBOrderh e;
        return Outcome{o.pmrph->QueryBOrderhRecordset(e, d.prodNo(d.middleOrder(v)))};
      });
  add(memberOf<&clsDataPMrph::QueryPMrphRecordset>(), "", "", 1, 0, false, "",
      [](DataSet& d, Objects& o, int v) {
        Collection c;
        std::string sql = "select * from T_PMrph where F_ItemNo = '" + d.product(d.middleOrder(v)) + "'";
        return listed(o.pmrph->QueryPMrphRecordset(c, sql), c);
      });
  add(memberOf<&clsDataPMrph::QueryPMrphStatus>(), "", "", 1, 0, false, "",
      oneByProdNo(&Objects::pmrph, &clsDataPMrph::QueryPMrphStatus));
  add(memberOf<&clsDataPMrph::QueryByItemNo>(), "", "", 1, 0, false, "",
      oneByProdNo(&Objects::pmrph, &clsDataPMrph::QueryByItemNo));
  add(memberOf<&clsDataPMrph::UpdateRecord>(), "", "", 1, 0, false, "", [](DataSet& d, Objects& o, int v) {
    clsEntPMrph e = storedHeader(d, d.middleOrder(v));
    return Outcome{o.pmrph->UpdateRecord(e)};
  });
  add(memberOf<&clsDataPMrph::QueryByIDForPur>(), "20 rows", "", 1, 0, false, "",
      [](DataSet& d, Objects& o, int v) {
        Collection c;
        return listed(o.pmrph->QueryByIDForPur(c, d.prodNo(d.purchasingOrder(v)),
                                               d.prodNo(d.purchasingOrder(19)), 1, ""),
                      c);
      });
  add(memberOf<&clsDataPMrph::QueryByDeliverDate>(), "20 rows", "", 1, 0, false, "",
      [](DataSet&, Objects& o, int v) {
        Collection c;
        return listed(o.pmrph->QueryByDeliverDate(c, date(2027, 6, 15 - v), date(2027, 6, 16 + v), 1), c);
      });
  add(memberOf<&clsDataPMrph::QueryMonthDate>(), "", "", 1, 0, false,
      "its statement reads the whole table for the months", [](DataSet&, Objects& o, int) {
        Collection c;
        return listed(o.pmrph->QueryMonthDate(c), c);
      });
  add(memberOf<&clsDataPMrph::QueryProdNo>(), "", "", 1, 0, false, lists, [](DataSet&, Objects& o, int) {
    Collection c;
    return listed(o.pmrph->QueryProdNo(c), c);
  });
  add(memberOf<&clsDataPMrph::QueryStatus>(), "", "", 1, 0, false, "",
      oneByProdNo(&Objects::pmrph, &clsDataPMrph::QueryStatus));
  add(memberOf<&clsDataPMrph::QueryProdNoRecord>(), "", "", 1, 0, false, "",
      oneByProdNo(&Objects::pmrph, &clsDataPMrph::QueryProdNoRecord));
  add(
      memberOf<&clsDataPMrph::AddRecord1>(), "3 materials", "", 1, 2, false, "",
      [](DataSet& d, Objects& o, int v) {
        clsEntPMrph e;
        e.F_ProdNo(d.unplannedProdNo(v));
        e.F_ItemNo(d.productCode(v + 1));
        Collection lines;
        billLines(lines, smallBill(d, v));
        return Outcome{o.pmrph->AddRecord1(e, lines)};
      },
      [](DataSet& d, int v) {
        std::vector<std::string> items = smallBill(d, v);
        items.push_back(d.productCode(v + 1));
        restorePlanning(d, d.unplannedProdNo(v), items);
      });
  add(memberOf<&clsDataPMrph::AddRecord>(), "", "", 1, 0, false, "", [](DataSet& d, Objects& o, int v) {
    clsEntPMrph e = storedHeader(d, d.middleOrder(v));
    return Outcome{o.pmrph->AddRecord(e)};
  });
  add(memberOf<&clsDataPMrph::AccountData>(), "", "", 1, 0, false, "", [](DataSet& d, Objects& o, int v) {
    int i = d.middleOrder(v);
    clsEntPMrph e;
    e.F_ProdNo(d.prodNo(i));
    e.F_ItemNo(d.product(i));
    double C1 = 0, A = 0, P = 0, M = 0, K = 0, S = 0, SQ = 0, AT = 0, BN = 0, ATi = 0;
    return Outcome{o.pmrph->AccountData(e, C1, A, P, M, K, S, SQ, AT, BN, ATi)};
  });

  // clsDataPMrpi
  add(memberOf<&clsDataPMrpi::QueryPMrpiStatus>(), "", "", 1, 0, false, "",
      [](DataSet& d, Objects& o, int v) {
        Collection c;
        return listed(o.pmrpi->QueryPMrpiStatus(c, d.prodNo(d.plannedOrder(v))), c);
      });
  add(memberOf<&clsDataPMrpi::UpdatePMrpiStatus>(), "", "", 0, 0, false, "",
      [](DataSet& d, Objects& o, int v) {
        clsEntPMrpi e = storedLine(d, d.plannedOrder(v), 1);
        return Outcome{o.pmrpi->UpdatePMrpiStatus(e)};
      });
  add(memberOf<&clsDataPMrpi::UpdatePMrphStatus>(), "", "", 1, 0, false, "",
      [](DataSet& d, Objects& o, int v) {
        clsEntPMrph e = storedHeader(d, d.plannedOrder(v));
        return Outcome{o.pmrpi->UpdatePMrphStatus(e)};
      });
  add(memberOf<&clsDataPMrpi::UpdateRecord>(), "", "", 1, 0, false, "", [](DataSet& d, Objects& o, int v) {
    clsEntPMrpi e = storedLine(d, d.plannedOrder(v), 2);
    return Outcome{o.pmrpi->UpdateRecord(e)};
  });
  add(memberOf<&clsDataPMrpi::QueryByID>(), "", "", 1, 0, false, "", [](DataSet& d, Objects& o, int v) {
    clsEntPMrpi e;
    e.F_ProdNo(d.prodNo(d.plannedOrder(v)));
    e.F_ItemNo(lineMaterial(d, d.plannedOrder(v), 3));
    return Outcome{o.pmrpi->QueryByID(e)};
  });
  add(memberOf<&clsDataPMrpi::QueryByIDForPur>(), "100 rows", "", 1, 0, false, "",
      [](DataSet& d, Objects& o, int v) {
        Collection c;
        double start = d.prodNo(d.purchasingOrder(v)), end = d.prodNo(d.purchasingOrder(19));
        std::int16_t range = 1;
        return listed(o.pmrpi->QueryByIDForPur(c, start, end, range, ""), c);
      });
  add(memberOf<&clsDataPMrpi::QueryByDeliverDate>(), "100 rows", "", 1, 0, false, "",
      [](DataSet&, Objects& o, int v) {
        Collection c;
        VbDate from = date(2027, 6, 15 - v), to = date(2027, 6, 16 + v);
        std::int16_t range = 1;
        return listed(o.pmrpi->QueryByDeliverDate(c, from, to, range), c);
      });
  add(memberOf<&clsDataPMrpi::GetRecordByCondition>(), "", "", 1, 0, false, "",
      [](DataSet& d, Objects& o, int v) {
        int i = d.purchasingOrder(v);
        clsEntEItem item;
        clsEntPMrph header;
        header.F_ProdNo(d.prodNo(i));
        header.F_ItemNo(d.product(i));
        return Outcome{o.pmrpi->GetRecordByCondition(item, header)};
      });
  add(memberOf<&clsDataPMrpi::GetItemNoByProdNo>(), "", "", 1, 0, false, "",
      [](DataSet& d, Objects& o, int v) {
        Collection c;
        clsEntPMrph header;
        header.F_ProdNo(d.prodNo(d.purchasingOrder(v)));
        return listed(o.pmrpi->GetItemNoByProdNo(c, header), c);
      });
  add(memberOf<&clsDataPMrpi::QueryItemNo>(), "", "", 1, 0, false, "", [](DataSet& d, Objects& o, int v) {
    Collection c;
    return listed(o.pmrpi->QueryItemNo(c, d.product(d.middleOrder(v)), "1"), c);
  });
  add(memberOf<&clsDataPMrpi::QueryEItemNo>(), "", "", 1, 0, false, "", [](DataSet& d, Objects& o, int v) {
    clsEntEItem e;
    e.F_ItemNo(lineMaterial(d, d.middleOrder(v), 2));
    return Outcome{o.pmrpi->QueryEItemNo(e)};
  });
  add(memberOf<&clsDataPMrpi::QueryItemNoRecord>(), "", "", 1, 0, false, "",
      [](DataSet& d, Objects& o, int v) {
        Collection c;
        return listed(o.pmrpi->QueryItemNoRecord(c, d.prodNoText(d.plannedOrder(v))), c);
      });
  add(
      memberOf<&clsDataPMrpi::DeleteAllPMrpiRecord>(), "5 lines", "", 1, 0, false, "",
      [](DataSet& d, Objects& o, int v) {
        return Outcome{o.pmrpi->DeleteAllPMrpiRecord(d.prodNo(d.plannedOrder(v)))};
      },
      [](DataSet& d, int v) { restoreRelease(d, d.prodNo(d.plannedOrder(v))); });
  add(
      memberOf<&clsDataPMrpi::AddRecord>(), "", "", 1, 1, true, "",
      [](DataSet& d, Objects& o, int v) {
        clsEntPMrpi e;
        e.F_ProdNo(d.prodNo(d.middleOrder(v)));
        e.F_ItemNo(d.material(1));
        e.F_Dosage(2.0);
        e.F_Waste(0.05);
        e.F_SafeQty(5.0);
        e.F_RequestQty(12.0);
        e.F_LeadTime(4);
        return Outcome{o.pmrpi->AddRecord(e)};
      },
      [](DataSet& d, int v) {
        d.exec("DELETE FROM t_pmrpi WHERE F_ProdNo = " + d.prodNoText(d.middleOrder(v)) +
               " AND F_ItemNo = '" + d.material(1) + "'");
      });
  add(memberOf<&clsDataPMrpi::getProdNoItemNo>(), "", "", 1, 0, false,
      "its statement reads the whole table (a LIKE '%...%')", [](DataSet& d, Objects& o, int v) {
        Collection c;
        Value result = o.pmrpi->getProdNoItemNo(c, d.prodNoText(d.purchasingOrder(v)));
        return listed(result.isEmpty() ? 1 : 0, c);
      });
  add(memberOf<&clsDataPMrpi::getProdNoItemNoByPMrpi>(), "", "", 1, 0, false, "",
      [](DataSet& d, Objects& o, int v) {
        Collection c;
        Value result = o.pmrpi->getProdNoItemNoByPMrpi(c, d.prodNoText(d.purchasingOrder(v)));
        return listed(result.isEmpty() ? 1 : 0, c);
      });
  add(memberOf<&clsDataPMrpi::QueryAllNullRecord>(), "", "", 1, 0, false,
      "its statement reads both planning tables whole (up to 1,000 numbers)", [](DataSet&, Objects& o, int) {
        Collection c;
        return listed(o.pmrpi->QueryAllNullRecord(c), c);
      });
  // A member added to a class's table without a case here would go unmeasured.
  for (const ClassInfo& cls : componentClasses())
    for (const MemberInfo& m : cls.members)
      if (std::none_of(all.begin(), all.end(), [&](const Case& c) { return c.member == &m; }))
        throw std::logic_error("no benchmark case for " + std::string(cls.name) + "." + std::string(m.name));
  return all;
}

}  // namespace

const std::vector<Case>& cases() {
  static const std::vector<Case> all = makeCases();
  return all;
}

const std::vector<Workload>& workloads() {
  static const std::vector<Workload> all = {
      {"review creation for a sales order of 1,000 lines (clsDataPOrderChk.AddRecord)", "workload.review1000",
       1000,
       [](DataSet&, Objects& o) {
         Collection lines;
         salesLines(lines, DataSet::kLargeSalesOrder, 1000);
         return Outcome{
             o.porderchk->AddRecord(lines, CStr(DataSet::kLargeSalesOrder), "C00001", "HM-LARGE", 5)};
       },
       [](DataSet& d) { restoreReviews(d, DataSet::kLargeSalesOrder); }},
      {"AddRecord1 for a product with a 200-material bill (clsDataPMrph.AddRecord1)", "workload.plan200", 2,
       [](DataSet& d, Objects& o) {
         clsEntPMrph e;
         e.F_ProdNo(DataSet::kLargeBillProdNo);
         e.F_ItemNo(DataSet::kLargeBillProduct);
         Collection lines;
         billLines(lines, largeBill(d));
         return Outcome{o.pmrph->AddRecord1(e, lines)};
       },
       [](DataSet& d) {
         std::vector<std::string> items = largeBill(d);
         items.push_back(DataSet::kLargeBillProduct);
         restorePlanning(d, DataSet::kLargeBillProdNo, items);
       }},
      {"DeleteAllPMrpiRecord of 200 lines with reservations (clsDataPMrpi)", "workload.release200", 0,
       [](DataSet&, Objects& o) {
         return Outcome{o.pmrpi->DeleteAllPMrpiRecord(DataSet::kLargeReleaseProdNo)};
       },
       [](DataSet& d) { restoreRelease(d, DataSet::kLargeReleaseProdNo); }},
  };
  return all;
}

}  // namespace tovrand::bench
