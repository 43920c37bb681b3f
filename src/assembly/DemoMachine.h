#pragma once

#include "assembly/Platform.h"

#include <filesystem>

namespace brindle {

/// A fresh copy of the simulated machine, by default the one that comes with the program, gone at its end.
///
/// It is a folder of tools with a machine of their own: what they do is done to the copy, and nothing else.
class DemoMachine {
public:
    /// Whether the machine's administrator has stored a password before the program begins.
    enum class Password { stored, missing };

    /// Copies the machine \a shipped. Throws an Error where it is not installed or can't be copied.
    explicit DemoMachine(Password password = Password::stored, const std::filesystem::path &shipped = shippedMachine());
    ~DemoMachine();
    DemoMachine(const DemoMachine &) = delete;
    DemoMachine &operator=(const DemoMachine &) = delete;

    /// Its tools, settings and password in place of the system's own.
    [[nodiscard]] PlatformChanges platformChanges() const;

private:
    [[nodiscard]] static std::filesystem::path shippedMachine();

    std::filesystem::path m_folder;
    Password m_password;
};

} // namespace brindle
