// A tree whose nodes are found by key.
#pragma once

#include "platform/controls/ItemView.h"

#include <QHash>

namespace controls {

class ImageList;

class TreeView : public ItemView
{
    Q_OBJECT

public:
    class Node : public QTreeWidgetItem
    {
    public:
        Node(QString key, const QString& text, const QIcon& icon);
        [[nodiscard]] const QString& Key() const { return m_key; }
        [[nodiscard]] QString Text() const { return text(0); }
        /// Null for the root.
        [[nodiscard]] Node* Parent() const { return static_cast<Node*>(parent()); }

    private:
        QString m_key;
    };

    explicit TreeView(QWidget* parent = nullptr);

    void setImageList(const ImageList* images) { m_images = images; }

    void Clear();
    /// Adds a node below the one with the key `relative` ("" for a root). Error 35602 when the key
    /// stands in the tree, 35601 when the relative or the picture does not exist.
    Node* Add(const QString& relative, const QString& key, const QString& text, const QString& image);
    [[nodiscard]] Node* Find(const QString& key) const { return m_nodes.value(key); }
    [[nodiscard]] int Count() const { return static_cast<int>(m_nodes.size()); }
    /// Null when nothing is selected.
    [[nodiscard]] Node* SelectedItem() const { return static_cast<Node*>(selected()); }
    void Select(Node* node);
    /// The node under a point of the viewport; null when there is none.
    [[nodiscard]] Node* HitTest(const QPoint& point) const;
    [[nodiscard]] QRect visualRect(const Node* node) const { return visualItemRect(node); }

signals:
    /// A node was clicked with the left button (once for a double click), or reached by the keyboard.
    void Click();

protected:
    void mousePressEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;

private:
    QHash<QString, Node*> m_nodes;
    const ImageList* m_images = nullptr;
    bool m_pressed = false;
};

} // namespace controls
