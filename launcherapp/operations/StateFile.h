#pragma once

#include <cstddef>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

namespace tessarine {

class Diagnostics;
class FileStore;
class MainQueue;
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

    /// Far above most documents; a larger file is something else.
    static constexpr std::size_t usualMaximumBytes = std::size_t{64} << 20;

    StateFile(FileStore& files,
              SerialQueue& saves,
              Diagnostics& diagnostics,
              std::string path,
              Failures failures,
              std::size_t maximumBytes = usualMaximumBytes);

    /// What a rewriting makes of the text on disk.
    struct Rewritten {
        std::string text;
        bool losesOld = false; ///< the old text holds what this one doesn't: a copy is kept
    };

    const std::string& path() const { return place_.path; }

    /// The folders whose entries change when the document does: its own, and where a link leads.
    std::vector<std::string> folders() const { return foldersOf(place_.files, place_.path); }

    /// The same of any file.
    static std::vector<std::string> foldersOf(const FileStore& files, const std::string& path);

    /// The document's text; nothing when there is none, or none that can be read.
    std::optional<std::string> load();

    /// Reads the document on the saving queue and decodes it there; then `done` gets it on the
    /// main thread, or nothing when there is none. A text that `decode` makes nothing of is
    /// damaged. Until `done` the caller doesn't know the document, and so must save nothing.
    /// `decode` gives an optional document and runs off the main thread.
    template <typename Decode, typename Done>
    void loadLater(MainQueue& queue, Decode decode, Done done) {
        auto document = std::make_shared<std::invoke_result_t<Decode&, const std::string&>>();
        submitLoad(
            queue,
            [decode = std::move(decode), document](const std::string& text) {
                *document = decode(text);
                return document->has_value();
            },
            [done = std::move(done), document] { done(std::move(*document)); });
    }

    /// Says that the text just loaded is no document of this kind, or holds what the next save
    /// would lose.
    void markDamaged(std::string text);

    void save(std::string text);

    enum class Saved { yes, no };

    /// Saves what `make` gives, unless that is nothing. It runs on the saving queue, for a document
    /// that takes long to encode. `done` learns on the main thread whether it lies on disk now; a
    /// document that the next `load` would refuse as too large is not saved.
    void saveMade(MainQueue& queue,
                  std::function<std::optional<std::string>()> make,
                  std::function<void(Saved)> done);

    /// Removes what saves of this document left behind that were killed. On the saving queue, so
    /// that none of this program's own is under way then. A failure is ignored.
    void removeLeftovers();

    /// The copies beside it of what could not be read or would have been lost, by full path.
    static std::vector<std::string> copies(const FileStore& files, const std::string& path);

    /// A name for a copy of what can't be read, beside it, that nothing has yet: an earlier copy
    /// may hold what is still wanted.
    static std::string freeCopyName(const FileStore& files, const std::string& path);

    /// The text as it lies on disk once all saves given so far are done, or nothing when there is
    /// none; read on the saving queue. `done` runs on the main thread, but not when the text
    /// can't be read.
    void readLater(MainQueue& queue, std::function<void(std::optional<std::string> text)> done);

    /// Saves what `make` makes of the text that lies on disk at that moment, for a document that
    /// others write too; without one, or when it can't be read and was put aside, it gets
    /// nothing. `make` runs off the main thread; `done` gets on the main thread what was saved,
    /// or nothing when that failed.
    void rewrite(MainQueue& queue,
                 std::function<Rewritten(const std::optional<std::string>& onDisk)> make,
                 std::function<void(std::optional<std::string> saved)> done);

    /// Removes the document. A failure is ignored.
    void remove();

private:
    /// Once a job has it, touched by the saving queue alone.
    struct Damage {
        bool found = false;
        std::optional<std::string> text = {}; ///< nothing when it could not even be read
        bool kept = false;                    ///< a copy lies beside it
    };

    /// Where the document lies, for jobs to copy.
    struct Place {
        FileStore& files;
        Diagnostics* log; ///< null when nobody is told of failures
        std::string path;
        std::size_t maximumBytes;

        void tell(const std::string& failure) const;
        void keepCopy(Damage& damage) const;
        Saved save(const std::string& text, Damage& damage) const;
    };

    void submitLoad(MainQueue& queue,
                    std::function<bool(const std::string& text)> understands,
                    std::function<void()> done);

    Place place_;
    SerialQueue& saves_;
    std::shared_ptr<Damage> damage_ = std::make_shared<Damage>();
};

} // namespace tessarine
