// What clicks and keys select in trees and lists, and which menus open: by a pointer and keys of their own.
#include "platform/controls/Keys.h"
#include "platform/controls/ListView.h"
#include "platform/controls/Menus.h"
#include "platform/controls/TreeView.h"

#include <gtest/gtest.h>

#include <QApplication>
#include <QLineEdit>
#include <QMainWindow>
#include <QMenu>
#include <QMenuBar>
#include <QScrollBar>
#include <QTest>

namespace controls {
namespace {

/// As the forms do: the item under the pointer is selected when a button goes down.
void selectUnderPointer(ItemView& view)
{
    QObject::connect(&view, &ItemView::MouseDown, &view, [&view](int, int, int x, int y) {
        if (const Item* item = view.HitTest({x, y}))
            view.Select(item);
    });
}

QString selectedKey(const ItemView& view)
{
    const Item* item = view.SelectedItem();
    return item ? item->Key() : QString();
}

void fill(ListView& list, int count)
{
    list.Clear();
    for (int i = 0; i < count; ++i)
        list.Add("T" + QString::number(i), "table " + QString::number(i))->setSubItems(1, "dbo");
}

template <class View>
class Selection : public ::testing::Test
{
protected:
    void SetUp() override
    {
        for (int i = 0; i < 60; ++i)
            add(i);
        selectUnderPointer(view);
        view.show();
    }

    void add(int i)
    {
        const QString key = "T" + QString::number(i);
        if constexpr (std::is_same_v<View, ListView>)
            view.Add(key, key);
        else
            view.Add("", key, key, "");
    }

    View view;
};

using Views = ::testing::Types<ListView, TreeView>;
TYPED_TEST_SUITE(Selection, Views);

TYPED_TEST(Selection, IsTheRowUnderThePointerAtAnyScrollPositionAndSize)
{
    auto& view = this->view;
    for (const int points : {9, 14}) {
        QFont font = view.font();
        font.setPointSize(points);
        view.setFont(font);
        for (int height = 200; height < 225; height += 3) {
            view.resize(150, height);
            for (const int scroll : {0, 7, 200}) {
                for (const auto button : {Qt::LeftButton, Qt::RightButton}) {
                    for (const int fromEdge : {0, 1, 2}) {
                        view.Select(view.Find("T0"));
                        view.verticalScrollBar()->setValue(scroll);
                        const int y = fromEdge == 2 ? 0 : view.viewport()->height() - 1 - fromEdge;
                        const QString under = view.HitTest({20, y})->Key();
                        QTest::mouseClick(view.viewport(), button, {}, {20, y});
                        ASSERT_EQ(selectedKey(view), under)
                            << "height " << height << ", scrolled " << scroll << ", y " << y;
                    }
                }
            }
        }
    }
}

TYPED_TEST(Selection, OnlyAnotherRowReplacesIt)
{
    auto& view = this->view;
    view.Clear();
    for (int i = 0; i < 3; ++i)
        this->add(i);
    view.resize(300, 300);
    const auto at = [&view](const char* key) { return view.itemRect(view.Find(key)).center(); };
    QTest::mouseClick(view.viewport(), Qt::LeftButton, {}, at("T1"));
    for (const Qt::KeyboardModifiers held : {Qt::NoModifier, Qt::ControlModifier, Qt::ShiftModifier}) {
        QTest::mouseClick(view.viewport(), Qt::LeftButton, held, {20, 280});
        EXPECT_EQ(selectedKey(view), "T1") << "a click on empty ground";
        QTest::mouseClick(view.viewport(), Qt::LeftButton, held, at("T1"));
        EXPECT_EQ(selectedKey(view), "T1") << "a click on the selected row";
    }
    QTest::keyClick(&view, Qt::Key_Space, Qt::ControlModifier);
    EXPECT_EQ(selectedKey(view), "T1");
    QTest::mouseClick(view.viewport(), Qt::LeftButton, Qt::ControlModifier, at("T2"));
    EXPECT_EQ(selectedKey(view), "T2");

    QTest::mousePress(view.viewport(), Qt::LeftButton, {}, at("T0"));
    QMouseEvent drag(QEvent::MouseMove, at("T2"), view.viewport()->mapToGlobal(at("T2")), Qt::NoButton,
                     Qt::LeftButton, {});
    QCoreApplication::sendEvent(view.viewport(), &drag);
    QTest::mouseRelease(view.viewport(), Qt::LeftButton, {}, at("T2"));
    EXPECT_EQ(selectedKey(view), "T0") << "a drag selects nothing else";
}

TYPED_TEST(Selection, KeysSelectFromNothing)
{
    auto& view = this->view;
    QApplication::setKeyboardInputInterval(0); // each letter begins a search of its own
    for (const int count : {1, 5}) {
        const struct
        {
            Qt::Key key;
            int reached;
        } cases[] = {{Qt::Key_Down, 0},   {Qt::Key_Up, 0},          {Qt::Key_Home, 0},
                     {Qt::Key_PageUp, 0}, {Qt::Key_End, count - 1}, {Qt::Key_PageDown, count - 1},
                     {Qt::Key_T, 0}};
        for (const auto& each : cases) {
            view.Clear();
            for (int i = 0; i < count; ++i)
                this->add(i);
            view.setFocus();
            ASSERT_EQ(selectedKey(view), "");
            QTest::qWait(2);
            QTest::keyClick(&view, each.key);
            EXPECT_EQ(selectedKey(view), "T" + QString::number(each.reached))
                << "key " << each.key << " of " << count;
        }
    }
}

TEST(Lists, FilledAnewUnderThePointerSelectWhatWasSeenThere)
{
    ListView list;
    fill(list, 100);
    list.resize(300, 205);
    list.show();
    selectUnderPointer(list);
    list.verticalScrollBar()->setValue(333);
    const QPoint at(20, list.viewport()->height() - 2);
    const QString seen = list.HitTest(at)->Text();
    fill(list, 100); // as an activation does, just before the press is delivered
    QTest::mouseClick(list.viewport(), Qt::LeftButton, {}, at);
    ASSERT_NE(list.SelectedItem(), nullptr);
    EXPECT_EQ(list.SelectedItem()->Text(), seen);

    for (const int scrolled : {1, 20, 57}) {
        list.verticalScrollBar()->setValue(scrolled * list.itemRect(list.Item(0)).height() + 3);
        const auto top = std::pair(list.HitTest({0, 0})->Text(), list.itemRect(list.HitTest({0, 0})).top());
        fill(list, 100);
        QTest::qWait(2);
        EXPECT_EQ(std::pair(list.HitTest({0, 0})->Text(), list.itemRect(list.HitTest({0, 0})).top()), top);
    }
    list.Clear();
    list.Add("T0", "another");
    QTest::mouseClick(list.viewport(), Qt::LeftButton, {}, {20, 5});
    EXPECT_EQ(selectedKey(list), "T0");
}

class MenuBars : public ::testing::Test
{
protected:
    void SetUp() override
    {
        window.setMenuBar(bar);
        file->addAction("Open");
        query->addAction("Run");
        window.setCentralWidget(field);
        window.show();
        QApplication::setActiveWindow(&window);
        field->setFocus();
    }

