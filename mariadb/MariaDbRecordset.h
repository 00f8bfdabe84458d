#pragma once

#include "engine/EngineRecordset.h"

namespace tovrand {

// ADO's Recordset on MariaDB Connector/C, with OdbcRecordset's observable behaviour: the same texts
// reach the server at the same moments, the same statements are traced, the same values and errors
// come back.
//
// Read form (lock read-only): the text is sent at Open as one text-protocol query and its rows are
// stored on the client at once, so that another recordset on the same session may run while this one
// is read.
// Updatable on a whole table (`select * from T`, with or without conditions): the table's columns are
// learned once per session from the server's preparation of the text (no row is read), and the text
// runs only when something first looks at rows. Opening a whole table only to AddNew therefore sends
// nothing but the INSERT once the table is known. Any other updatable text runs at Open like a read;
// the result's own description says which table and column each field comes from.
// AddNew ... Update stores INSERT INTO `table` (`assigned columns`) VALUES (?, ...); an edit of the
// current row stores UPDATE `table` SET `column`=?, ... WHERE `key column`=? ... LIMIT 1 with the row's
// original key values. Both are prepared statements with bound parameters, prepared once per session
// and text, reported to the trace as the engine's statements.
// A statement without a result set leaves the recordset closed.
class MariaDbRecordset final : public engine::EngineRecordset {
 public:
  MariaDbRecordset();
};

}  // namespace tovrand
