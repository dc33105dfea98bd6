// The grid of results over rows that a server sent.
#include "platform/ado/Connection.h"
#include "platform/controls/ResultGrid.h"
#include "support/PracticeServer.h"

#include <gtest/gtest.h>

#include <QApplication>
#include <QClipboard>
#include <QDialog>
#include <QHeaderView>
#include <QPlainTextEdit>
#include <QTest>
#include <QTimer>

namespace controls {
namespace {

ado::Recordset rowsOf(const QString& statement)
{
    ado::Connection connection;
    connection.Open(support::testConnectionString());
    ado::Recordset rows;
    rows.Open(statement, connection);
    return rows;
}

void show(ResultGrid& grid, const QString& statement)
{
    grid.setDataSource(rowsOf(statement));
    grid.ReBind();
}

QVariant cell(const ResultGrid& grid, int column, int role = Qt::DisplayRole)
{
    return grid.model()->index(0, column).data(role);
}

} // namespace

TEST(ResultGrids, ANullLooksUnlikeAnEmptyTextAndUnlikeTheWord)
{
    ResultGrid grid;
    show(grid, "select null as a, '' as b, 'NULL' as c, 7 as d");
    EXPECT_EQ(cell(grid, 0), "NULL");
    EXPECT_EQ(cell(grid, 1), "");
    EXPECT_TRUE(cell(grid, 0, Qt::FontRole).value<QFont>().italic());
    EXPECT_FALSE(cell(grid, 2, Qt::FontRole).isValid());
    EXPECT_TRUE(cell(grid, 3, Qt::TextAlignmentRole).toInt() & Qt::AlignRight);
    EXPECT_FALSE(cell(grid, 2, Qt::TextAlignmentRole).toInt() & Qt::AlignRight);
    EXPECT_EQ(grid.model()->headerData(3, Qt::Horizontal), "d");
}

TEST(ResultGrids, ACopyIsWhatASpreadsheetReads)
{
    ResultGrid grid;
    show(grid,
         "select 'a' as x, null as y union all select 'say \"b\"' + char(9) + 'c', 'd' + char(13) + 'e'");
    grid.selectAll();
    EXPECT_EQ(grid.selectionText(false), "a\tNULL\n\"say \"\"b\"\"\tc\"\t\"d\re\"");
    QTest::keyClick(&grid, Qt::Key_C, Qt::ControlModifier | Qt::ShiftModifier);
    EXPECT_TRUE(QApplication::clipboard()->text().startsWith("x\ty\na\tNULL\n"));
    grid.setCurrentIndex(grid.model()->index(1, 0));
    QTest::keyClick(&grid, Qt::Key_C, Qt::ControlModifier);
    EXPECT_EQ(QApplication::clipboard()->text(), "say \"b\"\tc") << "a cell alone goes as it is";
    QTest::keyClick(&grid, Qt::Key_C, Qt::ControlModifier | Qt::ShiftModifier);
    EXPECT_EQ(QApplication::clipboard()->text(), "x\n\"say \"\"b\"\"\tc\"\n") << "but not below its header";
    grid.setCurrentIndex(grid.model()->index(0, 1));
    EXPECT_EQ(grid.selectionText(true), "y\nNULL\n");
    EXPECT_EQ(grid.selectionText(false), "NULL");
}

TEST(ResultGrids, ColumnsAreAsWideAsTheirTexts)
{
    ResultGrid grid;
    show(
        grid,
        "select 'WWWWWWWWWW' as a, 'iiiiiiiiii' as b, N'日本語日本語' as c, N'ÑÑÑÑÑÑ' as d, "
        "'x' as a_heading_longer_than_its_column union all select 'W', 'iiiiiiiiiiiiiiiiiiii', N'', N'', ''");
    const auto* rows = grid.model();
    for (int column = 0; column < rows->columnCount(); ++column)
        for (int row = 0; row < rows->rowCount(); ++row)
            EXPECT_GT(grid.columnWidth(column),
                      grid.fontMetrics().horizontalAdvance(rows->index(row, column).data().toString()) + 4);
    EXPECT_GT(grid.columnWidth(0), grid.columnWidth(1));
    EXPECT_GE(grid.columnWidth(4), grid.horizontalHeader()->sectionSizeHint(4));
}

TEST(ResultGrids, ALongCellIsCutInItsRowAndWholeInTheViewer)
{
    ResultGrid grid;
    show(grid, "select replicate('0123456789', 500) + char(10) + 'end' as long_text");
    EXPECT_LT(cell(grid, 0).toString().size(), 300);
    EXPECT_LT(grid.columnWidth(0), 400);
    EXPECT_EQ(grid.rowHeight(0), grid.fontMetrics().height() + 6);
    grid.show();
    grid.setCurrentIndex(grid.model()->index(0, 0));
    QString whole;
    QTimer::singleShot(10, qApp, [&] {
        auto* viewer = QApplication::activeModalWidget();
        ASSERT_NE(viewer, nullptr);
        whole = viewer->findChild<QPlainTextEdit*>()->toPlainText();
        EXPECT_EQ(viewer->windowTitle(), "long_text");
        QTest::keyClick(viewer, Qt::Key_Escape);
    });
    QTest::keyClick(&grid, Qt::Key_Return);
    EXPECT_EQ(whole, QString("0123456789").repeated(500) + "\nend");
}

TEST(ResultGrids, AMessageStandsInPlaceOfRowsUntilTheNextOnes)
{
    ResultGrid grid;
    show(grid, "select 1 as a");
    grid.showMessage("3 rows affected.");
    EXPECT_EQ(grid.message(), "3 rows affected.");
    EXPECT_EQ(grid.model()->columnCount(), 0);
    grid.selectAll();
    EXPECT_EQ(grid.selectionText(true), QString());
    show(grid, "select 1 as a where 1 = 0");
    EXPECT_EQ(grid.message(), QString());
    EXPECT_EQ(grid.model()->rowCount(), 0);
    EXPECT_EQ(grid.model()->columnCount(), 1) << "no rows still have their columns";
}

} // namespace controls
