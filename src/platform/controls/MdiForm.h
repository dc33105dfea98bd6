// The multi-document main window: menus, and the area that hosts the forms.
#pragma once

#include "platform/controls/Form.h"
#include "platform/controls/FormHost.h"

#include <QMainWindow>

class QMdiArea;

namespace controls {

/// One a process. MDIForm_Load runs before it shows, MDIForm_Activate each time its window becomes the
/// active one. Closing its frame unloads the children first; one that cancels keeps the window open.
class MdiForm : public QMainWindow, public FormHost
{
    Q_OBJECT

public:
    explicit MdiForm(QWidget* parent = nullptr);
    ~MdiForm() override;

    /// The process's MDI window; null before it is made.
    [[nodiscard]] static MdiForm* instance();

    [[nodiscard]] QString Name() const { return objectName(); }
    void Load();
    /// At its first showing the window takes a size that leaves it inside the screen's free area.
    void Show();
    /// False when a child or the window's own handler keeps it.
    bool Unload();

    /// Lays the children out from the top left corner, each a step below and right of the last and the
    /// active one on top. Maximised ones are restored, minimised ones left alone.
    void Cascade();
    [[nodiscard]] Form* ActiveForm() const;
    [[nodiscard]] QMdiArea* area() const { return m_area; }

    QMdiSubWindow* adopt(Form* form) override;
    void bringForward(QMdiSubWindow* frame) override;
    void release(QMdiSubWindow* frame) override;

signals:
    void unloaded();

protected:
    virtual void MDIForm_Load() {}
    virtual void MDIForm_Activate() {}
    virtual void MDIForm_Unload(bool& cancel);

    bool event(QEvent* event) override;
    void closeEvent(QCloseEvent* event) override;

private:
    void fitToScreen();
    void childActivated(QMdiSubWindow* frame);
    void childStateChanged(QMdiSubWindow* frame, Qt::WindowStates before, Qt::WindowStates now);
    void activateNext();
    [[nodiscard]] QPoint cascadePlace(int number) const;

    QMdiArea* m_area;
    QPointer<QMdiSubWindow> m_active;
    bool m_loaded = false;
};

} // namespace controls
