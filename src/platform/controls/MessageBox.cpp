#include "platform/controls/MessageBox.h"

#include <QApplication>
#include <QMessageBox>
#include <QPushButton>

namespace controls {

namespace {

constexpr int Buttons = 0x7; // the style's lowest bits
constexpr int YesNoCancel = 3;
constexpr int YesNo = 4;
constexpr int Icon = 0x70;
constexpr int Critical = 16;
constexpr int Question = 32;
constexpr int SecondDefault = 0x100;
constexpr qsizetype LongText = 1500; // more would push the buttons off the screen

MessageBoxAnswerer& script()
{
    static MessageBoxAnswerer answerer;
    return answerer;
}

int& language()
{
    static int current = 0;
    return current;
}

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
    const bool spanish = language() == 0;
    const struct
    {
        QMessageBox::StandardButton button;
        const char* spanish;
        const char* english;
    } names[] = {{QMessageBox::Ok, "Aceptar", "OK"},
                 {QMessageBox::Yes, "&Sí", "&Yes"},
                 {QMessageBox::No, "&No", "&No"},
                 {QMessageBox::Cancel, "Cancelar", "Cancel"}};
    for (const auto& name : names)
        if (auto* button = box.button(name.button))
            button->setText(QString::fromUtf8(spanish ? name.spanish : name.english));
}

} // namespace

Answer messageBox(const QString& text, int style, const QString& title)
{
    if (script())
        return script()(text, style, title);
    QMessageBox box(QApplication::activeWindow());
    box.setObjectName(QStringLiteral("messageBox"));
    box.setWindowTitle(title);
    box.setTextFormat(Qt::PlainText);
    box.setText(text.size() > LongText ? text.left(LongText) + QChar(0x2026) : text);
    if (text.size() > LongText)
        box.setDetailedText(text);
    box.setIcon(iconOf(style));
    box.setStandardButtons(buttonsOf(style));
    nameButtons(box);
    if ((style & SecondDefault) != 0)
        box.setDefaultButton(QMessageBox::No);
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

void setMessageBoxLanguage(int current)
{
    language() = current;
}

void setMessageBoxAnswerer(MessageBoxAnswerer answerer)
{
    script() = std::move(answerer);
}

} // namespace controls
