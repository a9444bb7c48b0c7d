#pragma once

#include "LauncherCore/clipboard/ClipKinds.h"

#include <string_view>

namespace tessarine {

class ClipText;

/// Tells what a clipping is by its kind and text. Pure; any thread.
namespace ClipClassifier {

/// Whether the text is one web address and nothing else but blanks around it: one line that begins
/// "http://" or "https://", holds no blank and has fewer than 2048 characters. Goes through the
/// blanks, so where it is asked often `ClipText` has the answer.
bool isLink(std::string_view text);

ClipCategory category(ClipKind kind, const ClipText& text);

} // namespace ClipClassifier
} // namespace tessarine
