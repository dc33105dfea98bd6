// The data grid's events: their order, what each sees, and what happens when a handler answers.
#include "controls_datagrid.h"

#include <QDialog>
#include <QTimer>

namespace controls {

namespace {

/// A modal question that is answered at once.
void ask(QWidget* parent)
{
    QDialog question(parent);
    QTimer answer;
    QObject::connect(&answer, &QTimer::timeout, &question, &QDialog::accept);
    answer.start(20);
    question.exec();
}

} // namespace

TEST_F(DataGrids, AnEditTellsItsEventsInOrderWithTheTextsOfTheTime)
{
    open();
    go(1, 1);
    record();
    recordKeys();
    type("x");
    EXPECT_EQ(taken(), QStringList({"KeyDown 88", "KeyPress 120", "BeforeColEdit 1 key 120 b1/b1"}));
    press(Qt::Key_Backspace);
    type("y");
    EXPECT_EQ(taken(), QStringList({"KeyDown 8", "KeyPress 8", "KeyDown 89", "KeyPress 121"}));
    EXPECT_EQ(grid->Columns(1).Text(), "y");
    EXPECT_EQ(cells.at(1, 1), "b1");
    press(Qt::Key_Down);
    EXPECT_EQ(taken(), QStringList({"KeyDown 40", "BeforeColUpdate 1 old b1 y/b1", "AfterColUpdate 1 y/y",
                                    "AfterColEdit 1 y/y", "BeforeRowColChange at 1,1",
                                    "RowColChange from 1,1 to 2,1"}));
    EXPECT_FALSE(grid->EditActive());
}

TEST_F(DataGrids, AnUnchangedTextAndEscapeAreNoUpdate)
{
    open();
    go(0, 1);
    record();
    press(Qt::Key_F2);
    press(Qt::Key_Right);
    press(Qt::Key_Tab);
    EXPECT_EQ(taken(), QStringList({"BeforeColEdit 1 key 0 b0/b0", "AfterColEdit 1 b0/b0",
                                    "BeforeRowColChange at 0,1", "RowColChange from 0,1 to 0,2"}));
    type("zz");
    press(Qt::Key_Escape);
    EXPECT_EQ(taken(), QStringList({"BeforeColEdit 2 key 122 c0/c0", "AfterColEdit 2 c0/c0"}));
    EXPECT_EQ(cells.at(0, 2), "c0");
    EXPECT_EQ(place(), "0,2");
    EXPECT_TRUE(grid->hasFocus());
    press(Qt::Key_Escape);
    EXPECT_EQ(taken(), QStringList()) << "nothing is edited";
}

TEST_F(DataGrids, ACancelledUpdateGivesTheOldTextBackAndTheCellStays)
{
    open();
    go(0, 1);
    record();
    const auto refusal = QObject::connect(grid, &DataGrid::BeforeColUpdate,
                                          [](int, const QString&, bool& cancel) { cancel = true; });
    type("n");
    log.clear();
    click(3, 2);
    EXPECT_EQ(taken(), QStringList({"BeforeColUpdate 1 old b0 n/b0", "AfterColEdit 1 b0/b0"}));
    EXPECT_EQ(place(), "0,1");
    EXPECT_EQ(editor(), nullptr) << "nothing is pending any more";
    click(3, 2);
    EXPECT_EQ(place(), "3,2") << "the way out is open";
    QObject::disconnect(refusal);
}

TEST_F(DataGrids, EnterThatTheFormLeavesToTheGridStaysWhenTheUpdateIsCancelled)
{
    open();
    go(0, 1);
    QObject::connect(grid, &DataGrid::BeforeColUpdate, grid,
                     [](int, const QString&, bool& cancel) { cancel = true; });
    type("zz");
    press(Qt::Key_Return);
    EXPECT_EQ(place(), "0,1");
    EXPECT_EQ(cells.at(0, 1), "b0");
    press(Qt::Key_Escape);
    press(Qt::Key_Return);
    EXPECT_EQ(place(), "0,2");
}

TEST_F(DataGrids, ACancelledEditDoesNotBeginAndACancelledMoveDoesNotHappen)
{
    open();
    go(0, 1);
    record();
    auto refusal =
        QObject::connect(grid, &DataGrid::BeforeColEdit, [](int, int, bool& cancel) { cancel = true; });
    type("n");
    press(Qt::Key_F2);
    click(0, 1);
    EXPECT_EQ(taken(), QStringList({"BeforeColEdit 1 key 110 b0/b0", "BeforeColEdit 1 key 0 b0/b0",
                                    "BeforeColEdit 1 key 0 b0/b0"}));
    EXPECT_FALSE(grid->EditActive());
    QObject::disconnect(refusal);
    refusal = QObject::connect(grid, &DataGrid::BeforeRowColChange, [](bool& cancel) { cancel = true; });
    press(Qt::Key_Down);
    grid->setCol(2);
    EXPECT_EQ(place(), "0,1");
    QObject::disconnect(refusal);
}

TEST_F(DataGrids, MovingTheRowAwayAndBackStoresWhatIsPending)
{
    open();
    go(2, 1);
    record();
    type("n");
    log.clear();
    grid->setRow(2);
    EXPECT_TRUE(grid->EditActive()) << "no move";
    grid->setRow(0);
    grid->setRow(2);
    EXPECT_EQ(taken(),
              QStringList({"BeforeColUpdate 1 old b2 n/b2", "AfterColUpdate 1 n/n", "AfterColEdit 1 n/n",
                           "BeforeRowColChange at 2,1", "RowColChange from 2,1 to 0,1",
                           "BeforeRowColChange at 0,1", "RowColChange from 0,1 to 2,1"}));
    EXPECT_EQ(cells.at(2, 1), "n");
}

TEST_F(DataGrids, WritingACellByProgramIsPendingInAnEditAndStoredOutsideOfOne)
{
    open();
    go(1, 1);
    record();
    grid->Columns(2).setText("direct");
    EXPECT_EQ(cells.at(1, 2), "direct");
    EXPECT_EQ(taken(), QStringList()) << "no event";
    type("9");
    log.clear();
    grid->Columns(1).setText("8000");
    grid->Columns(2).setText("beside");
    EXPECT_EQ(cells.at(1, 1), "b1");
    EXPECT_EQ(cells.at(1, 2), "beside");
    EXPECT_EQ(editor()->text(), "8000");
    grid->setCol(2);
    EXPECT_EQ(taken().value(0), "BeforeColUpdate 1 old b1 8000/b1");
    EXPECT_EQ(cells.at(1, 1), "8000");
}

TEST_F(DataGrids, AHandlerMayMendThePendingTextBeforeItIsStored)
{
    open();
    go(1, 1);
    QObject::connect(grid, &DataGrid::BeforeColUpdate, [this] { grid->Columns(1).setText("mended"); });
    type("9");
    press(Qt::Key_Down);
    EXPECT_EQ(cells.at(1, 1), "mended");
    EXPECT_EQ(place(), "2,1");
}

TEST_F(DataGrids, TheMoveOfAHandlerStands)
{
    open();
    go(1, 1);
    QObject::connect(grid, &DataGrid::AfterColUpdate, [this] { grid->setCol(3); });
    record();
    type("9");
    log.clear();
    press(Qt::Key_Down);
    EXPECT_EQ(place(), "1,3");
    EXPECT_EQ(taken(),
              QStringList({"BeforeColUpdate 1 old b1 9/b1", "BeforeRowColChange at 1,1",
                           "RowColChange from 1,1 to 1,3", "AfterColUpdate 1 9/9", "AfterColEdit 1 9/9"}));
}

TEST_F(DataGrids, AMoveInsideTheEndOfAnEditStoresOnce)
{
    open();
    go(1, 1);
    record();
    QObject::connect(grid, &DataGrid::BeforeColUpdate, [this](int, const QString&, bool& cancel) {
        grid->setRow(4);
        cancel = true;
    });
    type("9");
    log.clear();
    press(Qt::Key_Tab);
    EXPECT_EQ(taken(), QStringList({"BeforeColUpdate 1 old b1 9/b1", "BeforeRowColChange at 1,1",
                                    "RowColChange from 1,1 to 4,1", "AfterColEdit 1 b4/b4"}));
    EXPECT_EQ(cells.at(1, 1), "b1");
    EXPECT_EQ(cells.at(4, 1), "b4");
}

TEST_F(DataGrids, TheFocusIsLostWithTheEditPendingAndThenStored)
{
    open();
    go(1, 1);
    record();
    type("9");
    log.clear();
    QTest::mouseClick(&other, Qt::LeftButton);
    EXPECT_EQ(taken(), QStringList({"LostFocus editing 1", "BeforeColUpdate 1 old b1 9/b1",
                                    "AfterColUpdate 1 9/9", "AfterColEdit 1 9/9"}));
    EXPECT_TRUE(other.hasFocus());
    EXPECT_EQ(cells.at(1, 1), "9");
}

TEST_F(DataGrids, AHandlerOfLostFocusMayTakeItBackAndTheEditGoesOn)
{
    open();
    go(1, 1);
    QObject::connect(grid, &DataGrid::LostFocus, [this] {
        ask(&window);
        note("asked");
        grid->Columns(1).setText("1");
        grid->SetFocus();
    });
    type("9");
    QTest::mouseClick(&other, Qt::LeftButton);
    EXPECT_EQ(taken(), QStringList("asked")) << "a message box in front is no loss of the focus by itself";
    window.activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&window));
    EXPECT_TRUE(grid->EditActive());
    EXPECT_TRUE(editor()->hasFocus());
    EXPECT_EQ(cells.at(1, 1), "b1");
    press(Qt::Key_Down);
    EXPECT_EQ(cells.at(1, 1), "1");
}

