#pragma once

#include <functional>
#include <optional>
#include <string>

namespace tessarine {

/// A message that the desktop shows for a while, and keeps where its user finds it again
/// (org.freedesktop.Notifications). Main thread only.
namespace DesktopNotice {

/// Asks the desktop to show it, without waiting; `shown` is called once, with the problem in
/// words where it isn't. The text is shown as it is, marks of HTML too.
void show(const std::string& title,
          const std::string& text,
          std::function<void(std::optional<std::string> problem)> shown);

} // namespace DesktopNotice
} // namespace tessarine
