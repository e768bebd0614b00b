#!/bin/sh
# SPDX-License-Identifier: GPL-3.0-or-later
# Installs what packages.txt lists and this machine lacks, as root or through sudo, without a question. With everything
# in place it asks the package database once and ends.
set -eu
list=$(dirname "$0")/../packages.txt
packages=$(sed -e 's/#.*//' "$list" | tr -s ' \n' ' ')

missing=
for package in $packages; do
    status=$(dpkg-query -W -f='${db:Status-Status}' "$package" 2>/dev/null || true)
    [ "$status" = installed ] || missing="$missing $package"
done
[ -n "$missing" ] || exit 0

echo "Installing:$missing"
if [ "$(id -u)" -eq 0 ]; then
    as_root=
elif command -v sudo >/dev/null 2>&1; then
    as_root=sudo
else
    echo "These Debian packages are missing and need root (or sudo) to be installed:$missing" >&2
    exit 1
fi
export DEBIAN_FRONTEND=noninteractive
# shellcheck disable=SC2086
$as_root env DEBIAN_FRONTEND=noninteractive apt-get update -qq
# shellcheck disable=SC2086
$as_root env DEBIAN_FRONTEND=noninteractive apt-get install -y -qq --no-install-recommends $missing </dev/null
