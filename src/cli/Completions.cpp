#include "cli/Completions.h"

#include "cli/PreferenceText.h"

#include <CLI/CLI.hpp>
#include <fmt/format.h>
#include <fmt/ranges.h>

#include <algorithm>
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace brindle {

namespace {

struct Word {
    std::string text;
    std::string description;
};

using Words = std::vector<Word>;

/// The texts of a choice, which CLI11 tells as "FORMAT:{ExFAT,FAT32}" or "{bash,zsh,fish}".
Words choicesOf(const CLI::Option &option)
{
    const std::string type = option.get_type_name();
    const std::size_t open = type.find('{');
    const std::size_t close = type.find('}');
    Words words;
    if (open == std::string::npos || close == std::string::npos)
        return words;
    for (const std::string &choice : CLI::detail::split(type.substr(open + 1, close - open - 1), ','))
        words.push_back({choice, option.get_description()});
    return words;
}

/// Adds the options of \a command that are not there yet.
void addOptions(Words &words, const CLI::App &command)
{
    for (const CLI::Option *option : command.get_options()) {
        for (const std::string &name : option->get_lnames()) {
            const std::string text = "--" + name;
            if (std::none_of(words.begin(), words.end(), [&](const Word &word) { return word.text == text; }))
                words.push_back({text, option->get_description()});
        }
    }
}

/// What may follow \a command: its own, and the options of the commands that it belongs to.
Words wordsOf(const CLI::App &command)
{
    Words words;
    for (const CLI::App *subcommand : command.get_subcommands({}))
        words.push_back({subcommand->get_name(), subcommand->get_description()});
    for (const CLI::Option *option : command.get_options()) {
        if (option->get_positional()) {
            for (const Word &choice : choicesOf(*option))
                words.push_back(choice);
        }
    }
    for (const CLI::App *app = &command; app; app = app->get_parent())
        addOptions(words, *app);
    return words;
}

/// What may follow each command, by the words of the command ("settings get"); the empty one is the program itself. A
/// setting that is set counts as a command: "settings set LaunchMode".
using WordsByCommand = std::map<std::string, Words>;

void addCommand(WordsByCommand &result, const std::string &name, const CLI::App &command)
{
    result[name] = wordsOf(command);
    for (const CLI::App *subcommand : command.get_subcommands({}))
        addCommand(result, fmt::format("{}{}{}", name, name.empty() ? "" : " ", subcommand->get_name()), *subcommand);
}

/// The values of each setting, as far as they can be counted; behind them the same options as before its key.
void addSettingValues(WordsByCommand &result)
{
    const std::string command = "settings set";
    Words options = result[command];
    std::erase_if(options, [](const Word &word) { return !word.text.starts_with("--"); });
    for (const Preference &preference : allPreferences()) {
        Words words;
        for (const std::string &choice : valueChoices(preference))
            words.push_back({choice, "Its new value"});
        words.insert(words.end(), options.begin(), options.end());
        result[fmt::format("{} {}", command, preference.key)] = std::move(words);
    }
}

WordsByCommand wordsByCommand(const CLI::App &app)
{
    WordsByCommand result;
    addCommand(result, "", app);
    addSettingValues(result);
    return result;
}

/// All commands but the program itself, quoted for a shell.
std::vector<std::string> quotedCommands(const WordsByCommand &commands)
{
    std::vector<std::string> result;
    for (const auto &[command, words] : commands) {
        if (!command.empty())
            result.push_back(fmt::format("'{}'", command));
    }
    return result;
}

std::string bashScript(const CLI::App &app)
{
    const WordsByCommand commands = wordsByCommand(app);
    std::string cases;
    for (const auto &[command, words] : commands) {
        std::vector<std::string> texts;
        for (const Word &word : words)
            texts.push_back(word.text);
        cases += fmt::format("        '{}') words='{}' ;;\n", command, fmt::join(texts, " "));
    }
    return fmt::format(R"(_brindlectl() {{
    local command= words= word
    for word in "${{COMP_WORDS[@]:1:COMP_CWORD-1}}"; do
        case ${{command:+$command }}$word in
            {}) command=${{command:+$command }}$word ;;
        esac
    done
    case $command in
{}    esac
    mapfile -t COMPREPLY < <(compgen -W "$words" -- "${{COMP_WORDS[COMP_CWORD]}}")
}}
complete -F _brindlectl brindlectl
)",
                       fmt::join(quotedCommands(commands), " | "), cases);
}

std::string zshScript(const CLI::App &app)
{
    const WordsByCommand commands = wordsByCommand(app);
    std::string cases;
    for (const auto &[command, words] : commands) {
        cases += fmt::format("        '{}') candidates=(", command);
        for (const Word &word : words)
            cases += fmt::format("\n            '{}:{}'", word.text,
                                 CLI::detail::find_and_replace(word.description, "'", "'\\''"));
        cases += ") ;;\n";
    }
    return fmt::format(R"(#compdef brindlectl
_brindlectl() {{
    local command= word
    local -a candidates
    for word in ${{words[2,CURRENT-1]}}; do
        case ${{command:+$command }}$word in
            ({}) command=${{command:+$command }}$word ;;
        esac
    done
    case $command in
{}    esac
    _describe brindlectl candidates
}}
if [ "$funcstack[1]" = _brindlectl ]; then _brindlectl "$@"; else compdef _brindlectl brindlectl; fi
)",
                       fmt::join(quotedCommands(commands), " | "), cases);
}

std::string fishScript(const CLI::App &app)
{
    const WordsByCommand commands = wordsByCommand(app);
    std::string script = fmt::format(R"(function __brindlectl_follows
    set -l command
    for word in (commandline -opc)[2..-1]
        set -l candidate (string join -- ' ' $command $word)
        contains -- $candidate {} && set command $candidate
    end
    test "$command" = "$argv"
end
complete -c brindlectl -f
)",
                                     fmt::join(quotedCommands(commands), " "));
    for (const auto &[command, words] : commands) {
        for (const Word &word : words) {
            const bool isOption = word.text.starts_with("--");
            script += fmt::format("complete -c brindlectl -n '__brindlectl_follows {}' {} {} -d '{}'\n", command,
                                  isOption ? "-l" : "-a", isOption ? word.text.substr(2) : word.text,
                                  CLI::detail::find_and_replace(word.description, "'", "\\'"));
        }
    }
    return script;
}

ExitStatus printCompletions(const CLI::App &app, const std::string &shell)
{
    const std::map<std::string, std::function<std::string(const CLI::App &)>> scripts{
        {"bash", bashScript}, {"zsh", zshScript}, {"fish", fishScript}};
    fmt::print("{}", scripts.at(shell)(app));
    return ExitStatus::done;
}

} // namespace

void addCompletionCommand(CLI::App &app, Command &command)
{
    CLI::App *completion = app.add_subcommand("completion", "Print a shell's completion script for brindlectl");
    const auto shell = std::make_shared<std::string>();
    const CLI::IsMember isShell(std::vector<std::string>{"bash", "zsh", "fish"});
    completion->add_option("SHELL", *shell, "The shell")
        ->required()
        ->type_name(isShell.get_description())
        ->check(isShell.description("")); // which a colon would stand before
    completion->callback(
        [&app, &command, shell] { command = [&app, shell] { return printCompletions(app, *shell); }; });
}

} // namespace brindle
