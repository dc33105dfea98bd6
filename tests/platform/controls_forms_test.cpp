// The life of forms: order of their handlers, slots, the list of loaded forms, the MDI window.
#include "platform/controls/MdiForm.h"
#include "platform/controls/Slot.h"
#include "platform/controls/TextBox.h"

#include <gtest/gtest.h>

#include <QMdiArea>
#include <QMdiSubWindow>
#include <QPushButton>
#include <QScreen>
#include <QTest>
#include <QTimer>
#include <QVBoxLayout>

namespace controls {
namespace {

QStringList& events()
{
    static QStringList list;
    return list;
}

class Recorder : public Form
{
public:
    explicit Recorder(const QString& name) { setObjectName(name); }
    bool keep = false;

protected:
    void Form_Load() override { events() += Name() + ".Load"; }
    void Form_Activate() override { events() += Name() + ".Activate"; }
    void Form_QueryUnload(bool& /*cancel*/) override { events() += Name() + ".QueryUnload"; }
    void Form_Unload(bool& cancel) override
    {
        events() += Name() + ".Unload";
        cancel = keep;
    }
};

class Window : public MdiForm
{
public:
    Window() { setObjectName("window"); }

protected:
    void MDIForm_Load() override { events() += "window.Load"; }
    void MDIForm_Activate() override { events() += "window.Activate"; }
    void MDIForm_Unload(bool& /*cancel*/) override { events() += "window.Unload"; }
};

struct Sheet : Recorder
{
    Sheet() : Recorder("sheet") {}
};

class Forms : public ::testing::Test
{
protected:
    void SetUp() override
    {
        window = new Window;
        window->Show();
        taken();
    }
    void TearDown() override
    {
        delete window;
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    }
    static QStringList taken()
    {
        QTest::qWait(1);
        return std::exchange(events(), {});
    }

    QPointer<Window> window;
};

} // namespace

TEST_F(Forms, HandlersRunInOrderAndOnceEach)
{
    auto* a = new Recorder("a");
    a->Show();
    EXPECT_EQ(taken(), (QStringList{"a.Load", "a.Activate"}));
    a->Show();
    EXPECT_EQ(taken(), QStringList()) << "showing the active form again changes nothing";
    auto* b = new Recorder("b");
    b->Show();
    EXPECT_EQ(taken(), (QStringList{"b.Load", "b.Activate"}));
    EXPECT_EQ(LoadedFormNames(), (QStringList{"window", "a", "b"}));
    a->SetFocus();
    EXPECT_EQ(taken(), QStringList{"a.Activate"});
    EXPECT_EQ(window->ActiveForm(), a);
    a->Unload();
    EXPECT_EQ(taken(), (QStringList{"a.QueryUnload", "a.Unload", "b.Activate"}));
    EXPECT_EQ(LoadedForms(), QList<Form*>{b});
}

TEST_F(Forms, AnUnloadedFormIsDeletedWithItsFrame)
{
    QPointer<Recorder> a = new Recorder("a");
    a->Show();
    window->area()->subWindowList().first()->close();
    QTest::qWait(1);
    EXPECT_TRUE(a.isNull());
    EXPECT_TRUE(window->area()->subWindowList().isEmpty());
}

TEST_F(Forms, CancelKeepsTheFormAndTheWindow)
{
    auto* a = new Recorder("a");
    a->Show();
    a->keep = true;
    taken();
    EXPECT_FALSE(a->Unload());
    window->area()->subWindowList().first()->close();
    EXPECT_TRUE(a->isVisible());
    window->close();
    EXPECT_TRUE(window->isVisible());
    EXPECT_EQ(taken(), (QStringList{"a.QueryUnload", "a.Unload", "a.QueryUnload", "a.Unload", "a.QueryUnload",
                                    "a.Unload"}));
    a->keep = false;
    window->close();
    EXPECT_EQ(taken(), (QStringList{"a.QueryUnload", "a.Unload", "window.Unload"}));
    EXPECT_EQ(LoadedFormNames(), QStringList());
}

TEST_F(Forms, ASlotMakesItsFormOnFirstUseAndAgainAfterItsUnload)
{
    static Slot<Sheet> slot;
    EXPECT_FALSE(slot.exists());
    Sheet* first = &*slot;
    EXPECT_EQ(taken(), QStringList()) << "naming the form does not load it";
    slot->Show();
    EXPECT_EQ(&*slot, first);
    EXPECT_EQ(taken(), (QStringList{"sheet.Load", "sheet.Activate"}));
    slot->Unload();
    EXPECT_FALSE(slot.exists());
    slot->Show();
    EXPECT_EQ(taken(), (QStringList{"sheet.QueryUnload", "sheet.Unload", "sheet.Load", "sheet.Activate"}));
}

TEST_F(Forms, CascadingLaysVisibleChildrenOutInSteps)
{
    QList<Form*> forms;
    for (const char* name : {"a", "b", "c"}) {
        forms += new Recorder(name);
        forms.last()->Show();
    }
    window->Cascade();
    EXPECT_EQ(forms[0]->Left(), 0);
    EXPECT_GT(forms[1]->Left(), forms[0]->Left());
    EXPECT_GT(forms[2]->Top(), forms[1]->Top());
    forms[2]->setLeft(0);
    EXPECT_EQ(forms[2]->Left(), 0);
    forms[1]->setWindowStateValue(Form::Minimized);
    forms[2]->setWindowStateValue(Form::Maximized);
    forms[2]->setLeft(40);
    window->Cascade();
    EXPECT_EQ(forms[1]->windowStateValue(), Form::Minimized);
    EXPECT_EQ(forms[2]->windowStateValue(), Form::Normal);
    EXPECT_EQ(forms[2]->Top(), forms[2]->Left()) << "the minimised one takes no place, and a maximised one "
                                                    "cannot be moved";
}

TEST_F(Forms, ManyOrLargeFormsBeginInsideTheWindow)
{
    for (int i = 0; i < 40; ++i) {
        auto* form = new Recorder("form");
        form->resize(i % 2 == 0 ? QSize(300, 200) : QSize(5000, 5000));
        form->Show();
        ASSERT_TRUE(window->area()->viewport()->rect().contains(form->parentWidget()->geometry())) << i;
    }
}

TEST_F(Forms, AMinimisedFormHandsOverAndComesBackWhenShown)
{
    auto* a = new Recorder("a");
    auto* b = new Recorder("b");
    a->Show();
    b->Show();
    taken();
    b->setWindowStateValue(Form::Minimized);
    EXPECT_EQ(taken(), QStringList{"a.Activate"});
    a->setWindowStateValue(Form::Minimized);
    EXPECT_EQ(window->ActiveForm(), nullptr);
    EXPECT_EQ(taken(), QStringList());
    for (Form* form : {a, b}) {
        form->Show();
        EXPECT_EQ(taken(), QStringList{form->Name() + ".Activate"});
        EXPECT_EQ(form->windowStateValue(), Form::Normal);
    }
}

TEST_F(Forms, ReturningFromAnotherProgramActivatesNothing)
{
    auto* a = new Recorder("a");
    a->Show();
    ASSERT_TRUE(QTest::qWaitForWindowActive(window));
    taken();
    QWidget other;
    other.show();
    other.activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&other));
    window->activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(window));
    EXPECT_EQ(taken(), QStringList{"window.Activate"});
}

