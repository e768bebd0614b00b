#!/bin/sh
# SPDX-License-Identifier: GPL-3.0-or-later
# usage: deb-test.sh PACKAGE [MIRROR]; as root: installs the package in a bare Debian 12 of its own (debootstrap), runs the
# program there as another user, removes it, and looks that nothing is left.
set -eu
package=$(readlink -f "$1")
mirror=${2:-$(sed -n 's/^ *\(deb\|URIs:\) *\(\[[^]]*\] *\)\?\(https\?:[^ ]*\).*/\3/p' /etc/apt/sources.list /etc/apt/sources.list.d/*.list /etc/apt/sources.list.d/*.sources 2>/dev/null | head -1)}
work=$(mktemp -d)
bare=$work/bare
trap 'mountpoint -q "$bare/proc" && umount "$bare/proc"; rm -rf --one-file-system "$work"' EXIT
chmod 755 "$work"
debootstrap --variant=minbase bookworm "$bare" "${mirror:-http://deb.debian.org/debian}" >"$work/log" 2>&1 || { tail "$work/log"; exit 1; }
for file in /etc/apt/apt.conf.d/*proxy* /etc/apt/apt.conf; do
    [ -f "$file" ] && cp "$file" "$bare/etc/apt/apt.conf.d/99here"
done
cp "$package" "$bare/orvspum.deb"
# Programs find their libraries and tables from where they lie, which the system tells below /proc.
mount -t proc proc "$bare/proc"
# The package alone counts: what belongs to others (those that come along, caches, logs) is left out.
listing() {
    (cd "$bare" && find . -xdev \( -path ./tmp -o -path ./var/cache -o -path ./var/lib/apt -o -path ./var/log -o -path ./proc \) -prune -o -print) |
        grep -i -e orvspum -e spum -e orvia | sort || true
}
inside() { chroot "$bare" env -i PATH=/usr/sbin:/usr/bin:/sbin:/bin HOME=/tmp DEBIAN_FRONTEND=noninteractive "$@"; }
before=$(listing)
inside apt-get update >"$work/log" 2>&1 || { tail "$work/log"; exit 1; }
inside apt-get install -y --no-install-recommends /orvspum.deb >"$work/log" 2>&1 || { tail "$work/log"; exit 1; }
plain() { chroot --userspec=65534:65534 "$bare" env -i PATH=/usr/bin:/bin HOME=/tmp "$@"; }
plain spum --version
plain spum-workbench --version
plain spum simulate /tmp/mouse --size 32 --bands 6 --quiet
plain spum unmix /tmp/mouse --library /tmp/mouse/truth/counts/spectra.csv --unit counts --quiet
[ -s "$bare/tmp/mouse/unmixed-library/summary.csv" ]
for file in /usr/share/man/man1/spum-unmix.1.gz /usr/share/bash-completion/completions/spum \
    /usr/share/zsh/vendor-completions/_spum /usr/share/applications/spum-workbench.desktop \
    /usr/share/icons/hicolor/scalable/apps/orvspum.svg /usr/share/orvia/data/probes.csv; do
    plain test -s "$file" || echo "$file is missing" >&2
    plain test -s "$file"
done
inside apt-get purge -y orvspum >"$work/log" 2>&1 || { tail "$work/log"; exit 1; }
after=$(listing)
if [ "$before" != "$after" ]; then
    echo "left behind:" >&2
    echo "$after" >&2
    exit 1
fi
echo "installed, run and removed in a bare Debian 12"
