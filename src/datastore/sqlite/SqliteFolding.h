#pragma once

struct sqlite3;

namespace db {

// Makes `like` and the NOCASE collation of this connection ignore letter case for all
// letters, not only for ASCII. Returns false when the engine refused to take them.
bool installUnicodeFolding(sqlite3* handle);

} // namespace db
