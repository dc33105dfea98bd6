// The data grid under the hand: keys, clicks, lists, ticks, pictures, clipboard, scrolling, and aloud.
#include "controls_datagrid.h"
#include "platform/controls/Language.h"

#include <QAccessible>
#include <QClipboard>
#include <QElapsedTimer>
#include <QHeaderView>
#include <QInputMethodEvent>
#include <QListWidget>
#include <QPixmap>
#include <QScrollBar>

namespace controls {

namespace {

QListWidget* openedList()
{
    return qobject_cast<QListWidget*>(QApplication::activePopupWidget());
}

} // namespace

TEST_F(DataGrids, KeysGoThroughTheCells)
{
    open();
    const auto after = [this](int key, Qt::KeyboardModifiers modifiers = {}) {
        press(key, modifiers);
        return place();
    };
    EXPECT_EQ(after(Qt::Key_Right), "0,1");
    EXPECT_EQ(after(Qt::Key_End), "0,3");
    EXPECT_EQ(after(Qt::Key_Right), "0,3");
    EXPECT_EQ(after(Qt::Key_Home), "0,0");
    EXPECT_EQ(after(Qt::Key_Up), "0,0");
    EXPECT_EQ(after(Qt::Key_End, Qt::ControlModifier), "29,3");
    EXPECT_EQ(after(Qt::Key_Down), "29,3");
    EXPECT_EQ(after(Qt::Key_PageUp), QStringLiteral("%1,3").arg(29 - (grid->VisibleRows() - 1)));
    EXPECT_EQ(after(Qt::Key_Home, Qt::ControlModifier), "0,0");
    grid->Columns(1).setVisible(false);
    grid->Columns(2).setLocked(true);
    EXPECT_EQ(after(Qt::Key_Right), "0,2");
    EXPECT_EQ(after(Qt::Key_Home), "0,0");
    EXPECT_EQ(after(Qt::Key_Tab), "0,3");
    EXPECT_EQ(after(Qt::Key_Tab), "1,0");
    EXPECT_EQ(after(Qt::Key_Backtab, Qt::ShiftModifier), "0,3");
    EXPECT_EQ(after(Qt::Key_Backtab, Qt::ShiftModifier), "0,0");
    EXPECT_EQ(after(Qt::Key_Backtab, Qt::ShiftModifier), "0,0");
    EXPECT_TRUE(other.hasFocus());
}

TEST_F(DataGrids, APageOfOneRowIsTurnedRowByRow)
{
    open();
    window.setFixedHeight(window.height() - grid->viewport()->height() + 2 * grid->rowHeight(0) - 4);
    ASSERT_LE(grid->VisibleRows(), 2);
    for (const int row : {1, 2, 3}) {
        press(Qt::Key_PageDown);
        EXPECT_EQ(grid->Bookmark(), row);
    }
    press(Qt::Key_PageUp);
    EXPECT_EQ(grid->Bookmark(), 2);
    EXPECT_EQ(grid->model()->headerData(1, Qt::Horizontal).toString(), "Column 1");
    EXPECT_FALSE(grid->model()->headerData(1, Qt::Horizontal, Qt::ToolTipRole).isValid());
}

TEST_F(DataGrids, TabBehindTheLastCellStoresItAndLeaves)
{
    open();
    go(lastRow, 3);
    type("end");
    press(Qt::Key_Tab);
    EXPECT_EQ(cells.at(lastRow, 3), "end");
    EXPECT_TRUE(other.hasFocus());
    EXPECT_EQ(cells.lastRow(), lastRow) << "no row is added";
}

TEST_F(DataGrids, ALockedCellTakesNothingFromTheHand)
{
    open();
    grid->Columns(1).setLocked(true);
    offer({}, ValueItems::Presentation::CheckBox, 2);
    grid->Columns(2).setLocked(true);
    go(0, 1);
    record();
    QApplication::clipboard()->setText("pasted");
    type("x");
    press(Qt::Key_F2);
    press(Qt::Key_Backspace);
    press(Qt::Key_V, Qt::ControlModifier);
    press(Qt::Key_X, Qt::ControlModifier);
    click(0, 1);
    EXPECT_EQ(taken(), QStringList());
    EXPECT_EQ(cells.at(0, 1), "b0");
    EXPECT_EQ(QApplication::clipboard()->text(), "b0") << "it can be copied";
    grid->setCol(2);
    log.clear();
    press(Qt::Key_Space);
    click(0, 2);
    EXPECT_EQ(taken(), QStringList());
    grid->Columns(1).setText("by program");
    EXPECT_EQ(cells.at(0, 1), "by program");
}

TEST_F(DataGrids, ATickIsStoredAtOnceByClickAndSpace)
{
    open();
    offer({}, ValueItems::Presentation::CheckBox);
    cells.set(3, 2, "0");
    go(0, 1);
    record();
    click(3, 2);
    EXPECT_EQ(taken(), QStringList({"BeforeRowColChange at 0,1", "RowColChange from 0,1 to 3,2",
                                    "BeforeColEdit 2 key 0 0/0", "BeforeColUpdate 2 old 0 -1/0",
                                    "AfterColUpdate 2 -1/-1", "AfterColEdit 2 -1/-1"}));
    press(Qt::Key_Space);
    EXPECT_EQ(cells.at(3, 2), "0");
    log.clear();
    clickAt(grid->cellRect(3, 2).topLeft() + QPoint(3, 3));
    type("x");
    EXPECT_EQ(taken(), QStringList()) << "beside the tick, and no text";
    QObject::connect(grid, &DataGrid::BeforeColUpdate,
                     [](int, const QString&, bool& cancel) { cancel = true; });
    click(3, 2);
    EXPECT_EQ(cells.at(3, 2), "0");
    EXPECT_FALSE(grid->EditActive());
}

TEST_F(DataGrids, APictureGoesOnWithEachClick)
{
    open();
    controls::ValueItems& items = grid->Columns(2).ValueItems();
    items.setPresentation(ValueItems::Presentation::Picture);
    const QIcon icon(QPixmap(16, 16));
    items.Add("NA", icon, "nothing");
    items.Add("PE", icon, "granted");
    items.Add("NP", icon, "denied");
    cells.set(0, 2, "");
    QStringList seen;
    QObject::connect(grid, &DataGrid::AfterColUpdate,
                     [&](int column) { seen += grid->Columns(column).Text(); });
    for (int turn = 0; turn < 3; ++turn)
        click(0, 2);
    press(Qt::Key_Space);
    EXPECT_EQ(seen, QStringList({"NA", "PE", "NP", "NA"}));
}

TEST_F(DataGrids, AListTranslatesAndCompletesWhatIsTyped)
{
    open();
    offer({"binary", "bit", "char", "int"}, ValueItems::Presentation::DropDown);
    cells.set(0, 2, "3");
    go(0, 2);
    EXPECT_EQ(grid->Columns(2).Text(), "char");
    EXPECT_EQ(grid->Columns(2).Value(), "3");
    record();
    type("bi");
    EXPECT_EQ(editor()->text(), "binary");
    EXPECT_EQ(editor()->selectedText(), "nary");
    type("t");
    EXPECT_EQ(grid->Columns(2).Text(), "bit");
    EXPECT_EQ(grid->Columns(2).Value(), "2");
    press(Qt::Key_Down);
    EXPECT_EQ(taken().mid(1, 2), QStringList({"BeforeColUpdate 2 old 3 bit/3", "AfterColUpdate 2 bit/2"}));
    EXPECT_EQ(cells.at(0, 2), "2");
}

TEST_F(DataGrids, ATextThatTheListHasNotIsAnErrorAndTheOldValueComesBack)
{
    open();
    offer({"bit", "char"}, ValueItems::Presentation::DropDown);
    cells.set(0, 2, "2");
    go(0, 2);
    record();
    type("zz");
    press(Qt::Key_Tab);
    EXPECT_EQ(taken(), QStringList({"BeforeColEdit 2 key 122 char/2", "ValueItemError 2 zz/2",
                                    "AfterColEdit 2 char/2"}));
    EXPECT_EQ(place(), "0,2");
    press(Qt::Key_Backspace);
    press(Qt::Key_Tab);
    EXPECT_EQ(cells.at(0, 2), "") << "emptying is no error";
}

TEST_F(DataGrids, TheListOpensByKeyAndArrowAfterItsButtonFilledIt)
{
    open();
    grid->Columns(2).ValueItems().setPresentation(ValueItems::Presentation::DropDown);
    QObject::connect(grid, &DataGrid::ButtonClick, [this] {
        grid->Columns(2).ValueItems().Clear();
        offer({"bit", "char", "int"}, ValueItems::Presentation::DropDown);
        grid->ReBind();
    });
    go(0, 2);
    press(Qt::Key_F2);
    press(Qt::Key_Down, Qt::AltModifier);
    QApplication::processEvents();
    EXPECT_NE(openedList(), nullptr) << "rebound during an edit";
    press(Qt::Key_Escape);
    press(Qt::Key_Escape);
    EXPECT_EQ(place(), "0,2");
    record();
    press(Qt::Key_Down, Qt::AltModifier);
    ASSERT_NE(openedList(), nullptr);
    EXPECT_EQ(openedList()->count(), 3);
    type("c");
    EXPECT_EQ(openedList()->currentRow(), 1);
    press(Qt::Key_Down);
    press(Qt::Key_Return);
    EXPECT_EQ(openedList(), nullptr);
    EXPECT_EQ(grid->Columns(2).Text(), "int");
    EXPECT_EQ(cells.at(0, 2), "c0") << "pending like a typed text";
    press(Qt::Key_Down);
    EXPECT_EQ(cells.at(0, 2), "3");

    clickAt(grid->cellRect(1, 2).center());
    const QRect cell = grid->cellRect(1, 2);
    clickAt({cell.right() - 6, cell.center().y()});
    ASSERT_NE(openedList(), nullptr);
    QTest::mouseClick(openedList()->viewport(), Qt::LeftButton, {},
                      openedList()->visualItemRect(openedList()->item(0)).center());
    EXPECT_EQ(grid->Columns(2).Text(), "bit");
    press(Qt::Key_Escape);
    EXPECT_EQ(grid->Columns(2).Text(), "c1");
}

TEST_F(DataGrids, AButtonIsPressedInTheCurrentCellOnly)
{
    open();
    grid->Columns(1).setButton(true);
    record();
    const auto button = [this](int row) {
        const QRect cell = grid->cellRect(row, 1);
        return QPoint(cell.right() - 6, cell.center().y());
    };
    clickAt(button(2));
    EXPECT_EQ(taken(), QStringList({"BeforeRowColChange at 0,0", "RowColChange from 0,0 to 2,1"}));
    clickAt(button(2));
    EXPECT_EQ(taken(), QStringList("ButtonClick 1"));
    press(Qt::Key_F4);
    EXPECT_EQ(taken(), QStringList("ButtonClick 1"));
}

TEST_F(DataGrids, PasteTakesTheFirstLineAndEndsLikeATypedText)
{
    open();
    go(0, 1);
    record();
    QApplication::clipboard()->setText("ñandú 日本\tnext cell\r\nnext line");
    press(Qt::Key_V, Qt::ControlModifier);
    EXPECT_EQ(grid->Columns(1).Text(), "ñandú 日本");
    press(Qt::Key_End);
    press(Qt::Key_Insert, Qt::ShiftModifier);
    press(Qt::Key_Down);
    EXPECT_EQ(cells.at(0, 1), "ñandú 日本ñandú 日本");
    press(Qt::Key_C, Qt::ControlModifier);
    EXPECT_EQ(QApplication::clipboard()->text(), "b1");
    press(Qt::Key_X, Qt::ControlModifier);
    press(Qt::Key_Down);
    EXPECT_EQ(cells.at(1, 1), "");
}

TEST_F(DataGrids, ComposedTextStartsAnEditAndPassesTheForm)
{
    open();
    go(0, 1);
    QStringList asked;
    QObject::connect(grid, &DataGrid::KeyPress, [&](int& character) {
        asked += QString(QChar(character));
        if (character == u'本')
            character = 0;
    });
    QInputMethodEvent preedit("に", {});
    QApplication::sendEvent(grid, &preedit);
    ASSERT_NE(editor(), nullptr);
    EXPECT_TRUE(editor()->hasFocus());
    QInputMethodEvent commit;
    commit.setCommitString("日本");
    QApplication::sendEvent(editor(), &commit);
    EXPECT_EQ(asked, QStringList({"日", "本"}));
    EXPECT_EQ(grid->Columns(1).Text(), "日");
}

TEST_F(DataGrids, FirstRowAndRowAreThePlaceInThePage)
{
    open();
    grid->setFirstRow(10);
    EXPECT_EQ(grid->FirstRow(), 10);
    EXPECT_EQ(grid->Bookmark(), 0) << "the page moves and not the cell";
    EXPECT_EQ(grid->Row(), -10);
    grid->setRow(2);
    EXPECT_EQ(place(), "12,0");
    EXPECT_EQ(grid->FirstRow(), 10);
    EXPECT_EQ(grid->Row(), 2);
    grid->setRow(grid->VisibleRows() + 3);
    EXPECT_EQ(grid->FirstRow() + grid->Row(), 10 + grid->VisibleRows() + 3);
    EXPECT_EQ(grid->Row(), grid->VisibleRows() - 1) << "scrolled just into view";
    const int first = grid->FirstRow();
    const int row = grid->Row();
    grid->ReBind();
    grid->Refresh();
    EXPECT_EQ(grid->FirstRow(), first);
    EXPECT_EQ(grid->Row(), row);
    grid->setRow(500);
    EXPECT_EQ(grid->Bookmark(), lastRow);
    EXPECT_THROW(grid->setRow(-500), basic::RuntimeError);
    EXPECT_THROW(grid->setCol(4), basic::RuntimeError);
}

TEST_F(DataGrids, ThePlaceCanBeSetBeforeTheGridIsSeen)
{
    grid->setFirstRow(8);
    grid->setRow(3);
    grid->setCol(2);
    EXPECT_EQ(grid->FirstRow(), 8);
    EXPECT_EQ(grid->Row(), 3);
    open();
    EXPECT_EQ(grid->FirstRow(), 8);
    EXPECT_EQ(grid->Row(), 3);
    EXPECT_EQ(place(), "11,2");
    type("x");
    press(Qt::Key_Down);
    EXPECT_EQ(cells.at(11, 2), "x");
}

TEST_F(DataGrids, AHalfVisibleRowThatIsClickedIsTheOneThatAnswers)
{
    open();
    offer({}, ValueItems::Presentation::CheckBox);
    window.resize(600, window.height() + 8);
    QApplication::processEvents();
    const int half = grid->FirstRow() + grid->VisibleRows();
    for (int row = 0; row <= lastRow; ++row)
        cells.set(row, 2, "0");
    const QRect cell = grid->cellRect(half, 2) & grid->viewport()->rect();
    ASSERT_LT(cell.height(), grid->rowHeight(half));
    ASSERT_GT(cell.height(), 4);
    const QPoint at(grid->cellRect(half, 2).center().x(), cell.bottom() - 1);
    QTest::mousePress(grid->viewport(), Qt::LeftButton, {}, at);
    QTest::mouseRelease(grid->viewport(), Qt::LeftButton, {}, at);
    EXPECT_EQ(grid->Bookmark(), half);
    EXPECT_EQ(grid->Row(), grid->VisibleRows() - 1) << "whole now";
    for (int row = 0; row <= lastRow; ++row)
        EXPECT_TRUE(row == half || cells.at(row, 2) == "0") << row;
    QTest::mouseClick(grid->viewport(), Qt::RightButton, {}, grid->cellRect(half - 2, 1).center());
    EXPECT_EQ(grid->Bookmark(), half - 2) << "a menu is for the row below the pointer";
}

TEST_F(DataGrids, ScrollingKeepsTheEditInItsCell)
{
    open();
    go(1, 1);
    type("moved");
    grid->verticalScrollBar()->setValue(12);
    EXPECT_EQ(grid->FirstRow() + grid->Row(), 1);
    EXPECT_LT(editor()->geometry().bottom(), 0);
    grid->verticalScrollBar()->setValue(0);
    EXPECT_TRUE(grid->cellRect(1, 1).contains(editor()->geometry()));
    grid->verticalScrollBar()->setValue(12);
    click(14, 2);
    EXPECT_EQ(cells.at(1, 1), "moved");
    EXPECT_EQ(place(), "14,2");
}

TEST_F(DataGrids, AWidthSetByHandStaysAndNoCaptionIsClipped)
{
    open();
    grid->Columns(3).setWidth(1);
    EXPECT_GE(grid->Columns(3).Width(), grid->horizontalHeader()->sectionSizeHint(3));
    grid->Columns(3).setCaption("A caption that is far longer than the column was");
    EXPECT_GE(grid->Columns(3).Width(), grid->horizontalHeader()->sectionSizeHint(3));
    QHeaderView* const header = grid->horizontalHeader();
    const int edge = header->sectionViewportPosition(0) + header->sectionSize(0) - 1;
    const int before = grid->Columns(0).Width();
    QTest::mousePress(header->viewport(), Qt::LeftButton, {}, {edge, 5});
    QTest::mouseMove(header->viewport(), {edge + 40, 5});
    QTest::mouseRelease(header->viewport(), Qt::LeftButton, {}, {edge + 40, 5});
    EXPECT_EQ(grid->Columns(0).Width(), before + 40);
    grid->ReBind();
    Array another(4, 4);
    grid->setArray(&another);
    EXPECT_EQ(grid->Columns(0).Width(), before + 40);
}

TEST_F(DataGrids, AScreenReaderHearsColumnRowAndText)
{
    setUiLanguage(0);
    open();
    offer({"bit", "char"}, ValueItems::Presentation::DropDown);
    offer({}, ValueItems::Presentation::CheckBox, 3);
    cells.set(1, 2, "2");
    cells.set(1, 3, "-1");
    QAccessibleInterface* const table = QAccessible::queryAccessibleInterface(grid);
    ASSERT_NE(table->tableInterface(), nullptr);
    const auto heard = [&](int row, int column) {
        return table->tableInterface()->cellAt(row, column)->text(QAccessible::Name);
    };
    EXPECT_EQ(heard(1, 1), "Column 1, fila 2: b1");
    EXPECT_EQ(heard(1, 2), "Column 2, fila 2: char");
    EXPECT_EQ(heard(1, 3), "Column 3, fila 2: marcado");
    go(1, 1);
    press(Qt::Key_F2);
    EXPECT_EQ(QAccessible::queryAccessibleInterface(editor())->text(QAccessible::Name),
              "Column 1, fila 2: b1");
    press(Qt::Key_Escape);
    grid->setCurrentIndex(grid->model()->index(4, 2));
    QApplication::processEvents();
    EXPECT_EQ(place(), "4,2") << "moved by the reader";
}

TEST_F(DataGrids, AHundredThousandRowsScrollWithoutAWait)
{
    Array many(99999, 4);
    for (int row = 0; row <= 99999; ++row)
        many.set(row, 1, QString::number(row));
    open();
    QElapsedTimer clock;
    clock.start();
    grid->setArray(&many);
    press(Qt::Key_End, Qt::ControlModifier);
    for (int page = 0; page < 100; ++page)
        press(Qt::Key_PageUp);
    QApplication::processEvents();
    EXPECT_LT(clock.elapsed(), 2000);
    EXPECT_EQ(grid->Bookmark(), 99999 - 100 * (grid->VisibleRows() - 1));
}

} // namespace controls
