#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace tovrand::engine {

// What the engine can tell about a statement from its text alone, so that it need not ask the server
// what it already knows. Nothing here changes the text that is sent.

// The table of a text that selects every column of one table: `select * from T`, optionally with an
// alias and followed by WHERE, ORDER BY, GROUP BY, HAVING or LIMIT. Such a text's result columns are
// the table's, whatever its conditions say. The name comes back lower-cased (table names are compared
// without regard to case), with its database prefix when the text has one. nullopt for anything else:
// joins, derived tables, a select list, UNION.
std::optional<std::string> wholeTableOf(std::string_view sql);

// A key under which texts that differ only in the literals of their conditions meet: the quoted texts
// and numbers after the first WHERE outside parentheses are blanked out. A literal there cannot change
// the result's columns (only the select list and the FROM clause name them), so such texts share one
// column description. A text with UNION keeps every literal (the second select list may change the
// result's types).
std::string resultShapeOf(std::string_view sql);

// A name as a MariaDB identifier in the texts the engines write: in backquotes, a backquote doubled.
std::string quoted(std::string_view identifier);

}  // namespace tovrand::engine
