#include "platform/controls/DataGridDelegate.h"

#include "platform/controls/DataGridModel.h"

#include <QApplication>
#include <QPainter>

#include <algorithm>

namespace controls {

namespace {

constexpr int textMargin = 4;
constexpr int rowPadding = 6;
constexpr int pictureMargin = 2;
constexpr int percent = 100;
constexpr int boxStrength = 45;  // percent
constexpr int gridStrength = 18; // percent

QStyle* styleOf(const QStyleOptionViewItem& option)
{
    return option.widget ? option.widget->style() : QApplication::style();
}

QPalette::ColorGroup groupOf(const QStyleOptionViewItem& option)
{
    return option.state.testFlag(QStyle::State_Enabled) ? QPalette::Active : QPalette::Disabled;
}

/// Between the text's colour and the ground's: seen on any palette, where the style's own lines may not be.
QColor lineColour(const QPalette& palette, QPalette::ColorGroup group, int strength)
{
    const QColor text = palette.color(group, QPalette::Text);
    const QColor base = palette.color(group, QPalette::Base);
    const auto blend = [strength](int over, int under) {
        return (over * strength + under * (percent - strength)) / percent;
    };
    return {blend(text.red(), base.red()), blend(text.green(), base.green()),
            blend(text.blue(), base.blue())};
}

void paintTick(QPainter* painter, const QStyleOptionViewItem& option, const QRect& place, bool ticked)
{
    QStyleOptionButton box;
    box.rect = place;
    box.palette = option.palette;
    box.state = (option.state & QStyle::State_Enabled) | (ticked ? QStyle::State_On : QStyle::State_Off);
    styleOf(option)->drawPrimitive(QStyle::PE_IndicatorCheckBox, &box, painter, option.widget);
    painter->setPen(lineColour(option.palette, groupOf(option), boxStrength));
    painter->drawRect(place.adjusted(0, 0, -1, -1));
}

} // namespace

void DataGridDelegate::setCurrent(int row, int column)
{
    m_row = row;
    m_column = column;
}

QRect DataGridDelegate::glyphRect(const QRect& cell) const
{
    const int side = std::min(QApplication::style()->pixelMetric(QStyle::PM_IndicatorWidth) + pictureMargin,
                              cell.height() - 2 * pictureMargin);
    QRect place(0, 0, side, side);
    place.moveCenter(cell.center());
    return place;
}

bool DataGridDelegate::hasButton(int column) const
{
    const GridColumnData& shape = m_model->column(column);
    return shape.button || shape.items.presentation() == ValueItems::Presentation::DropDown;
}

QRect DataGridDelegate::buttonRect(const QRect& cell, int column) const
{
    if (!hasButton(column))
        return {};
    QRect place = cell.adjusted(0, 0, -1, -1);
    place.setLeft(std::max(cell.left(), cell.right() - cell.height()));
    return place;
}

void DataGridDelegate::paint(QPainter* painter, const QStyleOptionViewItem& option,
                             const QModelIndex& index) const
{
    const GridColumnData& shape = m_model->column(index.column());
    const bool currentRow = index.row() == m_row;
    const bool current = currentRow && index.column() == m_column;
    const bool focused =
        current && option.state.testFlag(QStyle::State_Active) && option.widget && option.widget->hasFocus();
    const QPalette::ColorGroup group = groupOf(option);
    const auto colour = [&](QPalette::ColorRole role) { return option.palette.color(group, role); };
    const QString value = m_model->value(index.row(), index.column());
    const int item = shape.items.indexOfValue(value);

    painter->save();
    if (focused)
        painter->fillRect(option.rect, colour(QPalette::Highlight));
    else if (currentRow && shape.locked)
        painter->fillRect(option.rect, colour(QPalette::Window));
    QRect content = option.rect;
    if (current) {
        const QRect button = buttonRect(option.rect, index.column());
        if (!button.isEmpty()) {
            paintButton(painter, option, button, index.column());
            content.setRight(button.left() - 1);
        }
    }
    if (shape.items.presentation() == ValueItems::Presentation::CheckBox) {
        paintTick(painter, option, glyphRect(option.rect), isTicked(value));
    } else if (shape.items.presentation() == ValueItems::Presentation::Picture && item >= 0) {
        shape.items.Item(item).picture.paint(painter, glyphRect(option.rect));
    } else {
        const QString text = m_model->text(index.row(), index.column());
        content.adjust(textMargin, 0, -textMargin, 0);
        painter->setPen(focused ? colour(QPalette::HighlightedText)
                        : currentRow && shape.locked
                            ? option.palette.color(QPalette::Disabled, QPalette::Text)
                            : colour(QPalette::Text));
        painter->drawText(content, static_cast<int>(shape.alignment | Qt::AlignVCenter) | Qt::TextSingleLine,
                          option.fontMetrics.elidedText(text, Qt::ElideRight, content.width()));
    }
    painter->setPen(lineColour(option.palette, group, gridStrength));
    painter->drawLine(option.rect.topRight(), option.rect.bottomRight());
    painter->drawLine(option.rect.bottomLeft(), option.rect.bottomRight());
    if (current && !focused) {
        painter->setPen(colour(QPalette::Highlight));
        painter->drawRect(option.rect.adjusted(0, 0, -1, -1));
    }
    painter->restore();
}

void DataGridDelegate::paintButton(QPainter* painter, const QStyleOptionViewItem& option, const QRect& place,
                                   int column) const
{
    QStyleOptionButton button;
    button.rect = place;
    button.palette = option.palette;
    button.state = (option.state & QStyle::State_Enabled) | QStyle::State_Raised;
    const bool list = m_model->column(column).items.presentation() == ValueItems::Presentation::DropDown;
    styleOf(option)->drawControl(QStyle::CE_PushButtonBevel, &button, painter, option.widget);
    if (!list) {
        painter->setPen(option.palette.color(groupOf(option), QPalette::ButtonText));
        painter->drawText(place, Qt::AlignCenter, QStringLiteral("…"));
        return;
    }
    const int inset = place.width() / 4;
    button.rect = place.adjusted(inset, inset, -inset, -inset);
    styleOf(option)->drawPrimitive(QStyle::PE_IndicatorArrowDown, &button, painter, option.widget);
}

RowMarks::RowMarks(QWidget* parent) : QHeaderView(Qt::Vertical, parent)
{
    setSectionResizeMode(QHeaderView::Fixed);
    setSectionsClickable(false);
    fitRows();
}

void RowMarks::fitRows()
{
    setDefaultSectionSize(fontMetrics().height() + rowPadding);
}

void RowMarks::setCurrent(int row, bool edited)
{
    m_row = row;
    m_edited = edited;
    viewport()->update();
}

QSize RowMarks::sizeHint() const
{
    return {fontMetrics().height() + rowPadding, QHeaderView::sizeHint().height()};
}

void RowMarks::paintSection(QPainter* painter, const QRect& rect, int row) const
{
    painter->fillRect(rect, palette().color(QPalette::Button));
    painter->setPen(palette().color(QPalette::Mid));
    painter->drawLine(rect.bottomLeft(), rect.bottomRight());
    painter->drawLine(rect.topRight(), rect.bottomRight());
    if (row != m_row)
        return;
    const int size = rect.height() / 5;
    const QPoint centre = rect.center();
    painter->save();
    painter->setRenderHint(QPainter::Antialiasing);
    painter->setPen(Qt::NoPen);
    painter->setBrush(palette().color(QPalette::ButtonText));
    if (m_edited) {
        painter->translate(centre);
        painter->rotate(45);
        const int half = std::max(1, size / 2);
        painter->drawRect(-half, -2 * size, 2 * half, 3 * size);
        painter->drawPolygon(QPolygon{{-half, size + 1}, {half, size + 1}, {0, 2 * size}});
    } else {
        painter->drawPolygon(QPolygon{centre + QPoint(-size / 2, -size), centre + QPoint(-size / 2, size),
                                      centre + QPoint(size / 2 + 1, 0)});
    }
    painter->restore();
}

} // namespace controls
