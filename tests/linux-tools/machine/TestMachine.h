#pragma once

#include "machine/MachineFile.h"

#include <nlohmann/json.hpp>

#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

namespace brindle::tools {

/// What a program printed and ended with.
struct Outcome {
    int status = 0;
    std::string output; ///< On standard output.
    std::string errors; ///< On standard error.
};

/// A simulated machine in a folder of its own, which is removed at the end. Its disks: disk0 internal, with a mounted
/// macOS in the container disk1; disk2 a stick with an EFI partition and DATA; disk3 a Linux disk with swap in use;
/// on the shelf disk4, a card.
class TestMachine {
public:
    TestMachine(); ///< With the machine file above.
    ~TestMachine();
    TestMachine(const TestMachine &) = delete;
    TestMachine &operator=(const TestMachine &) = delete;

    [[nodiscard]] const std::filesystem::path &root() const { return m_root; }
    [[nodiscard]] MachineFile file() const { return MachineFile(m_root); }

    [[nodiscard]] std::string text() const;                             ///< The machine file as it is.
    [[nodiscard]] nlohmann::ordered_json json() const;                  ///< The same, read.
    void write(std::string_view text) const;                            ///< Replaces it.
    void writeFile(std::string_view path, std::string_view text) const; ///< Below the root, with its folders.
    [[nodiscard]] bool hasFile(std::string_view path) const;

    /// Runs `diskutil ARGUMENTS...` in this process, as root within the machine unless \a isPrivileged says otherwise.
    [[nodiscard]] Outcome diskutil(const std::vector<std::string> &arguments, bool isPrivileged = true) const;

    [[nodiscard]] std::string mountPointOf(
        const std::string &carrier) const; ///< As written in the file; empty for none.
    [[nodiscard]] std::string labelOf(const std::string &carrier) const;

    /// Makes ROOT/\a link, a link to a built program.
    void install(std::string_view link, std::string_view program) const;

private:
    std::filesystem::path m_root;
};

/// The text of TestMachine's file.
[[nodiscard]] std::string sampleMachineText();

/// Runs a program to its end with \a input on its standard input.
[[nodiscard]] Outcome runProgram(const std::vector<std::string> &commandLine, std::string_view input = {});

} // namespace brindle::tools
