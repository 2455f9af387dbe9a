#include "Ado.h"

#include "DateText.h"
#include "Dialect.h"
#include "Engine.h"
#include "Foreground.h"
#include "Schema.h"
#include "SqlText.h"

#include <QDate>
#include <QRegularExpression>
#include <optional>

namespace db {

namespace {

// The value of "Data Source=" in a connection string, or the string itself when it is a bare name.
QString dataSourceName(const QString& connectionString) {
    if (!connectionString.contains(QLatin1Char('=')))
        return connectionString.trimmed();
    for (const QString& part : connectionString.split(QLatin1Char(';'))) {
        const int eq = part.indexOf(QLatin1Char('='));
        if (eq > 0 && part.left(eq).trimmed().compare(QLatin1String("Data Source"), Qt::CaseInsensitive) == 0)
            return part.mid(eq + 1).trimmed();
    }
    return QString();
}

QString connectionStringValue(const QString& connectionString, const QStringList& keys) {
    for (const QString& part : connectionString.split(QLatin1Char(';'))) {
        const int eq = part.indexOf(QLatin1Char('='));
        if (eq <= 0)
            continue;
        const QString key = part.left(eq).trimmed();
        for (const QString& k : keys)
            if (key.compare(k, Qt::CaseInsensitive) == 0)
                return part.mid(eq + 1).trimmed();
    }
    return QString();
}

} // namespace

Connection::Connection() = default;

Connection::~Connection() {
    release();
}

void Connection::release() {
    if (m_engine && m_inTransaction) {
        // A released connection discards what it has not committed.
        try {
            m_engine->rollbackTransaction();
        } catch (const platform::Error&) {
        }
    }
    m_inTransaction = false;
    m_transactionHeld.reset();
    m_engine.reset();
}

Engine& Connection::engine() const {
    if (!m_engine)
        throw platform::Error(ErrObjectClosed, TextObjectClosed);
    foreground::used();
    m_engine->setTimeout(CommandTimeout);
    return *m_engine;
}

void Connection::Open(const QString& connectionString, const QString& userID, const QString& password, int) {
    release();
    const QString dsn = dataSourceName(connectionString);
    const QString user =
        userID.isEmpty()
            ? connectionStringValue(connectionString, {QStringLiteral("User ID"), QStringLiteral("UID")})
            : userID;
    const QString pass =
        password.isEmpty()
            ? connectionStringValue(connectionString, {QStringLiteral("Password"), QStringLiteral("PWD")})
            : password;
    foreground::used();
    m_engine = openEngine(dsn, user, pass, CommandTimeout);
    m_engine->setTimeout(CommandTimeout);
}

bool Connection::isOpen() const {
    return m_engine != nullptr;
}

void Connection::Execute(const QString& statement, int) {
    Engine& e = engine();
    e.execute(e.dialect().translate(statement));
}

void Connection::BeginTrans() {
    Engine& e = engine();
    if (m_inTransaction)
        throw platform::Error(ErrStatement,
                              QStringLiteral("A transaction is already open on this connection."));
    auto held = std::make_unique<foreground::Hold>();
    e.beginTransaction();
    m_inTransaction = true;
    m_transactionHeld = std::move(held);
}

void Connection::CommitTrans() {
    Engine& e = engine();
    if (!m_inTransaction)
        throw platform::Error(ErrStatement, QStringLiteral("No transaction is open on this connection."));
    e.commitTransaction();
    m_inTransaction = false;
    m_transactionHeld.reset();
}

void Connection::RollbackTrans() {
    Engine& e = engine();
    if (!m_inTransaction)
        throw platform::Error(ErrStatement, QStringLiteral("No transaction is open on this connection."));
    m_inTransaction = false;
    const std::unique_ptr<foreground::Hold> held = std::move(m_transactionHeld);
    e.rollbackTransaction();
}

bool Connection::inTransaction() const {
    return m_inTransaction;
}

const Dialect& Connection::dialect() const {
    return m_engine ? m_engine->dialect() : defaultDialect();
}

// ---------------------------------------------------------------------------------------------

struct Recordset::Impl {
    ConnectionPtr connection;
    QString source;
    int cursorType = adOpenForwardOnly;
    int lockType = adLockReadOnly;
    bool open = false;
    QStringList names;
    QVector<QVector<QVariant>> rows;
    int position = 0;
    // A forward-only, read-only recordset streams: it holds the row under the cursor only,
    // and its statement ends at EOF or Close. Declared after the connection, so that it ends
    // before the connection can.
    bool streaming = false;
    std::optional<foreground::Hold> cursorHeld; // while the statement runs
    std::unique_ptr<Cursor> cursor;
    bool streamRow = false;   // the cursor stands on a row
    bool streamEmpty = false; // the statement gave no row at all
    // AddNew in progress: the named values of the new row.
    bool adding = false;
    FieldValues pending;

