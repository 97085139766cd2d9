// SPDX-License-Identifier: MIT
#include "cli/command_line.h"

#include <algorithm>
#include <array>
#include <iterator>

#include <CLI/CLI.hpp>
#include <fmt/format.h>

#include "base/localisation.h"
#include "cli/malformed.h"
#include "cli/safe_text.h"
#include "settings/nearest_name.h"

namespace tessaly::cli {

namespace {

using base::Failure;
using base::tr;

/// The library takes a word such as "[a,b]" apart as a list. A mark before the bracket keeps the
/// word whole; a word that begins with the mark itself gets another.
constexpr char guard = '\x01';

std::string guarded(std::string_view word) {
    const bool isInDanger = word.starts_with('[') || word.starts_with(guard);
    return (isInDanger ? std::string{guard} : std::string{}).append(word);
}

std::string unguarded(std::string word) {
    return word.starts_with(guard) ? word.substr(1) : word;
}

/// The words of the command line, before and behind the first "--".
struct Words {
    std::vector<std::string> read;
    std::vector<std::string> taken;  ///< as they are: arguments
};

/// `tessaly help list` asks for what `tessaly --help list` does.
Words wordsOf(int argc, const char* const* argv) {
    const std::vector<std::string> all(argv + std::min(argc, 1), argv + argc);
    const auto border = std::find(all.begin(), all.end(), "--");
    Words words{{all.begin(), border}, {border == all.end() ? border : border + 1, all.end()}};
    if (!words.read.empty() && words.read.front() == "help") {
        words.read.front() = "--help";
    }
    return words;
}

std::vector<std::string> forLibrary(const std::vector<std::string>& words) {
    std::vector<std::string> guardedWords;
    std::transform(words.rbegin(), words.rend(),  // the library wants them from behind
                   std::back_inserter(guardedWords), guarded);
    return guardedWords;
}

/// The parser for our table of verbs. Values land in `invocation`.
class Parser {
public:
    Parser() {
        _app.set_help_flag();
        _app.require_subcommand(0, 1);
        for (const OptionRow& row : globalOptions()) {
            addOption(_app, row, _globals);
        }
        static constexpr OptionRow dump{"--dump", "WHAT", ""};
        addOption(_app, dump, _globals);
        for (const VerbRow& verb : verbs()) {
            addVerb(verb);
        }
    }

    /// The verb that was named; null before parsing.
    const VerbRow* verb() const {
        const auto named = _app.get_subcommands();
        return named.empty() ? nullptr : findVerb(named.front()->get_name());
    }

    /// No other word stands before the verb.
    bool isVerbFirst() const {
        const auto words = _app.remaining(false);
        return std::all_of(words.begin(), words.end(),
                           [](const std::string& word) { return word.starts_with('-'); });
    }

    base::Result<Invocation> parse(int argc, const char* const* argv) {
        Words words = wordsOf(argc, argv);
        try {
            _app.parse(forLibrary(words.read));
        } catch (const CLI::ExtrasError&) {
            return unexpected(_app.remaining(true).front());
        } catch (const CLI::ArgumentMismatch& error) {
            return malformed(
                fmt::format(fmt::runtime(tr("{} needs a value")), nameIn(error.what())));
        } catch (const CLI::ParseError& error) {
            return malformed(error.what());
        }
        return finished(std::move(words.taken));
    }

private:
    struct Values {
        std::map<std::string, std::string, std::less<>> texts;
        std::map<std::string, CLI::Option*, std::less<>> options;
    };

    static void addOption(CLI::App& app, const OptionRow& row, Values& values) {
        const std::string name = row.name;
        CLI::Option* option = row.argument == nullptr
                                  ? app.add_flag(name == "--help" ? "-h,--help" : name)
                                  : app.add_option(name, values.texts[name])->take_last();
        values.options[name] = option;
    }

    void addVerb(const VerbRow& verb) {
        CLI::App* app = _app.add_subcommand(verb.name);
        app->set_help_flag();
        app->fallthrough();
        app->add_option("arguments", _arguments);
        Values& values = _verbs[verb.name];
        for (const OptionRow& row : verb.options) {
            addOption(*app, row, values);
        }
    }

    /// A message of the parser's begins with the option's name.
    static std::string nameIn(std::string_view message) {
        return std::string{message.substr(0, message.find_first_of(": "))};
    }

    Failure unexpected(const std::string& word) const {
        const std::string shown = safeText(unguarded(word));
        if (word.starts_with('-')) {
            const bool takesWords = verb() != nullptr && verb()->most > 0;
            return malformed(fmt::format(
                fmt::runtime(takesWords ? tr("unknown option {}; a word that begins with - goes "
                                             "behind --")
                                        : tr("unknown option {}")),
                shown));
        }
        // Verbs take words behind them, so this one stands before any: `archiv today`.
        return noVerb(word);
    }

