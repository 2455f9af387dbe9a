#pragma once

#include "reports/ReportEngine.h"

#include <QList>
#include <QString>
#include <QStringList>
#include <utility>

// Report data as long as an office really types it, for the report tests and the samples tool:
// a firm name of 50 letters, a mail address and address lines of 40, a link of 120 without a
// blank, criteria of 40 letters each.
namespace testsupport::samples {

extern const QString kFirm;
extern const QString kMail;
extern const QStringList kAddress;
extern const QString kPhone;
extern const QString kLink;
extern const QString kRemark;
// The letterhead's fields as an office fills them, each printed by the control "txt" + field.
extern const QList<std::pair<QString, QString>> kPersonal;

// Rows as the search screen copies them: one column off, the key first.
reports::MemoryData searchRows();
reports::MemoryData personalInFull();
// Twenty contacts, then one of an office's full length.
reports::MemoryData contactsInFull();
reports::MemoryData referencesInFull();
// The query line of a search on all eleven criteria, as the search screen words it.
QString queryOfAllCriteria();

} // namespace testsupport::samples
