// A data grid in a window of its own beside another control, with a record of every event it tells.
#pragma once

#include "platform/controls/DataGrid.h"

#include <gtest/gtest.h>

#include <QApplication>
#include <QLineEdit>
#include <QStringList>
#include <QTest>
#include <QVBoxLayout>
#include <QWidget>

#include <memory>

namespace controls {

class DataGrids : public testing::Test
{
protected:
    using Array = DataGrid::Array;

    static constexpr int lastRow = 29;

    DataGrids()
    {
        auto* layout = new QVBoxLayout(&window);
        grid = new DataGrid;
        layout->addWidget(grid);
        layout->addWidget(&other);
        cells.Redim(lastRow, 4);
        for (int row = 0; row <= lastRow; ++row)
            for (int column = 0; column <= 2; ++column)
                cells.set(row, column, QStringLiteral("%1%2").arg(QChar('a' + column)).arg(row));
        grid->setColumnCount(4);
        for (int column = 0; column < 4; ++column)
            grid->Columns(column).setCaption(QStringLiteral("Column %1").arg(column));
        grid->setArray(&cells);
    }

    void open(int height = 300)
    {
        window.resize(600, height);
        window.show();
        ASSERT_TRUE(QTest::qWaitForWindowActive(&window));
        grid->SetFocus();
    }

    /// Types a, b, c … as values of the numbers 1, 2, 3 …
    void offer(const QStringList& texts, ValueItems::Presentation presentation, int column = 2)
    {
        controls::ValueItems& items = grid->Columns(column).ValueItems();
        items.setPresentation(presentation);
        for (int item = 0; item < texts.size(); ++item)
            items.Add(QString::number(item + 1), texts[item]);
    }

    void note(const QString& what) { log += what; }

    /// Each event with the text that the column shows meanwhile and what the array holds.
    void record()
    {
        const auto state = [this](int column) {
            return QStringLiteral(" %1/%2").arg(grid->Columns(column).Text(),
                                                cells.at(grid->Bookmark(), column));
        };
        QObject::connect(grid, &DataGrid::BeforeColEdit, grid, [=, this](int column, int key) {
            note(QStringLiteral("BeforeColEdit %1 key %2").arg(column).arg(key) + state(column));
        });
        QObject::connect(grid, &DataGrid::BeforeColUpdate, grid, [=, this](int column, const QString& old) {
            note(QStringLiteral("BeforeColUpdate %1 old %2").arg(column).arg(old) + state(column));
        });
        QObject::connect(grid, &DataGrid::AfterColUpdate, grid, [=, this](int column) {
            note(QStringLiteral("AfterColUpdate %1").arg(column) + state(column));
        });
        QObject::connect(grid, &DataGrid::AfterColEdit, grid, [=, this](int column) {
            note(QStringLiteral("AfterColEdit %1").arg(column) + state(column));
        });
        QObject::connect(grid, &DataGrid::BeforeRowColChange, grid, [this] {
            note(QStringLiteral("BeforeRowColChange at %1,%2").arg(grid->Bookmark()).arg(grid->Col()));
        });
        QObject::connect(grid, &DataGrid::RowColChange, grid, [this](int row, int column) {
            note(QStringLiteral("RowColChange from %1,%2 to %3,%4")
                     .arg(row)
                     .arg(column)
                     .arg(grid->Bookmark())
                     .arg(grid->Col()));
        });
        QObject::connect(grid, &DataGrid::ValueItemError, grid, [=, this](int column) {
            note(QStringLiteral("ValueItemError %1").arg(column) + state(column));
        });
        QObject::connect(grid, &DataGrid::ButtonClick, grid,
                         [this](int column) { note(QStringLiteral("ButtonClick %1").arg(column)); });
        QObject::connect(grid, &DataGrid::LostFocus, grid,
                         [this] { note(QStringLiteral("LostFocus editing %1").arg(grid->EditActive())); });
    }

    void recordKeys()
    {
        QObject::connect(grid, &DataGrid::KeyDown, grid,
                         [this](int& key) { note(QStringLiteral("KeyDown %1").arg(key)); });
        QObject::connect(grid, &DataGrid::KeyPress, grid,
                         [this](int& character) { note(QStringLiteral("KeyPress %1").arg(character)); });
        QObject::connect(grid, &DataGrid::MouseDown, grid,
                         [this](int button) { note(QStringLiteral("MouseDown %1").arg(button)); });
    }

    [[nodiscard]] QStringList taken()
    {
        QStringList lines;
        lines.swap(log);
        return lines;
    }

    /// A key to what has the keyboard, as the window system sends it.
    static void press(int key, Qt::KeyboardModifiers modifiers = Qt::NoModifier)
    {
        ASSERT_NE(QApplication::focusWidget(), nullptr);
        QTest::keyClick(QApplication::activePopupWidget() ? QApplication::activePopupWidget()
                                                          : QApplication::focusWidget(),
                        static_cast<Qt::Key>(key), modifiers);
    }
    static void type(const QString& text)
    {
        for (const QChar letter : text)
            QTest::keyClick(QApplication::activePopupWidget() ? QApplication::activePopupWidget()
                                                              : QApplication::focusWidget(),
                            letter.toLatin1());
    }
    /// A click at a point of the grid's page, on whatever stands there.
    void clickAt(const QPoint& at, Qt::MouseButton button = Qt::LeftButton)
    {
        QWidget* const under = window.childAt(grid->viewport()->mapTo(&window, at));
        ASSERT_NE(under, nullptr);
        QTest::mouseClick(under, button, {}, under->mapFrom(grid->viewport(), at));
    }
    void click(int row, int column, Qt::MouseButton button = Qt::LeftButton)
    {
        clickAt(grid->cellRect(row, column).center(), button);
    }
    void go(int row, int column)
    {
        grid->setBookmark(row);
        grid->setCol(column);
        log.clear();
    }
    [[nodiscard]] QString place() const
    {
        return QStringLiteral("%1,%2").arg(grid->Bookmark()).arg(grid->Col());
    }
    [[nodiscard]] QLineEdit* editor() const { return grid->findChild<QLineEdit*>("gridEditor"); }

    Array cells;
    QStringList log;
    QWidget window;
    QLineEdit other;
    DataGrid* grid;
};

} // namespace controls
