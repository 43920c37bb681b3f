#include "cli/PasswordTrace.h"

#include "support/Fixtures.h"

#include <QProcess>
#include <QStandardPaths>

#include <fstream>
#include <utility>

namespace brindle {

namespace fs = std::filesystem;

bool holdsRunOf(std::string_view password, std::string_view bytes)
{
    constexpr std::size_t kRun = 6;
    for (std::size_t begin = 0; begin + kRun <= password.size(); ++begin) {
        if (bytes.find(password.substr(begin, kRun)) != std::string_view::npos)
            return true;
    }
    return false;
}

std::vector<std::string> filesWithRunOf(std::string_view password, const fs::path &folder)
{
    std::vector<std::string> found;
    for (const auto &entry : fs::recursive_directory_iterator(folder)) {
        if (entry.is_regular_file() && !entry.is_symlink() && holdsRunOf(password, contentsOf(entry.path())))
            found.push_back(entry.path());
    }
    return found;
}

PasswordTrace::PasswordTrace(fs::path prefix) : m_prefix(std::move(prefix)) {}

std::string PasswordTrace::obstacle()
{
    if (QStandardPaths::findExecutable(QStringLiteral("strace")).isEmpty())
        return "strace is not installed";
    const int status = QProcess::execute(
        QStringLiteral("strace"), {QStringLiteral("-o"), QStringLiteral("/dev/null"), QStringLiteral("/bin/true")});
    return status == 0 ? "" : "nothing may be traced here";
}

std::vector<std::string> PasswordTrace::command(const std::string &user) const
{
    std::vector<std::string> words{"/usr/bin/strace", "-ff", "-y", "-v", "-s", "100000", "-o", m_prefix};
    if (!user.empty())
        words.insert(words.begin() + 1, {"-u", user});
    return words;
}

std::vector<std::string> PasswordTrace::callsWithRunOf(std::string_view password) const
{
    std::vector<std::string> calls;
    for (const auto &entry : fs::directory_iterator(m_prefix.parent_path())) {
        if (!entry.path().filename().string().starts_with(m_prefix.filename().string() + "."))
            continue;
        std::ifstream file(entry.path());
        for (std::string line; std::getline(file, line);) {
            if (holdsRunOf(password, line))
                calls.push_back(line);
        }
    }
    return calls;
}

} // namespace brindle
