// Keeps the keyboard focus inside the active child of an MDI area.
#pragma once

#include <QHash>
#include <QMdiSubWindow>
#include <QPointer>
#include <QTimer>

class QMdiArea;

namespace controls {

/// A child that becomes the active one gets the focus back where it had it last, unless the user clicks
/// another of its controls. By itself the area leaves the focus on the first control, on the frame or nowhere
/// when maximised children change places. Menus, and a frame that is moved by keys, keep the focus.
class ChildFocus : public QObject
{
    Q_OBJECT

public:
    explicit ChildFocus(QMdiArea* area);

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void later();
    void settle();
    void remember(QWidget* control);
    [[nodiscard]] bool isAstray() const;
    void giveBack() const;

    QMdiArea* m_area;
    QPointer<QMdiSubWindow> m_active;
    QHash<const QObject*, QPointer<QWidget>> m_last; ///< by frame
    QTimer m_turn; ///< runs from a move of the focus to the end of the step that moved it
};

} // namespace controls
