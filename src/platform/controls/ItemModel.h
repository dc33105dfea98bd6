// The items of trees and lists, as the rows of a Qt model.
#pragma once

#include <QAbstractItemModel>
#include <QHash>
#include <QIcon>
#include <QStringList>
#include <QVarLengthArray>

#include <deque>
#include <functional>
#include <vector>

namespace controls {

class ItemModel;

/// A node of a tree or a row of a list, found by its key. It belongs to its view, and lives until the
/// view is cleared.
class Item
{
public:
    [[nodiscard]] const QString& Key() const { return m_key; }
    [[nodiscard]] const QString& Text() const { return m_text; }
    /// Columns behind the first, counted from 1; "" where nothing was set.
    [[nodiscard]] QString SubItems(int index) const { return m_subItems.value(index - 1); }
    /// Error 9 below column 1.
    void setSubItems(int index, const QString& text);
    /// Null at the top.
    [[nodiscard]] Item* Parent() const { return m_parent->m_parent ? m_parent : nullptr; }
    /// Opens or closes a node.
    void setExpanded(bool open);
    /// The node's children are made by the view's filler when they are first looked for.
    void fillLater() { m_fillsLater = true; }

private:
    friend class ItemModel;

    static constexpr qsizetype usualSubItems = 3;

    ItemModel* m_model = nullptr;
    Item* m_parent = nullptr; ///< the model's root at the top; null for the root itself
    int m_row = 0;            ///< among the parent's children
    int m_number = -1;        ///< in the order of adding; -1 for the root
    bool m_fillsLater = false;
    QString m_key;
    QString m_text;
    QVarLengthArray<QString, usualSubItems> m_subItems;
    QIcon m_icon;
    std::vector<Item*> m_children;
};

/// Adding costs a fraction of a microsecond: the views hear of all new items together, when control
/// returns to the event loop or announce() is called, and children can wait until they are looked for.
class ItemModel : public QAbstractItemModel
{
    Q_OBJECT

public:
    explicit ItemModel(QObject* parent = nullptr);

    /// Adds an item below another (null: at the top), behind those that stand there. Error 35602 when the
    /// key stands in the model.
    Item* add(Item* above, const QString& key, const QString& text, const QIcon& icon = {});
    /// Null when no item has the key.
    [[nodiscard]] Item* find(const QString& key);
    /// The same without making those that wait for the filler.
    [[nodiscard]] Item* known(const QString& key) const { return m_keys.value(key); }
    void clear();
    void announce();

    /// Makes the children of an item that fills later.
    void setFiller(std::function<void(Item*)> filler) { m_filler = std::move(filler); }
    void fillAll();

    /// Items in all, those that wait for the filler not counted.
    [[nodiscard]] int itemCount() const { return static_cast<int>(m_items.size()); }
    [[nodiscard]] int topCount() const { return static_cast<int>(m_root.m_children.size()); }
    /// From 0.
    [[nodiscard]] Item* topItem(int row) const { return m_root.m_children[static_cast<std::size_t>(row)]; }

    /// Columns count from 0; a new one adds those before it too.
    void setHeader(int column, const QString& text);
    [[nodiscard]] const QStringList& headers() const { return m_headers; }
    /// Height of every row, in pixels.
    void setRowHeight(int pixels) { m_rowHeight = pixels; }

    [[nodiscard]] QModelIndex indexOf(const Item* item, int column = 0) const;
    /// Null for no item.
    [[nodiscard]] static Item* itemOf(const QModelIndex& index);

    [[nodiscard]] QModelIndex index(int row, int column, const QModelIndex& parent = {}) const override;
    [[nodiscard]] QModelIndex parent(const QModelIndex& index) const override;
    using QObject::parent;
    [[nodiscard]] int rowCount(const QModelIndex& parent = {}) const override;
    [[nodiscard]] int columnCount(const QModelIndex& parent = {}) const override;
    [[nodiscard]] bool hasChildren(const QModelIndex& parent = {}) const override;
    [[nodiscard]] bool canFetchMore(const QModelIndex& parent) const override;
    void fetchMore(const QModelIndex& parent) override;
    [[nodiscard]] QVariant data(const QModelIndex& index, int role = Qt::DisplayRole) const override;
    [[nodiscard]] QVariant headerData(int section, Qt::Orientation orientation, int role) const override;

signals:
    /// The first item since the last announcement was added.
    void added();
    /// The views know of all items.
    void announced();
    void openAsked(const QModelIndex& index, bool open);

private:
    friend class Item;

    [[nodiscard]] bool isAnnounced(const Item& item) const { return item.m_number < m_announced; }
    [[nodiscard]] const Item& at(const QModelIndex& index) const;
    void fill(Item* item);
    void open(Item* item, bool open);
    void changed(const Item* item, int column);

    Item m_root;
    std::deque<Item> m_items;
    QHash<QStringView, Item*> m_keys; ///< views of the items' own keys
    int m_announced = 0;              ///< items that the views know
    QHash<Item*, int> m_unheard;      ///< items with new children, and the first of these
    std::vector<Item*> m_toOpen;      ///< new items to be opened
    bool m_announcementDue = false;   ///< on the way through the event loop
    std::function<void(Item*)> m_filler;
    QStringList m_headers; ///< one for each column, of which there is at least one
    int m_rowHeight = 0;
};

} // namespace controls
