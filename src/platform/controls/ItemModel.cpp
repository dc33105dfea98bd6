#include "platform/controls/ItemModel.h"

#include "platform/basic/RuntimeError.h"

#include <QSize>

#include <algorithm>
#include <utility>

namespace controls {

void Item::setSubItems(int index, const QString& text)
{
    if (index < 1)
        basic::raise(basic::error::Subscript);
    if (m_subItems.size() < index)
        m_subItems.resize(std::max<qsizetype>(index, m_model->headers().size() - 1));
    // Owners, kinds and dates mostly repeat from row to row: one text serves them all.
    const Item* const before =
        m_row > 0 ? m_parent->m_children[static_cast<std::size_t>(m_row - 1)] : nullptr;
    const bool isRepeated =
        before && before->m_subItems.size() >= index && before->m_subItems[index - 1] == text;
    m_subItems[index - 1] = isRepeated ? before->m_subItems[index - 1] : text;
    m_model->changed(this, index);
}

void Item::setExpanded(bool open)
{
    m_model->open(this, open);
}

ItemModel::ItemModel(QObject* parent) : QAbstractItemModel(parent), m_headers(QString())
{
    connect(this, &ItemModel::added, this, &ItemModel::announce, Qt::QueuedConnection);
}

Item* ItemModel::add(Item* above, const QString& key, const QString& text, const QIcon& icon)
{
    Item* const item = &m_items.emplace_back();
    item->m_key = key;
    Item*& place = m_keys[item->m_key];
    if (place) {
        m_items.pop_back();
        basic::raise(basic::error::KeyNotUnique);
    }
    place = item;
    Item* const parent = above ? above : &m_root;
    item->m_model = this;
    item->m_parent = parent;
    item->m_row = static_cast<int>(parent->m_children.size());
    item->m_number = itemCount() - 1;
    item->m_text = text;
    item->m_icon = icon;
    if (isAnnounced(*parent) && !m_unheard.contains(parent))
        m_unheard.insert(parent, item->m_row);
    parent->m_children.push_back(item);
    if (!std::exchange(m_announcementDue, true))
        emit added();
    return item;
}

Item* ItemModel::find(const QString& key)
{
    if (Item* const found = m_keys.value(key))
        return found;
    fillAll();
    return m_keys.value(key);
}

void ItemModel::clear()
{
    beginResetModel();
    const auto count = m_keys.size();
    m_keys.clear();
    m_keys.reserve(count); // the view is mostly filled again with as many
    m_items.clear();
    m_root.m_children.clear();
    m_unheard.clear();
    m_toOpen.clear();
    m_announced = 0;
    endResetModel();
}

void ItemModel::announce()
{
    if (!std::exchange(m_announcementDue, false))
        return;
    m_announced = itemCount();
    while (!m_unheard.isEmpty()) {
        Item* const parent = m_unheard.constBegin().key();
        const auto last = static_cast<int>(parent->m_children.size()) - 1;
        beginInsertRows(indexOf(parent), m_unheard.value(parent), last);
        m_unheard.remove(parent);
        endInsertRows();
    }
    for (const Item* item : std::exchange(m_toOpen, {}))
        emit openAsked(indexOf(item), true);
    emit announced();
}

void ItemModel::fillAll()
{
    // The filler adds behind the items of this round.
    for (std::size_t number = 0; number < m_items.size(); ++number)
        fill(&m_items[number]);
}

void ItemModel::fill(Item* item)
{
    if (std::exchange(item->m_fillsLater, false))
        m_filler(item);
}

void ItemModel::open(Item* item, bool open)
{
    if (isAnnounced(*item))
        emit openAsked(indexOf(item), open);
    else if (open)
        m_toOpen.push_back(item);
    else
        std::erase(m_toOpen, item);
}

void ItemModel::changed(const Item* item, int column)
{
    if (isAnnounced(*item))
        emit dataChanged(indexOf(item, column), indexOf(item, column));
}

void ItemModel::setHeader(int column, const QString& text)
{
    if (column >= columnCount()) {
        beginInsertColumns({}, columnCount(), column);
        m_headers.resize(column + 1);
        endInsertColumns();
    }
    m_headers[column] = text;
    emit headerDataChanged(Qt::Horizontal, column, column);
}

QModelIndex ItemModel::indexOf(const Item* item, int column) const
{
    return item && item->m_parent ? createIndex(item->m_row, column, item) : QModelIndex();
}

Item* ItemModel::itemOf(const QModelIndex& index)
{
    return static_cast<Item*>(index.internalPointer());
}

const Item& ItemModel::at(const QModelIndex& index) const
{
    return index.isValid() ? *itemOf(index) : m_root;
}

QModelIndex ItemModel::index(int row, int column, const QModelIndex& parent) const
{
    if (row < 0 || column < 0 || row >= rowCount(parent) || column >= columnCount())
        return {};
    return indexOf(at(parent).m_children[static_cast<std::size_t>(row)], column);
}

QModelIndex ItemModel::parent(const QModelIndex& index) const
{
    return index.isValid() ? indexOf(itemOf(index)->m_parent) : QModelIndex();
}

int ItemModel::rowCount(const QModelIndex& parent) const
{
    if (parent.column() > 0)
        return 0;
    const Item& item = at(parent);
    if (!m_unheard.isEmpty())
        if (const auto found = m_unheard.constFind(const_cast<Item*>(&item)); found != m_unheard.constEnd())
            return *found;
    return static_cast<int>(item.m_children.size());
}

int ItemModel::columnCount(const QModelIndex&) const
{
    return static_cast<int>(m_headers.size());
}

bool ItemModel::hasChildren(const QModelIndex& parent) const
{
    return at(parent).m_fillsLater || rowCount(parent) > 0;
}

bool ItemModel::canFetchMore(const QModelIndex& parent) const
{
    return at(parent).m_fillsLater;
}

void ItemModel::fetchMore(const QModelIndex& parent)
{
    if (!canFetchMore(parent))
        return;
    fill(itemOf(parent));
    announce();
}

QVariant ItemModel::data(const QModelIndex& index, int role) const
{
    const Item& item = at(index);
    switch (role) {
    case Qt::DisplayRole:
        return index.column() == 0 ? item.m_text : item.SubItems(index.column());
    case Qt::DecorationRole:
        return index.column() == 0 && !item.m_icon.isNull() ? QVariant(item.m_icon) : QVariant();
    case Qt::SizeHintRole:
        return m_rowHeight > 0 ? QVariant(QSize(0, m_rowHeight)) : QVariant();
    default:
        return {};
    }
}

QVariant ItemModel::headerData(int section, Qt::Orientation orientation, int role) const
{
    if (orientation != Qt::Horizontal || role != Qt::DisplayRole)
        return {};
    return m_headers.value(section);
}

} // namespace controls
