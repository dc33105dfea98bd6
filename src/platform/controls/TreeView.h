// A tree whose nodes are found by key.
#pragma once

#include <QHash>
#include <QTreeWidget>

namespace controls {

class ImageList;

class TreeView : public QTreeWidget
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
    [[nodiscard]] Node* SelectedItem() const;
    void Select(Node* node);
    /// The node under a point of the viewport; null when there is none.
    [[nodiscard]] Node* HitTest(const QPoint& point) const;
    [[nodiscard]] QRect visualRect(const Node* node) const { return visualItemRect(node); }

signals:
    /// A node was clicked with the left button, or reached by the keyboard.
    void Click();
    /// A button (1 left, 2 right) went down at a point of the viewport, before anything is selected. The
    /// menu key and Shift+F10 count as the right button on the selected node.
    void MouseDown(int button, int shift, int x, int y);

protected:
    void mousePressEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;

private:
    QHash<QString, Node*> m_nodes;
    const ImageList* m_images = nullptr;
};

} // namespace controls
