#include "platform/ado/Fetch.h"

#include "platform/ado/Diagnostics.h"
#include "platform/ado/ErrorNumbers.h"
#include "platform/ado/FieldReader.h"
#include "platform/basic/Language.h"
#include <algorithm>

using namespace Qt::StringLiterals;

namespace ado {

namespace {

constexpr std::size_t bufferBudget = std::size_t{2} << 20U; ///< bytes for all bound columns together
constexpr std::size_t mostRows = 512;                       ///< rows that one call fetches

/// A column's reader and the buffers of as many rows as one call fetches.
struct Field
{
    FieldReader reader;
    bool isBound = false;
    QByteArray
        buffer; ///< not filled with zeros: two megabytes for a handful of rows would cost more than they
    std::vector<SQLLEN> indicators;
};

class Fetcher
{
public:
    Fetcher(SQLHSTMT statement, int columns, const FetchContext& context);
    ~Fetcher();
    Fetcher(const Fetcher&) = delete;
    Fetcher& operator=(const Fetcher&) = delete;

    Table read();

private:
    void bind();
    /// Fetches the next rows; false at the end.
    bool fetch();
    void addBound(const Field& field, ColumnBuilder& builder);
    void addUnbound(SQLUSMALLINT number, Field& field, ColumnBuilder& builder);
    void addValue(const Field& field, ColumnBuilder& builder, const char* data, SQLLEN length);
    void takeMessages();
    [[noreturn]] void fail();

