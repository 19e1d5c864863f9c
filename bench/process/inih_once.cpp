// The whole-process yardstick for read_once: a program that parses the same template file with
// inih, a bare INI tokenizer that builds nothing, and ends. Timed the same way, alternating, e.g.
//   hyperfine -N --warmup 3 --runs 15 'build/bench/inih_once big.omr' 'build/bench/read_once
//   big.omr'
#include <ini.h>

#include <cstdio>

namespace {

int CountKey(void* user, const char*, const char*, const char*) {
  ++*static_cast<unsigned long*>(user);
  return 1;
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 2) {
    std::fprintf(stderr, "usage: inih_once TEMPLATE\n");
    return 2;
  }
  unsigned long keys = 0;
  // Like the reader, a parse that stops on a bad line has failed.
  return ini_parse(argv[1], CountKey, &keys) == 0 && keys > 0 ? 0 : 1;
}
