#!/usr/bin/env bash
# Installs the built library into a scratch prefix, then builds and runs the
# consumer program against it twice: through find_package(Velmora) and
# through pkg-config. Fails on the first step that fails.
set -euo pipefail
build_dir=$1
consumer_src=$2
cmake_cmd=${CMAKE_COMMAND:-cmake}

work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
prefix=$work/prefix

"$cmake_cmd" --install "$build_dir" --prefix "$prefix" > "$work/install.log"
test -f "$prefix/include/velmora/velmora.h"

# Every installed header compiles on its own (the dialogs' with Qt Widgets).
qt_flags=$(pkg-config --cflags Qt6Core Qt6Widgets)
for h in $(cd "$prefix/include" && find velmora -name '*.h'); do
  echo "#include <$h>" | g++ -std=c++20 -fPIC -fsyntax-only -x c++ - -I"$prefix/include" $qt_flags
done

# CMake package.
"$cmake_cmd" -S "$consumer_src" -B "$work/cmake-build" -DCMAKE_PREFIX_PATH="$prefix" > "$work/cmake.log"
"$cmake_cmd" --build "$work/cmake-build" > "$work/build.log"
env -u DISPLAY -u WAYLAND_DISPLAY -u QT_QPA_PLATFORM \
  LD_LIBRARY_PATH="$(dirname "$(find "$prefix" -name 'libvelmora.so' | head -n 1)")" \
  "$work/cmake-build/velmora_consumer"

# pkg-config.
pc_dir=$(dirname "$(find "$prefix" -name velmora.pc | head -n 1)")
flags=$(PKG_CONFIG_PATH="$pc_dir" pkg-config --cflags --libs velmora)
g++ -std=c++20 -fPIC "$consumer_src/main.cpp" -o "$work/consumer-pc" $flags
env -u DISPLAY -u WAYLAND_DISPLAY -u QT_QPA_PLATFORM \
  LD_LIBRARY_PATH="$pc_dir/.." "$work/consumer-pc"
echo "install consumer: both builds ran"
