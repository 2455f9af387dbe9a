#include "BusyWait.h"

#include <sqlite3.h>

namespace db {

BusyWait::~BusyWait() {
    if (m_handle)
        sqlite3_busy_timeout(m_handle, m_limit);
}

void BusyWait::install(sqlite3* handle, int milliseconds) {
    m_handle = handle;
    m_limit = milliseconds;
    sqlite3_busy_handler(handle, milliseconds > 0 ? askAgainSoon : nullptr, this);
}

int BusyWait::askAgainSoon(void* wait, int count) {
    auto* self = static_cast<BusyWait*>(wait);
    if (count == 0)
        self->m_since.start();
    if (self->m_since.hasExpired(self->m_limit))
        return 0;
    sqlite3_sleep(1);
    return 1;
}

} // namespace db
