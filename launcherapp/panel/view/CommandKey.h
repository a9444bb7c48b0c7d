#pragma once

namespace tessarine {

/// What the Ctrl key is doing; while it is down the panel shows its chords.
enum class CommandKey { up, down };

} // namespace tessarine
