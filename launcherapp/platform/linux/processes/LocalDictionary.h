#pragma once

#include "launcherapp/platform/DictionarySource.h"

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

class QObject;

namespace tessarine {

class ProcessLauncher;

/// A DICT server of this machine (RFC 2229), else an installed WordNet. Main thread only, with
/// Qt's event loop.
class LocalDictionary : public DictionarySource {
public:
    static constexpr std::uint16_t dictPort = 2628; ///< registered for DICT

    /// `port` is that of the server on the loopback address.
    explicit LocalDictionary(const ProcessLauncher& programs, std::uint16_t port = dictPort);
    ~LocalDictionary() override;

    void define(const std::string& word,
                std::function<void(std::optional<std::string> text)> done) override;

private:
    void askWordNet(const std::string& word, std::function<void(std::optional<std::string>)> done);

    const ProcessLauncher& programs_;
    std::uint16_t port_;
    std::unique_ptr<QObject> owner_; ///< questions under way go with it
};

/// The beginning of the first definition in a DICT server's answer, on one line; nothing when it
/// holds none. Pure.
std::optional<std::string> dictDefinition(std::string_view answer);

/// The first sense in WordNet's overview of a word, on one line; nothing when it holds none. Pure.
std::optional<std::string> wordNetDefinition(std::string_view overview);

} // namespace tessarine
