// The page of brindlectl in the manual, held to what the program says of itself.

#include "cli/BrindlectlFixture.h"

#include "support/Fixtures.h"

#include <fmt/format.h>
#include <fmt/ranges.h>
#include <gmock/gmock.h>

#include <set>
#include <sstream>
#include <string>
#include <string_view>
#include <vector>

namespace brindle {
namespace {

using testing::Contains;
using testing::IsEmpty;
using testing::Not;
using testing::UnorderedElementsAreArray;

/// \a text without the commands of roff that set it.
std::string withoutFonts(std::string text)
{
    for (const auto &[command, plain] : {std::pair{"\\fB", ""}, {"\\fI", ""}, {"\\fR", ""}, {"\\-", "-"}}) {
        for (std::size_t at = 0; (at = text.find(command, at)) != std::string::npos;)
            text.replace(at, std::string_view(command).size(), plain);
    }
    return text;
}

std::vector<std::string> wordsOf(const std::string &line)
{
    std::istringstream stream(line);
    std::vector<std::string> words;
    for (std::string word; stream >> word;)
        words.push_back(word);
    return words;
}

/// A command with what may follow it, the options as a set: "copy FROM TO" and {"--backup", "--overwrite"}.
struct Synopsis {
    std::string words;
    std::set<std::string> options;

    bool operator==(const Synopsis &) const = default;
    friend void PrintTo(const Synopsis &synopsis, std::ostream *stream)
    {
        *stream << fmt::format("{} {}", synopsis.words, fmt::join(synopsis.options, " "));
    }
};

class Manual : public Brindlectl {
protected:
    /// What the manual explains, a heading each: "copy FROM TO [--backup PATH] [--overwrite]", "-v, --verbose".
    static std::vector<std::string> explained()
    {
        std::istringstream page(contentsOf(BRINDLECTL_MANUAL));
        std::vector<std::string> headings;
        std::string before;
        for (std::string line; std::getline(page, line); before = line) {
            if (before == ".TP" && !line.starts_with('.'))
                headings.push_back(withoutFonts(line));
        }
        return headings;
    }

    static std::vector<Synopsis> explainedCommands()
    {
        std::vector<Synopsis> commands;
        for (const std::string &heading : explained()) {
            if (!heading.starts_with('-'))
                commands.push_back(synopsisOf(heading));
        }
        return commands;
    }

    /// All commands that need no other behind them, as their helps tell.
    std::vector<Synopsis> commands(const std::vector<std::string> &parents = {})
    {
        std::vector<std::string> arguments = parents;
        arguments.emplace_back("--help");
        std::istringstream help(run(arguments).output);
        std::vector<Synopsis> found;
        Synopsis itself;
        std::string heading;
        for (std::string line; std::getline(help, line);) {
            if (line.starts_with("Usage: brindlectl "))
                itself.words = fmt::format("{}", fmt::join(positionalsOf(line), " "));
            if (!line.starts_with(' '))
                heading = line;
            else if (heading == "Options:" && line.starts_with("  --"))
                itself.options.insert(wordsOf(line).front());
            else if (heading.starts_with("Commands")) {
                std::vector<std::string> names = parents;
                names.push_back(wordsOf(line).front());
                for (Synopsis &command : commands(names))
                    found.push_back(std::move(command));
            }
        }
        return found.empty() ? std::vector{itself} : found;
    }

private:
    static Synopsis synopsisOf(const std::string &heading)
    {
        Synopsis synopsis;
        bool isValue = false;
        for (std::string word : wordsOf(heading)) {
            const bool isOpen = word.starts_with("[--") && !word.ends_with(']');
            if (word.starts_with("[") || word.starts_with("--"))
                synopsis.options.insert(word.substr(word.find('-'), word.find(']') - word.find('-')));
            else if (!isValue)
                synopsis.words += (synopsis.words.empty() ? "" : " ") + word;
            isValue = isOpen || word.starts_with("--");
        }
        return synopsis;
    }

    /// Of "Usage: brindlectl copy [OPTIONS] FROM TO" what is neither the program nor its options.
    static std::vector<std::string> positionalsOf(const std::string &usage)
    {
        std::vector<std::string> words = wordsOf(usage);
        words.erase(words.begin(), words.begin() + 2);
        std::erase(words, "[OPTIONS]");
        return words;
    }
};

TEST_F(Manual, ExplainsEachCommandWithItsArgumentsAndOptions)
{
    const std::vector<Synopsis> all = commands();

    EXPECT_THAT(all, Contains(Synopsis{"copy FROM TO", {"--backup", "--overwrite"}}));
    EXPECT_THAT(explainedCommands(), UnorderedElementsAreArray(all));
}

TEST_F(Manual, ExplainsEachOptionThatManyCommandsTake)
{
    const std::vector<std::string> headings = explained();

    for (const char *option : {"--demo[=ask]", "-v, --verbose", "-h, --help", "--version", "--json", "--password-stdin",
                               "--notify", "--open"})
        EXPECT_THAT(headings, Contains(option));
}

} // namespace
} // namespace brindle
