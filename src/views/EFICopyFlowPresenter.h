#pragma once

#include "views/EFICopyFlow.h"
#include "views/EFIDestinationSelectionPresenter.h"

#include <QObject>

namespace brindle {

/// The copy flow for a view: the dialog while it is shown.
class EFICopyFlowPresenter : public QObject {
    Q_OBJECT
    Q_PROPERTY(brindle::EFIDestinationSelectionPresenter *dialog READ dialog NOTIFY dialogChanged) // null: not shown

public:
    /// Both outlive the presenter.
    EFICopyFlowPresenter(EFICopyFlow &flow, EFICopyManager &manager, QObject *parent = nullptr);

    [[nodiscard]] EFIDestinationSelectionPresenter *dialog() const { return m_dialog; }

Q_SIGNALS:
    void dialogChanged();

private:
    void update();

    EFICopyFlow &m_flow;
    EFICopyManager &m_manager;
    EFIDestinationSelectionPresenter *m_dialog = nullptr; ///< A child.
};

} // namespace brindle
