#!/bin/sh
# Sets up, builds and passes the tests: scripts/test.sh [PRESET], release unless another is named.
set -eu
cd "$(dirname "$0")/.."
preset=${1:-release}
scripts/setup.sh
cmake --preset "$preset"
cmake --build --preset "$preset"
ctest --preset "$preset"
