// One whole process that reads one template and ends: what a host that only reads templates pays,
// start-up included. Timed from outside (many runs, median), e.g.
//   hyperfine -N --warmup 20 --runs 200 'build/bench/read_once examples/templates/exam.omr'
#include <cstdio>

#include "xun/xun.h"

int main(int argc, char** argv) {
  if (argc != 2) {
    std::fprintf(stderr, "usage: read_once TEMPLATE\n");
    return 2;
  }
  const auto form = xun::clsXUNTemplate::Create();
  const bool read = form->Read(argv[1], true);
  form->Free();
  return read ? 0 : 1;
}
