#include "platform/controls/TreeView.h"

#include "platform/basic/RuntimeError.h"
#include "platform/controls/ImageList.h"
#include "platform/controls/Keys.h"

#include <QHeaderView>
#include <QKeyEvent>
#include <QMouseEvent>

namespace controls {

TreeView::Node::Node(QString key, const QString& text, const QIcon& icon) : m_key(std::move(key))
{
    setText(0, text);
    setIcon(0, icon);
}

TreeView::TreeView(QWidget* parent) : QTreeWidget(parent)
{
    setColumnCount(1);
    header()->hide();
    setUniformRowHeights(true);
    setSelectionMode(QAbstractItemView::SingleSelection);
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

TreeView::Node* TreeView::SelectedItem() const
{
    // The focus alone makes a node current; only a click, a key or code selects it.
    return static_cast<Node*>(selectedItems().value(0));
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
    const QPoint at = event->position().toPoint();
    if (event->button() == Qt::RightButton) {
        emit MouseDown(rightButton, shiftState(event->modifiers()), at.x(), at.y());
        event->accept();
        return;
    }
    if (event->button() == Qt::LeftButton)
        emit MouseDown(leftButton, shiftState(event->modifiers()), at.x(), at.y());
    QTreeWidget::mousePressEvent(event);
}

void TreeView::mouseReleaseEvent(QMouseEvent* event)
{
    QTreeWidget::mouseReleaseEvent(event);
    if (event->button() == Qt::LeftButton && HitTest(event->position().toPoint()))
        emit Click();
}

void TreeView::keyPressEvent(QKeyEvent* event)
{
    if (asksForMenu(*event) && SelectedItem()) {
        const QPoint at = visualRect(SelectedItem()).center();
        emit MouseDown(rightButton, 0, at.x(), at.y());
        return;
    }
    const auto* before = SelectedItem();
    QTreeWidget::keyPressEvent(event);
    if (SelectedItem() && SelectedItem() != before)
        emit Click();
}

} // namespace controls
