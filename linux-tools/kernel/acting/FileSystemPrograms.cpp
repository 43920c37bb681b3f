#include "kernel/acting/FileSystemPrograms.h"

namespace brindle::tools {

SystemProgram makerOf(const Format &format)
{
    if (format.fileSystem == "vfat")
        return {"mkfs.fat", "dosfstools"};
    if (format.fileSystem == "exfat")
        return {"mkfs.exfat", "exfatprogs"};
    if (format.fileSystem == "apfs")
        return {"mkapfs", "apfsprogs"};
    return {"mkfs.hfsplus", "hfsprogs"};
}

std::vector<std::string> makerArguments(const Format &format, const std::string &label, const std::string &device)
{
    std::vector<std::string> arguments;
    std::string labelOption = "-L";
    if (format.fileSystem == "vfat") {
        arguments = {"-I", "-F", "32"}; // -I: a whole disk too
        labelOption = "-n";
    } else if (format.fileSystem == "hfsplus") {
        labelOption = "-v";
        if (format.isJournaled)
            arguments = {"-J"};
    }
    if (!label.empty())
        arguments.insert(arguments.end(), {labelOption, label});
    arguments.push_back(device);
    return arguments;
}

std::optional<SystemProgram> labellerOf(std::string_view fileSystem)
{
    if (fileSystem == "vfat")
        return SystemProgram{"fatlabel", "dosfstools"};
    if (fileSystem == "exfat")
        return SystemProgram{"exfatlabel", "exfatprogs"};
    if (fileSystem == "ntfs")
        return SystemProgram{"ntfslabel", "ntfs-3g"};
    if (fileSystem == "ext2" || fileSystem == "ext3" || fileSystem == "ext4")
        return SystemProgram{"e2label", "e2fsprogs"};
    return std::nullopt;
}

std::vector<std::string> labellerArguments(std::string_view fileSystem, const std::string &label,
                                           const std::string &device)
{
    if (fileSystem.starts_with("ext"))
        return {device, label}; // e2label knows no options
    if (fileSystem == "vfat" && label.empty())
        return {"--reset", device};
    return {"--", device, label};
}

} // namespace brindle::tools
