#!/usr/bin/env bash
# The arrows between the layers, as far as the compiler can't see them: which headers a room may include.
set -uo pipefail
cd "$(dirname "$0")/.."
failures=0

# refuse ROOM PATTERN REASON [PATHSPEC...]: no include in the room may match.
refuse() {
    local room=$1 pattern=$2 reason=$3 hits
    shift 3
    hits=$(grep -rnE --include='*.h' --include='*.cpp' "$@" "#include [<\"]($pattern)" "$room")
    [ -z "$hits" ] && return
    printf '%s\n%s\n' "$reason:" "$hits"
    failures=1
}

system='Q[A-Z]|X11/|xcb/|wayland|gio/|glib|dbus/|unistd|fcntl|sys/|linux/|dlfcn|spawn'
# Values that hide machinery of ICU's which changes while it is used, and the groups in force, which
# jobs ask for too: a lock makes them any thread's.
refuse LauncherCore "$system|launcherapp/|filesystem|fstream|thread|mutex" "LauncherCore knows values alone" \
    --exclude=Pattern.cpp --exclude=Formats.cpp --exclude=ClipExpression.h \
    --exclude=ClipGroupsRuntime.cpp
refuse launcherapp "$system" "only platform/linux, the panel's view, App and main reach the system" \
    --exclude-dir=linux --exclude-dir=view --exclude=App.cpp --exclude=AppClipboard.cpp --exclude=AppCommands.cpp --exclude=DesktopPresence.cpp --exclude=PanelInvitation.cpp --exclude=main.cpp
refuse launcherapp/panel/view "X11/|xcb/|wayland|gio/|glib|dbus/|unistd|fcntl|sys/|linux/|dlfcn|spawn|QDBus" \
    "the view draws, and knows no display"
refuse launcherapp "launcherapp/platform/linux/" "services know the doors, not what is behind them" \
    --exclude-dir=linux --exclude=App.cpp --exclude=AppClipboard.cpp --exclude=AppCommands.h --exclude=AppCommands.cpp --exclude=AppDoors.h --exclude=AppServices.cpp --exclude=DesktopPresence.cpp --exclude=PanelInvitation.cpp --exclude=main.cpp
refuse launcherapp/query/rows "launcherapp/(platform/|catalog/|operations/|shell/|sources/|query/SearchModel)" \
    "a row builder sees values and verbs, and no service or door"
refuse launcherapp/platform "launcherapp/(catalog|query|operations|shell|sources|panel|hotkeys)/" "the doors know no service"

# A control: the rule must find an include that is there.
grep -rqE "#include <(Q[A-Z])" launcherapp/platform/linux || {
    echo "inert: not even platform/linux seems to include Qt, so a pass here proves nothing"
    failures=1
}
exit $failures
