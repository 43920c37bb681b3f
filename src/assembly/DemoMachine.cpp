#include "assembly/DemoMachine.h"

#include "base/Error.h"

#include <QCoreApplication>

#include <cerrno>
#include <cstdlib>
#include <string>

namespace brindle {

namespace fs = std::filesystem;

namespace {

/// Where the program's own is, relative to it: bin/brindlectl, share/brindle/demo.
fs::path shippedMachine()
{
    return fs::path(QCoreApplication::applicationDirPath().toStdString()) / "../share/brindle/demo";
}

fs::path makeFolder()
{
    std::string pattern = (fs::temp_directory_path() / "brindle-demo-XXXXXX").string();
    if (!mkdtemp(pattern.data()))
        throw Error::fromErrno(errno, "The folder of the demo machine can't be made");
    return pattern;
}

} // namespace

DemoMachine::DemoMachine() : m_folder(makeFolder())
{
    std::error_code error;
    fs::copy(shippedMachine(), m_folder, fs::copy_options::recursive | fs::copy_options::copy_symlinks, error);
    if (error) {
        fs::remove_all(m_folder);
        throw Error::fromErrno(error.value(), "The demo machine can't be copied");
    }
}

DemoMachine::~DemoMachine()
{
    std::error_code ignored;
    fs::remove_all(m_folder, ignored);
}

PlatformChanges DemoMachine::platformChanges() const
{
    return {.toolRoot = m_folder.string(), .userDefaultsFile = m_folder / "settings.plist"};
}

} // namespace brindle