    QMainWindow window;
    QMenuBar* bar = new QMenuBar(&window);
    QMenu* file = bar->addMenu("&File");
    QMenu* base = bar->addMenu("&Base");
    QAction* first = base->addAction("&First");
    QAction* between = base->addSeparator();
    QAction* last = base->addAction("&Last");
    QMenu* query = bar->addMenu("&Consulta");
    QLineEdit* field = new QLineEdit(&window);
};

TEST_F(MenuBars, HiddenMenusHaveNoLetterAndComeBackInTheirPlace)
{
    const QList<QAction*> all = bar->actions();
    setVisible(base, false);
    setVisible(query, false);
    QTest::keyClick(field, Qt::Key_C, Qt::AltModifier);
    EXPECT_FALSE(query->isVisible());
    EXPECT_EQ(QApplication::focusWidget(), field);

    setVisible(query, true);
    setVisible(base, true);
    setVisible(base, true);
    EXPECT_EQ(bar->actions(), all);
    QTest::qWait(1);
    QTest::keyClick(field, Qt::Key_C, Qt::AltModifier);
    EXPECT_TRUE(query->isVisible());
    query->close();
}

TEST_F(MenuBars, AMenuWithoutVisibleEntriesDoesNotOpenAndLaterShows)
{
    setVisible(first, false);
    setVisible(last, false);
    QTest::keyClick(field, Qt::Key_B, Qt::AltModifier);
    EXPECT_FALSE(base->isVisible());
    QTest::mouseClick(bar, Qt::LeftButton, {}, bar->actionGeometry(base->menuAction()).center());
    EXPECT_FALSE(base->isVisible());
    popup(base, window.mapToGlobal(QPoint(20, 60)));
    EXPECT_FALSE(base->isVisible());

    setVisible(last, true);
    popup(base, window.mapToGlobal(QPoint(20, 60)));
    ASSERT_TRUE(base->isVisible());
    EXPECT_FALSE(base->testAttribute(Qt::WA_OutsideWSRange)) << "it would take keys unseen";
    EXPECT_TRUE(base->rect().contains(base->actionGeometry(last)));
    base->close();
    QTest::keyClick(field, Qt::Key_B, Qt::AltModifier);
    EXPECT_TRUE(base->isVisible());
    base->close();
}

} // namespace
} // namespace controls
