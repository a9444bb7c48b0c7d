#pragma once

#include "tests/desktop/ProgramOnDesktop.h"

#include <string>

namespace tessarine {

/// All that a command of the shell's writes to its standard output.
std::string outputOf(const std::string& command);

/// The real program under a Wayland compositor, beside other programs that copy and take texts.
class ProgramOnWayland : public ProgramOnDesktop {
protected:
    using ProgramOnDesktop::ProgramOnDesktop;

    /// A real text field of another toolkit; the window's title is "Field Notes".
    void launchField() const;
    /// What stands in it.
    std::string written() const;

    /// Another program that has copied this, until something else is; the options are wl-copy's.
    void copy(const std::string& text, const std::string& options = "") const;
    /// What lies on the clipboard; the options are wl-paste's.
    static std::string pasted(const std::string& options = "");
};

} // namespace tessarine
