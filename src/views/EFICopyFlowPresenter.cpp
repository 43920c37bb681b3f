#include "views/EFICopyFlowPresenter.h"

#include <utility>

namespace brindle {

EFICopyFlowPresenter::EFICopyFlowPresenter(EFICopyFlow &flow, EFICopyManager &manager, QObject *parent)
    : QObject(parent),
      m_flow(flow),
      m_manager(manager)
{
    connect(&flow, &EFICopyFlow::changed, this, &EFICopyFlowPresenter::update);
}

void EFICopyFlowPresenter::update()
{
    if (m_flow.showingDestinationSelection() == (m_dialog != nullptr))
        return;
    // Later: the dialog may be closing itself.
    if (EFIDestinationSelectionPresenter *closed = std::exchange(m_dialog, nullptr))
        closed->deleteLater();
    else
        m_dialog = new EFIDestinationSelectionPresenter(
            m_flow.selectedSourceDisk().value(), m_flow.selectedSourceEFI().value(), m_flow.availableDestinations(),
            [this](const auto &destination, bool overwriteWithoutBackup) {
                m_flow.onDestinationSelected(destination, overwriteWithoutBackup);
            },
            [this] { m_flow.onCancel(); }, m_manager, this);
    Q_EMIT dialogChanged();
}

} // namespace brindle
