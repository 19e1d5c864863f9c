// The object model at the size of a large real form: 20 pages x 50 regions x 30 questions.
#include <benchmark/benchmark.h>
#include <malloc.h>

#include <string>

#include "bench/large_template.h"
#include "xun/xun.h"

namespace {

using xun::bench::kPages;
using xun::bench::kQuestions;
using xun::bench::kRegions;

std::shared_ptr<xun::clsXUNTemplate> BuildTemplate() {
  return xun::bench::BuildLargeTemplate(false);
}

void BM_Build(benchmark::State& state) {
  for (auto _ : state)
    benchmark::DoNotOptimize(BuildTemplate());
  state.SetItemsProcessed(state.iterations() * kPages * kRegions * kQuestions);
}
BENCHMARK(BM_Build)->Unit(benchmark::kMillisecond);

void BM_Copy(benchmark::State& state) {
  const auto t = BuildTemplate();
  for (auto _ : state)
    benchmark::DoNotOptimize(t->Copy());
}
BENCHMARK(BM_Copy)->Unit(benchmark::kMillisecond);

void BM_NumItems(benchmark::State& state) {
  const auto t = BuildTemplate();
  for (auto _ : state)
    benchmark::DoNotOptimize(t->NumItems());
}
BENCHMARK(BM_NumItems)->Unit(benchmark::kMicrosecond);

void BM_NumQuestions(benchmark::State& state) {
  const auto t = BuildTemplate();
  for (auto _ : state)
    benchmark::DoNotOptimize(t->NumQuestions());
}
BENCHMARK(BM_NumQuestions)->Unit(benchmark::kMicrosecond);

// Every item of the template looked up once per iteration.
void BM_GetQuestionEveryItem(benchmark::State& state) {
  const auto t = BuildTemplate();
  const int16_t items = t->NumItems();
  for (auto _ : state)
    for (int16_t i = 1; i <= items; ++i)
      benchmark::DoNotOptimize(t->GetQuestion(i));
  state.SetItemsProcessed(state.iterations() * items);
}
BENCHMARK(BM_GetQuestionEveryItem)->Unit(benchmark::kMillisecond);

// The heap held by one tree (glibc's count of bytes in use), as a counter.
void BM_TreeMemory(benchmark::State& state) {
  for (auto _ : state) {
    const size_t before = mallinfo2().uordblks;
    auto t = BuildTemplate();
    const size_t after = mallinfo2().uordblks;
    state.counters["tree_bytes"] = static_cast<double>(after - before);
    benchmark::DoNotOptimize(t);
  }
}
BENCHMARK(BM_TreeMemory)->Iterations(1)->Unit(benchmark::kMillisecond);

}  // namespace

BENCHMARK_MAIN();
