#include "cli/Embedded.h"

#include <cstring>
#include <fstream>
#include <sstream>
#include <stdexcept>

namespace tovrand::cli {

namespace {

// The assembler copies a file into the program's read-only data, followed by a NUL so that the
// text's end is known; the SQL texts never contain a NUL themselves.
#define TOVRAND_EMBED(symbol, path)                                                                 \
  asm(".section .rodata\n.global " #symbol "\n" #symbol ":\n.incbin \"" TOVRAND_SOURCE_DIR "/" path \
      "\"\n.byte 0\n.previous\n");                                                                  \
  extern "C" const char symbol[];

#if __has_include("../schema/tovrand.sql")
TOVRAND_EMBED(tovrand_embedded_schema_sql, "schema/tovrand.sql")
const char* const kSchema = tovrand_embedded_schema_sql;
#else
const char* const kSchema = nullptr;
#endif

#if __has_include("../schema/sample.sql")
TOVRAND_EMBED(tovrand_embedded_sample_sql, "schema/sample.sql")
const char* const kSample = tovrand_embedded_sample_sql;
#else
const char* const kSample = nullptr;
#endif

std::string builtInOrFile(const char* builtIn, const char* relativePath) {
  if (builtIn) return std::string(builtIn, std::strlen(builtIn));
  const std::string path = std::string(TOVRAND_SOURCE_DIR) + "/" + relativePath;
  std::ifstream in(path, std::ios::binary);
  if (!in) throw std::runtime_error("cannot read " + path);
  std::ostringstream text;
  text << in.rdbuf();
  return text.str();
}

}  // namespace

std::string schemaSql() {
  return builtInOrFile(kSchema, "schema/tovrand.sql");
}
std::string sampleSql() {
  return builtInOrFile(kSample, "schema/sample.sql");
}

}  // namespace tovrand::cli
