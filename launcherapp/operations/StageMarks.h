#pragma once

#include <string_view>

namespace tessarine {

/// What the main thread is at, in words, for whoever watches it for stalls. This one tells nobody:
/// it stands where no watch runs. Main thread only.
class StageMarks {
public:
    StageMarks() = default;
    virtual ~StageMarks() = default;
    StageMarks(const StageMarks&) = delete;
    StageMarks& operator=(const StageMarks&) = delete;

    /// Stages nest: what is left is always what was entered last.
    virtual void entered(std::string_view) {}

    virtual void left() {}

    /// A stage for as long as this object lives.
    class Stage {
    public:
        Stage(StageMarks& marks, std::string_view label) : marks_(marks) { marks_.entered(label); }

        ~Stage() { marks_.left(); }

        Stage(const Stage&) = delete;
        Stage& operator=(const Stage&) = delete;

    private:
        StageMarks& marks_;
    };
};

} // namespace tessarine
