#include "platform/controls/SqlEditor.h"

#include "platform/controls/Keys.h"
#include "platform/controls/Language.h"

#include <QFontDatabase>
#include <QKeyEvent>
#include <QLineEdit>
#include <Qsci/qscilexersql.h>

namespace controls {

namespace {

/// Scintilla's SQL lexer with the words of Transact-SQL, in lower case as the lexer compares them.
class TransactSqlLexer : public QsciLexerSQL
{
public:
    using QsciLexerSQL::QsciLexerSQL;

    const char* keywords(int set) const override
    {
        if (set == wordsSet)
            return words;
        return set == typesSet ? types : nullptr;
    }

private:
    static constexpr int wordsSet = 1; // shown in the style Keyword
    static constexpr int typesSet = 5; // in the style KeywordSet5

    // Lines that the formatter would break elsewhere.
    // clang-format off
    static constexpr const char* words =
        "add all alter and any as asc authorization backup begin between break browse bulk by "
        "cascade case catch check checkpoint close clustered coalesce collate column commit "
        "compute constraint contains containstable continue convert create cross current cursor "
        "database dbcc deallocate declare default delete deny desc disk distinct distributed "
        "drop dump else end errlvl escape except exec execute exists exit external fetch file "
        "fillfactor for foreign freetext from full function go goto grant group having holdlock "
        "identity identity_insert if in index inner insert intersect into is join key kill left "
        "like lineno load merge national nocheck nonclustered not null nullif of off offsets on "
        "open option or order outer output over percent pivot plan precision primary print proc "
        "procedure public raiserror read reconfigure references replication restore restrict "
        "return revert revoke right rollback rowcount rowguidcol rule save schema select set "
        "setuser shutdown some statistics table then throw to top tran transaction trigger "
        "truncate try union unique unpivot update use user values varying view waitfor when "
        "where while with";
    static constexpr const char* types =
        "bigint binary bit char date datetime datetime2 datetimeoffset decimal float image int "
        "money nchar ntext numeric nvarchar real smalldatetime smallint smallmoney sql_variant "
        "sysname text time timestamp tinyint uniqueidentifier varbinary varchar xml";
    // clang-format on
};

struct Palette
{
    QColor keyword, type, text, number, comment, operators;
};

Palette paletteFor(bool dark)
{
    if (dark)
        return {0x6fb3ff, 0x5fd0c0, 0xe8a27c, 0xb9d69a, 0x83a578, 0xd4d4d4};
    return {0x0033b3, 0x00627a, 0xa31515, 0x1750a6, 0x3f7f3f, 0x404040};
}

/// Whether the key's text is no input, since Alt or Ctrl is held. Some systems report AltGr as both of them;
/// it never gives a plain letter or digit.
bool isCommand(const QKeyEvent& event)
{
    const bool alt = event.modifiers().testFlag(Qt::AltModifier);
    const bool control = event.modifiers().testFlag(Qt::ControlModifier);
    if (!alt || !control || event.text().isEmpty())
        return alt || control;
    const QChar typed = event.text().front();
    return !typed.isPrint() || (typed.unicode() < 0x80 && typed.isLetterOrNumber());
}

} // namespace

SqlEditor::SqlEditor(QWidget* parent) : QsciScintilla(parent), m_find(new QLineEdit(this))
{
    auto* lexer = new TransactSqlLexer(this);
    lexer->setDefaultFont(QFontDatabase::systemFont(QFontDatabase::FixedFont));
    lexer->setFont(QFontDatabase::systemFont(QFontDatabase::FixedFont));
    setLexer(lexer);
    setUtf8(true);
    setEolMode(QsciScintilla::EolWindows);
    setBraceMatching(QsciScintilla::SloppyBraceMatch);
    setTabWidth(4);
    setScrollWidth(1);
    setScrollWidthTracking(true);
    setFrameShape(QFrame::StyledPanel);
    setMarginType(0, QsciScintilla::NumberMargin);
    setMarginWidth(1, 0);
    SendScintilla(SCI_SETMARGINLEFT, 0UL, 4L); // pixels between the numbers and the text
    // Scrolls back before the caret meets the edge, so that a line's first letters aren't left outside.
    constexpr long edge = 60; // pixels
    SendScintilla(SCI_SETXCARETPOLICY, static_cast<unsigned long>(CARET_SLOP | CARET_EVEN), edge);
    connect(this, &QsciScintilla::linesChanged, this, &SqlEditor::fitLineNumbers);
    connect(this, &QsciScintillaBase::SCN_UPDATEUI, this, [this](int updated) {
        if ((updated & SC_UPDATE_CONTENT) != 0)
            leaveUnusedWidth();
    });
    m_find->setObjectName(QStringLiteral("txtBuscar"));
    m_find->setClearButtonEnabled(true);
    m_find->installEventFilter(this);
    m_find->hide();
    applyColours();
    fitLineNumbers();
}

// Both go by length, since a text may hold the character 0.
QString SqlEditor::Text() const
{
    const long size = SendScintilla(SCI_GETLENGTH);
    return QString::fromUtf8(static_cast<const char*>(SendScintillaPtrResult(SCI_GETCHARACTERPOINTER)), size);
}

void SqlEditor::setText(const QString& text)
{
    const QByteArray bytes = text.toUtf8();
    const bool readOnly = isReadOnly();
    setReadOnly(false);
    clear();
    SendScintilla(SCI_ADDTEXT, static_cast<unsigned long>(bytes.size()), bytes.constData());
    SendScintilla(SCI_EMPTYUNDOBUFFER);
    SendScintilla(SCI_GOTOPOS, 0UL);
    SendScintilla(SCI_SETSCROLLWIDTH, 1UL);
    SendScintilla(SCI_SETXOFFSET, 0UL);
    setReadOnly(readOnly);
}

bool SqlEditor::findAgain(bool forward)
{
    const QString wanted = m_find->text();
    if (wanted.isEmpty()) {
        openFind();
        return false;
    }
    int line = 0;
    int index = 0;
    getCursorPosition(&line, &index);
    if (!forward && hasSelectedText()) {
        int endLine = 0;
        int endIndex = 0;
        getSelection(&line, &index, &endLine, &endIndex);
    }
    const bool found = findFirst(wanted, false, false, false, true, forward, line, index);
    showFound(found);
    return found;
}

void SqlEditor::keyPressEvent(QKeyEvent* event)
{
    if (event->key() == Qt::Key_F6) {
        // Scintilla keeps Tab for itself, and so its own version refuses to move the focus.
        const bool next = !event->modifiers().testFlag(Qt::ShiftModifier);
        QAbstractScrollArea::focusNextPrevChild(next); // NOLINT(bugprone-parent-virtual-call)
        return;
    }
    if (event->matches(QKeySequence::Find)) {
        openFind();
        return;
    }
    if (event->key() == Qt::Key_F3) {
        findAgain(!event->modifiers().testFlag(Qt::ShiftModifier));
        return;
    }
    if (const int code = keyCode(*event); code != 0)
        emit KeyDown(code, shiftState(event->modifiers()));
    if (!isCommand(*event)) {
        QsciScintilla::keyPressEvent(event);
        return;
    }
    QKeyEvent command(event->type(), event->key(), event->modifiers(), event->nativeScanCode(),
                      event->nativeVirtualKey(), event->nativeModifiers(), QString(), event->isAutoRepeat());
    QsciScintilla::keyPressEvent(&command);
    event->setAccepted(command.isAccepted());
}

void SqlEditor::changeEvent(QEvent* event)
{
    QsciScintilla::changeEvent(event);
    if (event->type() == QEvent::PaletteChange)
        applyColours();
}

void SqlEditor::resizeEvent(QResizeEvent* event)
{
    QsciScintilla::resizeEvent(event);
    placeFind();
}

bool SqlEditor::eventFilter(QObject* watched, QEvent* event)
{
    if (watched != m_find || event->type() != QEvent::KeyPress)
        return QsciScintilla::eventFilter(watched, event);
    const auto* key = static_cast<QKeyEvent*>(event);
    if (key->key() == Qt::Key_Escape) {
        m_find->hide();
        setFocus();
        return true;
    }
    if (key->key() != Qt::Key_Return && key->key() != Qt::Key_Enter && key->key() != Qt::Key_F3)
        return false;
    findAgain(!key->modifiers().testFlag(Qt::ShiftModifier));
    return true;
}

void SqlEditor::applyColours()
{
    const QColor paper = palette().color(QPalette::Base);
    const QColor ink = palette().color(QPalette::Text);
    const Palette colours = paletteFor(paper.lightness() < 128);
    auto* sql = lexer();
    sql->setDefaultPaper(paper);
    sql->setPaper(paper);
    sql->setDefaultColor(ink);
    sql->setColor(ink);
    sql->setColor(colours.keyword, QsciLexerSQL::Keyword);
    sql->setColor(colours.type, QsciLexerSQL::KeywordSet5);
    sql->setColor(colours.number, QsciLexerSQL::Number);
    sql->setColor(colours.operators, QsciLexerSQL::Operator);
    for (const int style : {QsciLexerSQL::DoubleQuotedString, QsciLexerSQL::SingleQuotedString})
        sql->setColor(colours.text, style);
    for (const int style : {QsciLexerSQL::Comment, QsciLexerSQL::CommentLine, QsciLexerSQL::CommentDoc})
        sql->setColor(colours.comment, style);
    setMatchedBraceBackgroundColor(palette().color(QPalette::Midlight));
    setMatchedBraceForegroundColor(ink);
    setUnmatchedBraceBackgroundColor(paper);
    setUnmatchedBraceForegroundColor(colours.text);
    setCaretForegroundColor(ink);
    setSelectionBackgroundColor(palette().color(QPalette::Highlight));
    setSelectionForegroundColor(palette().color(QPalette::HighlightedText));
    setMarginsBackgroundColor(palette().color(QPalette::Window));
    setMarginsForegroundColor(palette().color(QPalette::Disabled, QPalette::WindowText));
}

void SqlEditor::openFind()
{
    if (hasSelectedText() && !selectedText().contains(QLatin1Char('\n')))
        m_find->setText(selectedText());
    m_find->setPlaceholderText(uiText("Buscar", "Find"));
    m_find->setAccessibleName(m_find->placeholderText());
    showFound(true);
    m_find->show();
    placeFind();
    m_find->setFocus();
    m_find->selectAll();
}

void SqlEditor::placeFind()
{
    const int width = qMin(260, viewport()->width());
    m_find->resize(width, m_find->sizeHint().height());
    m_find->move(viewport()->geometry().right() - width, viewport()->y());
    m_find->raise();
}

void SqlEditor::showFound(bool found)
{
    QPalette colours = palette();
    colours.setColor(QPalette::Base, palette().color(QPalette::Window)); // apart from the text behind
    if (!found)
        colours.setColor(QPalette::Text, paletteFor(palette().color(QPalette::Base).lightness() < 128).text);
    m_find->setPalette(colours);
}

/// Scrolls back when no line in view reaches beyond the edge any more; the width kept for a long line that
/// has gone is given up.
void SqlEditor::leaveUnusedWidth()
{
    const long offset = SendScintilla(SCI_GETXOFFSET);
    if (offset == 0)
        return;
    const long first = SendScintilla(SCI_GETFIRSTVISIBLELINE);
    const long last = qMin(first + SendScintilla(SCI_LINESONSCREEN), static_cast<long>(lines()) - 1);
    for (long line = first; line <= last; ++line) {
        const long end = SendScintilla(SCI_GETLINEENDPOSITION, line);
        if (SendScintilla(SCI_POINTXFROMPOSITION, 0UL, end) + offset > viewport()->width())
            return;
    }
    SendScintilla(SCI_SETSCROLLWIDTH, 1UL);
    SendScintilla(SCI_SETXOFFSET, 0UL);
}

void SqlEditor::fitLineNumbers()
{
    setMarginWidth(0, QStringLiteral("0").repeated(QString::number(lines()).size() + 1));
}

} // namespace controls
