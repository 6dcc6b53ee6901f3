# Sourced: two silent audio devices for Wine, played by a PulseAudio of our own.
#
# Its folder is a short one under /tmp, as the path of a socket has room for some hundred characters only.

sinksProcess=
sinksFolder=

startSinks() {
    sinksFolder=$(mktemp -d "${TMPDIR:-/tmp}/sonavit-sinks.XXXXXX")
    export PULSE_RUNTIME_PATH="$sinksFolder" PULSE_STATE_PATH="$sinksFolder" PULSE_COOKIE="$sinksFolder/cookie"
    export PULSE_SERVER="unix:$sinksFolder/native"

    # Should nobody be left to stop it, it goes by itself when nothing has played for ten minutes.
    pulseaudio -n --daemonize=no --use-pid-file=no --exit-idle-time=600 --log-target="file:$sinksFolder/log" \
        --load="module-native-protocol-unix socket=$sinksFolder/native" \
        --load="module-null-sink sink_name=speakers sink_properties=device.description=Speakers" \
        --load="module-null-sink sink_name=headphones sink_properties=device.description=Headphones" \
        </dev/null >/dev/null 2>&1 &
    sinksProcess=$!

    local attempt
    for attempt in $(seq 100); do
        if [ -S "$sinksFolder/native" ]; then
            return 0
        fi
        kill -0 "$sinksProcess" 2>/dev/null || break
        sleep 0.1
    done
    echo "PulseAudio did not start (tried for $attempt tenths of a second):" >&2
    cat "$sinksFolder/log" >&2 || true
    return 1
}

stopSinks() {
    if [ -n "$sinksProcess" ]; then
        kill "$sinksProcess" 2>/dev/null || true
        wait "$sinksProcess" 2>/dev/null || true
        sinksProcess=
    fi
    if [ -n "$sinksFolder" ]; then
        rm -rf "$sinksFolder"
        sinksFolder=
    fi
}
