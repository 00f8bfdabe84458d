#pragma once

#include <memory>
#include <string_view>
#include <vector>

#include "odbc/OdbcApi.h"

namespace tovrand::odbc {

// The rows of an executed statement, read forward.
//
// Where text crosses the driver as UTF-8 and every column has a known size, the columns are bound to
// buffers of this object and the driver fills a block of rows per fetch: one call per block instead of
// one per value, and a value is only made into a Value when someone asks for it. Otherwise each row is
// fetched alone and every column read with SQLGetData.
class ResultRows {
 public:
  ResultRows() = default;
  ResultRows(const ResultRows&) = delete;
  ResultRows& operator=(const ResultRows&) = delete;

  // Starts reading the result of `stmt` (executed, its columns described); nothing is fetched yet.
  void start(SQLHSTMT stmt, std::shared_ptr<const std::vector<ColumnInfo>> columns, TextForm form,
             std::string_view secret);
  // Moves to the next row; false when there is none.
  bool fetch();
  // A column of the current row.
  Value value(std::size_t column) const;
  // Forgets the statement (its buffers are kept for the next one).
  void reset();

  // Rows per fetch where the columns are bound.
  static constexpr SQLULEN kBlockRows = 32;

 private:
  struct Slot {
    SQLSMALLINT cType = 0;
    std::size_t offset = 0;     // of the value within a row
    std::size_t bytes = 0;      // room for the value
    std::size_t indicator = 0;  // offset of its length or NULL indicator within a row
  };

  bool bindAll();
  bool fetchBlock();
  void readRow();
  [[noreturn]] void tooLong(std::size_t column) const;

  SQLHSTMT stmt_ = SQL_NULL_HSTMT;
  std::shared_ptr<const std::vector<ColumnInfo>> columns_;
  TextForm form_ = TextForm::Wide;
  std::string_view secret_;
  bool bound_ = false;

  // Bound: a block of rows, one after the other, `rowBytes_` each.
  std::vector<Slot> slots_;
  std::size_t rowBytes_ = 0;
  std::unique_ptr<char[]> block_;
  std::size_t blockCapacity_ = 0;
  SQLULEN fetched_ = 0;
  SQLULEN position_ = 0;

  // Not bound: the current row's values.
  std::vector<Value> row_;
};

}  // namespace tovrand::odbc
