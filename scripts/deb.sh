#!/bin/sh
# SPDX-License-Identifier: GPL-3.0-or-later
# usage: deb.sh BUILD FOLDER; packs the programs of a build as FOLDER/orvspum_VERSION_ARCHITECTURE.deb and has lintian
# look at it. Who makes it for others tells name and address by DEBFULLNAME and DEBEMAIL.
set -eu
umask 022
build=$1
out=$2
root=$(cd "$(dirname "$0")/.." && pwd)
version=$(sed -n 's/^project(orvspum VERSION \([0-9.]*\).*/\1/p' "$root/CMakeLists.txt")
architecture=$(dpkg --print-architecture)
maintainer="${DEBFULLNAME:-orvspum} <${DEBEMAIL:-orvspum@example.org}>"
export SOURCE_DATE_EPOCH="${SOURCE_DATE_EPOCH:-$(git -C "$root" log -1 --format=%ct 2>/dev/null || stat -c %Y "$root/CMakeLists.txt")}"

work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
stage=$work/package
DESTDIR=$stage cmake --install "$build" --prefix /usr --strip >"$work/log" || { cat "$work/log"; exit 1; }
doc=$stage/usr/share/doc/orvspum

# The system has the text of the licence; shells and man look elsewhere than below a prefix of one's own.
rm "$doc/LICENSE"
cp "$root/packaging/copyright" "$doc/copyright"
mkdir -p "$stage/usr/share/zsh/vendor-completions"
mv "$stage/usr/share/zsh/site-functions/_spum" "$stage/usr/share/zsh/vendor-completions/"
rmdir "$stage/usr/share/zsh/site-functions"
gzip -9n "$stage"/usr/share/man/man1/*.1
mv "$doc/CHANGELOG.md" "$doc/changelog"
{
    echo "orvspum ($version-1) unstable; urgency=medium"
    echo
    echo "  * Version $version; changelog.gz tells what is new."
    echo
    echo " -- $maintainer  $(date -uRd "@$SOURCE_DATE_EPOCH")"
} >"$doc/changelog.Debian"
gzip -9n "$doc/changelog" "$doc/changelog.Debian"
find "$stage" -type d -exec chmod 755 {} +
find "$stage" -type f -exec chmod 644 {} +
chmod 755 "$stage"/usr/bin/*

# Which packages have the libraries that ours link.
mkdir -p "$work/shlibs/debian" "$stage/DEBIAN"
echo "Source: orvspum" >"$work/shlibs/debian/control"
libraries=$(cd "$work/shlibs" && find "$stage/usr" -type f \( -name '*.so*' -o -path '*/bin/*' \) -print0 |
    xargs -0 dpkg-shlibdeps -O --ignore-missing-info -l"$stage/usr/lib/orvspum" 2>"$work/log") || { cat "$work/log"; exit 1; }
cat >"$stage/DEBIAN/control" <<END
Package: orvspum
Version: $version-1
Architecture: $architecture
Maintainer: $maintainer
Section: science
Priority: optional
Installed-Size: $(du -k -s --apparent-size "$stage/usr" | cut -f1)
Depends: ${libraries#shlibs:Depends=}, fonts-dejavu-core
Description: spectral and temporal unmixing of optical images
 Separates what the camera saw in each pixel of a sequence of registered
 images into its sources: tissue autofluorescence, food, probes. For each
 source there is a map of how much of it is where, and its spectrum.
 .
 The package holds the command line program spum, the window spum-workbench,
 manual pages and completions for bash and zsh.
END
(cd "$stage" && find usr -type f -print0 | sort -z | xargs -0 md5sum) >"$stage/DEBIAN/md5sums"
find "$stage" -newermt "@$SOURCE_DATE_EPOCH" -exec touch -hd "@$SOURCE_DATE_EPOCH" {} +
mkdir -p "$out"
package=$out/orvspum_${version}-1_$architecture.deb
dpkg-deb --root-owner-group --build "$stage" "$package" >/dev/null
lintian --fail-on error --allow-root "$package"
echo "Package: $package"
