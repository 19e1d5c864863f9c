// Reading and writing a large template file (20 pages x 50 regions x 30 questions, about 17 MB),
// measured against inih, a bare INI tokenizer that builds nothing, on the same file.
#include <benchmark/benchmark.h>
#include <ini.h>
#include <malloc.h>
#include <unistd.h>

#include <cstdlib>
#include <ctime>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <new>
#include <string>

#include "bench/large_template.h"
#include "xun/xun.h"

// While `tracking` is on, every C++ allocation of the process (the library's too) is counted, so
// the peak of the heap during a read can be taken: glibc only reports what is in use now. Off
// during the timed runs, so the counting costs them nothing. Blocks allocated before tracking and
// freed during it would be subtracted too; the measured read frees none of those.
namespace {
bool tracking = false;
long long live_bytes = 0;
long long peak_bytes = 0;

void* Allocate(size_t size) {
  void* p = std::malloc(size == 0 ? 1 : size);
  if (!p) throw std::bad_alloc();
  if (tracking) {
    live_bytes += static_cast<long long>(malloc_usable_size(p));
    if (live_bytes > peak_bytes) peak_bytes = live_bytes;
  }
  return p;
}

void Release(void* p) noexcept {
  if (!p) return;
  if (tracking) live_bytes -= static_cast<long long>(malloc_usable_size(p));
  std::free(p);
}
}  // namespace

void* operator new(size_t size) {
  return Allocate(size);
}
void* operator new[](size_t size) {
  return Allocate(size);
}
void operator delete(void* p) noexcept {
  Release(p);
}
void operator delete[](void* p) noexcept {
  Release(p);
}
void operator delete(void* p, size_t) noexcept {
  Release(p);
}
void operator delete[](void* p, size_t) noexcept {
  Release(p);
}

namespace {

namespace fs = std::filesystem;

// The file every benchmark reads, written once per process outside any timing.
struct Fixture {
  fs::path dir;
  fs::path file;
  std::string bytes;
  std::shared_ptr<xun::clsXUNTemplate> tmpl;

  Fixture() {
    dir = fs::temp_directory_path() / ("xun_template_file_bench_" + std::to_string(::getpid()));
    fs::create_directories(dir);
    file = dir / "large.omr";
    tmpl = xun::bench::BuildLargeTemplate(true);
    if (!tmpl->Save(file.string(), false)) std::abort();
    std::ifstream in(file, std::ios::binary);
    bytes.assign(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
  }
  ~Fixture() {
    std::error_code ec;
    fs::remove_all(dir, ec);
  }
};

Fixture& Shared() {
  static Fixture fixture;
  return fixture;
}

// inih's CPU time per parse of the file, kept so BM_Read can report its own time as a ratio.
// CPU time of this thread, not wall time: the ratio should not depend on the machine's load.
double inih_seconds_per_parse = 0;

double ThreadSeconds() {
  timespec now{};
  clock_gettime(CLOCK_THREAD_CPUTIME_ID, &now);
  return static_cast<double>(now.tv_sec) + static_cast<double>(now.tv_nsec) / 1e9;
}

int CountKey(void* user, const char*, const char*, const char*) {
  ++*static_cast<size_t*>(user);
  return 1;
}

void BM_InihParse(benchmark::State& state) {
  const Fixture& f = Shared();
  size_t keys = 0;
  const double start = ThreadSeconds();
  for (auto _ : state) {
    keys = 0;
    if (ini_parse_string(f.bytes.c_str(), CountKey, &keys) != 0) state.SkipWithError("inih");
    benchmark::DoNotOptimize(keys);
  }
  inih_seconds_per_parse = (ThreadSeconds() - start) / static_cast<double>(state.iterations());
  state.SetBytesProcessed(state.iterations() * static_cast<int64_t>(f.bytes.size()));
  state.counters["keys"] = static_cast<double>(keys);
  state.counters["file_MB"] = static_cast<double>(f.bytes.size()) / 1e6;
}
BENCHMARK(BM_InihParse)->Unit(benchmark::kMillisecond);

// Tearing the tree down is not part of the read: inih builds nothing to tear down.
void BM_Read(benchmark::State& state) {
  const Fixture& f = Shared();
  double spent = 0;
  for (auto _ : state) {
    auto t = xun::clsXUNTemplate::Create();
    const double start = ThreadSeconds();
    if (!t->Read(f.file.string(), true)) state.SkipWithError("Read failed");
    spent += ThreadSeconds() - start;
    state.PauseTiming();
    t.reset();
    state.ResumeTiming();
  }
  state.SetBytesProcessed(state.iterations() * static_cast<int64_t>(f.bytes.size()));
  // Above 1 means the full read is slower than inih's bare tokenizing of the same bytes.
  if (inih_seconds_per_parse > 0)
    state.counters["vs_inih"] =
        spent / static_cast<double>(state.iterations()) / inih_seconds_per_parse;
}
BENCHMARK(BM_Read)->Unit(benchmark::kMillisecond);

void BM_Save(benchmark::State& state) {
  const Fixture& f = Shared();
  const std::string target = (f.dir / "saved.omr").string();
  for (auto _ : state)
    if (!f.tmpl->Save(target, false)) state.SkipWithError("Save failed");
  state.SetBytesProcessed(state.iterations() * static_cast<int64_t>(f.bytes.size()));
}
BENCHMARK(BM_Save)->Unit(benchmark::kMillisecond);

// The heap during one read: its peak above the start, and what the finished tree keeps
// (glibc's count of bytes in use), each also as a multiple of the file's size.
void BM_ReadMemory(benchmark::State& state) {
  const Fixture& f = Shared();
  const double file_bytes = static_cast<double>(f.bytes.size());
  for (auto _ : state) {
    const size_t in_use_before = mallinfo2().uordblks;
    live_bytes = peak_bytes = 0;
    tracking = true;
    auto t = xun::clsXUNTemplate::Create();
    if (!t->Read(f.file.string(), true)) state.SkipWithError("Read failed");
    tracking = false;
    const auto peak = static_cast<size_t>(peak_bytes);
    const size_t retained = mallinfo2().uordblks - in_use_before;
    state.counters["peak_MB"] = static_cast<double>(peak) / 1e6;
    state.counters["peak_x_file"] = static_cast<double>(peak) / file_bytes;
    state.counters["tree_MB"] = static_cast<double>(retained) / 1e6;
    state.counters["tree_x_file"] = static_cast<double>(retained) / file_bytes;
    benchmark::DoNotOptimize(t);
  }
}
BENCHMARK(BM_ReadMemory)->Iterations(1)->Unit(benchmark::kMillisecond);

}  // namespace

BENCHMARK_MAIN();
