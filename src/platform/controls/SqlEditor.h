// An editor of Transact-SQL: highlighting, line numbers, matching braces, a find bar on Ctrl+F.
#pragma once

#include <Qsci/qsciscintilla.h>

class QLineEdit;

namespace controls {

/// The text is kept as it was given, line ends of any kind included; Enter types a carriage return and a
/// line feed. Tab types a tab; F6 and Shift+F6 move the focus on and back. Ctrl+F opens the find bar, F3 and
/// Shift+F3 look on and back. A letter typed with Alt or Ctrl is a command and not text; AltGr types.
class SqlEditor : public QsciScintilla
{
    Q_OBJECT

public:
    explicit SqlEditor(QWidget* parent = nullptr);

    [[nodiscard]] QString Text() const;
    /// The cursor goes to the beginning, and a new history begins: undo doesn't bring the old text back.
    void setText(const QString& text) override;
    [[nodiscard]] QString SelText() const { return selectedText(); }

    /// Looks for the find bar's text from the cursor on and around the end; false when it is nowhere.
    bool findAgain(bool forward = true);

signals:
    /// A key went down, with its classic code (F5 is 116) and shift state; keys without one are not told.
    void KeyDown(int keyCode, int shift);

protected:
    void keyPressEvent(QKeyEvent* event) override;
    void changeEvent(QEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void applyColours();
    void openFind();
    void placeFind();
    void showFound(bool found);
    void leaveUnusedWidth();
    void fitLineNumbers();

    QLineEdit* m_find;
};

} // namespace controls
