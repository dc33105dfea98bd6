// A form: a window with a life of its own, child of the MDI window or modal.
#pragma once

#include <QList>
#include <QPointer>
#include <QString>
#include <QWidget>

class QMdiSubWindow;

namespace controls {

/// The handlers run in this order: Form_Load once, before the form shows; Form_Activate each time it
/// becomes the main window's active child, or shows as a window of its own; Form_QueryUnload and Form_Unload
/// when it goes, either of which may keep it by setting `cancel`. Coming back from another program is no
/// activation.
class Form : public QWidget
{
    Q_OBJECT
    Q_PROPERTY(bool minMaxButtons READ minMaxButtons WRITE setMinMaxButtons)

public:
    enum WindowState
    {
        Normal = 0,
        Minimized = 1,
        Maximized = 2
    };

    explicit Form(QWidget* parent = nullptr);
    ~Form() override;

    [[nodiscard]] QString Name() const { return objectName(); }
    [[nodiscard]] QString Caption() const { return windowTitle(); }
    void setCaption(const QString& caption);
    /// Whether the frame has buttons to minimise and to maximise; to be set before the form shows. Above all
    /// other windows it never has.
    [[nodiscard]] bool minMaxButtons() const { return m_minMaxButtons; }
    void setMinMaxButtons(bool wanted) { m_minMaxButtons = wanted; }

    /// Enters the list of loaded forms and runs Form_Load; nothing when loaded. From then on Enter presses
    /// the button that has the focus, and a button's shortcut takes the focus first, as a click does, so that
    /// what is being typed elsewhere is stored before the button acts.
    void Load();
    /// Loads, and shows as a child of the MDI window; a visible form only comes forward. A minimised one
    /// is restored after its Form_Activate.
    void Show();
    /// Loads, shows above all other windows, and returns when the form has gone.
    void ShowModal();
    /// Asks the handlers; without a cancel the form leaves the list and is deleted from the event loop.
    /// False when it was kept.
    bool Unload();
    /// Brings the form forward.
    void SetFocus();

    /// Place within the MDI window, in pixels. A minimised or maximised form stays where it is.
    [[nodiscard]] int Left() const;
    [[nodiscard]] int Top() const;
    void setLeft(int left);
    void setTop(int top);
    [[nodiscard]] WindowState windowStateValue() const;
    void setWindowStateValue(WindowState state);

    /// For the MDI window, which knows when a child becomes the active one.
    void activate() { Form_Activate(); }

    bool eventFilter(QObject* watched, QEvent* event) override;

signals:
    void unloaded();

protected:
    virtual void Form_Load() {}
    virtual void Form_Activate() {}
    virtual void Form_QueryUnload(bool& cancel);
    virtual void Form_Unload(bool& cancel);

    void closeEvent(QCloseEvent* event) override;

private:
    [[nodiscard]] QWidget* frame() const;
    void moveTo(int left, int top);
    void showAsWindow();

    QPointer<QMdiSubWindow> m_frame;
    bool m_loaded = false;
    bool m_minMaxButtons = true;
};

/// Loaded forms in the order of their loading, without the MDI window.
[[nodiscard]] QList<Form*> LoadedForms();

/// A form that closes hides its controls before it goes: they lose the focus then, and nobody has left them.
[[nodiscard]] bool isFormGone(const QWidget* control);

/// Names of all loaded windows, the MDI window's among them, in the order of their loading.
[[nodiscard]] QStringList LoadedFormNames();

} // namespace controls
