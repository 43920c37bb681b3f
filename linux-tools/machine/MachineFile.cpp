#include "machine/MachineFile.h"

#include "machine/FileIo.h"
#include "machine/JsonObject.h"
#include "machine/JsonPositions.h"

#include <fmt/format.h>
#include <nlohmann/json.hpp>

#include <system_error>

namespace brindle::tools {
namespace {

namespace fs = std::filesystem;
using Json = nlohmann::ordered_json;

constexpr int kIndent = 2;

/// Does \a work; what the system refuses becomes a MachineFileError. A filesystem_error is a system_error.
template <typename Work>
auto orMachineFileError(Work work)
{
    try {
        return work();
    } catch (const std::system_error &error) {
        throw MachineFileError(error.what());
    }
}

std::string written(const Json &json)
{
    return json.dump(kIndent, ' ', false, Json::error_handler_t::replace) + '\n';
}

} // namespace

MachineFile::MachineFile(const fs::path &root) : m_root(fs::absolute(root).lexically_normal()), m_folders(m_root) {}

fs::path MachineFile::path() const
{
    return m_root / kMachineFileName;
}

Machine MachineFile::read() const
{
    const std::string text = readText();
    return describe(parse(text), text);
}

std::string MachineFile::hardware() const
{
    const Json json = parse(readText());
    const auto found = json.find("hardware");
    return found == json.end() ? std::string() : written(*found);
}

void MachineFile::change(const std::function<void(Json &, const Machine &)> &edit) const
{
    orMachineFileError([&] {
        const FolderLock lock(m_root);
        const std::string text = readText();
        const Json original = parse(text);
        const Machine before = describe(original, text);
        m_folders.settle(before);
        Json json = original;
        edit(json, before);
        if (json == original)
            return;
        const std::string changed = written(json);
        const Machine after = describe(json, changed);
        m_folders.detach(before, after);
        write(changed, before);
        m_folders.attach(before, after);
    });
}

void MachineFile::settle() const
{
    orMachineFileError([&] {
        const FolderLock lock(m_root);
        m_folders.settle(read());
    });
}

std::string MachineFile::readText() const
{
    return orMachineFileError([&] { return readWholeFile(path()); });
}

Json MachineFile::parse(std::string_view text) const
{
    try {
        const JsonPositions checked(text);
        return Json::parse(text);
    } catch (const JsonSyntaxError &error) {
        throw MachineFileError(fmt::format("{}:{}: {}", path().string(), error.line(), error.what()));
    }
}

Machine MachineFile::describe(const Json &json, std::string_view text) const
{
    try {
        return readMachine(json);
    } catch (const JsonValueError &error) {
        const std::size_t line = JsonPositions(text).line(error.path());
        const std::string key = error.path().empty() ? std::string() : error.path() + ": ";
        throw MachineFileError(fmt::format("{}:{}: {}{}", path().string(), line, key, error.what()));
    }
}

void MachineFile::write(std::string_view text, const Machine &before) const
{
    try {
        replaceFile(path(), text);
    } catch (const std::system_error &) {
        m_folders.settle(before);
        throw;
    }
}

} // namespace brindle::tools
