#include "Reports.h"

#include "ReportDesigns.h"
#include "platform/Conversions.h"
#include "platform/MsgBox.h"

#include <QDate>
#include <QDateTime>
#include <QLocale>

namespace reports {

namespace {

QString fieldText(const QVariant& value) {
    if (!value.isValid() || value.isNull())
        return QString();
    const QLocale english(QLocale::English, QLocale::UnitedStates);
    switch (value.typeId()) {
    case QMetaType::QDate:
        return english.toString(value.toDate(), QStringLiteral("dd/MMM/yyyy"));
    case QMetaType::QDateTime:
        return english.toString(value.toDateTime().date(), QStringLiteral("dd/MMM/yyyy"));
    case QMetaType::Double:
        return platform::NumberText(value.toDouble());
    default:
        return value.toString();
    }
}

// A report over a command of the environment; the recordset opens on first use.
Report* makeReport(ReportDesign design) {
    const QString member = design.dataMember;
    return new Report(std::move(design), [member]() -> std::unique_ptr<ReportData> {
        DECommand& command = VorlaneDE::instance().command(member);
        if (command.State() != db::adStateOpen)
            command.Open();
        return readRows(command.recordset());
    });
}

} // namespace

std::unique_ptr<ReportData> readRows(db::Recordset& recordset) {
    auto rows = std::make_unique<MemoryData>();
    if (recordset.State() != db::adStateOpen)
        return rows;
    if (!(recordset.bof() && recordset.eof()))
        recordset.MoveFirst();
    const int fields = recordset.FieldCount();
    for (; !recordset.eof(); recordset.MoveNext()) {
        QHash<QString, QString> row;
        for (int i = 0; i < fields; ++i)
            row.insert(recordset.FieldName(i), fieldText(recordset.Fields(i)));
        rows->addRow(row);
    }
    return rows;
}

// The report objects are never destroyed: like the environment they serve the program to
// its end.
Report& RptFileList() {
    static Report* report = makeReport(designs::RptFileList());
    return *report;
}
Report& RptInternetRef() {
    static Report* report = makeReport(designs::RptInternetRef());
    return *report;
}
Report& RptContactList() {
    static Report* report = makeReport(designs::RptContactList());
    return *report;
}
Report& rptSearchReport() {
    static Report* report = makeReport(designs::rptSearchReport());
    return *report;
}
Report& RptLetterHead() {
    static Report* report = makeReport(designs::RptLetterHead());
    return *report;
}
Report& RptLetterHead2() {
    static Report* report = makeReport(designs::RptLetterHead2());
    return *report;
}

void OpenOrRequery(DECommand& recordset) {
    if (recordset.State() == db::adStateOpen) {
        recordset.Requery();
    } else {
        recordset.Open();
        recordset.Requery();
    }
}

void PrintList(DECommand& recordset, Report& report) {
    OpenOrRequery(recordset);
    report.Show();
    report.Refresh();
}

void PrintListTrapped(DECommand& recordset, Report& report) {
    try {
        PrintList(recordset, report);
    } catch (const platform::Error& e) {
        platform::MsgBox(e.description(), platform::vbCritical);
    } catch (const std::exception& e) {
        platform::MsgBox(QString::fromLocal8Bit(e.what()), platform::vbCritical);
    }
}

void PrintLetterhead() {
    RptLetterHead().Show();
    RptLetterHead2().Show();
}

} // namespace reports
