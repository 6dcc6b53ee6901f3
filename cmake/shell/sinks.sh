# Sourced: two silent audio devices for Wine, provided by a PulseAudio server of our own.
#
# The server runs until stopSinks, however long nothing plays. If the script ends without calling it, even if it is
# killed, a watchdog ends the server. Both have a session of their own, so that Ctrl-C in a terminal reaches only the
# script: a program that is still running keeps its devices until the script has ended it.

sinksProcess=
sinksWatchdog=
sinksFolder=

startSinks() {
    # A short path: a socket's path is limited to about a hundred characters.
    sinksFolder=$(mktemp -d "${TMPDIR:-/tmp}/sonavit-sinks.XXXXXX")
    export PULSE_RUNTIME_PATH="$sinksFolder" PULSE_STATE_PATH="$sinksFolder" PULSE_COOKIE="$sinksFolder/cookie"
    export PULSE_SERVER="unix:$sinksFolder/native"

    setsid pulseaudio -n --daemonize=no --use-pid-file=no --exit-idle-time=-1 --log-target="file:$sinksFolder/log" \
        --load="module-native-protocol-unix socket=$sinksFolder/native" \
        --load="module-null-sink sink_name=speakers sink_properties=device.description=Speakers" \
        --load="module-null-sink sink_name=headphones sink_properties=device.description=Headphones" \
        </dev/null >/dev/null 2>&1 &
    sinksProcess=$!
    watchSinks

    local attempt
    for attempt in $(seq 300); do
        if [ -S "$sinksFolder/native" ]; then
            return 0
        fi
        kill -0 "$sinksProcess" 2>/dev/null || break
        sleep 0.1
    done
    echo "PulseAudio did not start (waited $attempt tenths of a second):" >&2
    cat "$sinksFolder/log" >&2 || true
    return 1
}

# watchSinks: starts the watchdog. It ends with the server, or ends the server when this script's process is gone.
watchSinks() {
    setsid bash -c '
        while kill -0 "$1" && kill -0 "$2"; do
            sleep 1
        done
        if kill -0 "$2"; then
            kill "$2"
            rm -rf "$3"
        fi' sinks-watchdog "$$" "$sinksProcess" "$sinksFolder" </dev/null >/dev/null 2>&1 &
    sinksWatchdog=$!
}

stopSinks() {
    local process
    for process in $sinksWatchdog $sinksProcess; do
        kill "$process" 2>/dev/null || true
        wait "$process" 2>/dev/null || true
    done
    sinksWatchdog=
    sinksProcess=
    if [ -n "$sinksFolder" ]; then
        rm -rf "$sinksFolder"
        sinksFolder=
    fi
}
