// The one way to put a message or a question before the user.
#pragma once

#include <QString>

#include <functional>

namespace controls {

enum class Answer
{
    Ok = 1,
    Cancel = 2,
    Yes = 6,
    No = 7
};

/// Styles: 48 OK with exclamation, 16 OK with critical, 292 Yes and No with question and No the default,
/// 35 Yes, No and Cancel with question. The text is plain; a long one scrolls.
Answer messageBox(const QString& text, int style, const QString& title);

/// How many were shown so far, to a script too, and how many of them let the user choose.
unsigned messageBoxesShown();
unsigned questionsAsked();

using MessageBoxAnswerer = std::function<Answer(const QString& text, int style, const QString& title)>;

/// Puts a script in the user's place; an empty function gives the user the place back.
void setMessageBoxAnswerer(MessageBoxAnswerer answerer);

} // namespace controls
