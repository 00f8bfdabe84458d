#include "cli/Commands.h"

int main(int argc, char** argv) {
  return tovrand::cli::commandMain(argc, argv);
}
