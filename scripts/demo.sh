#!/usr/bin/env bash
# Builds the library and the demo, then runs the demo.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."

./scripts/setup.sh
cmake -S . -B build -G Ninja -DXUN_BUILD_TOOLS=ON
cmake --build build --target xundemo
exec build/examples/demo/xundemo "$@"
