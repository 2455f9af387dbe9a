#include "PostgresRows.h"

#include "datastore/Errors.h"
#include "datastore/QtSqlEngine.h"

#include <QDate>
#include <QRegularExpression>
#include <QSqlError>
#include <QStringEncoder>
#include <atomic>
#include <cstring>
#include <iterator>
#include <map>
#include <vector>

#include <sql.h>
#include <sqlext.h>

namespace db {

namespace {

// Rows taken from the driver at each call.
constexpr SQLULEN RowsetRows = 500;
// The UTF-16 units of a text that a row holds in place; a longer text is read whole when asked for.
constexpr SQLULEN TextUnits = 1024;

// An integer attribute, which ODBC takes in the place of a pointer.
SQLPOINTER integer(SQLULEN value) {
    return reinterpret_cast<SQLPOINTER>(value); // NOLINT(performance-no-int-to-ptr)
}

QStringView view(const SQLWCHAR* text, qsizetype units) {
    return QStringView(reinterpret_cast<const char16_t*>(text), units);
}

// The driver's words for what failed on `handle`, gathered as the Qt driver gathers them.
QString diagnostics(SQLSMALLINT type, SQLHANDLE handle) {
    QStringList words;
    std::vector<SQLWCHAR> message(SQL_MAX_MESSAGE_LENGTH + 1);
    for (SQLSMALLINT record = 1;; ++record) {
        SQLWCHAR state[SQL_SQLSTATE_SIZE + 1];
        SQLINTEGER native = 0;
        SQLSMALLINT length = 0;
        SQLRETURN r = SQLGetDiagRecW(type, handle, record, state, &native, message.data(),
                                     SQLSMALLINT(message.size()), &length);
        if (SQL_SUCCEEDED(r) && length >= SQLSMALLINT(message.size())) {
            message.resize(size_t(length) + 1);
            r = SQLGetDiagRecW(type, handle, record, state, &native, message.data(),
                               SQLSMALLINT(message.size()), &length);
        }
        if (!SQL_SUCCEEDED(r))
            break;
        const QString text =
            view(message.data(), qMin<qsizetype>(length, qsizetype(message.size()) - 1)).toString();
        if (words.isEmpty() || words.constLast() != text)
            words << text;
    }
    return words.join(QLatin1Char(' '));
}

// A statement of its own on the connection.
class Statement {
  public:
    explicit Statement(SQLHDBC connection) : m_connection(connection) {
        if (!SQL_SUCCEEDED(SQLAllocHandle(SQL_HANDLE_STMT, connection, &m_handle))) {
            m_handle = SQL_NULL_HSTMT;
            throw failure();
        }
    }
    ~Statement() { SQLFreeHandle(SQL_HANDLE_STMT, m_handle); }
    Statement(const Statement&) = delete;
    Statement& operator=(const Statement&) = delete;

    SQLHSTMT handle() const { return m_handle; }

    // Runs `text`, its rows (if any) waiting to be fetched; a refusal is thrown.
    void run(const QString& text) {
        SQLFreeStmt(m_handle, SQL_CLOSE);
        auto* units = const_cast<SQLWCHAR*>(reinterpret_cast<const SQLWCHAR*>(text.utf16()));
        const SQLRETURN r = SQLExecDirectW(m_handle, units, SQLINTEGER(text.size()));
        if (!SQL_SUCCEEDED(r) && r != SQL_NO_DATA)
            throw failure();
    }

    // The failure of the last call, in the server's words as the Qt driver would give them.
    platform::Error failure() const {
        QString words = diagnostics(SQL_HANDLE_DBC, m_connection);
        if (m_handle != SQL_NULL_HSTMT) {
            const QString own = diagnostics(SQL_HANDLE_STMT, m_handle);
            words += (words.isEmpty() || own.isEmpty() ? QString() : QStringLiteral(" ")) + own;
        }
        return platform::Error(ErrStatement, QtSqlEngine::describe(QSqlError(QString(), words)));
    }