    void requireOpen() const {
        if (!open)
            throw platform::Error(ErrObjectClosed, TextObjectClosed);
    }

    int fieldIndex(const QString& name) const {
        for (int i = 0; i < names.size(); ++i)
            if (names[i].compare(name, Qt::CaseInsensitive) == 0)
                return i;
        return -1;
    }

    void load() {
        Engine& engine = connection->engine();
        const QString text = engine.dialect().translate(source);
        // A recordset reads; whatever else its text says is refused before it can run.
        static const QRegularExpression select(QStringLiteral("^\\s*select\\b"),
                                               QRegularExpression::CaseInsensitiveOption);
        if (!select.match(text).hasMatch())
            throw platform::Error(ErrStatement,
                                  QStringLiteral("Only a Select statement can open a recordset."));
        names.clear();
        rows.clear();
        endCursor();
        position = 0;
        if (streaming) {
            cursor = engine.query(text);
            cursorHeld.emplace();
            names = cursor->names();
            advance();
            streamEmpty = !streamRow;
            return;
        }
        Rows read = engine.select(text);
        names = std::move(read.names);
        rows = std::move(read.values);
    }

    // Steps the stream to its next row; past the last one the statement ends.
    void advance() {
        streamRow = cursor->next();
        if (!streamRow)
            endCursor();
    }

    void endCursor() {
        cursor.reset();
        cursorHeld.reset();
    }

    bool atEnd() const { return streaming ? !streamRow : position >= rows.size(); }

    QVariant value(int index) const {
        requireOpen();
        if (index < 0 || index >= names.size())
            throw platform::Error(ErrItemNotFound, TextItemNotFound);
        if (position < 0 || atEnd())
            throw platform::Error(ErrNoCurrentRecord, TextNoCurrentRecord);
        return streaming ? cursor->value(index) : rows[position][index];
    }

