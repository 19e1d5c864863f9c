// Writes the benchmarks' large template (bench/large_template.h, about 17 MB) to a file, for
// timing whole processes on it from outside: read_once against inih_once.
#include <cstdio>

#include "bench/large_template.h"

int main(int argc, char** argv) {
  if (argc != 2) {
    std::fprintf(stderr, "usage: make_large_template OUTPUT.omr\n");
    return 2;
  }
  return xun::bench::BuildLargeTemplate(true)->Save(argv[1], false) ? 0 : 1;
}
