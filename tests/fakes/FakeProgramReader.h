#pragma once

#include "launcherapp/platform/MainQueue.h"
#include "launcherapp/platform/ProgramReader.h"

#include <functional>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <utility>
#include <vector>

namespace tessarine {

/// Notes what was started; each program runs until the test ends it, or somebody terminates it.
class FakeProgramReader : public ProgramReader {
public:
    struct Program : RunningProcess {
        ProcessSpec spec;
        OutputReading reading;
        std::function<void(ProcessEnd)> ended;
        bool running = true;
        bool terminated = false;

        bool isRunning() const override { return running; }

        void terminate() override {
            terminated = true;
            end({.status = 143});
        }

        /// `ended` is called by the queue, as nothing is told inside a call.
        void end(ProcessEnd how) {
            if (!std::exchange(running, false))
                return;
            queue->post([done = std::move(ended), how = std::move(how)] { done(how); });
        }

        MainQueue* queue = nullptr;
    };

    explicit FakeProgramReader(MainQueue& queue) : queue_(queue) {}

    std::shared_ptr<RunningProcess> start(const ProcessSpec& spec,
                                          const OutputReading& reading,
                                          std::function<void(ProcessEnd end)> ended) override {
        if (missing.contains(spec.arguments.at(0)))
            throw ProcessError(spec.arguments[0] + " could not be started: no such program");
        auto program = std::make_shared<Program>();
        program->spec = spec;
        program->reading = reading;
        program->ended = std::move(ended);
        program->queue = &queue_;
        started.push_back(program);
        return program;
    }

    std::set<std::string> missing; ///< programs that can't be executed
    std::vector<std::shared_ptr<Program>> started;

private:
    MainQueue& queue_;
};

} // namespace tessarine
