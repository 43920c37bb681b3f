#include "assembly/DemoMachine.h"

#include "base/Error.h"
#include "base/TemporaryFolder.h"

#include <QCoreApplication>

#include <nlohmann/json.hpp>

#include <fstream>
#include <string>

namespace brindle {

namespace fs = std::filesystem;

namespace {

/// Where the program's own is, relative to it: bin/brindlectl, share/brindle/demo.
fs::path shippedMachine()
{
    return fs::path(QCoreApplication::applicationDirPath().toStdString()) / "../share/brindle/demo";
}

/// Copies a folder. Its links to the tools, which lie beside it, become absolute: they hold at any place then.
void copyMachine(const fs::path &from, const fs::path &to)
{
    fs::copy(from, to, fs::copy_options::recursive | fs::copy_options::copy_symlinks);
    for (const fs::directory_entry &entry : fs::recursive_directory_iterator(from)) {
        if (!entry.is_symlink())
            continue;
        const fs::path link = to / fs::relative(entry.path().parent_path(), from) / entry.path().filename();
        fs::remove(link);
        fs::create_symlink(fs::canonical(entry.path()), link);
    }
}

/// What the machine's own sudo takes.
Secret passwordOf(const fs::path &machine)
{
    std::ifstream file(machine / "machine.json");
    return Secret(nlohmann::json::parse(file).at("password").get_ref<const std::string &>());
}

} // namespace

DemoMachine::DemoMachine(Password password) : m_folder(makeTemporaryFolder("demo")), m_password(password)
{
    try {
        copyMachine(shippedMachine(), m_folder);
    } catch (const fs::filesystem_error &error) {
        fs::remove_all(m_folder);
        throw Error("DemoMachine", error.code().value(),
                    std::string("The demo machine can't be copied: ") + error.what());
    }
}

DemoMachine::~DemoMachine()
{
    std::error_code ignored;
    fs::remove_all(m_folder, ignored);
}

PlatformChanges DemoMachine::platformChanges() const
{
    const bool isStored = m_password == Password::stored;
    return {.toolRoot = m_folder.string(),
            .userDefaultsFile = m_folder / "settings.plist",
            .password = isStored ? std::optional(passwordOf(m_folder)) : std::nullopt};
}

} // namespace brindle
