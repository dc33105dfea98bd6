#include "platform/controls/TreeView.h"

#include "platform/basic/RuntimeError.h"
#include "platform/controls/ImageList.h"

#include <QHeaderView>
#include <QKeyEvent>
#include <QMouseEvent>

#include <utility>

namespace controls {

TreeView::Node::Node(QString key, const QString& text, const QIcon& icon) : m_key(std::move(key))
{
    setText(0, text);
    setIcon(0, icon);
}

TreeView::TreeView(QWidget* parent) : ItemView(parent)
{
    setColumnCount(1);
    header()->hide();
}

void TreeView::Clear()
{
    m_nodes.clear();
    clear();
}

TreeView::Node* TreeView::Add(const QString& relative, const QString& key, const QString& text,
                              const QString& image)
{
    if (m_nodes.contains(key))
        basic::raise(basic::error::KeyNotUnique);
    Node* above = relative.isEmpty() ? nullptr : Find(relative);
    if (!above && !relative.isEmpty())
        basic::raise(basic::error::ElementNotFound);
    auto* node = new Node(key, text, m_images ? m_images->icon(image) : QIcon());
    if (above)
        above->addChild(node);
    else
        addTopLevelItem(node);
    m_nodes.insert(key, node);
    return node;
}

void TreeView::Select(Node* node)
{
    setCurrentItem(node);
}

TreeView::Node* TreeView::HitTest(const QPoint& point) const
{
    return static_cast<Node*>(itemAt(point));
}

void TreeView::mousePressEvent(QMouseEvent* event)
{
    m_pressed = event->button() == Qt::LeftButton;
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
    const auto* before = SelectedItem();
    ItemView::keyPressEvent(event);
    if (SelectedItem() && SelectedItem() != before)
        emit Click();
}

} // namespace controls