TEST_F(Forms, AFormDeletedFromOutsideLeavesNoFrameAndAnEmptySlot)
{
    static Slot<Sheet> slot;
    slot->Show();
    delete &*slot;
    QTest::qWait(1);
    EXPECT_FALSE(slot.exists());
    EXPECT_TRUE(window->area()->subWindowList().isEmpty());
    EXPECT_EQ(LoadedFormNames(), QStringList{"window"});
}

TEST_F(Forms, TheWindowOpensInsideTheScreensFreeArea)
{
    const QRect free = window->screen()->availableGeometry();
    EXPECT_LT(window->width(), free.width());
    EXPECT_LT(window->height(), free.height()) << "there is room for the frame";
    EXPECT_GE(window->minimumWidth(), 400);
    EXPECT_GE(window->minimumHeight(), 200);
}

TEST_F(Forms, AFrameHasMinAndMaxButtonsUnlessTheFormWantsNone)
{
    constexpr auto minMax = Qt::WindowMinMaxButtonsHint;
    auto* a = new Recorder("a");
    a->Show();
    EXPECT_EQ(window->area()->activeSubWindow()->windowFlags() & minMax, minMax);
    auto* b = new Recorder("b");
    b->setMinMaxButtons(false);
    b->Show();
    auto* frame = window->area()->activeSubWindow();
    EXPECT_EQ(frame->windowFlags() & minMax, Qt::WindowFlags());
    QTest::mouseDClick(frame, Qt::LeftButton, {}, {frame->width() / 2, 10}); // in the title bar
    EXPECT_FALSE(frame->isMaximized());
    auto* modal = new Recorder("modal");
    QTimer::singleShot(10, modal, [&] {
        EXPECT_EQ(modal->windowFlags() & minMax, Qt::WindowFlags());
        EXPECT_TRUE(modal->windowFlags().testFlag(Qt::WindowCloseButtonHint));
        modal->Unload();
    });
    modal->ShowModal();
    EXPECT_TRUE(b->windowHandle() == nullptr && b->isVisible());
}

TEST_F(Forms, EnterPressesTheFocusedButtonAndNoOther)
{
    auto* a = new Recorder("a");
    auto* column = new QVBoxLayout(a);
    auto* field = new TextBox;
    auto* first = new QPushButton("first");
    auto* second = new QPushButton("second");
    int presses[2] = {};
    QObject::connect(first, &QPushButton::clicked, [&] { ++presses[0]; });
    QObject::connect(second, &QPushButton::clicked, [&] { ++presses[1]; });
    for (QWidget* each : std::initializer_list<QWidget*>{field, first, second})
        column->addWidget(each);
    a->Show();
    field->setFocus();
    QTest::keyClick(field, Qt::Key_Return);
    EXPECT_EQ(presses[0] + presses[1], 0);
    second->setFocus();
    QTest::keyClick(second, Qt::Key_Return);
    QTest::keyClick(second, Qt::Key_Enter);
    EXPECT_EQ(presses[0], 0);
    EXPECT_EQ(presses[1], 2);
}

TEST_F(Forms, AModalFormReturnsWhenItCloses)
{
    auto* a = new Recorder("a");
    QTimer::singleShot(10, a, [a] { a->close(); });
    a->ShowModal();
    EXPECT_EQ(events(), (QStringList{"a.Load", "a.Activate", "a.QueryUnload", "a.Unload"}));
}

} // namespace controls
