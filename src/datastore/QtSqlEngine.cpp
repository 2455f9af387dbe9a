#include "QtSqlEngine.h"

#include "Dialect.h"
#include "Errors.h"

#include <QCoreApplication>
#include <QDate>
#include <QRegularExpression>
#include <QSqlError>
#include <QSqlQuery>
#include <QSqlRecord>
#include <QThread>
#include <QUuid>
#include <map>
#include <utility>

namespace db {

namespace {

// The driver types the values: a server's date column gives QDate.
QVariant convert(const QVariant& v) {
    if (v.isNull())
        return QVariant();
    if (v.typeId() == QMetaType::Int || v.typeId() == QMetaType::LongLong)
        return QVariant(v.toLongLong());
    return v;
}

QVariant stored(const QVariant& v) {
    return v.typeId() == QMetaType::QDate ? QVariant(v.toDate().toString(Qt::ISODate)) : v;
}

} // namespace

SqlStore::SqlStore(const QString& driver)
    : m_database(QSqlDatabase::addDatabase(driver, QStringLiteral("vorlane-") +
                                                       QUuid::createUuid().toString(QUuid::WithoutBraces))) {}

SqlStore::SqlStore(SqlStore&& other) noexcept : m_database(std::exchange(other.m_database, QSqlDatabase())) {}

SqlStore::~SqlStore() {
    if (!m_database.isValid())
        return;
    const QString name = m_database.connectionName();
    m_database.close();
    m_database = QSqlDatabase();
    QSqlDatabase::removeDatabase(name);
}

QtSqlEngine::QtSqlEngine(SqlStore store, std::unique_ptr<Dialect> dialect)
    : m_store(std::move(store)), m_dialect(std::move(dialect)) {}

QtSqlEngine::~QtSqlEngine() {
    if (!m_keepFor.isEmpty() && !m_inTransaction && m_store.database().isOpen())
        idle::keep(m_keepFor, std::move(m_store));
}

namespace idle {

namespace {

constexpr int KeptPerLogin = 2;

std::multimap<QString, SqlStore>& kept() {
    // Never destroyed: the connections are closed by clear(), while the drivers are loaded.
    static auto* stores = [] {
        qAddPostRoutine(clear);
        return new std::multimap<QString, SqlStore>;
    }();
    return *stores;
}

bool mainThread() {
    const QCoreApplication* app = QCoreApplication::instance();
    return app && app->thread() == QThread::currentThread();
}

} // namespace

std::optional<SqlStore> take(const QString& key) {
    if (!mainThread())
        return std::nullopt;
    auto& stores = kept();
    const auto it = stores.find(key);
    if (it == stores.end())
        return std::nullopt;
    SqlStore store = std::move(it->second);
    stores.erase(it);
    return store;
}

void keep(const QString& key, SqlStore store) {
    if (mainThread() && kept().count(key) < KeptPerLogin)
        kept().emplace(key, std::move(store));
}

void clear() {
    if (QCoreApplication::instance() && !mainThread())
        return;
    kept().clear();
}

} // namespace idle

QString QtSqlEngine::describe(const QSqlError& e) {
    QString text = e.databaseText().trimmed();
    // The PostgreSQL driver wraps the server's words: "ERROR:  <words>;\n<what the driver was
    // doing>". The words alone reach the user, as the embedded file's do.
    static const QRegularExpression wrapped(QStringLiteral("^(?:ERROR|FATAL|PANIC):\\s+(.*?);\\n[^\\n]*$"),
                                            QRegularExpression::DotMatchesEverythingOption);
    if (const auto m = wrapped.match(text); m.hasMatch())
        text = m.captured(1).trimmed();
    if (text.isEmpty())
        text = e.driverText().trimmed();
    if (text.isEmpty())
        text = QStringLiteral("The data store refused the statement.");
    return text;
}

const Dialect& QtSqlEngine::dialect() const {
    return *m_dialect;
}

void QtSqlEngine::setTimeout(int) {}

void QtSqlEngine::execute(const QString& text) {
    QString failure;
    {
        QSqlQuery q(database());
        if (!q.exec(text))
            failure = describe(q.lastError());
    }
    if (!failure.isNull())
        throw platform::Error(ErrStatement, failure);
}

namespace {

// A forward-only query of the driver: the driver reads a row when it is asked for one.
class QtSqlCursor : public Cursor {
  public:
    explicit QtSqlCursor(QSqlQuery query) : m_query(std::move(query)) {
        const QSqlRecord record = m_query.record();
        for (int i = 0; i < record.count(); ++i)
            m_names << record.fieldName(i);
    }
    QStringList names() const override { return m_names; }
    bool next() override {
        if (m_query.next())
            return true;
        if (m_query.lastError().isValid())
            throw platform::Error(ErrStatement, QtSqlEngine::describe(m_query.lastError()));
        return false;
    }
    QVariant value(int column) const override { return convert(m_query.value(column)); }

  private:
    QSqlQuery m_query;
    QStringList m_names;
};

} // namespace

std::unique_ptr<Cursor> QtSqlEngine::query(const QString& text) {
    QSqlQuery q(database());
    q.setForwardOnly(true);
    if (!q.exec(text))
        throw platform::Error(ErrStatement, describe(q.lastError()));
    return std::make_unique<QtSqlCursor>(std::move(q));
}

Rows QtSqlEngine::readRows(Cursor& cursor) {
    Rows rows;
    rows.names = cursor.names();
    const auto count = rows.names.size();
    while (cursor.next()) {
        QVector<QVariant> row(count);
        for (int i = 0; i < count; ++i)
            row[i] = cursor.value(i);
        rows.values.push_back(std::move(row));
    }
    return rows;
}

Rows QtSqlEngine::select(const QString& text) {
    return readRows(*query(text));
}

void QtSqlEngine::insert(const QString& table, const FieldValues& values) {
    QStringList columns, marks;
    for (const auto& value : values) {
        columns << value.first;
        marks << QStringLiteral("?");
    }
    const QString text = m_dialect->translate(
        columns.isEmpty() ? QStringLiteral("Insert into %1 default values").arg(table)
                          : QStringLiteral("Insert into %1 (%2) values (%3)")
                                .arg(table, columns.join(QLatin1Char(',')), marks.join(QLatin1Char(','))));
    QString failure;
    {
        QSqlQuery q(database());
        if (!q.prepare(text)) {
            failure = describe(q.lastError());
        } else {
            for (const auto& value : values)
                q.addBindValue(stored(value.second));
            if (!q.exec())
                failure = describe(q.lastError());
        }
    }
    if (!failure.isNull())
        throw platform::Error(ErrStatement, failure);
}

void QtSqlEngine::beginTransaction() {
    if (!database().transaction())
        throw platform::Error(ErrStatement, describe(database().lastError()));
    m_inTransaction = true;
}

void QtSqlEngine::commitTransaction() {
    if (!database().commit())
        throw platform::Error(ErrStatement, describe(database().lastError()));
    m_inTransaction = false;
}

void QtSqlEngine::rollbackTransaction() {
    if (!database().rollback())
        throw platform::Error(ErrStatement, describe(database().lastError()));
    m_inTransaction = false;
}

} // namespace db