    // The whole text of `column` (from 1) of the row under the cursor; false for a Null.
    bool text(SQLUSMALLINT column, QString& out) const {
        out.clear();
        std::vector<SQLWCHAR> part(4096);
        const auto room = SQLLEN(part.size() - 1);
        while (true) {
            SQLLEN length = 0;
            const SQLRETURN r = SQLGetData(m_handle, column, SQL_C_WCHAR, part.data(),
                                           SQLLEN(part.size() * sizeof(SQLWCHAR)), &length);
            if (r == SQL_NO_DATA)
                return true;
            if (!SQL_SUCCEEDED(r))
                throw failure();
            if (length == SQL_NULL_DATA)
                return false;
            const bool whole = length != SQL_NO_TOTAL && length / SQLLEN(sizeof(SQLWCHAR)) <= room;
            out += view(part.data(), whole ? length / SQLLEN(sizeof(SQLWCHAR)) : room);
            if (whole)
                return true;
        }
    }

  private:
    SQLHDBC m_connection;
    SQLHSTMT m_handle = SQL_NULL_HSTMT;
};

// The rows that the server's plan of the select `text` expects; -1 when it cannot tell (the
// select itself then says why it is refused).
qint64 expectedRows(Statement& statement, const QString& text) {
    QString plan;
    try {
        statement.run(QStringLiteral("EXPLAIN ") + text);
        if (!SQL_SUCCEEDED(SQLFetch(statement.handle())) || !statement.text(1, plan))
            return -1;
    } catch (const platform::Error&) {
        return -1;
    }
    static const QRegularExpression rows(QStringLiteral(" rows=(\\d+) "));
    const auto m = rows.match(plan);
    return m.hasMatch() ? m.captured(1).toLongLong() : -1;
}

enum class Kind { Integer, Date, Text };

// One column's values of the rows taken at once.
struct Column {
    Kind kind = Kind::Text;
    SQLLEN width = 0; // bytes per row
    std::vector<char> values;
    std::vector<SQLLEN> lengths;

    const char* at(SQLULEN row) const { return values.data() + row * SQLULEN(width); }
    // A text longer than its place in the row.
    bool cut(SQLULEN row) const {
        return lengths[row] == SQL_NO_TOTAL || lengths[row] > width - SQLLEN(sizeof(SQLWCHAR));
    }
};

class ServerRows : public Cursor {
  public:
    ServerRows(SQLHDBC connection, std::function<bool()> inTransaction)
        : m_connection(connection), m_inTransaction(std::move(inTransaction)), m_statement(connection) {}
    ~ServerRows() override { finish(); }
    ServerRows(const ServerRows&) = delete;
    ServerRows& operator=(const ServerRows&) = delete;

    // Runs the select; false when a column is of a type not read here.
    bool open(const QString& text) {
        if (expectedRows(m_statement, text) > server::PagedAbove) {
            static std::atomic<quint64> cursors{0};
            m_ownTransaction = !m_inTransaction();
            if (m_ownTransaction)
                SQLSetConnectAttr(m_connection, SQL_ATTR_AUTOCOMMIT, integer(SQL_AUTOCOMMIT_OFF), 0);
            m_cursor = QStringLiteral("vorlane_rows_%1").arg(++cursors);
            // With hold: a transaction that the engine ends meanwhile leaves the cursor open.
            m_statement.run(
                QStringLiteral("DECLARE %1 NO SCROLL CURSOR WITH HOLD FOR %2").arg(m_cursor, text));
            m_statement.run(nextPage());
        } else {
            m_statement.run(text);
        }
        return bindColumns();
    }

    QStringList names() const override { return m_names; }

    bool next() override {
        m_whole.clear();
        if (m_started && m_row + 1 < m_fetched) {
            ++m_row;
            return true;
        }
        m_started = true;
        while (!m_ended) {
            const SQLRETURN r = SQLFetchScroll(m_statement.handle(), SQL_FETCH_NEXT, 0);
            if (SQL_SUCCEEDED(r) && m_fetched > 0) {
                m_row = 0;
                m_pageRows += qint64(m_fetched);
                return true;
            }
            if (r != SQL_NO_DATA && !SQL_SUCCEEDED(r))
                throw m_statement.failure();
            // A page that came short was the last.
            if (m_cursor.isEmpty() || m_pageRows < server::PageRows)
                break;
            m_pageRows = 0;
            m_statement.run(nextPage());
        }
        m_fetched = 0;
        finish();
        return false;
    }

