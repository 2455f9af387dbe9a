#pragma once

#include <QString>
#include <QStringList>

// The benchmark's office on the PostgreSQL server of the data source "Vorlane": the same rows as
// the embedded office, copied by the sqlite3 shell and psql, and psql's command line for that
// database.
namespace bench {

// True when unixODBC knows the data source "Vorlane".
bool serverKnown();

// Makes the data source's database hold the office of the embedded file `database`: its tables
// are made by the set-up routine, the rows copied, and the statistics gathered. psql must reach
// the server (reachServerWithPsql). Refuses a
// database holding tables that an earlier run of the benchmark did not make. Throws
// std::runtime_error.
void loadServerOffice(const QString& database);

// Gives this process, and so every psql it starts, the data source's host, port, database and
// login in PostgreSQL's own variables.
void reachServerWithPsql();
// psql running `statement` alone on the data source's database: the program and its arguments.
QStringList psqlCommand(const QString& statement);

} // namespace bench
