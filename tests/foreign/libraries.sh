# Sourced: building the libraries for Windows with their own build files. Expects $root, $here and $work.

declare -A lists=(
    [portaudio19]="$work/portaudio19/build/bin/pa_devs.exe"
    [rtaudio]="$work/rtaudio/build/tests/audioprobe.exe"
    [libsoundio]="$work/libsoundio/build/sio_list_devices.exe"
    [openal-soft]="$work/openal-soft/build/openal-info.exe"
)

# Programs that play for a second on the default output, with their arguments. RtAudio's own one: two channels, 48 kHz, the
# first device, no offset, one second.
declare -A players=(
    [portaudio19]="$work/portaudio19/build/portaudiostream.exe"
    [rtaudio]="$work/rtaudio/build/tests/playsaw.exe 2 48000 0 0 1"
)

# buildLibrary LIBRARY
buildLibrary() {
    quietly "foreign-$1-build" "build_${1//-/_}" || return 1
    case $1 in
        portaudio19) ;; # C only
        *) cp "$root"/build/mingw/bin/lib{gcc_s,stdc++,winpthread}*.dll "$(dirname "${lists[$1]}")" ;;
    esac
}

# withCMake LIBRARY [OPTION...]
withCMake() {
    local folder="$work/$1"
    shift
    nice cmake -S "$folder/source" -B "$folder/build" -G Ninja -DCMAKE_BUILD_TYPE=Release \
        -DCMAKE_TOOLCHAIN_FILE="$root/cmake/toolchain-mingw.cmake" "$@" &&
        nice cmake --build "$folder/build" --parallel "$(nproc)"
}

# PortAudio brings headers of Core Audio from before mingw-w64 had them, and includes them for Microsoft's compiler only:
# the compiler's own come first. mingw's own printf would read its wide texts as narrow ones.
build_portaudio19() {
    local folder="$work/portaudio19" headers="$work/portaudio19/headers" old
    local includes=/usr/x86_64-w64-mingw32/include
    mkdir -p "$headers"
    for old in "$folder"/source/src/hostapi/wasapi/mingw-include/*.h; do
        [ ! -f "$includes/$(basename "$old")" ] || ln -sf "$includes/$(basename "$old")" "$headers"
    done
    if [ ! -f "$folder/build/Makefile" ]; then
        rm -rf "$folder/build"
        cp -r "$folder/source" "$folder/build"
        (cd "$folder/build" && nice ./configure --host=x86_64-w64-mingw32 --with-winapi=wasapi --enable-static --disable-shared \
            CFLAGS="-O1 -w -I$headers -include $here/portaudio.h -D_WIN32_WINNT=0x0601 -DUNICODE -D_UNICODE -D__USE_MINGW_ANSI_STDIO=0")
    fi &&
        nice make -C "$folder/build" lib/libportaudio.la &&
        nice make -C "$folder/build" bin/pa_devs &&
        x86_64-w64-mingw32-g++-posix -static -I"$folder/source/include" "$here/portaudiostream.cpp" \
            "$folder/build/lib/.libs/libportaudio.a" -lwinmm -lole32 -luuid -o "$folder/build/portaudiostream.exe"
}

build_rtaudio() {
    withCMake rtaudio -DRTAUDIO_BUILD_SHARED_LIBS=OFF
}

build_libsoundio() {
    withCMake libsoundio -DBUILD_TESTS=OFF -DBUILD_DYNAMIC_LIBS=ON
}

# Not tried yet: the sources could not be fetched, see docs/foreign.md.
build_openal_soft() {
    withCMake openal-soft -DALSOFT_EXAMPLES=OFF -DALSOFT_TESTS=OFF
}