TEST_F(DataGrids, AQuestionInTheUpdateStoresOnceAndWhatIsAnswered)
{
    open();
    go(1, 1);
    int asked = 0;
    QObject::connect(grid, &DataGrid::BeforeColUpdate, [&] {
        ask(&window);
        ++asked;
    });
    type("9");
    click(3, 1);
    EXPECT_EQ(asked, 1);
    EXPECT_EQ(cells.at(1, 1), "9");
    EXPECT_EQ(place(), "3,1");
}

TEST_F(DataGrids, EnterIsTheFormsToAnswer)
{
    open();
    go(1, 1);
    bool swallow = false;
    bool move = false;
    QObject::connect(grid, &DataGrid::KeyPress, [&](int& character) {
        if (character == 13 && move)
            grid->setCol(3);
        if (character == 13 && swallow)
            character = 0;
    });
    type("9");
    press(Qt::Key_Return);
    EXPECT_EQ(place(), "1,2") << "left to the grid";
    EXPECT_EQ(cells.at(1, 1), "9");
    move = true;
    press(Qt::Key_Enter);
    EXPECT_EQ(place(), "1,3") << "answered, though not swallowed";
    move = false;
    swallow = true;
    type("7");
    press(Qt::Key_Return);
    EXPECT_EQ(place(), "1,3");
    EXPECT_TRUE(grid->EditActive());
}

