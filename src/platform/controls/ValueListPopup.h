// The list that opens below a cell of the data grid.
#pragma once

#include <QListWidget>

namespace controls {

/// Keys that don't move in the list or close it go to the cell's editor, which the list then follows.
class ValueListPopup : public QListWidget
{
    Q_OBJECT

public:
    explicit ValueListPopup(QWidget* parent);

    /// Opens below `cell` (in global pixels), or above where the screen ends.
    void open(const QStringList& texts, int current, const QRect& cell);

signals:
    void chosen(const QString& text);
    /// For the editor.
    void keyTyped(QKeyEvent* event);

protected:
    bool event(QEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;

private:
    void choose(const QListWidgetItem* item);
};

} // namespace controls
