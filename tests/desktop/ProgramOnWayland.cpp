#include "tests/desktop/ProgramOnWayland.h"

#include <array>
#include <cstdio>
#include <memory>

namespace tessarine {

namespace {

/// Writes its text to a file at each change.
constexpr auto fieldScript = R"(
import gi, os, sys
gi.require_version("Gtk", "3.0")
from gi.repository import Gtk, GLib
GLib.set_prgname("field-notes")
window = Gtk.Window(title="Field Notes")
entry = Gtk.Entry()
window.add(entry)
def changed(_):
    with open(sys.argv[1] + ".new", "w") as out:
        out.write(entry.get_text())
    os.rename(sys.argv[1] + ".new", sys.argv[1])
entry.connect("changed", changed)
window.show_all()
Gtk.main()
)";

} // namespace

std::string outputOf(const std::string& command) {
    const std::unique_ptr<FILE, int (*)(FILE*)> pipe(::popen(command.c_str(), "r"), ::pclose);
    std::string output;
    std::array<char, 4096> piece{};
    while (const auto count = std::fread(piece.data(), 1, piece.size(), pipe.get()))
        output.append(piece.data(), count);
    return output;
}

void ProgramOnWayland::launchField() const {
    folder.write("/field.py", fieldScript);
    launch("GDK_BACKEND=wayland /usr/bin/python3 " + folder.path("/field.py") + " " +
           folder.path("/written"));
}

std::string ProgramOnWayland::written() const {
    return textOf(folder.path("/written"));
}

void ProgramOnWayland::copy(const std::string& text, const std::string& options) const {
    folder.write("/copied", text);
    launch("wl-copy --foreground " + options + " < " + folder.path("/copied"));
}

std::string ProgramOnWayland::pasted(const std::string& options) {
    return outputOf("timeout 10 wl-paste --no-newline " + options);
}

} // namespace tessarine
