#include "views/EFIDestinationSelectionPresenter.h"

#include "views/Shown.h"

#include <algorithm>
#include <utility>

namespace brindle {

namespace {

using Buttons = EFIDestinationSelection::Buttons;

SignValue valueOf(const Sign &sign)
{
    return {.symbol = shown(sign.symbol), .text = shown(sign.text), .color = shown(sign.color.value)};
}

BoxValue valueOf(const WarningBox &warning)
{
    return {.icon = shown(warning.icon),
            .title = shown(warning.title),
            .text = shown(warning.message),
            .color = shown(warning.color.value)};
}

BoxValue valueOf(const OptionButton &option)
{
    return {.icon = shown(option.icon),
            .title = shown(option.title),
            .text = shown(option.subtitle),
            .color = shown(option.color.value)};
}

DestinationValue valueOf(const EFIDestinationSelection::Row &row);

/// A range of what valueOf() knows, as a view reads it.
QVariantList valuesOf(const auto &range)
{
    QVariantList values;
    for (const auto &item : range)
        values << QVariant::fromValue(valueOf(item));
    return values;
}

/// The row in words, for those who don't see it. The bullet only separates, and the clover stands beside its name.
QString descriptionOf(const EFIDestinationSelection::Row &row)
{
    QStringList words{shown(row.diskName)};
    for (const Sign &sign : row.details) {
        if (sign.text != "•" && sign.text != "🍀")
            words << shown(sign.text);
    }
    return words.join(QStringLiteral(", "));
}

DestinationValue valueOf(const EFIDestinationSelection::Row &row)
{
    return {.diskName = shown(row.diskName),
            .details = valuesOf(row.details),
            .trailingSymbols = valuesOf(row.trailingSymbols),
            .isSelected = row.isSelected,
            .description = descriptionOf(row)};
}

} // namespace

EFIDestinationSelectionPresenter::EFIDestinationSelectionPresenter(
    PhysicalDisk sourceDisk, EFIPartition sourceEFI,
    std::vector<EFICopyManager::EFIPartitionInfo> availableDestinations,
    EFIDestinationSelection::OnDestinationSelected onDestinationSelected, std::function<void()> onCancel,
    EFICopyManager &efiCopyManager, QObject *parent)
    : QObject(parent),
      m_dialog(std::move(sourceDisk), std::move(sourceEFI), std::move(availableDestinations),
               std::move(onDestinationSelected), std::move(onCancel), efiCopyManager),
      m_efiCopyManager(efiCopyManager)
{
    connect(&m_dialog, &EFIDestinationSelection::changed, this, &EFIDestinationSelectionPresenter::changed);
}

EFIDestinationSelectionPresenter::Content EFIDestinationSelectionPresenter::content() const
{
    switch (m_dialog.content()) {
    case EFIDestinationSelection::Content::confirmation:
        return Content::Confirmation;
    case EFIDestinationSelection::Content::progress:
        return Content::Progress;
    case EFIDestinationSelection::Content::selection:
        break;
    }
    return Content::Selection;
}

QString EFIDestinationSelectionPresenter::sourceText() const
{
    return shown(m_dialog.sourceText());
}

int EFIDestinationSelectionPresenter::destinationCount() const
{
    return static_cast<int>(m_dialog.rows().size());
}

QVariantList EFIDestinationSelectionPresenter::destinations() const
{
    return valuesOf(m_dialog.rows());
}

void EFIDestinationSelectionPresenter::setOverwriteWithoutBackup(bool overwriteWithoutBackup)
{
    m_dialog.setOverwriteWithoutBackup(overwriteWithoutBackup);
}

SignValue EFIDestinationSelectionPresenter::overwriteLabel() const
{
    return valueOf(m_dialog.overwriteLabel());
}

QString EFIDestinationSelectionPresenter::overwriteSymbolColor() const
{
    return shown(m_dialog.overwriteSymbolColor().value);
}

QVariantList EFIDestinationSelectionPresenter::selectionWarnings() const
{
    return valuesOf(m_dialog.selectionWarnings());
}

SignValue EFIDestinationSelectionPresenter::indicator() const
{
    const std::optional<Sign> indicator = m_dialog.footerIndicator();
    return indicator ? valueOf(*indicator) : SignValue();
}

QString EFIDestinationSelectionPresenter::indicatorDescription() const
{
    return m_dialog.isFailure() ? status() : indicator().text;
}

bool EFIDestinationSelectionPresenter::offersClose() const
{
    return m_dialog.footerButtons() == Buttons::close;
}

bool EFIDestinationSelectionPresenter::offersCopy() const
{
    return m_dialog.footerButtons() == Buttons::cancelAndCopy;
}

QVariantList EFIDestinationSelectionPresenter::progressEnds() const
{
    QVariantList ends;
    for (const auto &[label, partition] : m_dialog.progressEnds())
        ends << shown(label) << shown(partition);
    return ends;
}

QString EFIDestinationSelectionPresenter::status() const
{
    return shown(m_efiCopyManager.operationStatus());
}

double EFIDestinationSelectionPresenter::progress() const
{
    return m_efiCopyManager.operationProgress();
}

QString EFIDestinationSelectionPresenter::percentText() const
{
    return shown(m_dialog.percentText());
}

QString EFIDestinationSelectionPresenter::confirmationTitle() const
{
    return shown(EFIDestinationSelection::kConfirmationTitle);
}

QString EFIDestinationSelectionPresenter::confirmationText() const
{
    return shown(EFIDestinationSelection::kConfirmationText);
}

QString EFIDestinationSelectionPresenter::confirmationQuestion() const
{
    return shown(EFIDestinationSelection::kConfirmationQuestion);
}

QVariantList EFIDestinationSelectionPresenter::confirmationOptions() const
{
    return valuesOf(m_dialog.confirmationOptions());
}

QVariantList EFIDestinationSelectionPresenter::confirmationWarnings() const
{
    std::vector<WarningBox> warnings;
    if (const std::optional<WarningBox> warning = m_dialog.confirmationWarning())
        warnings.push_back(*warning);
    return valuesOf(warnings);
}

QString EFIDestinationSelectionPresenter::alertMessage() const
{
    return shown(m_dialog.alertMessage());
}

void EFIDestinationSelectionPresenter::appear()
{
    m_dialog.appear();
}

void EFIDestinationSelectionPresenter::closeAlert()
{
    m_dialog.closeAlert();
}

void EFIDestinationSelectionPresenter::select(int destination)
{
    m_dialog.select(static_cast<std::size_t>(destination));
}

void EFIDestinationSelectionPresenter::copyEFI()
{
    m_dialog.copyEFI();
}

void EFIDestinationSelectionPresenter::cancel()
{
    m_dialog.cancel();
}

void EFIDestinationSelectionPresenter::cancelOperation()
{
    m_dialog.cancelOperation();
}

void EFIDestinationSelectionPresenter::chooseOption(int option)
{
    m_dialog.choose(static_cast<std::size_t>(option));
}

void EFIDestinationSelectionPresenter::escape()
{
    m_dialog.escape();
}

} // namespace brindle
