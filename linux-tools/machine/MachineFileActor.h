#pragma once

#include "acting/Actor.h"
#include "machine/MachineFile.h"

#include <functional>
#include <string>

namespace brindle::tools {

/// Acts on the machine that a machine file describes, with the refusals and messages of a real one. A file that can't
/// be read or written is a MachineFileError.
class MachineFileActor : public Actor {
public:
    /// \a isPrivileged: as root, which all actions on an EFI partition need, and unmounting, renaming and erasing on a
    /// disk that isn't made to be taken out; ejecting doesn't. The file outlives the actor.
    MachineFileActor(const MachineFile &file, bool isPrivileged);

    std::string mount(const Target &target) override;
    std::string unmount(const Target &target, bool isForced) override;
    std::string rename(const Target &target, std::string_view name) override;
    void eject(const Target &target) override;
    Erased eraseVolume(const Target &target, const Format &format, std::string_view name,
                       const Announce &announce) override;
    Erased eraseDisk(const Target &target, const Format &format, std::string_view name,
                     const Announce &announce) override;

private:
    void requireErasable(const Device &device) const;
    void requirePrivilege(const Device &device, const std::function<ActionError()> &refusal) const;

    const MachineFile &m_file;
    bool m_isPrivileged;
};

/// The variable that the simulated sudo sets for the command that it runs: "1" where it proved the password.
inline constexpr const char *kPrivilegeVariable = "BRINDLE_MACHINE_ROOT_RIGHTS";

/// Whether this process was started by the simulated sudo.
[[nodiscard]] bool hasSimulatedPrivilege();

} // namespace brindle::tools