    // The one table that a "Select ... from T [where ...] [order by ...]" reads, or empty.
    QString singleTable() const {
        const QVector<sql::Token> tokens = sql::tokenize(source);
        int from = -1;
        for (int i = 0; i < tokens.size(); ++i)
            if (sql::isKeyword(tokens[i], "from")) {
                if (from >= 0)
                    return QString();
                from = i;
            }
        if (from < 0)
            return QString();
        int i = from + 1;
        while (i < tokens.size() && tokens[i].kind == sql::TokenKind::Space)
            ++i;
        if (i >= tokens.size() ||
            (tokens[i].kind != sql::TokenKind::Word && tokens[i].kind != sql::TokenKind::Bracketed))
            return QString();
        QString table = tokens[i].text;
        for (++i; i < tokens.size(); ++i) {
            const sql::Token& t = tokens[i];
            if (t.kind == sql::TokenKind::Space || t.kind == sql::TokenKind::Semicolon)
                continue;
            if (sql::isKeyword(t, "where") || sql::isKeyword(t, "order"))
                break;
            return QString(); // a join, an alias or a second table
        }
        return table;
    }
};

Recordset::Recordset() : m_impl(std::make_unique<Impl>()) {}
Recordset::~Recordset() = default;

void Recordset::Open(const QString& source, const ConnectionPtr& connection, int cursorType, int lockType,
                     int) {
    Impl& d = *m_impl;
    if (d.open)
        Close();
    if (!connection || !connection->isOpen())
        throw platform::Error(ErrObjectClosed, TextObjectClosed);
    d.connection = connection;
    d.source = source;
    d.cursorType = cursorType == adOpenUnspecified ? adOpenForwardOnly : cursorType;
    d.lockType = lockType == adLockUnspecified ? adLockReadOnly : lockType;
    d.streaming = d.cursorType == adOpenForwardOnly && d.lockType == adLockReadOnly;
    try {
        d.load();
    } catch (...) {
        d.endCursor();
        d.connection.reset();
        throw;
    }
    d.open = true;
}

void Recordset::Requery() {
    Impl& d = *m_impl;
    d.requireOpen();
    d.adding = false;
    d.pending.clear();
    d.load();
}

void Recordset::Close() {
    Impl& d = *m_impl;
    d.requireOpen();
    d.open = false;
    d.adding = false;
    d.pending.clear();
    d.rows.clear();
    d.names.clear();
    d.endCursor();
    d.connection.reset();
}

int Recordset::State() const {
    return m_impl->open ? adStateOpen : adStateClosed;
}

bool Recordset::eof() const {
    m_impl->requireOpen();
    return m_impl->atEnd();
}

bool Recordset::bof() const {
    const Impl& d = *m_impl;
    d.requireOpen();
    return (d.streaming ? d.streamEmpty : d.rows.isEmpty()) || d.position < 0;
}

void Recordset::MoveNext() {
    Impl& d = *m_impl;
    d.requireOpen();
    if (d.atEnd())
        throw platform::Error(ErrNoCurrentRecord, TextNoCurrentRecord);
    ++d.position;
    if (d.streaming)
        d.advance();
}

void Recordset::MoveFirst() {
    Impl& d = *m_impl;
    d.requireOpen();
    // A stream that has left its first row reads its statement again.
    if (d.streaming && d.position != 0)
        d.load();
    d.position = 0;
}

int Recordset::RecordCount() const {
    const Impl& d = *m_impl;
    d.requireOpen();
    return d.cursorType == adOpenForwardOnly ? -1 : int(d.rows.size());
}

int Recordset::FieldCount() const {
    m_impl->requireOpen();
    return int(m_impl->names.size());
}

QString Recordset::FieldName(int index) const {
    const Impl& d = *m_impl;
    d.requireOpen();
    if (index < 0 || index >= d.names.size())
        throw platform::Error(ErrItemNotFound, TextItemNotFound);
    return d.names[index];
}

QVariant Recordset::Fields(const QString& name) const {
    return m_impl->value(FieldIndex(name));
}

bool Recordset::FieldUtf8(int index, QByteArray& text) const {
    const Impl& d = *m_impl;
    if (!d.streaming)
        return utf8Text(d.value(index), text);
    d.requireOpen();
    if (index < 0 || index >= d.names.size())
        throw platform::Error(ErrItemNotFound, TextItemNotFound);
    if (d.atEnd())
        throw platform::Error(ErrNoCurrentRecord, TextNoCurrentRecord);
    return d.cursor->utf8(index, text);
}

int Recordset::FieldIndex(const QString& name) const {
    m_impl->requireOpen();
    const int index = m_impl->fieldIndex(name);
    if (index < 0)
        throw platform::Error(ErrItemNotFound, TextItemNotFound);
    return index;
}

QVariant Recordset::Fields(int index) const {
    return m_impl->value(index);
}

void Recordset::AddNew() {
    Impl& d = *m_impl;
    d.requireOpen();
    if (d.lockType == adLockReadOnly || d.cursorType == adOpenStatic || d.singleTable().isEmpty())
        throw platform::Error(ErrNotSupported, TextNotUpdatable);
    d.adding = true;
    d.pending.clear();
}

void Recordset::setField(const QString& name, const QVariant& value) {
    Impl& d = *m_impl;
    d.requireOpen();
    if (d.fieldIndex(name) < 0)
        throw platform::Error(ErrItemNotFound, TextItemNotFound);
    if (!d.adding)
        throw platform::Error(ErrNotSupported, TextNotUpdatable);
    for (auto& p : d.pending)
        if (p.first.compare(name, Qt::CaseInsensitive) == 0) {
            p.second = value;
            return;
        }
    d.pending.push_back({name, value});
}

void Recordset::Update() {
    Impl& d = *m_impl;
    d.requireOpen();
    if (!d.adding)
        return;
    const QString table = d.singleTable();
    FieldValues values;
    for (const auto& [name, value] : d.pending) {
        // A text for a date column is one of the screens' dates or refused.
        const bool dateText = value.typeId() == QMetaType::QString && isDateColumn(table, name);
        values.push_back(
            {name, dateText ? QVariant(sql::columnDate(value.toString(), canonicalName(name))) : value});
    }
    d.connection->engine().insert(table, values);

    QVector<QVariant> row(d.names.size());
    for (const auto& [name, value] : d.pending)
        row[d.fieldIndex(name)] = value;
    d.rows.push_back(std::move(row));
    d.position = int(d.rows.size()) - 1;
    d.adding = false;
    d.pending.clear();
}

const QString& Recordset::source() const {
    return m_impl->source;
}

} // namespace db
