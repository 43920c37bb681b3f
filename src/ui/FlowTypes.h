#pragma once

#include "views/AlertPresenter.h"
#include "views/EFICopyFlowPresenter.h"
#include "views/EFIDestinationSelectionPresenter.h"
#include "views/EraseProgressPresenter.h"

#include <QtQml/qqml.h>

// The presenters of dialogs by their names in QML.

struct AlertPresenterType {
    Q_GADGET
    QML_FOREIGN(brindle::AlertPresenter)
    QML_NAMED_ELEMENT(AlertPresenter)
    QML_UNCREATABLE("Handed in")
};

struct EFICopyFlowPresenterType {
    Q_GADGET
    QML_FOREIGN(brindle::EFICopyFlowPresenter)
    QML_NAMED_ELEMENT(EFICopyFlowPresenter)
    QML_UNCREATABLE("Handed in")
};

struct EFIDestinationSelectionPresenterType {
    Q_GADGET
    QML_FOREIGN(brindle::EFIDestinationSelectionPresenter)
    QML_NAMED_ELEMENT(EFIDestinationSelectionPresenter)
    QML_UNCREATABLE("Handed in")
};

struct EraseProgressPresenterType {
    Q_GADGET
    QML_FOREIGN(brindle::EraseProgressPresenter)
    QML_NAMED_ELEMENT(EraseProgressPresenter)
    QML_UNCREATABLE("Handed in")
};
