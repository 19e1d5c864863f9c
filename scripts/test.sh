#!/usr/bin/env bash
# Builds and runs every test twice: a normal g++ build, then a clang build with AddressSanitizer
# and UndefinedBehaviorSanitizer. Also checks the formatting and that the benchmarks compile.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."

./scripts/setup.sh

# Formatting is checked first but judged last, so drift does not hide a failing test.
echo "== clang-format check"
format_dirs=()
for dir in xun imagefile imaging engine tests bench examples tools fuzz python; do
  if [[ -d "$dir" ]]; then format_dirs+=("$dir"); fi
done
mapfile -d '' format_files < <(find "${format_dirs[@]}" -type f \
  \( -name '*.h' -o -name '*.hpp' -o -name '*.cpp' -o -name '*.cc' \) -print0 | sort -z)
drifted=()
for file in "${format_files[@]}"; do
  if ! clang-format --dry-run --Werror "$file" >/dev/null 2>&1; then drifted+=("$file"); fi
done
if ((${#drifted[@]} > 0)); then
  echo "clang-format: ${#drifted[@]} file(s) differ from .clang-format:"
  printf '  %s\n' "${drifted[@]}"
  echo "fix with: clang-format -i ${drifted[*]}"
else
  echo "clang-format: ${#format_files[@]} files clean"
fi

echo "== normal build (g++)"
# Options are given in full so a cache left by an earlier configure cannot switch parts off.
CXX=g++ cmake -S . -B build -G Ninja -DXUN_WERROR=ON -DXUN_SANITIZE=OFF \
  -DXUN_BUILD_TESTS=ON -DXUN_BUILD_BENCH=ON -DXUN_BUILD_TOOLS=ON -DXUN_BUILD_PYTHON=ON \
  -DPython3_EXECUTABLE=/usr/bin/python3
cmake --build build
(cd build && ctest --output-on-failure --no-tests=error -j2)

echo "== sanitizer build (clang++, ASan + UBSan)"
# No Python module here: an ASan-built extension cannot be loaded into a plain interpreter.
CXX=clang++ cmake -S . -B build-sanitize -G Ninja -DXUN_SANITIZE=ON -DXUN_WERROR=ON \
  -DXUN_BUILD_TESTS=ON -DXUN_BUILD_BENCH=OFF -DXUN_BUILD_TOOLS=ON -DXUN_BUILD_PYTHON=OFF
cmake --build build-sanitize
(cd build-sanitize &&
  ASAN_OPTIONS=detect_leaks=1:abort_on_error=1:strict_string_checks=1 \
  UBSAN_OPTIONS=print_stacktrace=1:halt_on_error=1 \
  ctest --output-on-failure --no-tests=error -j2)

echo "== fuzz build (clang++, libFuzzer) and 60 seconds per fuzzer"
# No Python module: a sanitizer-built extension cannot be loaded into a plain interpreter.
CXX=clang++ cmake -S . -B build-fuzz -G Ninja -DXUN_BUILD_FUZZ=ON -DXUN_WERROR=ON \
  -DXUN_BUILD_TESTS=OFF -DXUN_BUILD_BENCH=OFF -DXUN_BUILD_TOOLS=OFF -DXUN_BUILD_PYTHON=OFF
cmake --build build-fuzz --target fuzz_read_template fuzz_read_archive fuzz_build_tree fuzz_engine
for target in read_template read_archive build_tree engine; do
  # A copy of the seeds: the fuzzer adds to its corpus, and the repository must stay as it is.
  seeds=fuzz/corpus/$target
  if [[ ! -d "$seeds" ]]; then seeds=fuzz/corpus/read_template; fi
  rm -rf "build-fuzz/corpus-$target" && cp -r "$seeds" "build-fuzz/corpus-$target"
  (cd build-fuzz &&
    "./fuzz/fuzz_$target" -max_total_time=60 -timeout=10 -rss_limit_mb=2048 \
      -artifact_prefix="artifacts-$target-" "corpus-$target")
done

if ((${#drifted[@]} > 0)); then
  echo "== FAILED: formatting drift (see the clang-format check above)"
  exit 1
fi
echo "== all checks passed"
