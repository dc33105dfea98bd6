#include "platform/controls/Form.h"

#include "platform/controls/DialogFrame.h"
#include "platform/controls/FormHost.h"
#include "platform/controls/LoadedWindows.h"
#include "platform/controls/MessageBox.h"
#include "platform/controls/Pointer.h"

#include <QApplication>
#include <QCloseEvent>
#include <QEventLoop>
#include <QMdiSubWindow>
#include <QPushButton>
#include <QWindow>

namespace controls {

QList<QWidget*>& loadedWindows()
{
    static QList<QWidget*> windows;
    return windows;
}

QList<Form*> LoadedForms()
{
    QList<Form*> forms;
    for (QWidget* window : loadedWindows())
        if (auto* form = qobject_cast<Form*>(window))
            forms += form;
    return forms;
}

bool isFormGone(const QWidget* control)
{
    const QWidget* form = control;
    while (!form->isWindow() && !qobject_cast<const Form*>(form))
        form = form->parentWidget();
    return !form->isVisible();
}

QStringList LoadedFormNames()
{
    QStringList names;
    for (const QWidget* window : loadedWindows())
        names += window->objectName();
    return names;
}

Form::Form(QWidget* parent) : QWidget(parent) {}

Form::~Form()
{
    loadedWindows().removeAll(this);
}

void Form::setCaption(const QString& caption)
{
    setWindowTitle(caption);
    if (m_frame)
        m_frame->setWindowTitle(caption);
}

void Form::Load()
{
    if (m_loaded)
        return;
    m_loaded = true;
    loadedWindows() += this;
    Form_Load();
    for (auto* button : findChildren<QPushButton*>()) {
        button->setAutoDefault(true); // a button outside a dialog would leave Enter alone
        button->installEventFilter(this);
    }
}

bool Form::eventFilter(QObject* watched, QEvent* event)
{
    if (event->type() != QEvent::Shortcut)
        return QWidget::eventFilter(watched, event);
    const unsigned shown = messageBoxesShown();
    const QPointer<QWidget> button(qobject_cast<QWidget*>(watched));
    button->setFocus(Qt::ShortcutFocusReason);
    return !button || shown != messageBoxesShown(); // what was told comes first
}

void Form::Show()
{
    Load();
    if (!m_loaded)
        return; // its own handler gave up
    auto* host = FormHost::instance();
    if (host && !m_frame && !isVisible()) {
        m_frame = host->adopt(this);
        show();
        m_frame->show();
    }
    if (!m_frame && !isVisible())
        showAsWindow();
    SetFocus();
}

void Form::ShowModal()
{
    Load();
    if (!m_loaded)
        return;
    const ArrowWhileAsking arrow;
    QEventLoop loop;
    connect(this, &Form::unloaded, &loop, &QEventLoop::quit);
    connect(this, &QObject::destroyed, &loop, &QEventLoop::quit);
    setWindowModality(Qt::ApplicationModal);
    setMinMaxButtons(false);
    showAsWindow();
    activateWindow();
    loop.exec();
}

void Form::showAsWindow()
{
    if (!m_minMaxButtons)
        setWindowFlags(Qt::Dialog | dialogFrame);
    if (const auto* owner = QApplication::activeWindow()) {
        create();
        windowHandle()->setTransientParent(owner->windowHandle());
    }
    show();
    Form_Activate();
}

bool Form::Unload()
{
    if (!m_loaded)
        return true;
    bool cancel = false;
    Form_QueryUnload(cancel);
    if (!cancel)
        Form_Unload(cancel);
    if (cancel)
        return false;
    m_loaded = false;
    loadedWindows().removeAll(this);
    hide();
    emit unloaded();
    if (m_frame) {
        // The area activates another child when the frame goes; the form itself dies with it.
        m_frame->hide();
        m_frame->deleteLater();
        if (auto* host = FormHost::instance())
            host->release(m_frame);
    } else {
        deleteLater();
    }
    return true;
}

void Form::SetFocus()
{
    Load();
    if (m_frame && FormHost::instance())
        FormHost::instance()->bringForward(m_frame);
    else
        activateWindow();
}

void Form::Form_QueryUnload(bool& /*cancel*/) {}

void Form::Form_Unload(bool& /*cancel*/) {}

void Form::closeEvent(QCloseEvent* event)
{
    event->setAccepted(Unload());
}

QWidget* Form::frame() const
{
    return m_frame ? static_cast<QWidget*>(m_frame) : const_cast<Form*>(this);
}

int Form::Left() const
{
    return frame()->x();
}

int Form::Top() const
{
    return frame()->y();
}

void Form::setLeft(int left)
{
    moveTo(left, Top());
}

void Form::setTop(int top)
{
    moveTo(Left(), top);
}

void Form::moveTo(int left, int top)
{
    if (windowStateValue() == Normal)
        frame()->move(left, top);
}

Form::WindowState Form::windowStateValue() const
{
    if (frame()->isMinimized())
        return Minimized;
    return frame()->isMaximized() ? Maximized : Normal;
}

void Form::setWindowStateValue(WindowState state)
{
    if (state == Normal)
        frame()->showNormal();
    else if (state == Minimized)
        frame()->showMinimized();
    else
        frame()->showMaximized();
}

} // namespace controls
