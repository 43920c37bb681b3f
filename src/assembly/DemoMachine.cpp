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

/// Copies a folder. Its links to the tools, which lie beside it, become absolute: they hold at any place then. What is
/// installed for all may be read-only; the copy is there to be changed.
void copyMachine(const fs::path &from, const fs::path &to)
{
    for (const fs::directory_entry &entry : fs::recursive_directory_iterator(from)) {
        const fs::path copy = to / entry.path().lexically_relative(from);
        if (entry.is_symlink()) {
            fs::create_symlink(fs::canonical(entry.path()), copy);
        } else if (entry.is_directory()) {
            fs::create_directory(copy);
        } else {
            fs::copy_file(entry.path(), copy);
            fs::permissions(copy, fs::perms::owner_write, fs::perm_options::add);
        }
    }
}

/// What the machine's own sudo takes.
Secret passwordOf(const fs::path &machine)
{
    std::ifstream file(machine / "machine.json");
    return Secret(nlohmann::json::parse(file).at("password").get_ref<const std::string &>());
}

} // namespace

DemoMachine::DemoMachine(Password password, const fs::path &shipped)
    : m_folder(makeTemporaryFolder("demo")),
      m_password(password)
{
    try {
        copyMachine(shipped, m_folder);
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

/// Where the program's own is, relative to it: bin/brindlectl, share/brindle/demo.
fs::path DemoMachine::shippedMachine()
{
    return fs::path(QCoreApplication::applicationDirPath().toStdString()) / "../share/brindle/demo";
}

} // namespace brindle