    static Failure noVerb(const std::string& word) {
        const std::string shown = safeText(unguarded(word));
        const VerbRow* near = nearestVerb(word);
        if (near == nullptr) {
            return malformed(fmt::format(fmt::runtime(tr("unknown verb “{}”")), shown));
        }
        return malformed(fmt::format(fmt::runtime(tr("unknown verb “{}”; did you mean “{}”?")),
                                     shown, near->name));
    }

    std::optional<std::string> global(std::string_view name) const {
        if (_globals.options.find(name)->second->count() == 0) {
            return std::nullopt;
        }
        const auto text = _globals.texts.find(name);
        return text == _globals.texts.end() ? std::string{} : unguarded(text->second);
    }

    base::Result<Invocation> finished(std::vector<std::string> taken) {
        Invocation invocation;
        invocation.root = global("--root");
        invocation.now = global("--now");
        invocation.dump = global("--dump");
        invocation.json = global("--json").has_value();
        invocation.help = global("--help").has_value();
        invocation.version = global("--version").has_value();
        if (invocation.root && invocation.root->empty()) {
            return malformed(fmt::format(fmt::runtime(tr("{} needs a value")), "--root"));
        }
        if (!readColor(global("--color").value_or("auto"), invocation.color)) {
            return malformed(tr("--color is auto, always or never"));
        }
        invocation.verb = verb();
        if (invocation.verb != nullptr) {
            std::transform(_arguments.begin(), _arguments.end(),
                           std::back_inserter(invocation.arguments), unguarded);
            std::move(taken.begin(), taken.end(), std::back_inserter(invocation.arguments));
            return finishedVerb(std::move(invocation));
        }
        return taken.empty() ? base::Result<Invocation>{invocation} : noVerb(taken.front());
    }

    static bool readColor(std::string_view text, ColorChoice& choice) {
        constexpr std::array<std::string_view, 3> names{"auto", "always", "never"};
        const auto found = std::find(names.begin(), names.end(), text);
        choice = static_cast<ColorChoice>(found - names.begin());
        return found != names.end();
    }

    base::Result<Invocation> finishedVerb(Invocation invocation) {
        const VerbRow& verb = *invocation.verb;
        const OptionRow* ofGroup = nullptr;
        for (const OptionRow& row : verb.options) {
            const Values& values = _verbs[verb.name];
            if (values.options.find(row.name)->second->count() == 0) {
                continue;
            }
            if (row.argument != nullptr && values.options.find(row.name)->second->count() > 1) {
                return malformed(fmt::format(fmt::runtime(tr("{} is given twice")), row.name));
            }
            if (row.group != 0 && ofGroup != nullptr && ofGroup->group == row.group) {
                return malformed(fmt::format(fmt::runtime(tr("{} and {} exclude each other")),
                                             ofGroup->name, row.name));
            }
            ofGroup = row.group != 0 ? &row : ofGroup;
            const auto text = values.texts.find(row.name);
            std::string& value = invocation.options[row.name];
            value = text == values.texts.end() ? std::string{} : unguarded(text->second);
            if (value.empty() && row.completion == Completion::note) {
                return malformed(fmt::format(fmt::runtime(tr("{} needs a value")), row.name));
            }
        }
        if (invocation.help || invocation.version) {
            return invocation;
        }
        if (invocation.arguments.size() > verb.most) {
            return malformed(fmt::format(fmt::runtime(tr("unexpected argument “{}”")),
                                         safeText(invocation.arguments[verb.most])));
        }
        if (invocation.arguments.size() < verb.fewest) {
            return malformed(
                fmt::format(fmt::runtime(tr("{} needs {}")), verb.name, verb.synopsis));
        }
        return invocation;
    }

    CLI::App _app;
    Values _globals;
    std::map<std::string, Values, std::less<>> _verbs;
    std::vector<std::string> _arguments;
};

}  // namespace

base::Result<Invocation> parseCommandLine(int argc, const char* const* argv) {
    return Parser{}.parse(argc, argv);
}

const VerbRow* verbIn(int argc, const char* const* argv) {
    Parser parser;
    (void)parser.parse(argc, argv);
    return parser.isVerbFirst() ? parser.verb() : nullptr;
}

const VerbRow* nearestVerb(std::string_view word) {
    std::vector<std::string_view> names;
    for (const VerbRow& verb : verbs()) {
        names.emplace_back(verb.name);
    }
    return findVerb(settings::nearestName(word, names));
}

}  // namespace tessaly::cli
