#!/usr/bin/env bash
# Builds the library and the xuntemplate tool, then describes an example template, draws its
# page as build/<name>.svg (open it in a browser) and reads its filled example scans
# (examples/scans/<name>-*) into build/<name>-results.csv. An argument picks another template.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."

./scripts/setup.sh
cmake -S . -B build -G Ninja -DXUN_BUILD_TOOLS=ON -DPython3_EXECUTABLE=/usr/bin/python3
cmake --build build --target xuntemplate
template=${1:-examples/templates/exam.omr}
build/tools/xuntemplate/xuntemplate info "$template"
build/tools/xuntemplate/xuntemplate render "$template" -o "build/$(basename "$template" .omr).svg"
name=$(basename "$template" .omr)
shopt -s nullglob
scans=()
for file in examples/scans/"$name"-*; do
  [[ $file == *.truth.json ]] || scans+=("$file")
done
if ((${#scans[@]} > 0)); then
  build/tools/xuntemplate/xuntemplate read "$template" "${scans[@]}" -o "build/$name-results.csv"
  cat "build/$name-results.csv"
fi
