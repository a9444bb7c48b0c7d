#include "LauncherCore/catalog/ExecLine.h"

#include "LauncherCore/text/Urls.h"

#include <algorithm>

namespace tessarine {

namespace {

bool isSpace(char c) {
    return c == ' ' || c == '\t' || c == '\n';
}

bool isEscapable(char c) {
    return c == '"' || c == '`' || c == '$' || c == '\\';
}

/// The paths of those URIs that are files of this machine.
std::vector<std::string> filePaths(std::span<const std::string> uris) {
    std::vector<std::string> paths;
    for (const auto& uri : uris) {
        if (auto path = Urls::filePath(uri))
            paths.push_back(*std::move(path));
    }
    return paths;
}

bool usesCode(std::span<const std::string> words, char code) {
    return std::ranges::any_of(words, [code](const std::string& word) {
        for (std::size_t i = 0; i + 1 < word.size(); ++i) {
            if (word[i] == '%' && word[++i] == code)
                return true;
        }
        return false;
    });
}

/// One command, opening `single` where the entry takes one thing and `all` where it takes many.
class Expansion {
public:
    Expansion(const ExecLine::Fields& fields, std::string singleFile, std::string singleUri)
        : fields_(fields), singleFile_(std::move(singleFile)), singleUri_(std::move(singleUri)) {}

    std::vector<std::string> command(std::span<const std::string> words) const {
        std::vector<std::string> result;
        for (const auto& word : words)
            append(result, word);
        return result;
    }

private:
    void append(std::vector<std::string>& command, const std::string& word) const {
        // These three stand alone and become any number of arguments.
        if (word == "%F" || word == "%U" || word == "%i") {
            const auto many = word == "%F"   ? filePaths(fields_.uris)
                              : word == "%U" ? fields_.uris
                                             : iconArguments();
            command.insert(command.end(), many.begin(), many.end());
            return;
        }
        std::string expanded;
        for (std::size_t i = 0; i < word.size(); ++i) {
            if (word[i] == '%' && i + 1 < word.size())
                expanded += value(word[++i]);
            else if (word[i] != '%')
                expanded += word[i];
        }
        // A word that was nothing but codes and has nothing to say is no argument.
        const bool onlyCodes = word.starts_with('%') && word.size() == 2;
        if (!expanded.empty() || !onlyCodes)
            command.push_back(std::move(expanded));
    }

    std::string value(char code) const {
        switch (code) {
        case '%':
            return "%";
        case 'f':
            return singleFile_;
        case 'u':
            return singleUri_;
        case 'c':
            return fields_.name;
        case 'k':
            return fields_.path;
        default: // deprecated codes, unknown ones, and many things in the middle of a word
            return {};
        }
    }

    std::vector<std::string> iconArguments() const {
        if (fields_.icon.empty())
            return {};
        return {"--icon", fields_.icon};
    }

    const ExecLine::Fields& fields_;
    std::string singleFile_;
    std::string singleUri_;
};

} // namespace

std::optional<std::vector<std::string>> ExecLine::words(std::string_view exec) {
    std::vector<std::string> result;
    std::size_t i = 0;
    while (true) {
        while (i < exec.size() && isSpace(exec[i]))
            ++i;
        if (i == exec.size())
            break;
        std::string word;
        bool quoted = false;
        for (; i < exec.size() && (quoted || !isSpace(exec[i])); ++i) {
            if (exec[i] == '"') {
                quoted = !quoted;
            } else if (exec[i] == '\\' && i + 1 < exec.size() &&
                       (!quoted || isEscapable(exec[i + 1]))) {
                // Outside quotes the standard has no escapes, but files use the shell's.
                word += exec[++i];
            } else {
                word += exec[i];
            }
        }
        if (quoted)
            return std::nullopt;
        result.push_back(std::move(word));
    }
    if (result.empty() || result.front().empty())
        return std::nullopt;
    return result;
}

std::vector<std::vector<std::string>> ExecLine::commands(std::span<const std::string> words,
                                                         const Fields& fields) {
    std::vector<std::vector<std::string>> result;
    if (usesCode(words, 'f')) {
        for (auto& path : filePaths(fields.uris))
            result.push_back(Expansion(fields, std::move(path), {}).command(words));
    } else if (usesCode(words, 'u')) {
        for (const auto& uri : fields.uris)
            result.push_back(Expansion(fields, {}, uri).command(words));
    }
    if (result.empty())
        result.push_back(Expansion(fields, {}, {}).command(words));
    return result;
}

} // namespace tessarine
