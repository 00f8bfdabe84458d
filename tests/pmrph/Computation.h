#pragma once

#include <cmath>
#include <ostream>
#include <string>
#include <vector>

namespace tovrand::test {

// The ten figures AccountData takes and hands back, in the order of its arguments.
struct Figures {
  double C1, A, P, M, K, S, SQ, AT, BN, ATi;

  bool operator==(const Figures& o) const {
    auto same = [](double a, double b) { return a == b || (std::isnan(a) && std::isnan(b)); };
    return same(C1, o.C1) && same(A, o.A) && same(P, o.P) && same(M, o.M) && same(K, o.K) && same(S, o.S) &&
           same(SQ, o.SQ) && same(AT, o.AT) && same(BN, o.BN) && same(ATi, o.ATi);
  }
  friend void PrintTo(const Figures& f, std::ostream* os) {
    *os << "{C1 " << f.C1 << ", A " << f.A << ", P " << f.P << ", M " << f.M << ", K " << f.K << ", S " << f.S
        << ", SQ " << f.SQ << ", AT " << f.AT << ", BN " << f.BN << ", ATi " << f.ATi << "}";
  }
};

// The look-ups both computations send after the header, for production number `prodNo` (as
// spliced) and material `itemNo`: without a review row the sales-order line is not looked up.
inline std::vector<std::string> lookUpStatements(const std::string& prodNo, const std::string& itemNo,
                                                 bool reviewFound) {
  std::vector<std::string> out{"SELECT * FROM T_POrderChk WHERE F_ProdNo='" + prodNo + "'"};
  if (reviewFound) out.push_back("Select * From T_BOrderi Where F_ProdNo='" + prodNo + "'");
  out.push_back("SELECT * FROM T_WStockQtyh WHERE F_ItemNo='" + itemNo + "'");
  out.push_back("SELECT sum(F_StockQty) as S FROM T_WStockQtyi WHERE F_ItemNo='" + itemNo +
                "' group by F_ItemNo");
  return out;
}

// The open purchases look-up, with the blanks that follow its "where" (AccountData writes three,
// the computation of a new header two).
inline std::string purchasesStatement(const std::string& prodNo, const std::string& itemNo,
                                      const std::string& blanks) {
  return "SELECT SUM(F_PurQty) as C1 FROM T_CPuri ,(select F_PurNo as PurNo from T_CPurh where" + blanks +
         "F_Status<>3) h WHERE F_ItemNo='" + itemNo + "' and F_Status<>3 and F_ProdNo=" + prodNo +
         " and F_PurNo=h.PurNo";
}

// The statements AccountData sends when every look-up runs.
inline std::vector<std::string> accountDataStatements(const std::string& prodNo, const std::string& itemNo,
                                                      bool reviewFound) {
  std::vector<std::string> out{"SELECT * FROM T_PMrph WHERE F_ProdNo=" + prodNo};
  for (std::string& s : lookUpStatements(prodNo, itemNo, reviewFound)) out.push_back(std::move(s));
  out.push_back(purchasesStatement(prodNo, itemNo, "   "));
  out.push_back("SELECT F_ReduceQty FROM T_WStockQtys WHERE F_ItemNo='" + itemNo +
                "' and F_ProdNo=" + prodNo);
  return out;
}

}  // namespace tovrand::test
