#pragma once

// The answers of `tovrand run` written as text straight into an output buffer, value by value, as the
// rows are read: a list of a hundred entities would otherwise be built as a tree of some two thousand
// nodes and then walked once more to write it. Every function writes exactly the bytes the Json forms
// of cli/Json.h give when dumped compactly (invalid UTF-8 replaced), so either path may answer.

#include <string>
#include <string_view>

#include "cli/Json.h"

namespace tovrand::cli {

// A JSON string: quotes, the escapes the Json dump writes, UTF-8 passed through.
void writeString(std::string& out, std::string_view text);
// A double as numberToJson gives it.
void writeNumber(std::string& out, double v);
// A date as formatDate gives it, quoted.
void writeDate(std::string& out, VbDate date);
// A Variant as valueToJson gives it.
void writeValue(std::string& out, const Value& v);
// An entity as entityToJson gives it.
void writeEntity(std::string& out, const Entity& entity, bool withClass = false);
// A Collection as collectionToJson gives it.
void writeCollection(std::string& out, const Collection& collection, const EntityClass& cls);
// An argument after the call as argumentToJson gives it.
void writeArgument(std::string& out, const Argument& arg, const ParamInfo& param);
// Any tree, dumped compactly.
void writeJson(std::string& out, const Json& j);

}  // namespace tovrand::cli
