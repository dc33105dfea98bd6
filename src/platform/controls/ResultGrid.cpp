#include "platform/controls/ResultGrid.h"

#include "platform/controls/Language.h"
#include "platform/controls/ResultModel.h"

#include <QApplication>
#include <QClipboard>
#include <QContextMenuEvent>
#include <QDialog>
#include <QFontDatabase>
#include <QHeaderView>
#include <QKeyEvent>
#include <QMenu>
#include <QPainter>
#include <QPlainTextEdit>
#include <QScrollBar>
#include <QVBoxLayout>

#include <algorithm>
#include <array>

namespace controls {

namespace {

constexpr int measuredRows = 200;
constexpr int measuredRowsOfWide = 20;
constexpr int wideResult = 50; // columns
constexpr int widestColumn = 320;
constexpr int narrowestColumn = 48;
constexpr int cellPadding = 16;

/// Widths of texts from those of their characters, which takes a fraction of laying a text out.
class TextWidths
{
public:
    explicit TextWidths(const QFontMetrics& metrics) : m_metrics(metrics)
    {
        for (std::size_t letter = 0; letter < m_widths.size(); ++letter)
            m_widths[letter] = metrics.horizontalAdvance(QChar(static_cast<char16_t>(letter)));
    }

    [[nodiscard]] int of(const QString& text) const
    {
        int width = 0;
        for (const QChar letter : text) {
            if (letter.unicode() >= m_widths.size())
                return m_metrics.horizontalAdvance(text);
            width += m_widths[letter.unicode()];
        }
        return width;
    }

private:
    QFontMetrics m_metrics;
    std::array<int, 256> m_widths{};
};

QString quoted(QString text)
{
    const auto divides = [](QChar c) {
        return c == QLatin1Char('\t') || c == QLatin1Char('\n') || c == QLatin1Char('\r');
    };
    if (std::none_of(text.begin(), text.end(), divides))
        return text;
    return QLatin1Char('"') + text.replace(QLatin1Char('"'), QLatin1String("\"\"")) + QLatin1Char('"');
}

} // namespace

ResultGrid::ResultGrid(QWidget* parent) : QTableView(parent)
{
    setEditTriggers(QAbstractItemView::NoEditTriggers);
    setSelectionMode(QAbstractItemView::ContiguousSelection);
    setHorizontalScrollMode(QAbstractItemView::ScrollPerPixel);
    setAlternatingRowColors(true);
    setWordWrap(false);
    setTabKeyNavigation(false);
    setCornerButtonEnabled(true);
    verticalHeader()->setSectionResizeMode(QHeaderView::Fixed);
    verticalHeader()->setDefaultSectionSize(fontMetrics().height() + 6);
    horizontalHeader()->setHighlightSections(false);
    horizontalHeader()->setDefaultAlignment(Qt::AlignLeft | Qt::AlignVCenter);
    connect(this, &QTableView::doubleClicked, this, &ResultGrid::showCell);
    showRows(m_records);
}

void ResultGrid::ReBind()
{
    m_message.clear();
    showRows(m_records);
    fitColumns();
    scrollToTop();
    horizontalScrollBar()->setValue(0);
}

void ResultGrid::showMessage(const QString& text)
{
    m_message = text;
    m_records = ado::Recordset();
    showRows(m_records);
    viewport()->update();
}

void ResultGrid::showRows(const ado::Recordset& records)
{
    auto* before = model();
    auto* selectionBefore = selectionModel();
    setModel(new ResultModel(records, this));
    delete selectionBefore;
    delete before;
}

void ResultGrid::fitColumns()
{
    const auto* rows = model();
    const int limit = rows->columnCount() > wideResult ? measuredRowsOfWide : measuredRows;
    const int sample = std::min(rows->rowCount(), limit);
    const TextWidths widths(fontMetrics());
    for (int column = 0; column < rows->columnCount(); ++column) {
        int width = horizontalHeader()->sectionSizeHint(column);
        for (int row = 0; row < sample && width < widestColumn; ++row)
            width = std::max(width, widths.of(rows->index(row, column).data().toString()) + cellPadding);
        setColumnWidth(column, std::clamp(width, narrowestColumn, widestColumn));
    }
}

QString ResultGrid::selectionText(bool headers) const
{
    const auto* rows = static_cast<const ResultModel*>(model());
    const QItemSelection selection = selectionModel()->selection();
    if (selection.isEmpty() || !selection.first().isValid())
        return {}; // selecting all of nothing gives a range without cells
    const QItemSelectionRange& range = selection.first();
    const bool alone = !headers && range.width() == 1 && range.height() == 1;
    const auto cellText = [&](int row, int column) {
        const QModelIndex cell = rows->index(row, column);
        const QString text = rows->isNull(cell) ? ResultModel::nullText() : rows->wholeText(cell);
        return alone ? text : quoted(text);
    };
    QString text;
    for (int column = range.left(); headers && column <= range.right(); ++column)
        text += quoted(rows->headerData(column, Qt::Horizontal, Qt::DisplayRole).toString()) +
                QLatin1Char(column < range.right() ? '\t' : '\n');
    for (int row = range.top(); row <= range.bottom(); ++row) {
        for (int column = range.left(); column < range.right(); ++column)
            text += cellText(row, column) + QLatin1Char('\t');
        text += cellText(row, range.right());
        if (row < range.bottom() || headers)
            text += QLatin1Char('\n');
    }
    return text;
}

void ResultGrid::keyPressEvent(QKeyEvent* event)
{
    const bool withHeaders =
        event->key() == Qt::Key_C && event->modifiers() == (Qt::ControlModifier | Qt::ShiftModifier);
    if (withHeaders || event->matches(QKeySequence::Copy)) {
        copy(withHeaders);
        return;
    }
    if ((event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter) && currentIndex().isValid()) {
        showCell(currentIndex());
        return;
    }
    QTableView::keyPressEvent(event);
}

void ResultGrid::contextMenuEvent(QContextMenuEvent* event)
{
    if (!currentIndex().isValid())
        return;
    QMenu menu;
    const QAction* plain = menu.addAction(copyCaption());
    const QAction* withHeaders = menu.addAction(uiText("Copiar con &títulos", "Copy with &headers"));
    const QAction* chosen = menu.exec(event->globalPos());
    if (chosen == plain || chosen == withHeaders)
        copy(chosen == withHeaders);
}

void ResultGrid::paintEvent(QPaintEvent* event)
{
    QTableView::paintEvent(event);
    if (m_message.isEmpty())
        return;
    QPainter painter(viewport());
    painter.setPen(palette().color(QPalette::Text));
    const int margin = fontMetrics().height();
    painter.drawText(viewport()->rect().adjusted(margin, margin, -margin, -margin),
                     Qt::AlignLeft | Qt::AlignTop | Qt::TextWordWrap, m_message);
}

void ResultGrid::copy(bool headers)
{
    QApplication::clipboard()->setText(selectionText(headers));
}

void ResultGrid::showCell(const QModelIndex& cell)
{
    QDialog viewer(this);
    viewer.setObjectName(QStringLiteral("dlgCelda"));
    viewer.setWindowTitle(model()->headerData(cell.column(), Qt::Horizontal).toString());
    const auto* rows = static_cast<const ResultModel*>(model());
    auto* text = new QPlainTextEdit(rows->wholeText(cell), &viewer);
    text->setPlaceholderText(rows->isNull(cell) ? ResultModel::nullText() : QString());
    text->setReadOnly(true);
    text->setFont(QFontDatabase::systemFont(QFontDatabase::FixedFont));
    auto* layout = new QVBoxLayout(&viewer);
    layout->addWidget(text);
    viewer.resize(560, 360);
    viewer.exec();
}

} // namespace controls
