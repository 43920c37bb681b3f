#include "cli/Completions.h"

#include <CLI/CLI.hpp>
#include <fmt/format.h>
#include <fmt/ranges.h>

#include <functional>
#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace brindle {

namespace {

struct Word {
    std::string text;
    std::string description;
};

/// The texts of a choice, which CLI11 tells as "TEXT:{bash,zsh,fish}".
std::vector<Word> choicesOf(const CLI::Option &option)
{
    const std::string type = option.get_type_name();
    const std::size_t open = type.find('{');
    const std::size_t close = type.find('}');
    std::vector<Word> words;
    if (open == std::string::npos || close == std::string::npos)
        return words;
    for (const std::string &choice : CLI::detail::split(type.substr(open + 1, close - open - 1), ','))
        words.push_back({choice, option.get_description()});
    return words;
}

std::vector<Word> wordsOf(const CLI::App &command)
{
    std::vector<Word> words;
    for (const CLI::App *subcommand : command.get_subcommands({}))
        words.push_back({subcommand->get_name(), subcommand->get_description()});
    for (const CLI::Option *option : command.get_options()) {
        for (const std::string &name : option->get_lnames())
            words.push_back({"--" + name, option->get_description()});
        if (option->get_positional()) {
            for (const Word &choice : choicesOf(*option))
                words.push_back(choice);
        }
    }
    return words;
}

/// What may follow each command; what may follow none of them stands under the empty name.
std::map<std::string, std::vector<Word>> wordsByCommand(const CLI::App &app)
{
    std::map<std::string, std::vector<Word>> result{{"", wordsOf(app)}};
    for (const CLI::App *command : app.get_subcommands({}))
        result[command->get_name()] = wordsOf(*command);
    return result;
}

std::string bashScript(const CLI::App &app)
{
    std::string cases;
    for (const auto &[command, words] : wordsByCommand(app)) {
        std::vector<std::string> texts;
        for (const Word &word : words)
            texts.push_back(word.text);
        cases += fmt::format("        '{}') words='{}' ;;\n", command, fmt::join(texts, " "));
    }
    return fmt::format(R"(_brindlectl() {{
    local command= words= word
    for word in "${{COMP_WORDS[@]:1:COMP_CWORD-1}}"; do
        [[ $word == -* ]] || {{ command=$word; break; }}
    done
    case $command in
{}    esac
    mapfile -t COMPREPLY < <(compgen -W "$words" -- "${{COMP_WORDS[COMP_CWORD]}}")
}}
complete -F _brindlectl brindlectl
)",
                       cases);
}

std::string zshScript(const CLI::App &app)
{
    std::string cases;
    for (const auto &[command, words] : wordsByCommand(app)) {
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
        [[ $word == -* ]] || {{ command=$word; break }}
    done
    case $command in
{}    esac
    _describe brindlectl candidates
}}
if [ "$funcstack[1]" = _brindlectl ]; then _brindlectl "$@"; else compdef _brindlectl brindlectl; fi
)",
                       cases);
}

std::string fishScript(const CLI::App &app)
{
    std::string script = "complete -c brindlectl -f\n";
    for (const auto &[command, words] : wordsByCommand(app)) {
        const std::string condition =
            command.empty() ? "__fish_use_subcommand" : fmt::format("__fish_seen_subcommand_from {}", command);
        for (const Word &word : words) {
            const bool isOption = word.text.starts_with("--");
            script += fmt::format("complete -c brindlectl -n '{}' {} {} -d '{}'\n", condition, isOption ? "-l" : "-a",
                                  isOption ? word.text.substr(2) : word.text,
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
    completion->add_option("shell", *shell, "The shell")
        ->required()
        ->check(CLI::IsMember(std::vector<std::string>{"bash", "zsh", "fish"}));
    completion->callback(
        [&app, &command, shell] { command = [&app, shell] { return printCompletions(app, *shell); }; });
}

} // namespace brindle
