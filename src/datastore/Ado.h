#pragma once

#include "Errors.h"

#include <QString>
#include <QStringList>
#include <QVariant>
#include <QVector>
#include <memory>

// The connection and recordset layer on which the screens and GenMod work. Every failure is
// thrown as platform::Error carrying the data layer's error description; nothing here shows
// anything to the user.
namespace db {

enum CursorType : int {
    adOpenUnspecified = -1,
    adOpenForwardOnly = 0,
    adOpenKeyset = 1,
    adOpenDynamic = 2,
    adOpenStatic = 3,
};

enum LockType : int {
    adLockUnspecified = -1,
    adLockReadOnly = 1,
    adLockPessimistic = 2,
    adLockOptimistic = 3,
    adLockBatchOptimistic = 4,
};

enum ObjectState : int { adStateClosed = 0, adStateOpen = 1 };

class Dialect;
class Engine;
namespace foreground {
class Hold;
}

// One connection to the data store. It is opened once; releasing the last reference closes it
// and discards any transaction that is still open.
class Connection {
  public:
    Connection();
    ~Connection();
    Connection(const Connection&) = delete;
    Connection& operator=(const Connection&) = delete;

    // Seconds to wait for the data store's write lock (and for a statement) before failing.
    int CommandTimeout = 30;

    // Opens the data source named in `connectionString`: either the bare name ("Vorlane") or a
    // string holding "Data Source=<name>". A data source that unixODBC knows by that name is
    // reached through ODBC with user and password; otherwise the embedded database file
    // Database/Vorlane.mdb in the program's folder is opened. A missing or unreadable file
    // fails with ErrDataSourceNotFound.
    void Open(const QString& connectionString, const QString& userID = QString(),
              const QString& password = QString(), int options = -1);
    bool isOpen() const;

    // Runs one statement that returns no rows.
    void Execute(const QString& statement, int options = -1);

    // BeginTrans takes the write lock at once, waiting up to CommandTimeout seconds for it, so
    // that two seats cannot both read the same maximum key inside their transactions.
    void BeginTrans();
    void CommitTrans();
    void RollbackTrans();
    bool inTransaction() const;

    // The dialect of the engine beneath, for the recordsets of this connection.
    const Dialect& dialect() const;

  private:
    friend class Recordset;
    // The engine of the open connection, its wait set to CommandTimeout for the next
    // statement. Throws ErrObjectClosed when the connection is not open.
    Engine& engine() const;
    void release();

    std::unique_ptr<Engine> m_engine;
    bool m_inTransaction = false;
    // A transaction of the screens keeps the background waiting (Foreground.h).
    std::unique_ptr<foreground::Hold> m_transactionHeld;
};

using ConnectionPtr = std::shared_ptr<Connection>;

// A set of rows read by one statement; the recordset keeps its connection alive until it is
// closed. A forward-only, read-only recordset reads its rows one at a time as it moves, so
// that it can pass over any number of rows; every other kind reads all rows at Open. On a
// dynamic cursor over one table, AddNew, setField and Update add rows.
class Recordset {
  public:
    Recordset();
    ~Recordset();
    Recordset(const Recordset&) = delete;
    Recordset& operator=(const Recordset&) = delete;

    void Open(const QString& source, const ConnectionPtr& connection, int cursorType = adOpenUnspecified,
              int lockType = adLockUnspecified, int options = -1);
    // Runs the statement again on the same connection and moves to the first row.
    void Requery();
    void Close();
    int State() const;

    bool eof() const;
    bool bof() const;
    void MoveNext();
    void MoveFirst();
    // The number of rows; -1 on a forward-only cursor, as the data store reports it there.
    int RecordCount() const;

    int FieldCount() const;
    QString FieldName(int index) const;
    // The value of a field of the current row, by name (without regard to case) or position.
    // NULL is an invalid QVariant; dates come as QDate, numbers as qint64 or double, texts as
    // QString. Throws ErrItemNotFound for an unknown field and ErrNoCurrentRecord at EOF/BOF.
    QVariant Fields(const QString& name) const;
    QVariant Fields(int index) const;
    // The text of a field of the current row in UTF-8, as the engine holds it; false for a
    // Null. For readers that keep many rows of texts.
    bool FieldUtf8(int index, QByteArray& text) const;
    // The position of a field by name, without regard to case; ErrItemNotFound when unknown.
    int FieldIndex(const QString& name) const;

    void AddNew();
    void setField(const QString& name, const QVariant& value);
    void Update();

    const QString& source() const;

  private:
    struct Impl;
    std::unique_ptr<Impl> m_impl;
};

} // namespace db
