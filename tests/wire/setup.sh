#!/bin/sh
# Installs the driver that the wire tests use; quiet and quick when it is there already.
set -eu
cd "$(dirname "$0")"
installed=node_modules/.package-lock.json
if [ -e "$installed" ] && [ ! package-lock.json -nt "$installed" ]; then
    exit 0
fi
npm ci --silent --no-progress
