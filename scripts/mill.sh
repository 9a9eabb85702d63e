#!/bin/sh
# Sets up, builds the milling program and runs it: scripts/mill.sh ARGUMENTS OF zulmrs-mill...
set -eu
cd "$(dirname "$0")/.."
scripts/setup.sh
cmake --preset release
cmake --build --preset release --target zulmrs-mill
exec build/release/apps/zulmrs-mill/zulmrs-mill "$@"
