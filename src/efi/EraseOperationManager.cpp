#include "efi/EraseOperationManager.h"

#include <QString>
#include <QUuid>

#include <fmt/format.h>

#include <optional>
#include <string_view>

namespace brindle {

namespace {

FormatOption formatOption(std::string label, std::string diskutilFormat)
{
    return {QUuid::createUuid().toString(QUuid::WithoutBraces).toStdString(), std::move(label),
            std::move(diskutilFormat)};
}

/// File systems hold a letter with its accent as one character or as two, a keyboard types it as one.
QString composed(const std::string &name)
{
    return QString::fromStdString(name).normalized(QString::NormalizationForm_C);
}

std::string statusOf(EraseScope scope, const std::optional<std::string> &label)
{
    const std::string_view work = scope == EraseScope::wholeDisk ? "repartitioning" : "reformatting";
    return label ? fmt::format("Erasing and {} as {}...", work, *label) : fmt::format("Erasing and {}...", work);
}

} // namespace

const std::vector<FormatOption> &eraseFormatOptions()
{
    static const std::vector options{formatOption("ExFAT", "ExFAT"), formatOption("FAT32 (MS-DOS)", "FAT32"),
                                     formatOption("Mac OS Extended (Journaled)", "JHFS+"),
                                     formatOption("APFS", "APFS")};
    return options;
}

void EraseOperationManager::open(Request request)
{
    using Self = EraseOperationManager;
    publish(m_dialogTitle, request.dialogTitle, &Self::dialogTitleChanged);
    publish(m_diskName, request.diskName, &Self::diskNameChanged);
    publish(m_volumeName, request.volumeName, &Self::volumeNameChanged);
    publish(m_warningText, request.warningText, &Self::warningTextChanged);
    publish(m_confirmName, request.confirmName, &Self::confirmNameChanged);
    publish(m_confirmInput, {}, &Self::confirmInputChanged);
    publish(m_confirmMismatch, false, &Self::confirmMismatchChanged);
    m_formatOptions = std::move(request.formatOptions);
    Q_EMIT formatOptionsChanged();
    publish(m_selectedFormatIndex, std::size_t{0}, &Self::selectedFormatIndexChanged);
    publish(m_allowPartitionScope, request.allowPartitionScope, &Self::allowPartitionScopeChanged);
    publish(m_eraseScope, request.eraseScope, &Self::eraseScopeChanged);
    m_onErase = std::move(request.onErase);
    publish(m_statusMessage, {}, &Self::statusMessageChanged);
    publish(m_resultMessage, {}, &Self::resultMessageChanged);
    publish(m_stage, Stage::confirming, &Self::stageChanged);
    publish(m_isActive, true, &Self::isActiveChanged);
}

void EraseOperationManager::setConfirmInput(std::string confirmInput)
{
    publish(m_confirmInput, std::move(confirmInput), &EraseOperationManager::confirmInputChanged);
    publish(m_confirmMismatch, false, &EraseOperationManager::confirmMismatchChanged);
}

void EraseOperationManager::setSelectedFormatIndex(std::size_t index)
{
    if (index < m_formatOptions.size())
        publish(m_selectedFormatIndex, index, &EraseOperationManager::selectedFormatIndexChanged);
}

void EraseOperationManager::setEraseScope(EraseScope eraseScope)
{
    publish(m_eraseScope, eraseScope, &EraseOperationManager::eraseScopeChanged);
}

void EraseOperationManager::confirm()
{
    const bool isMismatch = composed(m_confirmInput) != composed(m_confirmName);
    publish(m_confirmMismatch, isMismatch, &EraseOperationManager::confirmMismatchChanged);
    if (isMismatch)
        return;

    std::string format;
    std::optional<std::string> label;
    if (!m_formatOptions.empty()) {
        format = m_formatOptions[m_selectedFormatIndex].diskutilFormat;
        label = m_formatOptions[m_selectedFormatIndex].label;
    }
    publish(m_statusMessage, statusOf(m_eraseScope, label), &EraseOperationManager::statusMessageChanged);
    publish(m_stage, Stage::inProgress, &EraseOperationManager::stageChanged);
    if (const OnErase onErase = m_onErase) // a copy: it may dismiss the dialog
        onErase(format, m_eraseScope);
}

void EraseOperationManager::dismiss()
{
    publish(m_isActive, false, &EraseOperationManager::isActiveChanged);
    publish(m_stage, Stage::confirming, &EraseOperationManager::stageChanged);
    m_onErase = nullptr;
}

void EraseOperationManager::finish(Stage stage, std::string resultMessage)
{
    publish(m_stage, stage, &EraseOperationManager::stageChanged);
    publish(m_resultMessage, std::move(resultMessage), &EraseOperationManager::resultMessageChanged);
}

} // namespace brindle
