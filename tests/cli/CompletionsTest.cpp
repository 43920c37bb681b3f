// The completion scripts, asked of the shells themselves.

#include "cli/BrindlectlFixture.h"

#include "support/Patience.h"

#include <QStandardPaths>

#include <fmt/format.h>
#include <gmock/gmock.h>

namespace brindle {
namespace {

using testing::IsEmpty;

struct Line {
    const char *words;
    std::vector<std::string> candidates;
};

/// The last word is completed.
const std::vector<Line> &lines()
{
    static const std::vector<Line> all{
        {"li", {"list"}},
        {"--de", {"--demo"}},
        {"list --", {"--demo", "--help", "--json", "--verbose", "--version"}},
        {"--demo list --j", {"--json"}},
        {"completion --", {"--demo", "--help", "--verbose", "--version"}},
        {"completion z", {"zsh"}},
        {"wa", {"watch"}},
        {"cop", {"copy"}},
        {"copy --o", {"--overwrite"}},
        {"ver", {"verify"}},
        {"erase-d", {"erase-disk"}},
        {"erase-volume --f", {"--format"}},
        {"settings s", {"set"}},
        {"settings get Launch", {"LaunchAtLogin", "LaunchMode"}},
        {"settings --demo set SUSch", {"SUScheduledCheckInterval"}},
        {"settings set LaunchMode w", {"window"}},
        {"settings set ShowDiskImages t", {"true"}},
        {"settings --demo set ShowDiskImages f", {"false"}},
        {"settings set ShowDiskImages --de", {"--demo"}},
        {"settings set SUScheduledCheckInterval --de", {"--demo"}},
        {"watch --j", {"--json"}},
        {"mount --p", {"--password-stdin"}},
        {"password s", {"set"}},
    };
    return all;
}

class Completions : public Brindlectl {
protected:
    /// Lets \a shell complete each line by its completion script, between \a before and the function complete_line of
    /// \a after.
    void expectAnswers(const std::string &shell, const std::string &before, const std::string &after)
    {
        std::string script = before + run({"completion", shell}).output + after;
        for (const Line &line : lines())
            script += fmt::format("complete_line {}\n", line.words);
        QProcess process;
        start(process, {"-c", script}, machine.root().string(), shell);
        ASSERT_TRUE(process.waitForFinished(kPatienceMilliseconds));

        EXPECT_THAT(process.readAllStandardError().toStdString(), IsEmpty());
        const QStringList answers = QString::fromUtf8(process.readAllStandardOutput()).split(u'\n', Qt::SkipEmptyParts);
        ASSERT_EQ(static_cast<std::size_t>(answers.size()), lines().size());
        for (std::size_t i = 0; i < lines().size(); ++i)
            EXPECT_EQ(sortedWords(answers[static_cast<qsizetype>(i)]), lines()[i].candidates) << lines()[i].words;
    }

private:
    static std::vector<std::string> sortedWords(const QString &answer)
    {
        std::vector<std::string> words;
        for (const QString &word : answer.split(u' ', Qt::SkipEmptyParts))
            words.push_back(word.toStdString());
        std::sort(words.begin(), words.end());
        return words;
    }
};

TEST_F(Completions, AreOfferedByBash)
{
    expectAnswers("bash", "", R"(
complete_line() { COMP_WORDS=(brindlectl "$@"); COMP_CWORD=$#; _brindlectl; echo "${COMPREPLY[*]}"; }
)");
}

TEST_F(Completions, AreOfferedByZsh)
{
    if (QStandardPaths::findExecutable(QStringLiteral("zsh")).isEmpty())
        GTEST_SKIP() << "zsh is not installed";

    // In place of what belongs to an open line of the shell.
    expectAnswers("zsh", "compdef() { }\n", R"(
_describe() { local -a all=("${(@P)2}"); all=("${(@)all%%:*}"); print -- "${(@M)all:#${words[CURRENT]}*}"; }
complete_line() { words=(brindlectl "$@"); CURRENT=$#words; _brindlectl; }
)");
}

TEST_F(Completions, AreOfferedByFish)
{
    if (QStandardPaths::findExecutable(QStringLiteral("fish")).isEmpty())
        GTEST_SKIP() << "fish is not installed";

    expectAnswers("fish", "", R"(
function complete_line
    echo (complete -C "brindlectl $argv" | string split -f 1 \t)
end
)");
}

} // namespace
} // namespace brindle
