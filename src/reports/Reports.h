#pragma once

#include "Report.h"
#include "VorlaneDE.h"

// The report objects of the program and the print procedures of the screens.
namespace reports {

// Each report is made on first use, bound to its command of VorlaneDE, and lives until the
// program ends.
Report& RptFileList();
Report& RptInternetRef();
Report& RptContactList();
Report& rptSearchReport();
Report& RptLetterHead();
Report& RptLetterHead2();

// The rows of a recordset as the reports read them: from the first row, NULL as empty text,
// dates as "dd/MMM/yyyy".
std::unique_ptr<ReportData> readRows(db::Recordset& recordset);

// Requeries the recordset, opening it first when it is closed.
void OpenOrRequery(DECommand& recordset);

// Requeries the recordset (opening it first when it is closed), shows the report and
// refreshes it, so that it prints the rows as they are now. Failures are thrown as
// platform::Error to the caller.
void PrintList(DECommand& recordset, Report& report);
// The same, but a failure shows the error's text with the critical icon and returns.
void PrintListTrapped(DECommand& recordset, Report& report);

// Shows both letterheads, RptLetterHead then RptLetterHead2, with the row read when their
// recordset was first opened: no requery, no refresh. Failures are thrown to the caller.
void PrintLetterhead();

} // namespace reports
