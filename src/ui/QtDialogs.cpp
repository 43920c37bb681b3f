#include "ui/QtDialogs.h"

#include "ui/SecretInput.h"
#include "views/AlertPresenter.h"

#include "base/VisibleText.h"

#include <QDir>
#include <QFile>
#include <QFileDialog>
#include <QGridLayout>
#include <QGuiApplication>
#include <QLabel>
#include <QQmlComponent>
#include <QQmlEngine>
#include <QWindow>

#include <memory>
#include <stdexcept>
#include <utility>

namespace brindle {

namespace {

QString qtText(const std::string &text)
{
    return QString::fromStdString(visibleText(text));
}

bool canHaveDialogs(const QWindow &window)
{
    return window.isVisible() && (window.type() == Qt::Window || window.type() == Qt::Tool);
}

/// The window that the user looks at; null where none is shown.
QWindow *windowInFront()
{
    if (QWindow *window = QGuiApplication::focusWindow(); window && canHaveDialogs(*window))
        return window;
    for (QWindow *window : QGuiApplication::topLevelWindows()) {
        if (canHaveDialogs(*window))
            return window;
    }
    return nullptr;
}

/// Shows \a dialog over \a parent, and calls \a close once that is hidden.
void showOver(QWindow *parent, QWindow &dialog, const std::function<void()> &close)
{
    dialog.setTransientParent(parent);
    if (parent) {
        dialog.setPosition(parent->x() + (parent->width() - dialog.width()) / 2,
                           parent->y() + std::max(0, (parent->height() - dialog.height()) / 3));
        QObject::connect(parent, &QWindow::visibleChanged, &dialog, [close](bool isVisible) {
            if (!isVisible)
                close();
        });
    }
}

/// A window with an alert or a prompt, as long as this lives.
class AlertWindow {
public:
    AlertWindow(QQmlEngine &engine, std::unique_ptr<AlertPresenter> presenter) : m_presenter(std::move(presenter))
    {
        QQmlComponent component(&engine, QUrl(QStringLiteral("qrc:/qt/qml/Brindle/AlertWindow.qml")));
        m_window.reset(qobject_cast<QWindow *>(component.createWithInitialProperties(
            {{QStringLiteral("alert"), QVariant::fromValue(m_presenter.get())}})));
        if (!m_window)
            throw std::logic_error(component.errorString().toStdString());
        QObject::connect(m_presenter.get(), &AlertPresenter::answered,
                         [answer = m_answer](int button) { answer.complete(static_cast<std::size_t>(button)); });
        showOver(windowInFront(), *m_window, [presenter = m_presenter.get()] { presenter->close(); });
        m_window->show();
        m_window->requestActivate();
    }

    [[nodiscard]] const Completion<std::size_t> &answer() const { return m_answer; }
    [[nodiscard]] std::string text() const { return m_presenter->text().toStdString(); }
    [[nodiscard]] Secret takeSecret() const { return m_window->findChild<SecretInput *>()->take(); }

private:
    std::unique_ptr<AlertPresenter> m_presenter;
    std::unique_ptr<QWindow> m_window;
    Completion<std::size_t> m_answer;
};

/// A panel that asks for a new file, with its message beneath where it is not the desktop's own.
std::unique_ptr<QFileDialog> makeSavePanel(const SavePanel &panel)
{
    const QString folder = QFile::decodeName(panel.startFolder.c_str());
    auto dialog = std::make_unique<QFileDialog>(nullptr, qtText(panel.title));
    dialog->setAcceptMode(QFileDialog::AcceptSave);
    dialog->setFileMode(QFileDialog::AnyFile);
    dialog->setDirectory(QDir(folder).exists() ? folder : QDir::homePath());
    dialog->selectFile(QFile::decodeName(panel.proposedName.c_str()));
    dialog->setAccessibleDescription(qtText(panel.message));
    if (auto *layout = qobject_cast<QGridLayout *>(dialog->layout())) {
        auto *message = new QLabel(qtText(panel.message), dialog.get());
        message->setObjectName(QStringLiteral("message"));
        message->setTextFormat(Qt::PlainText);
        message->setWordWrap(true);
        layout->addWidget(message, layout->rowCount(), 0, 1, -1);
    }
    return dialog;
}

} // namespace

/// The place of one dialog behind those that were asked for before it.
class QtDialogs::Turn {
public:
    explicit Turn(Completion<bool> &lastTurn) : m_before(std::exchange(lastTurn, m_end)) {}
    ~Turn() { m_end.complete(true); }
    Turn(const Turn &) = delete;
    Turn &operator=(const Turn &) = delete;

    [[nodiscard]] const Completion<bool> &begins() const { return m_before; }

private:
    Completion<bool> m_end;
    Completion<bool> m_before;
};

QtDialogs::QtDialogs(QQmlEngine &engine) : m_engine(engine)
{
    m_lastTurn.complete(true);
}

QCoro::Task<std::size_t> QtDialogs::alert(Alert alert)
{
    const Turn turn(m_lastTurn);
    co_await turn.begins();
    const AlertWindow window(m_engine, std::make_unique<AlertPresenter>(std::move(alert)));
    co_return co_await window.answer();
}

QCoro::Task<std::optional<Secret>> QtDialogs::securePrompt(SecurePrompt prompt)
{
    const Turn turn(m_lastTurn);
    co_await turn.begins();
    const AlertWindow window(m_engine, std::make_unique<AlertPresenter>(std::move(prompt)));
    const std::size_t button = co_await window.answer();
    Secret typed = window.takeSecret();
    co_return button == 0 ? std::optional(std::move(typed)) : std::nullopt;
}

QCoro::Task<std::optional<std::string>> QtDialogs::textPrompt(TextPrompt prompt)
{
    const Turn turn(m_lastTurn);
    co_await turn.begins();
    const AlertWindow window(m_engine, std::make_unique<AlertPresenter>(std::move(prompt)));
    const std::size_t button = co_await window.answer();
    co_return button == 0 ? std::optional(window.text()) : std::nullopt;
}

QCoro::Task<std::optional<std::string>> QtDialogs::savePanel(SavePanel panel)
{
    const Turn turn(m_lastTurn);
    co_await turn.begins();
    const std::unique_ptr<QFileDialog> dialog = makeSavePanel(panel);
    const Completion<int> end;
    QObject::connect(dialog.get(), &QFileDialog::finished, [end](int result) { end.complete(result); });
    dialog->winId(); // makes its window
    showOver(windowInFront(), *dialog->windowHandle(), [&dialog] { dialog->reject(); });
    dialog->open();
    const int result = co_await end;
    if (result != QDialog::Accepted)
        co_return std::nullopt;
    co_return QFile::encodeName(dialog->selectedFiles().constFirst()).toStdString();
}

} // namespace brindle
