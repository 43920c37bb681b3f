#pragma once

#include "assembly/Platform.h"

#include <filesystem>

namespace brindle {

/// A fresh copy of the simulated machine that comes with the program, gone at its end.
///
/// It is a folder of tools with a machine of their own: what they do is done to the copy, and nothing else.
class DemoMachine {
public:
    DemoMachine(); ///< Throws an Error where the machine is not installed or can't be copied.
    ~DemoMachine();
    DemoMachine(const DemoMachine &) = delete;
    DemoMachine &operator=(const DemoMachine &) = delete;

    /// Its tools and settings in place of the system's own, and its administrator's password, which is stored.
    [[nodiscard]] PlatformChanges platformChanges() const;

private:
    std::filesystem::path m_folder;
};

} // namespace brindle
