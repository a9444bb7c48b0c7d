#pragma once

#include "launcherapp/platform/MainQueue.h"

#include <string>

namespace tessarine {

class ClipboardStore;
class ClipGroupsRuntime;
class ClipGroupStore;
class Pasteboard;
struct ModeContext;

/// What the modes of the clipboard use beside what every mode does.
struct ClipboardModeServices {
    Pasteboard& board;
    ClipboardStore& store;
    ClipGroupStore& groups;
    ClipGroupsRuntime& runtime;
};

/// The clipboard from the command line.
namespace ClipboardModes {

/// How long `pasteboardTypes` watches, and how often it looks.
inline constexpr Seconds watched{30};
inline constexpr Seconds interval{0.2};

/// Prints each change of the clipboard with the types that are offered: for finding out what a
/// program copies. What is marked secret is not read.
void pasteboardTypes(ModeContext& context, const std::string& value);

/// Lists, adds, removes and tries taught groups, in JSON, once the history is loaded.
void clipGroups(ModeContext& context, const std::string& value);

void selftestClipSacred(ModeContext& context, const std::string& value);
void selftestClipFile(ModeContext& context, const std::string& value);

} // namespace ClipboardModes
} // namespace tessarine
