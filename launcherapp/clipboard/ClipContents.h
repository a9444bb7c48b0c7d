#pragma once

#include "LauncherCore/clipboard/ClipboardEntry.h"
#include "launcherapp/platform/Pasteboard.h"

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace tessarine {

class ClipPictures;
class WorkQueues;

/// What a clipping is on the pasteboard.
namespace ClipContents {

/// The lines of a file list that are paths; lines without anything are left out. Pure; any thread.
std::vector<std::string> paths(std::string_view text);

/// Calls `done` later on the main thread: a text of millions of characters, a list of as many files
/// and a picture take a while. A picture is whole, or else its thumbnail; nothing for one whose
/// files are missing. Main thread.
void make(const ClipboardEntry& entry,
          WorkQueues& work,
          const std::shared_ptr<const ClipPictures>& pictures,
          std::function<void(std::optional<PasteboardContent> content)> done);

} // namespace ClipContents
} // namespace tessarine
