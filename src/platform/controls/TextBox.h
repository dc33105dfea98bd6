// A single-line text field that lets its form see each typed character first, and test the text at the end.
#pragma once

#include <QLineEdit>

namespace controls {

class TextBox : public QLineEdit
{
    Q_OBJECT

public:
    using QLineEdit::QLineEdit;

    [[nodiscard]] QString Text() const { return text(); }

signals:
    /// A typed character, or 13 for Enter. A handler that sets it to 0 keeps it from the field.
    void KeyPress(int& keyAscii);
    /// The focus has gone to another control of the window; `cancel` takes it back.
    void Validate(bool& cancel);

protected:
    void keyPressEvent(QKeyEvent* event) override;
    void focusOutEvent(QFocusEvent* event) override;
};

} // namespace controls
