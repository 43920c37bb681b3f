#pragma once

#include "efi/EFICopyManager.h"
#include "shell/Color.h"

#include <QObject>

#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace brindle {

/// A symbol, a text or both, in one colour.
struct Sign {
    std::string_view symbol; ///< Empty: the text stands alone.
    std::string text;        ///< Empty: the symbol stands alone.
    Color color = Colors::kSecondary;

    bool operator==(const Sign &) const = default;
};

/// A warning that informs and forbids nothing.
struct WarningBox {
    std::string_view icon;
    Color color;
    std::string_view title;
    std::string_view message;

    bool operator==(const WarningBox &) const = default;
};

/// One of the ways to go on.
struct OptionButton {
    std::string_view icon;
    std::string_view title;
    std::string_view subtitle;
    Color color;
    std::function<void()> action;
};

/// The dialog in which the user picks where an EFI folder goes, says what becomes of an old one and watches the work:
/// what it shows and allows. Much of it goes by the words of EFICopyManager::operationStatus(), case for case.
///
/// Names of disks and volumes are handed out as they are: whoever shows them makes them visible text. Main thread only.
class EFIDestinationSelection : public QObject {
    Q_OBJECT

public:
    using EFIPartitionInfo = EFICopyManager::EFIPartitionInfo;
    using OnDestinationSelected = std::function<void(const EFIPartitionInfo &destination, bool overwriteWithoutBackup)>;

    // Above the options of the confirmation.
    static constexpr std::string_view kConfirmationTitle = "EFI Folder Exists";
    static constexpr std::string_view kConfirmationText = "The destination already contains an EFI folder.";
    static constexpr std::string_view kConfirmationQuestion = "Choose how to proceed:";

    enum class Content { confirmation, selection, progress };
    enum class Buttons { none, close, cancelAndCopy };

    /// What a row tells of a destination.
    struct Row {
        std::string diskName;
        std::vector<Sign> details;         ///< In one line.
        std::vector<Sign> trailingSymbols; ///< At the end of the row.
        bool isSelected = false;
    };

    /// \a efiCopyManager outlives the dialog.
    EFIDestinationSelection(PhysicalDisk sourceDisk, EFIPartition sourceEFI,
                            std::vector<EFIPartitionInfo> availableDestinations,
                            OnDestinationSelected onDestinationSelected, std::function<void()> onCancel,
                            EFICopyManager &efiCopyManager, QObject *parent = nullptr);

    [[nodiscard]] const std::optional<EFIPartitionInfo> &selectedDestination() const { return m_selectedDestination; }
    [[nodiscard]] bool overwriteWithoutBackup() const { return m_overwriteWithoutBackup; }
    [[nodiscard]] bool showingAlert() const { return m_showingAlert; }
    [[nodiscard]] const std::string &alertMessage() const { return m_alertMessage; }

    void appear(); ///< Once it is shown. Raises an alert where there is nothing to pick.
    void closeAlert();
    void select(std::size_t row); ///< Of rows(). A choice can be changed and not taken back.
    void setOverwriteWithoutBackup(bool overwriteWithoutBackup);
    void copyEFI();                  ///< The button "Copy EFI"; nothing without a choice.
    void cancel();                   ///< "Cancel", "Close", "Refresh" and the cross: the dialog goes.
    void cancelOperation();          ///< The button "Cancel Operation", there as long as content() is progress.
    void choose(std::size_t option); ///< Of confirmationOptions(); nothing for one that isn't there.

    /// The Escape key: closes the alert, cancels what waits for a choice, and leaves a copy under way alone.
    void escape();

    [[nodiscard]] Content content() const;

    [[nodiscard]] std::string sourceText() const;
    [[nodiscard]] std::vector<Row> rows() const; ///< Empty: a view of its own says so, whose button is cancel().
    [[nodiscard]] Sign overwriteLabel() const;   ///< Of the checkbox, without its symbol's colour.
    [[nodiscard]] Color overwriteSymbolColor() const;
    [[nodiscard]] std::vector<WarningBox> selectionWarnings() const;

    [[nodiscard]] std::optional<Sign> footerIndicator() const; ///< Its text is secondary, its symbol of its colour.
    [[nodiscard]] bool isFailure() const; ///< The indicator tells of one: operationStatus() is its whole reason.
    [[nodiscard]] Buttons footerButtons() const;
    [[nodiscard]] bool canCopy() const { return m_selectedDestination.has_value(); }

    /// "From:" and "To:" with a partition each, while a choice is awaited; else empty.
    [[nodiscard]] std::vector<std::pair<std::string_view, std::string>> progressEnds() const;
    [[nodiscard]] std::string percentText() const; ///< Cut to whole per cent.

    [[nodiscard]] std::vector<OptionButton> confirmationOptions() const; ///< Empty unless content() is confirmation.
    [[nodiscard]] std::optional<WarningBox> confirmationWarning() const;

Q_SIGNALS:
    void changed();

private:
    [[nodiscard]] bool isSelected(const EFIPartitionInfo &destination) const;
    [[nodiscard]] bool statusContains(std::string_view word) const;

    PhysicalDisk m_sourceDisk;
    EFIPartition m_sourceEFI;
    std::vector<EFIPartitionInfo> m_availableDestinations;
    OnDestinationSelected m_onDestinationSelected;
    std::function<void()> m_onCancel;
    std::optional<EFIPartitionInfo> m_selectedDestination;
    bool m_overwriteWithoutBackup = false;
    EFICopyManager &m_efiCopyManager;
    bool m_showingAlert = false;
    std::string m_alertMessage;
};

} // namespace brindle
