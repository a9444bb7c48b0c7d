# Sourced by ./run and ./test: what they need on the machine, and the build.
# Everything said here goes to standard error: standard output belongs to the program.

say() { printf 'tessarine: %s\n' "$*" >&2; }

# Gives up with a sentence.
fail() {
    say "$*"
    exit 1
}

# listed_packages FILE...: the packages that the lists name.
listed_packages() { sed -e 's/#.*//' -e '/^[[:space:]]*$/d' "$@"; }

# ensure_packages FILE...: installs what the lists name and the machine lacks.
ensure_packages() {
    local wanted installed missing
    wanted=$(listed_packages "$@" | sort)
    if ! command -v dpkg-query >/dev/null; then
        command -v cmake >/dev/null && command -v ninja >/dev/null && command -v c++ >/dev/null ||
            fail "this machine has no Debian packages, and cmake, ninja or a C++ compiler is missing. Install what corresponds to: ${wanted//$'\n'/ }"
        return
    fi
    # shellcheck disable=SC2086 # one word a package
    installed=$(dpkg-query -W -f '${db:Status-Status} ${Package}\n' $wanted 2>/dev/null |
        sed -n 's/^installed //p' | sort -u) || true
    missing=$(comm -23 <(printf '%s\n' "$wanted") <(printf '%s\n' "$installed") | tr '\n' ' ')
    missing=${missing% }
    [ -n "$missing" ] || return 0
    install_packages "$missing"
}

# install_packages "NAME NAME ...": through apt, as root.
install_packages() {
    local as_root=()
    command -v apt-get >/dev/null ||
        fail "these packages are missing and there is no apt-get to install them: $1"
    if [ "$(id -u)" -ne 0 ]; then
        if command -v sudo >/dev/null && { [ -t 0 ] || sudo -n true 2>/dev/null; }; then
            as_root=(sudo)
        else
            fail "these packages are missing and only root can install them: apt-get install --no-install-recommends $1"
        fi
    fi
    say "installing $1"
    local apt=("${as_root[@]}" env DEBIAN_FRONTEND=noninteractive apt-get -q -y
        -o DPkg::Lock::Timeout=400 -o Dpkg::Use-Pty=0)
    local log
    log=$(mktemp)
    "${apt[@]}" update >"$log" 2>&1 || true # an old list may still do
    # shellcheck disable=SC2086 # one word a package
    if ! "${apt[@]}" install --no-install-recommends $1 >>"$log" 2>&1; then
        tail -n 15 "$log" >&2
        rm -f "$log"
        fail "apt-get could not install: $1"
    fi
    rm -f "$log"
}

# build PRESET TARGET...: configures once, builds what changed, and is silent when nothing did.
build() {
    local preset=$1 folder="$root/build/$1" quiet=--quiet stamp log
    shift
    if [ ! -f "$folder/build.ninja" ]; then
        say "configuring ($preset)"
        log=$(mktemp)
        if ! (cd "$root" && cmake --preset "$preset" >"$log" 2>&1); then
            cat "$log" >&2
            rm -f "$log" "$folder/CMakeCache.txt"
            fail "cmake could not configure the build"
        fi
        rm -f "$log"
    fi
    stamp="$folder/.built-$*"
    if [ ! -e "$stamp" ]; then
        say "building ($preset); the first time takes some minutes"
        quiet=
    fi
    # shellcheck disable=SC2086 # no word at all when empty
    ninja -C "$folder" $quiet "$@" 2>&1 |
        sed -u -e '/^ninja: no work to do/d' -e '/^ninja: Entering directory/d' >&2 ||
        fail "the build failed"
    : >"$stamp"
}
