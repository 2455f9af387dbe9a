#pragma once

#include "ReportEngine.h"

// The six report designs. Each function returns a fresh design; the report objects of the
// program hold one copy each, on which the search screen sets its captions.
namespace reports::designs {

ReportDesign RptFileList();
ReportDesign RptInternetRef();
ReportDesign RptContactList();
ReportDesign rptSearchReport();
ReportDesign RptLetterHead();
ReportDesign RptLetterHead2();

// The design of that report name, or an empty design with no sections.
ReportDesign byName(const QString& reportName);

} // namespace reports::designs
