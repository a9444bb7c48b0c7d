# Sourced by the scripts that run a command under a Wayland compositor without a screen: a home and a
# run-time folder of its own around both, all gone again afterwards.

# need PROGRAM...: ends the script where one is missing.
need() {
    local program
    for program in "$@"; do
        command -v "$program" >/dev/null || {
            echo "NOT MEASURED: $program is missing (./test installs it)" >&2
            exit 1
        }
    done
}

folder=$(mktemp -d)
command= compositor= bus=
finish() {
    for process in $command $compositor $bus; do
        kill -- "$process" 2>/dev/null || true
    done
    wait 2>/dev/null || true
    rm -rf "$folder"
}
trap finish EXIT
# Whoever stops us early (a time limit, the keyboard) must find nothing left over either.
trap 'exit 130' INT
trap 'exit 143' TERM

export XDG_RUNTIME_DIR=$folder/run HOME=$folder/home
sockets=$folder/compositor
mkdir -m 700 "$XDG_RUNTIME_DIR" "$HOME" "$sockets"
unset DISPLAY XAUTHORITY WAYLAND_DISPLAY SWAYSOCK DBUS_SESSION_BUS_ADDRESS
export XDG_SESSION_TYPE=wayland
# What runs here presses Return on what it finds: the machine's power, drives and trash are out of
# its reach.
export DBUS_SYSTEM_BUS_ADDRESS=unix:path=$folder/no-system-bus TESSARINE_HARMLESS=1
export TESSARINE_TEST_DESKTOP=1

# A compositor takes no display for X11 programs where the folder of their sockets is not everybody's
# and sticky, as it is where a system has booted.
need_x11_folder() {
    need Xwayland
    mkdir -p /tmp/.X11-unix
    [ "$(stat -c %a /tmp/.X11-unix)" = 1777 ] || chmod 1777 /tmp/.X11-unix 2>/dev/null || {
        echo "NOT MEASURED: /tmp/.X11-unix is not as X11 displays need it (mode 1777)" >&2
        exit 1
    }
}

# A session bus for compositor and command alike.
start_bus() {
    mkfifo "$folder/address"
    dbus-daemon --session --nofork --print-address=3 3<>"$folder/address" 2>"$folder/bus.log" &
    bus=$!
    read -r -t 30 DBUS_SESSION_BUS_ADDRESS <"$folder/address" || {
        cat "$folder/bus.log" >&2
        echo "the session bus did not start" >&2
        exit 1
    }
    export DBUS_SESSION_BUS_ADDRESS
}

# The display for X11 programs, where the compositor has told of one.
export_x11() {
    if [ -n "$DISPLAY" ]; then
        export DISPLAY XAUTHORITY
    else
        unset DISPLAY XAUTHORITY
    fi
}

# Returns when the compositor has written what it is known by to $sockets/up.
await_compositor() {
    for _ in $(seq 600); do
        [ -e "$sockets/up" ] && break
        kill -0 "${compositor#-}" 2>/dev/null || break
        sleep 0.05
    done
    [ -e "$sockets/up" ] || {
        cat "$folder/compositor.log" >&2
        echo "the compositor did not start" >&2
        exit 1
    }
}

# run COMMAND...: ends the script with the command's status.
# In a process group of its own, which can be ended with all that the command has started there.
# In the background, since a trap waits for what runs in the foreground; such a program would
# ignore the keyboard's signals.
run() {
    local status=0
    setsid env --default-signal "$@" <&0 &
    command=-$!
    wait "$!" || status=$?
    exit "$status"
}
