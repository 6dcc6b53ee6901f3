# Sourced: installing the Debian packages that a command needs. Expects the project's folder in $root.

isPresent() {
    case $1 in
        /*) compgen -G "$1" >/dev/null ;;
        *) command -v "$1" >/dev/null ;;
    esac
}

# missingPackages COMMAND: the packages of cmake/packages.txt that COMMAND needs and that are missing.
missingPackages() {
    local package proof commands
    while read -r package proof commands; do
        case ",$commands," in
            *",$1,"*) isPresent "$proof" || echo "$package" ;;
        esac
    done < <(grep -v '^#' "$root/cmake/packages.txt")
}

# installPackages COMMAND: installs what is missing, as root or with sudo; does nothing if nothing is missing.
installPackages() {
    local missing elevate=()
    mapfile -t missing < <(missingPackages "$1")
    if [ ${#missing[@]} -eq 0 ]; then
        return 0
    fi

    if ! command -v apt-get >/dev/null; then
        echo "Please install what Debian calls: ${missing[*]}" >&2
        return 1
    fi
    if [ "$(id -u)" -ne 0 ]; then
        if ! command -v sudo >/dev/null; then
            echo "Please install these packages as root: ${missing[*]}" >&2
            return 1
        fi
        elevate=(sudo)
    fi

    echo "Installing ${missing[*]}" >&2
    quietly install-update "${elevate[@]}" env DEBIAN_FRONTEND=noninteractive apt-get update &&
        quietly install "${elevate[@]}" env DEBIAN_FRONTEND=noninteractive \
            apt-get install --yes --no-install-recommends "${missing[@]}"
}
