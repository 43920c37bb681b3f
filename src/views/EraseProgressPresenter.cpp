#include "views/EraseProgressPresenter.h"

#include "views/Shown.h"

namespace brindle {

EraseProgressPresenter::EraseProgressPresenter(EraseOperationManager &manager, QObject *parent)
    : QObject(parent),
      m_manager(manager),
      m_view(manager)
{
    using Manager = EraseOperationManager;
    for (const auto signal :
         {&Manager::isActiveChanged, &Manager::stageChanged, &Manager::dialogTitleChanged, &Manager::diskNameChanged,
          &Manager::volumeNameChanged, &Manager::warningTextChanged, &Manager::confirmNameChanged,
          &Manager::confirmInputChanged, &Manager::confirmMismatchChanged, &Manager::selectedFormatIndexChanged,
          &Manager::allowPartitionScopeChanged, &Manager::eraseScopeChanged, &Manager::statusMessageChanged,
          &Manager::resultMessageChanged})
        connect(&manager, signal, this, &EraseProgressPresenter::changed);
    connect(&manager, &Manager::formatOptionsChanged, this, &EraseProgressPresenter::formatLabelsChanged);
}

EraseProgressPresenter::Stage EraseProgressPresenter::stage() const
{
    switch (m_manager.stage()) {
    case EraseOperationManager::Stage::inProgress:
        return Stage::InProgress;
    case EraseOperationManager::Stage::completed:
        return Stage::Completed;
    case EraseOperationManager::Stage::failed:
        return Stage::Failed;
    case EraseOperationManager::Stage::confirming:
        break;
    }
    return Stage::Confirming;
}

QString EraseProgressPresenter::symbol() const
{
    return shown(m_view.symbol().name);
}

QString EraseProgressPresenter::symbolColor() const
{
    return shown(m_view.symbol().color.value);
}

QString EraseProgressPresenter::title() const
{
    return shown(m_view.title());
}

QString EraseProgressPresenter::name() const
{
    return shown(m_view.name());
}

QString EraseProgressPresenter::line() const
{
    return shown(m_view.line());
}

QString EraseProgressPresenter::warningText() const
{
    return shown(m_manager.warningText());
}

void EraseProgressPresenter::setIsWholeDisk(bool isWholeDisk)
{
    m_manager.setEraseScope(isWholeDisk ? EraseScope::wholeDisk : EraseScope::partition);
}

QString EraseProgressPresenter::scopeNote() const
{
    return shown(m_view.scopeNote());
}

QStringList EraseProgressPresenter::formatLabels() const
{
    QStringList labels;
    for (const FormatOption &option : m_manager.formatOptions())
        labels << shown(option.label);
    return labels;
}

void EraseProgressPresenter::setSelectedFormatIndex(int index)
{
    m_manager.setSelectedFormatIndex(static_cast<std::size_t>(index)); // below 0 is beyond the end
}

QString EraseProgressPresenter::confirmPrompt() const
{
    return shown(m_view.confirmPrompt());
}

QString EraseProgressPresenter::confirmInput() const
{
    return QString::fromStdString(m_manager.confirmInput());
}

void EraseProgressPresenter::setConfirmInput(const QString &confirmInput)
{
    m_manager.setConfirmInput(confirmInput.toStdString());
}

QString EraseProgressPresenter::mismatchText() const
{
    return shown(m_view.mismatchText().value_or(""));
}

QString EraseProgressPresenter::statusMessage() const
{
    return shown(m_manager.statusMessage());
}

QString EraseProgressPresenter::resultMessage() const
{
    return shown(m_manager.resultMessage());
}

void EraseProgressPresenter::confirm()
{
    m_manager.confirm();
}

void EraseProgressPresenter::dismiss()
{
    m_manager.dismiss();
}

void EraseProgressPresenter::escape()
{
    if (m_view.buttons() != EraseProgress::Buttons::none)
        m_manager.dismiss();
}

} // namespace brindle
