#include "platform/controls/Form.h"
#include "platform/controls/MdiForm.h"
#include "platform/controls/SqlEditor.h"

#include <gtest/gtest.h>

#include <QApplication>
#include <QKeyEvent>
#include <QMdiArea>
#include <QMdiSubWindow>
#include <QStyle>
#include <QStyleOptionTitleBar>
#include <QTest>
#include <QVBoxLayout>

namespace controls {
namespace {

void press(QWidget* widget, int key, Qt::KeyboardModifiers modifiers, const QString& text)
{
    QKeyEvent event(QEvent::KeyPress, key, modifiers, text);
    QApplication::sendEvent(widget, &event);
}

long sidewaysScroll(SqlEditor& editor)
{
    return editor.SendScintilla(QsciScintillaBase::SCI_GETXOFFSET);
}

} // namespace

TEST(SqlEditors, LettersWithAltOrCtrlAreNoTextAndAltGrTypes)
{
    SqlEditor editor;
    editor.show();
    press(&editor, Qt::Key_A, Qt::AltModifier, "a");
    press(&editor, Qt::Key_A, Qt::AltModifier | Qt::ShiftModifier, "A");
    press(&editor, Qt::Key_1, Qt::ControlModifier, "1");
    press(&editor, Qt::Key_Q, Qt::ControlModifier | Qt::AltModifier, "q");
    EXPECT_EQ(editor.Text(), QString());
    press(&editor, Qt::Key_At, Qt::NoModifier, "@");
    press(&editor, Qt::Key_BracketLeft, Qt::GroupSwitchModifier, "[");
    press(&editor, Qt::Key_BraceLeft, Qt::ControlModifier | Qt::AltModifier, "{");
    press(&editor, Qt::Key_Ntilde, Qt::ShiftModifier, QStringLiteral("Ñ"));
    EXPECT_EQ(editor.Text(), QStringLiteral("@[{Ñ"));
    QTest::keyClick(&editor, Qt::Key_Z, Qt::ControlModifier);
    EXPECT_EQ(editor.Text(), QString());
}

TEST(SqlEditors, LoadingBeginsANewHistory)
{
    SqlEditor editor;
    editor.show();
    QTest::keyClicks(&editor, "old");
    editor.setText("create view v as select 1");
    QTest::keyClick(&editor, Qt::Key_Z, Qt::ControlModifier);
    EXPECT_EQ(editor.Text(), "create view v as select 1");
    QTest::keyClicks(&editor, "--");
    for (int i = 0; i < 3; ++i)
        QTest::keyClick(&editor, Qt::Key_Z, Qt::ControlModifier);
    EXPECT_EQ(editor.Text(), "create view v as select 1");
}

TEST(SqlEditors, ScrollsBackWhenALongLineHasGone)
{
    SqlEditor editor;
    editor.resize(320, 200);
    editor.show();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(&editor));
    const auto typeLongLine = [&] {
        QTest::keyClicks(&editor, QString(120, QLatin1Char('x')));
        ASSERT_TRUE(QTest::qWaitFor([&] { return sidewaysScroll(editor) > 0; }));
    };
    typeLongLine();
    QTest::keyClick(&editor, Qt::Key_A, Qt::ControlModifier);
    QTest::keyClicks(&editor, "select 1");
    EXPECT_TRUE(QTest::qWaitFor([&] { return sidewaysScroll(editor) == 0; }, 1000));
    typeLongLine();
    QTest::keyClick(&editor, Qt::Key_Backspace);
    QTest::qWait(50);
    EXPECT_GT(sidewaysScroll(editor), 0) << "the cursor is out there still";
    editor.setText("select 1");
    EXPECT_EQ(sidewaysScroll(editor), 0);
}

class FocusOfChildren : public ::testing::Test
{
protected:
    struct EditorForm : Form
    {
        EditorForm() : top(new SqlEditor(this)), editor(new SqlEditor(this))
        {
            auto* layout = new QVBoxLayout(this);
            layout->addWidget(top);
            layout->addWidget(editor);
            resize(300, 260);
        }
        SqlEditor* top;
        SqlEditor* editor;
    };

