// A tree whose nodes are found by key.
#pragma once

#include "platform/controls/ItemView.h"

namespace controls {

class ImageList;

class TreeView : public ItemView
{
    Q_OBJECT

public:
    using Node = Item;

    explicit TreeView(QWidget* parent = nullptr);

    void setImageList(const ImageList* images) { m_images = images; }

    /// Adds a node below the one with the key `relative` ("" for a root). Error 35602 when the key
    /// stands in the tree, 35601 when the relative or the picture does not exist.
    Node* Add(const QString& relative, const QString& key, const QString& text, const QString& image);
    /// Null when no node has the key. Nodes that are filled later are filled by it when need be.
    [[nodiscard]] Node* Find(const QString& key) { return items().find(key); }
    /// All nodes, also those that wait to be filled.
    [[nodiscard]] int Count();
    /// Makes the children of the nodes that say fillLater(), when they are opened or looked for.
    void setFiller(std::function<void(Node*)> filler) { items().setFiller(std::move(filler)); }

signals:
    /// A node was clicked with the left button (once for a double click), or reached by the keyboard.
    void Click();

protected:
    void mousePressEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;

private:
    const ImageList* m_images = nullptr;
    bool m_pressed = false;
};

} // namespace controls