TEST_F(DataGrids, ASwallowedCharacterStartsNoEditAndAnotherTakesItsPlace)
{
    open();
    go(1, 1);
    QObject::connect(grid, &DataGrid::KeyPress, [](int& character) {
        if (character == 'q')
            character = 0;
        else if (character >= 'a')
            character += 'A' - 'a';
    });
    type("q");
    EXPECT_FALSE(grid->EditActive());
    type("xqy");
    EXPECT_EQ(grid->Columns(1).Text(), "XY");
}

TEST_F(DataGrids, DeleteIsToldWhileACellIsEditedAndAnsweredByARebind)
{
    open();
    go(1, 1);
    QObject::connect(grid, &DataGrid::KeyDown, [this](int& key) {
        if (key != 46)
            return;
        note("delete row");
        for (int column = 0; column <= 4; ++column)
            cells.set(1, column, cells.at(2, column));
        grid->ReBind();
        grid->Refresh();
    });
    type("9");
    press(Qt::Key_Delete);
    EXPECT_EQ(taken(), QStringList("delete row"));
    EXPECT_FALSE(grid->EditActive());
    EXPECT_EQ(place(), "1,1");
    press(Qt::Key_Down);
    EXPECT_EQ(cells.at(1, 1), "b2") << "what was pending is of a row that has gone";
}

