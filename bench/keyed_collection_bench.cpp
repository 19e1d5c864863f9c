// The ordered keyed collection under every list: fetch by key and by position must not grow with
// the size of the list; appending and draining from the front must stay cheap per entry.
#include <benchmark/benchmark.h>

#include <cstdint>
#include <random>
#include <string>
#include <vector>

#include "xun/support/keyed_collection.h"

namespace {

using Collection = xun::OrderedKeyedCollection<int32_t>;

std::vector<std::string> MakeKeys(int64_t count) {
  std::vector<std::string> keys;
  keys.reserve(static_cast<size_t>(count));
  for (int64_t i = 0; i < count; ++i)
    keys.push_back("K" + std::to_string(i));
  return keys;
}

void Fill(Collection& list, const std::vector<std::string>& keys) {
  int32_t value = 0;
  for (const auto& key : keys)
    list.Add(value++, key);
}

void BM_KeyedAppend(benchmark::State& state) {
  const auto keys = MakeKeys(state.range(0));
  for (auto _ : state) {
    Collection list;
    Fill(list, keys);
    benchmark::DoNotOptimize(list.Count());
    state.PauseTiming();
    list.Clear();  // freeing the nodes is not appending
    state.ResumeTiming();
  }
  state.SetItemsProcessed(state.iterations() * state.range(0));
}

// Lookups are drawn from a fixed seed beforehand, so the timed loop does nothing but fetch.
// "Spread" lookups pick from the whole list: at a million entries nearly every fetch misses the
// caches and the TLB. "Hot" lookups cycle over 1,000 entries scattered through the list, with a
// lookup table small enough to leave their cache lines resident: they show what the collection
// itself costs as it grows. Their pages still outnumber the TLB at a million entries; running with
// GLIBC_TUNABLES=glibc.malloc.hugetlb=1 (transparent huge pages for the heap) takes that out too.
constexpr size_t kSpreadLookups = size_t{1} << 20;
constexpr size_t kHotLookups = 4096;
constexpr int32_t kHotEntries = 1000;

// Positions (1-based) to fetch: from the whole list, or from `hot` of its entries.
std::vector<int32_t> PickPositions(int32_t count, int32_t hot) {
  std::mt19937_64 random(42);
  std::uniform_int_distribution<int32_t> any(1, count);
  std::vector<int32_t> pool;
  for (int32_t i = 0; i < hot; ++i) {
    pool.push_back(any(random));
  }
  std::uniform_int_distribution<size_t> from_pool(0, pool.empty() ? 0 : pool.size() - 1);
  const size_t lookups = pool.empty() ? kSpreadLookups : kHotLookups;
  std::vector<int32_t> positions;
  positions.reserve(lookups);
  for (size_t i = 0; i < lookups; ++i) {
    positions.push_back(pool.empty() ? any(random) : pool[from_pool(random)]);
  }
  return positions;
}

void FetchByKey(benchmark::State& state, int32_t hot) {
  const auto keys = MakeKeys(state.range(0));
  Collection list;
  Fill(list, keys);
  std::vector<xun::Index> lookups;
  for (int32_t position : PickPositions(list.Count(), hot)) {
    lookups.emplace_back(keys[static_cast<size_t>(position - 1)]);
  }

  size_t next = 0;
  for (auto _ : state) {
    benchmark::DoNotOptimize(list.Item(lookups[next]));
    next = next + 1 == lookups.size() ? 0 : next + 1;
  }
  state.SetItemsProcessed(state.iterations());
}

void FetchByPosition(benchmark::State& state, int32_t hot) {
  const auto keys = MakeKeys(state.range(0));
  Collection list;
  Fill(list, keys);
  std::vector<xun::Index> lookups;
  for (int32_t position : PickPositions(list.Count(), hot))
    lookups.emplace_back(position);

  size_t next = 0;
  for (auto _ : state) {
    benchmark::DoNotOptimize(list.Item(lookups[next]));
    next = next + 1 == lookups.size() ? 0 : next + 1;
  }
  state.SetItemsProcessed(state.iterations());
}

// One iteration drains a full list from the front; the refill is not timed.
void BM_RemoveFront(benchmark::State& state) {
  const auto keys = MakeKeys(state.range(0));
  const xun::Index first(1);
  for (auto _ : state) {
    state.PauseTiming();
    Collection list;
    Fill(list, keys);
    state.ResumeTiming();
    while (!list.empty())
      list.Remove(first);
    benchmark::DoNotOptimize(list.Count());
  }
  state.SetItemsProcessed(state.iterations() * state.range(0));
}

// Every benchmark runs at the three list sizes.
void Sizes(benchmark::internal::Benchmark* run) {
  run->Arg(1000)->Arg(100000)->Arg(1000000)->Unit(benchmark::kNanosecond);
}

}  // namespace

BENCHMARK(BM_KeyedAppend)->Apply(Sizes);
BENCHMARK_CAPTURE(FetchByKey, spread, 0)->Apply(Sizes);
BENCHMARK_CAPTURE(FetchByKey, hot, kHotEntries)->Apply(Sizes);
BENCHMARK_CAPTURE(FetchByPosition, spread, 0)->Apply(Sizes);
BENCHMARK_CAPTURE(FetchByPosition, hot, kHotEntries)->Apply(Sizes);
BENCHMARK(BM_RemoveFront)->Apply(Sizes);

BENCHMARK_MAIN();
