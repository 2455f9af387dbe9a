#pragma once

#include <QElapsedTimer>

struct sqlite3;

namespace db {

// Waits for a database file that another connection holds, asking again after every millisecond,
// up to a limit for each wait. The engine's own pauses grow to a tenth of a second, and a seat
// would wait long past a write of a few milliseconds, such as another seat's save or the
// background reading's, or miss the moments that a seat saving one document after the other
// leaves the file free.
class BusyWait {
  public:
    BusyWait() = default;
    // Leaves the handle, which must still be open, with the engine's own wait of the same limit.
    ~BusyWait();
    BusyWait(const BusyWait&) = delete;
    BusyWait& operator=(const BusyWait&) = delete;

    // Makes `handle` wait up to `milliseconds` each time it finds the file held; 0 waits not at
    // all. The object must stay while the handle is used.
    void install(sqlite3* handle, int milliseconds);

  private:
    static int askAgainSoon(void* wait, int count);

    sqlite3* m_handle = nullptr;
    int m_limit = 0;
    QElapsedTimer m_since;
};

} // namespace db