TEST_F(DataGrids, BindingAnotherArrayInAnEditWritesIntoNeither)
{
    open();
    go(1, 1);
    record();
    Array fewer(1, 4);
    type("9");
    grid->setArray(&fewer);
    EXPECT_EQ(place(), "0,0");
    EXPECT_EQ(fewer.at(0, 1) + fewer.at(1, 1), "");
    EXPECT_EQ(cells.at(1, 1), "b1");
    grid->setArray(nullptr);
    EXPECT_EQ(grid->Row(), -1);
    EXPECT_EQ(grid->Columns(1).Text(), "");
    grid->Columns(1).setText("nowhere");
    grid->setRow(1);
    press(Qt::Key_F2);
    EXPECT_FALSE(grid->EditActive());
}

TEST_F(DataGrids, AnArrayThatGoesLeavesAnEmptyGrid)
{
    open();
    auto gone = std::make_unique<Array>(3, 3);
    grid->setArray(gone.get());
    type("9");
    gone.reset();
    EXPECT_EQ(grid->boundArray(), nullptr);
    EXPECT_EQ(grid->model()->rowCount(), 0);
    EXPECT_FALSE(grid->EditActive());
}

TEST_F(DataGrids, ARebindInTheUpdateGivesTheEditUp)
{
    open();
    go(1, 1);
    QObject::connect(grid, &DataGrid::BeforeColUpdate, [this] { grid->ReBind(); });
    type("9");
    press(Qt::Key_Down);
    EXPECT_EQ(cells.at(1, 1), "b1");
    EXPECT_EQ(place(), "1,1");
}

TEST_F(DataGrids, APageThatHidesTheGridIsALossAndAFormThatClosesIsNone)
{
    open();
    go(1, 1);
    record();
    type("9");
    log.clear();
    grid->hide();
    EXPECT_EQ(taken(), QStringList({"LostFocus editing 1", "BeforeColUpdate 1 old b1 9/b1",
                                    "AfterColUpdate 1 9/9", "AfterColEdit 1 9/9"}));
    grid->show();
    grid->SetFocus();
    type("8");
    log.clear();
    window.close();
    EXPECT_EQ(taken(), QStringList()) << "a form stores what is pending before it goes";
    EXPECT_EQ(cells.at(1, 1), "9");
}

/// The grid goes in the handler of each event in turn.
class DataGridsThatGo : public DataGrids, public testing::WithParamInterface<int>
{
protected:
    void remove()
    {
        delete grid;
        grid = nullptr;
    }
};

TEST_P(DataGridsThatGo, NothingIsTouchedAfterwards)
{
    open();
    go(1, 1);
    const QPointer<DataGrid> alive = grid;
    const auto away = [this] { remove(); };
    switch (GetParam()) {
    case 0:
        QObject::connect(grid, &DataGrid::BeforeColEdit, away);
        break;
    case 1:
        QObject::connect(grid, &DataGrid::BeforeColUpdate, away);
        break;
    case 2:
        QObject::connect(grid, &DataGrid::AfterColUpdate, away);
        break;
    case 3:
        QObject::connect(grid, &DataGrid::AfterColEdit, away);
        break;
    case 4:
        QObject::connect(grid, &DataGrid::BeforeRowColChange, away);
        break;
    case 5:
        QObject::connect(grid, &DataGrid::RowColChange, away);
        break;
    case 6:
        QObject::connect(grid, &DataGrid::KeyDown, away);
        break;
    case 7:
        QObject::connect(grid, &DataGrid::KeyPress, away);
        break;
    case 8:
        QObject::connect(grid, &DataGrid::LostFocus, away);
        break;
    default:
        QObject::connect(grid, &DataGrid::MouseDown, away);
        break;
    }
    type("9");
    if (alive && GetParam() < 8)
        press(Qt::Key_Down);
    else if (alive && GetParam() == 8)
        QTest::mouseClick(&other, Qt::LeftButton);
    else if (alive)
        QTest::mousePress(grid->viewport(), Qt::LeftButton, {}, grid->cellRect(3, 3).center());
    EXPECT_TRUE(alive.isNull());
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
}

INSTANTIATE_TEST_SUITE_P(EachEvent, DataGridsThatGo, testing::Range(0, 10));

} // namespace controls
