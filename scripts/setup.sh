#!/usr/bin/env bash
# Installs what building and testing need on a Debian 12 machine: the mingw-w64
# cross compilers, Wine with 32-bit support, Xvfb and its fonts, clang with its
# sanitizer runtimes, CMake, Ninja; then the test certificate authority of the
# HTTPS tests (scripts/test-ca.sh). Installs only what is missing; silent otherwise.
set -euo pipefail

packages=(cmake ninja-build clang libclang-rt-14-dev googletest python3
          g++-mingw-w64-i686 wine wine32:i386 wine64 xvfb fonts-wine imagemagick
          x11-utils curl nginx chromium openssl ca-certificates)
sudo_cmd=""
[ "$(id -u)" -eq 0 ] || sudo_cmd="sudo"

missing=()
for p in "${packages[@]}"; do
  dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q "install ok installed" || missing+=("$p")
done
test_ca=$(dirname "$0")/test-ca.sh
[ ${#missing[@]} -eq 0 ] && exec $sudo_cmd "$test_ca"

echo "setup: installing ${missing[*]}" >&2
if ! dpkg --print-foreign-architectures | grep -qx i386; then
  $sudo_cmd dpkg --add-architecture i386
fi
# The security mirror's i386 index can lag behind amd64; without this pin apt
# reports unmet i386 dependencies for Wine.
pin=/etc/apt/preferences.d/quellbarrow-security-pin
if [ ! -f "$pin" ]; then
  printf 'Package: *\nPin: release l=Debian-Security\nPin-Priority: 100\n' | $sudo_cmd tee "$pin" >/dev/null
fi
# An index that fails to download (a mirror mid-sync) is not fatal here.
$sudo_cmd apt-get update -qq >/dev/null 2>&1 || true
$sudo_cmd env DEBIAN_FRONTEND=noninteractive apt-get install -y -qq \
  "${missing[@]}" >/dev/null
# nginx is only a test peer: it must not keep port 80 taken after installation.
if command -v systemctl >/dev/null 2>&1; then $sudo_cmd systemctl disable --now nginx >/dev/null 2>&1 || true; fi
$sudo_cmd service nginx stop >/dev/null 2>&1 || true
pkill -x nginx 2>/dev/null || true
$sudo_cmd "$test_ca"
