#pragma once

#include <functional>
#include <optional>
#include <string>

namespace tessarine {

class Pasteboard;
class WorkQueues;

/// Puts the picture of a file on the pasteboard, as PNG. `done` is called once, later: with nothing
/// once other programs get it there, else with the problem in words. The file is read in the
/// background. Main thread only; `board` outlives the program's work.
void copyPicture(WorkQueues& work,
                 Pasteboard& board,
                 const std::string& path,
                 std::function<void(std::optional<std::string> problem)> done);

} // namespace tessarine
