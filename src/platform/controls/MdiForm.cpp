#include "platform/controls/MdiForm.h"

#include "platform/controls/ChildFocus.h"
#include "platform/controls/DialogFrame.h"
#include "platform/controls/LoadedWindows.h"

#include <QCloseEvent>
#include <QMdiArea>
#include <QMdiSubWindow>
#include <QScreen>
#include <QShortcut>
#include <QStyle>

#include <algorithm>

namespace controls {

namespace {

QPointer<MdiForm>& theInstance()
{
    static QPointer<MdiForm> instance;
    return instance;
}

} // namespace

MdiForm::MdiForm(QWidget* parent) : QMainWindow(parent), m_area(new QMdiArea(this))
{
    theInstance() = this;
    m_area->setObjectName(QStringLiteral("mdiArea"));
    m_area->setHorizontalScrollBarPolicy(Qt::ScrollBarAsNeeded);
    m_area->setVerticalScrollBarPolicy(Qt::ScrollBarAsNeeded);
    m_area->setActivationOrder(QMdiArea::ActivationHistoryOrder);
    setCentralWidget(m_area);
    connect(m_area, &QMdiArea::subWindowActivated, this, &MdiForm::childActivated);
    new ChildFocus(m_area);
    // Beside Ctrl+W and Ctrl+Tab, the keys that multi-document windows have elsewhere.
    const auto* close = new QShortcut(Qt::CTRL | Qt::Key_F4, this);
    connect(close, &QShortcut::activated, m_area, &QMdiArea::closeActiveSubWindow);
    const auto* next = new QShortcut(Qt::CTRL | Qt::Key_F6, this);
    connect(next, &QShortcut::activated, m_area, &QMdiArea::activateNextSubWindow);
}

MdiForm::~MdiForm()
{
    // The area and its frames still tell of themselves while they die.
    for (QMdiSubWindow* frame : m_area->subWindowList())
        frame->disconnect(this);
    m_area->disconnect(this);
    loadedWindows().removeAll(this);
}

MdiForm* MdiForm::instance()
{
    return theInstance();
}

void MdiForm::Load()
{
    if (m_loaded)
        return;
    m_loaded = true;
    loadedWindows() += this;
    MDIForm_Load();
}

void MdiForm::Show()
{
    Load();
    if (!testAttribute(Qt::WA_WState_Created))
        fitToScreen();
    show();
    activateWindow();
}

void MdiForm::fitToScreen()
{
    constexpr QSize usual(1200, 760);
    constexpr QSize least(480, 280); // the connect form, whole
    constexpr QSize frame(10, 40);   // a window manager's; its real one is known only later
    const QSize room = screen()->availableSize() - frame;
    setMinimumSize(least.boundedTo(room));
    resize(usual.boundedTo(room));
}

bool MdiForm::Unload()
{
    if (!m_loaded)
        return true;
    for (Form* form : LoadedForms())
        if (!form->Unload())
            return false;
    bool cancel = false;
    MDIForm_Unload(cancel);
    if (cancel)
        return false;
    m_loaded = false;
    loadedWindows().removeAll(this);
    hide();
    emit unloaded();
    deleteLater();
    return true;
}

void MdiForm::Cascade()
{
    int place = 0;
    for (QMdiSubWindow* frame : m_area->subWindowList(QMdiArea::StackingOrder)) {
        if (!frame->isVisible() || frame->isMinimized())
            continue;
        if (frame->isMaximized())
            frame->showNormal();
        frame->move(cascadePlace(place++));
    }
}

QPoint MdiForm::cascadePlace(int number) const
{
    const int step = style()->pixelMetric(QStyle::PM_TitleBarHeight) + 4;
    const int places = m_area->viewport()->height() / 2 / step + 1; // beyond, little of a child would be seen
    const int offset = number % places * step;
    return {offset, offset};
}

Form* MdiForm::ActiveForm() const
{
    return m_active ? qobject_cast<Form*>(m_active->widget()) : nullptr;
}

QMdiSubWindow* MdiForm::adopt(Form* form)
{
    const QSize wanted =
        form->testAttribute(Qt::WA_Resized) ? form->size().expandedTo(form->sizeHint()) : form->sizeHint();
    auto* frame = m_area->addSubWindow(form, form->minMaxButtons() ? Qt::WindowFlags() : dialogFrame);
    frame->setAttribute(Qt::WA_DeleteOnClose);
    frame->setWindowTitle(form->windowTitle());
    const QSize border = frame->sizeHint() - form->sizeHint();
    const QSize room = m_area->viewport()->size();
    frame->resize((wanted + border).boundedTo(room));
    const QPoint place = cascadePlace(static_cast<int>(m_area->subWindowList().size()) - 1);
    frame->move(std::clamp(room.width() - frame->width(), 0, place.x()),
                std::clamp(room.height() - frame->height(), 0, place.y()));
    connect(form, &QObject::destroyed, frame, &QObject::deleteLater); // a frame shows nothing else
    connect(frame, &QMdiSubWindow::windowStateChanged, this,
            [this, frame](auto before, auto now) { childStateChanged(frame, before, now); });
    return frame;
}

void MdiForm::bringForward(QMdiSubWindow* frame)
{
    m_area->setActiveSubWindow(frame);
    childActivated(frame); // the area is silent about a minimised child that is active for it already
    if (frame->isMinimized())
        frame->showNormal();
}

void MdiForm::release(QMdiSubWindow* frame)
{
    if (m_active == frame)
        m_active.clear();
    m_area->removeSubWindow(frame);
}

void MdiForm::MDIForm_Unload(bool& /*cancel*/) {}

bool MdiForm::event(QEvent* event)
{
    if (event->type() == QEvent::WindowActivate)
        MDIForm_Activate();
    return QMainWindow::event(event);
}

void MdiForm::closeEvent(QCloseEvent* event)
{
    event->setAccepted(Unload());
}

void MdiForm::childActivated(QMdiSubWindow* frame)
{
    // The area also tells when the whole window loses and regains the focus.
    if (!frame || frame == m_active)
        return;
    m_active = frame;
    if (auto* form = qobject_cast<Form*>(frame->widget()))
        form->activate();
}

// For the area a child stays the active one while it is minimised; for the forms the next takes over.
void MdiForm::childStateChanged(QMdiSubWindow* frame, Qt::WindowStates before, Qt::WindowStates now)
{
    const bool minimized = now.testFlag(Qt::WindowMinimized);
    if (before.testFlag(Qt::WindowMinimized) == minimized)
        return;
    if (!minimized) {
        if (m_area->activeSubWindow() == frame)
            childActivated(frame);
    } else if (m_active == frame) {
        m_active.clear();
        activateNext();
    }
}

void MdiForm::activateNext()
{
    const auto frames = m_area->subWindowList(QMdiArea::ActivationHistoryOrder);
    for (auto frame = frames.rbegin(); frame != frames.rend(); ++frame) {
        if (!(*frame)->isVisible() || (*frame)->isMinimized())
            continue;
        m_area->setActiveSubWindow(*frame);
        return;
    }
}

} // namespace controls
