#include "views/AlertPresenter.h"

#include <gmock/gmock.h>

namespace brindle {
namespace {

using testing::ElementsAre;
using Field = AlertPresenter::Field;

std::vector<int> answersOf(AlertPresenter &presenter, const std::function<void()> &act)
{
    std::vector<int> answers;
    QObject::connect(&presenter, &AlertPresenter::answered, [&](int button) { answers.push_back(button); });
    act();
    return answers;
}

TEST(AlertPresenter, ShowsAnAlertOfEitherStyle)
{
    const AlertPresenter warning(Alert{.messageText = "No", .informativeText = "It can't be done."});
    const AlertPresenter note(Alert{.messageText = "Note", .style = AlertStyle::informational});

    EXPECT_EQ(warning.messageText(), u"No");
    EXPECT_EQ(warning.informativeText(), u"It can't be done.");
    EXPECT_EQ(warning.symbol(), u"exclamationmark.triangle.fill");
    EXPECT_EQ(warning.symbolColor(), u"orange");
    EXPECT_THAT(warning.buttons(), ElementsAre(u"OK"));
    EXPECT_EQ(warning.field(), Field::None);
    EXPECT_EQ(note.symbol(), u"info.circle");
    EXPECT_EQ(note.symbolColor(), u"blue");
}

TEST(AlertPresenter, BeginsATextPromptWithItsText)
{
    const AlertPresenter prompt(
        TextPrompt{.alert = {.buttons = {"Rename", "Cancel"}}, .placeholder = "New name", .text = "WORK"});

    EXPECT_EQ(prompt.field(), Field::Text);
    EXPECT_EQ(prompt.placeholder(), u"New name");
    EXPECT_EQ(prompt.text(), u"WORK");
    EXPECT_THAT(prompt.buttons(), ElementsAre(u"Rename", u"Cancel"));
}

TEST(AlertPresenter, HasNoTextInASecurePrompt)
{
    const AlertPresenter prompt(SecurePrompt{.placeholder = "Administrator Password"});

    EXPECT_EQ(prompt.field(), Field::Secret);
    EXPECT_EQ(prompt.placeholder(), u"Administrator Password");
    EXPECT_EQ(prompt.text(), u"");
}

TEST(AlertPresenter, IsAnsweredOnce)
{
    AlertPresenter alert(Alert{.buttons = {"OK", "Other", "Cancel"}});

    EXPECT_THAT(answersOf(alert,
                          [&] {
                              alert.press(1);
                              alert.press(0);
                              alert.close();
                          }),
                ElementsAre(1));
}

TEST(AlertPresenter, TakesTheLastButtonWhereItIsClosedInAnotherWay)
{
    AlertPresenter alert(Alert{.buttons = {"OK", "Other", "Cancel"}});

    EXPECT_THAT(answersOf(alert, [&] { alert.close(); }), ElementsAre(2));
}

TEST(AlertPresenter, KeepsTheLinesOfItsTextAndShowsWhatTheyHide)
{
    const AlertPresenter alert(
        Alert{.messageText = "A\nB\u202e", .informativeText = "Disk: \x1b[31mStick\nSize: 16 GB\n"});

    EXPECT_EQ(alert.messageText(), u"A<U+000A>B<U+202E>");
    EXPECT_EQ(alert.informativeText(), u"Disk: <U+001B>[31mStick\nSize: 16 GB");
}

} // namespace
} // namespace brindle
