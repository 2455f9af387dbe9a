#pragma once

#include "platform/Error.h"

#include <QLatin1String>
#include <QString>

// The error numbers of the data layer, thrown as platform::Error, that the screens tell apart,
// and the standard descriptions of those that always read the same.
namespace db {

inline constexpr int ErrDataSourceNotFound = -2147467259; // no such data source or file
inline constexpr int ErrLoginFailed = -2147217843;        // the data store refused user or password
inline constexpr int ErrStatement = -2147217900;          // the statement was refused
inline constexpr int ErrItemNotFound = 3265;              // no field of that name or position
inline constexpr int ErrObjectClosed = 3704;              // operation on a closed object
inline constexpr int ErrNoCurrentRecord = 3021;           // EOF or BOF is set
inline constexpr int ErrNotSupported = 3251;              // the recordset cannot do that

inline constexpr QLatin1String TextObjectClosed{"Operation is not allowed when the object is closed."};
inline constexpr QLatin1String TextItemNotFound{
    "Item cannot be found in the collection corresponding to the requested name or ordinal."};
inline constexpr QLatin1String TextNoCurrentRecord{
    "Either BOF or EOF is True, or the current record has been deleted. Requested operation requires a "
    "current record."};
inline constexpr QLatin1String TextNotUpdatable{"Current Recordset does not support updating. This may be a "
                                                "limitation of the provider, or of the selected locktype."};

// The error of a look-up by name that found nothing, naming what was looked for.
inline platform::Error itemNotFound(const QString& name) {
    return platform::Error(ErrItemNotFound,
                           QStringLiteral("Item cannot be found in the collection "
                                          "corresponding to the requested name or ordinal: %1")
                               .arg(name));
}

} // namespace db
