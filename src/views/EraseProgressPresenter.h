#pragma once

#include "efi/EraseOperationManager.h"
#include "views/EraseProgress.h"

#include <QObject>
#include <QString>
#include <QStringList>

namespace brindle {

/// The erase dialog for a view.
class EraseProgressPresenter : public QObject {
    Q_OBJECT
    Q_PROPERTY(bool isActive READ isActive NOTIFY changed)
    Q_PROPERTY(Stage stage READ stage NOTIFY changed)

    Q_PROPERTY(QString symbol READ symbol NOTIFY changed)
    Q_PROPERTY(QString symbolColor READ symbolColor NOTIFY changed) // a Color's value
    Q_PROPERTY(QString title READ title NOTIFY changed)
    Q_PROPERTY(QString name READ name NOTIFY changed) // empty: not shown
    Q_PROPERTY(QString line READ line NOTIFY changed) // likewise

    Q_PROPERTY(QString warningText READ warningText NOTIFY changed)
    Q_PROPERTY(bool allowPartitionScope READ allowPartitionScope NOTIFY changed)
    Q_PROPERTY(bool isWholeDisk READ isWholeDisk WRITE setIsWholeDisk NOTIFY changed)
    Q_PROPERTY(QString scopeNote READ scopeNote NOTIFY changed)
    Q_PROPERTY(QStringList formatLabels READ formatLabels NOTIFY formatLabelsChanged) // empty: not shown
    Q_PROPERTY(int selectedFormatIndex READ selectedFormatIndex WRITE setSelectedFormatIndex NOTIFY changed)
    Q_PROPERTY(QString confirmPrompt READ confirmPrompt NOTIFY changed)
    Q_PROPERTY(QString confirmInput READ confirmInput WRITE setConfirmInput NOTIFY changed)
    Q_PROPERTY(QString mismatchText READ mismatchText NOTIFY changed) // empty: not shown

    Q_PROPERTY(QString statusMessage READ statusMessage NOTIFY changed)
    Q_PROPERTY(QString resultMessage READ resultMessage NOTIFY changed)

    Q_PROPERTY(bool offersErase READ offersErase NOTIFY changed) // and "Cancel" beside it
    Q_PROPERTY(bool offersDone READ offersDone NOTIFY changed)

public:
    enum class Stage { Confirming, InProgress, Completed, Failed };
    Q_ENUM(Stage)

    explicit EraseProgressPresenter(EraseOperationManager &manager, QObject *parent = nullptr); ///< Outlives this.

    [[nodiscard]] bool isActive() const { return m_manager.isActive(); }
    [[nodiscard]] Stage stage() const;

    [[nodiscard]] QString symbol() const;
    [[nodiscard]] QString symbolColor() const;
    [[nodiscard]] QString title() const;
    [[nodiscard]] QString name() const;
    [[nodiscard]] QString line() const;

    [[nodiscard]] QString warningText() const;
    [[nodiscard]] bool allowPartitionScope() const { return m_manager.allowPartitionScope(); }
    [[nodiscard]] bool isWholeDisk() const { return m_manager.eraseScope() == EraseScope::wholeDisk; }
    void setIsWholeDisk(bool isWholeDisk);
    [[nodiscard]] QString scopeNote() const;
    [[nodiscard]] QStringList formatLabels() const;
    [[nodiscard]] int selectedFormatIndex() const { return static_cast<int>(m_manager.selectedFormatIndex()); }
    void setSelectedFormatIndex(int index);
    [[nodiscard]] QString confirmPrompt() const;
    [[nodiscard]] QString confirmInput() const; ///< As it was typed.
    void setConfirmInput(const QString &confirmInput);
    [[nodiscard]] QString mismatchText() const;

    [[nodiscard]] QString statusMessage() const;
    [[nodiscard]] QString resultMessage() const;

    [[nodiscard]] bool offersErase() const { return m_view.buttons() == EraseProgress::Buttons::cancelAndErase; }
    [[nodiscard]] bool offersDone() const { return m_view.buttons() == EraseProgress::Buttons::done; }

    Q_INVOKABLE void confirm();
    Q_INVOKABLE void dismiss();

    /// The Escape key: as "Cancel" or "Done", and nothing where neither is offered.
    Q_INVOKABLE void escape();

Q_SIGNALS:
    void changed();
    void formatLabelsChanged();

private:
    EraseOperationManager &m_manager;
    EraseProgress m_view;
};

} // namespace brindle
