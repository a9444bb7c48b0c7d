#pragma once

#include <functional>
#include <optional>
#include <string>

namespace tessarine {

class WorkQueues;

/// Puts the picture of a file into the clipboard, as PNG, where it stays as long as the program
/// runs. `done` is called once, later, with nothing on success, else with the problem in words. The
/// file is read in the background. Main thread only; needs the application object of a display.
void copyPicture(WorkQueues& work,
                 const std::string& path,
                 std::function<void(std::optional<std::string> problem)> done);

} // namespace tessarine
