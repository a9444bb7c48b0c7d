#pragma once

#include <functional>
#include <map>
#include <memory>
#include <string>
#include <variant>

namespace tessarine {

/// The program as the desktop addresses it on the session bus: the name it is known by, with the
/// object that the desktop entry standard asks for ("D-Bus Activation"). A key of the
/// desktop's own summons the panel through it, also where programs can take no keys. Main thread
/// only, with Qt's event loop.
class DesktopApplication {
public:
    /// What is done, or why it can't be: the caller is told in these words.
    using Action = std::variant<std::function<void()>, std::string>;

    struct Handlers {
        Action activate;
        /// What "ActivateAction" can name. Opening files is no business of the program.
        std::map<std::string, Action> actions;
        /// After a call that could not be done. May be empty.
        std::function<void()> refused = {};
        /// A sentence about why the desktop can't reach the program.
        std::function<void(const std::string&)> problem;
    };

    /// Asks for the name, "com.example.Program", without waiting for the answer.
    DesktopApplication(const std::string& busName, Handlers handlers);
    ~DesktopApplication();
    DesktopApplication(const DesktopApplication&) = delete;
    DesktopApplication& operator=(const DesktopApplication&) = delete;

private:
    class Object;
    std::unique_ptr<Object> object_; ///< null without a session bus
};

} // namespace tessarine
