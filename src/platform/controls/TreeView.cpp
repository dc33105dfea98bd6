#include "platform/controls/TreeView.h"

#include "platform/basic/RuntimeError.h"
#include "platform/controls/ImageList.h"

#include <QHeaderView>
#include <QKeyEvent>
#include <QMouseEvent>

#include <utility>

namespace controls {

TreeView::TreeView(QWidget* parent) : ItemView(parent)
{
    header()->hide();
    connect(&items(), &ItemModel::openAsked, this, &QTreeView::setExpanded);
}

TreeView::Node* TreeView::Add(const QString& relative, const QString& key, const QString& text,
                              const QString& image)
{
    Node* const above = relative.isEmpty() ? nullptr : Find(relative);
    if (!above && !relative.isEmpty())
        basic::raise(basic::error::ElementNotFound);
    return items().add(above, key, text, m_images ? m_images->icon(image) : QIcon());
}

int TreeView::Count()
{
    items().fillAll();
    return items().itemCount();
}

void TreeView::mousePressEvent(QMouseEvent* event)
{
    m_pressed = event->button() == Qt::LeftButton && HitTest(event->position().toPoint());
    ItemView::mousePressEvent(event);
}

void TreeView::mouseReleaseEvent(QMouseEvent* event)
{
    ItemView::mouseReleaseEvent(event);
    // The second release of a double click has no press of its own.
    if (std::exchange(m_pressed, false) && HitTest(event->position().toPoint()))
        emit Click();
}

void TreeView::keyPressEvent(QKeyEvent* event)
{
    const Node* const before = SelectedItem();
    ItemView::keyPressEvent(event);
    if (SelectedItem() && SelectedItem() != before)
        emit Click();
}

} // namespace controls
