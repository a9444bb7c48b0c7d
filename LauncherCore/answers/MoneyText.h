#pragma once

#include <optional>
#include <string>
#include <string_view>

/// The form of a typed amount of money, before anybody knows what its words mean.
/// Pure; any thread.
namespace tessarine::Answers {

struct MoneyText {
    enum class Form {
        amountFirst,   ///< "20 eur", "20 €", "5k canadian dollars"
        signFirst,     ///< "€20", "US$20"
        codeFirst,     ///< "eur 20"
        amountInWords, ///< "five dollars", "half a euro"
        noAmount,      ///< "euros": one is meant
        amountAlone,   ///< "20"
    };

    Form form = Form::noAmount;
    double amount = 1;    ///< finite
    std::string figure;   ///< the amount as typed; empty where it has no digits
    std::string currency; ///< as typed, never empty but for `amountAlone`

    bool operator==(const MoneyText&) const = default;
};

/// Reads a text that `tidied` gave; nothing for one that has none of the forms.
std::optional<MoneyText> moneyText(std::string_view text);

/// The question in lower case without what is only asked around it ("how much is … ?"); nothing
/// for a text that is too long to be a question.
std::optional<std::string> tidied(std::string_view text);

} // namespace tessarine::Answers
