// clsDataPOrder.QueryAllProdNo: the production numbers of the last twelve months, by the server's date.
#include <gtest/gtest.h>

#include "tests/porder/POrderTest.h"

namespace tovrand::test {
namespace {

const std::vector<std::string> kStatements{"select curdate() as dd",
                                           "select F_ProdNo from T_POrder order by F_ProdNo desc"};

class InNovember : public POrderTest {
 protected:
  std::string serverDate() const override { return "2026-11-22"; }
};

class InDecember : public POrderTest {
 protected:
  std::string serverDate() const override { return "2026-12-05"; }
};

TEST_F(InNovember, QueryAllProdNoOnAnEmptyTableReturnsZeroAndTheLeadingZero) {
  std::vector<double> numbers{5, 6, 7};
  EXPECT_EQ(porder().QueryAllProdNo(numbers), 0);
  EXPECT_EQ(numbers, std::vector<double>{0});
  EXPECT_EQ(sql(), kStatements);
  EXPECT_TRUE(messages().messages().empty());
}

TEST_F(InNovember, QueryAllProdNoLeavesOutThePeriodStartsOwnMonth) {
  exec(
      "insert into t_porder (F_ProdNo) values (2025110001), (2025120001), (2025120002), (2026010001), "
      "(2026110003), (2026110001), (2026120001)");
  std::vector<double> numbers;

  EXPECT_EQ(porder().QueryAllProdNo(numbers), 1);

  EXPECT_EQ(numbers, (std::vector<double>{0, 2026120001, 2026110003, 2026110001, 2026010001}));
  EXPECT_EQ(sql(), kStatements);
}

TEST_F(InNovember, QueryAllProdNoWithOnlyOlderNumbersReturnsOneAndTheLeadingZero) {
  exec("insert into t_porder (F_ProdNo) values (2024050001), (2025120009)");
  std::vector<double> numbers;
  EXPECT_EQ(porder().QueryAllProdNo(numbers), 1);
  EXPECT_EQ(numbers, std::vector<double>{0});
}

TEST_F(InDecember, QueryAllProdNoStartsTheYearInJanuaryAndLeavesJanuaryOut) {
  exec(
      "insert into t_porder (F_ProdNo) values (2025120001), (2026010001), (2026010002), (2026020001), "
      "(2026120001)");
  std::vector<double> numbers;

  EXPECT_EQ(porder().QueryAllProdNo(numbers), 1);

  EXPECT_EQ(numbers, (std::vector<double>{0, 2026120001, 2026020001}));
}

TEST_F(InNovember, QueryAllProdNoWithANumberThatHasNoMonthShowsTheConversionError) {
  exec("insert into t_porder (F_ProdNo) values (2026110001), (7)");
  std::vector<double> numbers;

  EXPECT_EQ(porder().QueryAllProdNo(numbers), 1);

  EXPECT_EQ(numbers, (std::vector<double>{0, 2026110001}));
  EXPECT_EQ(
      messages().messages(),
      (std::vector<Message>{{VbError::of(vberr::kTypeMismatch).description(), vbInformation, kTitleQuenta}}));
}

}  // namespace
}  // namespace tovrand::test
