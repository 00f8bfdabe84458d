#pragma once

#include "engine/EngineRecordset.h"

namespace tovrand {

// ADO's Recordset over ODBC.
//
// Read form (lock read-only): the text is run at Open and the first row fetched.
// Updatable (lock pessimistic, optimistic or batch optimistic) on a whole table (`select * from T`,
// with or without conditions): the columns (base tables, base columns, types, lengths) are the
// table's, learned once per session by preparing the text; the text runs only when something first
// looks at rows (BOF, EOF, reading a field, MoveNext, assigning to the current row). Opening a whole
// table only to AddNew therefore sends nothing but the INSERT once the table is known. Any other
// updatable text runs at Open like a read; where its columns come from is asked when it is first
// edited.
// AddNew ... Update stores INSERT INTO `table` (`assigned columns`) VALUES (?, ...); an edit of the
// current row stores UPDATE `table` SET `column`=?, ... WHERE `key column`=? ... LIMIT 1 with the row's
// original key values. Both are prepared statements with bound parameters, prepared once per session
// and text, reported to the trace as the engine's statements; the columns are listed in the order they
// were first assigned.
// Rows are read a block at a time into bound buffers, and a result's column labels are asked for once
// per session and shape of text (see odbc/ResultRows.h, engine/SqlShape.h).
// A statement without a result set leaves the recordset closed.
class OdbcRecordset final : public engine::EngineRecordset {
 public:
  OdbcRecordset();
};

}  // namespace tovrand
