#include "cli/CommandLine.h"

int main(int argc, char** argv) {
  return cmpihost::cli::RunCommandLine(argc, argv);
}
