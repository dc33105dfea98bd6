#include "platform/controls/MessageBox.h"

#include "platform/controls/Language.h"
#include "platform/controls/Pointer.h"

#include <QApplication>
#include <QGridLayout>
#include <QLabel>
#include <QMessageBox>
#include <QPlainTextEdit>
#include <QPushButton>

#include <algorithm>

namespace controls {

namespace {

constexpr int Buttons = 0x7; // the style's lowest bits
constexpr int YesNoCancel = 3;
constexpr int YesNo = 4;
constexpr int Icon = 0x70;
constexpr int Critical = 16;
constexpr int Question = 32;
constexpr int SecondDefault = 0x100;
// More than these would push the buttons off the screen.
constexpr qsizetype LongText = 1500;
constexpr qsizetype ManyLines = 20;
constexpr qsizetype LongWord = 120; // a label breaks lines between words only

MessageBoxAnswerer& script()
{
    static MessageBoxAnswerer answerer;
    return answerer;
}

unsigned shown = 0;
unsigned asked = 0;

QMessageBox::Icon iconOf(int style)
{
    if ((style & Icon) == Critical)
        return QMessageBox::Critical;
    return (style & Icon) == Question ? QMessageBox::Question : QMessageBox::Warning;
}

QMessageBox::StandardButtons buttonsOf(int style)
{
    if ((style & Buttons) == YesNoCancel)
        return QMessageBox::Yes | QMessageBox::No | QMessageBox::Cancel;
    return (style & Buttons) == YesNo ? QMessageBox::Yes | QMessageBox::No : QMessageBox::Ok;
}

void nameButtons(QMessageBox& box)
{
    const struct
    {
        QMessageBox::StandardButton button;
        QString name;
    } names[] = {{QMessageBox::Ok, uiText("Aceptar", "OK")},
                 {QMessageBox::Yes, uiText("&Sí", "&Yes")},
                 {QMessageBox::No, uiText("&No", "&No")},
                 {QMessageBox::Cancel, uiText("Cancelar", "Cancel")}};
    for (const auto& each : names)
        if (auto* button = box.button(each.button))
            button->setText(each.name);
}

bool isLong(const QString& text)
{
    const auto isLongWord = [](QStringView word) { return word.size() > LongWord; };
    const auto words = QStringView(text).split(QLatin1Char(' '));
    return text.size() > LongText ||
           text.count(QLatin1Char('\n')) + text.count(QLatin1Char('\r')) > ManyLines ||
           std::any_of(words.begin(), words.end(), isLongWord);
}

/// Shows the text in a field that scrolls, in the place of the box's label.
void showScrolling(QMessageBox& box, const QString& text)
{
    auto* grid = qobject_cast<QGridLayout*>(box.layout());
    auto* label = box.findChild<QLabel*>(QStringLiteral("qt_msgbox_label"));
    if (!grid || !label)
        return;
    int row = 0, column = 0, rows = 0, columns = 0;
    grid->getItemPosition(grid->indexOf(label), &row, &column, &rows, &columns);
    auto* field = new QPlainTextEdit(text, &box);
    field->setReadOnly(true);
    field->setTabChangesFocus(true);
    field->setWordWrapMode(QTextOption::WrapAtWordBoundaryOrAnywhere);
    field->setMinimumSize(field->fontMetrics().averageCharWidth() * 80, field->fontMetrics().height() * 16);
    label->hide();
    grid->addWidget(field, row, column, rows, columns);
}

} // namespace

Answer messageBox(const QString& text, int style, const QString& title)
{
    ++shown;
    if ((style & Buttons) != 0)
        ++asked;
    if (script())
        return script()(text, style, title);
    QMessageBox box(QApplication::activeWindow());
    box.setObjectName(QStringLiteral("messageBox"));
    box.setWindowTitle(title);
    box.setTextFormat(Qt::PlainText);
    box.setText(isLong(text) ? QString() : text);
    box.setIcon(iconOf(style));
    box.setStandardButtons(buttonsOf(style));
    nameButtons(box);
    if ((style & SecondDefault) != 0)
        box.setDefaultButton(QMessageBox::No);
    if (isLong(text))
        showScrolling(box, text);
    const ArrowWhileAsking arrow;
    switch (box.exec()) {
    case QMessageBox::Yes:
        return Answer::Yes;
    case QMessageBox::No:
        return Answer::No;
    case QMessageBox::Ok:
        return Answer::Ok;
    default:
        return (style & Buttons) == 0 ? Answer::Ok : Answer::Cancel;
    }
}

unsigned messageBoxesShown()
{
    return shown;
}

unsigned questionsAsked()
{
    return asked;
}

void setMessageBoxAnswerer(MessageBoxAnswerer answerer)
{
    script() = std::move(answerer);
}

} // namespace controls
