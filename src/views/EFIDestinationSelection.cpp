#include "views/EFIDestinationSelection.h"

#include "base/Text.h"

#include <fmt/format.h>

#include <utility>

namespace brindle {

namespace {

constexpr std::size_t kCancelOption = 2;

constexpr std::string_view kWarningSymbol = "exclamationmark.triangle.fill";

constexpr WarningBox kNoBackupWarning{kWarningSymbol, Colors::kOrange, "No Backup Warning",
                                      "Existing EFI files will be permanently deleted without creating a backup."};
constexpr WarningBox kBootDiskWarning{
    kWarningSymbol, Colors::kRed, "Boot Disk Warning",
    "This is your system boot disk. Copying EFI files here could prevent your system from starting."};
constexpr WarningBox kCriticalWarning{kWarningSymbol, Colors::kRed, "Critical Warning",
                                      "This is your boot disk! Proceeding could prevent your system from starting."};

std::vector<Sign> detailsOf(const EFICopyManager::EFIPartitionInfo &destination)
{
    const EFIPartition &partition = destination.efiPartition;
    std::vector<Sign> details{{.text = partition.identifier}};
    if (partition.volumeName && !partition.volumeName->empty()) {
        details.push_back({.text = "•"});
        details.push_back({.text = *partition.volumeName});
    }
    if (destination.isBootDisk)
        details.push_back({.symbol = kWarningSymbol, .text = "Boot Disk", .color = Colors::kOrange});
    if (destination.hasOpenCore)
        details.push_back({.symbol = "cpu", .text = "OpenCore", .color = Colors::kOpenCore});
    if (destination.hasClover) {
        details.push_back({.text = "🍀", .color = Colors::kGreen});
        details.push_back({.text = "Clover", .color = Colors::kGreen});
    }
    return details;
}

} // namespace

EFIDestinationSelection::EFIDestinationSelection(PhysicalDisk sourceDisk, EFIPartition sourceEFI,
                                                 std::vector<EFIPartitionInfo> availableDestinations,
                                                 OnDestinationSelected onDestinationSelected,
                                                 std::function<void()> onCancel, EFICopyManager &efiCopyManager,
                                                 QObject *parent)
    : QObject(parent),
      m_sourceDisk(std::move(sourceDisk)),
      m_sourceEFI(std::move(sourceEFI)),
      m_availableDestinations(std::move(availableDestinations)),
      m_onDestinationSelected(std::move(onDestinationSelected)),
      m_onCancel(std::move(onCancel)),
      m_efiCopyManager(efiCopyManager)
{
    for (const auto signal : {&EFICopyManager::isOperationInProgressChanged, &EFICopyManager::operationProgressChanged,
                              &EFICopyManager::operationStatusChanged, &EFICopyManager::showConfirmationDialogChanged,
                              &EFICopyManager::confirmationDataChanged})
        connect(&efiCopyManager, signal, this, &EFIDestinationSelection::changed);
}

void EFIDestinationSelection::appear()
{
    if (!m_availableDestinations.empty())
        return;
    m_alertMessage = "No available EFI destinations found. Make sure other EFI partitions are mounted.";
    m_showingAlert = true;
    Q_EMIT changed();
}

void EFIDestinationSelection::closeAlert()
{
    m_showingAlert = false;
    Q_EMIT changed();
}

void EFIDestinationSelection::select(std::size_t row)
{
    m_selectedDestination = m_availableDestinations.at(row);
    Q_EMIT changed();
}

void EFIDestinationSelection::setOverwriteWithoutBackup(bool overwriteWithoutBackup)
{
    m_overwriteWithoutBackup = overwriteWithoutBackup;
    Q_EMIT changed();
}

void EFIDestinationSelection::copyEFI()
{
    if (m_selectedDestination)
        m_onDestinationSelected(*m_selectedDestination, m_overwriteWithoutBackup);
}

void EFIDestinationSelection::cancel()
{
    const auto onCancel = m_onCancel; // a copy: it may end the dialog
    onCancel();
}

void EFIDestinationSelection::cancelOperation()
{
    m_efiCopyManager.cancelOperation();
}

void EFIDestinationSelection::choose(std::size_t option)
{
    const std::vector<OptionButton> options = confirmationOptions();
    if (option < options.size())
        options[option].action();
}

void EFIDestinationSelection::escape()
{
    if (m_showingAlert) {
        closeAlert();
        return;
    }
    switch (content()) {
    case Content::selection:
        cancel();
        break;
    case Content::confirmation:
        choose(kCancelOption);
        break;
    case Content::progress:
        break;
    }
}

EFIDestinationSelection::Content EFIDestinationSelection::content() const
{
    if (m_efiCopyManager.showConfirmationDialog() && m_efiCopyManager.confirmationData())
        return Content::confirmation;
    return m_efiCopyManager.isOperationInProgress() ? Content::progress : Content::selection;
}

std::string EFIDestinationSelection::sourceText() const
{
    return fmt::format("Source: {} on {}", m_sourceEFI.displayName(), m_sourceDisk.name);
}

std::vector<EFIDestinationSelection::Row> EFIDestinationSelection::rows() const
{
    std::vector<Row> rows;
    for (const EFIPartitionInfo &destination : m_availableDestinations) {
        Row row{
            .diskName = destination.diskName, .details = detailsOf(destination), .isSelected = isSelected(destination)};
        if (row.isSelected)
            row.trailingSymbols.push_back({.symbol = "checkmark.circle.fill", .color = Colors::kBlue});
        if (destination.isBootDisk)
            row.trailingSymbols.push_back({.symbol = kWarningSymbol, .color = Colors::kOrange});
        rows.push_back(std::move(row));
    }
    return rows;
}

Sign EFIDestinationSelection::overwriteLabel() const
{
    return {.symbol = m_overwriteWithoutBackup ? kWarningSymbol : "doc.badge.plus",
            .text = "Overwrite without backup",
            .color = m_overwriteWithoutBackup ? Colors::kOrange : Colors::kPrimary};
}

Color EFIDestinationSelection::overwriteSymbolColor() const
{
    return m_overwriteWithoutBackup ? Colors::kOrange : Colors::kBlue;
}

std::vector<WarningBox> EFIDestinationSelection::selectionWarnings() const
{
    std::vector<WarningBox> warnings;
    if (m_overwriteWithoutBackup)
        warnings.push_back(kNoBackupWarning);
    if (m_selectedDestination && m_selectedDestination->isBootDisk)
        warnings.push_back(kBootDiskWarning);
    return warnings;
}

std::optional<Sign> EFIDestinationSelection::footerIndicator() const
{
    if (m_efiCopyManager.isOperationInProgress())
        return Sign{"clock", "Operation in progress...", Colors::kBlue};
    if (statusContains("success"))
        return Sign{"checkmark.circle", "Operation completed successfully", Colors::kGreen};
    if (statusContains("failed"))
        return Sign{"xmark.circle", "Operation failed", Colors::kRed};
    if (statusContains("cancelled"))
        return Sign{"stop.circle", "Operation cancelled", Colors::kOrange};
    return std::nullopt;
}

bool EFIDestinationSelection::isFailure() const
{
    const std::optional<Sign> indicator = footerIndicator();
    return indicator && indicator->color == Colors::kRed;
}

EFIDestinationSelection::Buttons EFIDestinationSelection::footerButtons() const
{
    const bool isInProgress = m_efiCopyManager.isOperationInProgress();
    if (!isInProgress && statusContains("successfully"))
        return Buttons::close;
    if (isInProgress || m_efiCopyManager.showConfirmationDialog())
        return Buttons::none;
    return Buttons::cancelAndCopy;
}

std::vector<std::pair<std::string_view, std::string>> EFIDestinationSelection::progressEnds() const
{
    const auto &data = m_efiCopyManager.confirmationData();
    if (!data)
        return {};
    return {{"From:", data->sourceEFI.displayName()}, {"To:", data->destinationEFI.displayName()}};
}

std::string EFIDestinationSelection::percentText() const
{
    return fmt::format("{}%", static_cast<int>(m_efiCopyManager.operationProgress() * 100));
}

std::vector<OptionButton> EFIDestinationSelection::confirmationOptions() const
{
    if (content() != Content::confirmation)
        return {};
    const auto &data = *m_efiCopyManager.confirmationData();
    return {{"doc.badge.plus", "Create Backup & Continue", "Backup existing EFI folder before copying", Colors::kBlue,
             data.onBackup},
            {"arrow.triangle.2.circlepath", "Overwrite Without Backup", "Replace existing files directly",
             Colors::kOrange, data.onOverwrite},
            {"xmark.circle", "Cancel", "Stop the operation", Colors::kSecondary, data.onCancel}};
}

std::optional<WarningBox> EFIDestinationSelection::confirmationWarning() const
{
    if (content() != Content::confirmation || !m_efiCopyManager.confirmationData()->destinationDisk.isBootDisk)
        return std::nullopt;
    return kCriticalWarning;
}

bool EFIDestinationSelection::isSelected(const EFIPartitionInfo &destination) const
{
    // The disk is not compared.
    return m_selectedDestination &&
           m_selectedDestination->efiPartition.identifier == destination.efiPartition.identifier;
}

bool EFIDestinationSelection::statusContains(std::string_view word) const
{
    return contains(m_efiCopyManager.operationStatus(), word);
}

} // namespace brindle
