#!/bin/sh
# Sets up and writes the reference documentation: build/docs/html/index.html.
set -eu
cd "$(dirname "$0")/.."
scripts/setup.sh
mkdir -p build/docs
doxygen docs/Doxyfile
echo "build/docs/html/index.html"
