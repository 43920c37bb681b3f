#pragma once

#include "machine/Machine.h"
#include "machine/MachineFileError.h"
#include "machine/MountFolders.h"

#include <nlohmann/json_fwd.hpp>

#include <filesystem>
#include <functional>
#include <optional>
#include <string_view>

namespace brindle::tools {

inline constexpr std::string_view kMachineFileName = "machine.json";

/// The description of a simulated machine, ROOT/machine.json, with the folders beside it.
///
/// The format is told in docs/machine-file.md. Whatever can't be read or written is a MachineFileError.
class MachineFile {
public:
    explicit MachineFile(const std::filesystem::path &root);

    [[nodiscard]] const std::filesystem::path &root() const { return m_root; } ///< Absolute.
    [[nodiscard]] std::filesystem::path path() const;
    [[nodiscard]] const MountFolders &folders() const { return m_folders; }

    [[nodiscard]] Machine read() const;

    /// The value of the key "hardware" as JSON text; empty where it is missing.
    [[nodiscard]] std::string hardware() const;

    /// One change: \a edit gets the file's JSON and the machine that it describes, and alters the JSON. Others that
    /// change the file wait meanwhile. What a change left that was cut short is finished first. The file is replaced in
    /// one step and the folders follow; where \a edit throws or its result is no machine, nothing has changed.
    void change(const std::function<void(nlohmann::ordered_json &, const Machine &)> &edit) const;

    /// A machine whose folders lie where its file says, as after a copy.
    void settle() const;

    /// The root of the machine file that a program called by \a programPath belongs to: the folder that holds
    /// machine.json, one or two levels above the program's ("ROOT/bin/df", "ROOT/usr/sbin/diskutil"). The path's links
    /// are followed one after the other, for the programs are links in ROOT themselves, and the first that has a
    /// machine file above it counts. `nullopt` when there is none: the program belongs to the real machine. A path that
    /// doesn't tell, such as a descriptor's, is a MachineFileError.
    [[nodiscard]] static std::optional<std::filesystem::path> findRoot(const std::filesystem::path &programPath);

private:
    [[nodiscard]] std::string readText() const;
    [[nodiscard]] nlohmann::ordered_json parse(std::string_view text) const;
    [[nodiscard]] Machine describe(const nlohmann::ordered_json &json, std::string_view text) const;
    void write(std::string_view text, const Machine &before) const;

    std::filesystem::path m_root;
    MountFolders m_folders;
};

/// The path that this program was called by, before links are followed.
[[nodiscard]] std::filesystem::path programPath();

} // namespace brindle::tools
