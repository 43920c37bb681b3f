#pragma once

#include "views/AlertPresenter.h"
#include "views/EFICopyFlowPresenter.h"
#include "views/EraseProgressPresenter.h"
#include "views/WindowContentPresenter.h"

#include <QtQml/qqml.h>
#include <QtQml/qqmlregistration.h>

// The presenters by their names in QML, which makes none of them.
namespace brindle {

struct DiskRowContentPresenterInQml {
    Q_GADGET
    QML_FOREIGN(brindle::DiskRowContentPresenter)
    QML_NAMED_ELEMENT(DiskRowContentPresenter)
    QML_UNCREATABLE("made by its row")
};

struct RowPresenterInQml {
    Q_GADGET
    QML_FOREIGN(brindle::RowPresenter)
    QML_NAMED_ELEMENT(RowPresenter)
    QML_UNCREATABLE("made by the list")
};

struct DiskRowPresenterInQml {
    Q_GADGET
    QML_FOREIGN(brindle::DiskRowPresenter)
    QML_NAMED_ELEMENT(DiskRowPresenter)
    QML_UNCREATABLE("made by the list")
};

struct EFIPartitionRowPresenterInQml {
    Q_GADGET
    QML_FOREIGN(brindle::EFIPartitionRowPresenter)
    QML_NAMED_ELEMENT(EFIPartitionRowPresenter)
    QML_UNCREATABLE("made by its disk's row")
};

struct DiskRowsModelInQml {
    Q_GADGET
    QML_FOREIGN(brindle::DiskRowsModel)
    QML_NAMED_ELEMENT(DiskRowsModel)
    QML_UNCREATABLE("made by the window")
};

struct WindowContentPresenterInQml {
    Q_GADGET
    QML_FOREIGN(brindle::WindowContentPresenter)
    QML_NAMED_ELEMENT(WindowContentPresenter)
    QML_UNCREATABLE("made by the program")
};

struct AlertPresenterInQml {
    Q_GADGET
    QML_FOREIGN(brindle::AlertPresenter)
    QML_NAMED_ELEMENT(AlertPresenter)
    QML_UNCREATABLE("made by the dialogs")
};

struct EFICopyFlowPresenterInQml {
    Q_GADGET
    QML_FOREIGN(brindle::EFICopyFlowPresenter)
    QML_NAMED_ELEMENT(EFICopyFlowPresenter)
    QML_UNCREATABLE("made by the window")
};

struct EFIDestinationSelectionPresenterInQml {
    Q_GADGET
    QML_FOREIGN(brindle::EFIDestinationSelectionPresenter)
    QML_NAMED_ELEMENT(EFIDestinationSelectionPresenter)
    QML_UNCREATABLE("made by the copy flow")
};

struct EraseProgressPresenterInQml {
    Q_GADGET
    QML_FOREIGN(brindle::EraseProgressPresenter)
    QML_NAMED_ELEMENT(EraseProgressPresenter)
    QML_UNCREATABLE("made by the window")
};

} // namespace brindle
