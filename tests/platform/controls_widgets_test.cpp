// Trees, lists, combos, text fields, editor and message box, driven as users and forms drive them.
#include "platform/basic/RuntimeError.h"
#include "platform/controls/ComboBox.h"
#include "platform/controls/ImageList.h"
#include "platform/controls/Keys.h"
#include "platform/controls/Language.h"
#include "platform/controls/ListView.h"
#include "platform/controls/MessageBox.h"
#include "platform/controls/Pointer.h"
#include "platform/controls/SqlEditor.h"
#include "platform/controls/TextBox.h"
#include "platform/controls/TreeView.h"

#include <gtest/gtest.h>

#include <QAbstractItemModelTester>
#include <QApplication>
#include <QHeaderView>
#include <QLineEdit>
#include <QMessageBox>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QScreen>
#include <QSignalSpy>
#include <QTest>
#include <QTimer>
#include <QVBoxLayout>
#include <QWheelEvent>

#include <Qsci/qscilexersql.h>

#include <utility>

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

TEST(Trees, ChildrenWaitUntilTheyAreLookedFor)
{
    TreeView tree;
    QStringList filled;
    tree.setFiller([&](const TreeView::Node* node) {
        filled += node->Key();
        tree.Add(node->Key(), "T" + node->Text(), "tables", "")->setExpanded(true);
        tree.Add("T" + node->Text(), "C" + node->Text(), "columns", "");
    });
    tree.Add("", "S", "server", "")->setExpanded(true);
    for (const char* name : {"1", "2", "3"})
        tree.Add("S", QString("B") + name, name, "")->fillLater();
    tree.resize(300, 200);
    tree.show();
    EXPECT_FALSE(tree.itemRect(tree.Find("B3")).isEmpty());
    EXPECT_EQ(filled, QStringList());

    tree.Find("B2")->setExpanded(true);
    EXPECT_EQ(filled, QStringList("B2"));
    EXPECT_GT(tree.itemRect(tree.Find("C2")).top(), tree.itemRect(tree.Find("T2")).top());
    EXPECT_GT(tree.itemRect(tree.Find("B3")).top(), tree.itemRect(tree.Find("C2")).top());

    tree.Select(tree.Find("C2"));
    tree.Add("S", "B4", "4", "")->fillLater();
    EXPECT_EQ(tree.SelectedItem(), tree.Find("C2"));
    EXPECT_FALSE(tree.itemRect(tree.Find("C2")).isEmpty()) << "the open nodes stay open";
    EXPECT_EQ(tree.Find("T4")->Parent(), tree.Find("B4"));
    EXPECT_EQ(filled, QStringList({"B2", "B1", "B3", "B4"}));
    EXPECT_EQ(tree.Count(), 13);
    const QAbstractItemModelTester tester(tree.model(),
                                          QAbstractItemModelTester::FailureReportingMode::Fatal);
    tree.EnsureVisible(tree.Add("B1", "T1b", "late", ""));
    tree.Clear();
    EXPECT_EQ(tree.SelectedItem(), nullptr);
    EXPECT_EQ(tree.Count(), 0);
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
    const QPoint at = tree.itemRect(child).center();

    QTest::mouseClick(tree.viewport(), Qt::LeftButton, {}, at);
    EXPECT_EQ(tree.SelectedItem(), child);
    EXPECT_EQ(clicks.count(), 1);
    ASSERT_EQ(presses.count(), 1);
    EXPECT_EQ(presses.takeFirst().first().toInt(), leftButton);

    QTest::mouseClick(tree.viewport(), Qt::RightButton, {}, tree.itemRect(tree.Find("S")).center());
    EXPECT_EQ(tree.SelectedItem(), child) << "the handler selects, not the control";
    EXPECT_EQ(clicks.count(), 1);
    EXPECT_EQ(presses.takeFirst().first().toInt(), rightButton);

    QTest::mouseClick(tree.viewport(), Qt::LeftButton, {}, QPoint(5, 190));
    EXPECT_EQ(clicks.count(), 1);
    presses.clear();

    QTest::mouseDClick(tree.viewport(), Qt::LeftButton, {}, at);
    EXPECT_EQ(clicks.count(), 1) << "the second release of a double click is no click of its own";
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

TEST(Lists, TheMenuKeyAsksForTheSelectedItemEvenOutOfSight)
{
    ListView list;
    for (int i = 0; i < 500; ++i)
        list.Add("T" + QString::number(i), "table");
    list.resize(300, 200);
    list.show();
    QSignalSpy presses(&list, &ListView::MouseDown);
    QTest::keyClick(&list, Qt::Key_Menu);
    EXPECT_EQ(presses.count(), 0) << "nothing is selected";
    list.Select(list.Item(400));
    list.scrollToTop();
    QTest::keyClick(&list, Qt::Key_Menu);
    ASSERT_EQ(presses.count(), 1);
    EXPECT_EQ(presses[0][0].toInt(), rightButton);
    const auto* hit = list.HitTest({presses[0][2].toInt(), presses[0][3].toInt()});
    ASSERT_NE(hit, nullptr);
    EXPECT_EQ(hit->Key(), "T400");
}

TEST(Lists, ItemsHaveKeysAndSubItems)
{
    ListView list;
    const QAbstractItemModelTester tester(list.model(),
                                          QAbstractItemModelTester::FailureReportingMode::Fatal);
    EXPECT_EQ(list.header()->count(), 4);
    list.EnsureVisible(list.Add("T9", "nine"));
    EXPECT_EQ(list.model()->rowCount(), 1);
    EXPECT_TRUE(list.model()->index(0, 3).isValid());
    EXPECT_FALSE(list.model()->index(0, 4).isValid());
    EXPECT_FALSE(list.model()->index(1, 0).isValid());
    list.Clear();
    list.setColumnHeader(4, "four");
    EXPECT_EQ(list.columnHeader(4), "four");
    list.setColumnHeader(6, "six");
    EXPECT_EQ(list.header()->count(), 6);
    EXPECT_EQ(list.columnHeader(5), "");
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
    item = list.Add("T0", "new");
    EXPECT_EQ(item->Text(), "new");
    QSignalSpy changes(list.model(), &QAbstractItemModel::dataChanged);
    item->setSubItems(1, "before it is shown");
    list.EnsureVisible(item);
    item->setSubItems(1, "owner");
    EXPECT_EQ(changes.count(), 1);
    EXPECT_EQ(list.indexAt(list.itemRect(item).center()).siblingAtColumn(1).data(), "owner");
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
    combo.clearFocus();
    QWheelEvent wheel({5, 5}, combo.mapToGlobal(QPointF(5, 5)), {}, {0, -120}, {}, {}, Qt::NoScrollPhase,
                      false);
    QCoreApplication::sendEvent(&combo, &wheel);
    EXPECT_EQ(combo.Text(), "a") << "the wheel only turns the combo that has the focus";
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

TEST(TextBoxes, ATabMadeByCodeMovesTheFocus)
{
    QWidget window;
    auto* layout = new QVBoxLayout(&window);
    auto* first = new TextBox(&window);
    auto* second = new TextBox(&window);
    layout->addWidget(first);
    layout->addWidget(second);
    QObject::connect(first, &TextBox::KeyPress, [](int& key) {
        if (std::exchange(key, 0) == keyEnter)
            synthesizeTab();
    });
    window.show();
    window.activateWindow();
    first->setFocus();
    ASSERT_TRUE(QTest::qWaitFor([&] { return first->hasFocus(); }));
    QTest::keyClick(first, Qt::Key_Return);
    EXPECT_TRUE(first->hasFocus()) << "the key is queued";
    EXPECT_TRUE(QTest::qWaitFor([&] { return second->hasFocus(); }));
}

TEST(Editors, KeepTheTextAsGivenWithItsLineEnds)
{
    SqlEditor editor;
    const QString text = QString::fromUtf8("a\r\nb\nc\rd ñ € \xF0\x9F\x98\x80\r\n");
    editor.setText(text);
    EXPECT_EQ(editor.Text(), text);
    editor.selectAll();
    EXPECT_EQ(editor.SelText(), text);
    const QString withNul = QStringLiteral("before") + QChar(0) + QStringLiteral("behind");
    editor.setText(withNul);
    EXPECT_EQ(editor.Text(), withNul);
    editor.setText(QString());
    EXPECT_EQ(editor.Text(), QString());
}

TEST(Editors, WordsAndTypesHaveStylesOfTheirOwn)
{
    SqlEditor editor;
    editor.setText("declare cantidad varchar 'x' -- y");
    editor.recolor();
    const auto styleAt = [&](long at) { return editor.SendScintilla(QsciScintilla::SCI_GETSTYLEAT, at); };
    QList<long> styles;
    for (const long at : {0L, 8L, 17L, 26L, 30L})
        styles += styleAt(at);
    EXPECT_EQ(styles, (QList<long>{QsciLexerSQL::Keyword, QsciLexerSQL::Identifier, QsciLexerSQL::KeywordSet5,
                                   QsciLexerSQL::SingleQuotedString, QsciLexerSQL::CommentLine}));
}

TEST(Editors, FindGoesRoundTheEndAndTellsWhenThereIsNothing)
{
    SqlEditor editor;
    editor.setText("Select a from T\r\nselect b");
    editor.show();
    QTest::keyClick(&editor, Qt::Key_F, Qt::ControlModifier);
    auto* find = editor.findChild<QLineEdit*>("txtBuscar");
    ASSERT_TRUE(find->isVisible());
    QTest::keyClicks(find, "SELECT");
    const auto lineFound = [&] {
        int line = -1;
        int index = 0;
        editor.getCursorPosition(&line, &index);
        return line;
    };
    for (const int line : {0, 1, 0}) {
        QTest::keyClick(find, Qt::Key_Return);
        EXPECT_EQ(lineFound(), line);
    }
    QTest::keyClick(find, Qt::Key_F3, Qt::ShiftModifier);
    EXPECT_EQ(lineFound(), 1);
    EXPECT_EQ(editor.SelText(), "select");
    find->setText("nowhere");
    EXPECT_FALSE(editor.findAgain());
    QTest::keyClick(find, Qt::Key_Escape);
    EXPECT_FALSE(find->isVisible());
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
        QMessageBox::Icon icon;
    } cases[] = {{48, {"OK"}, "OK", Answer::Ok, QMessageBox::Warning},
                 {16, {"OK"}, "OK", Answer::Ok, QMessageBox::Critical},
                 {292, {"&Yes", "&No"}, "&No", Answer::No, QMessageBox::Question},
                 {35, {"&Yes", "&No", "Cancel"}, "&Yes", Answer::Cancel, QMessageBox::Question}};
    setUiLanguage(1);
    for (const auto& each : cases) {
        QStringList buttons;
        QString defaultButton;
        bool plain = false;
        QTimer::singleShot(10, qApp, [&] {
            auto* box = qobject_cast<QMessageBox*>(QApplication::activeModalWidget());
            ASSERT_NE(box, nullptr);
            plain = box->textFormat() == Qt::PlainText && box->text() == "<b>x</b>";
            EXPECT_EQ(box->icon(), each.icon);
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

TEST(MessageBoxes, LongTextsStayOnTheScreenInFull)
{
    setMousePointer(Pointer::Hourglass);
    for (const QString& text : {QString("x").repeated(4000), QString("line\r").repeated(200),
                                QString("many words ").repeated(1000)}) {
        QString shown;
        QSize size;
        QTimer::singleShot(10, qApp, [&] {
            auto* box = QApplication::activeModalWidget();
            ASSERT_NE(box, nullptr);
            if (const auto* field = box->findChild<QPlainTextEdit*>())
                shown = field->toPlainText();
            size = box->size();
            EXPECT_EQ(QApplication::overrideCursor()->shape(), Qt::ArrowCursor);
            QTest::keyClick(box, Qt::Key_Escape);
        });
        messageBox(text, 48, "Quermo");
        EXPECT_EQ(shown, QString(text).replace('\r', '\n'));
        const QSize screen = QGuiApplication::primaryScreen()->availableSize();
        EXPECT_EQ(size, size.boundedTo(screen));
        EXPECT_EQ(QApplication::overrideCursor()->shape(), Qt::WaitCursor);
    }
    setMousePointer(Pointer::Default);
}

} // namespace controls
