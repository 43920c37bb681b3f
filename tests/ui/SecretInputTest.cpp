#include "ui/SecretInput.h"

#include "ui/QmlWindow.h"

#include <QClipboard>
#include <QGuiApplication>
#include <QInputMethodEvent>
#include <QKeyEvent>

namespace brindle {
namespace {

/// Types characters of any script.
void type(QmlWindow &window, const QString &text)
{
    for (const QChar character : text) {
        for (const QEvent::Type type : {QEvent::KeyPress, QEvent::KeyRelease}) {
            QKeyEvent event(type, character.toUpper().unicode(), Qt::NoModifier, character);
            QCoreApplication::sendEvent(&window.window(), &event);
        }
    }
}

class SecretInputTest : public testing::Test {
protected:
    SecretInputTest() { secret().setField(&field()); }

    QQuickItem &field() { return window.item(QStringLiteral("field")); }
    SecretInput &secret() { return m_secret; }
    std::string taken() { return std::string(m_secret.take().view()); }

    /// What the field itself holds.
    QString held() { return field().property("text").toString(); }

    QmlWindow window{R"(InputField { objectName: "field"; echoMode: TextInput.Password; focus: true })"};

private:
    SecretInput m_secret;
};

TEST_F(SecretInputTest, KeepsWhatIsTypedOutOfTheField)
{
    type(window, QStringLiteral("pä ß€"));

    EXPECT_EQ(held().size(), 5);
    for (const QChar character : QStringLiteral("pä ß€"))
        EXPECT_FALSE(held().contains(character));
    EXPECT_EQ(taken(), "pä ß€");
    EXPECT_EQ(held(), u"");
    EXPECT_EQ(taken(), "");
}

struct EditCase {
    const char *name;
    std::function<void(QmlWindow &)> edit;
    const char *result;
};

class SecretInputEdit : public SecretInputTest, public testing::WithParamInterface<EditCase> {};

INSTANTIATE_TEST_SUITE_P(Of, SecretInputEdit,
                         testing::Values(EditCase{"Backspace",
                                                  [](QmlWindow &window) { window.press(Qt::Key_Backspace); }, "säsam"},
                                         EditCase{"BackspaceInTheMiddle",
                                                  [](QmlWindow &window) {
                                                      window.press(Qt::Key_Left);
                                                      window.press(Qt::Key_Left);
                                                      window.press(Qt::Key_Left);
                                                      window.press(Qt::Key_Left);
                                                      window.press(Qt::Key_Backspace);
                                                  },
                                                  "ssame"},
                                         EditCase{"Delete",
                                                  [](QmlWindow &window) {
                                                      window.press(Qt::Key_Home);
                                                      window.press(Qt::Key_Delete);
                                                  },
                                                  "äsame"},
                                         EditCase{"InsertionInFront",
                                                  [](QmlWindow &window) {
                                                      window.press(Qt::Key_Home);
                                                      type(window, QStringLiteral("ö"));
                                                  },
                                                  "ösäsame"},
                                         EditCase{"TypingOverTheSelection",
                                                  [](QmlWindow &window) {
                                                      window.press(Qt::Key_Left, Qt::ShiftModifier);
                                                      window.press(Qt::Key_Left, Qt::ShiftModifier);
                                                      type(window, QStringLiteral("x"));
                                                  },
                                                  "säsax"},
                                         EditCase{"DeletingTheSelection",
                                                  [](QmlWindow &window) {
                                                      window.press(Qt::Key_Home);
                                                      window.press(Qt::Key_Right);
                                                      window.press(Qt::Key_Right, Qt::ShiftModifier);
                                                      window.press(Qt::Key_Backspace);
                                                  },
                                                  "ssame"},
                                         EditCase{"TypingOverAll",
                                                  [](QmlWindow &window) {
                                                      window.press(Qt::Key_A, Qt::ControlModifier);
                                                      type(window, QStringLiteral("y"));
                                                  },
                                                  "y"},
                                         EditCase{"Undo",
                                                  [](QmlWindow &window) {
                                                      window.press(Qt::Key_Z, Qt::ControlModifier);
                                                      window.press(Qt::Key_Z, Qt::ControlModifier | Qt::ShiftModifier);
                                                  },
                                                  "säsame"},
                                         EditCase{"PastingInTheMiddle",
                                                  [](QmlWindow &window) {
                                                      QGuiApplication::clipboard()->setText(QStringLiteral("pä"));
                                                      window.press(Qt::Key_Home);
                                                      window.press(Qt::Key_Right);
                                                      window.press(Qt::Key_V, Qt::ControlModifier);
                                                      type(window, QStringLiteral("!"));
                                                  },
                                                  "spä!äsame"},
                                         EditCase{"PastingOverTheSelection",
                                                  [](QmlWindow &window) {
                                                      QGuiApplication::clipboard()->setText(QStringLiteral("new"));
                                                      window.press(Qt::Key_A, Qt::ControlModifier);
                                                      window.press(Qt::Key_V, Qt::ControlModifier);
                                                  },
                                                  "new"},
                                         EditCase{"AnInputMethod",
                                                  [](QmlWindow &window) {
                                                      QInputMethodEvent event;
                                                      event.setCommitString(QStringLiteral("か"));
                                                      QCoreApplication::sendEvent(&window.item(QStringLiteral("field")),
                                                                                  &event);
                                                  },
                                                  "säsameか"}),
                         [](const auto &row) { return row.param.name; });

TEST_P(SecretInputEdit, IsFollowed)
{
    type(window, QStringLiteral("säsame"));

    GetParam().edit(window);

    for (const QChar character : held())
        EXPECT_EQ(character, held()[0]) << "nothing but place holders";
    EXPECT_EQ(taken(), GetParam().result);
}

TEST_F(SecretInputTest, LeavesTheOtherKeysToTheFieldsSurroundings)
{
    QmlWindow surrounded(R"(FocusScope {
                                objectName: "scope"
                                property int escapes: 0
                                property int returns: 0
                                Keys.onEscapePressed: escapes += 1
                                focus: true
                                InputField { objectName: "field"; focus: true; echoMode: TextInput.Password
                                             Keys.onReturnPressed: parent.returns += 1 }
                            })");
    SecretInput input;
    input.setField(&surrounded.item(QStringLiteral("field")));

    surrounded.press(Qt::Key_Escape);
    surrounded.press(Qt::Key_Return);

    EXPECT_EQ(surrounded.valueOf<int>(QStringLiteral("scope"), "escapes"), 1);
    EXPECT_EQ(surrounded.valueOf<int>(QStringLiteral("scope"), "returns"), 1);
}

} // namespace
} // namespace brindle