    void SetUp() override
    {
        main.Show();
        ASSERT_TRUE(QTest::qWaitForWindowActive(&main));
    }

    EditorForm* open()
    {
        auto* form = new EditorForm; // its frame deletes it
        form->Show();
        form->editor->setFocus();
        QTest::qWait(1);
        EXPECT_TRUE(form->editor->hasFocus());
        return form;
    }

    static QPoint titleBar(const QMdiSubWindow* frame)
    {
        return {frame->width() / 2, frame->style()->pixelMetric(QStyle::PM_TitleBarHeight) / 2};
    }

    MdiForm main;
};

TEST_F(FocusOfChildren, KeysThatGoRoundTheChildrenLeaveTheFocusInTheirLastControl)
{
    const auto* one = open();
    for (const auto key : {Qt::Key_F6, Qt::Key_Tab}) {
        QTest::keyClick(QApplication::focusWidget(), key, Qt::ControlModifier);
        QTest::qWait(20);
        EXPECT_TRUE(one->editor->hasFocus()) << "alone, key " << key;
    }
    const auto* two = open();
    for (const auto key : {Qt::Key_F6, Qt::Key_Tab, Qt::Key_F6}) {
        QTest::keyClick(QApplication::focusWidget(), key, Qt::ControlModifier);
        QTest::qWait(1);
        EXPECT_TRUE(one->editor->hasFocus()) << "key " << key;
        QTest::keyClick(QApplication::focusWidget(), key, Qt::ControlModifier);
        QTest::qWait(1);
        EXPECT_TRUE(two->editor->hasFocus()) << "key " << key;
    }
}

TEST_F(FocusOfChildren, MaximisedChildrenTakeTheFocusToTheirLastControl)
{
    const auto* one = open();
    auto* two = open();
    two->setWindowStateValue(Form::Maximized);
    QTest::qWait(1);
    for (const auto key : {Qt::Key_F6, Qt::Key_Tab, Qt::Key_F6}) {
        QTest::keyClick(QApplication::focusWidget(), key, Qt::ControlModifier);
        QTest::qWait(1);
        EXPECT_TRUE(one->editor->hasFocus()) << "key " << key;
        QTest::keyClick(QApplication::focusWidget(), key, Qt::ControlModifier);
        QTest::qWait(1);
        EXPECT_TRUE(two->editor->hasFocus()) << "key " << key;
    }
    two->setWindowStateValue(Form::Minimized);
    EXPECT_TRUE(QTest::qWaitFor([&] { return one->editor->hasFocus(); }, 500));
    two->setWindowStateValue(Form::Normal);
    two->SetFocus();
    EXPECT_TRUE(QTest::qWaitFor([&] { return two->editor->hasFocus(); }, 500));
}

TEST_F(FocusOfChildren, ClicksOnTitleBarsLeaveTheFocusInTheLastControl)
{
    const auto* one = open();
    const auto* two = open();
    auto* firstFrame = main.area()->subWindowList().at(0);
    auto* secondFrame = main.area()->subWindowList().at(1);
    secondFrame->move(firstFrame->x() + 320, firstFrame->y());
    for (int i = 0; i < 2; ++i) {
        QTest::mouseClick(firstFrame, Qt::LeftButton, {}, titleBar(firstFrame));
        EXPECT_TRUE(QTest::qWaitFor([&] { return one->editor->hasFocus(); }, 500));
        QTest::mouseClick(firstFrame, Qt::LeftButton, {}, titleBar(firstFrame));
        EXPECT_TRUE(QTest::qWaitFor([&] { return one->editor->hasFocus(); }, 500)) << "clicked again";
        QTest::mouseClick(secondFrame, Qt::LeftButton, {}, titleBar(secondFrame));
        EXPECT_TRUE(QTest::qWaitFor([&] { return two->editor->hasFocus(); }, 500));
    }
    QTest::mouseClick(one->top->viewport(), Qt::LeftButton, {}, {40, 10});
    QTest::qWait(20);
    EXPECT_TRUE(one->top->hasFocus()) << "a click chooses the control";
}

} // namespace controls