    QVariant value(int column) const override {
        if (!holds(column))
            return QVariant();
        const Column& c = m_columns[size_t(column)];
        switch (c.kind) {
        case Kind::Integer: {
            qint64 number = 0;
            std::memcpy(&number, c.at(m_row), sizeof number);
            return QVariant(number);
        }
        case Kind::Date: {
            SQL_DATE_STRUCT date{};
            std::memcpy(&date, c.at(m_row), sizeof date);
            return QVariant(QDate(date.year, date.month, date.day));
        }
        case Kind::Text:
            break;
        }
        if (c.cut(m_row))
            return QVariant(whole(column));
        return QVariant(
            view(reinterpret_cast<const SQLWCHAR*>(c.at(m_row)), c.lengths[m_row] / SQLLEN(sizeof(SQLWCHAR)))
                .toString());
    }

    bool utf8(int column, QByteArray& text) const override {
        if (!holds(column))
            return false;
        const Column& c = m_columns[size_t(column)];
        if (c.kind != Kind::Text || c.cut(m_row))
            return Cursor::utf8(column, text);
        const QStringView units =
            view(reinterpret_cast<const SQLWCHAR*>(c.at(m_row)), c.lengths[m_row] / SQLLEN(sizeof(SQLWCHAR)));
        text.resize(m_encoder.requiredSpace(units.size()));
        text.truncate(m_encoder.appendToBuffer(text.data(), units) - text.constData());
        return true;
    }

  private:
    QString nextPage() const {
        return QStringLiteral("FETCH FORWARD %1 FROM %2").arg(QString::number(server::PageRows), m_cursor);
    }

    // A value of the current row that is not a Null.
    bool holds(int column) const {
        return m_row < m_fetched && column >= 0 && size_t(column) < m_columns.size() &&
               m_columns[size_t(column)].lengths[m_row] != SQL_NULL_DATA;
    }

    // Names each column and gives it its place in the rows, typed as the Qt driver types it.
    bool bindColumns() {
        const SQLHSTMT handle = m_statement.handle();
        SQLSMALLINT count = 0;
        if (!SQL_SUCCEEDED(SQLNumResultCols(handle, &count)))
            throw m_statement.failure();
        m_columns.resize(size_t(count));
        for (SQLUSMALLINT i = 1; i <= SQLUSMALLINT(count); ++i) {
            SQLWCHAR name[256];
            SQLSMALLINT nameLength = 0, type = 0, digits = 0, nullable = 0;
            SQLULEN size = 0;
            SQLLEN isUnsigned = SQL_FALSE;
            if (!SQL_SUCCEEDED(SQLDescribeColW(handle, i, name, SQLSMALLINT(std::size(name)), &nameLength,
                                               &type, &size, &digits, &nullable)) ||
                !SQL_SUCCEEDED(
                    SQLColAttributeW(handle, i, SQL_DESC_UNSIGNED, nullptr, 0, nullptr, &isUnsigned)))
                throw m_statement.failure();
            m_names << view(name, qMin<qsizetype>(nameLength, qsizetype(std::size(name)) - 1)).toString();
            Column& c = m_columns[i - 1];
            SQLSMALLINT as = SQL_C_WCHAR;
            switch (type) {
            case SQL_INTEGER:
            case SQL_BIGINT:
                if (isUnsigned != SQL_FALSE)
                    return false;
                c.kind = Kind::Integer;
                as = SQL_C_SBIGINT;
                c.width = sizeof(SQLBIGINT);
                break;
            case SQL_TYPE_DATE:
            case SQL_DATE:
                c.kind = Kind::Date;
                as = SQL_C_TYPE_DATE;
                c.width = sizeof(SQL_DATE_STRUCT);
                break;
            case SQL_CHAR:
            case SQL_VARCHAR:
            case SQL_LONGVARCHAR:
            case SQL_WCHAR:
            case SQL_WVARCHAR:
            case SQL_WLONGVARCHAR:
                c.kind = Kind::Text;
                c.width = SQLLEN((qBound<SQLULEN>(1, size, TextUnits) + 1) * sizeof(SQLWCHAR));
                break;
            default:
                return false;
            }
            c.values.resize(size_t(c.width) * RowsetRows);
            c.lengths.resize(RowsetRows);
            if (!SQL_SUCCEEDED(SQLBindCol(handle, i, as, c.values.data(), c.width, c.lengths.data())))
                throw m_statement.failure();
        }
        if (!SQL_SUCCEEDED(SQLSetStmtAttr(handle, SQL_ATTR_ROW_BIND_TYPE, integer(SQL_BIND_BY_COLUMN), 0)) ||
            !SQL_SUCCEEDED(SQLSetStmtAttr(handle, SQL_ATTR_ROW_ARRAY_SIZE, integer(RowsetRows), 0)) ||
            !SQL_SUCCEEDED(SQLSetStmtAttr(handle, SQL_ATTR_ROWS_FETCHED_PTR, &m_fetched, 0)))
            throw m_statement.failure();
        return true;
    }

