#pragma once

#include <memory>
#include <optional>
#include <string>

namespace tessarine {

class Diagnostics;
class FileStore;
class SerialQueue;

/// One whole document of the program's own on disk: read at start, saved atomically in the
/// background whenever it changes. What the program could not make sense of is never lost: before
/// the first save over it a copy is kept beside it, ending in ".damaged". Main thread only.
class StateFile {
public:
    enum class Failures {
        logged,
        silent, ///< best effort: the value in memory stays valid, and nobody is told
    };

    StateFile(FileStore& files,
              SerialQueue& saves,
              Diagnostics& diagnostics,
              std::string path,
              Failures failures);

    const std::string& path() const { return path_; }

    /// The document's text; nothing when there is none, or none that can be read.
    std::optional<std::string> load();

    /// Says that the text just loaded is no document of this kind, or holds what the next save
    /// would lose.
    void markDamaged(std::string text);

    void save(std::string text);

    /// Removes the document. A failure is ignored.
    void remove();

private:
    struct Damage {
        std::optional<std::string> text; ///< nothing when it could not even be read
        bool kept = false;               ///< a copy lies beside it; set by the saving queue alone
    };

    FileStore& files_;
    SerialQueue& saves_;
    Diagnostics& diagnostics_;
    std::string path_;
    Failures failures_;
    std::shared_ptr<Damage> damaged_; ///< empty while there is none
};

} // namespace tessarine
