// The words before the cursor are followed down the tree of commands, as the parser would.
#include "kestrel/completion/line_completion.h"

#include <algorithm>
#include <set>

#include "kestrel/text/text.h"

namespace cli {
namespace {

using tools::CommandText;
using tools::Explained;
using tools::OptionText;

bool BeginsWith(std::string_view text, std::string_view beginning) {
    return LowerAscii(text.substr(0, beginning.size())) == LowerAscii(beginning);
}

bool IsOption(std::string_view word) {
    return word.size() > 1 && word.front() == '-';
}

// Where a line has got to.
class Place final {
  public:
    explicit Place(const CommandText& program) : path_{&program} {}

    void Take(const std::string& word) {
        if (awaited_ != nullptr) {
            // Some shells make a word of its own of the sign between option and value.
            if (word != "=") awaited_ = nullptr;
        } else if (onlyArguments_ || !IsOption(word)) {
            TakeArgument(word);
        } else if (word == "--") {
            onlyArguments_ = true;
        } else {
            TakeOption(word);
        }
    }

    [[nodiscard]] LineOffer OfferFor(std::string_view current) const {
        if (awaited_ != nullptr) return OfferValue(*awaited_, "", current == "=" ? "" : current);
        if (!onlyArguments_ && current.starts_with('-')) {
            const size_t equals = current.find('=');
            const OptionText* const option = FindOption(current.substr(0, equals));
            if (equals == std::string_view::npos || option == nullptr) return OfferOptions(current);
            return OfferValue(*option, current.substr(0, equals + 1), current.substr(equals + 1));
        }
        return OfferArgument(current);
    }

  private:
    [[nodiscard]] const CommandText& Command() const { return *path_.back(); }

    void TakeArgument(const std::string& word) {
        const auto& commands = Command().subcommands;
        const auto command = std::ranges::find(commands, word, &CommandText::name);
        if (!onlyArguments_ && arguments_.empty() && command != commands.end()) {
            path_.push_back(&*command);
        } else {
            arguments_.push_back(word);
        }
    }

    void TakeOption(std::string_view word) {
        const size_t equals = word.find('=');
        const OptionText* const option = FindOption(word.substr(0, equals));
        if (option == nullptr) return;
        used_.insert(option);
        if (!option->value.empty() && equals == std::string_view::npos) awaited_ = option;
    }

    // A command's options, and those of the commands above it.
    [[nodiscard]] const OptionText* FindOption(std::string_view name) const {
        for (auto command = path_.rbegin(); command != path_.rend(); ++command) {
            for (const OptionText& option : (*command)->options)
                if (!option.isArgument && std::ranges::find(option.names, name) != option.names.end())
                    return &option;
        }
        return nullptr;
    }

    void AddOptions(const CommandText& command, std::string_view current, LineOffer& offer) const {
        for (const OptionText& option : command.options) {
            if (option.isArgument || (used_.contains(&option) && !option.isRepeatable)) continue;
            // The short name is known to those who have typed it.
            const std::string& longest = *std::ranges::max_element(option.names, {}, &std::string::size);
            for (const std::string& name : option.names) {
                if (!BeginsWith(name, current) || (name != longest && name != current)) continue;
                if (std::ranges::find(offer.words, name, &Explained::text) == offer.words.end())
                    offer.words.push_back({name, option.about});
            }
        }
    }

    [[nodiscard]] LineOffer OfferOptions(std::string_view current) const {
        LineOffer offer{OfferKind::Words, {}, {}};
        for (auto command = path_.rbegin(); command != path_.rend(); ++command)
            AddOptions(**command, current, offer);
        return offer;
    }

    [[nodiscard]] LineOffer OfferArgument(std::string_view current) const {
        LineOffer offer{OfferKind::Words, {}, {}};
        if (arguments_.empty() && !onlyArguments_) {
            for (const CommandText& command : Command().subcommands)
                if (!command.isHidden && BeginsWith(command.name, current))
                    offer.words.push_back({command.name, command.about});
        }
        size_t place = 0;
        for (const OptionText& option : Command().options) {
            if (!option.isArgument) continue;
            if (place == arguments_.size() || option.isRepeatable) return OfferValue(option, "", current);
            ++place;
        }
        const bool isUnderstood = arguments_.size() <= place;
        if (isUnderstood && offer.words.empty() && !onlyArguments_ && current.empty())
            AddOptions(Command(), current, offer);
        return offer;
    }

    // `prefix`: what stands before the value in the same word.
    [[nodiscard]] LineOffer OfferValue(const OptionText& option, std::string_view prefix,
                                       std::string_view current) const {
        const tools::Offer all = option.offer ? option.offer(arguments_) : tools::Offer{option.words, {}};
        LineOffer offer{OfferKind::Words, {}, all.hint.empty() ? option.about : all.hint};
        for (const Explained& word : all.words) {
            const bool isGiven =
                option.isRepeatable && std::ranges::find(arguments_, word.text) != arguments_.end();
            if (!isGiven && BeginsWith(word.text, current))
                offer.words.push_back({std::string(prefix) + word.text, word.about});
        }
        if (offer.words.empty()) offer.kind = option.value == "FILE" ? OfferKind::Files : OfferKind::Text;
        return offer;
    }

    std::vector<const CommandText*> path_;  // from the program down
    std::vector<std::string> arguments_;    // of the last command
    std::set<const OptionText*> used_;
    const OptionText* awaited_ = nullptr;  // the option whose value comes next
    bool onlyArguments_ = false;           // behind --
};

}  // namespace

LineOffer CompleteLine(const CommandText& program, const std::vector<std::string>& before,
                       std::string_view current) {
    Place place(program);
    for (const std::string& word : before)
        place.Take(word);
    return place.OfferFor(current);
}

}  // namespace cli