    // A text longer than its place in the row, read whole once.
    const QString& whole(int column) const {
        const auto found = m_whole.find(column);
        if (found != m_whole.end())
            return found->second;
        QString& text = m_whole[column];
        if (!SQL_SUCCEEDED(
                SQLSetPos(m_statement.handle(), SQLSETPOSIROW(m_row + 1), SQL_POSITION, SQL_LOCK_NO_CHANGE)))
            throw m_statement.failure();
        m_statement.text(SQLUSMALLINT(column + 1), text);
        return text;
    }

    // Ends the statement, the server's cursor and the transaction opened for it. A transaction
    // that the engine began meanwhile stays the engine's.
    void finish() noexcept {
        if (m_ended)
            return;
        m_ended = true;
        SQLFreeStmt(m_statement.handle(), SQL_CLOSE);
        if (!m_cursor.isEmpty()) {
            try {
                m_statement.run(QStringLiteral("CLOSE ") + m_cursor);
            } catch (const platform::Error&) {
                // A failed transaction took the cursor with it.
            }
            SQLFreeStmt(m_statement.handle(), SQL_CLOSE);
        }
        if (!m_ownTransaction || m_inTransaction())
            return;
        SQLUINTEGER autocommit = SQL_AUTOCOMMIT_ON;
        SQLGetConnectAttr(m_connection, SQL_ATTR_AUTOCOMMIT, &autocommit, 0, nullptr);
        if (autocommit == SQL_AUTOCOMMIT_ON)
            return;
        SQLEndTran(SQL_HANDLE_DBC, m_connection, SQL_COMMIT);
        SQLSetConnectAttr(m_connection, SQL_ATTR_AUTOCOMMIT, integer(SQL_AUTOCOMMIT_ON), 0);
    }

    SQLHDBC m_connection;
    std::function<bool()> m_inTransaction;
    Statement m_statement;
    QString m_cursor; // the server's cursor; empty when the rows came at once
    bool m_ownTransaction = false;
    bool m_started = false;
    bool m_ended = false;
    QStringList m_names;
    std::vector<Column> m_columns;
    SQLULEN m_fetched = 0; // rows taken at the last call
    SQLULEN m_row = 0;     // the current one among them
    qint64 m_pageRows = 0; // rows of the page so far
    mutable std::map<int, QString> m_whole;
    mutable QStringEncoder m_encoder{QStringConverter::Utf8, QStringConverter::Flag::Stateless};
};

} // namespace

std::unique_ptr<Cursor> openServerRows(void* connection, const QString& text,
                                       std::function<bool()> inTransaction) {
    auto rows = std::make_unique<ServerRows>(SQLHDBC(connection), std::move(inTransaction));
    if (!rows->open(text))
        return nullptr;
    return rows;
}

} // namespace db