    SQLHSTMT m_statement;
    const FetchContext& m_context;
    std::vector<Field> m_fields;
    std::vector<SQLUSMALLINT> m_rowStates;
    std::size_t m_rowsPerFetch = 1;
    SQLULEN m_fetched = 0;
};

Fetcher::Fetcher(SQLHSTMT statement, int columns, const FetchContext& context)
    : m_statement(statement), m_context(context)
{
    for (int number = 1; number <= columns; ++number)
        m_fields.push_back(
            {describeField(statement, static_cast<SQLUSMALLINT>(number), context.family), false, {}, {}});
    bind();
}

Fetcher::~Fetcher()
{
    // The buffers go; the statement must not write to them any more.
    SQLFreeStmt(m_statement, SQL_UNBIND);
    SQLSetStmtAttr(m_statement, SQL_ATTR_ROWS_FETCHED_PTR, nullptr, 0);
    SQLSetStmtAttr(m_statement, SQL_ATTR_ROW_STATUS_PTR, nullptr, 0);
    SQLSetStmtAttr(m_statement, SQL_ATTR_ROW_ARRAY_SIZE, odbc::asPointer(1), 0);
}

/// Binds the columns before the first long one, that and all behind it are read one by one, since not
/// every driver gives columns out of their order; rows come one at a time then.
void Fetcher::bind()
{
    const auto firstLong =
        std::ranges::find_if(m_fields, [](const Field& field) { return field.reader.isLong; });
    std::size_t rowBytes = 1;
    for (const Field& field : m_fields)
        rowBytes += field.reader.width + sizeof(SQLLEN);
    if (firstLong == m_fields.end())
        m_rowsPerFetch = std::clamp<std::size_t>(bufferBudget / rowBytes, 1, mostRows);

    m_rowStates.resize(m_rowsPerFetch);
    SQLSetStmtAttr(m_statement, SQL_ATTR_ROW_ARRAY_SIZE, odbc::asPointer(m_rowsPerFetch), 0);
    SQLSetStmtAttr(m_statement, SQL_ATTR_ROWS_FETCHED_PTR, &m_fetched, 0);
    SQLSetStmtAttr(m_statement, SQL_ATTR_ROW_STATUS_PTR, m_rowStates.data(), 0);
    SQLUSMALLINT number = 0;
    for (auto field = m_fields.begin(); field != m_fields.end(); ++field) {
        ++number;
        field->buffer =
            QByteArray(static_cast<qsizetype>(field->reader.width * m_rowsPerFetch), Qt::Uninitialized);
        field->indicators.resize(m_rowsPerFetch);
        field->isBound = field < firstLong;
        if (field->isBound &&
            !SQL_SUCCEEDED(SQLBindCol(m_statement, number, field->reader.cType, field->buffer.data(),
                                      static_cast<SQLLEN>(field->reader.width), field->indicators.data())))
            fail();
    }
}

void Fetcher::fail()
{
    const auto records = readDiagnostics(m_statement, m_context.library);
    m_context.messages.add(messages(records));
    throw statementError(records);
}

/// An error behind the last rows of a fetch comes with success, and among the messages.
void Fetcher::takeMessages()
{
    const auto records = readDiagnostics(m_statement, m_context.library);
    m_context.messages.add(messages(records));
    const auto end = m_rowStates.begin() + static_cast<std::ptrdiff_t>(m_fetched);
    if (std::find(m_rowStates.begin(), end, SQL_ROW_ERROR) != end ||
        std::ranges::any_of(records, &Diagnostic::isServerError))
        throw statementError(records);
}

bool Fetcher::fetch()
{
    // Fewer rows than asked for were the last; FreeTDS would go on into the next result.
    if (m_fetched != 0 && m_fetched < m_rowsPerFetch)
        return false;
    SQLRETURN outcome = SQL_ERROR;
    {
        const Watchdog::Call call(m_context.watchdog);
        outcome = SQLFetch(m_statement);
    }
    if (m_context.watchdog.expired())
        throw statementTimeOut();
    if (outcome == SQL_NO_DATA) {
        // The driver has read on behind the last row.
        m_context.messages.add(messages(readDiagnostics(m_statement, m_context.library)));
        return false;
    }
    if (!SQL_SUCCEEDED(outcome))
        fail();
    if (outcome == SQL_SUCCESS_WITH_INFO)
        takeMessages();
    return true;
}

void Fetcher::addValue(const Field& field, ColumnBuilder& builder, const char* data, SQLLEN length)
{
    const FieldReader& reader = field.reader;
    if (length == SQL_NULL_DATA) {
        builder.addNull();
        return;
    }
    if (length < 0 ||
        static_cast<std::size_t>(length) + reader.closing > std::max(reader.width, reader.closing))
        basic::raise(
            number::DriverFailure,
            basic::uiText("Un valor de la columna \"%1\" es más largo de lo que el servidor declaró.",
                          "A value of the column \"%1\" is longer than the server declared it.")
                .arg(reader.column.name));
    if (reader.add == nullptr)
        builder.addFixed(data);
    else
        reader.add(builder, reader.column, data, static_cast<std::size_t>(length));
}

void Fetcher::addBound(const Field& field, ColumnBuilder& builder)
{
    const auto end = field.indicators.begin() + static_cast<std::ptrdiff_t>(m_fetched);
    const bool asTheyAre =
        field.reader.add == nullptr && std::find(field.indicators.begin(), end, SQL_NULL_DATA) == end;
    if (asTheyAre) {
        builder.addFixed(field.buffer.data(), m_fetched);
        return;
    }
    for (std::size_t row = 0; row < m_fetched; ++row)
        addValue(field, builder, field.buffer.data() + row * field.reader.width, field.indicators[row]);
}

/// Reads one value in as many pieces as it takes; a piece that was cut is a full buffer less the closing
/// zero.
void Fetcher::addUnbound(SQLUSMALLINT number, Field& field, ColumnBuilder& builder)
{
    const FieldReader& reader = field.reader;
    QByteArray whole;
    for (;;) {
        SQLLEN length = 0;
        SQLRETURN outcome = SQL_ERROR;
        {
            const Watchdog::Call call(m_context.watchdog);
            outcome = SQLGetData(m_statement, number, reader.cType, field.buffer.data(),
                                 static_cast<SQLLEN>(field.buffer.size()), &length);
        }
        if (m_context.watchdog.expired())
            throw statementTimeOut();
        if (outcome == SQL_NO_DATA)
            break;
        if (!SQL_SUCCEEDED(outcome))
            fail();
        if (length == SQL_NULL_DATA) {
            builder.addNull();
            return;
        }
        const auto room = static_cast<SQLLEN>(static_cast<std::size_t>(field.buffer.size()) - reader.closing);
        const bool isCut = length == SQL_NO_TOTAL || length > room;
        if (!isCut && whole.isEmpty() && !reader.isLong) {
            addValue(field, builder, field.buffer.data(), length);
            return;
        }
        whole.append(field.buffer.data(), isCut ? room : length);
        if (!isCut)
            break;
    }
    reader.add(builder, reader.column, whole.constData(), static_cast<std::size_t>(whole.size()));
}

Table Fetcher::read()
{
    std::vector<Column> columns;
    columns.reserve(m_fields.size());
    for (const Field& field : m_fields)
        columns.push_back(field.reader.column);
    Table table(std::move(columns));
    std::size_t shared = 0; // of the bytes added
    while (fetch()) {
        for (std::size_t index = 0; index < m_fields.size(); ++index) {
            ColumnBuilder& builder = table.builder(static_cast<int>(index));
            if (m_fields[index].isBound)
                addBound(m_fields[index], builder);
            else
                addUnbound(static_cast<SQLUSMALLINT>(index + 1), m_fields[index], builder);
        }
        table.rowsAdded(static_cast<qint64>(m_fetched));
        if (table.bytesAdded() > shared) {
            m_context.share.grow(table.bytesAdded() - shared);
            shared = table.bytesAdded();
        }
    }
    table.seal();
    return table;
}

} // namespace

Table fetchTable(SQLHSTMT statement, int columns, const FetchContext& context)
{
    return Fetcher(statement, columns, context).read();
}

} // namespace ado
