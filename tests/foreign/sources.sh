# Sourced: Debian's source packages, by a list of sources of our own. Expects $work.

aptFolder="$work/apt"
aptOptions=(-o "Dir::Etc::sourcelist=/dev/null" -o "Dir::Etc::sourceparts=$aptFolder/sources.d"
    -o "Dir::State::lists=$aptFolder/lists" -o "Dir::Cache=$aptFolder/cache" -o "APT::Sandbox::User=root")

# refreshSourceList: the machine's own sources of packages, asked for source packages instead
refreshSourceList() {
    local list
    mkdir -p "$aptFolder/sources.d" "$aptFolder/lists/partial" "$aptFolder/cache/archives/partial"
    rm -f "$aptFolder"/sources.d/*
    for list in /etc/apt/sources.list.d/*.sources; do
        [ ! -f "$list" ] || sed 's/^Types:.*/Types: deb-src/' "$list" >"$aptFolder/sources.d/$(basename "$list")"
    done
    for list in /etc/apt/sources.list /etc/apt/sources.list.d/*.list; do
        [ ! -f "$list" ] || sed -n 's/^deb /deb-src /p' "$list" >"$aptFolder/sources.d/from-$(basename "$list" .list).list"
    done
    quietly foreign-lists apt-get "${aptOptions[@]}" update
}

# fetchSource PACKAGE: unpacks its sources as $work/PACKAGE/source, which is there only if all of it is. Where Debian's own part of the package cannot be had,
# the sources are the authors' alone, without Debian's changes.
fetchSource() {
    local folder="$work/$1" package=$1
    [ ! -d "$folder/source" ] || return 0
    mkdir -p "$folder/fetched"
    rm -rf "$folder/unpacked"
    (
        cd "$folder/fetched" || exit 1
        quietly "foreign-$package-fetch" apt-get "${aptOptions[@]}" source --download-only "$package" 2>/dev/null || true
        if ! quietly "foreign-$package-unpack" dpkg-source --extract ./*.dsc ../unpacked 2>/dev/null; then
            compgen -G './*.orig.tar.*' >/dev/null || exit 1
            echo "$package: without Debian's changes, which cannot be fetched" >&2
            rm -rf ../unpacked
            mkdir ../unpacked
            tar --extract --strip-components=1 --directory=../unpacked --file ./*.orig.tar.* || exit 1
        fi
        mv ../unpacked ../source
    ) || {
        echo "$package: its sources cannot be fetched, see build/logs/foreign-$package-fetch.log" >&2
        return 1
    }
}
