#!/usr/bin/env bash
# Installs every Debian package that the build, the tests, the benchmarks and the app need.
# Packages already present are skipped, so a second run costs a dpkg query and nothing more.
set -euo pipefail

packages=(
  # toolchain
  build-essential cmake ninja-build pkg-config clang-14 libclang-rt-14-dev
  # Qt and coroutines
  qt6-base-dev qt6-declarative-dev qt6-multimedia-dev qt6-positioning-dev qcoro-qt6-dev
  qml6-module-qtquick qml6-module-qtquick-controls qml6-module-qtquick-layouts
  qml6-module-qtquick-window qml6-module-qtqml-workerscript qml6-module-qtquick-templates
  qml6-module-qtquick-dialogs qml6-module-qtmultimedia
  # TIFF and WebP pixels for QImage (redrawing photos, and the tests' pixel checks)
  qt6-image-formats-plugins
  # metadata and media libraries
  libexiv2-dev libheif-dev libavformat-dev libavcodec-dev libavutil-dev libswscale-dev
  libsqlite3-dev libsystemd-dev
  # tests and benchmarks
  libgtest-dev libgmock-dev libbenchmark-dev
  # independent readers used as test oracles (never at run time)
  libimage-exiftool-perl exiv2 ffmpeg
)

missing=()
for p in "${packages[@]}"; do
  if ! dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q 'install ok installed'; then
    missing+=("$p")
  fi
done

if [ ${#missing[@]} -eq 0 ]; then
  exit 0
fi

echo "Installing: ${missing[*]}"
SUDO=""
if [ "$(id -u)" -ne 0 ]; then SUDO="sudo"; fi
export DEBIAN_FRONTEND=noninteractive
$SUDO apt-get update -qq
$SUDO apt-get install -y -qq --no-install-recommends "${missing[@]}"
