#include "VorlaneDE.h"

namespace reports {

DECommand::DECommand(QString name, QString commandText, QString query)
    : m_name(std::move(name)), m_commandText(std::move(commandText)), m_query(std::move(query)),
      m_recordset(std::make_unique<db::Recordset>()) {}

int DECommand::State() const {
    return m_recordset->State();
}

void DECommand::Open() {
    VorlaneDE::instance().openConnection();
    m_recordset->Open(m_query, VorlaneDE::instance().DECon, db::adOpenStatic, db::adLockReadOnly);
}

void DECommand::Requery() {
    m_recordset->Requery();
}

void DECommand::Close() {
    if (m_recordset->State() == db::adStateOpen)
        m_recordset->Close();
}

// The letterhead command groups the one row of Personal by its key; the single flat row is
// all the letterheads print, so a plain select reads it.
VorlaneDE::VorlaneDE()
    : m_letterHead(
          QStringLiteral("cmdLetterHead_Grouping"),
          QStringLiteral("SHAPE {SELECT * FROM `Personal`}  AS cmdLetterHead COMPUTE cmdLetterHead BY 'ID'"),
          QStringLiteral("SELECT * FROM Personal")),
      m_contactList(QStringLiteral("cmdContactList"),
                    QStringLiteral("Select * from Contacts order by FullName"),
                    QStringLiteral("Select * from Contacts order by FullName")),
      m_fileList(QStringLiteral("cmdFileList"), QStringLiteral("Select * from File Order by FileNumber"),
                 QStringLiteral("Select * from File Order by FileNumber")),
      m_internetRefList(QStringLiteral("cmdInternetRefList"),
                        QStringLiteral("Select * from References order by RefName"),
                        QStringLiteral("Select * from References order by RefName")),
      m_searchResult(QStringLiteral("cmdSearchResult"), QStringLiteral("Select * from PrintSearchResult"),
                     QStringLiteral("Select * from PrintSearchResult")) {}

VorlaneDE& VorlaneDE::instance() {
    // Never destroyed: the reports may still read from it while the program ends.
    static VorlaneDE* de = new VorlaneDE();
    return *de;
}

QString VorlaneDE::connectionString() {
    return QStringLiteral(
        "PROVIDER=MSDataShape;DATA PROVIDER=MSDASQL.1;Password=tarvo@48213;Persist Security "
        "Info=True;User ID=Admin;Data Source=Vorlane;");
}
QString VorlaneDE::userID() {
    return QStringLiteral("Admin");
}
QString VorlaneDE::password() {
    return QStringLiteral("tarvo@48213");
}

void VorlaneDE::openConnection() {
    if (DECon && DECon->isOpen())
        return;
    auto con = std::make_shared<db::Connection>();
    con->Open(connectionString(), userID(), password());
    DECon = con;
}

DECommand& VorlaneDE::command(const QString& name) {
    for (DECommand* c : {&m_letterHead, &m_contactList, &m_fileList, &m_internetRefList, &m_searchResult})
        if (c->name().compare(name, Qt::CaseInsensitive) == 0 ||
            c->recordsetName().compare(name, Qt::CaseInsensitive) == 0)
            return *c;
    if (name.compare(QStringLiteral("cmdLetterHead"), Qt::CaseInsensitive) == 0 ||
        name.compare(QStringLiteral("cmdLetterHead_Grouping.cmdLetterHead"), Qt::CaseInsensitive) == 0)
        return m_letterHead;
    throw db::itemNotFound(name);
}

void VorlaneDE::reset() {
    for (DECommand* c : {&m_letterHead, &m_contactList, &m_fileList, &m_internetRefList, &m_searchResult})
        c->Close();
    DECon.reset();
}

} // namespace reports
