#pragma once

#include <string>

namespace tovrand::cli {

// The texts the program carries with it: the schema (schema/tovrand.sql) and the sample data
// (schema/sample.sql). They are built into the program when the build finds them, and read from the
// source tree otherwise; a text found in neither place raises std::runtime_error.
std::string schemaSql();
std::string sampleSql();

}  // namespace tovrand::cli
