// Trees, lists, combos, text fields, editor and message box, driven as users and forms drive them.
#include "platform/basic/RuntimeError.h"
#include "platform/controls/ComboBox.h"
#include "platform/controls/ImageList.h"
#include "platform/controls/Keys.h"
#include "platform/controls/Language.h"
#include "platform/controls/ListView.h"
#include "platform/controls/MessageBox.h"
#include "platform/controls/Pointer.h"
#include "platform/controls/ResultGrid.h"
#include "platform/controls/SqlEditor.h"
#include "platform/controls/TextBox.h"
#include "platform/controls/TreeView.h"

#include <gtest/gtest.h>

#include <QApplication>
#include <QMessageBox>
#include <QPushButton>
#include <QSignalSpy>
#include <QTest>
#include <QTimer>
#include <QVBoxLayout>

namespace controls {
namespace {

int errorOf(const std::function<void()>& action)
{
    try {
        action();
    } catch (const basic::RuntimeError& error) {
        return error.number();
    }
    return 0;
}

} // namespace

TEST(Trees, KeysAreUniqueAndFollowTheirRelative)
{
    TreeView tree;
    const ImageList images;
    tree.setImageList(&images);
    tree.Add("", "S", "server", "Servidor");
    auto* child = tree.Add("S", "B", "bases", "CarpetaCerrada");
    EXPECT_EQ(child->Parent()->Key(), "S");
    EXPECT_EQ(tree.Find("S")->Parent(), nullptr);
    EXPECT_EQ(errorOf([&] { tree.Add("S", "B", "again", "Tabla"); }), 35602);
    EXPECT_EQ(errorOf([&] { tree.Add("nothing", "C", "lost", "Tabla"); }), 35601);
    EXPECT_EQ(errorOf([&] { tree.Add("S", "C", "no picture", "Nada"); }), 35601);
    EXPECT_EQ(tree.SelectedItem(), nullptr);
    tree.Select(child);
    EXPECT_EQ(tree.SelectedItem(), child);
    tree.Clear();
    EXPECT_EQ(tree.Find("S"), nullptr);
}

TEST(Trees, EveryPictureCanBeDrawn)
{
    const ImageList images;
    ASSERT_EQ(ImageList::keys().size(), 10);
    for (const QString& key : ImageList::keys())
        EXPECT_FALSE(images.icon(key).pixmap(32).toImage().isNull()) << key.toStdString();
}

TEST(Trees, PointerAndKeyboardTellWhatWasClicked)
{
    TreeView tree;
    tree.Add("", "S", "server", "")->setExpanded(true);
    auto* child = tree.Add("S", "B", "bases", "");
    tree.resize(300, 200);
    tree.show();
    QSignalSpy clicks(&tree, &TreeView::Click);
    QSignalSpy presses(&tree, &TreeView::MouseDown);
    const QPoint at = tree.visualRect(child).center();

    QTest::mouseClick(tree.viewport(), Qt::LeftButton, {}, at);
    EXPECT_EQ(tree.SelectedItem(), child);
    EXPECT_EQ(clicks.count(), 1);
    ASSERT_EQ(presses.count(), 1);
    EXPECT_EQ(presses.takeFirst().first().toInt(), leftButton);

    QTest::mouseClick(tree.viewport(), Qt::RightButton, {}, tree.visualRect(tree.Find("S")).center());
    EXPECT_EQ(tree.SelectedItem(), child) << "the handler selects, not the control";
    EXPECT_EQ(clicks.count(), 1);
    EXPECT_EQ(presses.takeFirst().first().toInt(), rightButton);

    QTest::mouseClick(tree.viewport(), Qt::LeftButton, {}, QPoint(5, 190));
    EXPECT_EQ(clicks.count(), 1);
    presses.clear();

    tree.setFocus();
    QTest::keyClick(&tree, Qt::Key_Up);
    EXPECT_EQ(tree.SelectedItem()->Key(), "S");
    EXPECT_EQ(clicks.count(), 2);
    QTest::keyClick(&tree, Qt::Key_F10, Qt::ShiftModifier);
    ASSERT_EQ(presses.count(), 1);
    const QPoint asked(presses[0][2].toInt(), presses[0][3].toInt());
    EXPECT_EQ(tree.HitTest(asked)->Key(), "S");
}

TEST(Lists, ItemsHaveKeysAndSubItems)
{
    ListView list;
    list.setColumnHeader(4, "four");
    EXPECT_EQ(list.columnHeader(4), "four");
    auto* item = list.Add("T0", "zero");
    item->setSubItems(3, "three");
    list.Add("T1", "one");
    EXPECT_EQ(errorOf([&] { list.Add("T0", "again"); }), 35602);
    EXPECT_EQ(errorOf([&] { static_cast<void>(list.Item(2)); }), 9);
    EXPECT_EQ(list.Item(0)->SubItems(3), "three");
    list.show();
    list.setFocus();
    EXPECT_EQ(list.SelectedItem(), nullptr) << "the focus selects nothing";
    list.Select(item);
    EXPECT_EQ(list.SelectedItem()->Key(), "T0");
    list.Clear();
    EXPECT_EQ(list.SelectedItem(), nullptr);
    EXPECT_EQ(list.Add("T0", "new")->Text(), "new");
}

TEST(Combos, EverySelectionFiresTheClick)
{
    ComboBox combo;
    QSignalSpy clicks(&combo, &ComboBox::Click);
    combo.AddItem("a", 7);
    combo.AddItem("b");
    EXPECT_EQ(combo.ListIndex(), -1) << "filling selects nothing";
    EXPECT_EQ(clicks.count(), 0);
    combo.setListIndex(0);
    combo.setListIndex(0);
    combo.setListIndex(-1);
    EXPECT_EQ(clicks.count(), 3);
    EXPECT_EQ(combo.ItemData(0), 7);
    EXPECT_EQ(errorOf([&] { combo.setListIndex(2); }), 9);
    EXPECT_EQ(errorOf([&] { static_cast<void>(combo.List(-1)); }), 9);
    combo.show();
    combo.setFocus();
    QTest::keyClick(&combo, Qt::Key_Down);
    EXPECT_EQ(clicks.count(), 4);
    EXPECT_EQ(combo.Text(), "a");
}

TEST(TextBoxes, AHandlerSeesKeysFirstAndCanSwallowThem)
{
    TextBox box;
    box.show();
    int seen = 0;
    QObject::connect(&box, &TextBox::KeyPress, &box, [&](int& key) {
        seen = key;
        if (key == 'x')
            key = 0;
    });
    QTest::keyClicks(&box, "axb");
    EXPECT_EQ(box.Text(), "ab");
    QTest::keyClick(&box, Qt::Key_Enter);
    EXPECT_EQ(seen, keyEnter);
}

TEST(Editors, KeepTheTextAsGivenWithItsLineEnds)
{
    SqlEditor editor;
    const QString text = QString::fromUtf8("a\r\nb\nc\rd ñ € \xF0\x9F\x98\x80\r\n");
    editor.setText(text);
    EXPECT_EQ(editor.Text(), text);
    editor.selectAll();
    EXPECT_EQ(editor.SelText(), text);
}

TEST(Editors, TellFunctionKeysAndLeaveByF6)
{
    QWidget window;
    auto* layout = new QVBoxLayout(&window);
    auto* editor = new SqlEditor(&window);
    auto* next = new QPushButton("next", &window);
    layout->addWidget(editor);
    layout->addWidget(next);
    window.show();
    window.activateWindow();
    editor->setFocus();
    ASSERT_TRUE(QTest::qWaitFor([&] { return editor->hasFocus(); }));
    QSignalSpy keys(editor, &SqlEditor::KeyDown);
    QTest::keyClick(editor, Qt::Key_F5, Qt::ControlModifier);
    ASSERT_EQ(keys.count(), 1);
    EXPECT_EQ(keys[0][0].toInt(), 116);
    EXPECT_EQ(keys[0][1].toInt(), 2);
    QTest::keyClick(editor, Qt::Key_F6);
    EXPECT_TRUE(next->hasFocus());
}

TEST(Grids, AMessageStandsInPlaceOfRows)
{
    ResultGrid grid;
    grid.showMessage("3 rows affected.");
    EXPECT_EQ(grid.message(), "3 rows affected.");
    EXPECT_EQ(grid.model()->rowCount(), 0);
    grid.ReBind();
    EXPECT_EQ(grid.message(), QString());
    EXPECT_EQ(grid.selectionText(true), QString());
}

TEST(Pointers, OneDefaultUndoesAnyNumberOfHourglasses)
{
    setMousePointer(Pointer::Hourglass);
    setMousePointer(Pointer::Hourglass);
    EXPECT_EQ(mousePointer(), Pointer::Hourglass);
    setMousePointer(Pointer::Default);
    EXPECT_EQ(mousePointer(), Pointer::Default);
    EXPECT_EQ(QApplication::overrideCursor(), nullptr);
}

TEST(MessageBoxes, StyleDecidesButtonsAndDefault)
{
    const struct
    {
        int style;
        QStringList buttons;
        QString defaultButton;
        Answer onEscape;
    } cases[] = {{48, {"OK"}, "OK", Answer::Ok},
                 {292, {"&Yes", "&No"}, "&No", Answer::No},
                 {35, {"&Yes", "&No", "Cancel"}, "&Yes", Answer::Cancel}};
    setUiLanguage(1);
    for (const auto& each : cases) {
        QStringList buttons;
        QString defaultButton;
        bool plain = false;
        QTimer::singleShot(10, qApp, [&] {
            auto* box = qobject_cast<QMessageBox*>(QApplication::activeModalWidget());
            ASSERT_NE(box, nullptr);
            plain = box->textFormat() == Qt::PlainText && box->text() == "<b>x</b>";
            for (auto* button : box->buttons()) {
                buttons += button->text();
                if (qobject_cast<QPushButton*>(button)->isDefault())
                    defaultButton = button->text();
            }
            QTest::keyClick(box, Qt::Key_Escape);
        });
        const Answer answer = messageBox("<b>x</b>", each.style, "Quermo");
        EXPECT_EQ(answer, each.onEscape) << each.style;
        buttons.sort();
        QStringList expected = each.buttons;
        expected.sort();
        EXPECT_EQ(buttons, expected) << each.style;
        EXPECT_EQ(defaultButton, each.defaultButton) << each.style;
        EXPECT_TRUE(plain);
    }
}

} // namespace controls
