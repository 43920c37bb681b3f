#pragma once

#include "views/EFIDestinationSelection.h"

#include <QObject>
#include <QString>
#include <QVariantList>

namespace brindle {

/// A Sign as a view reads it; symbol or text may be empty.
struct SignValue {
    Q_GADGET
    Q_PROPERTY(QString symbol MEMBER symbol CONSTANT)
    Q_PROPERTY(QString text MEMBER text CONSTANT)
    Q_PROPERTY(QString color MEMBER color CONSTANT) // a Color's value

public:
    QString symbol;
    QString text;
    QString color;

    bool operator==(const SignValue &) const = default;
};

/// What a row tells of a destination, as a view reads it.
struct DestinationValue {
    Q_GADGET
    Q_PROPERTY(QString diskName MEMBER diskName CONSTANT)
    Q_PROPERTY(QVariantList details MEMBER details CONSTANT)                 // of SignValue
    Q_PROPERTY(QVariantList trailingSymbols MEMBER trailingSymbols CONSTANT) // of SignValue
    Q_PROPERTY(bool isSelected MEMBER isSelected CONSTANT)
    Q_PROPERTY(QString description MEMBER description CONSTANT) // the whole row in words

public:
    QString diskName;
    QVariantList details;
    QVariantList trailingSymbols;
    bool isSelected = false;
    QString description;
};

/// A WarningBox or an OptionButton as a view reads it.
struct BoxValue {
    Q_GADGET
    Q_PROPERTY(QString icon MEMBER icon CONSTANT)
    Q_PROPERTY(QString title MEMBER title CONSTANT)
    Q_PROPERTY(QString text MEMBER text CONSTANT)   // a warning's message, a button's subtitle
    Q_PROPERTY(QString color MEMBER color CONSTANT) // a Color's value

public:
    QString icon;
    QString title;
    QString text;
    QString color;

    bool operator==(const BoxValue &) const = default;
};

/// The copy dialog for a view.
class EFIDestinationSelectionPresenter : public QObject {
    Q_OBJECT
    Q_PROPERTY(Content content READ content NOTIFY changed)

    Q_PROPERTY(QString sourceText READ sourceText CONSTANT)
    Q_PROPERTY(int destinationCount READ destinationCount CONSTANT)
    Q_PROPERTY(QVariantList destinations READ destinations NOTIFY changed) // of DestinationValue
    Q_PROPERTY(bool overwriteWithoutBackup READ overwriteWithoutBackup WRITE setOverwriteWithoutBackup NOTIFY changed)
    Q_PROPERTY(brindle::SignValue overwriteLabel READ overwriteLabel NOTIFY changed) // its colour is the text's
    Q_PROPERTY(QString overwriteSymbolColor READ overwriteSymbolColor NOTIFY changed)
    Q_PROPERTY(QVariantList selectionWarnings READ selectionWarnings NOTIFY changed) // of BoxValue

    Q_PROPERTY(bool hasIndicator READ hasIndicator NOTIFY changed)
    Q_PROPERTY(brindle::SignValue indicator READ indicator NOTIFY changed) // its colour is the symbol's
    Q_PROPERTY(QString indicatorDescription READ indicatorDescription NOTIFY changed)
    Q_PROPERTY(bool offersClose READ offersClose NOTIFY changed)
    Q_PROPERTY(bool offersCopy READ offersCopy NOTIFY changed) // and "Cancel" beside it
    Q_PROPERTY(bool canCopy READ canCopy NOTIFY changed)

    Q_PROPERTY(QVariantList progressEnds READ progressEnds NOTIFY changed) // label and partition by turns
    Q_PROPERTY(QString status READ status NOTIFY changed)
    Q_PROPERTY(double progress READ progress NOTIFY changed) // 0 to 1
    Q_PROPERTY(QString percentText READ percentText NOTIFY changed)

    Q_PROPERTY(QString confirmationTitle READ confirmationTitle CONSTANT)
    Q_PROPERTY(QString confirmationText READ confirmationText CONSTANT)
    Q_PROPERTY(QString confirmationQuestion READ confirmationQuestion CONSTANT)
    Q_PROPERTY(QVariantList confirmationOptions READ confirmationOptions NOTIFY changed)   // of BoxValue
    Q_PROPERTY(QVariantList confirmationWarnings READ confirmationWarnings NOTIFY changed) // of BoxValue

    Q_PROPERTY(bool showingAlert READ showingAlert NOTIFY changed)
    Q_PROPERTY(QString alertMessage READ alertMessage NOTIFY changed)

public:
    enum class Content { Confirmation, Selection, Progress };
    Q_ENUM(Content)

    /// The arguments are those of the dialog.
    EFIDestinationSelectionPresenter(PhysicalDisk sourceDisk, EFIPartition sourceEFI,
                                     std::vector<EFICopyManager::EFIPartitionInfo> availableDestinations,
                                     EFIDestinationSelection::OnDestinationSelected onDestinationSelected,
                                     std::function<void()> onCancel, EFICopyManager &efiCopyManager,
                                     QObject *parent = nullptr);

    [[nodiscard]] Content content() const;

    [[nodiscard]] QString sourceText() const;
    [[nodiscard]] int destinationCount() const;
    [[nodiscard]] QVariantList destinations() const;
    [[nodiscard]] bool overwriteWithoutBackup() const { return m_dialog.overwriteWithoutBackup(); }
    void setOverwriteWithoutBackup(bool overwriteWithoutBackup);
    [[nodiscard]] SignValue overwriteLabel() const;
    [[nodiscard]] QString overwriteSymbolColor() const;
    [[nodiscard]] QVariantList selectionWarnings() const;

    [[nodiscard]] bool hasIndicator() const { return m_dialog.footerIndicator().has_value(); }
    [[nodiscard]] SignValue indicator() const; ///< Empty without one.

    /// The indicator in words: of a failure the whole reason, else its text.
    [[nodiscard]] QString indicatorDescription() const;
    [[nodiscard]] bool offersClose() const;
    [[nodiscard]] bool offersCopy() const;
    [[nodiscard]] bool canCopy() const { return m_dialog.canCopy(); }

    [[nodiscard]] QVariantList progressEnds() const;
    [[nodiscard]] QString status() const;
    [[nodiscard]] double progress() const;
    [[nodiscard]] QString percentText() const;

    [[nodiscard]] QString confirmationTitle() const;
    [[nodiscard]] QString confirmationText() const;
    [[nodiscard]] QString confirmationQuestion() const;
    [[nodiscard]] QVariantList confirmationOptions() const;
    [[nodiscard]] QVariantList confirmationWarnings() const;

    [[nodiscard]] bool showingAlert() const { return m_dialog.showingAlert(); }
    [[nodiscard]] QString alertMessage() const;

    Q_INVOKABLE void appear(); ///< Once it is shown.
    Q_INVOKABLE void closeAlert();
    Q_INVOKABLE void select(int destination);
    Q_INVOKABLE void copyEFI();
    Q_INVOKABLE void cancel();
    Q_INVOKABLE void cancelOperation();
    Q_INVOKABLE void chooseOption(int option); ///< Of the confirmation.

    /// The Escape key: closes the alert, cancels what waits for a choice, and leaves a copy under way alone.
    Q_INVOKABLE void escape();

Q_SIGNALS:
    void changed();

private:
    EFIDestinationSelection m_dialog;
    EFICopyManager &m_efiCopyManager;
};

} // namespace brindle
