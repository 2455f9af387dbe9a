#pragma once

#include "datastore/Ado.h"

#include <QString>
#include <memory>

// The data environment of the reports: its own connection and one command per report, each
// with the recordset that the report reads. It never writes.
namespace reports {

// A command of the data environment and its recordset, opened on the environment's
// connection with the command's statement.
class DECommand {
  public:
    DECommand(QString name, QString commandText, QString query);

    const QString& name() const { return m_name; }
    // The recordset's name: "rs" + the command's name.
    QString recordsetName() const { return QStringLiteral("rs") + m_name; }
    // The statement as the command holds it, and the statement that reads its rows.
    const QString& commandText() const { return m_commandText; }
    const QString& query() const { return m_query; }

    int State() const;
    // Opens the connection when needed, then the recordset. Throws platform::Error.
    void Open();
    void Requery();
    void Close();
    db::Recordset& recordset() { return *m_recordset; }

  private:
    QString m_name;
    QString m_commandText;
    QString m_query;
    std::unique_ptr<db::Recordset> m_recordset;
};

class VorlaneDE {
  public:
    // The one environment of the process, made on first use and kept until the end.
    static VorlaneDE& instance();

    static QString connectionString();
    static QString userID();
    static QString password();

    // Opened on the first Open of a command.
    db::ConnectionPtr DECon;
    void openConnection();

    DECommand& cmdLetterHead_Grouping() { return m_letterHead; }
    DECommand& cmdContactList() { return m_contactList; }
    DECommand& cmdFileList() { return m_fileList; }
    DECommand& cmdInternetRefList() { return m_internetRefList; }
    DECommand& cmdSearchResult() { return m_searchResult; }

    // The recordsets by their names; each is the command of the same name without "rs".
    DECommand& rscmdLetterHead_Grouping() { return m_letterHead; }
    DECommand& rscmdContactList() { return m_contactList; }
    DECommand& rscmdFileList() { return m_fileList; }
    DECommand& rscmdInternetRefList() { return m_internetRefList; }
    DECommand& rscmdSearchResult() { return m_searchResult; }

    // A command found by its name, its recordset's name or a report's data member
    // ("cmdLetterHead" is the child level of the letterhead command). Throws platform::Error.
    DECommand& command(const QString& name);

    // Closes every recordset and drops the connection, so that a test starts afresh.
    void reset();

  private:
    VorlaneDE();
    DECommand m_letterHead;
    DECommand m_contactList;
    DECommand m_fileList;
    DECommand m_internetRefList;
    DECommand m_searchResult;
};

} // namespace reports
