#include "views/EraseProgress.h"

#include <fmt/format.h>

namespace brindle {

using Stage = EraseOperationManager::Stage;

EraseProgress::Symbol EraseProgress::symbol() const
{
    switch (m_manager.stage()) {
    case Stage::inProgress:
        return {"externaldrive.fill.badge.minus", Colors::kRed};
    case Stage::completed:
        return {"checkmark.circle.fill", Colors::kGreen};
    case Stage::failed:
        return {"xmark.circle.fill", Colors::kRed};
    case Stage::confirming:
        break;
    }
    return {"exclamationmark.triangle.fill", Colors::kRed};
}

std::string EraseProgress::title() const
{
    switch (m_manager.stage()) {
    case Stage::inProgress:
        return "Erasing...";
    case Stage::completed:
        return "Erase Complete";
    case Stage::failed:
        return "Erase Failed";
    case Stage::confirming:
        break;
    }
    return m_manager.dialogTitle();
}

std::string EraseProgress::name() const
{
    return isOfPartition() ? m_manager.volumeName() : m_manager.diskName();
}

std::string EraseProgress::line() const
{
    if (isOfPartition())
        return m_manager.diskName().empty() ? "" : fmt::format("on {}", m_manager.diskName());
    return m_manager.volumeName().empty() ? "" : fmt::format("Volume: {}", m_manager.volumeName());
}

std::string_view EraseProgress::scopeNote() const
{
    return isOfPartition() ? "Reformats just this volume — the partition map and EFI partition are left untouched."
                           : "Repartitions the entire disk, including the EFI partition.";
}

std::string EraseProgress::confirmPrompt() const
{
    return fmt::format("Type \"{}\" to confirm", m_manager.confirmName());
}

std::optional<std::string> EraseProgress::mismatchText() const
{
    if (!m_manager.confirmMismatch())
        return std::nullopt;
    return fmt::format("That doesn't match \"{}\" — try again.", m_manager.confirmName());
}

EraseProgress::Buttons EraseProgress::buttons() const
{
    switch (m_manager.stage()) {
    case Stage::confirming:
        return Buttons::cancelAndErase;
    case Stage::inProgress:
        return Buttons::none;
    case Stage::completed:
    case Stage::failed:
        break;
    }
    return Buttons::done;
}

} // namespace brindle
